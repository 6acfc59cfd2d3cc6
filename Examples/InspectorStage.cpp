#include "Examples/InspectorStage.h"

#include "Examples/TourSummary.h"

#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QMetaProperty>
#include <QtCore/QUrl>
#include <QtQuick/QQuickItem>

namespace {

using namespace std::chrono_literals;

constexpr auto exportLimit = 180s;

/// The path of the file that a share sheet shares. The type of what it shares is the inspector's own.
QString sharedFile(const QQuickItem &sheet)
{
    const QVariant shared = sheet.property("shareItem");
    const QMetaObject *const type = shared.metaType().metaObject();
    const int items = type ? type->indexOfProperty("activityItems") : -1;
    return items < 0 ? QString()
                     : type->property(items)
                           .readOnGadget(shared.constData())
                           .toList()
                           .value(0)
                           .toUrl()
                           .toLocalFile();
}

} // namespace

QList<TourStage::Step> InspectorStage::steps()
{
    return {
        {"inspector", std::bind_front(&InspectorStage::inspectorOpens, this)},
        {"inspector-scrolled", std::bind_front(&InspectorStage::listScrolls, this)},
        {"inspector-search", std::bind_front(&InspectorStage::searchNarrowsList, this)},
        {"inspector-no-match", std::bind_front(&InspectorStage::searchFindsNothing, this)},
        {"export", std::bind_front(&InspectorStage::exportShares, this)},
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

bool InspectorStage::searchIsLeft()
{
    return robot().click(name("QXSearchClearButton")) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) >= 5; },
                             QStringLiteral("the list did not come back"));
}

bool InspectorStage::exportShares()
{
    return searchIsLeft() && robot().click(name("QXExportButton")) &&
           robot().waitFor(name("QXActivitySheet"), exportLimit) && exportedFileIsComplete() &&
           robot().check(writeTourSummary(outputFile(QStringLiteral("summary.txt"))),
                         "cannot write the summary");
}

bool InspectorStage::exportedFileIsComplete()
{
    const QQuickItem *const sheet = robot().find(name("QXActivitySheet"));
    const QFileInfo exported(sheet ? sharedFile(*sheet) : QString());
    if (!robot().check(exported.isFile() && exported.lastModified() >= started().addSecs(-1),
                       "no file was exported"))
        return false;
    const QString copy = outputFile(QStringLiteral("quorvix-export.har"));
    QFile::remove(copy);
    QFile file(copy);
    if (!robot().check(QFile::copy(exported.filePath(), copy) && file.open(QIODevice::ReadOnly),
                       "cannot copy it"))
        return false;
    const QJsonValue log = QJsonDocument::fromJson(file.readAll()).object().value(QStringLiteral("log"));
    return robot().check(log[QStringLiteral("version")] == QStringLiteral("1.2"), "the file is no HAR 1.2") &&
           robot().check(log[QStringLiteral("entries")].toArray().size() == capturedCount(),
                         "the file is not complete");
}
