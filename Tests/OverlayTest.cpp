#include "Tests/Exchanges.h"
#include "Tests/ScreenTest.h"

#include "Quorvix/QXOverlay.h"

#include "Controls/QXAppearance.h"

#include <QtGui/QRasterWindow>

using namespace Qt::StringLiterals;
using ScreenDriver::drag, ScreenDriver::middle, ScreenDriver::turnWheel;

namespace {

constexpr char hostQml[] = R"(
import QtQuick
import QtQuick.Controls.Basic

ApplicationWindow {
    id: root

    property int clicks: 0
    property int hovers: 0
    property int drags: 0

    width: 390
    height: 844
    visible: true

    Item {
        anchors.fill: parent
        DragHandler {
            target: null
            onActiveChanged: if (active) root.drags++
        }
    }
    ListView {
        objectName: "list"
        anchors.fill: parent
        model: 100
        delegate: Text { height: 40; text: index }
    }
    MouseArea {
        anchors.fill: parent
        hoverEnabled: true
        onWheel: wheel => wheel.accepted = false
        onPressed: mouse => { root.clicks++; mouse.accepted = false }
        onEntered: root.hovers++
    }
    TextField {
        objectName: "field"
        focus: true
        width: 100
        height: 44
    }
    Dialog {
        objectName: "dialog"
        modal: true
        anchors.centerIn: parent
        contentItem: Text { text: "Dialog" }
    }
}
)";

QuorvixClient &client()
{
    return QuorvixClient::shared();
}

QXOverlay &overlay()
{
    return *client().overlayWindow();
}

void record(int count)
{
    for (int i = 0; i < count; ++i)
        Exchanges::record(QString::number(i), u"http://host/a"_s);
}

} // namespace

class OverlayTest : public ScreenTest
{
    Q_OBJECT

private Q_SLOTS:
    void init() override;
    void facade();
    void badge();
    void standsWhereItWasLeft();
    void staysInsideWindowsOfEverySize();
    void whatIsNotTheButtonIsTheHosts();
    void hostsHandlersGetNothingThroughScreens_data();
    void hostsHandlersGetNothingThroughScreens();
    void twoTapsOpenAndClose();
    void lastRowsAreClearOfTheButton_data();
    void lastRowsAreClearOfTheButton();
    void isFaintWhileContentMoves();
    void liesAboveTheHostsDialogs();
    void makesDoWithoutAHostWindow();
    void keepsTheFocusWhenScreensAreMade();
    void editorFollowsTheHeldResponses();

private:
    std::unique_ptr<QQmlEngine> m_engine;
};

void OverlayTest::init()
{
    startAnew();
    m_engine = std::make_unique<QQmlEngine>();
    m_window = makeWindow(*m_engine, hostQml);
    client().show();
}

void OverlayTest::facade()
{
    client().hide();
    QVERIFY(!client().overlayWindow());
    client().start();
    const QPointer<QXOverlay> first = client().overlayWindow();
    QVERIFY(first && !first->isHidden());
    first->setHidden(true);
    client().start();
    QCOMPARE(client().overlayWindow(), first.data());
    QVERIFY(!first->isHidden());
    QCOMPARE(findAll("QXFloatingButton").size(), 1);
    client().hide();
    QVERIFY(findAll("QXFloatingButton").isEmpty());
    client().show();
    QVERIFY(client().overlayWindow() != first.data());
    QTRY_VERIFY(!first);
}

void OverlayTest::badge()
{
    for (const auto &[count, shown] : {std::pair(0, QString()), {99, u"99"_s}, {1, u"99+"_s}}) {
        record(count);
        QTRY_COMPARE(overlay().badgeText(), shown);
        QCOMPARE(text("QXBadgeLabel"), shown);
    }
    client().hide();
    client().show();
    QCOMPARE(overlay().badgeText(), u"99+"_s); // at once, without waiting for a change
}

