#include "Examples/ClosingStage.h"

#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

namespace {

/// The distance between the floating button and an edge of the window, in pixels.
constexpr int buttonMargin = 12;

} // namespace

QList<TourStage::Step> ClosingStage::steps()
{
    return {
        {"trash", std::bind_front(&ClosingStage::trashEmptiesList, this)},
        {"inspector-closed", std::bind_front(&ClosingStage::inspectorCloses, this)},
        {"floating-button-dragged", std::bind_front(&ClosingStage::buttonIsDragged, this)},
    };
}

bool ClosingStage::trashEmptiesList()
{
    return robot().click(name("QXTrashButton")) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) == 0; },
                             QStringLiteral("rows remain")) &&
           robot().check(capturedCount() == 0, "traces remain");
}

bool ClosingStage::inspectorCloses()
{
    return robot().click(name("QXCloseButton")) && robot().waitUntilGone(name("QXRequestListView"));
}

bool ClosingStage::buttonIsDragged()
{
    const QQuickItem *const button = robot().find(name("QXFloatingButton"));
    if (!robot().check(button, "no floating button"))
        return false;
    const auto corner = [button] {
        return button->mapToScene({button->width(), 0});
    };
    const QPointF middle = corner() + QPointF(-button->width() / 2, button->height() / 2);
    const int end = button->window()->width(); // not always what the stage asked for
    return robot().drag(name("QXFloatingButton"), QPoint(end - 1, 1) - middle.toPoint()) &&
           robot().waitUntil(
               [&] { return corner().x() == end - buttonMargin && corner().y() >= buttonMargin; },
               QStringLiteral("the button does not stop 12 points inside")) &&
           robot().drag(name("QXFloatingButton"), {0, 560});
}
