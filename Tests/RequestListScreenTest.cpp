#include "Tests/ScreenDriver.h"

#include "Quorvix/QXOverlay.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include <QtCore/QDir>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtGui/QAccessible>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

using namespace ScreenDriver;

namespace {

void record(const QString &path, qint64 status, const QString &method = QStringLiteral("GET"))
{
    static int number = 0;
    const QString id = QString::number(++number);
    URLRequest request(QUrl(QStringLiteral("https://api.test") + path));
    request.httpMethod = method;
    QXRequestRecorder::shared().record(id, request);
    if (status != 0) {
        const auto response = NSHTTPURLResponse::create(*request.url, status, QStringLiteral("HTTP/1.1"), {});
        QXRequestRecorder::shared().complete(id, response, QByteArray("{}"), {});
    }
}

QFileInfoList exportedFiles()
{
    return QDir::temp().entryInfoList({QStringLiteral("Quorvix-export-*.har")}, QDir::Files);
}

} // namespace

class RequestListScreenTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void rowsShowWhatTheRecorderHolds();
    void rowsChangeInPlace();
    void searchByKeyboard();
    void keyboardWalksTheRows();
    void newRowsDoNotMoveWhatIsRead();
    void escapeClosesOneThingAtATime();
    void trashEmptiesTheList();
    void exportPresentsTheShareSheetEachTime();
    void shareSheetCopiesAndSaves();
    void exportOfNothingIsAnAlert();
    void breakpointsOpenAsASheet();
    void controlsAreNamedAndLargeEnough();
    void appearanceFollowsThePalette();

private:
    [[nodiscard]] QStringList titles();
    void openList();

    std::unique_ptr<QQuickWindow> m_window;
};

void RequestListScreenTest::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(QStringLiteral("QuorvixTests"));
    QCoreApplication::setApplicationName(QStringLiteral("RequestListScreenTest"));
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    for (const QFileInfo &file : exportedFiles())
        QFile::remove(file.filePath());
}

void RequestListScreenTest::init()
{
    QSettings().clear();
    QXRequestRecorder::shared().clear();
    m_window = std::make_unique<QQuickWindow>();
    m_window->resize(390, 844);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    QuorvixClient::shared().show();
}

void RequestListScreenTest::cleanup()
{
    QuorvixClient::shared().hide();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_window.reset();
    for (const QFileInfo &file : exportedFiles())
        QFile::remove(file.filePath());
}

void RequestListScreenTest::openList()
{
    click(*m_window, "QXFloatingButton");
    QTRY_VERIFY(find(*m_window, "QXRequestListView"));
    QVERIFY(waitForRest(*m_window, "QXRequestListView"));
}

QStringList RequestListScreenTest::titles()
{
    auto rows = findAll(*m_window, "QXRequestRow");
    std::sort(rows.begin(), rows.end(), [](auto *left, auto *right) { return left->y() < right->y(); });
    QStringList found;
    for (const QQuickItem *row : rows)
        found.append(row->property("title").toString());
    return found;
}

void RequestListScreenTest::rowsShowWhatTheRecorderHolds()
{
    record(QStringLiteral("/users"), 200);
    record(QStringLiteral("/items"), 404, QStringLiteral("POST"));
    openList();
    QTRY_COMPARE(titles(), QStringList({QStringLiteral("POST /items"), QStringLiteral("GET /users")}));
    record(QStringLiteral("/late"), 0);
    QTRY_COMPARE(titles().value(0), QStringLiteral("GET /late"));
}

void RequestListScreenTest::rowsChangeInPlace()
{
    const URLRequest request(QUrl(QStringLiteral("https://api.test/slow")));
    QXRequestRecorder::shared().record(QStringLiteral("slow"), request);
    openList();
    QQuickItem *row = nullptr;
    QTRY_VERIFY((row = find(*m_window, "QXRequestRow")));
    QCOMPARE(row->property("statusText").toString(), QStringLiteral("Loading..."));
    QXRequestRecorder::shared().complete(QStringLiteral("slow"), nullptr, {},
                                         makeURLError(NSURLErrorTimedOut));
    QTRY_COMPARE(row->property("statusText").toString(), QStringLiteral("Error"));
    QCOMPARE(find(*m_window, "QXRequestRow"), row);
}

