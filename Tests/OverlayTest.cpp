#include "Tests/ScreenDriver.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXBreakpointWindow.h"
#include "Quorvix/QXLog.h"
#include "Quorvix/QXOverlay.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtQml/QQmlApplicationEngine>

using namespace ScreenDriver;

namespace {

constexpr char hostQml[] = R"(
import QtQuick
import QtQuick.Controls.Basic

ApplicationWindow {
    id: root

    property int clicks: 0
    property int hovers: 0

    width: 390
    height: 844
    visible: true

    ListView {
        objectName: "list"
        anchors.fill: parent
        model: 100
        delegate: Text { height: 40; text: index }
    }
    MouseArea {
        objectName: "everywhere"
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
        property int unused
        modal: true
        anchors.centerIn: parent
        contentItem: Text { text: "Dialog" }
    }
}
)";

/// A host application: an engine and its window.
struct Host
{
    Host()
    {
        engine.loadData(hostQml);
        window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
        if (!window || !QTest::qWaitForWindowActive(window))
            qFatal("no host window");
    }

    QQmlApplicationEngine engine;
    QQuickWindow *window;
};

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
        QXRequestRecorder::shared().record(QString::number(i),
                                           URLRequest(QUrl(QStringLiteral("http://host/a"))));
}

QByteArray savedPosition()
{
    return QSettings().value(QXOverlay::dragPositionKey).toByteArray();
}

} // namespace

class OverlayTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void facade();
    void badge_data();
    void badge();
    void standsWhereItWasLeft();
    void unreadablePositionIsIgnored_data();
    void unreadablePositionIsIgnored();
    void staysInsideWindowsOfEverySize();
    void whatIsNotTheButtonIsTheHosts();
    void twoClicksOpenAndClose_data();
    void twoClicksOpenAndClose();
    void liesAboveTheHostsDialogs();
    void makesDoWithoutAHostWindow();
    void leavesAWindowThatHides();
    void neverKeepsTheApplicationFromEnding();
    void survivesTheHostsWindow();
    void editorFollowsTheHeldResponses();
    void hideDuringAReleaseIsSafe();

private:
    std::unique_ptr<Host> m_host;
};

void OverlayTest::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(QStringLiteral("QuorvixTests"));
    QCoreApplication::setApplicationName(QStringLiteral("OverlayTest"));
    // Every look at the clock is past the last cooldown.
    QXBreakpointCenter::shared().setClock(
        [now = QXBreakpointCenter::TimePoint()]() mutable { return now += std::chrono::seconds(1); });
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
}

void OverlayTest::init()
{
    QSettings().clear();
    QXRequestRecorder::shared().clear();
    m_host = std::make_unique<Host>();
}

void OverlayTest::cleanup()
{
    client().hide();
    m_host.reset();
    QXBreakpointStore::shared().setRules({});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
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
    QCOMPARE(findAll(*m_host->window, "QXFloatingButton").size(), 1);
    client().hide();
    QVERIFY(findAll(*m_host->window, "QXFloatingButton").isEmpty());
    client().show();
    QVERIFY(client().overlayWindow() != first.data());
    QTRY_VERIFY(!first);
    QCOMPARE(client().logLevel(), QXLogLevel::none);
}

void OverlayTest::badge_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("text");
    QTest::newRow("hidden") << 0 << QString();
    QTest::newRow("one") << 1 << QStringLiteral("1");
    QTest::newRow("largest in full") << 99 << QStringLiteral("99");
    QTest::newRow("beyond") << 100 << QStringLiteral("99+");
}

void OverlayTest::badge()
{
    QFETCH(const int, count);
    QFETCH(const QString, text);
    client().show();
    record(count);
    QTRY_COMPARE(overlay().badgeText(), text);
    QQuickItem *const label = find(*m_host->window, "QXBadgeLabel");
    QCOMPARE(label ? label->property("text").toString() : QString(), text);
    client().hide();
    client().show();
    QCOMPARE(overlay().badgeText(), text); // from the start, not from the next change
}