void OverlayTest::standsWhereItWasLeft()
{
    const QQuickItem *const button = find("QXFloatingButton");
    QCOMPARE(button->size(), QSizeF(52, 52));
    QCOMPARE(middle(*button), QPoint(50, m_window->height() - 50));
    drag(*m_window, middle(*button), QPoint(100, -200));
    QVERIFY(!overlay().isShowingRequestList());
    QCOMPARE(m_window->property("drags").toInt(), 0);
    const QPoint dropped = middle(*button);
    QVERIFY((dropped - QPoint(150, 594)).manhattanLength() <= 2);
    const auto saved = QXOverlayPoint::decoded(QSettings().value(QXOverlay::dragPositionKey).toByteArray());
    QVERIFY(saved);
    QVERIFY(qAbs(195 + saved->x - dropped.x()) < 1 && qAbs(422 + saved->y - dropped.y()) < 1);

    client().hide();
    client().show();
    QCOMPARE(middle(*find("QXFloatingButton")), dropped);

    const QPoint end(m_window->width(), m_window->height());
    drag(*m_window, dropped, QPoint(1, 1) - dropped); // to the corner, where the margin stops it
    QCOMPARE(overlay().buttonCenter(), QPointF(12 + 26, 12 + 26));
    drag(*m_window, overlay().buttonCenter().toPoint(), end - QPoint(39, 39));
    QCOMPARE(overlay().buttonCenter(), QPointF(end - QPoint(38, 38)));

    for (const QByteArray unreadable : {"{\"x\":", "{\"x\":1}", "{\"x\":\"1\",\"y\":true}"}) {
        client().hide();
        QSettings().setValue(QXOverlay::dragPositionKey, unreadable);
        client().show();
        QCOMPARE(overlay().buttonCenter(), QPointF(50, m_window->height() - 50));
    }
}

void OverlayTest::staysInsideWindowsOfEverySize()
{
    const auto fromTheEnd = [&](int x, int y) {
        return QPointF(x < 0 ? m_window->width() + x : x, m_window->height() + y);
    };
    QVERIFY(resize({844, 390}));
    QTRY_COMPARE(overlay().buttonCenter(), fromTheEnd(50, -50));
    const QPoint before = overlay().buttonCenter().toPoint();
    drag(*m_window, before, QPoint(m_window->width() - 1 - before.x(), 0));
    QVERIFY(resize({390, 844}));
    QTRY_COMPARE(overlay().buttonCenter().x(), fromTheEnd(-38, 0).x());
    QVERIFY(resize({844, 390}));
    QTRY_COMPARE(overlay().buttonCenter(), fromTheEnd(-38, -50)); // still the chosen place
}

void OverlayTest::whatIsNotTheButtonIsTheHosts()
{
    const auto clicks = [&] {
        return m_window->property("clicks").toInt();
    };
    const auto scrolled = [&] {
        return find("list")->property("contentY").toReal();
    };
    QTest::mouseMove(m_window.get(), QPoint(300, 300));
    QTRY_VERIFY(m_window->property("hovers").toInt() > 0);
    click(QPoint(200, 500));
    QCOMPARE(clicks(), 1);
    QVERIFY(overlay().hitTest(overlay().buttonCenter()) && !overlay().hitTest(QPointF(200, 500)));
    turnWheel(*m_window, QPoint(200, 300), 1);
    QTRY_VERIFY(scrolled() > 0);
    const qreal before = scrolled();
    drag(*m_window, QPoint(200, 600), QPoint(0, -300));
    QTRY_VERIFY(scrolled() > before);
    QCOMPARE(clicks(), 2);

    click("QXFloatingButton");
    QTRY_VERIFY(find("QXRequestListView"));
    click(QPoint(200, 500));
    turnWheel(*m_window, QPoint(200, 500), 1);
    QCOMPARE(clicks(), 2);
}

void OverlayTest::hostsHandlersGetNothingThroughScreens_data()
{
    QTest::addColumn<QByteArray>("handler");
    QTest::newRow("drag") << QByteArray("DragHandler { target: null;");
    QTest::newRow("tap") << QByteArray("TapHandler { gesturePolicy: TapHandler.WithinBounds;");
    QTest::newRow("point") << QByteArray("PointHandler {");
}

