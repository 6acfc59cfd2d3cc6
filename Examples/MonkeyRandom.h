#pragma once

#include <QtCore/QList>

/// Random numbers that are the same on every platform for the same seed.
class MonkeyRandom final
{
public:
    explicit MonkeyRandom(quint64 seed) noexcept : m_state(seed) {}

    /// A number from 0 to @p limit - 1; 0 when the limit is less than 1.
    [[nodiscard]] int below(int limit) noexcept
    {
        return limit < 1 ? 0 : static_cast<int>(next() % static_cast<quint64>(limit));
    }
    [[nodiscard]] int between(int least, int most) noexcept { return least + below(most - least + 1); }
    [[nodiscard]] bool chance(int percent) noexcept { return below(100) < percent; }

    /// One of the elements of a container that is not empty.
    template<typename Container>
    [[nodiscard]] const auto &oneOf(const Container &container) noexcept
    {
        return *std::next(std::begin(container), below(static_cast<int>(std::size(container))));
    }

private:
    /// The generator SplitMix64.
    quint64 next() noexcept
    {
        quint64 bits = m_state += 0x9e3779b97f4a7c15;
        bits = (bits ^ (bits >> 30)) * 0xbf58476d1ce4e5b9;
        bits = (bits ^ (bits >> 27)) * 0x94d049bb133111eb;
        return bits ^ (bits >> 31);
    }

    quint64 m_state;
};
