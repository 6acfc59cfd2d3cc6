#include "Examples/DemoTour.h"

#include "Examples/BreakpointStage.h"
#include "Examples/ClosingStage.h"
#include "Examples/DetailsStage.h"
#include "Examples/InspectorStage.h"
#include "Examples/LargeTextStage.h"
#include "Examples/NightStage.h"
#include "Examples/SizesStage.h"
#include "Examples/StoreStage.h"
#include "Examples/TabletStage.h"

#include <QtCore/QDir>
#include <QtCore/QTextStream>
#include <QtGui/QGuiApplication>
#include <QtGui/QStyleHints>
#include <QtQuick/QQuickWindow>

namespace {

QString pictureName(int number, const char *step)
{
    return QStringLiteral("%1-%2.png").arg(number, 3, 10, QLatin1Char('0')).arg(QLatin1StringView(step));
}

/// Switches off what ends or begins after some time by itself, because a busy machine is late: the blinking
/// cursor, the menu that a long press opens, and the store's messages, which its tabs hide as well.
void removeTimeLimits(const QQuickWindow &window)
{
    constexpr int tenMinutes = 600'000;
    QGuiApplication::styleHints()->setCursorFlashTime(0);
    QGuiApplication::styleHints()->setMousePressAndHoldInterval(tenMinutes);
    if (auto *const notice = window.findChild<QObject *>(QStringLiteral("storeNotice")))
        notice->setProperty("duration", tenMinutes);
}

} // namespace

int DemoTour::run(QQuickWindow &window, const QString &outputFolder, bool reproducible)
{
    QTextStream out(stdout);
    const QDir output(outputFolder);
    if (!output.mkpath(QStringLiteral("."))) {
        out << "cannot write to " << outputFolder << Qt::endl;
        return 1;
    }
    removeTimeLimits(window);
    TourRobot robot(window, reproducible);
    StoreStage store(robot, outputFolder);
    InspectorStage inspector(robot, outputFolder);
    DetailsStage details(robot, outputFolder);
    BreakpointStage breakpoint(robot, outputFolder);
    ClosingStage closing(robot, outputFolder);
    NightStage night(robot, outputFolder);
    TabletStage tablet(robot, outputFolder);
    LargeTextStage largeText(robot, outputFolder);
    SizesStage sizes(robot, outputFolder);

    int number = 0;
    int failures = 0;
    for (const auto &step : store.steps() + inspector.steps() + details.steps() + breakpoint.steps() +
                                closing.steps() + night.steps() + tablet.steps() + largeText.steps() +
                                sizes.steps()) {
        const QString picture = pictureName(++number, step.name);
        const bool succeeded = step.take();
        const QString complaint = succeeded ? QString() : robot.complaint();
        const bool saved = robot.screenshot(output.filePath(picture));
        failures += !succeeded || !saved;
        out << (succeeded && saved ? "ok      " : "FAILED  ") << picture;
        if (!succeeded || !saved)
            out << ": " << (succeeded ? robot.complaint() : complaint);
        out << Qt::endl;
    }
    out << number - failures << " of " << number << " steps succeeded" << Qt::endl;
    return failures ? 1 : 0;
}
