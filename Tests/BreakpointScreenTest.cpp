#include "Tests/ScreenDriver.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QuorvixClient.h"

#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QPointingDevice>

using namespace Qt::StringLiterals;
using namespace ScreenDriver;

namespace {

const QUrl heldUrl(u"http://host/held"_s);

/// What the host received.
struct Delivery
{
    int status;
    QByteArray body;

    bool operator==(const Delivery &) const = default;
};

QXBreakpointStore &store()
{
    return QXBreakpointStore::shared();
}

void addRule(const QString &path)
{
    store().insert(*QXBreakpointKey::make(QUrl(u"http://host/"_s + path), {}));
}

} // namespace

class BreakpointScreenTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void releasesWhatIsShown_data();
    void releasesWhatIsShown();
    void showsTheHeldResponse();
    void copiesTheBody();
    void worksByKeyboardAlone();
    void keepsEditsWhenTheWindowChanges();
    void rulesAreDeleted_data();
    void rulesAreDeleted();
    void listFollowsTheStore();

private:
    void hold(const QByteArray &body);
    void openRules();
    [[nodiscard]] QString text(const char *name);
    void press(Qt::Key key) { QTest::keyClick(m_window.get(), key); }

    std::unique_ptr<QQuickWindow> m_window;
    std::unique_ptr<QPointingDevice> m_touchScreen{QTest::createTouchDevice()};
    QList<Delivery> m_delivered;
};

void BreakpointScreenTest::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(u"QuorvixTests"_s);
    QCoreApplication::setApplicationName(u"BreakpointScreenTest"_s);
    // Every look at the clock is past the last cooldown.
    QXBreakpointCenter::shared().setClock(
        [now = QXBreakpointCenter::TimePoint()]() mutable { return now += std::chrono::seconds(1); });
}

void BreakpointScreenTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    QSettings().clear();
    m_delivered.clear();
    m_window = std::make_unique<QQuickWindow>();
    m_window->resize(390, 844);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QuorvixClient::shared().show();
}

void BreakpointScreenTest::cleanup()
{
    while (QXBreakpointCenter::shared().activeBreakpoint())
        QXBreakpointCenter::shared().continueActive();
    QuorvixClient::shared().hide();
    store().setRules({});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_window.reset();
}

void BreakpointScreenTest::hold(const QByteArray &body)
{
    store().insert(*QXBreakpointKey::make(heldUrl, {}));
    QVERIFY(QXBreakpointCenter::shared().check(
        URLRequest(heldUrl), u"1"_s, body, NSHTTPURLResponse::create(heldUrl, 200, u"HTTP/1.1"_s, {}), {},
        [this](const auto &data, const auto &response, const auto &) {
            const auto *const http = dynamic_cast<const NSHTTPURLResponse *>(response.get());
            m_delivered.append({http ? int(http->statusCode()) : -1, data.value_or(QByteArray())});
        }));
    QTRY_VERIFY(find(*m_window, "QXBreakpointEditorView"));
}

QString BreakpointScreenTest::text(const char *name)
{
    const QQuickItem *const item = find(*m_window, name);
    return item ? item->property("text").toString() : QString();
}

void BreakpointScreenTest::releasesWhatIsShown_data()
{
    QTest::addColumn<QByteArray>("held");
    QTest::addColumn<QByteArray>("typedStatus");
    QTest::addColumn<bool>("deletesBody");
    QTest::addColumn<QByteArray>("typedBody");
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("body");

    const QByteArray apply = "QXApplyButton";
    const QByteArray release = "QXContinueButton";
    QTest::newRow("both edited") << "old"_ba
                                 << "404"_ba << true << "{\"new\":1}"_ba << apply << 404 << "{\"new\":1}"_ba;
    QTest::newRow("added to the body") << "old"_ba
                                       << ""_ba << false << " and new"_ba << apply << 200 << "old and new"_ba;
    QTest::newRow("no number for a status") << "old"_ba
                                            << "abc"_ba << false << ""_ba << apply << 200 << "old"_ba;
    QTest::newRow("body deleted") << "old"_ba
                                  << ""_ba << true << ""_ba << apply << 200 << ""_ba;
    QTest::newRow("edits not wanted") << "old"_ba
                                      << "404"_ba << true << "new"_ba << release << 200 << "old"_ba;
    QTest::newRow("line ends left alone") << "a\r\nb\rc\n"_ba
                                          << ""_ba << false << ""_ba << apply << 200 << "a\r\nb\rc\n"_ba;
    QTest::newRow("bytes shown as text") << "\x00\xff|"_ba
                                         << ""_ba << false << ""_ba << apply << 200 << "\0\xEF\xBF\xBD|"_ba;
    QTest::newRow("bytes as they came") << "\xff\xfe"_ba
                                        << ""_ba << false << ""_ba << release << 200 << "\xff\xfe"_ba;
}

void BreakpointScreenTest::releasesWhatIsShown()
{
    QFETCH(const QByteArray, held);
    QFETCH(const QByteArray, typedStatus);
    QFETCH(const bool, deletesBody);
    QFETCH(const QByteArray, typedBody);
    QFETCH(const QByteArray, button);
    QFETCH(const int, status);
    QFETCH(const QByteArray, body);

    hold(held);
    if (!typedStatus.isEmpty()) {
        click(*m_window, "QXStatusCodeField");
        QTest::keySequence(m_window.get(), QKeySequence::SelectAll);
        type(*m_window, typedStatus);
    }
    if (deletesBody)
        click(*m_window, "QXDeleteBodyButton");
    if (!typedBody.isEmpty()) {
        click(*m_window, "QXTextEditor");
        QTest::keySequence(m_window.get(), QKeySequence::MoveToEndOfDocument);
        type(*m_window, typedBody);
    }
    click(*m_window, button);
    QCOMPARE(m_delivered, QList<Delivery>({{status, body}}));
    QTRY_VERIFY(!find(*m_window, "QXBreakpointEditorView"));
}