void RequestListScreenTest::searchByKeyboard()
{
    for (const auto *path : {"/users", "/items", "/users/1"})
        record(QString::fromLatin1(path), 200);
    openList();
    QTRY_COMPARE(titles().size(), 3);
    QTest::keyClick(m_window.get(), Qt::Key_F, Qt::ControlModifier);
    type(*m_window, "USERS");
    QTRY_COMPARE(titles(), QStringList({QStringLiteral("GET /users/1"), QStringLiteral("GET /users")}));
    type(*m_window, "{");
    QTRY_VERIFY(titles().isEmpty());
    click(*m_window, "QXSearchClearButton");
    QTRY_COMPARE(titles().size(), 3);
}

void RequestListScreenTest::keyboardWalksTheRows()
{
    for (const auto *path : {"/c", "/b", "/a"})
        record(QString::fromLatin1(path), 200);
    openList();
    QTRY_COMPARE(titles().size(), 3);
    QQuickItem *const list = find(*m_window, "QXRequestList");
    QTest::keyClick(m_window.get(), Qt::Key_Down);
    QTRY_COMPARE(list->property("currentIndex").toInt(), 0);
    QTest::keyClick(m_window.get(), Qt::Key_Down);
    QTest::keyClick(m_window.get(), Qt::Key_Return);
    QTRY_VERIFY(find(*m_window, "QXRequestDetailsView"));
    QTRY_VERIFY(find(*m_window, "QXBackButton"));
    QVERIFY(waitForRest(*m_window, "QXRequestDetailsView"));
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
    QTRY_VERIFY(!find(*m_window, "QXRequestDetailsView"));
    QVERIFY(find(*m_window, "QXRequestListView"));
}

void RequestListScreenTest::newRowsDoNotMoveWhatIsRead()
{
    for (int i = 0; i < 100; ++i)
        record(QStringLiteral("/old/%1").arg(i), 200);
    openList();
    QTRY_COMPARE(titles().value(0), QStringLiteral("GET /old/99"));
    record(QStringLiteral("/new"), 200); // at the very top the newest is seen at once
    QTRY_COMPARE(titles().value(0), QStringLiteral("GET /new"));
    const auto isSeen = [&](const QString &title) {
        for (const QQuickItem *row : findAll(*m_window, "QXRequestRow")) {
            const qreal y = row->mapToScene({}).y();
            if (row->property("title").toString() == title)
                return y > 100 && y < 844 - 44;
        }
        return false;
    };
    QTRY_VERIFY(isSeen(QStringLiteral("GET /new")));

    turnWheel(*m_window, QPoint(200, 500), 12);
    QQuickItem *read = nullptr;
    QTRY_VERIFY(!isSeen(QStringLiteral("GET /new")));
    QVERIFY(waitForRest(*m_window, "QXRequestRow"));
    for (QQuickItem *const row : findAll(*m_window, "QXRequestRow")) {
        if (row->contains(row->mapFromScene(QPointF(200, 500))))
            read = row;
    }
    QVERIFY(read);
    const QString title = read->property("title").toString();
    for (int i = 0; i < 5; ++i)
        record(QStringLiteral("/newer/%1").arg(i), 200);
    QTRY_COMPARE(find(*m_window, "QXRequestList")->property("count").toInt(), 106);
    QTest::qWait(50);
    const auto rows = findAll(*m_window, "QXRequestRow");
    const auto still = std::find_if(rows.cbegin(), rows.cend(), [&](const QQuickItem *row) {
        return row->property("title").toString() == title &&
               row->contains(row->mapFromScene(QPointF(200, 500)));
    });
    QVERIFY(still != rows.cend());
}

void RequestListScreenTest::escapeClosesOneThingAtATime()
{
    record(QStringLiteral("/a"), 200);
    openList();
    click(*m_window, "QXExportButton");
    QTRY_VERIFY(find(*m_window, "QXActivitySheet"));
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
    QTRY_VERIFY(!find(*m_window, "QXActivitySheet"));
    QVERIFY(find(*m_window, "QXRequestListView"));
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
    QTRY_VERIFY(!find(*m_window, "QXRequestListView"));
    QVERIFY(!QuorvixClient::shared().overlayWindow()->isShowingRequestList());
}

void RequestListScreenTest::trashEmptiesTheList()
{
    record(QStringLiteral("/a"), 200);
    openList();
    QTRY_COMPARE(titles().size(), 1);
    click(*m_window, "QXTrashButton");
    QTRY_VERIFY(titles().isEmpty());
    QVERIFY(QXRequestRecorder::shared().requests().isEmpty());
    click(*m_window, "QXCloseButton");
    QTRY_VERIFY(!find(*m_window, "QXRequestListView"));
}

