#include "Tests/Exchanges.h"
#include "Tests/ScreenTest.h"

#include "Quorvix/QXOverlay.h"
#include "Quorvix/QXRequestDetailsViewModel.h"

#include <QtCore/QPointer>
#include <QtCore/QScopeGuard>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using ScreenDriver::middle;

class RequestDetailsScreenTest : public ScreenTest
{
    Q_OBJECT

private Q_SLOTS:
    void menuIsOpenedByEveryMeans_data();
    void menuIsOpenedByEveryMeans();
    void menuStaysInsideTheWindow();
    void menusDecodeAndCopy();
    void groupsUnfold();
    void breakpointSwitch();
    void withoutUrlSwitchAndExportFail();
    void shareMenuCancelsAndShares();
    void runningExchangesShowWhatHasArrived();
    void pagesGoWithTheirModels();
    void controlsAreReachedNamedAndLargeEnough();
    void largeTextsAreShownWhole();
    void rowsGrowWithTheText();

private:
    void openDetails(const QString &url = u"https://shop.test/v1/users/42"_s,
                     const QByteArray &body = "{\"b\":1,\"a\":[2]}");
    [[nodiscard]] QQuickItem *row(const QString &label) { return find("QXValueRow", "label", label); }
    [[nodiscard]] QXRequestDetailsViewModel *model();
    void reveal(const QQuickItem &item);
    void openMenu(const QQuickItem &item);
};

void RequestDetailsScreenTest::openDetails(const QString &url, const QByteArray &body)
{
    URLRequest request = Exchanges::makeRequest(url);
    request.allHTTPHeaderFields = {{u"Accept"_s, u"text/html"_s},
                                   {u"X-Name-That-Wraps"_s, u"words that wrap"_s},
                                   {u"Authorization"_s, u"eyJ1c2VyIjoic29tZW9uZSJ9"_s}};
    QXRequestRecorder::shared().record(u"id"_s, request);
    Exchanges::complete(u"id"_s, 200, body);
    click("QXFloatingButton");
    click("QXRequestRow");
    QVERIFY(waitFor("QXRequestDetailsView"));
}

QXRequestDetailsViewModel *RequestDetailsScreenTest::model()
{
    return find("QXRequestDetailsView")->property("viewModel").value<QXRequestDetailsViewModel *>();
}

/// Turns the wheel until an item can be pressed.
void RequestDetailsScreenTest::reveal(const QQuickItem &item)
{
    QVERIFY(QTest::qWaitFor([&] {
        const bool isThere = middle(item).y() <= 700;
        if (!isThere)
            ScreenDriver::turnWheel(*m_window, QPoint(8, 500), 1);
        return isThere;
    }));
    QVERIFY(waitFor("QXValueRow"));
}

void RequestDetailsScreenTest::openMenu(const QQuickItem &item)
{
    click(middle(item), Qt::RightButton);
    QVERIFY(waitFor("QXContextMenuCard"));
}

void RequestDetailsScreenTest::menuIsOpenedByEveryMeans_data()
{
    QTest::addColumn<QString>("means");
    for (const char *means : {"right click", "press and hold", "Menu key", "Shift and F10"})
        QTest::newRow(means) << QString::fromLatin1(means);
}

void RequestDetailsScreenTest::menuIsOpenedByEveryMeans()
{
    QFETCH(const QString, means);
    openDetails();
    QQuickItem *const accept = row(u"Accept"_s);
    click(middle(*accept), means == "right click"_L1 ? Qt::RightButton : Qt::LeftButton);
    if (means == "Menu key"_L1)
        press(Qt::Key_Menu);
    else if (means == "Shift and F10"_L1)
        press(Qt::Key_F10, Qt::ShiftModifier);
    else if (means == "press and hold"_L1)
        QTest::mousePress(m_window.get(), Qt::LeftButton, {}, middle(*accept));
    QVERIFY(waitFor("QXContextMenuCard"));
    QTest::mouseRelease(m_window.get(), Qt::LeftButton, {}, middle(*accept));
    QVERIFY(!find("QXDecodeValueItem"));
    press(Qt::Key_Escape);
    QTRY_VERIFY(!find("QXContextMenu"));
    QVERIFY(find("QXRequestDetailsView"));
    QTRY_COMPARE(m_window->activeFocusItem(), accept);
}

void RequestDetailsScreenTest::menuStaysInsideTheWindow()
{
    openDetails();
    click((sceneRect(*row(u"URL"_s)).bottomRight() - QPointF(2, 12)).toPoint(), Qt::RightButton);
    QVERIFY(waitFor("QXContextMenuCard"));
    QVERIFY(sceneRect(*m_window->contentItem()).contains(sceneRect(*find("QXContextMenuCard"))));
    dismiss("QXContextMenu", {20, 820});
}

