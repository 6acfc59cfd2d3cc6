#include "Tests/ScreenDriver.h"

#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXOverlay.h"
#include "Quorvix/QXRequestDetailsViewModel.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include "Platform/HTTPCookieStorage.h"

#include <QtCore/QPointer>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtGui/QAccessible>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

using namespace Qt::StringLiterals;
using namespace ScreenDriver;

class RequestDetailsScreenTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void menuIsOpenedByEveryMeans_data();
    void menuIsOpenedByEveryMeans();
    void menuStaysInsideTheWindow();
    void encodedValuesAreDecoded();
    void bodiesAreCopied();
    void groupsUnfold();
    void breakpointSwitch();
    void breakpointSwitchSpringsBack();
    void shareMenuByKeyboard();
    void cancelledShareMenuChangesNothing();
    void failedExportIsAnAlert();
    void logTreeIsPushedAndLeft();
    void keyboardReachesEverything();
    void modelGoesWithTheScreen();
    void largeBodyFollowsLater();
    void longValueIsShownWhole();
    void controlsAreNamedAndLargeEnough();

private:
    void openDetails(const QString &url = u"https://shop.test/v1/users/42"_s,
                     const QByteArray &body = "{\"b\":1,\"a\":[2]}");
    [[nodiscard]] QQuickItem *row(const QString &label);
    [[nodiscard]] QXRequestDetailsViewModel *model();
    void reveal(const QQuickItem &item);
    void openMenu(const QQuickItem &item);

    std::unique_ptr<QQuickWindow> m_window;
};

void RequestDetailsScreenTest::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(u"QuorvixTests"_s);
    QCoreApplication::setApplicationName(u"RequestDetailsScreenTest"_s);
    QTest::failOnWarning(QRegularExpression(u".*"_s));
}

void RequestDetailsScreenTest::init()
{
    QSettings().clear();
    QXRequestRecorder::shared().clear();
    QXBreakpointStore::shared().setRules({});
    HTTPCookieStorage::shared().removeAllCookies();
    m_window = std::make_unique<QQuickWindow>();
    m_window->resize(390, 844);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QuorvixClient::shared().show();
}

void RequestDetailsScreenTest::cleanup()
{
    QuorvixClient::shared().hide();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_window.reset();
}

void RequestDetailsScreenTest::openDetails(const QString &url, const QByteArray &body)
{
    URLRequest request;
    if (!url.isEmpty())
        request.url = QUrl(url);
    request.allHTTPHeaderFields = {
        {u"Accept"_s, u"text/html"_s},
        {u"Authorization"_s, QString::fromLatin1(QByteArray("{\"user\":\"someone\"}").toBase64())}};
    QXRequestRecorder::shared().record(u"id"_s, request);
    const auto response = NSHTTPURLResponse::create(QUrl(u"https://shop.test/"_s), 200, u"HTTP/1.1"_s, {});
    QXRequestRecorder::shared().complete(u"id"_s, response, body, {});
    click(*m_window, "QXFloatingButton");
    click(*m_window, "QXRequestRow");
    QTRY_VERIFY(find(*m_window, "QXRequestDetailsView"));
    QVERIFY(waitForRest(*m_window, "QXRequestDetailsView"));
}

QQuickItem *RequestDetailsScreenTest::row(const QString &label)
{
    for (QQuickItem *const row : findAll(*m_window, "QXValueRow")) {
        if (row->property("label").toString() == label)
            return row;
    }
    return nullptr;
}

QXRequestDetailsViewModel *RequestDetailsScreenTest::model()
{
    return find(*m_window, "QXRequestDetailsView")
        ->property("viewModel")
        .value<QXRequestDetailsViewModel *>();
}

/// Turns the wheel until an item can be pressed.
void RequestDetailsScreenTest::reveal(const QQuickItem &item)
{
    for (int turn = 0; turn < 40 && middle(item).y() > 700; ++turn) {
        turnWheel(*m_window, QPoint(8, 500), 1);
        QTest::qWait(16); // a frame
    }
    QVERIFY(waitForRest(*m_window, "QXValueRow"));
}

void RequestDetailsScreenTest::openMenu(const QQuickItem &item)
{
    QTest::mouseClick(m_window.get(), Qt::RightButton, {}, middle(item));
    QTRY_VERIFY(find(*m_window, "QXContextMenu"));
    QVERIFY(waitForRest(*m_window, "QXContextMenuCard"));
}

