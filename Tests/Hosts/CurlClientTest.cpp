#include "Examples/Hosts/CurlClient/CurlClient.h"
#include "Examples/DemoServer.h"

#include <Quorvix/QXRequestRecorder.h>

#include <QtCore/QFile>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <memory>

using namespace Qt::StringLiterals;

/// A program that reports what another library than Qt Network does.
class CurlClientTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordsAnExchange_data();
    void recordsAnExchange();
    void isExplained();
};

void CurlClientTest::recordsAnExchange_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("errorDomain");
    QTest::newRow("answered") << u"/api/v1/products?pageSize=2"_s << 200 << QString();
    QTest::newRow("refused") << u"/status/503"_s << 503 << QString();
    QTest::newRow("no answer") << u"/drop"_s << 0 << u"libcurl"_s;
}

void CurlClientTest::recordsAnExchange()
{
    QFETCH(QString, path);
    QFETCH(int, status);
    QFETCH(QString, errorDomain);

    DemoServer server;
    QVERIFY(server.start());
    QXRequestRecorder::shared().clear();
    CurlAnswer answer;
    const std::unique_ptr<QThread> worker(QThread::create([&] { answer = curlGet(server.url(path)); }));
    worker->start();
    worker->wait();
    QCOMPARE(answer.status, status);
    QCOMPARE(answer.failure.isEmpty(), errorDomain.isEmpty());

    const auto exchanges = [] {
        return QXRequestRecorder::shared().requests();
    };
    QTRY_VERIFY(!exchanges().isEmpty() && exchanges()[0].duration);
    QCOMPARE(exchanges().size(), 1);
    const QXRequestTrace trace = exchanges()[0];
    QCOMPARE(trace.url, server.url(path));
    QCOMPARE(trace.method, u"GET"_s);
    QCOMPARE(trace.headers->value(u"User-Agent"_s), u"CurlClient/1.0"_s);
    QCOMPARE(trace.response ? trace.response->statusCode : 0, status);
    QCOMPARE(trace.error ? trace.error->domain : QString(), errorDomain);
    if (!trace.response)
        return;
    QVERIFY(!answer.body.isEmpty());
    QCOMPARE(trace.response->body, answer.body);
    QCOMPARE(trace.response->headers->value(u"Content-Length"_s), QString::number(answer.body.size()));
}

void CurlClientTest::isExplained()
{
    QFile sample(QStringLiteral(QUORVIX_SOURCES "/Examples/Hosts/CurlClient/CurlClient.cpp"));
    QFile document(QStringLiteral(QUORVIX_SOURCES "/docs/other-clients.md"));
    QVERIFY(sample.open(QIODevice::ReadOnly) && document.open(QIODevice::ReadOnly));
    const QString source = QString::fromUtf8(sample.readAll());
    const QString text = QString::fromUtf8(document.readAll());
    for (const QString &mark : {u"//! [includes]\n"_s, u"    //! [record]\n"_s}) {
        const QStringList parts = source.split(mark);
        QCOMPARE(parts.size(), 3);
        QString snippet = u'\n' + parts[1];
        snippet.replace(u"\n    "_s, u"\n"_s); // without the indentation of a function
        QVERIFY2(text.contains(u"```cpp"_s + snippet + u"```"_s), qPrintable(snippet));
    }
}

QTEST_GUILESS_MAIN(CurlClientTest)
#include "CurlClientTest.moc"