void OverlayTest::standsWhereItWasLeft()
{
    client().show();
    QQuickItem *const button = find(*m_host->window, "QXFloatingButton");
    QCOMPARE(button->size(), QSizeF(52, 52));
    QCOMPARE(middle(*button), QPoint(50, 844 - 50));
    drag(*m_host->window, middle(*button), QPoint(100, -200));
    QVERIFY(!overlay().isShowingRequestList());
    const QPoint dropped = middle(*button);
    QVERIFY((dropped - QPoint(150, 594)).manhattanLength() <= 2);
    const auto saved = QXOverlayPoint::decoded(savedPosition());
    QVERIFY2(saved, savedPosition().constData());
    QVERIFY(qAbs(195 + saved->x - dropped.x()) < 1 && qAbs(422 + saved->y - dropped.y()) < 1);

    client().hide();
    client().show();
    QCOMPARE(middle(*find(*m_host->window, "QXFloatingButton")), dropped);

    drag(*m_host->window, dropped, QPoint(-1000, -1000));
    QCOMPARE(overlay().buttonCenter(), QPointF(12 + 26, 12 + 26));
    drag(*m_host->window, overlay().buttonCenter().toPoint(), QPoint(1000, 2000));
    QCOMPARE(overlay().buttonCenter(), QPointF(390 - 38, 844 - 38));
}

void OverlayTest::unreadablePositionIsIgnored_data()
{
    QTest::addColumn<QByteArray>("saved");
    QTest::newRow("not JSON") << QByteArray("{\"x\":");
    QTest::newRow("a field missing") << QByteArray("{\"x\":1}");
    QTest::newRow("not numbers") << QByteArray("{\"x\":\"1\",\"y\":true}");
    QTest::newRow("not an object") << QByteArray("[1,2]");
}

void OverlayTest::unreadablePositionIsIgnored()
{
    QFETCH(const QByteArray, saved);
    QSettings().setValue(QXOverlay::dragPositionKey, saved);
    client().show();
    QCOMPARE(overlay().buttonCenter(), QPointF(50, 844 - 50));
}

void OverlayTest::staysInsideWindowsOfEverySize()
{
    client().show();
    m_host->window->resize(844, 390);
    QTRY_COMPARE(overlay().buttonCenter(), QPointF(50, 390 - 50));
    drag(*m_host->window, QPoint(50, 340), QPoint(2000, 0));
    m_host->window->resize(390, 844);
    QTRY_VERIFY(m_host->window->contentItem()->width() == 390);
    QCOMPARE(overlay().buttonCenter().x(), 390.0 - 38);
    m_host->window->resize(844, 390);
    QTRY_COMPARE(overlay().buttonCenter(), QPointF(844 - 38, 390 - 50)); // still the place that was chosen
}

void OverlayTest::whatIsNotTheButtonIsTheHosts()
{
    client().show();
    QQuickWindow &window = *m_host->window;
    const auto clicks = [&] {
        return window.property("clicks").toInt();
    };
    QTest::mouseMove(&window, QPoint(300, 300));
    QTRY_VERIFY(window.property("hovers").toInt() > 0);
    QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(200, 500));
    QCOMPARE(clicks(), 1);
    QVERIFY(overlay().hitTest(overlay().buttonCenter()) && !overlay().hitTest(QPointF(200, 500)));

    QQuickItem *const list = find(window, "list");
    turnWheel(window, QPoint(200, 300), 1);
    QTRY_VERIFY(list->property("contentY").toReal() > 0);
    const qreal scrolled = list->property("contentY").toReal();
    drag(window, QPoint(200, 600), QPoint(0, -300));
    QTRY_VERIFY(list->property("contentY").toReal() > scrolled);

    const int before = clicks();
    click(window, "QXFloatingButton");
    QCOMPARE(clicks(), before);
    QTRY_VERIFY(find(window, "QXRequestListView"));
    QTest::mouseClick(&window, Qt::LeftButton, {}, QPoint(200, 500));
    turnWheel(window, QPoint(200, 500), 1);
    QCOMPARE(clicks(), before);
}

void OverlayTest::twoClicksOpenAndClose_data()
{
    QTest::addColumn<bool>("touch");
    QTest::newRow("mouse") << false;
    QTest::newRow("touch") << true;
}

void OverlayTest::twoClicksOpenAndClose()
{
    QFETCH(const bool, touch);
    client().show();
    QQuickWindow &window = *m_host->window;
    QVERIFY(find(window, "field")->hasActiveFocus());
    static const std::unique_ptr<QPointingDevice> device(QTest::createTouchDevice());
    const auto press = [&] {
        const QPoint place = overlay().buttonCenter().toPoint();
        if (touch) {
            QTest::touchEvent(&window, device.get()).press(0, place, &window).commit();
            QTest::touchEvent(&window, device.get()).release(0, place, &window).commit();
        } else {
            QTest::mouseClick(&window, Qt::LeftButton, {}, place);
        }
    };
    press();
    QVERIFY(overlay().isShowingRequestList());
    QTRY_VERIFY(find(window, "QXRequestListView"));
    QTRY_VERIFY(!find(window, "field")->hasActiveFocus());
    QVERIFY(waitForRest(window, "QXRequestListView"));
    press();
    QVERIFY(overlay().isShowingRequestList()); // until it has left
    QTRY_VERIFY(!overlay().isShowingRequestList());
    QVERIFY(!find(window, "QXRequestListView"));
    QTRY_VERIFY(find(window, "field")->hasActiveFocus());
}

