#include "Examples/DetailsStage.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickItem>

namespace {

using namespace std::chrono_literals;

/// The time limit for steps that process 10 MB, also on a busy machine.
constexpr auto largeBodyLimit = 180s;

} // namespace

QList<TourStage::Step> DetailsStage::steps()
{
    return {
        {"details", std::bind_front(&DetailsStage::profileOpens, this)},
        {"details-menu", std::bind_front(&DetailsStage::headerHasMenu, this)},
        {"details-decoded", std::bind_front(&DetailsStage::tokenIsDecoded, this)},
        {"details-copied", std::bind_front(&DetailsStage::valueIsCopied, this)},
        {"share-menu", std::bind_front(&DetailsStage::shareMenuOpens, this)},
        {"share-curl",
         [this] {
             return share("QXShareCurl");
         }},
        {"share-har",
         [this] {
             return closeShareSheet() && share("QXShareHarFile");
         }},
        {"share-mock",
         [this] {
             return closeShareSheet() && share("QXShareMockServerFile");
         }},
        {"share-model",
         [this] {
             return closeShareSheet() && share("QXShareSwiftModel");
         }},
        {"share-raw",
         [this] {
             return closeShareSheet() && share("QXShareRawDetails");
         }},
        {"tree", std::bind_front(&DetailsStage::treeOpens, this)},
        {"tree-menu", std::bind_front(&DetailsStage::treeHasMenu, this)},
        {"tree-find", std::bind_front(&DetailsStage::treeIsSearched, this)},
        {"tree-share", std::bind_front(&DetailsStage::treeIsShared, this)},
        {"tree-unfolded", std::bind_front(&DetailsStage::rowUnfolds, this)},
        {"tree-decoded", std::bind_front(&DetailsStage::rowIsDecoded, this)},
        {"cookies", std::bind_front(&DetailsStage::groupsUnfold, this)},
        {"large-body", std::bind_front(&DetailsStage::largeBodyOpens, this)},
        {"large-body-scrolled", std::bind_front(&DetailsStage::largeBodyScrolls, this)},
        {"large-body-find", std::bind_front(&DetailsStage::largeBodyIsSearched, this)},
        {"large-tree", std::bind_front(&DetailsStage::largeTreeOpens, this)},
        {"binary-body", std::bind_front(&DetailsStage::binaryBodyOpens, this)},
        {"tree-failure", std::bind_front(&DetailsStage::bytesAreNoTree, this)},
        {"failure", std::bind_front(&DetailsStage::failureOpens, this)},
        {"details-closed", std::bind_front(&DetailsStage::detailsClose, this)},
    };
}

bool DetailsStage::share(const char *action)
{
    return (robot().find(name(action)) || robot().click(name("QXShareButton"))) &&
           robot().click(name(action)) && robot().waitFor(name("QXActivitySheet"));
}

bool DetailsStage::closeShareSheet()
{
    return robot().click(name("QXActivityDone")) && robot().waitUntilGone(name("QXActivitySheet"));
}

bool DetailsStage::find(const char *text)
{
    return robot().press(Qt::Key_F, Qt::ControlModifier) && robot().waitFor(name("QXFindBar")) &&
           robot().type(name("QXFindField"), name(text)) &&
           robot().waitUntil(
               [this] { return robot().text(name("QXFindCount")).contains(QStringLiteral(" of ")); },
               QStringLiteral("the text is not found"), largeBodyLimit);
}

bool DetailsStage::profileOpens()
{
    return closeShareSheet() && openExchange("profile");
}

bool DetailsStage::headerHasMenu()
{
    return robot().rightClick(name("QXValueRow:Authorization")) && robot().waitFor(name("QXDecodeValueItem"));
}

bool DetailsStage::tokenIsDecoded()
{
    return robot().click(name("QXDecodeValueItem")) && robot().waitFor(name("QXDecodedPayloadSheet"));
}

bool DetailsStage::valueIsCopied()
{
    return robot().press(Qt::Key_Escape) && robot().waitUntilGone(name("QXDecodedPayloadSheet")) &&
           robot().rightClick(name("QXValueRow:URL")) && robot().click(name("QXCopyValueItem")) &&
           robot().waitFor(name("QXAlert")) &&
           robot().check(QGuiApplication::clipboard()->text().endsWith(QStringLiteral("/api/v1/profile")),
                         "the URL is not on the clipboard");
}

