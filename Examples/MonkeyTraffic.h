#pragma once

#include "Examples/StoreApi.h"

class MonkeyRandom;

/// Exchanges of all kinds between the application and its own server. Main thread only.
class MonkeyTraffic final
{
public:
    MonkeyTraffic(const QUrl &server, MonkeyRandom &random);

    /// Starts an exchange, unless many are running already.
    void exchange();
    /// How many exchanges have not delivered their result.
    [[nodiscard]] int running() const noexcept { return m_running; }

private:
    [[nodiscard]] Quorvix::URLRequest request();

    StoreApi m_api;
    MonkeyRandom &m_random;
    int m_running = 0;
};
