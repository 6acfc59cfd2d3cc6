#include "Examples/LargeTextStage.h"

#include <QtGui/QGuiApplication>

LargeTextStage::LargeTextStage(TourRobot &robot, const QString &outputFolder)
    : TourStage(robot, outputFolder), m_usual(QGuiApplication::font())
{
}

QList<TourStage::Step> LargeTextStage::steps()
{
    return {
        {"large-text-tree", std::bind_front(&LargeTextStage::tree, this)},
        {"large-text-details", std::bind_front(&LargeTextStage::details, this)},
        {"large-text-menu", std::bind_front(&LargeTextStage::menu, this)},
        {"large-text-alert", std::bind_front(&LargeTextStage::alert, this)},
        {"large-text-share-menu", std::bind_front(&LargeTextStage::shareMenu, this)},
        {"large-text-inspector", std::bind_front(&LargeTextStage::inspector, this)},
        {"large-text-breakpoints", std::bind_front(&LargeTextStage::breakpoints, this)},
        {"large-text-held", std::bind_front(&LargeTextStage::heldResponse, this)},
        {"mirrored-held", std::bind_front(&LargeTextStage::mirroredHeldResponse, this)},
        {"mirrored-inspector", std::bind_front(&LargeTextStage::mirroredInspector, this)},
        {"mirrored-details", std::bind_front(&LargeTextStage::mirroredDetails, this)},
        {"mirrored-menu", std::bind_front(&LargeTextStage::mirroredMenu, this)},
        {"mirrored-tree", std::bind_front(&LargeTextStage::mirroredTree, this)},
        {"mirrored-search", std::bind_front(&LargeTextStage::mirroredSearch, this)},
    };
}

bool LargeTextStage::tree()
{
    doubleTextSize();
    return robot().resize(phone) && robot().waitFor(name("QXLogTreeRow"));
}

bool LargeTextStage::details()
{
    return closeTree() && robot().scroll(name("QXRequestDetailsPage"), -3000);
}

bool LargeTextStage::menu()
{
    return robot().rightClick(name("QXValueRow:Method")) && robot().waitFor(name("QXCopyValueItem"));
}

bool LargeTextStage::alert()
{
    return robot().click(name("QXCopyValueItem")) && robot().waitFor(name("QXAlert"));
}

bool LargeTextStage::shareMenu()
{
    return robot().click(name("QXAlertButton")) && robot().waitUntilGone(name("QXAlert")) &&
           robot().click(name("QXShareButton")) && robot().waitFor(name("QXShareRawDetails"));
}

bool LargeTextStage::inspector()
{
    return robot().press(Qt::Key_Escape) && robot().waitUntilGone(name("QXShareRawDetails")) &&
           closeExchange() && robot().waitFor(name("QXRequestRow"));
}

bool LargeTextStage::breakpoints()
{
    return robot().click(name("QXBreakpointsButton")) && robot().waitFor(name("QXBreakpointRow"));
}

bool LargeTextStage::heldResponse()
{
    return robot().click(name("QXSheetDone")) && robot().waitUntilGone(name("QXBreakpointsListView")) &&
           robot().click(name("QXCloseButton")) && robot().waitUntilGone(name("QXRequestListView")) &&
           robot().click(name("productBackButton")) && robot().click(name("productCard-tide-mug")) &&
           robot().waitFor(name("QXBreakpointEditorView"));
}

bool LargeTextStage::mirroredHeldResponse()
{
    QGuiApplication::setFont(m_usual);
    QGuiApplication::setLayoutDirection(Qt::RightToLeft);
    return robot().waitFor(name("QXBreakpointEditorView"));
}

bool LargeTextStage::mirroredInspector()
{
    return robot().click(name("QXContinueButton")) && robot().waitUntilGone(name("QXBreakpointEditorView")) &&
           robot().click(name("QXFloatingButton")) && robot().waitFor(name("QXRequestListView")) &&
           robot().waitFor(name("QXRequestRow"));
}

bool LargeTextStage::mirroredDetails()
{
    return robot().click(name("QXRequestRow")) && robot().waitFor(name("QXBreakpointSwitch"));
}

bool LargeTextStage::mirroredMenu()
{
    return robot().rightClick(name("QXValueRow:Method")) && robot().waitFor(name("QXCopyValueItem"));
}

bool LargeTextStage::mirroredTree()
{
    return robot().press(Qt::Key_Escape) && robot().waitUntilGone(name("QXContextMenuCard")) && openTree() &&
           robot().click(name("QXLogTreeRow"));
}

bool LargeTextStage::mirroredSearch()
{
    return closeTree() && closeExchange() && robot().type(name("QXSearchField"), QStringLiteral("products/"));
}
