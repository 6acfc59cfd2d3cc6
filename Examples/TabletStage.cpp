#include "Examples/TabletStage.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

namespace {

constexpr QSize tablet(1024, 768);

} // namespace

QList<TourStage::Step> TabletStage::steps()
{
    return {
        {"wide-tree", std::bind_front(&TabletStage::tree, this)},
        {"wide-details", std::bind_front(&TabletStage::details, this)},
        {"wide-inspector", std::bind_front(&TabletStage::inspector, this)},
        {"wide-breakpoints", std::bind_front(&TabletStage::breakpoints, this)},
        {"wide-catalogue", std::bind_front(&TabletStage::catalogue, this)},
        {"wide-held", std::bind_front(&TabletStage::heldResponse, this)},
        {"wide-product", std::bind_front(&TabletStage::product, this)},
        {"wide-day-inspector", std::bind_front(&TabletStage::inspectorByDay, this)},
        {"wide-day-details", std::bind_front(&TabletStage::detailsByDay, this)},
        {"wide-day-menu", std::bind_front(&TabletStage::menuByDay, this)},
        {"wide-day-share-menu", std::bind_front(&TabletStage::shareMenuByDay, this)},
        {"wide-day-share-sheet", std::bind_front(&TabletStage::shareSheetByDay, this)},
        {"wide-day-tree", std::bind_front(&TabletStage::treeByDay, this)},
    };
}

bool TabletStage::tree()
{
    return robot().resize(tablet);
}

bool TabletStage::details()
{
    return closeTree() && robot().show(name("QXBreakpointSwitch")) &&
           robot().click(name("QXBreakpointSwitch"));
}

bool TabletStage::inspector()
{
    return closeExchange() && robot().click(name("QXSearchClearButton")) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) >= 4; },
                             QStringLiteral("the list did not come back"));
}

bool TabletStage::breakpoints()
{
    return robot().click(name("QXBreakpointsButton")) && robot().waitFor(name("QXBreakpointRow"));
}

bool TabletStage::catalogue()
{
    return robot().click(name("QXSheetDone")) && robot().waitUntilGone(name("QXBreakpointsListView")) &&
           robot().click(name("QXCloseButton")) && robot().waitUntilGone(name("QXRequestListView")) &&
           robot().click(name("shopTab")) && robot().click(name("productBackButton")) &&
           robot().waitFor(name("productCard-fjord-vase"));
}

bool TabletStage::heldResponse()
{
    return robot().click(name("productCard-tide-mug")) && robot().waitFor(name("QXBreakpointEditorView"));
}

bool TabletStage::product()
{
    return robot().click(name("QXContinueButton")) && robot().waitUntilGone(name("QXBreakpointEditorView")) &&
           robot().waitFor(name("addToCartButton"));
}

bool TabletStage::inspectorByDay()
{
    QGuiApplication::setPalette(QPalette());
    return robot().click(name("QXFloatingButton")) && robot().waitFor(name("QXRequestListView")) &&
           robot().waitFor(name("QXRequestRow"));
}

bool TabletStage::detailsByDay()
{
    return robot().click(name("QXRequestRow")) && robot().waitFor(name("QXBreakpointSwitch"));
}

bool TabletStage::menuByDay()
{
    return robot().rightClick(name("QXValueRow:Method")) && robot().waitFor(name("QXCopyValueItem"));
}

bool TabletStage::shareMenuByDay()
{
    return robot().press(Qt::Key_Escape) && robot().waitUntilGone(name("QXContextMenuCard")) &&
           robot().click(name("QXShareButton")) && robot().waitFor(name("QXShareRawDetails"));
}

bool TabletStage::shareSheetByDay()
{
    return robot().click(name("QXShareCurl")) && robot().waitFor(name("QXActivitySheet"));
}

bool TabletStage::treeByDay()
{
    return robot().click(name("QXActivityDone")) && robot().waitUntilGone(name("QXActivitySheet")) &&
           openTree() && robot().click(name("QXLogTreeRow"));
}
