#pragma once

#include <QtCore/QAbstractAnimation>
#include <QtCore/QBasicTimer>
#include <QtCore/QElapsedTimer>

/// Lets the animations of a tour run faster than the time that a person would watch them. Main thread only;
/// drives all animations of the application from install() on.
class TourClock final : public QAnimationDriver
{
    Q_OBJECT

public:
    /// @p speed is the number of milliseconds of an animation for each millisecond.
    explicit TourClock(int speed);
    ~TourClock() override;

    [[nodiscard]] qint64 elapsed() const override;

protected:
    void start() override;
    void stop() override;
    void timerEvent(QTimerEvent *event) override;

private:
    QBasicTimer m_timer;
    QElapsedTimer m_sinceStart;
    const int m_speed;
};
