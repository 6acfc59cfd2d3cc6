#pragma once

#include <QtCore/QPoint>
#include <QtCore/QSize>
#include <QtCore/QString>

#include <chrono>
#include <functional>

class QQuickItem;
class QQuickWindow;

/// Hands and eyes of the tour: acts on a window by pointer and key events alone, and looks for items by their
/// object names. What fails leaves a complaint. Main thread only; waiting turns the event loop.
class TourRobot final
{
public:
    static constexpr std::chrono::seconds patience{8};

    explicit TourRobot(QQuickWindow &window) : m_window(window) {}

    /// The visible item of this name that is painted last; null when there is none. "Row:Accept" means the
    /// item with the object name "Row" whose label, key or text is "Accept".
    [[nodiscard]] QQuickItem *find(const QString &name) const;
    /// How many visible items have this name.
    [[nodiscard]] int count(const QString &name) const;
    /// The property "text" of an item; empty when there is none.
    [[nodiscard]] QString text(const QString &name) const;

    /// Waits for @p condition; @p what says what is missing when it does not come true.
    bool waitUntil(const std::function<bool()> &condition, const QString &what,
                   std::chrono::milliseconds limit = patience);
    bool waitFor(const QString &name, std::chrono::milliseconds limit = patience);
    bool waitUntilGone(const QString &name);

    /// Presses and releases the middle of an item, after scrolling to it where it is out of sight.
    bool click(const QString &name);
    /// Clicks the one of several items that is highest on the screen.
    bool clickFirst(const QString &name);
    /// Scrolls to an item that is out of sight.
    bool show(const QString &name);
    /// Opens the menu of an item, as a mouse does.
    bool rightClick(const QString &name);
    bool press(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    /// Clicks a field and puts @p text in the place of all that it holds, by way of the clipboard.
    bool paste(const QString &name, const QString &text);
    /// Clicks a field and types; characters of ASCII only.
    bool type(const QString &name, const QString &text);
    /// Empties a field with the keyboard.
    bool erase(const QString &name);
    /// Presses an item, moves, and lets go.
    bool drag(const QString &name, QPoint by);
    /// Turns the wheel over an item, down when @p turn is positive; 120 is one click of the wheel.
    bool scroll(const QString &name, int turn);
    /// Waits until the window has this size.
    bool resize(QSize size);

    /// Waits for the picture to come to rest and saves it.
    bool screenshot(const QString &path);

    /// Notes @p otherwise as the complaint unless @p condition holds, which it returns.
    bool check(bool condition, const char *otherwise);
    /// What failed last.
    [[nodiscard]] const QString &complaint() const noexcept { return m_complaint; }

private:
    bool complain(const QString &complaint);
    bool clickWith(Qt::MouseButton button, const QString &name);
    /// How far an item lies below where its scroller shows it freely, or above when negative.
    [[nodiscard]] double distanceFromView(const QQuickItem *item) const;
    bool bringIntoView(const QString &name);
    /// Whether no page scrolls. One whose content changed while it moved may go on saying that it does.
    [[nodiscard]] bool isAtRest() const;
    /// What moves, or is disabled while it does, cannot be clicked reliably.
    bool waitUntilStill(const QString &name);
    void turnWheel(QPoint at, int turn);
    [[nodiscard]] QPoint middle(const QQuickItem &item) const;

    QQuickWindow &m_window;
    QString m_complaint;
};
