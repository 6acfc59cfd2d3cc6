#pragma once

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QTimer>

#include <chrono>
#include <memory>

class QQuickWindow;
class QRegion;
class QWindow;

/// The window that the overlay covers: a Qt Quick window of the host that the user can reach, or else a
/// window of our own. Main thread only.
///
/// The user cannot reach a window that is hidden or that a modal dialog blocks. Our own window is
/// transparent. It exists while the host shows other windows only, and when nothing else could show a held
/// response. It never exists on platforms with a single window.
class QXHostWindow : public QObject
{
    Q_OBJECT

public:
    /// The time in which the host can show a window before we make our own.
    static constexpr std::chrono::milliseconds ownWindowDelay{400};

    QXHostWindow();
    ~QXHostWindow() override;

    /// Stops to react to the host's windows, for good.
    void stop();

    /// The current window. Null while there is none; then changed() announces the next one.
    [[nodiscard]] QQuickWindow *window() const;
    /// Whether the user can reach the current window.
    [[nodiscard]] bool isReachable() const;
    /// Whether the current window is our own.
    [[nodiscard]] bool isOwn() const { return m_own != nullptr; }

    /// Hides or shows our own window.
    void setHidden(bool hidden);
    /// Sets whether the overlay needs a window even if the host shows none.
    void setRequired(bool required);
    /// Limits our own window to a region, on platforms on which something can be below it. An empty region
    /// removes the limit.
    void setMask(const QRegion &region);
    /// Sets whether our own window takes the keyboard from the host's window, at once and also when it is
    /// clicked. While it only shows the button it must not, and gives the keyboard back.
    void setAcceptsKeyboard(bool accepts);
    /// Brings the current window to the front and requests keyboard focus for it. Does not show a window that
    /// the host has hidden.
    void activate();
    /// Gives the keyboard back to the window that had it before activate(), or to another one that had it
    /// since then, unless the current window does not have it.
    void activatePrevious();

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// Emitted when the overlay has to cover another window, or to make its items again.
    void changed();
    /// Emitted when the user has closed our own window, which is shown again.
    void closed();

private:
    void followFocus(QWindow *focused);
    void scheduleUpdate();
    void update();
    void moveTo(QQuickWindow *window);
    [[nodiscard]] QQuickWindow *find() const;
    [[nodiscard]] bool isHostWindow(const QWindow *window) const;
    [[nodiscard]] bool needsOwn() const;
    [[nodiscard]] QWindow *shownWindow() const;
    void makeOwn();
    void placeOwn();
    void showClosedOwn();

    QPointer<QQuickWindow> m_host;
    std::unique_ptr<QQuickWindow> m_own;
    /// The window that had the keyboard before activate(), or since then.
    QPointer<QWindow> m_previous;
    /// The window to which activatePrevious() gives the keyboard, until the platform has done so.
    QPointer<QWindow> m_requested;
    QTimer m_delay;
    bool m_isHidden = false;
    bool m_isRequired = false;
    /// Whether the host has shown a window. Before that, the overlay may come without one.
    bool m_hadWindow = false;
    bool m_isUpdateScheduled = false;
    bool m_isStopped = false;
};
