#include "Examples/TourClock.h"

namespace {

/// How long a frame of an animation lasts, in milliseconds.
constexpr int frameInterval = 8;

} // namespace

TourClock::TourClock(int speed) : m_speed(speed) {}

TourClock::~TourClock() = default;

qint64 TourClock::elapsed() const
{
    return isRunning() ? m_sinceStart.elapsed() * m_speed : 0;
}

void TourClock::start()
{
    m_sinceStart.start();
    m_timer.start(frameInterval, Qt::PreciseTimer, this);
    QAnimationDriver::start();
}

void TourClock::stop()
{
    m_timer.stop();
    QAnimationDriver::stop();
}

void TourClock::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_timer.timerId())
        advance();
    else
        QObject::timerEvent(event);
}
