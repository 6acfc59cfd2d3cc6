#include "Examples/SizesStage.h"

#include <QtGui/QGuiApplication>

namespace {

constexpr QSize landscape(844, 390);
constexpr QSize small(320, 568);

} // namespace

SizesStage::SizesStage(TourRobot &robot, const QString &outputFolder)
    : TourStage(robot, outputFolder), m_usual(QGuiApplication::font())
{
}

QList<TourStage::Step> SizesStage::steps()
{
    const auto step = [this](const char *name, bool (SizesStage::*take)()) {
        return Step{name, std::bind_front(take, this)};
    };
    return {
        step("landscape-inspector", &SizesStage::landscapeInspector),
        step("landscape-breakpoints", &SizesStage::breakpoints),
        step("landscape-details", &SizesStage::details),
        step("landscape-menu", &SizesStage::menu),
        step("landscape-share-menu", &SizesStage::shareMenu),
        step("landscape-share-sheet", &SizesStage::shareSheet),
        step("landscape-tree", &SizesStage::tree),
        step("small-inspector", &SizesStage::smallInspector),
        step("small-breakpoints", &SizesStage::breakpoints),
        step("small-details", &SizesStage::details),
        step("small-menu", &SizesStage::menu),
        step("small-share-menu", &SizesStage::shareMenu),
        step("small-share-sheet", &SizesStage::shareSheet),
        step("small-tree", &SizesStage::tree),
        step("small-large-text-tree", &SizesStage::largeTextTree),
        step("small-large-text-details", &SizesStage::largeTextDetails),
        step("small-held", &SizesStage::smallHeldResponse),
        step("landscape-held", &SizesStage::landscapeHeldResponse),
    };
}

bool SizesStage::landscapeInspector()
{
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    return robot().click(name("QXSearchClearButton")) && robot().click(name("QXTrashButton")) &&
           robot().click(name("QXCloseButton")) && robot().waitUntilGone(name("QXRequestListView")) &&
           robot().click(name("profileTab")) && robot().click(name("diagnostic-notFound")) &&
           robot().click(name("diagnostic-notModified")) && robot().click(name("diagnostic-put")) &&
           robot().waitUntil([] { return captured(name("/echo"), 200); },
                             QStringLiteral("the answer was not captured")) &&
           robot().click(name("QXFloatingButton")) && robot().waitFor(name("QXRequestListView")) &&
           robot().resize(landscape) && robot().waitFor(name("QXRequestRow"));
}

bool SizesStage::breakpoints()
{
    return robot().click(name("QXBreakpointsButton")) && robot().waitFor(name("QXBreakpointRow"));
}

bool SizesStage::details()
{
    return robot().click(name("QXSheetDone")) && robot().waitUntilGone(name("QXBreakpointsListView")) &&
           openExchange("echo");
}

bool SizesStage::menu()
{
    return robot().rightClick(name("QXValueRow:Method")) && robot().waitFor(name("QXCopyValueItem"));
}

bool SizesStage::shareMenu()
{
    return robot().press(Qt::Key_Escape) && robot().waitUntilGone(name("QXContextMenuCard")) &&
           robot().click(name("QXShareButton")) && robot().waitFor(name("QXShareRawDetails"));
}

bool SizesStage::shareSheet()
{
    return robot().click(name("QXShareCurl")) && robot().waitFor(name("QXActivitySheet"));
}

bool SizesStage::tree()
{
    return robot().click(name("QXActivityDone")) && robot().waitUntilGone(name("QXActivitySheet")) &&
           openTree() && robot().click(name("QXLogTreeRow"));
}

bool SizesStage::smallInspector()
{
    return closeTree() && closeExchange() && robot().click(name("QXSearchClearButton")) &&
           robot().resize(small) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) == 3; },
                             QStringLiteral("the list did not come back"));
}

bool SizesStage::largeTextTree()
{
    doubleTextSize();
    return robot().waitFor(name("QXLogTreeRow"));
}

bool SizesStage::largeTextDetails()
{
    return closeTree() && robot().scroll(name("QXRequestDetailsPage"), -3000);
}

bool SizesStage::smallHeldResponse()
{
    QGuiApplication::setFont(m_usual);
    return closeExchange() && robot().click(name("QXCloseButton")) &&
           robot().waitUntilGone(name("QXRequestListView")) && robot().click(name("shopTab")) &&
           robot().click(name("productBackButton")) && robot().click(name("productCard-tide-mug")) &&
           robot().waitFor(name("QXBreakpointEditorView"));
}

bool SizesStage::landscapeHeldResponse()
{
    return robot().resize(landscape) && robot().waitFor(name("QXBreakpointEditorView"));
}
