#pragma once

#include <QtCore/QAbstractAnimation>
#include <QtCore/QBasicTimer>
#include <QtCore/QElapsedTimer>

/// Lets all animations of the application run faster than people watch them, from install() on: for the tour
/// and for tests of screens. Main thread only.
class AnimationClock final : public QAnimationDriver
{
    Q_OBJECT

public:
    /// @p speed is the number of milliseconds of an animation for each millisecond.
    explicit AnimationClock(int speed);
    ~AnimationClock() override;

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
