#include "Examples/BreakpointStage.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickItem>

namespace {

const QString productName = QStringLiteral("Fjord Vase");
const QString editedName = QStringLiteral("Edited on the Way");

} // namespace

QList<TourStage::Step> BreakpointStage::steps()
{
    return {
        {"breakpoint-set", std::bind_front(&BreakpointStage::breakpointIsSet, this)},
        {"breakpoint-listed", std::bind_front(&BreakpointStage::breakpointIsListed, this)},
        {"breakpoint-held", std::bind_front(&BreakpointStage::responseIsHeld, this)},
        {"breakpoint-edited", std::bind_front(&BreakpointStage::responseIsEdited, this)},
        {"breakpoint-applied", std::bind_front(&BreakpointStage::storeShowsTheEdit, this)},
        {"breakpoint-deleted", std::bind_front(&BreakpointStage::breakpointIsDeleted, this)},
        {"breakpoints-closed", std::bind_front(&BreakpointStage::breakpointsClose, this)},
    };
}

bool BreakpointStage::breakpointIsSet()
{
    return robot().type(name("QXSearchField"), QStringLiteral("products/fjord-vase")) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) == 1; },
                             QStringLiteral("not one row")) &&
           robot().click(name("QXRequestRow")) && robot().click(name("QXBreakpointSwitch")) &&
           robot().waitUntil(
               [this] {
                   const QQuickItem *const toggle = robot().find(name("QXBreakpointSwitch"));
                   return toggle && toggle->property("checked").toBool();
               },
               QStringLiteral("the switch is not on"));
}

bool BreakpointStage::breakpointIsListed()
{
    return robot().click(name("QXBackButton")) && robot().waitUntilGone(name("QXRequestDetailsView")) &&
           robot().click(name("QXSearchClearButton")) && robot().click(name("QXBreakpointsButton")) &&
           robot().waitFor(name("QXBreakpointRow"));
}

bool BreakpointStage::responseIsHeld()
{
    return robot().click(name("QXSheetDone")) && robot().waitUntilGone(name("QXBreakpointsListView")) &&
           robot().click(name("QXCloseButton")) && robot().waitUntilGone(name("QXRequestListView")) &&
           robot().click(name("shopTab")) && robot().click(name("productBackButton")) &&
           robot().click(name("productCard-fjord-vase")) && robot().waitFor(name("QXBreakpointEditorView"));
}

bool BreakpointStage::responseIsEdited()
{
    QString body = robot().text(name("QXTextEditor"));
    return robot().check(body.contains(productName), "another response is held") &&
           robot().click(name("QXCopyBodyButton")) &&
           robot().check(QGuiApplication::clipboard()->text() == body, "the body is not on the clipboard") &&
           robot().click(name("QXDeleteBodyButton")) &&
           robot().waitUntil([this] { return robot().text(name("QXTextEditor")).isEmpty(); },
                             QStringLiteral("the body is not deleted")) &&
           robot().paste(name("QXTextEditor"), body.replace(productName, editedName));
}

bool BreakpointStage::storeShowsTheEdit()
{
    return robot().click(name("QXApplyButton")) && robot().waitUntilGone(name("QXBreakpointEditorView")) &&
           robot().waitUntil([this] { return robot().text(name("productName")) == editedName; },
                             QStringLiteral("the store does not show what was edited"));
}

bool BreakpointStage::breakpointIsDeleted()
{
    return robot().click(name("QXFloatingButton")) && robot().click(name("QXBreakpointsButton")) &&
           robot().show(name("QXBreakpointRow")) && robot().drag(name("QXBreakpointRow"), {-320, 0}) &&
           robot().waitFor(name("QXNoBreakpoints"));
}

bool BreakpointStage::breakpointsClose()
{
    return robot().click(name("QXSheetDone")) && robot().waitUntilGone(name("QXBreakpointsListView"));
}