/// Handlers, unlike items, get each press that an item above them has accepted, and can take it over.
void OverlayTest::hostsHandlersGetNothingThroughScreens()
{
    QFETCH(const QByteArray, handler);
    const QByteArray root = handler + " onGrabChanged: ++root.grabs }";
    m_window = makeWindow(
        *m_engine, "import QtQuick\n"
                   "Window { id: root; property int grabs: 0; width: 390; height: 844; visible: true\n" +
                       root + "Item { anchors.fill: parent;" + root + "} }");
    QTRY_COMPARE(overlay().window(), m_window.get());
    record(40);
    const auto grabs = [&](bool byFinger) {
        m_window->setProperty("grabs", 0);
        const QPoint from(200, 600);
        if (byFinger) {
            touch(from);
            for (int y = 590; y > 300; y -= 10)
                moveFinger({200, y});
            lift({200, 300});
        } else {
            drag(*m_window, from, QPoint(0, -300));
        }
        return m_window->property("grabs").toInt();
    };
    for (const bool byFinger : {false, true}) {
        QVERIFY(grabs(byFinger) > 0);
        m_window->setProperty("grabs", 0);
        click("QXFloatingButton");
        QVERIFY(waitFor("QXRequestRow"));
        QCOMPARE(m_window->property("grabs").toInt(), 0);
        QCOMPARE(grabs(byFinger), 0);
        QTRY_VERIFY(find("QXRequestList")->property("contentY").toReal() > 100);
        press(Qt::Key_Escape);
        QTRY_VERIFY(!overlay().isShowingRequestList());
        QVERIFY(grabs(byFinger) > 0);
    }
}

void OverlayTest::twoTapsOpenAndClose()
{
    QVERIFY(find("field")->hasActiveFocus());
    const auto tap = [&] {
        touch(overlay().buttonCenter().toPoint());
        lift(overlay().buttonCenter().toPoint());
    };
    tap();
    QVERIFY(overlay().isShowingRequestList());
    QVERIFY(waitFor("QXRequestListView"));
    QVERIFY(!find("field")->hasActiveFocus());
    tap();
    // Until the closing animation has ended, if there is one.
    QVERIFY(overlay().isShowingRequestList() || QXAppearance().isMotionReduced());
    QTRY_VERIFY(!overlay().isShowingRequestList());
    QVERIFY(!find("QXRequestListView"));
    QTRY_VERIFY(find("field")->hasActiveFocus());
}

void OverlayTest::lastRowsAreClearOfTheButton_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("centerY");
    QTest::newRow("at the bottom") << 40 << 794;
    QTest::newRow("beside the last row") << 40 << 730;
    QTest::newRow("beside the last row of a list that fits") << 11 << 660;
    QTest::newRow("far above") << 40 << 300;
}

void OverlayTest::lastRowsAreClearOfTheButton()
{
    QFETCH(const int, rows);
    QFETCH(const int, centerY);
    for (int i = 0; i < rows; ++i)
        Exchanges::record(QString::number(i), u"http://host/%1"_s.arg(i));
    overlay().handleButtonPan({0, centerY - overlay().buttonCenter().y()});
    click("QXFloatingButton");
    QVERIFY(waitFor("QXRequestRow"));
    const QRectF button = sceneRect(*find("QXFloatingButton"));
    const QQuickItem *const list = find("QXRequestList");
    QTRY_VERIFY((turnWheel(*m_window, QPoint(200, 500), 5), list->property("atYEnd").toBool()));
    QVERIFY(waitFor("QXRequestRow"));
    const QQuickItem *const last = find("QXRequestRow", "title", u"GET /0"_s);
    QVERIFY(last);
    QVERIFY2(!sceneRect(*last).intersects(button), qPrintable(QString::number(sceneRect(*last).top())));
}

