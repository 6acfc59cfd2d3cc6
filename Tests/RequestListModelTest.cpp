#include "Quorvix/QXRequestListViewModel.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXRequestRowViewModel.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QTemporaryDir>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <random>

namespace {

QXRequestRecorder &recorder()
{
    return QXRequestRecorder::shared();
}

void record(const QString &id, const QString &url, const QString &method = QStringLiteral("GET"))
{
    URLRequest request;
    if (!url.isEmpty())
        request.url = QUrl(url);
    request.httpMethod = method.isEmpty() ? std::nullopt : std::optional(method);
    recorder().record(id, request);
}

void complete(const QString &id, qint64 statusCode, const std::optional<NSError> &error = {})
{
    NSURLResponsePtr response;
    if (statusCode != 0)
        response = NSHTTPURLResponse::create(QUrl(QStringLiteral("http://host/")), statusCode,
                                             QStringLiteral("HTTP/1.1"), {});
    recorder().complete(id, response, {}, error);
}

QString shown(const QXRequestListViewModel &model)
{
    QStringList ids;
    for (const QXRequestTrace *trace : model.filteredRequests())
        ids.append(trace->id);
    return ids.join(QString());
}

} // namespace

class RequestListModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void rows_data();
    void rows();
    void listFollowsTheRecorderLater();
    void searches_data();
    void searches();
    void searchStaysCurrent();
    void filterAgreesWithALookAtEveryTrace();
    void changesTouchOnlyTheirRows();
    void exportHoldsWhatIsVisible();
    void exportFailures();
};

void RequestListModelTest::init()
{
    recorder().clear();
}

void RequestListModelTest::rows_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("url");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("failed");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QXSystemColor::Value>("color");
    QTest::addColumn<QXSystemColor::Value>("tint");

    const auto url = QStringLiteral("https://host/items/42?q=1");
    const auto post = QStringLiteral("POST");
    const auto title = QStringLiteral("POST /items/42");
    QTest::newRow("nothing known") << QString() << QString() << 0 << false << QStringLiteral("GET Unknown")
                                   << QStringLiteral("Loading...") << QXSystemColor::Gray
                                   << QXSystemColor::Clear;
    QTest::newRow("no path") << QString() << QStringLiteral("https://host") << 0 << false
                             << QStringLiteral("GET ") << QStringLiteral("Loading...") << QXSystemColor::Gray
                             << QXSystemColor::Clear;
    QTest::newRow("failed") << post << url << 0 << true << title << QStringLiteral("Error")
                            << QXSystemColor::Red << QXSystemColor::Clear;
    QTest::newRow("response and error") << post << url << 200 << true << title << QStringLiteral("200")
                                        << QXSystemColor::Red << QXSystemColor::Green;
    const std::pair<int, QXSystemColor::Value> codes[] = {
        {101, QXSystemColor::Orange}, {199, QXSystemColor::Orange}, {200, QXSystemColor::Green},
        {299, QXSystemColor::Green},  {300, QXSystemColor::Orange}, {304, QXSystemColor::Orange},
        {400, QXSystemColor::Red},    {401, QXSystemColor::Yellow}, {402, QXSystemColor::Red},
        {500, QXSystemColor::Red},    {-1, QXSystemColor::Orange}};
    for (const auto &[code, color] : codes)
        QTest::addRow("status %d", code)
            << post << url << code << false << title << QString::number(code) << color << color;
}

void RequestListModelTest::rows()
{
    QFETCH(const QString, method);
    QFETCH(const QString, url);
    QFETCH(const int, status);
    QFETCH(const bool, failed);
    record(QStringLiteral("A"), url, method);
    complete(QStringLiteral("A"), status,
             failed ? std::optional(makeURLError(NSURLErrorTimedOut)) : std::nullopt);

    const QXRequestListViewModel model;
    const auto value = [&](int role) {
        return model.data(model.index(0), role);
    };
    QTEST(value(QXRequestListViewModel::TitleRole).toString(), "title");
    QTEST(value(QXRequestListViewModel::StatusTextRole).toString(), "text");
    QTEST(value(QXRequestListViewModel::StatusColorRole).value<QXSystemColor::Value>(), "color");
    QTEST(value(QXRequestListViewModel::TintColorRole).value<QXSystemColor::Value>(), "tint");
    QCOMPARE(value(QXRequestListViewModel::TintOpacityRole).toDouble(), status == 0 ? 0.0 : 0.12);
    QCOMPARE(value(QXRequestListViewModel::HasErrorRole).toBool(), failed);
}

