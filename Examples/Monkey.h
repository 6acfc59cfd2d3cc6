#pragma once

#include "Examples/MonkeyEyes.h"
#include "Examples/MonkeyGuard.h"
#include "Examples/MonkeyHands.h"
#include "Examples/MonkeyRandom.h"
#include "Examples/MonkeyTraffic.h"
#include "Examples/MonkeyWorld.h"

class StoreClient;

/// Plays with the store and the inspector at random, to find what breaks. Main thread only.
///
/// It finds crashes, hangs, warnings, responses that nobody can release, and growth without bound. The random
/// numbers are the same for the same seed; replies and animations, however, do not arrive after the same
/// event each time.
class Monkey final
{
public:
    /// Moves the folders of the process that a user can write to into a temporary one. Has to be called
    /// before the application is created.
    static void moveFolders();

    Monkey(QQuickWindow &window, MonkeyWorld::OpenWindow openWindow, const StoreClient &store,
           const QUrl &server, quint64 seed);

    /// Plays @p events times, and prints a summary. Returns 0 when there is no complaint, otherwise 1.
    [[nodiscard]] int play(int events);

private:
    /// What remains when only the host is visible.
    struct Remains
    {
        qsizetype objects = 0;
        qint64 memory = 0;
    };

    void act();
    void keepPathInside() const;
    /// Returns to the host; @p first is what remained the first time.
    bool goHome(std::optional<Remains> &first);
    [[nodiscard]] Remains remains() const;
    [[nodiscard]] bool isQuiet() const;

    MonkeyGuard m_guard;
    MonkeyRandom m_random;
    MonkeyEyes m_eyes;
    MonkeyHands m_hands;
    MonkeyWorld m_world;
    MonkeyTraffic m_traffic;
    const StoreClient &m_store;
    const quint64 m_seed;
};