void RequestDetailsScreenTest::menuIsOpenedByEveryMeans_data()
{
    QTest::addColumn<std::function<void(QQuickWindow &, QPoint)>>("open");
    using Open = std::function<void(QQuickWindow &, QPoint)>;
    QTest::newRow("a right click") << Open(
        [](QQuickWindow &window, QPoint at) { QTest::mouseClick(&window, Qt::RightButton, {}, at); });
    QTest::newRow("press and hold") << Open([](QQuickWindow &window, QPoint at) {
        QTest::mousePress(&window, Qt::LeftButton, {}, at);
        QTRY_VERIFY(find(window, "QXContextMenu"));
        QTest::mouseRelease(&window, Qt::LeftButton, {}, at);
    });
    for (const auto &[name, key, modifiers] : {std::tuple("the Menu key", Qt::Key_Menu, Qt::NoModifier),
                                               std::tuple("Shift and F10", Qt::Key_F10, Qt::ShiftModifier)}) {
        QTest::newRow(name) << Open([key = key, modifiers = modifiers](QQuickWindow &window, QPoint at) {
            QTest::mouseClick(&window, Qt::LeftButton, {}, at);
            QTest::keyClick(&window, key, modifiers);
        });
    }
}

void RequestDetailsScreenTest::menuIsOpenedByEveryMeans()
{
    QFETCH(const std::function<void(QQuickWindow &, QPoint)>, open);
    openDetails();
    QQuickItem *const accept = row(u"Accept"_s);
    open(*m_window, middle(*accept));
    QTRY_VERIFY(find(*m_window, "QXContextMenu"));
    QVERIFY(!find(*m_window, "QXDecodeValueItem"));
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
    QTRY_VERIFY(!find(*m_window, "QXContextMenu"));
    QVERIFY(find(*m_window, "QXRequestDetailsView"));
    QTRY_COMPARE(m_window->activeFocusItem(), accept);

    open(*m_window, middle(*accept));
    QTRY_VERIFY(find(*m_window, "QXContextMenu"));
    QTest::keyClick(m_window.get(), Qt::Key_Down);
    QTest::keyClick(m_window.get(), Qt::Key_Return);
    QTRY_VERIFY(find(*m_window, "QXAlert"));
    QCOMPARE(find(*m_window, "QXAlert")->property("title").toString(), u"Copied!"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"text/html"_s);
    QTest::keyClick(m_window.get(), Qt::Key_Return);
    QTRY_VERIFY(!find(*m_window, "QXAlert"));
    QTRY_COMPARE(m_window->activeFocusItem(), accept);
}

void RequestDetailsScreenTest::menuStaysInsideTheWindow()
{
    openDetails();
    QQuickItem *const url = row(u"URL"_s);
    QTest::mouseClick(m_window.get(), Qt::RightButton, {},
                      url->mapToScene(QPointF(url->width() - 2, url->height() / 2)).toPoint());
    QTRY_VERIFY(find(*m_window, "QXContextMenuCard"));
    QVERIFY(waitForRest(*m_window, "QXContextMenuCard"));
    const QQuickItem *const card = find(*m_window, "QXContextMenuCard");
    QVERIFY(m_window->contentItem()->boundingRect().contains(card->mapRectToScene(card->boundingRect())));
    QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, QPoint(20, 820)); // outside
    QTRY_VERIFY(!find(*m_window, "QXContextMenu"));
}

void RequestDetailsScreenTest::encodedValuesAreDecoded()
{
    openDetails();
    openMenu(*row(u"Authorization"_s));
    click(*m_window, "QXDecodeValueItem");
    QTRY_VERIFY(find(*m_window, "QXDecodedPayloadSheet"));
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
    QTRY_VERIFY(!find(*m_window, "QXDecodedPayloadSheet"));
    QVERIFY(!model()->decodedPayload());
}

void RequestDetailsScreenTest::bodiesAreCopied()
{
    openDetails();
    QQuickItem *const block = find(*m_window, "QXBodyBlock");
    reveal(*block);
    openMenu(*block);
    click(*m_window, "QXCopyValueItem");
    QTRY_VERIFY(find(*m_window, "QXAlert"));
    QCOMPARE(QGuiApplication::clipboard()->text(), u"{\n  \"a\" : [\n    2\n  ],\n  \"b\" : 1\n}"_s);
}

