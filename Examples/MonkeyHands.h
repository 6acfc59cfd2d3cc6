#pragma once

#include <QtCore/QPoint>
#include <QtCore/QPointer>
#include <QtCore/QSet>
#include <QtGui/QPointingDevice>
#include <QtQuick/QQuickWindow>

#include <memory>

class MonkeyEyes;
class MonkeyRandom;

/// Sends pointer, touch, wheel and key events to a window, and input-method events to the item with the
/// keyboard focus. Main thread only; most functions run the event loop.
class MonkeyHands final
{
public:
    MonkeyHands(MonkeyRandom &random, const MonkeyEyes &eyes);
    ~MonkeyHands();
    MonkeyHands(const MonkeyHands &) = delete;
    MonkeyHands &operator=(const MonkeyHands &) = delete;

    /// Clicks, double clicks, long presses, drags, and single presses, moves and releases.
    void point(QQuickWindow &window);
    /// Taps, swipes and pinches.
    void touch(QQuickWindow &window);
    void turnWheel(QQuickWindow &window);
    void pressKey(QQuickWindow &window);
    void typeText(QQuickWindow &window);
    void compose();
    /// Releases all buttons and fingers.
    void letGo(QQuickWindow &window);

private:
    void drag(QQuickWindow &window, QPoint from, QPoint to);
    [[nodiscard]] QPoint anywhere(const QQuickWindow &window);
    [[nodiscard]] QString text();

    MonkeyRandom &m_random;
    const MonkeyEyes &m_eyes;
    const std::unique_ptr<QPointingDevice> m_touchScreen;
    QSet<Qt::MouseButton> m_pressed;
    QPoint m_finger;
    /// The window on which a finger rests; null when none does.
    QPointer<QQuickWindow> m_touched;
};
