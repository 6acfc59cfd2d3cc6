#include "Tests/Exchanges.h"

#include "Quorvix/QXLogTreeViewModel.h"
#include "Quorvix/QXRequestListViewModel.h"
#include "Quorvix/QXRequestRowViewModel.h"

#include "Platform/URLText.h"

#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QTemporaryDir>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <random>

using namespace Quorvix;

using namespace Exchanges;
using namespace Qt::StringLiterals;

namespace {

QXRequestRecorder &recorder()
{
    return QXRequestRecorder::shared();
}

QString shown(const QXRequestListViewModel &model)
{
    QString ids;
    for (const QXRequestTrace *trace : model.filteredRequests())
        ids += trace->id;
    return ids;
}

QString rows(const QXRequestListViewModel &model)
{
    QString ids;
    for (int row = 0; row < model.rowCount(); ++row)
        ids += model.trace(row).id;
    return ids;
}

} // namespace

class RequestListModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void statusColors();
    void rowsOfWhatIsMissing();
    void listFollowsTheRecorderLater();
    void searches_data();
    void searches();
    void filterAgreesWithALookAtEveryTrace();
    void longSearchDoesNotBlock();
    void exportHoldsWhatIsVisible();
    void exportFailures();
    void fieldsTellOfTheirChanges_data();
    void fieldsTellOfTheirChanges();
};

void RequestListModelTest::init()
{
    recorder().clear();
}

void RequestListModelTest::statusColors()
{
    for (const auto &[status, color] : {std::pair(199, QXSystemColor::Orange),
                                        {200, QXSystemColor::Green},
                                        {299, QXSystemColor::Green},
                                        {300, QXSystemColor::Orange},
                                        {400, QXSystemColor::Red},
                                        {401, QXSystemColor::Yellow},
                                        {500, QXSystemColor::Red}}) {
        record(u"A"_s, u"https://host/items/42?q=1"_s, u"POST"_s);
        complete(u"A"_s, status);
        const QXRequestListViewModel model;
        const QModelIndex row = model.index(0);
        QCOMPARE(row.data(QXRequestListViewModel::TitleRole), u"POST /items/42"_s);
        QCOMPARE(row.data(QXRequestListViewModel::StatusTextRole), QString::number(status));
        for (const int role :
             {QXRequestListViewModel::StatusColorRole, QXRequestListViewModel::TintColorRole})
            QCOMPARE(row.data(role).value<QXSystemColor::Value>(), color);
        QCOMPARE(row.data(QXRequestListViewModel::TintOpacityRole), 0.12);
    }
}

void RequestListModelTest::rowsOfWhatIsMissing()
{
    record(u"A"_s, QString(), std::nullopt);
    record(u"B"_s, u"https://host"_s, std::nullopt);
    recorder().complete(u"B"_s, nullptr, {}, makeURLError(NSURLErrorTimedOut));
    record(u"C"_s, u"https://host/c"_s);
    recorder().complete(u"C"_s, makeResponse(200), {}, makeURLError(NSURLErrorTimedOut));
    const QXRequestListViewModel model;
    QStringList rows;
    for (int row = 0; row < 3; ++row) {
        const auto value = [&](int role) {
            return model.index(row).data(role);
        };
        rows += u"%1|%2|%3"_s
                    .arg(value(QXRequestListViewModel::TitleRole).toString(),
                         value(QXRequestListViewModel::StatusTextRole).toString())
                    .arg(value(QXRequestListViewModel::TintOpacityRole).toDouble());
        QCOMPARE(value(QXRequestListViewModel::HasErrorRole), row < 2);
        QCOMPARE(value(QXRequestListViewModel::StatusColorRole).value<QXSystemColor::Value>(),
                 row < 2 ? QXSystemColor::Red : QXSystemColor::Gray);
    }
    QCOMPARE(rows, QStringList({u"GET /c|200|0.12"_s, u"GET |Error|0"_s, u"GET Unknown|Loading...|0"_s}));
}

void RequestListModelTest::listFollowsTheRecorderLater()
{
    record(u"A"_s, u"http://host/a"_s);
    QXRequestListViewModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(shown(model), u"A"_s);
    record(u"B"_s, u"http://host/b"_s);
    QCOMPARE(shown(model), u"A"_s);
    QTRY_COMPARE(shown(model), u"BA"_s);
    model.clear();
    QVERIFY(recorder().requests().isEmpty());
    QCOMPARE(model.rowCount(), 2);
    QTRY_COMPARE(model.rowCount(), 0);
}