void RequestDetailsScreenTest::groupsUnfold()
{
    HTTPCookieStorage::shared().setCookies({QNetworkCookie("sid", "a1")}, QUrl(u"https://shop.test/"_s));
    openDetails();
    QVERIFY(!row(u"sid"_s));
    const auto headers = findAll(*m_window, "QXDisclosureGroup");
    QCOMPARE(headers.size(), 3);
    reveal(*headers[0]);
    QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, middle(*headers[0]));
    QTRY_VERIFY(row(u"sid"_s));
    QVERIFY(find(*m_window, "QXRequestDetailsView")->property("_showRequestCookies").toBool());
    QVERIFY(!find(*m_window, "QXRequestDetailsView")->property("_showResponseCookies").toBool());
    QTest::keyClick(m_window.get(), Qt::Key_Space);
    QTRY_VERIFY(!row(u"sid"_s));
}

void RequestDetailsScreenTest::breakpointSwitch()
{
    openDetails();
    QQuickItem *const breakpoint = find(*m_window, "QXBreakpointSwitch");
    QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, middle(*breakpoint));
    QTRY_COMPARE(QXBreakpointStore::shared().rules().size(), 1);
    QVERIFY(breakpoint->property("checked").toBool());
    QXBreakpointStore::shared().setRules({}); // as elsewhere
    QVERIFY(!breakpoint->property("checked").toBool());
    QTest::keyClick(m_window.get(), Qt::Key_Space);
    QTRY_COMPARE(QXBreakpointStore::shared().rules().size(), 1);
}

void RequestDetailsScreenTest::breakpointSwitchSpringsBack()
{
    openDetails(QString());
    QCOMPARE(row(u"URL"_s)->property("text").toString(), u"N/A"_s);
    QQuickItem *const breakpoint = find(*m_window, "QXBreakpointSwitch");
    QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, middle(*breakpoint));
    QTRY_COMPARE(breakpoint->property("visualPosition").toReal(), 0.0);
    QVERIFY(!breakpoint->property("checked").toBool());
    QVERIFY(QXBreakpointStore::shared().rules().isEmpty());
}

void RequestDetailsScreenTest::shareMenuByKeyboard()
{
    openDetails();
    click(*m_window, "QXShareButton");
    QTRY_VERIFY(find(*m_window, "QXConfirmationDialog"));
    QStringList entries;
    for (const char *const name : {"QXShareCurl", "QXShareHarFile", "QXShareMockServerFile",
                                   "QXShareSwiftModel", "QXShareRawDetails", "QXCancelButton"})
        entries += find(*m_window, name)->property("text").toString();
    QCOMPARE(entries, QStringList({u"Share cURL"_s, u"Share HAR File"_s, u"Share Mock Server File"_s,
                                   u"Share Swift Model"_s, u"Share Raw Details"_s, u"Cancel"_s}));
    for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Up, Qt::Key_Return}) // round to the last
        QTest::keyClick(m_window.get(), key);
    QTRY_VERIFY(find(*m_window, "QXActivitySheet"));
    QTRY_VERIFY(!find(*m_window, "QXConfirmationDialog"));
    QVERIFY(model()->shareItem()->activityItems.value(0).toString().startsWith(u"-----"_s));
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
    QTRY_VERIFY(!model()->shareItem());
    QTRY_COMPARE(m_window->activeFocusItem(), find(*m_window, "QXShareButton"));
}

void RequestDetailsScreenTest::cancelledShareMenuChangesNothing()
{
    openDetails();
    for (const bool byKey : {true, false}) {
        click(*m_window, "QXShareButton");
        QTRY_VERIFY(find(*m_window, "QXCancelButton"));
        if (byKey)
            QTest::keyClick(m_window.get(), Qt::Key_Escape);
        else
            click(*m_window, "QXCancelButton");
        QTRY_VERIFY(!find(*m_window, "QXConfirmationDialog"));
    }
    QVERIFY(!model()->shareItem() && !model()->showAlert());
    QVERIFY(find(*m_window, "QXRequestDetailsView"));
}

void RequestDetailsScreenTest::failedExportIsAnAlert()
{
    openDetails(QString());
    click(*m_window, "QXShareButton");
    click(*m_window, "QXShareCurl");
    QTRY_VERIFY(find(*m_window, "QXAlert"));
    QCOMPARE(find(*m_window, "QXAlert")->property("title").toString(), u"Export Failed"_s);
    QCOMPARE(find(*m_window, "QXAlert")->property("message").toString(), u"Missing request URL."_s);
    click(*m_window, "QXAlertButton");
    QTRY_VERIFY(!find(*m_window, "QXAlert"));
}