bool DetailsStage::shareMenuOpens()
{
    return robot().click(name("QXAlertButton")) && robot().waitUntilGone(name("QXAlert")) &&
           robot().click(name("QXShareButton")) && robot().waitFor(name("QXShareRawDetails"));
}

bool DetailsStage::treeOpens()
{
    return closeShareSheet() && openTree() && robot().click(name("QXLogTreeRow")) &&
           robot().waitFor(name("QXLogTreeRow:addresses")) && robot().click(name("QXLogTreeRow:addresses")) &&
           robot().click(name("QXLogTreeRow:[0]")) && robot().waitFor(name("QXLogTreeRow:city"));
}

bool DetailsStage::treeHasMenu()
{
    return robot().rightClick(name("QXLogTreeRow:city")) && robot().click(name("QXCopyRowItem")) &&
           robot().waitUntil(
               [] { return QGuiApplication::clipboard()->text() == QStringLiteral("city: \"Galway\""); },
               QStringLiteral("the row is not on the clipboard")) &&
           robot().rightClick(name("QXLogTreeRow:city")) && robot().waitFor(name("QXContextMenuCard"));
}

bool DetailsStage::treeIsSearched()
{
    return robot().press(Qt::Key_Escape) && robot().waitUntilGone(name("QXContextMenuCard")) &&
           find("galway");
}

bool DetailsStage::treeIsShared()
{
    return robot().click(name("QXFindClose")) && robot().waitUntilGone(name("QXFindBar")) &&
           robot().click(name("QXShareModelButton")) && robot().waitFor(name("QXActivitySheet"));
}

bool DetailsStage::rowUnfolds()
{
    return closeShareSheet() && closeTree() && closeExchange() && openExchange("session") && openTree() &&
           robot().click(name("QXLogTreeRow")) && robot().click(name("QXLogTreeRow:token"));
}

bool DetailsStage::rowIsDecoded()
{
    return robot().rightClick(name("QXLogTreeRow:token")) && robot().click(name("QXDecodeItem")) &&
           robot().waitFor(name("QXDecodedPayloadSheet"));
}

bool DetailsStage::groupsUnfold()
{
    return robot().click(name("QXDecodedPayloadDone")) &&
           robot().waitUntilGone(name("QXDecodedPayloadSheet")) && closeTree() && closeExchange() &&
           openExchange("set-cookies") && robot().click(name("QXDisclosureGroup:RESPONSE COOKIES")) &&
           robot().click(name("QXDisclosureGroup:RESPONSE CACHE"));
}

bool DetailsStage::largeBodyOpens()
{
    return closeExchange() && openExchange("export") &&
           robot().waitFor(name("QXBodyBlock"), largeBodyLimit) &&
           robot().scroll(name("QXRequestDetailsPage"), 700);
}

bool DetailsStage::largeBodyScrolls()
{
    return robot().scroll(name("QXRequestDetailsPage"), 4000);
}

bool DetailsStage::largeBodyIsSearched()
{
    return find("customer");
}

bool DetailsStage::largeTreeOpens()
{
    return robot().click(name("QXFindClose")) && robot().waitUntilGone(name("QXFindBar")) && openTree() &&
           robot().click(name("QXLogTreeRow")) && robot().waitFor(name("QXLogTreeRow:orders")) &&
           robot().click(name("QXLogTreeRow:orders")) && robot().waitFor(name("QXLogTreeRow:[3]")) &&
           robot().click(name("QXLogTreeRow:[1]"));
}

bool DetailsStage::binaryBodyOpens()
{
    return closeTree() && closeExchange() && openExchange("binary") &&
           robot().show(name("QXLogTreeButton")) && robot().scroll(name("QXRequestDetailsPage"), 900);
}

bool DetailsStage::bytesAreNoTree()
{
    return robot().click(name("QXLogTreeButton")) && robot().waitFor(name("QXLogTreeFailureText"));
}

bool DetailsStage::failureOpens()
{
    return closeTree() && closeExchange() && openExchange("drop-midway") &&
           robot().show(name("QXValueRow:Code"));
}

bool DetailsStage::detailsClose()
{
    return closeExchange() && robot().click(name("QXSearchClearButton")) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) >= 5; },
                             QStringLiteral("the list did not come back"));
}
