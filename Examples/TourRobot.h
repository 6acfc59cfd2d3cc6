#pragma once

#include <QtCore/QPoint>
#include <QtCore/QSize>
#include <QtCore/QString>

#include <chrono>
#include <functional>

class QQuickItem;
class QQuickWindow;

/// Controls a window for the tour: it sends pointer and key events only, and finds items by their object
/// names. A failed action stores a complaint. Main thread only; functions that wait run the event loop.
class TourRobot final
{
public:
    /// Long enough for a machine that is busy with other things. Only a failure waits so long.
    static constexpr std::chrono::seconds defaultTimeout{60};

    /// The pictures of a @p reproducible tour show no real duration.
    explicit TourRobot(QQuickWindow &window, bool reproducible = false)
        : m_window(window), m_isReproducible(reproducible)
    {
    }

    /// The visible item of this name that is painted last; null when there is none. "Row:Accept" means the
    /// item with the object name "Row" whose label, key or text is "Accept".
    [[nodiscard]] QQuickItem *find(const QString &name) const;
    /// How many visible items have this name.
    [[nodiscard]] int count(const QString &name) const;
    /// The property "text" of an item; empty when there is none.
    [[nodiscard]] QString text(const QString &name) const;

    /// Waits until @p condition is true; @p what is the complaint when the time limit ends.
    bool waitUntil(const std::function<bool()> &condition, const QString &what,
                   std::chrono::milliseconds limit = defaultTimeout);
    bool waitFor(const QString &name, std::chrono::milliseconds limit = defaultTimeout);
    bool waitUntilGone(const QString &name);

    /// Scrolls to an item if it is not visible, and clicks its middle.
    bool click(const QString &name);
    /// Clicks the topmost one of several items with this name.
    bool clickFirst(const QString &name);
    /// Scrolls to an item that is not visible.
    bool show(const QString &name);
    /// Opens the context menu of an item with the right mouse button.
    bool rightClick(const QString &name);
    bool press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    /// Clicks a field and replaces its text by @p text through the clipboard.
    bool paste(const QString &name, const QString &text);
    /// Clicks a field and types @p text, which must be ASCII.
    bool type(const QString &name, const QString &text);
    /// Clears a field with the keyboard.
    bool erase(const QString &name);
    /// Presses an item, moves the pointer, and releases.
    bool drag(const QString &name, QPoint by);
    /// Turns the wheel over an item, down when @p turn is positive; 120 is one click of the wheel.
    bool scroll(const QString &name, int turn);
    /// Resizes the window and waits until it has this size.
    bool resize(QSize size);

    /// Waits until the picture does not change any more by itself and saves it. Fails when it never comes to
    /// rest.
    bool screenshot(const QString &path);

    /// Returns @p condition; when it is false, stores @p otherwise as the complaint.
    bool check(bool condition, const char *otherwise);
    /// The message of the last failure.
    [[nodiscard]] const QString &complaint() const noexcept { return m_complaint; }

private:
    bool complain(const QString &complaint);
    /// Whether the floating button is faint or a scroll bar visible, as they are for a moment after a page
    /// scrolls.
    [[nodiscard]] bool showsScrolling() const;
    /// Waits until the animations that run have advanced several times, and the window has drawn their state.
    bool waitForFrames();
    bool clickWith(Qt::MouseButton button, const QString &name);
    /// The distance that an item lies below the visible part of its page, or above it when negative.
    [[nodiscard]] double distanceFromView(const QQuickItem *item) const;
    bool bringIntoView(const QString &name);
    /// Whether no page scrolls. The positions are compared, because a page does not report every movement,
    /// and one whose content changed while it moved may report for ever that it moves.
    [[nodiscard]] bool isAtRest();
    /// Waits until an item stands still and is enabled, so that it can be clicked reliably.
    bool waitUntilStill(const QString &name);
    void turnWheel(QPoint at, int turn);
    [[nodiscard]] QPoint middle(const QQuickItem &item) const;

    QQuickWindow &m_window;
    bool m_isReproducible;
    QString m_complaint;
};