void RequestListModelTest::listFollowsTheRecorderLater()
{
    record(QStringLiteral("A"), QStringLiteral("http://host/a"));
    QXRequestListViewModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(shown(model), QStringLiteral("A"));
    record(QStringLiteral("B"), QStringLiteral("http://host/b"));
    QCOMPARE(shown(model), QStringLiteral("A"));
    QTRY_COMPARE(shown(model), QStringLiteral("BA"));
    model.clear();
    QVERIFY(recorder().requests().isEmpty());
    QCOMPARE(model.rowCount(), 2);
    QTRY_COMPARE(model.rowCount(), 0);
}

void RequestListModelTest::searches_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("found");
    QTest::newRow("empty") << QString() << QStringLiteral("DCBA");
    QTest::newRow("white space only") << QStringLiteral(" \n\t") << QStringLiteral("DCBA");
    QTest::newRow("capitals find small letters") << QStringLiteral("USERS") << QStringLiteral("A");
    QTest::newRow("small letters find capitals") << QStringLiteral("items") << QStringLiteral("B");
    QTest::newRow("method in any case") << QStringLiteral("POST") << QStringLiteral("B");
    QTest::newRow("absent method is not GET") << QStringLiteral("get") << QStringLiteral("A");
    QTest::newRow("part of a status code") << QStringLiteral("40") << QStringLiteral("CB");
    QTest::newRow("host and query count") << QStringLiteral("host.test/v1/users?q=") << QStringLiteral("A");
    QTest::newRow("no wildcards") << QStringLiteral(".*") << QString();
    QTest::newRow("braces are text") << QStringLiteral("{") << QString();
    QTest::newRow("one string, spaces included") << QStringLiteral("host post") << QString();
    QTest::newRow("URL and method are searched apart") << QStringLiteral("itemspost") << QString();
    QTest::newRow("percent-encoded as on the wire") << QStringLiteral("%20") << QStringLiteral("C");
}

void RequestListModelTest::searches()
{
    QFETCH(const QString, text);
    record(QStringLiteral("A"), QStringLiteral("http://host.test/v1/users?q=1"));
    record(QStringLiteral("B"), QStringLiteral("http://host.test/v2/Items"), QStringLiteral("post"));
    complete(QStringLiteral("B"), 404);
    record(QStringLiteral("C"), QStringLiteral("http://host.test/a%20b"), QString());
    complete(QStringLiteral("C"), 140);
    record(QStringLiteral("D"), QString(), QString());
    QXRequestListViewModel model;
    model.setSearchText(text);
    QTEST(shown(model), "found");
}

void RequestListModelTest::searchStaysCurrent()
{
    record(QStringLiteral("A"), QStringLiteral("http://host/a"));
    record(QStringLiteral("B"), QStringLiteral("http://host/b"));
    QXRequestListViewModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    model.setSearchText(QStringLiteral("50"));
    QCOMPARE(shown(model), QString());
    complete(QStringLiteral("A"), 500);
    QTRY_COMPARE(shown(model), QStringLiteral("A"));
    record(QStringLiteral("C"), QStringLiteral("http://host/50"));
    complete(QStringLiteral("B"), 503);
    QTRY_COMPARE(shown(model), QStringLiteral("CBA"));
    complete(QStringLiteral("A"), 200); // completed again, and no match any more
    QTRY_COMPARE(shown(model), QStringLiteral("CB"));
    recorder().clear();
    record(QStringLiteral("D"), QStringLiteral("http://host/50"));
    QTRY_COMPARE(shown(model), QStringLiteral("D"));
}

