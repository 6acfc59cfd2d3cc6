#include "Examples/AnimationClock.h"

#include <QtCore/QTimerEvent>

namespace {

/// How long a frame of an animation lasts, in milliseconds.
constexpr int frameInterval = 8;

} // namespace

AnimationClock::AnimationClock(int speed) : m_speed(speed) {}

AnimationClock::~AnimationClock()
{
    // Otherwise Qt goes on with a clock of its own, which complains where the application is gone already.
    AnimationClock::stop();
}

qint64 AnimationClock::elapsed() const
{
    return isRunning() ? m_sinceStart.elapsed() * m_speed : 0;
}

void AnimationClock::start()
{
    m_sinceStart.start();
    m_timer.start(frameInterval, Qt::PreciseTimer, this);
    QAnimationDriver::start();
}

void AnimationClock::stop()
{
    m_timer.stop();
    QAnimationDriver::stop();
}

void AnimationClock::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_timer.timerId())
        advance();
    else
        QObject::timerEvent(event);
}
