#include "Tests/EveryScreen.h"

#include "Text/QXTextView.h"

#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using ScreenDriver::middle;
using ScreenDriver::turnWheel;

/// What a person at a desk expects of every screen: the wheel, the keys, the size of the window.
class DesktopTest : public EveryScreen
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void wheelMovesByThreeLines_data();
    void wheelMovesByThreeLines();
    void searchEndsTheWheelsWay();
    void keysWalkTheList();
    void resizingKeepsTheTop_data();
    void resizingKeepsTheTop();
    void focusIsVisible_data();
    void focusIsVisible();
    void copiesTheFocusedRow_data();
    void copiesTheFocusedRow();
    void savesTheSharedText();

private:
    void openNewest();
    [[nodiscard]] bool showsFocus(QQuickItem &focused);
};

void DesktopTest::init()
{
    ScreenTest::init();
    m_heldPath = u"/held"_s;
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(QUrl(u"https://shop.test/rule"_s), {}));
    URLRequest request = Exchanges::makeRequest(u"https://shop.test/v1/users/42"_s);
    HTTPHeaderFields headers;
    for (int i = 0; i < 20; ++i)
        headers[u"X-Header-%1"_s.arg(i)] = u"words that wrap "_s.repeated(20);
    request.allHTTPHeaderFields = headers;
    record(request);
    Exchanges::complete(u"id"_s, 200, "[" + QByteArray("{\"a\":[1,2,3]},").repeated(300) + "0]");
    click("QXFloatingButton");
    QVERIFY(waitFor("QXRequestRow"));
}

/// Opens the details of the newest exchange.
void DesktopTest::openNewest()
{
    press(u"Down, Return"_s);
    QVERIFY(waitFor("QXRequestDetailsView"));
    QTRY_VERIFY(!find("QXRequestDetailsPage")->property("moving").toBool());
}

void DesktopTest::wheelMovesByThreeLines_data()
{
    QTest::addColumn<Open>("open");
    QTest::addColumn<QByteArray>("name");
    const Open longList = [this] {
        for (int i = 0; i < 60; ++i)
            Exchanges::record(QString::number(i), u"https://shop.test/v1/item/%1"_s.arg(i));
        QTRY_COMPARE(find("QXRequestList")->property("count").toInt(), 61);
    };
    QTest::newRow("list") << longList << "QXRequestList"_ba;
    QTest::newRow("details") << Open([this] { openNewest(); }) << "QXRequestDetailsPage"_ba;
}

void DesktopTest::wheelMovesByThreeLines()
{
    QFETCH(const Open, open);
    QFETCH(const QByteArray, name);
    open();
    QVERIFY(waitFor(name));
    QQuickItem *const view = find(name);
    const auto y = [=] {
        return view->property("contentY").toReal();
    };
    const qreal top = y();
    qreal expected = top;
    // Also steps that follow each other at once go exactly as far as all of them.
    for (const int notches : {1, 3, 8, -2}) {
        turnWheel(*m_window, middle(*view), notches);
        expected += notches * 3 * 24;
        QTRY_COMPARE(y(), expected);
    }
    turnWheel(*m_window, middle(*view), -50);
    QTRY_COMPARE(y(), top);
}

/// A search goes to the top while the wheel still moves the list, which must not take it away again.
void DesktopTest::searchEndsTheWheelsWay()
{
    for (int i = 0; i < 60; ++i)
        Exchanges::record(QString::number(i), u"https://shop.test/v1/item/%1"_s.arg(i));
    QQuickItem *const list = find("QXRequestList");
    QTRY_COMPARE(list->property("count").toInt(), 61);
    const qreal top = list->property("contentY").toReal();
    click("QXSearchField");
    turnWheel(*m_window, middle(*list), 20);
    type("i");
    QTRY_COMPARE(list->property("count").toInt(), 60);
    QVERIFY(waitFor("QXRequestRow"));
    QCOMPARE(list->property("contentY").toReal(), top);
}

void DesktopTest::keysWalkTheList()
{
    for (int i = 0; i < 60; ++i)
        Exchanges::record(QString::number(i), u"https://shop.test/v1/item/%1"_s.arg(i));
    const QQuickItem *const list = find("QXRequestList");
    QTRY_COMPARE(list->property("count").toInt(), 61);
    press(Qt::Key_End); // a current row tells how high rows are
    const int page = list->property("pageRows").toInt();
    QVERIFY(page > 5 && page < 20);
    for (const auto &[key, row] : {std::pair(Qt::Key_End, 60),
                                   {Qt::Key_PageUp, 60 - page},
                                   {Qt::Key_Home, 0},
                                   {Qt::Key_PageDown, page}}) {
        press(key);
        QCOMPARE(list->property("currentIndex").toInt(), row);
        QVERIFY(sceneRect(*list).contains(sceneRect(*list->property("currentItem").value<QQuickItem *>())));
    }
}

void DesktopTest::resizingKeepsTheTop_data()
{
    QTest::addColumn<qreal>("scrolled");
    QTest::newRow("top") << 0.0;
    QTest::newRow("among rows that wrap") << 1200.0;
    QTest::newRow("far down in a text") << 16'000.0;
}