void RequestDetailsScreenTest::menusDecodeAndCopy()
{
    openDetails();
    openMenu(*row(u"Authorization"_s));
    click("QXDecodeValueItem");
    QTRY_VERIFY(find("QXDecodedPayloadSheet"));
    press(Qt::Key_Escape);
    QTRY_VERIFY(!find("QXDecodedPayloadSheet"));
    QVERIFY(!model()->decodedPayload());

    openMenu(*row(u"Accept"_s));
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    QTRY_COMPARE(text("QXAlert", "title"), u"Copied!"_s);
    QCOMPARE(clipboard(), u"text/html"_s);
    press(Qt::Key_Return);
    QTRY_VERIFY(!find("QXAlert"));
    QTRY_COMPARE(m_window->activeFocusItem(), row(u"Accept"_s));

    reveal(*find("QXBodyBlock"));
    openMenu(*find("QXBodyBlock"));
    click("QXCopyValueItem");
    QTRY_COMPARE(clipboard(), u"{\n  \"a\" : [\n    2\n  ],\n  \"b\" : 1\n}"_s);
}

void RequestDetailsScreenTest::groupsUnfold()
{
    HTTPCookieStorage::shared().setCookies({QNetworkCookie("sid", "a1")}, QUrl(u"https://shop.test/"_s));
    openDetails();
    QVERIFY(!row(u"sid"_s));
    const auto groups = findAll("QXDisclosureGroup");
    QCOMPARE(groups.size(), 3);
    reveal(*groups[0]);
    click(middle(*groups[0]));
    QTRY_VERIFY(row(u"sid"_s));
    QVERIFY(find("QXRequestDetailsView")->property("_showRequestCookies").toBool());
    QVERIFY(!find("QXRequestDetailsView")->property("_showResponseCookies").toBool());
    press(Qt::Key_Space);
    QTRY_VERIFY(!row(u"sid"_s));
}

void RequestDetailsScreenTest::breakpointSwitch()
{
    openDetails();
    const auto &store = QXBreakpointStore::shared();
    const QQuickItem *const breakpoint = find("QXBreakpointSwitch");
    click(middle(*breakpoint));
    QTRY_COMPARE(store.rules().size(), 1);
    QVERIFY(breakpoint->property("checked").toBool());
    QXBreakpointStore::shared().setRules({}); // as elsewhere
    QVERIFY(!breakpoint->property("checked").toBool());
    press(Qt::Key_Space);
    QTRY_VERIFY(store.contains({u"GET"_s, u"shop.test"_s, u"/v1/users/42"_s}));
    press(Qt::Key_Space);
    QTRY_VERIFY(store.rules().isEmpty());
}

void RequestDetailsScreenTest::withoutUrlSwitchAndExportFail()
{
    openDetails(QString());
    QCOMPARE(row(u"URL"_s)->property("text").toString(), u"N/A"_s);
    const QQuickItem *const breakpoint = find("QXBreakpointSwitch");
    click(middle(*breakpoint));
    QTRY_COMPARE(breakpoint->property("visualPosition").toReal(), 0.0);
    QVERIFY(!breakpoint->property("checked").toBool() && QXBreakpointStore::shared().rules().isEmpty());

    click("QXShareButton");
    click("QXShareCurl");
    QTRY_COMPARE(text("QXAlert", "title"), u"Export Failed"_s);
    QCOMPARE(text("QXAlert", "message"), u"Missing request URL."_s);
    click("QXAlertButton");
    QTRY_VERIFY(!find("QXAlert"));
}

void RequestDetailsScreenTest::shareMenuCancelsAndShares()
{
    openDetails();
    for (const bool byKey : {true, false}) {
        click("QXShareButton");
        QVERIFY(waitFor("QXCancelButton"));
        byKey ? press(Qt::Key_Escape) : click("QXCancelButton");
        QTRY_VERIFY(!find("QXConfirmationDialog"));
    }
    QVERIFY(!model()->shareItem() && !model()->showAlert());

    click("QXShareButton");
    QTRY_VERIFY(find("QXConfirmationDialog"));
    QStringList entries;
    for (const char *const name : {"QXShareCurl", "QXShareHarFile", "QXShareMockServerFile",
                                   "QXShareSwiftModel", "QXShareRawDetails", "QXCancelButton"})
        entries += text(name);
    QCOMPARE(entries, QStringList({u"Share cURL"_s, u"Share HAR File"_s, u"Share Mock Server File"_s,
                                   u"Share Swift Model"_s, u"Share Raw Details"_s, u"Cancel"_s}));
    // Round to the last, and before that.
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_Up, Qt::Key_Return})
        press(key);
    QTRY_VERIFY(find("QXActivitySheet"));
    QTRY_VERIFY(!find("QXConfirmationDialog"));
    QVERIFY(model()->shareItem()->activityItems.value(0).toString().startsWith(u"-----"_s));
    press(Qt::Key_Escape);
    QTRY_VERIFY(!model()->shareItem());
    QTRY_COMPARE(m_window->activeFocusItem(), find("QXShareButton"));
}

