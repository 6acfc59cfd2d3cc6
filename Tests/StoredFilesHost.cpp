#include "Examples/AnimationClock.h"

#include "Tests/ScreenDriver.h"

#include "Controls/UIActivityViewController.h"
#include "Platform/NSURLSession.h"
#include "Quorvix/QXNetworkAccessManager.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include <QtCore/QFile>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtNetwork/QNetworkReply>
#include <QtNetwork/QTcpSocket>
#include <QtTest/QSignalSpy>

using namespace Quorvix;
using namespace Qt::StringLiterals;

/// The program that StoredFilesTest observes, as a host with the inspector. Each function is a run of its
/// own.
class StoredFilesHost : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void captures();
    void exports();
    void moves();
    void strays();
    void cleanupTestCase() { m_window.reset(); }

private:
    void click(const char *name) { ScreenDriver::click(*m_window, name); }
    void openDetails();

    std::unique_ptr<QQuickWindow> m_window;
};

void StoredFilesHost::initTestCase()
{
    QCoreApplication::setOrganizationName(u"Organization"_s);
    QCoreApplication::setApplicationName(u"Program"_s);
    auto *const clock = new AnimationClock(4);
    clock->setParent(QCoreApplication::instance());
    clock->install();
    QuorvixClient::shared().start();
    m_window = std::make_unique<QQuickWindow>();
    m_window->resize(390, 844);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));

    const QUrl url(qEnvironmentVariable("QUORVIX_TEST_URL"));
    URLRequest request(url);
    request.setValue(u"Bearer secret"_s, u"Authorization"_s);
    NSURLSession::shared().dataTaskWithRequest(request, [](auto, auto, auto) {})->resume();
    QXNetworkAccessManager manager;
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(url)));
    QTRY_VERIFY(reply->isFinished());
    const auto areComplete = [] {
        const auto traces = QXRequestRecorder::shared().requests();
        return traces.size() == 2 && traces[0].response && traces[1].response;
    };
    QTRY_VERIFY(areComplete());
}

void StoredFilesHost::openDetails()
{
    click("QXFloatingButton");
    click("QXRequestRow");
    QVERIFY(ScreenDriver::waitForRest(*m_window, "QXRequestDetailsView"));
}

void StoredFilesHost::captures()
{
    openDetails();
    QTest::keyClick(m_window.get(), Qt::Key_Escape);
}

void StoredFilesHost::exports()
{
    click("QXFloatingButton");
    click("QXExportButton");
    click("QXActivityCopy");
    QTRY_VERIFY(QGuiApplication::clipboard()->text().contains(u"Quorvix-export-"_s));
    UIActivityViewController sheet;
    sheet.setActivityItems({QUrl::fromLocalFile(QGuiApplication::clipboard()->text())});
    const QSignalSpy saved(&sheet, &UIActivityViewController::saved);
    sheet.saveAs(qEnvironmentVariable("SAVED"));
    QTRY_COMPARE(saved.size(), 1);
    QCOMPARE(saved.constFirst().constFirst().toString(), QString());
    click("QXActivityDone");
    QTRY_VERIFY(!ScreenDriver::find(*m_window, "QXActivitySheet"));

    click("QXRequestRow");
    for (const char *kind : {"QXShareCurl", "QXShareHarFile", "QXShareMockServerFile", "QXShareSwiftModel",
                             "QXShareRawDetails"}) {
        click("QXShareButton");
        click(kind);
        QVERIFY2(ScreenDriver::waitForRest(*m_window, "QXActivitySheet"), kind);
        click("QXActivityDone");
        QTRY_VERIFY(!ScreenDriver::find(*m_window, "QXActivitySheet"));
    }
}

void StoredFilesHost::moves()
{
    QVERIFY(ScreenDriver::waitForRest(*m_window, "QXFloatingButton"));
    ScreenDriver::drag(*m_window, ScreenDriver::middle(*ScreenDriver::find(*m_window, "QXFloatingButton")),
                       QPoint(-80, -200));
    QVERIFY(ScreenDriver::waitForRest(*m_window, "QXFloatingButton"));
}

/// Does what the library must not do, so that the observer proves that it sees it.
void StoredFilesHost::strays()
{
    QFile file(qEnvironmentVariable("TMPDIR") + u"/quorvix-stray"_s);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QFile open(qEnvironmentVariable("SAVED"));
    QVERIFY(open.open(QIODevice::WriteOnly)); // everybody can read it
    QTcpSocket socket;
    socket.connectToHost(u"127.0.0.2"_s, 9);
    QTRY_VERIFY(socket.state() != QAbstractSocket::HostLookupState);
}

QTEST_MAIN(StoredFilesHost)
#include "StoredFilesHost.moc"
