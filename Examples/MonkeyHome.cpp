#include "Examples/MonkeyHome.h"

#include "Examples/MonkeyGuard.h"
#include "Examples/TourRobot.h"
#include "Examples/VisibleItems.h"

#include <QtCore/QDeadlineTimer>
#include <QtQuick/QQuickWindow>
#include <QtTest/QTest>

#include <utility>

namespace {

using namespace std::chrono_literals;

constexpr auto limit = 120s;

/// How a user leaves a screen.
struct Exit
{
    const char *screen;
    /// The button to click; null to press Escape.
    const char *button;
};

constexpr Exit exits[] = {
    {"QXBreakpointEditorView", "QXContinueButton"},
    {"QXAlert", "QXAlertButton"},
    {"QXContextMenuCard", nullptr},
    {"QXConfirmationDialog", nullptr},
    {"QXActivitySheet", "QXActivityDone"},
    {"QXDecodedPayloadSheet", "QXDecodedPayloadDone"},
    {"QXBreakpointsListView", "QXSheetDone"},
    {"QXRequestDetailsView", "QXBackButton"},
    {"QXLogTreeView", "QXBackButton"},
    {"QXRequestListView", "QXCloseButton"},
};

/// The exit of the screen that is painted last; null when none is visible.
const Exit *frontmost(QQuickWindow &window)
{
    const Exit *found = nullptr;
    visitVisible(window.contentItem(), [&found](const QQuickItem *item) {
        for (const Exit &exit : exits) {
            if (item->objectName() == QLatin1StringView(exit.screen))
                found = &exit;
        }
    });
    return found;
}

QString visibleNames(QQuickWindow &window)
{
    QStringList names;
    visitVisible(window.contentItem(), [&names](const QQuickItem *item) {
        if (item->objectName().startsWith(QStringLiteral("QX")) && !names.contains(item->objectName()))
            names += item->objectName();
    });
    return names.join(u' ');
}

void take(QQuickWindow &window, const Exit &exit)
{
    TourRobot robot(window);
    const QString button = QString::fromLatin1(exit.button);
    QQuickItem *const item = exit.button ? robot.find(button) : nullptr;
    if (!item || !item->isEnabled()) {
        robot.press(Qt::Key_Escape);
        return;
    }
    const QPointF middle = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
    QTest::mouseClick(&window, Qt::LeftButton, {}, middle.toPoint());
}

} // namespace

bool MonkeyHome::leaveAll(QQuickWindow &window, const std::function<bool()> &isQuiet)
{
    const auto isHome = [&] {
        return !frontmost(window) && isQuiet();
    };
    for (const QDeadlineTimer end(limit); !end.hasExpired();) {
        // A screen that still disappears gets another click only after a moment.
        if (QTest::qWaitFor(isHome, 300))
            return true;
        if (const Exit *const exit = frontmost(window))
            take(window, *exit);
    }
    MonkeyGuard::complain(QStringLiteral("no way back to the host; visible are: ") + visibleNames(window));
    return false;
}

bool MonkeyHome::deleteRules(QQuickWindow &window, const std::function<bool()> &isQuiet)
{
    TourRobot robot(window);
    const auto name = [](const char *text) {
        return QString::fromLatin1(text);
    };
    const auto rows = [&] {
        const QQuickItem *const last = robot.find(name("QXBreakpointRow"));
        return std::pair(robot.count(name("QXBreakpointRow")),
                         last ? last->property("displayText").toString() : QString());
    };
    // The button must not cover the row that is to be deleted.
    bool deleted = robot.waitFor(name("QXFloatingButton")) &&
                   robot.drag(name("QXFloatingButton"), {window.width(), window.height()}) &&
                   robot.click(name("QXFloatingButton")) && robot.click(name("QXBreakpointsButton")) &&
                   robot.waitFor(name("QXBreakpointsListView"));
    const QString editor = name("QXBreakpointEditorView");
    while (deleted && robot.find(name("QXBreakpointRow"))) {
        // A response that arrives now is held, and its editor covers the rules.
        if (robot.find(editor)) {
            take(window, exits[0]);
            deleted = robot.waitUntilGone(editor);
            continue;
        }
        const auto before = rows();
        deleted =
            (robot.find(name("QXBreakpointMinusButton")) || robot.click(name("QXBreakpointsEditButton"))) &&
            robot.clickFirst(name("QXBreakpointMinusButton")) &&
            robot.waitUntil([&] { return rows() != before || robot.find(editor); },
                            QStringLiteral("the rule remains"));
    }
    if (!deleted)
        MonkeyGuard::complain(QStringLiteral("cannot delete the rules: ") + robot.complaint() +
                              QStringLiteral("; visible are: ") + visibleNames(window));
    return leaveAll(window, isQuiet) && deleted;
}
