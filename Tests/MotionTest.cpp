#include "Tests/EveryScreen.h"

#include "Controls/QXSpring.h"

#include <QtCore/QAbstractAnimation>
#include <QtCore/QBasicTimer>
#include <QtCore/QScopeGuard>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using namespace ScreenDriver;
using namespace std::chrono_literals;

namespace {

/// Lets animations go on by one frame at a time, however late it comes: on a busy machine, movements would be
/// over before a test can stop them. The frames come sooner than those of a screen, to save time.
class SteadyFrames final : public QAnimationDriver
{
public:
    [[nodiscard]] qint64 elapsed() const override { return m_elapsed; }

protected:
    void start() override
    {
        m_elapsed = 0;
        m_timer.start(interval, this);
        QAnimationDriver::start();
    }
    void stop() override
    {
        m_timer.stop();
        QAnimationDriver::stop();
    }
    void timerEvent(QTimerEvent *) override
    {
        m_elapsed += frame;
        advanceAnimation();
    }

private:
    static constexpr int interval = 4; // milliseconds, as is the next
    static constexpr int frame = 16;
    qint64 m_elapsed = 0;
    QBasicTimer m_timer;
};

} // namespace

/// Movements that a pointer begins, catches and turns round, and those that are switched off.
class MotionTest : public EveryScreen
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { m_frames.install(); }
    void init() override;
    void isCaught_data();
    void isCaught();
    void listIsCaught_data();
    void listIsCaught();
    void contentPullsTheSheet_data();
    void contentPullsTheSheet();
    void fingerSwipesBack();
    void leavingSheetComesBackForAnother();
    void newScreensEndMovements();
    void movesOnlyWhereWanted();
    void buttonStaysWhereTheFingerLeavesIt();

private:
    /// The spring that moves by itself or is held, or null. From here on, pointers take the time that the
    /// test says.
    QXSpring *moving();
    /// The same, and stops it in the middle of its way.
    QXSpring *stop();
    /// What has to be so whenever nothing moves.
    void checkRest(const char *top);

    void touchOrPress(bool byFinger, QPoint at)
    {
        if (byFinger)
            touch(at);
        else
            QTest::mousePress(m_window.get(), Qt::LeftButton, {}, at);
    }
    void moveOrDrag(bool byFinger, QPoint at)
    {
        if (byFinger)
            moveFinger(at);
        else
            QTest::mouseMove(m_window.get(), at);
    }
    void liftOrRelease(bool byFinger, QPoint at)
    {
        if (byFinger)
            lift(at);
        else
            QTest::mouseRelease(m_window.get(), Qt::LeftButton, {}, at);
    }

    SteadyFrames m_frames;
    std::chrono::milliseconds m_now = 0ms;
};

void MotionTest::init()
{
    qputenv("QUORVIX_REDUCED_MOTION", "0");
    ScreenTest::init();
    record(Exchanges::makeRequest(u"https://shop.test/v1/users/42"_s));
    openList();
}

QXSpring *MotionTest::moving()
{
    QXSpring *found = nullptr;
    visitVisible(m_window->contentItem(), [&](const QQuickItem *item) {
        for (QObject *const child : item->children()) {
            auto *const spring = qobject_cast<QXSpring *>(child);
            if (spring && spring->isMoving())
                found = spring;
        }
    });
    if (found)
        found->setClock([this] { return m_now; });
    return found;
}

QXSpring *MotionTest::stop()
{
    QXSpring *const spring = moving();
    if (!spring)
        return nullptr;
    spring->property("clock").value<QObject *>()->setProperty("paused", true);
    spring->setTime(0.08);
    return spring;
}

