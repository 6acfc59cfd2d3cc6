#pragma once

#include "Quorvix/QXPresentation.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QTimer>

#include <chrono>
#include <memory>

class QQuickWindow;
class QRegion;
class QWindow;
class QXCoverWindow;
class QXFramedWindow;

/// The windows of the overlay: the one with the button, and the one with the screens. Main thread only.
///
/// The button is in a Qt Quick window of the host, or in a cover: a window of our own over any other window
/// of the host. It follows the host's active window. The screens are in the same window, or in a framed
/// window of their own: if the host wants it so, or nothing else could show a held response. Our own windows
/// never exist on platforms with a single window.
class QXHostWindow : public QObject
{
    Q_OBJECT

public:
    /// The time in which the host can show a window before we make our own.
    static constexpr std::chrono::milliseconds ownWindowDelay{400};

    QXHostWindow();
    ~QXHostWindow() override;

    /// Stops to react to the host's windows, for good, and gives the keyboard back.
    void stop();

    /// The window of the button. Null while there is none; then changed() announces the next one.
    [[nodiscard]] QQuickWindow *window() const;
    /// The window of the screens. Null while there is none.
    [[nodiscard]] QQuickWindow *screenWindow() const;
    /// Whether the user can reach a window for the screens, maybe one that setShowsScreens() makes.
    [[nodiscard]] bool isReachable() const;
    /// Whether the button is in a window of our own.
    [[nodiscard]] bool isOwn() const { return m_cover != nullptr; }
    /// Whether the screens are in a framed window of their own.
    [[nodiscard]] bool isFramed() const { return m_frame != nullptr; }

    /// Whether the next screens get a framed window, because they cannot or shall not be over the host's
    /// window.
    [[nodiscard]] bool needsFrame() const;

    /// Hides or shows our own windows.
    void setHidden(bool hidden);
    /// Sets where screens open from now on. Those that are open stay.
    void setPresentation(QXPresentation presentation) { m_presentation = presentation; }
    /// Sets whether the overlay needs a window even if the host shows none.
    void setRequired(bool required);
    /// Limits the window of the button to a region, if it is our own, on platforms on which something can be
    /// below it. An empty region removes the limit.
    void setMask(const QRegion &region);
    /// Sets whether a screen is open. Then our own window for it takes the keyboard from the host's window,
    /// and gives it back when the last screen closes. While it only shows the button it must not take it.
    void setShowsScreens(bool shows);
    /// Brings the window of the screens to the front and requests keyboard focus for it. Does not show a
    /// window that the host has hidden.
    void activate();
    /// Gives the keyboard back to the window that had it before activate(), or to another one that had it
    /// since then, unless the window of the screens does not have it. Our own windows do so when the last
    /// screen closes.
    void activatePrevious();

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// Emitted when the overlay has to cover another window, or to make its items again.
    void changed();
    /// Emitted when the user has closed our own window, which is shown again for a held response.
    void closed();

private:
    /// Deletes a window later, because a handler of a screen may be running now.
    struct Remove
    {
        void operator()(QQuickWindow *window) const;
    };

    void followFocus(QWindow *focused);
    void scheduleUpdate();
    void update();
    void wait();
    void moveTo(QQuickWindow &window);
    void makeOwn();
    void makeCover(QWindow &area);
    void placeCover(QWindow &area);
    void makeFrame();
    void placeFrame();
    void leaveHost();
    void giveKeyboardBack();
    [[nodiscard]] bool isHostWindow(const QWindow *window) const;
    [[nodiscard]] bool isCoverable(const QWindow *window) const;
    [[nodiscard]] bool isHostReachable() const;
    [[nodiscard]] QWindow *current() const;
    [[nodiscard]] QWindow *wanted() const;
    [[nodiscard]] QWindow *next() const;
    [[nodiscard]] QWindow *shownWindow() const;

    QPointer<QQuickWindow> m_host;
    std::unique_ptr<QXCoverWindow, Remove> m_cover;
    std::unique_ptr<QXFramedWindow, Remove> m_frame;
    /// The window of the host that has the keyboard, or had it last.
    QPointer<QWindow> m_active;
    /// The window that had the keyboard before activate(), or since then.
    QPointer<QWindow> m_previous;
    /// The window to which the keyboard goes back, until the platform has done so.
    QPointer<QWindow> m_requested;
    QTimer m_delay;
    QXPresentation m_presentation = QXPresentation::panel;
    bool m_isHidden = false;
    bool m_isRequired = false;
    bool m_showsScreens = false;
    bool m_isUpdateScheduled = false;
    bool m_isStopped = false;
};
