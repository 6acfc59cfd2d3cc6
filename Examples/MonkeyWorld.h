#pragma once

#include <QtCore/QPointer>
#include <QtGui/QFont>
#include <QtQuick/QQuickWindow>

#include <functional>
#include <memory>

class MonkeyRandom;

/// The host's window and the settings of the application, which the monkey changes. Main thread only.
class MonkeyWorld final
{
public:
    using OpenWindow = std::function<QQuickWindow *()>;

    /// @p openWindow opens another window of the host.
    MonkeyWorld(QQuickWindow &window, OpenWindow openWindow, MonkeyRandom &random);
    ~MonkeyWorld();

    [[nodiscard]] QQuickWindow &window() const { return *m_window; }
    /// Resizes, hides or replaces the window, or changes a setting.
    void change();
    /// Shows the window again, mostly soon after it was hidden, and gives it a usual size now and then.
    void mend();
    /// Shows the window in its usual size, with the usual settings and the inspector's button.
    void restore();

private:
    void resize(QSize size);
    void replaceWindow();
    void changeAppearance();

    QPointer<QQuickWindow> m_window;
    const OpenWindow m_openWindow;
    MonkeyRandom &m_random;
    /// Takes the focus away from the host's window.
    QWindow m_other;
    const QFont m_usualFont;
};