void RequestDetailsScreenTest::runningExchangesShowWhatHasArrived()
{
    Exchanges::record(u"id"_s, u"https://shop.test/v1/events"_s);
    click("QXFloatingButton");
    for (const QByteArray &body : {"half"_ba, "half of it"_ba}) {
        QXRequestRecorder::shared().setRefresher(u"id"_s, [body] {
            QXRequestRecorder::shared().progress(u"id"_s, Exchanges::makeResponse(200), body);
        });
        click("QXRequestRow");
        QVERIFY(waitFor("QXRequestDetailsView"));
        const auto shown = [&] {
            const QQuickItem *const block = find("QXBodyBlock");
            return block ? block->property("document").value<QXTextDocument *>()->text() : QString();
        };
        QTRY_COMPARE(shown(), QString::fromUtf8(body));
        QVERIFY(row(u"Status Code"_s) && !row(u"Duration"_s));
        press(Qt::Key_Escape);
        QTRY_VERIFY(!find("QXRequestDetailsView"));
        QTRY_COMPARE(text("QXRequestRow", "statusText"), u"200"_s);
    }
}

void RequestDetailsScreenTest::pagesGoWithTheirModels()
{
    openDetails();
    for (int round = 0; round < 2; ++round) {
        reveal(*find("QXLogTreeButton"));
        click("QXLogTreeButton");
        QVERIFY(waitFor("QXLogTreeView"));
        QCOMPARE(text("QXLogTreeView", "requestPath"), u"/v1/users/42"_s);
        const QPointer<QObject> tree = find("QXLogTreeView")->property("viewModel").value<QObject *>();
        QVERIFY(tree);
        press(Qt::Key_Escape);
        QTRY_VERIFY(!find("QXLogTreeView"));
        QTRY_VERIFY(!tree && !model()->logTreeDestination());
        QVERIFY(waitFor("QXRequestDetailsView"));
    }
    const QPointer<QXRequestDetailsViewModel> details = model();
    press(Qt::Key_Escape);
    QTRY_VERIFY(!find("QXRequestDetailsView"));
    QTRY_VERIFY(!details);
}

void RequestDetailsScreenTest::controlsAreReachedNamedAndLargeEnough()
{
    HTTPCookieStorage::shared().setCookies({QNetworkCookie("sid", "a1")}, QUrl(u"https://shop.test/"_s));
    openDetails();
    QSet<QString> reached;
    for (int count = 0; count < 40; ++count) {
        press(Qt::Key_Tab);
        const QQuickItem *const item = m_window->activeFocusItem();
        reached += item->objectName();
        if (item->objectName() == u"QXRequestDetailsPage"_s)
            continue;
        const qreal top = sceneRect(*item).top();
        QVERIFY2(top >= 0 && top < 844 - 20, qPrintable(item->objectName()));
    }
    for (const char *name : {"QXBackButton", "QXShareButton", "QXValueRow", "QXBreakpointSwitch",
                             "QXDisclosureGroup", "QXLogTreeButton", "QXBodyBlock"}) {
        QVERIFY2(reached.contains(QLatin1StringView(name)), name);
        QVERIFY2(!spoken(find(name)).isEmpty(), name);
        QVERIFY2(isUsable(name) || qstrcmp(name, "QXValueRow") == 0, name);
    }
    QVERIFY(find("QXValueRow")->height() >= 30);
}

void RequestDetailsScreenTest::largeTextsAreShownWhole()
{
    openDetails(u"https://shop.test/"_s + QString(250'000, u'x'), "[\"" + QByteArray(2'000'000, 'x') + "\"]");
    QVERIFY(row(u"URL"_s)->height() > 50'000);
    QTRY_VERIFY(find("QXBodyBlock") && find("QXBodyBlock")->height() > 100'000); // it follows later
    QVERIFY(find("QXLogTreeButton")->isEnabled());
}

/// A row lays out its label and its value while the height of the row changes with them.
void RequestDetailsScreenTest::rowsGrowWithTheText()
{
    const QFont usual = QGuiApplication::font();
    const auto restore = qScopeGuard([&] { QGuiApplication::setFont(usual); });
    openDetails(u"https://shop.test/v1/users/42?"_s + u"a=1&"_s.repeated(60));
    const qreal before = row(u"URL"_s)->height();
    for (const int size : {32, 9, 24, 40}) {
        QFont font = usual;
        font.setPixelSize(size);
        QGuiApplication::setFont(font);
        QCoreApplication::processEvents();
    }
    QVERIFY(row(u"URL"_s)->height() > before);
    // A label does not break inside a word.
    int lines = 0;
    visitVisible(row(u"Authorization"_s), [&](const QQuickItem *item) {
        if (item->property("text") == u"Authorization"_s)
            lines = item->property("lineCount").toInt();
    });
    QCOMPARE(lines, 1);
}

QTEST_MAIN(RequestDetailsScreenTest)
#include "RequestDetailsScreenTest.moc"
