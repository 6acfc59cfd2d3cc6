#include "JSON/JSONValue.h"

#include "JSON/JSONWideNumbers.h"

#include <bit>
#include <limits>

namespace Quorvix {

namespace {

template<typename Range>
qsizetype counted(const Range &range)
{
    qsizetype count = 0;
    for (auto at = range.begin(); at != range.end(); ++at)
        ++count;
    return count;
}

} // namespace

JSONValue::NumberKind JSONValue::numberKind() const noexcept
{
    switch (type()) {
    case JSONTape::Int64:
        return NumberKind::Int64;
    case JSONTape::UInt64:
        return NumberKind::UInt64;
    default:
        return NumberKind::Double;
    }
}

qint64 JSONValue::toInt64() const noexcept
{
    constexpr quint64 largest = std::numeric_limits<qint64>::max();
    const bool fits =
        type() == JSONTape::Int64 || (type() == JSONTape::UInt64 && m_tape->bits(m_index) <= largest);
    return fits ? qint64(m_tape->bits(m_index)) : 0;
}

quint64 JSONValue::toUInt64() const noexcept
{
    const bool fits =
        type() == JSONTape::UInt64 || (type() == JSONTape::Int64 && qint64(m_tape->bits(m_index)) >= 0);
    return fits ? m_tape->bits(m_index) : 0;
}

double JSONValue::toDouble() const noexcept
{
    switch (type()) {
    case JSONTape::Int64:
        return double(qint64(m_tape->bits(m_index)));
    case JSONTape::UInt64:
        return double(m_tape->bits(m_index));
    case JSONTape::Double:
        break;
    default:
        return 0;
    }
    const QByteArrayView wide = wideNumber();
    return wide.isEmpty() ? std::bit_cast<double>(m_tape->bits(m_index)) : nearestDouble(wide);
}

qsizetype JSONValue::size() const noexcept
{
    if (type() != JSONTape::Object && type() != JSONTape::Array)
        return 0;
    const size_t kept = m_tape->keptCount(m_index);
    if (kept < JSONTape::saturatedCount)
        return qsizetype(kept);
    return type() == JSONTape::Array ? counted(elements()) : counted(members());
}

std::optional<JSONValue> JSONValue::member(QByteArrayView nameUtf8) const noexcept
{
    std::optional<JSONValue> found;
    for (const auto &[name, value] : members()) {
        if (name == nameUtf8)
            found = value;
    }
    return found;
}

} // namespace Quorvix
