#pragma once

#include "Examples/MonkeyRandom.h"

#include <QtCore/QObject>

#include <memory>

class QQuickWindow;

/// A host's window with the inspector over it, in which somebody opens and closes the screens at random:
/// list, search, details, trees, breakpoints, exports. Main thread only.
class SoakScreens final : public QObject
{
    Q_OBJECT

public:
    explicit SoakScreens(quint64 seed);
    ~SoakScreens() override;

    /// Opens the window and begins.
    void open();
    /// Closes the window with all screens.
    void close();
    /// How many clicks and keys there were.
    [[nodiscard]] quint64 actions() const { return m_actions; }

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    MonkeyRandom m_random;
    quint64 m_actions = 0;
    std::unique_ptr<QQuickWindow> m_window;
};