void OverlayTest::liesAboveTheHostsDialogs()
{
    client().show();
    QQuickWindow &window = *m_host->window;
    QObject *const dialog = window.findChild<QObject *>(QStringLiteral("dialog"));
    QVERIFY(QMetaObject::invokeMethod(dialog, "open"));
    QTRY_VERIFY(dialog->property("opened").toBool());
    click(window, "QXFloatingButton");
    QTRY_VERIFY(find(window, "QXRequestListView"));
    QVERIFY(dialog->property("opened").toBool());
}

void OverlayTest::makesDoWithoutAHostWindow()
{
    m_host.reset();
    client().show();
    QQuickWindow *const own = overlay().window();
    QVERIFY(own && own->isVisible());
    QCOMPARE(own->size(), own->screen()->size());
    QVERIFY(find(*own, "QXFloatingButton"));
    m_host = std::make_unique<Host>();
    QTRY_COMPARE(overlay().window(), m_host->window);
    QVERIFY(find(*m_host->window, "QXFloatingButton"));
}

void OverlayTest::leavesAWindowThatHides()
{
    client().show();
    Host main;
    QCOMPARE(overlay().window(), m_host->window); // stays where it is while that can be seen
    m_host->window->hide();
    QTRY_COMPARE(overlay().window(), main.window);
    client().hide();
}

void OverlayTest::neverKeepsTheApplicationFromEnding()
{
    m_host.reset();
    client().show();
    QWindow plain; // no window for Qt Quick to draw on
    plain.show();
    QVERIFY(QTest::qWaitForWindowActive(&plain));
    QTRY_COMPARE(overlay().window()->transientParent(), &plain); // such windows do not count as the last one
}

void OverlayTest::survivesTheHostsWindow()
{
    client().show();
    click(*m_host->window, "QXFloatingButton");
    m_host.reset();
    record(3);
    QCoreApplication::processEvents();
    m_host = std::make_unique<Host>();
    QTRY_COMPARE(overlay().window(), m_host->window);
    QTRY_COMPARE(overlay().badgeText(), QStringLiteral("3"));
}

void OverlayTest::editorFollowsTheHeldResponses()
{
    const QUrl url(QStringLiteral("http://host/a"));
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(url, {}));
    QStringList delivered;
    const auto hold = [&](const char *body) {
        auto response = NSHTTPURLResponse::create(url, 200, QStringLiteral("HTTP/1.1"), {});
        return QXBreakpointCenter::shared().check(
            URLRequest(url), QStringLiteral("1"), QByteArray(body), response, {},
            [&](auto data, auto, auto) { delivered.append(QString::fromUtf8(*data)); });
    };
    client().show();
    QQuickWindow &window = *m_host->window;
    QVERIFY(hold("first") && hold("second"));
    QVERIFY(overlay().breakpointWindow());
    QTRY_VERIFY(overlay().breakpointWindow()->isKeyWindow());
    const auto body = [&] {
        QQuickItem *const editor = find(window, "QXTextEditor");
        return editor ? editor->property("text").toString() : QString();
    };
    QTRY_COMPARE(body(), QStringLiteral("first"));
    click(window, "QXContinueButton");
    QTRY_COMPARE(body(), QStringLiteral("second"));
    QCOMPARE(findAll(window, "QXBreakpointEditorView").size(), 1);
    click(window, "QXApplyButton");
    QCOMPARE(delivered, QStringList({QStringLiteral("first"), QStringLiteral("second")}));
    QVERIFY(!overlay().breakpointWindow());
    QTRY_VERIFY(!find(window, "QXBreakpointEditorView"));
    QTRY_VERIFY(find(window, "field")->hasActiveFocus());
}

void OverlayTest::hideDuringAReleaseIsSafe()
{
    const QUrl url(QStringLiteral("http://host/a"));
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(url, {}));
    client().show();
    bool heard = false;
    QVERIFY(QXBreakpointCenter::shared().check(
        URLRequest(url), QStringLiteral("1"), {},
        NSHTTPURLResponse::create(url, 200, QStringLiteral("HTTP/1.1"), {}), {}, [&](auto, auto, auto) {
            client().hide();
            heard = true;
        }));
    click(*m_host->window, "QXContinueButton");
    QVERIFY(heard && !client().overlayWindow());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QTRY_VERIFY(!find(*m_host->window, "QXBreakpointEditorView"));
}

QTEST_MAIN(OverlayTest)
#include "OverlayTest.moc"