void DesktopTest::resizingKeepsTheTop()
{
    QFETCH(const qreal, scrolled);
    openNewest();
    QTRY_VERIFY(find("QXRequestDetailsPage")->property("contentHeight").toReal() > 20'000);
    QQuickItem *const page = find("QXRequestDetailsPage");
    const qreal top = page->property("contentY").toReal();
    page->setProperty("contentY", top + scrolled);
    QVERIFY(waitFor("QXRequestDetailsPage"));
    const auto whatIsAtTheTop = [&] {
        for (const QQuickItem *const row : findAll("QXValueRow")) {
            if (row->mapRectToItem(page, row->boundingRect()).bottom() > 0.5)
                return row->property("label").toString();
        }
        const auto *const view = qobject_cast<QXTextView *>(find("QXTextView"));
        return view->rowTextAt(0) + QString::number(view->positionAt({0, 0}));
    };
    const QString before = whatIsAtTheTop();
    QString after;
    for (const int width : {600, 1024, 500, 390}) {
        QVERIFY(resize({width, 844}));
        const bool isKept = QTest::qWaitFor([&] { return (after = whatIsAtTheTop()) == before; });
        QVERIFY2(isKept, qPrintable(after + u" instead of "_s + before));
    }
    if (scrolled == 0)
        QCOMPARE(page->property("contentY").toReal(), top);
}

/// Whether an item, or the row of a list that has the focus, has a mark that only the focus makes visible.
bool DesktopTest::showsFocus(QQuickItem &focused)
{
    if (focused.inherits("QQuickTextInput") || focused.inherits("QXTextEditor"))
        return true; // a cursor blinks there
    bool shows = false;
    const QRectF place = sceneRect(focused).adjusted(-12, -12, 12, 12);
    visitVisible(m_window->contentItem(), [&](const QQuickItem *item) {
        shows = shows || (QByteArray(item->metaObject()->className()).startsWith("QXFocusRing") &&
                          place.contains(sceneRect(*item)));
    });
    return shows;
}

void DesktopTest::focusIsVisible_data()
{
    everyScreen();
}

void DesktopTest::focusIsVisible()
{
    open();
    QSet<QQuickItem *> visited;
    for (QQuickItem *focused = nullptr; !visited.contains(focused);) {
        visited.insert(focused);
        press(Qt::Key_Tab);
        focused = m_window->activeFocusItem();
        QVERIFY(focused);
        QVERIFY2(
            QTest::qWaitFor([&] { return showsFocus(*focused); }, 1000),
            qPrintable(focused->objectName() + u' ' + QLatin1StringView(focused->metaObject()->className())));
    }
    QVERIFY(visited.size() > 1);
}

void DesktopTest::copiesTheFocusedRow_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QByteArray>("focused"); // empty where the keys select
    QTest::addColumn<QString>("copied");
    QTest::newRow("exchange") << u"Down"_s << QByteArray() << u"https://shop.test/v1/users/42"_s;
    QTest::newRow("value") << u"Down, Return"_s << "QXValueRow"_ba << u"https://shop.test/v1/users/42"_s;
    QTest::newRow("body") << u"Down, Return"_s << "QXBodyBlock"_ba << u"[\n  {\n"_s;
    QTest::newRow("rule") << QString() << "QXBreakpointRow"_ba << u"GET shop.test/rule"_s;
}

void DesktopTest::copiesTheFocusedRow()
{
    QFETCH(const QString, keys);
    QFETCH(const QByteArray, focused);
    QFETCH(const QString, copied);
    QGuiApplication::clipboard()->clear();
    if (keys.isEmpty()) {
        click("QXBreakpointsButton");
        QVERIFY(waitFor("QXBreakpointRow"));
        for (int tab = 0; tab < 8 && !find(focused)->property("isCurrent").toBool(); ++tab)
            press(Qt::Key_Tab);
    } else {
        press(keys);
        if (!focused.isEmpty()) {
            QVERIFY(waitFor("QXRequestDetailsView"));
            QTRY_VERIFY(!findAll(focused).isEmpty());
            findAll(focused).constFirst()->forceActiveFocus(Qt::TabFocusReason);
        }
    }
    press(u"Ctrl+C"_s);
    QTRY_VERIFY2(clipboard().startsWith(copied), qPrintable(clipboard().left(40)));
}

void DesktopTest::savesTheSharedText()
{
    openNewest();
    click("QXShareButton");
    click("QXShareCurl");
    QVERIFY(waitFor("QXActivitySheet"));
    press(u"Ctrl+C"_s);
    QTRY_VERIFY(clipboard().startsWith(u"curl "_s));
    press(u"Ctrl+S"_s);
    QTRY_VERIFY(find("QXActivityPath") && find("QXActivityPath")->hasActiveFocus());
    QTemporaryDir folder;
    const QString path = folder.filePath(u"shared.txt"_s);
    find("QXActivityPath")->setProperty("text", path);
    press(u"Ctrl+S"_s);
    QTRY_VERIFY(QFileInfo::exists(path));
    QTRY_VERIFY(!text("QXActivityOutcome").isEmpty());
}

QTEST_MAIN(DesktopTest)
#include "DesktopTest.moc"
