#include "Examples/DemoServer.h"

#include "Tests/NetworkKit.h"

#include "Quorvix/QXNetworkAccessManager.h"

#include <QtCore/QCoreApplication>
#include <QtNetwork/QNetworkReply>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using namespace std::chrono_literals;

using namespace Qt::StringLiterals;

class HeldReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QVERIFY(m_server.start()); }
    void init() { startAfresh(); }
    void holdsAMatchingReply_data();
    void holdsAMatchingReply();
    void heldReplyCanBeEnded_data();
    void heldReplyCanBeEnded();
    void heldReplyIsOpenUntilItIsReleased();
    void releasedReplyCanBeEndedInSlots_data();
    void releasedReplyCanBeEndedInSlots();

private:
    [[nodiscard]] QNetworkRequest request(const QString &path) const
    {
        return QNetworkRequest(m_server.url(path));
    }
    DemoServer m_server;
};

void HeldReplyTest::holdsAMatchingReply_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("status");
    QTest::addColumn<bool>("edited");
    QTest::addColumn<QNetworkReply::NetworkError>("error");

    QTest::newRow("continued") << u"/api/v1/articles"_s << QString() << false << QNetworkReply::NoError;
    QTest::newRow("body") << u"/api/v1/articles"_s << QString() << true << QNetworkReply::NoError;
    QTest::newRow("failure") << u"/echo"_s << u"404"_s << true << QNetworkReply::ContentNotFoundError;
    QTest::newRow("bad request") << u"/echo"_s << u"400"_s << true
                                 << QNetworkReply::ProtocolInvalidOperationError;
    QTest::newRow("success") << u"/status/503"_s << u"200"_s << true << QNetworkReply::NoError;
    QTest::newRow("status kept") << u"/status/503"_s << QString() << true
                                 << QNetworkReply::ServiceUnavailableError;
}

void HeldReplyTest::holdsAMatchingReply()
{
    QFETCH(QString, path);
    QFETCH(QString, status);
    QFETCH(bool, edited);
    QFETCH(QNetworkReply::NetworkError, error);
    auto &center = QXBreakpointCenter::shared();
    QXNetworkAccessManager manager;
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(m_server.url(path), u"GET"_s));

    const std::unique_ptr<QNetworkReply> reply(manager.get(request(path)));
    QStringList signalNames;
    connect(reply.get(), &QNetworkReply::metaDataChanged, this, [&] { signalNames += u"meta"_s; });
    connect(reply.get(), &QNetworkReply::readyRead, this, [&] { signalNames += u"read"_s; });
    connect(reply.get(), &QNetworkReply::downloadProgress, this, [&] { signalNames += u"progress"_s; });
    connect(reply.get(), &QNetworkReply::errorOccurred, this, [&] { signalNames += u"error"_s; });
    connect(reply.get(), &QNetworkReply::finished, this, [&] { signalNames += u"finished"_s; });
    QTRY_VERIFY(center.activeBreakpoint());
    QCOMPARE(signalNames, QStringList());
    QVERIFY(!reply->isFinished());
    QCOMPARE(reply->bytesAvailable(), 0);
    const QByteArray delivered = *center.activeBreakpoint()->data;

    if (edited)
        center.apply(status, u"edited"_s);
    else
        center.continueActive();
    QTRY_VERIFY(reply->isFinished());
    QStringList expected{u"meta"_s, u"read"_s, u"progress"_s, u"finished"_s};
    if (error != QNetworkReply::NoError)
        expected.insert(2, u"error"_s);
    QCOMPARE(signalNames, expected);
    QCOMPARE(reply->error(), error);
    const QByteArray body = reply->readAll();
    QCOMPARE(body, edited ? "edited"_ba : delivered);
    QCOMPARE(reply->rawHeader("Content-Length"), QByteArray::number(body.size()));
    QCOMPARE(reply->header(QNetworkRequest::ContentLengthHeader).toLongLong(), body.size());
    const int newStatus = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (!status.isEmpty())
        QCOMPARE(newStatus, status.toInt());
    QCOMPARE(newest().response->statusCode, newStatus);
    QCOMPARE(newest().response->body, body);
}

