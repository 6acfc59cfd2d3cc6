#include "Examples/FarewellStage.h"

#include <QtQuick/QQuickItem>

namespace {

/// The distance between the floating button and an edge of the window, in pixels.
constexpr int buttonMargin = 12;

} // namespace

QList<TourStage::Step> FarewellStage::steps()
{
    return {
        {"trash", std::bind_front(&FarewellStage::trashEmptiesList, this)},
        {"inspector-closed", std::bind_front(&FarewellStage::inspectorCloses, this)},
        {"floating-button-dragged", std::bind_front(&FarewellStage::buttonIsDragged, this)},
    };
}

bool FarewellStage::trashEmptiesList()
{
    return robot().click(name("QXTrashButton")) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) == 0; },
                             QStringLiteral("rows remain")) &&
           robot().check(capturedCount() == 0, "traces remain");
}

bool FarewellStage::inspectorCloses()
{
    return robot().click(name("QXCloseButton")) && robot().waitUntilGone(name("QXRequestListView"));
}

bool FarewellStage::buttonIsDragged()
{
    const QQuickItem *const button = robot().find(name("QXFloatingButton"));
    if (!robot().check(button, "no floating button"))
        return false;
    const auto corner = [button] {
        return button->mapToScene({button->width(), 0});
    };
    const QPointF middle = corner() + QPointF(-button->width() / 2, button->height() / 2);
    return robot().drag(name("QXFloatingButton"), QPoint(phone.width() - 1, 1) - middle.toPoint()) &&
           robot().waitUntil(
               [&] { return corner().x() == phone.width() - buttonMargin && corner().y() >= buttonMargin; },
               QStringLiteral("the button does not stop 12 points inside")) &&
           robot().drag(name("QXFloatingButton"), {0, 560});
}