void MotionTest::checkRest(const char *top)
{
    const bool isDetails = QByteArrayView(top) == "QXRequestDetailsView";
    const bool isSheet = QByteArrayView(top) == "QXBreakpointsSheet";
    QVERIFY2(waitFor(isSheet ? "QXSheetDone" : top), top);
    const QQuickItem *const focus = m_window->activeFocusItem();
    QVERIFY(find(top)->isAncestorOf(focus) || find(top) == focus);
    QCOMPARE(find("QXRequestDetailsView") != nullptr, isDetails);
    QCOMPARE(find("QXRequestRow") == nullptr, isDetails);
    QCOMPARE(find("QXSheetDone") != nullptr, isSheet);
    const QQuickItem *const page = find(isDetails ? "QXRequestDetailsPage" : "QXRequestList");
    QCOMPARE(page->mapToScene({}).x(), 0);
    QCOMPARE(page->isEnabled(), !isSheet);
    QVERIFY(QuorvixClient::shared().overlayWindow()->hitTest(middle(*find("QXFloatingButton"))));
}

void MotionTest::isCaught_data()
{
    QTest::addColumn<QByteArray>("what");
    QTest::addColumn<bool>("byFinger");
    QTest::addColumn<bool>("turns");
    for (const char *const what : {"push", "pop", "sheet up", "sheet down"}) {
        for (const bool byFinger : {false, true}) {
            for (const bool turns : {false, true})
                QTest::addRow("%s, %s, %s", what, byFinger ? "finger" : "mouse", turns ? "turned" : "held")
                    << QByteArray(what) << byFinger << turns;
        }
    }
}

void MotionTest::isCaught()
{
    QFETCH(const QByteArray, what);
    QFETCH(const bool, byFinger);
    QFETCH(const bool, turns);
    const bool isSheet = what.startsWith("sheet");
    const bool comes = what == "push" || what == "sheet up";
    const char *const above = isSheet ? "QXBreakpointsSheet" : "QXRequestDetailsView";
    click(isSheet ? "QXBreakpointsButton" : "QXRequestRow");
    if (!comes) {
        QVERIFY(waitFor(above));
        press(Qt::Key_Escape);
    }
    QXSpring *const spring = stop();
    QVERIFY(spring);
    const qreal caughtAt = spring->position();
    QVERIFY(caughtAt > 0.2 && caughtAt < 0.8);
    if (!isSheet)
        QVERIFY(find("QXRequestRow") && find(above));

    const QPoint from(200, 820);
    touchOrPress(byFinger, from);
    QVERIFY(spring->isHeld());
    spring->property("clock").value<QObject *>()->setProperty("paused", false);
    QCoreApplication::processEvents();
    QCOMPARE(spring->position(), caughtAt);
    QPoint at = from;
    if (turns) {
        m_now += 16ms;
        const int away = comes ? 20 : -20;
        at += isSheet ? QPoint(0, away) : QPoint(away, 0);
        moveOrDrag(byFinger, at);
        QTRY_COMPARE(spring->position(), caughtAt - away / spring->property("extent").toReal());
    }
    liftOrRelease(byFinger, at);
    QTRY_VERIFY(!spring->isMoving());
    const bool isAbove = comes != turns;
    checkRest(isAbove ? above : "QXRequestListView");
    // All works as before.
    if (isAbove) {
        press(Qt::Key_Escape);
        QTRY_VERIFY(!find(above));
        checkRest("QXRequestListView");
    }
    click(isSheet ? "QXBreakpointsButton" : "QXRequestRow");
    checkRest(above);
}

void MotionTest::listIsCaught_data()
{
    QTest::addColumn<bool>("opens");
    QTest::addColumn<bool>("byFinger");
    QTest::addColumn<bool>("turns");
    for (const bool opens : {true, false}) {
        for (const bool byFinger : {false, true}) {
            for (const bool turns : {false, true})
                QTest::addRow("%s, %s, %s", opens ? "opens" : "closes", byFinger ? "finger" : "mouse",
                              turns ? "turned" : "held")
                    << opens << byFinger << turns;
        }
    }
}