void HeldReplyTest::heldReplyCanBeEnded_data()
{
    QTest::addColumn<bool>("destroyed");
    QTest::newRow("aborted") << false;
    QTest::newRow("destroyed") << true;
}

void HeldReplyTest::heldReplyCanBeEnded()
{
    QFETCH(bool, destroyed);
    auto &center = QXBreakpointCenter::shared();
    QXNetworkAccessManager manager;
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(m_server.url(u"/echo"_s), u"GET"_s));
    std::unique_ptr<QNetworkReply> reply(manager.get(request(u"/echo"_s)));
    QSignalSpy finished(reply.get(), &QNetworkReply::finished);
    QTRY_VERIFY(center.activeBreakpoint());

    if (destroyed) {
        reply.reset();
    } else {
        reply->abort();
        QCOMPARE(finished.count(), 1);
        QCOMPARE(reply->error(), QNetworkReply::OperationCanceledError);
        QVERIFY(!reply->isOpen());
    }
    center.continueActive();
    QCOMPARE(newest().response->statusCode, 200);
    QCoreApplication::processEvents();
    QVERIFY(finished.count() <= 1);
}

void HeldReplyTest::heldReplyIsOpenUntilItIsReleased()
{
    Tap tap;
    tap.first = {"HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc"};
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(tap.url(), u"GET"_s));
    QXNetworkAccessManager manager;
    manager.setTransferTimeout(200);
    const std::unique_ptr<QNetworkReply> reply(manager.get(QNetworkRequest(tap.url())));
    QByteArray body;
    connect(reply.get(), &QNetworkReply::readyRead, this, [&] { body += reply->readAll(); });
    QTRY_VERIFY(QXBreakpointCenter::shared().activeBreakpoint());
    QVERIFY(reply->isOpen());
    QXBreakpointCenter::shared().continueActive();
    QTRY_VERIFY(reply->isFinished());
    QCOMPARE(body, "abc"_ba);
    QCOMPARE(reply->error(), QNetworkReply::OperationCanceledError);
    QVERIFY(!reply->isOpen());
}

void HeldReplyTest::releasedReplyCanBeEndedInSlots_data()
{
    QTest::addColumn<QString>("slot");
    QTest::newRow("head") << u"meta"_s;
    QTest::newRow("body") << u"read"_s;
    QTest::newRow("error") << u"error"_s;
}

/// The same happens without a breakpoint.
void HeldReplyTest::releasedReplyCanBeEndedInSlots()
{
    QFETCH(QString, slot);
    QStringList diaries[2];
    for (const bool isHeld : {false, true}) {
        if (isHeld)
            QXBreakpointStore::shared().insert(*QXBreakpointKey::make(m_server.url(u"/none"_s), u"GET"_s));
        QXNetworkAccessManager manager;
        QNetworkReply *const reply = manager.get(request(u"/none"_s));
        QStringList &diary = diaries[isHeld];
        const auto note = [&, reply](const QString &signal) {
            diary += u"%1 %2"_s.arg(signal).arg(reply->error());
            if (signal == slot)
                reply->abort();
            diary += u"%1 %2"_s.arg(reply->isOpen()).arg(reply->bytesAvailable());
        };
        connect(reply, &QNetworkReply::metaDataChanged, this, [&] { note(u"meta"_s); });
        connect(reply, &QNetworkReply::readyRead, this, [&] { note(u"read"_s); });
        connect(reply, &QNetworkReply::errorOccurred, this, [&] { note(u"error"_s); });
        connect(reply, &QNetworkReply::finished, this, [&] { note(u"finished"_s); });
        if (isHeld) {
            QTRY_VERIFY(QXBreakpointCenter::shared().activeBreakpoint());
            QXBreakpointCenter::shared().continueActive();
        }
        QTRY_VERIFY(reply->isFinished());
    }
    QCOMPARE(diaries[1], diaries[0]);
}

QTEST_GUILESS_MAIN(HeldReplyTest)
#include "HeldReplyTest.moc"