void RequestListModelTest::searches_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("found");
    QTest::newRow("white space only") << u" \n\t"_s << u"DCBA"_s;
    QTest::newRow("capitals find small letters") << u"TEST/V1/USERS?Q="_s << u"A"_s;
    QTest::newRow("small letters find capitals") << u"items"_s << u"B"_s;
    QTest::newRow("absent method is not GET") << u"get"_s << u"A"_s;
    QTest::newRow("part of a status code") << u"40"_s << u"CB"_s;
    QTest::newRow("no wildcards") << u".*"_s << QString();
    QTest::newRow("one string, spaces included") << u"host post"_s << QString();
    QTest::newRow("URL and method are searched apart") << u"itemspost"_s << QString();
    QTest::newRow("percent-encoded as on the wire") << u"%20"_s << u"C"_s;
}

void RequestListModelTest::searches()
{
    QFETCH(const QString, text);
    record(u"A"_s, u"http://host.test/v1/users?q=1"_s);
    record(u"B"_s, u"http://host.test/v2/Items"_s, u"post"_s);
    complete(u"B"_s, 404);
    record(u"C"_s, u"http://host.test/a%20b"_s, std::nullopt);
    complete(u"C"_s, 140);
    record(u"D"_s, QString(), std::nullopt);
    QXRequestListViewModel model;
    model.setSearchText(text);
    QTEST(shown(model), "found");
}

void RequestListModelTest::filterAgreesWithALookAtEveryTrace()
{
    std::mt19937 random(11);
    const auto below = [&](qsizetype limit) {
        return qsizetype(random() % unsigned(limit));
    };
    QXRequestListViewModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QStringList texts{QString(), u"1"_s,  u"12"_s,     u"4"_s,     u"40"_s,    u"/7"_s,
                            u"geT"_s,  u"g"_s,  u"ÄP"_s,     u"äpf"_s,   u"ß"_s,     u"SS"_s,
                            u"İ"_s,    u"i̇x"_s, u"%C3%a4"_s, u"xxxx"_s,  u" OST "_s, u"1000"_s,
                            u"-"_s,    u"😀"_s,  u"t/\0"_s,   u"x/999"_s, u"http"_s};
    const QStringList methods{
        u"GET"_s, u"gEt"_s, u"ÄPFEL"_s, u"Straße"_s, u"İX"_s, u"😀"_s, QString(QChar(0xd800))};
    const QStringList paths{u"%1"_s, u"%1/xx"_s, u"ä/%1"_s, u"Ä😀/%1"_s, u"x"_s.repeated(1100) + u"/%1"_s};
    const auto anyRequest = [&] {
        const QString path = paths[below(paths.size())].arg(below(1000));
        return makeRequest(u"http://Host/"_s + path, methods[below(methods.size())]);
    };
    int recorded = 0;
    for (int step = 0; step < 80; ++step) {
        if (step % 40 == 39)
            recorder().clear();
        for (int i = 0; i < 20; ++i) {
            const QString known = QString::number(below(recorded + 1));
            if (recorded == 0 || below(2))
                recorder().record(QString::number(recorded++), anyRequest());
            else if (below(4))
                complete(known, std::array<qint64, 5>{200, 404, 1000, -1, 7}[std::size_t(below(5))]);
            else
                recorder().amend(known, anyRequest());
        }
        if (step % 3 == 0) // in the other steps the model has to apply the current search to the changes
            model.setSearchText(texts[below(texts.size())]);
        if (step % 7 == 0)
            model.prepareSearch();
        QStringList expected;
        const QString query = model.searchText().trimmed().toLower();
        for (const QXRequestTrace &trace : recorder().requests()) {
            if (absoluteString(*trace.url).toLower().contains(query) ||
                trace.method->toLower().contains(query) ||
                (trace.response && QString::number(trace.response->statusCode).contains(query)))
                expected.append(trace.id);
        }
        QTRY_COMPARE(rows(model), expected.join(QString()));
        QCOMPARE(shown(model), expected.join(QString()));
    }
}