void MotionTest::listIsCaught()
{
    QFETCH(const bool, opens);
    QFETCH(const bool, byFinger);
    QFETCH(const bool, turns);
    const auto &overlay = *QuorvixClient::shared().overlayWindow();
    press(Qt::Key_Escape);
    if (opens) {
        QTRY_VERIFY(!overlay.isShowingRequestList());
        click(middle(*find("QXFloatingButton")));
    }
    QXSpring *const spring = stop();
    QVERIFY(spring);
    const qreal caughtAt = spring->position();
    QPoint at(200, 820);
    touchOrPress(byFinger, at);
    QVERIFY(spring->isHeld());
    spring->property("clock").value<QObject *>()->setProperty("paused", false);
    if (turns) {
        m_now += 16ms;
        const int away = opens ? 20 : -20;
        at.ry() += away;
        moveOrDrag(byFinger, at);
        QTRY_COMPARE(spring->position(), caughtAt - away / double(m_window->height()));
    }
    liftOrRelease(byFinger, at);
    if (opens != turns) {
        QTRY_VERIFY(!spring->isMoving());
        QVERIFY(overlay.presentsRequestList());
        checkRest("QXRequestListView");
        press(Qt::Key_Escape);
    }
    QTRY_VERIFY(!find("QXRequestListView"));
    QVERIFY(!overlay.isShowingRequestList());
}

void MotionTest::contentPullsTheSheet_data()
{
    QTest::addColumn<bool>("byFinger");
    QTest::addColumn<int>("scrolled"); // before the pull, in pixels
    QTest::addColumn<int>("distance"); // of the sheet
    QTest::addColumn<bool>("isFast");
    QTest::addColumn<bool>("isOpen");
    for (const bool byFinger : {false, true}) {
        const char *const by = byFinger ? "finger" : "mouse";
        QTest::addRow("%s, near", by) << byFinger << 0 << 100 << false << true;
        QTest::addRow("%s, far", by) << byFinger << 0 << 400 << false << false;
        QTest::addRow("%s, thrown", by) << byFinger << 0 << 60 << true << false;
        QTest::addRow("%s, scrolls first", by) << byFinger << 120 << 60 << true << true;
    }
}

void MotionTest::contentPullsTheSheet()
{
    QFETCH(const bool, byFinger);
    QFETCH(const int, scrolled);
    QFETCH(const int, distance);
    QFETCH(const bool, isFast);
    QFETCH(const bool, isOpen);
    for (int i = 0; i < 40; ++i)
        QXBreakpointStore::shared().insert(
            *QXBreakpointKey::make(QUrl(u"https://shop.test/%1"_s.arg(i)), {}));
    click("QXBreakpointsButton");
    QVERIFY(waitFor("QXBreakpointRow"));
    QQuickItem *const list = find("QXBreakpointRow")->parentItem()->parentItem();
    list->setProperty("contentY", scrolled);
    const qreal top = list->mapToScene({}).y();
    QPoint at(200, 300);
    touchOrPress(byFinger, at);
    QVERIFY(QTest::qWaitFor([&] {
        if (moving() && moving()->isHeld())
            return true;
        at.ry() += 10;
        moveOrDrag(byFinger, at);
        return false;
    }));
    QVERIFY(waitFor("QXBreakpointRow"));
    QXSpring *const spring = moving();
    QCOMPARE(list->property("contentY").toInt(), 0);
    const qreal pulled = list->mapToScene({}).y() - top;
    QVERIFY(pulled < 42 && at.y() - 300 >= scrolled + 10);
    for (const int way : {distance / 2, distance}) {
        m_now += isFast ? 16ms : 1000ms;
        moveOrDrag(byFinger, at + QPoint(0, way));
        QTRY_COMPARE(qRound(list->mapToScene({}).y() - top - pulled), way);
    }
    at.ry() += distance;
    liftOrRelease(byFinger, at);
    QTRY_VERIFY(!spring->isMoving());
    checkRest(isOpen ? "QXBreakpointsSheet" : "QXRequestListView");
}

