#include "Tests/Exchanges.h"
#include "Tests/ProcessStatus.h"
#include "Tests/ScreenTest.h"
#include "Tests/TestKit.h"

#include "Quorvix/QXApiMockGenerator.h"
#include "Quorvix/QXCurlCommandBuilder.h"
#include "Quorvix/QXRawDetails.h"
#include "Quorvix/QXRequestDetailsViewModel.h"

#include "Platform/BackgroundThread.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtCore/QSemaphore>
#include <QtCore/QTimer>

#include <atomic>
#include <cstdio>
#include <functional>

using namespace Qt::StringLiterals;
using ScreenDriver::middle;

namespace {

constexpr qsizetype megabyte = 1'000'000;
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif
/// Beside what an action takes with a small body, in milliseconds. Without optimisation all that the main
/// thread does takes longer, but what it did with large bodies took seconds.
#ifdef QT_DEBUG
constexpr qint64 longestPause = 150;
#else
constexpr qint64 longestPause = 50;
#endif

/// Bodies are large enough for seconds of work on the main thread if that is where it is done. For figures of
/// the largest bodies: QUORVIX_BIG=1.
qsizetype bodySize()
{
    if (isSanitized)
        return 2 * megabyte;
#ifdef QT_DEBUG
    return 6 * megabyte;
#else
    return (qEnvironmentVariableIsSet("QUORVIX_BIG") ? 200 : 40) * megabyte;
#endif
}

/// Notes the longest time for which the main thread does not come back to its event loop.
class Heartbeat final
{
public:
    Heartbeat()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&m_timer, &QTimer::timeout, [this] { beat(); });
        m_timer.start(interval);
    }

    void forget()
    {
        m_longest = 0;
        m_sinceBeat.start();
    }
    [[nodiscard]] qint64 longest()
    {
        beat();
        return m_longest;
    }

private:
    static constexpr int interval = 5; // milliseconds

    void beat() { m_longest = std::max(m_longest, m_sinceBeat.restart() - interval); }

    QTimer m_timer;
    QElapsedTimer m_sinceBeat;
    qint64 m_longest = 0;
};

using MakeBody = QByteArray (*)(qsizetype);

QByteArray objects(qsizetype size)
{
    QByteArray body = "[";
    for (int i = 0; body.size() < size; ++i)
        body += R"({"id":)" + QByteArray::number(i) + R"(,"name":"item )" + QByteArray::number(i * 7919) +
                R"(","tags":["red","blue"],"price":12.5,"note":"a note about this item"},)";
    body.back() = ']';
    return body;
}

/// As many values as possible, at most ten million.
QByteArray numbers(qsizetype size)
{
    QByteArray body = '[' + "1,"_ba.repeated(qMin(size, 20 * megabyte) / 2);
    body.back() = ']';
    return body;
}

/// A map with a type for each key, at most 340,000 of them.
QByteArray map(qsizetype size)
{
    QByteArray body = "{";
    for (int i = 0; body.size() < qMin(size, 10 * megabyte); ++i)
        body += "\"user-" + QByteArray::number(i) + R"(":{"id":)" + QByteArray::number(i) + "},";
    body.back() = '}';
    return body;
}

QByteArray encoded(qsizetype size)
{
    return "{\"text\":\"" + objects(size * 3 / 4).toBase64() + "\"}";
}

QByteArray bytes(qsizetype size)
{
    return "\xff\x00\x80\x01"_ba.repeated(size / 4);
}

} // namespace

/// Uses every screen with large bodies and measures for how long the main thread does nothing else.
class ResponsivenessTest : public ScreenTest
{
    Q_OBJECT

private Q_SLOTS:
    void mainThreadGoesOn_data();
    void mainThreadGoesOn();
    void tasksAreCancelled_data();
    void tasksAreCancelled();
    void resultIsThatOfTheMainThread();
    void taskIsDeletedByItsSlots_data();
    void taskIsDeletedByItsSlots();

private:
    using Step = std::function<void()>;
    using Condition = std::function<bool()>;

    void openDetails(const QByteArray &body);
    void use(const QByteArray &kind, const QByteArray &body);
    void measure(const char *action, const Step &step, const Condition &isDone);
    void share(const char *action);
    void openBodyMenu();
    [[nodiscard]] int rows()
    {
        return find("QXLogTreeList") ? find("QXLogTreeList")->property("count").toInt() : 0;
    }

    Heartbeat m_heartbeat;
    /// The longest stretch of each action.
    QMap<QByteArray, qint64> m_longest;
    /// The same with a small body.
    QMap<QByteArray, qint64> m_base;
};