void RequestListScreenTest::exportPresentsTheShareSheetEachTime()
{
    record(QStringLiteral("/a"), 200);
    openList();
    for (int round = 1; round <= 2; ++round) {
        click(*m_window, "QXExportButton");
        QTRY_VERIFY(find(*m_window, "QXActivitySheet"));
        QCOMPARE(exportedFiles().size(), round);
        QVERIFY(waitForRest(*m_window, "QXActivitySheet"));
        QTest::mouseClick(m_window.get(), Qt::LeftButton, {}, QPoint(200, 20)); // outside
        QTRY_VERIFY(!find(*m_window, "QXActivitySheet"));
        QCOMPARE(exportedFiles().size(), round); // dismissing leaves the file
    }
}

void RequestListScreenTest::shareSheetCopiesAndSaves()
{
    record(QStringLiteral("/a"), 200);
    openList();
    click(*m_window, "QXExportButton");
    QTRY_VERIFY(find(*m_window, "QXActivitySheet"));
    QVERIFY(waitForRest(*m_window, "QXActivitySheet"));
    click(*m_window, "QXActivityCopy");
    QTRY_VERIFY(QGuiApplication::clipboard()->text().endsWith(QStringLiteral(".har")));
    QVERIFY(find(*m_window, "QXActivityOpen") && find(*m_window, "QXActivityShowInFolder"));
    QVERIFY(find(*m_window, "QXActivitySaveAs"));
    click(*m_window, "QXActivityDone");
    QTRY_VERIFY(!find(*m_window, "QXActivitySheet"));
}

void RequestListScreenTest::exportOfNothingIsAnAlert()
{
    openList();
    click(*m_window, "QXExportButton");
    QTRY_VERIFY(find(*m_window, "QXAlert"));
    QCOMPARE(find(*m_window, "QXAlert")->property("title").toString(), QStringLiteral("Export Failed"));
    QCOMPARE(find(*m_window, "QXAlert")->property("message").toString(),
             QStringLiteral("No network requests to export."));
    QTest::keyClick(m_window.get(), Qt::Key_Return);
    QTRY_VERIFY(!find(*m_window, "QXAlert"));
    click(*m_window, "QXExportButton");
    click(*m_window, "QXAlertButton");
    QTRY_VERIFY(!find(*m_window, "QXAlert"));
    QVERIFY(exportedFiles().isEmpty());
}

void RequestListScreenTest::breakpointsOpenAsASheet()
{
    openList();
    click(*m_window, "QXBreakpointsButton");
    QTRY_VERIFY(find(*m_window, "QXBreakpointsListView"));
    QVERIFY(waitForRest(*m_window, "QXBreakpointsListView"));
    const QPoint top = find(*m_window, "QXBreakpointsListView")->mapToScene(QPointF(195, -40)).toPoint();
    drag(*m_window, top, QPoint(0, 400)); // a swipe down
    QTRY_VERIFY(!find(*m_window, "QXBreakpointsListView"));
}

void RequestListScreenTest::controlsAreNamedAndLargeEnough()
{
    record(QStringLiteral("/a"), 200);
    openList();
    QTRY_COMPARE(titles().size(), 1);
    for (const char *name : {"QXFloatingButton", "QXCloseButton", "QXBreakpointsButton", "QXTrashButton",
                             "QXExportButton", "QXSearchField", "QXRequestRow"}) {
        QQuickItem *const item = find(*m_window, name);
        QVERIFY2(item, name);
        QVERIFY2(item->width() >= 44 && item->height() >= (qstrcmp(name, "QXSearchField") == 0 ? 36 : 44),
                 name);
        QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(item);
        QVERIFY2(accessible, name);
        QVERIFY2(!accessible->text(QAccessible::Name).isEmpty(), name);
        QVERIFY2(accessible->role() != QAccessible::NoRole && accessible->role() != QAccessible::Client,
                 name);
    }
}

void RequestListScreenTest::appearanceFollowsThePalette()
{
    openList();
    const auto lightness = [&] {
        return m_window->grabWindow().pixelColor(195, 700).lightness();
    };
    QTRY_VERIFY(lightness() > 200);
    QPalette dark;
    dark.setColor(QPalette::Window, Qt::black);
    dark.setColor(QPalette::WindowText, Qt::white);
    QGuiApplication::setPalette(dark);
    QTRY_VERIFY(lightness() < 50);
    QGuiApplication::setPalette(QPalette());
    QTRY_VERIFY(lightness() > 200);
}

QTEST_MAIN(RequestListScreenTest)
#include "RequestListScreenTest.moc"