void MotionTest::fingerSwipesBack()
{
    openDetails();
    const auto swipe = [this](int distance) {
        touch({4, 400});
        moveFinger({24, 400}); // far enough to be a swipe
        QTRY_VERIFY(moving());
        moveFinger({24 + distance, 400});
        QTRY_COMPARE(qRound(find("QXRequestDetailsView")->mapToScene({}).x()), distance);
        m_now += 1s; // so that only the distance counts
        lift({24 + distance, 400});
    };
    swipe(80);
    QTRY_VERIFY(!find("QXRequestRow"));
    checkRest("QXRequestDetailsView");
    swipe(300);
    QTRY_VERIFY(!find("QXRequestDetailsView"));
    checkRest("QXRequestListView");
}

void MotionTest::leavingSheetComesBackForAnother()
{
    click("QXBreakpointsButton");
    QVERIFY(waitFor("QXSheetDone"));
    press(Qt::Key_Escape);
    QVERIFY(stop());
    click(middle(*find("QXBreakpointsButton")));
    QXSpring *const spring = stop();
    QVERIFY(spring && spring->isOpen());
    spring->finish();
    checkRest("QXBreakpointsSheet");
}

/// Keys that come during a movement mean what they would after it.
void MotionTest::newScreensEndMovements()
{
    click("QXRequestRow");
    QVERIFY(stop());
    press(Qt::Key_Escape);
    QVERIFY(stop() && !stop()->isOpen());
    press(Qt::Key_Return); // of the row, which has the focus again
    QXSpring *const spring = stop();
    QVERIFY(spring && spring->isOpen());
    QCOMPARE(findAll("QXRequestDetailsView").size(), 1);
    spring->finish();
    checkRest("QXRequestDetailsView");
    press(Qt::Key_Escape);
    QVERIFY(stop());
    press(Qt::Key_Escape);
    QTRY_VERIFY(!find("QXRequestListView"));
}

void MotionTest::movesOnlyWhereWanted()
{
    QuorvixClient::shared().hide();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    qputenv("QUORVIX_REDUCED_MOTION", "1");
    const auto restore = qScopeGuard([] { qunsetenv("QUORVIX_REDUCED_MOTION"); });
    QuorvixClient::shared().show();
    const auto tap = [this](const char *name) {
        click(middle(*find(name)));
    };
    tap("QXFloatingButton");
    QVERIFY(find("QXRequestListView") && find("QXRequestListView")->y() == 0);
    QVERIFY(waitFor("QXRequestRow"));
    tap("QXRequestRow");
    QVERIFY(find("QXRequestDetailsView") && !find("QXRequestRow"));
    QCOMPARE(find("QXRequestDetailsView")->mapToScene({}).x(), 0);
    QVERIFY(waitFor("QXRequestDetailsView"));
    tap("QXBackButton");
    QVERIFY(!find("QXRequestDetailsView") && find("QXRequestRow"));
    tap("QXBreakpointsButton");
    QVERIFY(find("QXSheetDone") && !stop());
    QVERIFY(waitFor("QXSheetDone"));
    tap("QXSheetDone");
    QVERIFY(!find("QXSheetDone"));
    checkRest("QXRequestListView");
    tap("QXCloseButton");
    QVERIFY(!QuorvixClient::shared().overlayWindow()->isShowingRequestList());
}

void MotionTest::buttonStaysWhereTheFingerLeavesIt()
{
    const auto center = [] {
        return QuorvixClient::shared().overlayWindow()->buttonCenter();
    };
    const QPoint from = center().toPoint();
    touch(from);
    for (const QPoint to : {QPoint(150, 500), QPoint(160, 400), QPoint(170, 300)}) {
        moveFinger(to);
        QTRY_COMPARE(center(), QPointF(to));
    }
    lift({170, 300});
    QVERIFY(waitFor("QXFloatingButton"));
    QCOMPARE(center(), QPointF(170, 300));
    touch({170, 300});
    moveFinger({-50, 2000});
    lift({-50, 2000});
    QVERIFY(waitFor("QXFloatingButton"));
    QCOMPARE(center(), QPointF(12 + 26, m_window->height() - 12 - 26));
}

QTEST_MAIN(MotionTest)
#include "MotionTest.moc"
