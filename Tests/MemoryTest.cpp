#include "Tests/Exchanges.h"
#include "Tests/ProcessStatus.h"
#include "Tests/ScreenTest.h"

#include "Platform/BackgroundThread.h"
#include "Platform/FreedMemory.h"
#include "Platform/NSNotificationCenter.h"

#include <QtCore/QFile>
#include <QtCore/QSemaphore>

#include <cstdio>

#if defined(__GLIBC__)
#include <malloc.h>
#endif
#if defined(Q_OS_UNIX)
#include <unistd.h>
#endif

using namespace Quorvix;
using namespace Qt::StringLiterals;
using ScreenDriver::middle;

namespace {

constexpr qsizetype megabyte = 1'000'000;

/// The memory of this process that is in use now.
qsizetype resident()
{
    return ProcessStatus::field("VmRSS");
}

/// The most that was in use since the last call of ProcessStatus::forgetPeak().
qsizetype peak()
{
    return ProcessStatus::field("VmHWM");
}

/// Returns free memory to the system, so that only memory in use is measured.
void returnMemory()
{
    bool isReturning = false;
    const auto observer = NSNotificationCenter::defaultCenter().addObserver(FreedMemory::willReturn,
                                                                            [&] { isReturning = true; });
    FreedMemory::note(megabyte);
    QTRY_VERIFY(isReturning);
    QSemaphore returned;
    BackgroundThread::post([&] { returned.release(); }); // behind the work of this thread for the memory
    QVERIFY(returned.tryAcquire(1, 10'000));
}

QByteArray jsonBody(qsizetype size)
{
    QByteArray body = "{\"items\":[";
    for (int i = 0; body.size() < size; ++i) {
        body += R"({"id":)" + QByteArray::number(i) + R"(,"name":"item )" + QByteArray::number(i * 7919) +
                R"(","tags":["red","blue"],"price":12.5,"note":"a note about this item"},)";
    }
    body.chop(1);
    return body + "]}";
}

QByteArray encodedBody(qsizetype size)
{
    return jsonBody(size * 3 / 4).toBase64();
}

/// The size of a body in this test: 10 MB, or as many MB as QUORVIX_BODY_MB says, for a closer look.
qsizetype bodySize()
{
    const int chosen = qEnvironmentVariableIntValue("QUORVIX_BODY_MB");
    return (chosen > 0 ? chosen : 10) * megabyte;
}

} // namespace

class MemoryTest : public ScreenTest
{
    Q_OBJECT

protected Q_SLOTS:
    void init() override;

private Q_SLOTS:
    void screensGiveBackWhatABodyNeeded_data();
    void screensGiveBackWhatABodyNeeded();
    void clearGivesBackTheBodies_data();
    void clearGivesBackTheBodies();

private:
    void use(const QByteArray &usage, const QByteArray &body);
    void openDetails();
    void useSheet(const char *button, const char *sheet, const QByteArray &body);
};

void MemoryTest::init()
{
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    QSKIP("A sanitizer has its own allocator, which keeps freed memory");
#elif !defined(__GLIBC__)
    QSKIP("Only glibc is asked to return free memory");
#endif
    ScreenTest::init();
}