void RequestDetailsScreenTest::logTreeIsPushedAndLeft()
{
    openDetails();
    for (int round = 0; round < 2; ++round) {
        QQuickItem *const button = find(*m_window, "QXLogTreeButton");
        reveal(*button);
        QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, middle(*button));
        QTRY_VERIFY(find(*m_window, "QXLogTreeView"));
        QVERIFY(waitForRest(*m_window, "QXLogTreeView"));
        QCOMPARE(find(*m_window, "QXLogTreeView")->property("requestPath").toString(), u"/v1/users/42"_s);
        const QPointer<QObject> tree =
            find(*m_window, "QXLogTreeView")->property("viewModel").value<QObject *>();
        QVERIFY(tree);
        QTest::keyClick(m_window.get(), Qt::Key_Escape);
        QTRY_VERIFY(!find(*m_window, "QXLogTreeView"));
        QTRY_VERIFY(!tree);
        QTRY_VERIFY(!model()->logTreeDestination());
        QVERIFY(waitForRest(*m_window, "QXRequestDetailsView"));
    }
}

void RequestDetailsScreenTest::keyboardReachesEverything()
{
    HTTPCookieStorage::shared().setCookies({QNetworkCookie("sid", "a1")}, QUrl(u"https://shop.test/"_s));
    openDetails();
    QSet<QString> reached;
    for (int press = 0; press < 40; ++press) {
        QTest::keyClick(m_window.get(), Qt::Key_Tab);
        const QQuickItem *const item = m_window->activeFocusItem();
        reached += item->objectName();
        if (item->objectName() == u"QXRequestDetailsPage"_s)
            continue;
        const QRectF place = item->mapRectToScene(item->boundingRect());
        QVERIFY2(place.top() >= 0 && place.top() < 844 - 20, qPrintable(item->objectName()));
    }
    for (const auto &name : {u"QXBackButton"_s, u"QXShareButton"_s, u"QXValueRow"_s, u"QXBreakpointSwitch"_s,
                             u"QXDisclosureGroup"_s, u"QXLogTreeButton"_s, u"QXBodyBlock"_s})
        QVERIFY2(reached.contains(name), qPrintable(name));
}

void RequestDetailsScreenTest::modelGoesWithTheScreen()
{
    openDetails();
    const QPointer<QXRequestDetailsViewModel> shown = model();
    QVERIFY(shown);
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
    QTRY_VERIFY(!find(*m_window, "QXRequestDetailsView"));
    QTRY_VERIFY(!shown);
}

void RequestDetailsScreenTest::largeBodyFollowsLater()
{
    openDetails(u"https://shop.test/large"_s, "[\"" + QByteArray(2'000'000, 'x') + "\"]");
    QTRY_VERIFY(find(*m_window, "QXBodyBlock"));
    QTRY_VERIFY(find(*m_window, "QXBodyBlock")->height() > 100'000);
    QVERIFY(find(*m_window, "QXLogTreeButton")->isEnabled());
}

void RequestDetailsScreenTest::longValueIsShownWhole()
{
    openDetails(u"https://shop.test/"_s + QString(250'000, u'x'));
    QVERIFY(row(u"URL"_s)->height() > 50'000);
}

void RequestDetailsScreenTest::controlsAreNamedAndLargeEnough()
{
    HTTPCookieStorage::shared().setCookies({QNetworkCookie("sid", "a1")}, QUrl(u"https://shop.test/"_s));
    openDetails();
    for (const char *const name : {"QXBackButton", "QXShareButton", "QXBreakpointSwitch", "QXDisclosureGroup",
                                   "QXLogTreeButton", "QXValueRow", "QXBodyBlock"}) {
        QQuickItem *const item = find(*m_window, name);
        QVERIFY2(item, name);
        QVERIFY2(item->width() >= 44 && item->height() >= (qstrcmp(name, "QXValueRow") == 0 ? 30 : 44), name);
        QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(item);
        QVERIFY2(accessible && !accessible->text(QAccessible::Name).isEmpty(), name);
    }
}

QTEST_MAIN(RequestDetailsScreenTest)
#include "RequestDetailsScreenTest.moc"
