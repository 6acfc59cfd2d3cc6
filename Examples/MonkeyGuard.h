#pragma once

#include <QtCore/QObject>
#include <QtCore/QUrl>

#include <atomic>
#include <thread>

/// Watches over the process while the monkey plays: counts warnings, ends the process with the last events
/// when it crashes or its main thread hangs, and keeps URLs from being opened by other programs.
///
/// Main thread only; there can be only one.
class MonkeyGuard final : public QObject
{
    Q_OBJECT

public:
    MonkeyGuard();
    ~MonkeyGuard() override;

    /// Counts and prints a complaint, with the last events.
    static void complain(const QString &complaint);
    /// How many complaints there were, warnings included.
    [[nodiscard]] static int complaints() noexcept;

    /// Accepts a URL in place of the system's programs.
    Q_INVOKABLE void openUrl(const QUrl &url);

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void watch() noexcept;

    /// Increases while the main thread runs its event loop.
    std::atomic<unsigned> m_beats = 0;
    std::atomic<bool> m_ends = false;
    std::thread m_watchdog;
};
