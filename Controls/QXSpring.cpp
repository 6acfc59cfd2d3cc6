#include "Controls/QXSpring.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace std::chrono_literals;

namespace {

/// How stiff the spring is, per second: nine tenths of the way take 0.18 s, all of it 0.4 s.
constexpr qreal stiffness = 22;
/// A view that is so near to the end of its way is there: in pixels, and as part of the way of a view that
/// only fades and grows.
constexpr qreal nearPixels = 0.5;
constexpr qreal nearPart = 0.01;
/// A pointer of this speed decides where the view goes, in pixels per second.
constexpr qreal decidingVelocity = 400;
/// Otherwise an open view has to be moved at least so far to leave.
constexpr qreal leavingPart = 0.35;
/// A pointer that moves less has only held the view, in pixels.
constexpr qreal stillness = 6;
/// The time before the release that counts for the speed of a pointer.
constexpr auto memory = 100ms;

} // namespace

QXSpring::QXSpring(QObject *parent) : QObject(parent)
{
    m_timer.start();
    m_clock = [this] {
        return std::chrono::milliseconds(m_timer.elapsed());
    };
}

void QXSpring::setOpen(bool isOpen)
{
    if (m_isOpen == isOpen && !m_isHeld)
        return;
    const bool changes = std::exchange(m_isOpen, isOpen) != isOpen;
    setRunning(false);
    setHeld(false);
    setMoving(true);
    if (changes)
        Q_EMIT isOpenChanged();
    goOn();
}

void QXSpring::jump(bool isOpen)
{
    setRunning(false);
    m_velocity = 0;
    setHeld(false);
    setMoving(false);
    if (std::exchange(m_isOpen, isOpen) != isOpen)
        Q_EMIT isOpenChanged();
    setPosition(target());
}

void QXSpring::finish()
{
    setRunning(false);
    m_velocity = 0;
    setHeld(false);
    setPosition(target());
    if (!m_isMoving)
        return;
    setMoving(false);
    Q_EMIT settled();
}

/// Moves the view to the end of its way, unless a handler of a signal has already done something else with
/// it.
void QXSpring::goOn()
{
    if (!m_isMoving || m_isHeld || m_isRunning)
        return;
    m_firstPosition = m_position;
    m_firstVelocity = m_velocity;
    if (m_animates && !isNear(m_position))
        setRunning(true);
    else
        finish();
}

/// A spring with so much friction that it just does not swing; it keeps the speed that the view has already.
void QXSpring::setTime(qreal seconds)
{
    m_time = seconds;
    if (!m_isRunning)
        return;
    const qreal first = m_firstPosition - target();
    const qreal change = m_firstVelocity + stiffness * first;
    const qreal decay = std::exp(-stiffness * seconds);
    const qreal distance = (first + change * seconds) * decay;
    m_velocity = (change - stiffness * (first + change * seconds)) * decay;
    const bool isThere = isNear(target() + distance);
    // Only a fast pointer can throw a view beyond its place, where it has to stop.
    const bool isBeyond = first * distance < 0;
    if (isThere || isBeyond)
        finish();
    else
        setPosition(target() + distance);
}

void QXSpring::hold(qreal place)
{
    setRunning(false);
    m_velocity = 0;
    m_heldPosition = m_position;
    m_samples = {{m_clock(), place}};
    m_heldPlace = place;
    setMoving(true);
    setHeld(true);
}

void QXSpring::follow(qreal place)
{
    if (!m_isHeld)
        return;
    const auto now = m_clock();
    std::erase_if(m_samples, [now](const Sample &sample) { return now - sample.time > memory; });
    // Where it comes from does not count after it has turned round.
    const auto count = m_samples.size();
    if (count > 1 &&
        (m_samples[count - 1].place - m_samples[count - 2].place) * (place - m_samples[count - 1].place) < 0)
        m_samples.erase(m_samples.begin(), m_samples.end() - 1);
    m_samples.push_back({now, place});
    const qreal wanted = m_heldPosition + (m_heldPlace - place) / m_extent;
    const qreal beyond = std::max(0.0, (wanted - 1) * m_extent);
    // It follows ever less, as rubber does.
    const qreal given = m_give > 0 ? m_give * beyond / (m_give + beyond) : 0;
    setPosition(std::clamp(wanted, 0.0, 1.0) + given / m_extent);
}

void QXSpring::release(bool throws)
{
    if (!m_isHeld)
        return;
    const qreal velocity = pointerVelocity();
    bool isOpen = m_isOpen;
    if (throws && std::abs(velocity) > decidingVelocity)
        isOpen = velocity < 0;
    else if (std::abs(m_position - m_heldPosition) * m_extent > stillness)
        isOpen = m_position > 1 - leavingPart;
    m_velocity = -velocity / m_extent;
    setHeld(false);
    if (std::exchange(m_isOpen, isOpen) != isOpen)
        Q_EMIT isOpenChanged();
    goOn();
}

/// In pixels per second.
qreal QXSpring::pointerVelocity() const
{
    const auto now = m_clock();
    const auto first = std::find_if(m_samples.begin(), m_samples.end(),
                                    [now](const Sample &sample) { return now - sample.time <= memory; });
    if (first == m_samples.end())
        return 0;
    const auto span = std::max(now - first->time, std::chrono::milliseconds(1ms));
    return (m_samples.back().place - first->place) / std::chrono::duration<qreal>(span).count();
}

bool QXSpring::isNear(qreal position) const
{
    return std::abs(position - target()) <= (m_extent > 1 ? nearPixels / m_extent : nearPart);
}

void QXSpring::setPosition(qreal position)
{
    if (std::exchange(m_position, position) != position)
        Q_EMIT positionChanged();
}

void QXSpring::setMoving(bool isMoving)
{
    if (std::exchange(m_isMoving, isMoving) != isMoving)
        Q_EMIT isMovingChanged();
}

void QXSpring::setHeld(bool isHeld)
{
    if (std::exchange(m_isHeld, isHeld) != isHeld)
        Q_EMIT isHeldChanged();
}

void QXSpring::setRunning(bool isRunning)
{
    if (std::exchange(m_isRunning, isRunning) != isRunning)
        Q_EMIT isRunningChanged();
}
