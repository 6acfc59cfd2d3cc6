#pragma once

#include <QtCore/QLatin1StringView>
#include <QtQuick/QQuickWindow>

/// A window of our own for the screens, with a title and a frame, like any window of the host. Main thread
/// only.
///
/// It belongs to a window of the host, so that no modal dialog of that window blocks it, and neither keeps
/// the application running nor ends it.
class QXFramedWindow final : public QQuickWindow
{
    Q_OBJECT

public:
    /// The size that the user has given to the last window, in points.
    static constexpr QLatin1StringView sizeKey{"QXOverlayWindowSize"};

    QXFramedWindow();
    ~QXFramedWindow() override;

    /// Makes this a window of @p window; null stands for no window.
    void belongTo(QWindow *window);
    /// Hides or shows the window.
    void setHidden(bool hidden);
    /// Whether the user has closed the window.
    [[nodiscard]] bool isClosed() const { return !m_isHidden && !isVisible(); }

Q_SIGNALS:
    /// Emitted when a modal window blocks this one, the host's window is destroyed, or this one is closed.
    void placeLost();

protected:
    bool event(QEvent *event) override;

private:
    /// Takes the place of a host's window. It is never shown.
    QWindow m_none;
    bool m_isHidden = true;
};