void BreakpointScreenTest::showsTheHeldResponse()
{
    hold("the body");
    QCOMPARE(text("QXBreakpointTitle"), u"GET host/held"_s);
    QCOMPARE(text("QXStatusCodeField"), u"200"_s);
    QCOMPARE(text("QXTextEditor"), u"the body"_s);
    for (const char *name : {"QXContinueButton", "QXApplyButton", "QXStatusCodeField", "QXCopyBodyButton",
                             "QXDeleteBodyButton", "QXTextEditor"}) {
        const QQuickItem *const item = find(*m_window, name);
        QVERIFY2(item && item->height() >= 44 && item->width() >= 44, name);
    }
}

void BreakpointScreenTest::copiesTheBody()
{
    hold("the body");
    click(*m_window, "QXCopyBodyButton");
    QCOMPARE(QGuiApplication::clipboard()->text(), u"the body"_s);
    QCOMPARE(m_delivered, {});
}

void BreakpointScreenTest::worksByKeyboardAlone()
{
    hold("old");
    QTRY_VERIFY(find(*m_window, "QXStatusCodeField")->hasActiveFocus());
    QTest::keySequence(m_window.get(), QKeySequence::SelectAll);
    type(*m_window, "201");
    for (int i = 0; i < 10 && !find(*m_window, "QXTextEditor")->hasActiveFocus(); ++i)
        press(Qt::Key_Tab);
    QVERIFY(find(*m_window, "QXTextEditor")->hasActiveFocus());
    QTest::keySequence(m_window.get(), QKeySequence::SelectAll);
    type(*m_window, "new");
    for (int i = 0; i < 10 && !find(*m_window, "QXApplyButton")->hasActiveFocus(); ++i)
        press(Qt::Key_Tab);
    press(Qt::Key_Return);
    QCOMPARE(m_delivered, QList<Delivery>({{201, "new"}}));
}

void BreakpointScreenTest::keepsEditsWhenTheWindowChanges()
{
    hold("old");
    click(*m_window, "QXDeleteBodyButton");
    m_window->resize(800, 600);
    QTRY_COMPARE(find(*m_window, "QXBreakpointEditorView")->width(), 800);

    auto next = std::make_unique<QQuickWindow>();
    next->resize(390, 844);
    next->show();
    m_window->close();
    m_window = std::move(next);
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QTRY_VERIFY(find(*m_window, "QXBreakpointEditorView"));
    click(*m_window, "QXApplyButton");
    QCOMPARE(m_delivered, QList<Delivery>({{200, ""}}));
}

void BreakpointScreenTest::openRules()
{
    click(*m_window, "QXFloatingButton");
    click(*m_window, "QXBreakpointsButton");
    QVERIFY(waitForRest(*m_window, "QXBreakpointsListView"));
}

void BreakpointScreenTest::rulesAreDeleted_data()
{
    QTest::addColumn<QString>("way");
    for (const char *way : {"swipe by mouse", "swipe by touch", "edit mode", "key"})
        QTest::newRow(way) << QString::fromLatin1(way);
}

void BreakpointScreenTest::rulesAreDeleted()
{
    QFETCH(const QString, way);
    addRule(u"a"_s);
    openRules();
    const QQuickItem *const row = find(*m_window, "QXBreakpointRow");
    QVERIFY(row);
    const QPoint at = middle(*row);
    if (way == "edit mode"_L1) {
        click(*m_window, "QXBreakpointsEditButton");
        click(*m_window, "QXBreakpointMinusButton");
    } else if (way == "key"_L1) {
        find(*m_window, "QXBreakpointsListView")->forceActiveFocus();
        press(Qt::Key_Down);
        press(Qt::Key_Delete);
    } else {
        if (way == "swipe by touch"_L1) {
            QTest::touchEvent(m_window.get(), m_touchScreen.get()).press(0, at);
            for (int step = 1; step <= 8; ++step)
                QTest::touchEvent(m_window.get(), m_touchScreen.get()).move(0, at - QPoint(20 * step, 0));
            QTest::touchEvent(m_window.get(), m_touchScreen.get()).release(0, at - QPoint(160, 0));
        } else {
            drag(*m_window, at, QPoint(-160, 0));
        }
        QCOMPARE(store().rules().size(), 1); // not before it is confirmed
        click(*m_window, "QXBreakpointDeleteButton");
    }
    QTRY_VERIFY(store().rules().isEmpty());
    QTRY_VERIFY(!find(*m_window, "QXBreakpointRow"));
    QVERIFY(find(*m_window, "QXNoBreakpoints"));
}

void BreakpointScreenTest::listFollowsTheStore()
{
    openRules();
    QVERIFY(find(*m_window, "QXNoBreakpoints"));
    addRule(u"b"_s);
    addRule(u"a"_s);
    QTRY_COMPARE(findAll(*m_window, "QXBreakpointRow").size(), 2);
    store().remove(*QXBreakpointKey::make(QUrl(u"http://host/b"_s), {}));
    QTRY_COMPARE(findAll(*m_window, "QXBreakpointRow").size(), 1);
    QCOMPARE(find(*m_window, "QXBreakpointRow")->property("displayText").toString(), u"GET host/a"_s);
}

QTEST_MAIN(BreakpointScreenTest)
#include "BreakpointScreenTest.moc"
