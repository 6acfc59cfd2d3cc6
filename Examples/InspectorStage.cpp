#include "Examples/InspectorStage.h"

#include "Examples/TourSummary.h"

#include <QtCore/QDir>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtQuick/QQuickItem>

namespace {

using namespace std::chrono_literals;

constexpr auto exportLimit = 20s;
/// How near the floating button comes to an edge.
constexpr int buttonMargin = 12;

} // namespace

QList<TourStage::Step> InspectorStage::steps()
{
    return {
        {"inspector", std::bind_front(&InspectorStage::inspectorOpens, this)},
        {"inspector-scrolled", std::bind_front(&InspectorStage::listScrolls, this)},
        {"inspector-search", std::bind_front(&InspectorStage::searchNarrowsList, this)},
        {"inspector-no-match", std::bind_front(&InspectorStage::searchFindsNothing, this)},
        {"details", std::bind_front(&InspectorStage::detailsOpen, this)},
        {"details-back", std::bind_front(&InspectorStage::detailsClose, this)},
        {"breakpoints", std::bind_front(&InspectorStage::breakpointsOpen, this)},
        {"breakpoints-closed", std::bind_front(&InspectorStage::breakpointsClose, this)},
        {"export", std::bind_front(&InspectorStage::exportShares, this)},
        {"export-file", std::bind_front(&InspectorStage::exportedFileIsComplete, this)},
        {"summary", std::bind_front(&InspectorStage::summaryIsWritten, this)},
        {"trash", std::bind_front(&InspectorStage::trashEmptiesList, this)},
        {"inspector-closed", std::bind_front(&InspectorStage::inspectorCloses, this)},
        {"floating-button-dragged", std::bind_front(&InspectorStage::buttonIsDragged, this)},
    };
}

bool InspectorStage::inspectorOpens()
{
    return robot().check(capturedCount() > 30, "too little was captured") &&
           robot().waitUntil([this] { return !robot().text(name("QXBadgeLabel")).isEmpty(); },
                             QStringLiteral("the badge is empty")) &&
           robot().click(name("QXFloatingButton")) && robot().waitFor(name("QXRequestListView")) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) >= 5; },
                             QStringLiteral("the list has no rows"));
}

bool InspectorStage::listScrolls()
{
    const QQuickItem *const list = robot().find(name("QXRequestList"));
    return robot().check(list, "no list") && robot().scroll(name("QXRequestList"), 900) &&
           robot().waitUntil([list] { return list->property("contentY").toDouble() > 200; },
                             QStringLiteral("the list does not scroll"));
}

bool InspectorStage::searchNarrowsList()
{
    return robot().type(name("QXSearchField"), QStringLiteral("products")) &&
           robot().waitUntil(
               [this] {
                   const QQuickItem *const list = robot().find(name("QXRequestList"));
                   const int rows = list ? list->property("count").toInt() : 0;
                   return rows > 0 && rows < capturedCount();
               },
               QStringLiteral("the search does not narrow the list"));
}

bool InspectorStage::searchFindsNothing()
{
    return robot().click(name("QXSearchClearButton")) &&
           robot().type(name("QXSearchField"), QStringLiteral("{no such}")) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) == 0; },
                             QStringLiteral("rows remain"));
}

bool InspectorStage::detailsOpen()
{
    return robot().click(name("QXSearchClearButton")) &&
           robot().type(name("QXSearchField"), QStringLiteral("profile")) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) == 1; },
                             QStringLiteral("not one row")) &&
           robot().click(name("QXRequestRow")) && robot().waitFor(name("QXRequestDetailsView"));
}

bool InspectorStage::detailsClose()
{
    return robot().click(name("QXBackButton")) && robot().waitUntilGone(name("QXRequestDetailsView")) &&
           robot().click(name("QXSearchClearButton")) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) >= 5; },
                             QStringLiteral("the list did not come back"));
}

bool InspectorStage::breakpointsOpen()
{
    return robot().click(name("QXBreakpointsButton")) && robot().waitFor(name("QXBreakpointsListView"));
}

bool InspectorStage::breakpointsClose()
{
    return robot().click(name("QXSheetDone")) && robot().waitUntilGone(name("QXBreakpointsListView"));
}

bool InspectorStage::exportShares()
{
    return robot().click(name("QXExportButton")) && robot().waitFor(name("QXActivitySheet"), exportLimit);
}

bool InspectorStage::exportedFileIsComplete()
{
    const QFileInfoList files =
        QDir::temp().entryInfoList({QStringLiteral("Quorvix-export-*.har")}, QDir::Files, QDir::Time);
    if (!robot().check(!files.isEmpty() && files.first().lastModified() >= started().addSecs(-1),
                       "no file was exported"))
        return false;
    const QString copy = outputFile(QStringLiteral("quorvix-export.har"));
    QFile::remove(copy);
    QFile file(copy);
    if (!robot().check(QFile::copy(files.first().filePath(), copy) && file.open(QIODevice::ReadOnly),
                       "cannot copy it"))
        return false;
    const QJsonValue log = QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("log"));
    return robot().check(log[QStringLiteral("version")] == QStringLiteral("1.2"), "the file is no HAR 1.2") &&
           robot().check(log[QStringLiteral("entries")].toArray().size() == capturedCount(),
                         "the file is not complete") &&
           robot().click(name("QXActivityDone")) && robot().waitUntilGone(name("QXActivitySheet"));
}

bool InspectorStage::summaryIsWritten()
{
    return robot().check(writeTourSummary(outputFile(QStringLiteral("summary.txt"))),
                         "cannot write the summary");
}

bool InspectorStage::trashEmptiesList()
{
    return robot().click(name("QXTrashButton")) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) == 0; },
                             QStringLiteral("rows remain")) &&
           robot().check(capturedCount() == 0, "traces remain");
}

bool InspectorStage::inspectorCloses()
{
    return robot().click(name("QXCloseButton")) && robot().waitUntilGone(name("QXRequestListView"));
}

bool InspectorStage::buttonIsDragged()
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