/// Performs an action, waits for its end and for calm, and notes the longest stretch until then.
void ResponsivenessTest::measure(const char *action, const Step &step, const Condition &isDone)
{
    if (QTest::currentTestFailed())
        return;
    QElapsedTimer taken;
    taken.start();
    m_heartbeat.forget();
    step();
    QVERIFY2(QTest::qWaitFor(isDone, 60'000), action);
    const qint64 duration = taken.elapsed();
    QTest::qWait(60); // the animation that follows belongs to the action
    const qint64 longest = m_heartbeat.longest();
    m_longest[action] = longest;
    std::printf("  %-22s longest stretch %5lld ms, done after %5lld ms, peak %5lld MB\n", action,
                (long long)longest, (long long)duration,
                (long long)(ProcessStatus::field("VmHWM") / megabyte));
    std::fflush(stdout);
}

void ResponsivenessTest::openDetails(const QByteArray &body)
{
    Exchanges::record(u"id"_s, u"http://host/v1/items"_s);
    Exchanges::complete(u"id"_s, 200, body);
    click("QXFloatingButton");
    QVERIFY(waitFor("QXRequestRow"));
    measure(
        "details", [this] { click("QXRequestRow"); },
        [this] { return find("QXBodyBlock") && find("QXLogTreeButton")->isEnabled(); });
    while (middle(*find("QXLogTreeButton")).y() > 600) {
        ScreenDriver::turnWheel(*m_window, QPoint(8, 500), 1);
        QVERIFY(waitFor("QXLogTreeButton"));
    }
}

void ResponsivenessTest::share(const char *action)
{
    click("QXShareButton");
    QVERIFY(waitFor(action));
    measure(
        action, [&] { click(action); }, [this] { return find("QXActivitySheet") || find("QXAlert"); });
    const bool isText = find("QXActivityPreview") && find("QXActivitySheet") && !find("QXActivityOpen");
    if (find("QXActivitySheet") && isText) {
        measure(
            "copy shared text", [this] { click("QXActivityCopy"); }, [] { return true; });
        QGuiApplication::clipboard()->clear();
    }
    measure(
        "close sheet", [this] { press(Qt::Key_Escape); },
        [this] { return !find("QXActivitySheet") && !find("QXAlert"); });
}

void ResponsivenessTest::openBodyMenu()
{
    click(sceneRect(*find("QXBodyBlock")).topLeft().toPoint() + QPoint(20, 20), Qt::RightButton);
    QVERIFY(waitFor("QXCopyValueItem"));
}

void ResponsivenessTest::use(const QByteArray &kind, const QByteArray &body)
{
    openDetails(body);
    QQuickItem *const page = find("QXRequestDetailsPage");
    measure(
        "scroll to the end",
        [=] { page->setProperty("contentY", page->property("contentHeight").toReal() - page->height()); },
        [] { return true; });
    page->setProperty("contentY", 0);
    press(u"Ctrl+F"_s);
    for (const char *letter : {"1", "3", "\x7f"}) {
        measure(
            "find in the body", [=, this] { *letter == '\x7f' ? press(Qt::Key_Backspace) : type(letter); },
            [this] { return !text("QXFindCount").isEmpty() && !text("QXFindCount").endsWith(u'…'); });
        measure(
            "go to the last match", [this] { press(u"Shift+Return"_s); }, [] { return true; });
    }
    press(Qt::Key_Escape);
    page->setProperty("contentY", 0);
    while (middle(*find("QXLogTreeButton")).y() > 600) {
        ScreenDriver::turnWheel(*m_window, QPoint(8, 500), 1);
        QVERIFY(waitFor("QXLogTreeButton"));
    }
    measure(
        "menu", [this] { openBodyMenu(); }, [] { return true; });
    measure(
        "copy body", [this] { click("QXCopyValueItem"); }, [this] { return find("QXAlert"); });
    click("QXAlertButton");
    QTRY_VERIFY(!find("QXAlert"));
    QGuiApplication::clipboard()->clear();
    if (kind == "encoded") {
        QVERIFY(QTest::qWaitFor(
            [this] {
                openBodyMenu();
                const bool canDecode = find("QXDecodeValueItem");
                if (!canDecode) {
                    press(Qt::Key_Escape);
                    (void)QTest::qWaitFor([this] { return !find("QXContextMenu"); });
                }
                return canDecode;
            },
            20'000));
        measure(
            "decode body", [this] { click("QXDecodeValueItem"); },
            [this] { return find("QXDecodedPayloadSheet"); });
        measure(
            "close payload", [this] { press(Qt::Key_Escape); },
            [this] { return !find("QXDecodedPayloadSheet"); });
    }
    for (const char *action :
         {"QXShareCurl", "QXShareHarFile", "QXShareMockServerFile", "QXShareSwiftModel", "QXShareRawDetails"})
        share(action);
    measure(
        "open tree", [this] { click("QXLogTreeButton"); },
        [this] { return rows() > 0 || find("QXLogTreeFailure"); });
    QVERIFY(waitFor("QXLogTreeView"));
    if (rows() > 0) {
        measure(
            "expand root", [this] { click("QXLogTreeRow"); }, [this] { return rows() > 1; });
        press(u"Ctrl+F"_s);
        measure(
            "find in the tree", [this] { type("1"); },
            [this] { return !text("QXFindCount").isEmpty() && !text("QXFindCount").endsWith(u'…'); });
        measure(
            "go to the last node", [this] { press(u"Shift+Return"_s); }, [] { return true; });
        press(Qt::Key_Escape);
        measure(
            "go to the last row", [this] { press(Qt::Key_End); }, [] { return true; });
        if (kind == "encoded") {
            measure(
                "menu of a row", [this] { press(Qt::Key_Menu); }, [this] { return find("QXCopyRowItem"); });
            measure(
                "copy a row", [this] { click("QXCopyRowItem"); },
                [this] { return !find("QXContextMenu") && clipboard().size() > 1000; });
            QGuiApplication::clipboard()->clear();
            press(Qt::Key_Menu);
            QVERIFY(QTest::qWaitFor([this] { return find("QXDecodeItem"); }, 20'000));
            QVERIFY(waitFor("QXDecodeItem"));
            measure(
                "decode a row", [this] { click("QXDecodeItem"); },
                [this] { return find("QXDecodedPayloadSheet"); });
            measure(
                "close payload", [this] { press(Qt::Key_Escape); },
                [this] { return !find("QXDecodedPayloadSheet"); });
        }
        measure(
            "collapse root", [this] { press(Qt::Key_Home), press(Qt::Key_Left); },
            [this] { return rows() == 1; });
        measure(
            "share tree's model", [this] { click("QXShareModelButton"); },
            [this] { return find("QXActivitySheet") || find("QXAlert"); });
        press(Qt::Key_Escape);
        QTRY_VERIFY(!find("QXActivitySheet") && !find("QXAlert"));
    }
    measure(
        "close tree", [this] { press(Qt::Key_Escape); }, [this] { return !find("QXLogTreeView"); });
    measure(
        "close details", [this] { press(Qt::Key_Escape); }, [this] { return !find("QXRequestDetailsView"); });
}

void ResponsivenessTest::mainThreadGoesOn_data()
{
    QTest::addColumn<MakeBody>("makeBody");
    QTest::newRow("objects") << &objects;
    QTest::newRow("encoded") << &encoded;
    QTest::newRow("map") << &map;
    if (!qEnvironmentVariableIsSet("QUORVIX_BIG"))
        return;
    QTest::newRow("numbers") << &numbers;
    QTest::newRow("bytes") << &bytes;
}

void ResponsivenessTest::mainThreadGoesOn()
{
    if (isSanitized)
        QSKIP("A sanitizer takes longer than what is measured");
    QFETCH(const MakeBody, makeBody);
    const QByteArray kind = QTest::currentDataTag();
    const TemporaryFolder folder;
    // A small body needs the same events and frames, so it tells what this machine takes for these.
    if (m_base.isEmpty()) {
        use("encoded", encoded(3000));
        m_base = std::exchange(m_longest, {});
    }
    const QByteArray body = makeBody(bodySize());
    QByteArrayList wrong;
    // Another process can delay this one, but not in the same action each time.
    for (int attempt = 0; attempt < 3 && (attempt == 0 || !wrong.isEmpty()); ++attempt) {
        wrong.clear();
        cleanup();
        init();
        ProcessStatus::forgetPeak();
        std::printf("%s, %lld MB\n", kind.constData(), (long long)(body.size() / megabyte));
        const auto before = std::exchange(m_longest, {});
        use(kind, body);
        for (auto action = m_longest.begin(); action != m_longest.end(); ++action) {
            *action = std::min(*action, before.value(action.key(), *action));
            if (*action > m_base.value(action.key()) + longestPause)
                wrong += action.key() + ": " + QByteArray::number(*action) + " ms";
        }
    }
    QVERIFY2(wrong.isEmpty(), wrong.join(", "));
}

void ResponsivenessTest::tasksAreCancelled_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<bool>("byMouse");
    QTest::newRow("an export, by mouse") << "QXShareMockServerFile"_ba << true;
    QTest::newRow("an export, by keyboard") << "QXShareMockServerFile"_ba << false;
    if (isSanitized)
        return; // its progress stands still there while the document is read
    QTest::newRow("a tree, by mouse") << "QXLogTreeButton"_ba << true;
    QTest::newRow("a tree, by keyboard") << "QXLogTreeButton"_ba << false;
}

void ResponsivenessTest::tasksAreCancelled()
{
    QFETCH(const QByteArray, action);
    QFETCH(const bool, byMouse);
    const TemporaryFolder folder;
    // So that the task still runs when it is cancelled. A sanitizer's bodies are small, and a tree is made
    // fast.
    openDetails(objects((isSanitized || action == "QXLogTreeButton" ? 8 : 3) * bodySize()));
    if (action != "QXLogTreeButton")
        click("QXShareButton");
    click(action.constData());
    QTRY_VERIFY(find("QXProgressCard"));
    const auto progress = [this] {
        return find("QXProgressBar") ? find("QXProgressBar")->property("value").toDouble() : 0;
    };
    QTRY_VERIFY(isUsable("QXProgressCancel"));
    QVERIFY(!spoken(find("QXProgressCard")).isEmpty());
    QTRY_VERIFY(progress() > 0);
    const double first = progress();
    QTRY_VERIFY(progress() > first);
    if (byMouse)
        click("QXProgressCancel");
    else
        press(Qt::Key_Escape);
    QTRY_VERIFY(!find("QXProgressCard"));
    QTRY_VERIFY(!find("QXLogTreeView"));
    QVERIFY(find("QXRequestDetailsView") && !find("QXActivitySheet") && !find("QXAlert"));
    QVERIFY(find("QXRequestDetailsView")->property("activeFocus").toBool());
    QSemaphore ended;
    Quorvix::BackgroundThread::postTask([&] { ended.release(); }, [] {}); // behind the cancelled task
    QVERIFY(ended.tryAcquire(1, 5000));
    QCOMPARE(folder.files(), QStringList());
}

void ResponsivenessTest::resultIsThatOfTheMainThread()
{
    const TemporaryFolder folder;
    QXRequestTrace trace = Exchanges::makeTrace(u"http://host/v1/items"_s);
    trace.response = Exchanges::makeResponseTrace(200, objects(megabyte));
    QXRequestDetailsViewModel model(trace);
    const auto shared = [&](auto share) {
        (model.*share)();
        (void)QTest::qWaitFor([&] { return model.shareItem().has_value(); });
        const auto item = model.shareItem();
        model.setProperty("_shareItem", QVariant());
        return item ? item->activityItems.constFirst() : QVariant();
    };
    QTRY_VERIFY(!model.bodyText(model.rowCount() - 1).isEmpty());
    QCOMPARE(shared(&QXRequestDetailsViewModel::shareRawDetails).toString(), rawDetails(trace));
    QCOMPARE(shared(&QXRequestDetailsViewModel::shareCurl).toString(),
             QXCurlCommandBuilder::build(trace).value());
    const QByteArray mock =
        contentOf(shared(&QXRequestDetailsViewModel::shareMockServerFile).toUrl().toLocalFile());
    QCOMPARE(mock, contentOf(QXApiMockGenerator::exportMock(trace).value().toLocalFile()));
}

void ResponsivenessTest::taskIsDeletedByItsSlots_data()
{
    QTest::addColumn<bool>("cancels");
    QTest::newRow("at the end") << false;
    QTest::newRow("when it is cancelled") << true;
}

void ResponsivenessTest::taskIsDeletedByItsSlots()
{
    QFETCH(const bool, cancels);
    const QPointer<QXBackgroundTask> task = new QXBackgroundTask;
    bool hasFinished = false;
    const auto deleteEnded = [task] {
        if (!task->isRunning())
            delete task;
    };
    connect(task, &QXBackgroundTask::isRunningChanged, this, deleteEnded);
    const auto begun = std::make_shared<QSemaphore>();
    const auto mayEnd = std::make_shared<QSemaphore>();
    const auto discarded = std::make_shared<std::atomic<int>>(0);
    task->perform(
        10 * megabyte, u"Task"_s,
        [begun, mayEnd](QXTaskProgress *) {
            begun->release();
            mayEnd->acquire();
            return 1;
        },
        [&](int) { hasFinished = true; }, [discarded](int result) { *discarded = result; });
    const bool isRunning = task->isRunning();
    begun->acquire();
    if (cancels)
        task->cancel();
    mayEnd->release();
    QVERIFY(isRunning);
    QTRY_VERIFY(!task);
    QCoreApplication::processEvents();
    QVERIFY(!hasFinished);
    QTRY_COMPARE(*discarded, 1);
}

QTEST_MAIN(ResponsivenessTest)
#include "ResponsivenessTest.moc"