/// Letters that lie beneath the button are never visible through it, but all of them are while the user
/// scrolls.
void OverlayTest::isFaintWhileContentMoves()
{
    record(40);
    click("QXFloatingButton");
    QVERIFY(waitFor("QXRequestRow"));
    const QQuickItem *const button = find("QXFloatingButton");
    const auto opacity = [&] {
        return button->parentItem()->opacity();
    };
    const auto face = [&] {
        const qreal ratio = m_window->effectiveDevicePixelRatio();
        const QRectF inner = sceneRect(*button).adjusted(10, 10, -10, -10);
        return m_window->grabWindow().copy(
            QRectF(inner.topLeft() * ratio, inner.size() * ratio).toAlignedRect());
    };
    const QImage before = face();
    for (const bool isKey : {false, true}) {
        if (isKey)
            press(Qt::Key_Down);
        else
            turnWheel(*m_window, QPoint(200, 500), 1);
        QTRY_VERIFY(opacity() < 0.5);
        QTRY_COMPARE(opacity(), 1.0);
        QVERIFY(waitFor("QXRequestRow"));
        QCOMPARE(face(), before);
    }
    turnWheel(*m_window, QPoint(200, 500), 1);
    QTRY_VERIFY(opacity() < 0.5);
    QTest::mousePress(m_window.get(), Qt::LeftButton, {}, middle(*button));
    QTRY_COMPARE(opacity(), 1.0); // what the user grasps is visible
    QTest::mouseRelease(m_window.get(), Qt::LeftButton, {}, middle(*button));
}

void OverlayTest::liesAboveTheHostsDialogs()
{
    QObject *const dialog = m_window->findChild<QObject *>(u"dialog"_s);
    dialog->setProperty("focus", true);
    QVERIFY(QMetaObject::invokeMethod(dialog, "open"));
    QTRY_VERIFY(dialog->property("opened").toBool() && dialog->property("activeFocus").toBool());
    click("QXFloatingButton");
    QTRY_VERIFY(find("QXRequestListView"));
    QVERIFY(dialog->property("opened").toBool());
    // The dialog that had the focus closes beneath the list.
    QVERIFY(QMetaObject::invokeMethod(dialog, "close"));
    QTRY_VERIFY(!dialog->property("visible").toBool());
    overlay().dismissRequestList();
    QTRY_VERIFY(find("field")->hasActiveFocus());
}

void OverlayTest::makesDoWithoutAHostWindow()
{
    client().hide();
    m_window.reset();
    client().show();
    QTest::qWait(QXHostWindow::ownWindowDelay.count() * 3 / 2);
    QVERIFY(!overlay().window()); // nothing lies over the desktop
    QRasterWindow plain;          // not a Qt Quick window
    plain.resize(500, 500);
    plain.show();
    QVERIFY(waitForActive(plain));
    QTRY_VERIFY(overlay().window());
    QVERIFY(ScreenDriver::find(*overlay().window(), "QXFloatingButton"));
    // Some platforms activate each window that is shown; ours then gives the keyboard back.
    QTRY_VERIFY(overlay().window()->isExposed() && QGuiApplication::focusWindow() == &plain);
    m_window = makeWindow(*m_engine, hostQml);
    QTRY_COMPARE(overlay().window(), m_window.get());
    QVERIFY(find("QXFloatingButton"));
}

/// The screens are made while the pointer is down.
void OverlayTest::keepsTheFocusWhenScreensAreMade()
{
    QQuickItem *const button = find("QXFloatingButton");
    button->forceActiveFocus(Qt::TabFocusReason);
    const QQuickItem *const before = button->parentItem();
    QTest::mousePress(m_window.get(), Qt::LeftButton, {}, middle(*button));
    QTRY_VERIFY(button->parentItem() != before);
    QVERIFY(button->hasActiveFocus());
    QTest::mouseRelease(m_window.get(), Qt::LeftButton, {}, middle(*button));
    QTRY_VERIFY(overlay().isShowingRequestList());
}

void OverlayTest::editorFollowsTheHeldResponses()
{
    QByteArrayList delivered;
    const auto release = [&](const auto &data, const auto &, const auto &) {
        delivered.append(*data);
    };
    QVERIFY(hold("first", release) && hold("second", release));
    QTRY_COMPARE(text("QXTextEditor"), u"first"_s);
    click("QXContinueButton");
    QTRY_COMPARE(text("QXTextEditor"), u"second"_s);
    click("QXApplyButton");
    QCOMPARE(delivered, QByteArrayList({"first", "second"}));
    QTRY_VERIFY(!find("QXBreakpointEditorView") && find("field")->hasActiveFocus());
}

QTEST_MAIN(OverlayTest)
#include "OverlayTest.moc"