void RequestListModelTest::longSearchDoesNotBlock()
{
    const QString path(300'000, u'x');
    QString all;
    QString ones;
    for (int i = 0; i < 120; ++i) {
        const QString id = QString::number(i) + u' ';
        record(id, u"http://host/%1/end%2"_s.arg(path).arg(i));
        all.prepend(id);
        if (id.startsWith(u'1'))
            ones.prepend(id);
    }
    QXRequestListViewModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.setSearchText(u"end"_s);
    QVERIFY(model.rowCount() > 0 && model.rowCount() < 100);
    QVERIFY(all.startsWith(rows(model)));
    QCOMPARE(shown(model), all);    // an export misses nothing
    model.setSearchText(u"end1"_s); // goes on with what is left
    QVERIFY(ones.startsWith(rows(model)));
    for (const int changed : {0, 10, 119})
        complete(QString::number(changed) + u' ', 200);
    record(u"new "_s, u"http://host/end1"_s);
    QTRY_COMPARE(rows(model), u"new "_s + ones);
    model.setSearchText(u"200"_s);
    QTRY_COMPARE(rows(model), u"119 10 0 "_s);
}

void RequestListModelTest::exportHoldsWhatIsVisible()
{
    record(u"A"_s, u"http://host/a"_s);
    record(u"B"_s, u"http://host/b"_s);
    record(u"C"_s, u"http://host/ab"_s);
    QXRequestListViewModel model;
    model.setSearchText(u"/a"_s);
    model.exportAll();
    QVERIFY(!model.showAlert());
    const QUrl file = model.shareItem()->activityItems.constFirst().toUrl();
    QVERIFY(QRegularExpression(u"^Quorvix-export-[0-9]{10}(\\.[0-9]+)?\\.har$"_s)
                .match(file.fileName())
                .hasMatch());
    QFile archive(file.toLocalFile());
    QVERIFY(archive.open(QIODevice::ReadOnly));
    const auto log = QJsonDocument::fromJson(archive.readAll())["log"_L1];
    const QJsonArray entries = log["entries"_L1].toArray();
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries[0]["request"_L1]["url"_L1].toString(), u"http://host/ab"_s);

    const QXShareItem first = *model.shareItem();
    model.exportAll();
    QVERIFY(model.shareItem()->id != first.id);
    QVERIFY(model.shareItem()->activityItems != first.activityItems);
    QVERIFY(archive.remove() &&
            QFile::remove(model.shareItem()->activityItems.constFirst().toUrl().toLocalFile()));
}

void RequestListModelTest::exportFailures()
{
    record(u"A"_s, u"http://host/a"_s);
    QXRequestListViewModel model;
    model.setSearchText(u"nothing like it"_s);
    model.exportAll();
    QVERIFY(model.showAlert() && !model.shareItem());
    QCOMPARE(model.alertMessage(), u"No network requests to export."_s);

    const QByteArray before = qgetenv("TMPDIR");
    {
        QTemporaryDir gone;
        qputenv("TMPDIR", gone.path().toLocal8Bit());
    }
    model.setSearchText({});
    model.exportAll();
    before.isEmpty() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before);
    QVERIFY(!model.shareItem());
    QVERIFY(model.alertMessage()->startsWith(u"Failed to export HAR file: "_s));
    QVERIFY(model.alertMessage()->size() > 30);
}

void RequestListModelTest::fieldsTellOfTheirChanges_data()
{
    QTest::addColumn<const QMetaObject *>("model");
    QTest::addColumn<QByteArrayList>("fields");
    QTest::newRow("list") << &QXRequestListViewModel::staticMetaObject
                          << QByteArrayList{"_searchText", "_shareItem", "_alertMessage", "_showAlert"};
    QTest::newRow("details") << &QXRequestDetailsViewModel::staticMetaObject
                             << QByteArrayList{"_shareItem", "_alertTitle", "_alertMessage", "_showAlert",
                                               "_decodedPayload"};
    QTest::newRow("tree") << &QXLogTreeViewModel::staticMetaObject
                          << QByteArrayList{"parseError", "shareItem", "alertMessage", "showAlert",
                                            "decodedPayload"};
}

void RequestListModelTest::fieldsTellOfTheirChanges()
{
    QFETCH(const QMetaObject *, model);
    QFETCH(const QByteArrayList, fields);
    for (const QByteArray &field : fields)
        QVERIFY2(model->property(model->indexOfProperty(field)).notifySignal().isValid(), field.constData());
}

QTEST_GUILESS_MAIN(RequestListModelTest)
#include "RequestListModelTest.moc"