void RequestListModelTest::filterAgreesWithALookAtEveryTrace()
{
    std::mt19937 random(11);
    QXRequestListViewModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QStringList texts{QString(),
                            QStringLiteral("1"),
                            QStringLiteral("12"),
                            QStringLiteral("4"),
                            QStringLiteral("40"),
                            QStringLiteral("/7"),
                            QStringLiteral("get")};
    int recorded = 0;
    for (int step = 0; step < 60; ++step) {
        for (int i = 0; i < 20; ++i) {
            if (recorded == 0 || random() % 2)
                record(QString::number(recorded++), QStringLiteral("http://host/%1").arg(random() % 1000));
            else
                complete(QString::number(random() % unsigned(recorded)), 200 + qint64(random() % 300));
        }
        model.setSearchText(texts[qsizetype(random() % unsigned(texts.size()))]);
        QCoreApplication::processEvents();
        QStringList expected;
        const QString query = model.searchText();
        for (const QXRequestTrace &trace : recorder().requests()) {
            if (absoluteString(*trace.url).contains(query) || trace.method->toLower().contains(query) ||
                (trace.response && QString::number(trace.response->statusCode).contains(query)))
                expected.append(trace.id);
        }
        QCOMPARE(shown(model), expected.join(QString()));
    }
}

void RequestListModelTest::changesTouchOnlyTheirRows()
{
    for (int i = 0; i < 100; ++i)
        record(QString::number(i), QStringLiteral("http://host/"));
    QXRequestListViewModel model;
    const QSignalSpy inserted(&model, &QAbstractItemModel::rowsInserted);
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    const QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    complete(QStringLiteral("40"), 200);
    record(QStringLiteral("a"), QStringLiteral("http://host/"));
    record(QStringLiteral("b"), QStringLiteral("http://host/"));
    QTRY_COMPARE(model.rowCount(), 102);
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(inserted.at(0).at(2).toInt(), 1);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).toModelIndex().row(), 61);
    QCOMPARE(reset.count(), 0);
}

void RequestListModelTest::exportHoldsWhatIsVisible()
{
    record(QStringLiteral("A"), QStringLiteral("http://host/a"));
    record(QStringLiteral("B"), QStringLiteral("http://host/b"));
    record(QStringLiteral("C"), QStringLiteral("http://host/ab"));
    QXRequestListViewModel model;
    model.setSearchText(QStringLiteral("/a"));
    model.exportAll();
    QVERIFY(!model.showAlert());
    const QUrl file = model.shareItem()->activityItems.constFirst().toUrl();
    QCOMPARE(QFileInfo(file.toLocalFile()).absolutePath(), QDir::temp().absolutePath());
    QVERIFY2(QRegularExpression(QStringLiteral("^Quorvix-export-[0-9]{10}(\\.[0-9]+)?\\.har$"))
                 .match(file.fileName())
                 .hasMatch(),
             qPrintable(file.fileName()));

    QFile archive(file.toLocalFile());
    QVERIFY(archive.open(QIODevice::ReadOnly));
    QCOMPARE(archive.permissions() &
                 (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther),
             QFile::Permissions());
    const auto log = QJsonDocument::fromJson(archive.readAll()).object()[QLatin1StringView("log")].toObject();
    const auto entries = log[QLatin1StringView("entries")].toArray();
    QCOMPARE(entries.size(), 2);
    QCOMPARE(entries[0][QLatin1StringView("request")][QLatin1StringView("url")].toString(),
             QStringLiteral("http://host/ab"));

    const QXShareItem first = *model.shareItem();
    model.exportAll();
    QVERIFY(model.shareItem()->id != first.id);
    QVERIFY(model.shareItem()->activityItems != first.activityItems);
    QVERIFY(archive.remove() &&
            QFile::remove(model.shareItem()->activityItems.constFirst().toUrl().toLocalFile()));
}

void RequestListModelTest::exportFailures()
{
    record(QStringLiteral("A"), QStringLiteral("http://host/a"));
    QXRequestListViewModel model;
    model.setSearchText(QStringLiteral("nothing like it"));
    model.exportAll();
    QVERIFY(model.showAlert() && !model.shareItem());
    QCOMPARE(model.alertMessage(), QStringLiteral("No network requests to export."));

    const QByteArray before = qgetenv("TMPDIR");
    {
        QTemporaryDir gone;
        qputenv("TMPDIR", gone.path().toLocal8Bit());
    }
    model.setSearchText({});
    model.exportAll();
    before.isEmpty() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before);
    QVERIFY2(!model.shareItem(),
             model.shareItem() ? qPrintable(model.shareItem()->activityItems.constFirst().toString()) : "");
    QVERIFY(model.alertMessage()->startsWith(QStringLiteral("Failed to export HAR file: ")));
    QVERIFY(model.alertMessage()->size() > 30);
}

QTEST_GUILESS_MAIN(RequestListModelTest)
#include "RequestListModelTest.moc"
