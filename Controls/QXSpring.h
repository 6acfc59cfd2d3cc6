#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtQml/qqmlregistration.h>

#include <chrono>
#include <functional>
#include <utility>
#include <vector>

/// How far a view is on its way between away, 0, and open, 1. The view moves as on a spring that does not
/// swing. A pointer can hold it, also while it moves: then the view goes with the pointer, and when it is
/// released, its speed and its position decide where it goes. QXGlide has a clock, too. Main thread only.
class QXSpring : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// From 0 to 1, and a little more while a pointer pulls an open view.
    Q_PROPERTY(qreal position READ position NOTIFY positionChanged)
    /// Whether the view is open or on its way there. When it is set, the view moves from its current
    /// position, and no pointer holds it any more.
    Q_PROPERTY(bool isOpen READ isOpen WRITE setOpen NOTIFY isOpenChanged)
    /// Whether the view is on its way. It is, too, while a pointer holds it.
    Q_PROPERTY(bool isMoving READ isMoving NOTIFY isMovingChanged)
    Q_PROPERTY(bool isHeld READ isHeld NOTIFY isHeldChanged)
    /// The distance between open and away, in pixels; 1 for a view that only fades and grows.
    Q_PROPERTY(qreal extent MEMBER m_extent NOTIFY extentChanged)
    /// How far, at most, a pointer pulls an open view beyond its place, in pixels.
    Q_PROPERTY(qreal give MEMBER m_give NOTIFY giveChanged)
    /// Whether the view moves by itself. Otherwise, it is at the end of its way at once.
    Q_PROPERTY(bool animates MEMBER m_animates NOTIFY animatesChanged)
    /// Whether the view moves by itself now. A clock has to set the time then.
    Q_PROPERTY(bool isRunning READ isRunning NOTIFY isRunningChanged)
    /// The time since the view began to move by itself, in seconds.
    Q_PROPERTY(qreal time READ time WRITE setTime NOTIFY positionChanged)

public:
    using Clock = std::function<std::chrono::milliseconds()>;

    explicit QXSpring(QObject *parent = nullptr);

    [[nodiscard]] qreal position() const noexcept { return m_position; }
    [[nodiscard]] bool isOpen() const noexcept { return m_isOpen; }
    [[nodiscard]] bool isMoving() const noexcept { return m_isMoving; }
    [[nodiscard]] bool isHeld() const noexcept { return m_isHeld; }
    [[nodiscard]] bool isRunning() const noexcept { return m_isRunning; }
    [[nodiscard]] qreal time() const noexcept { return m_time; }
    void setOpen(bool isOpen);
    void setTime(qreal seconds);

    /// Puts the view at one end of its way, without a movement and without settled().
    Q_INVOKABLE void jump(bool isOpen);
    /// Ends a movement at once.
    Q_INVOKABLE void finish();

    /// The pointer takes the view. A larger @p place, in pixels, is nearer to away.
    Q_INVOKABLE void hold(qreal place);
    /// The pointer that holds the view has moved.
    Q_INVOKABLE void follow(qreal place);
    /// The pointer releases the view. A view that it has only held goes on as before. Unless @p throws, its
    /// speed does not decide.
    Q_INVOKABLE void release(bool throws = true);

    /// Sets the clock that measures the speed of pointers, for tests.
    void setClock(Clock clock)
    {
        m_clock = std::move(clock);
        m_samples.clear();
    }

Q_SIGNALS:
    void positionChanged();
    void isOpenChanged();
    void isMovingChanged();
    void isHeldChanged();
    void extentChanged();
    void giveChanged();
    void animatesChanged();
    void isRunningChanged();
    /// Emitted when the view has come to the end of its way.
    void settled();

private:
    struct Sample
    {
        std::chrono::milliseconds time;
        qreal place;
    };

    void goOn();
    void setPosition(qreal position);
    void setMoving(bool isMoving);
    void setHeld(bool isHeld);
    void setRunning(bool isRunning);
    [[nodiscard]] qreal target() const { return m_isOpen ? 1 : 0; }
    [[nodiscard]] bool isNear(qreal position) const;
    [[nodiscard]] qreal pointerVelocity() const;

    qreal m_position = 0;
    /// Per second.
    qreal m_velocity = 0;
    qreal m_extent = 1;
    qreal m_give = 0;
    bool m_isOpen = false;
    bool m_isMoving = false;
    bool m_isHeld = false;
    bool m_animates = true;
    bool m_isRunning = false;
    qreal m_time = 0;
    /// Where the movement began.
    qreal m_firstPosition = 0;
    qreal m_firstVelocity = 0;
    /// Where the view and the pointer were when the pointer took the view.
    qreal m_heldPosition = 0;
    qreal m_heldPlace = 0;
    std::vector<Sample> m_samples;
    QElapsedTimer m_timer;
    Clock m_clock;
};