void MemoryTest::openDetails()
{
    click("QXRequestRow");
    QVERIFY(waitFor("QXRequestDetailsView"));
    // A large body gets its text later.
    QVERIFY(QTest::qWaitFor([this] { return find("QXBodyBlock") && find("QXLogTreeButton")->isEnabled(); },
                            20'000));
    while (middle(*find("QXLogTreeButton")).y() > 600) {
        ScreenDriver::turnWheel(*m_window, QPoint(8, 500), 1);
        QVERIFY(waitFor("QXLogTreeButton"));
    }
}

/// Opens a sheet over the screen and closes it, which gives back what the sheet needed.
void MemoryTest::useSheet(const char *button, const char *sheet, const QByteArray &body)
{
    QVERIFY(waitFor(button));
    returnMemory();
    const qsizetype before = resident();
    click(button);
    QVERIFY(waitFor(sheet));
    press(Qt::Key_Escape);
    QTRY_VERIFY(!find(sheet));
    if (body.size() > megabyte)
        QTRY_VERIFY(resident() - before < body.size() / 2);
}

/// Opens the list and the details of one exchange, does what @p usage says, and goes back to the list.
void MemoryTest::use(const QByteArray &usage, const QByteArray &body)
{
    Exchanges::record(u"id"_s, u"http://host/v1/items"_s);
    Exchanges::complete(u"id"_s, 200, body);
    click("QXFloatingButton");
    openDetails();
    if (usage == "tree and model") {
        click("QXLogTreeButton");
        QVERIFY(QTest::qWaitFor([this] { return find("QXLogTreeView"); }, 20'000));
        QVERIFY(waitFor("QXLogTreeView"));
        useSheet("QXShareModelButton", "QXActivitySheet", body);
        press(Qt::Key_Escape);
        QTRY_VERIFY(!find("QXLogTreeView"));
    } else if (usage == "decoded") {
        click(sceneRect(*find("QXBodyBlock")).topLeft().toPoint() + QPoint(20, 20), Qt::RightButton);
        useSheet("QXDecodeValueItem", "QXDecodedPayloadSheet", body);
    } else if (usage != "details") {
        click("QXShareButton");
        useSheet(usage.constData(), "QXActivitySheet", body);
    }
    press(Qt::Key_Escape);
    QTRY_VERIFY(!find("QXRequestDetailsView"));
}

void MemoryTest::screensGiveBackWhatABodyNeeded_data()
{
    QTest::addColumn<QByteArray>("body");
    const QByteArray json = jsonBody(bodySize());
    for (const char *usage : {"details", "tree and model", "QXShareMockServerFile", "QXShareRawDetails"})
        QTest::newRow(usage) << json;
    QTest::newRow("decoded") << encodedBody(bodySize());
}

void MemoryTest::screensGiveBackWhatABodyNeeded()
{
    QFETCH(const QByteArray, body);
    const QByteArray usage = QTest::currentDataTag();
    // The first use loads what stays for later ones, such as fonts and compiled screens.
    use(usage, usage == "decoded" ? encodedBody(10'000) : jsonBody(10'000));
    cleanup();
    ScreenTest::init();
    // The engine stays, too, once a screen has been open.
    click("QXFloatingButton");
    QVERIFY(waitFor("QXRequestListBar"));
    click("QXFloatingButton");
    QTRY_VERIFY(!find("QXRequestListView"));
    returnMemory();
    const qsizetype before = resident();
    ProcessStatus::forgetPeak();
    use(usage, body);
    const qsizetype most = peak();
    const int timeout = 5000 + int(body.size() / 10'000); // ms
    const bool isBack = QTest::qWaitFor([&] { return resident() - before < body.size() / 2; }, timeout);
    std::printf("%-22s body %lld MB, at the peak %lld MB, afterwards %lld MB\n", usage.constData(),
                body.size() / megabyte, (most - before) / megabyte, (resident() - before) / megabyte);
    QVERIFY(isBack);
}

void MemoryTest::clearGivesBackTheBodies_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<qsizetype>("size");
    QTest::newRow("large bodies") << 30 << 10 * megabyte;
    QTest::newRow("many bodies") << 30'000 << megabyte / 100;
}

void MemoryTest::clearGivesBackTheBodies()
{
    QFETCH(const int, count);
    QFETCH(const qsizetype, size);
    click("QXFloatingButton"); // the list is a snapshot, too
    QVERIFY(waitFor("QXRequestListBar"));
    returnMemory();
    const qsizetype before = resident();
    for (int i = 0; i < count; ++i) {
        Exchanges::record(QString::number(i), u"http://host/items"_s);
        Exchanges::complete(QString::number(i), 200, QByteArray(size, 'x'));
    }
    QCoreApplication::processEvents();
    const qsizetype held = resident() - before;
    QVERIFY(held >= count * size / 4 * 3); // some was free before
    QXRequestRecorder::shared().clear();
    const bool isBack = QTest::qWaitFor([&] { return resident() - before < held / 10; }, 5000);
    std::printf("%-22s held %lld MB, after clear() %lld MB\n", QTest::currentDataTag(), held / megabyte,
                (resident() - before) / megabyte);
    QVERIFY(isBack);
}

QTEST_MAIN(MemoryTest)
#include "MemoryTest.moc"
