#include "Quorvix/QXBodyText.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXMediumText.h"
#include "Quorvix/QXRawDetails.h"
#include "Quorvix/QXRequestDetailsViewModel.h"

#include "Platform/HTTPCookieStorage.h"

#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QStandardPaths>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <ctime>

using namespace Qt::StringLiterals;

namespace {

/// 2023-11-14 22:13:20 UTC.
constexpr std::chrono::system_clock::time_point then{std::chrono::seconds(1700000000)};

QXRequestTrace makeTrace(const QString &url = u"https://shop.test/v1/users/42?q=1"_s)
{
    URLRequest request;
    if (!url.isEmpty())
        request.url = QUrl(url);
    QXRequestTrace trace(u"id"_s, request);
    trace.date = then;
    return trace;
}

QXResponseTrace makeResponse(qint64 status, std::optional<QByteArray> body = {},
                             const NSHeaderFields &headers = {})
{
    const auto response =
        NSHTTPURLResponse::create(QUrl(u"https://shop.test/"_s), status, u"HTTP/1.1"_s, headers);
    QXResponseTrace trace(*response, std::move(body));
    trace.date = then;
    return trace;
}

QStringList titles(const QXRequestDetailsViewModel &model)
{
    QStringList titles;
    for (int row = 0; row < model.rowCount(); ++row)
        titles += model.index(row).data().toString();
    return titles;
}

QVariant sectionData(const QXRequestDetailsViewModel &model, const QString &title, int role)
{
    return model.index(int(titles(model).indexOf(title))).data(role);
}

/// The values of a section, each as "label=text".
QStringList values(const QXRequestDetailsViewModel &model, const QString &title)
{
    QStringList found;
    for (const QVariant &value : sectionData(model, title, QXRequestDetailsViewModel::ValuesRole).toList())
        found += value.value<QXRequestValue>().label + u'=' + value.value<QXRequestValue>().text;
    return found;
}

QXTextDocument *document(const QXRequestDetailsViewModel &model, const QString &title)
{
    return sectionData(model, title, QXRequestDetailsViewModel::DocumentRole).value<QXTextDocument *>();
}

QString block(const QString &label, const QString &value)
{
    const QString rule(83, u'-');
    return rule + u'\n' + label + u'\n' + rule + u'\n' + (value.isEmpty() ? QString() : value + u'\n') +
           u'\n';
}

} // namespace

class RequestDetailsModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void sectionsOfACompletedExchange();
    void sectionsOfWhatIsMissing_data();
    void sectionsOfWhatIsMissing();
    void statusColors_data();
    void statusColors();
    void bodyTexts_data();
    void bodyTexts();
    void largeBodiesAreMadeReadableElsewhere();
    void dates_data();
    void dates();
    void byteCounts_data();
    void byteCounts();
    void copyingIsConfirmed();
    void decoding();
    void breakpointFollowsTheStore();
    void logTreeOfABody();
    void sharing();
    void sharingFailures_data();
    void sharingFailures();
    void rawDetailsOfACompletedExchange();
    void rawDetailsOfOthers();
};

void RequestDetailsModelTest::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    qputenv("TZ", "UTC");
    tzset();
}

void RequestDetailsModelTest::init()
{
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    HTTPCookieStorage::shared().removeAllCookies();
    QXBreakpointStore::shared().setRules({});
}

void RequestDetailsModelTest::sectionsOfACompletedExchange()
{
    auto trace = makeTrace();
    HTTPCookieStorage::shared().setCookies({QNetworkCookie("sid", "a1")}, *trace.url);
    trace.method = u"PUT"_s;
    trace.headers = HTTPHeaderFields{{u"accept"_s, u"*/*"_s}, {u"Zone"_s, u"z"_s}};
    trace.body = "{}";
    trace.duration = 1.23456;
    // A cookie that the response sets is not listed unless the storage has it.
    trace.response = makeResponse(404, "oops", {{u"ETag"_s, u"x"_s}, {u"Set-Cookie"_s, u"other=1"_s}});
    trace.error = QXFailureNote(NSError{u"D"_s, -7, u"It failed."_s});
    QXRequestDetailsViewModel model(trace);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);

    QCOMPARE(titles(model),
             QStringList({u"REQUEST"_s, u"BREAKPOINT"_s, u"REQUEST HEADERS"_s, u"REQUEST COOKIES"_s,
                          u"REQUEST BODY"_s, u"RESPONSE"_s, u"RESPONSE HEADERS"_s, u"RESPONSE COOKIES"_s,
                          u"RESPONSE CACHE"_s, u"RESPONSE BODY"_s, u"ERROR"_s}));
    QCOMPARE(values(model, u"REQUEST"_s),
             QStringList({u"URL=https://shop.test/v1/users/42?q=1"_s, u"Method=PUT"_s,
                          u"Time=Nov 14, 2023, 10:13:20 PM"_s, u"Duration=1.235 seconds"_s}));
    QCOMPARE(values(model, u"REQUEST HEADERS"_s), QStringList({u"Zone=z"_s, u"accept=*/*"_s}));
    for (const QString &cookies : {u"REQUEST COOKIES"_s, u"RESPONSE COOKIES"_s})
        QCOMPARE(values(model, cookies), QStringList(u"sid=a1"_s));
    QCOMPARE(values(model, u"RESPONSE"_s),
             QStringList({u"Status Code=404"_s, u"Time=Nov 14, 2023, 10:13:20 PM"_s}));
    QCOMPARE(values(model, u"RESPONSE CACHE"_s),
             QStringList(u"After request=lastAccess: 2023-11-14T22:13:20Z\neTag: x"_s));
    QCOMPARE(document(model, u"RESPONSE BODY"_s)->text(), u"oops"_s);
    QCOMPARE(values(model, u"ERROR"_s),
             QStringList({u"Description=It failed."_s, u"Domain=D"_s, u"Code=-7"_s}));
    QCOMPARE(sectionData(model, u"RESPONSE CACHE"_s, QXRequestDetailsViewModel::FlagRole).toString(),
             u"_showResponseCache"_s);
}

void RequestDetailsModelTest::sectionsOfWhatIsMissing_data()
{
    QTest::addColumn<QXRequestTrace>("trace");
    QTest::addColumn<QStringList>("expected");
    const QStringList always{u"REQUEST"_s, u"BREAKPOINT"_s};
    auto trace = makeTrace(QString());
    trace.method.reset();
    QTest::newRow("a trace with neither URL nor method") << trace << always;
    trace.headers = HTTPHeaderFields();
    QTest::newRow("empty request headers") << trace << always;
    trace.body = QByteArray();
    QTest::newRow("an empty request body is one") << trace << always + QStringList(u"REQUEST BODY"_s);
    trace = makeTrace();
    trace.response = makeResponse(200);
    QTest::newRow("a response without headers and body")
        << trace << always + QStringList({u"RESPONSE"_s, u"RESPONSE CACHE"_s});
    trace = makeTrace();
    trace.error = QXFailureNote(makeURLError(NSURLErrorTimedOut));
    QTest::newRow("an error without a response") << trace << always + QStringList(u"ERROR"_s);
}

void RequestDetailsModelTest::sectionsOfWhatIsMissing()
{
    QFETCH(const QXRequestTrace, trace);
    const QXRequestDetailsViewModel model(trace);
    QTEST(titles(model), "expected");
    if (!trace.url) {
        QCOMPARE(values(model, u"REQUEST"_s).mid(0, 2), QStringList({u"URL=N/A"_s, u"Method=GET"_s}));
    }
}

void RequestDetailsModelTest::statusColors_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("color");
    for (const int status : {200, 299})
        QTest::addRow("%d is green", status) << status << int(QXSystemColor::Green);
    for (const int status : {100, 199, 300, 399})
        QTest::addRow("%d is orange", status) << status << int(QXSystemColor::Orange);
    for (const int status : {400, 401, 404, 500})
        QTest::addRow("%d is red", status) << status << int(QXSystemColor::Red);
}

void RequestDetailsModelTest::statusColors()
{
    QFETCH(const int, status);
    auto trace = makeTrace();
    trace.response = makeResponse(status);
    const QXRequestDetailsViewModel model(trace);
    const auto shown = sectionData(model, u"RESPONSE"_s, QXRequestDetailsViewModel::ValuesRole).toList();
    QTEST(shown[0].value<QXRequestValue>().color, "color");
    QCOMPARE(shown[1].value<QXRequestValue>().color, int(QXSystemColor::Clear));
}

void RequestDetailsModelTest::bodyTexts_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("text");
    QTest::newRow("keys are sorted at every level")
        << QByteArray(R"({"b":{"d":1,"c":[]},"B":"/"})")
        << u"{\n  \"B\" : \"/\",\n  \"b\" : {\n    \"c\" : [],\n    \"d\" : 1\n  }\n}"_s;
    QTest::newRow("a scalar stays as it is written") << QByteArray(" 1.50 ") << u" 1.50 "_s;
    QTest::newRow("broken JSON stays text") << QByteArray("{\"a\":1,}\r\n") << u"{\"a\":1,}\r\n"_s;
    QTest::newRow("a byte order mark stays") << QByteArray("\xEF\xBB\xBFx") << u"\uFEFFx"_s;
    QTest::newRow("bytes that are no text") << QByteArray("\x00\xFF", 2) << u"00 ff"_s;
    QTest::newRow("a NUL is text") << QByteArray("a\0b", 3) << QString::fromLatin1("a\0b", 3);
    QTest::newRow("nothing") << QByteArray() << QString();
}

void RequestDetailsModelTest::bodyTexts()
{
    QFETCH(const QByteArray, body);
    QTEST(QXBodyText::text(body), "text");
    auto trace = makeTrace();
    trace.body = body;
    const QXRequestDetailsViewModel model(trace);
    QTEST(document(model, u"REQUEST BODY"_s)->text(), "text");
}

void RequestDetailsModelTest::largeBodiesAreMadeReadableElsewhere()
{
    auto trace = makeTrace();
    trace.response = makeResponse(200, "{\"b\":\"" + QByteArray(1'000'000, 'x') + "\",\"a\":1}");
    {
        const QXRequestDetailsViewModel gone(trace); // what is made for it has nowhere to go
    }
    QXRequestDetailsViewModel model(trace);
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QVERIFY(!document(model, u"RESPONSE BODY"_s));
    model.openLogTree(model.rowCount() - 1);
    QVERIFY(!model.logTreeDestination());
    QTRY_VERIFY(document(model, u"RESPONSE BODY"_s));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(document(model, u"RESPONSE BODY"_s)->text(), QXBodyText::text(*trace.response->body));
}

void RequestDetailsModelTest::dates_data()
{
    QTest::addColumn<QLocale>("locale");
    QTest::addColumn<QString>("text");
    QTest::newRow("weekday first") << QLocale(u"en_GB"_s) << u"14 Nov 2023, 22:13:20"_s;
    QTest::newRow("weekday with a word after it") << QLocale(u"da_DK"_s) << u"14. nov. 2023, 22.13.20"_s;
    QTest::newRow("weekday last") << QLocale(u"ja_JP"_s) << u"2023年11月14日, 22時13分20秒"_s;
    QTest::newRow("quoted words stay") << QLocale(u"es_ES"_s) << u"14 de nov de 2023, 22:13:20"_s;
}

void RequestDetailsModelTest::dates()
{
    QFETCH(const QLocale, locale);
    QLocale::setDefault(locale);
    QTEST(QXMediumText::date(then), "text");
}

void RequestDetailsModelTest::byteCounts_data()
{
    QTest::addColumn<qsizetype>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << qsizetype(0) << u"0 KB"_s;
    QTest::newRow("anything has a kilobyte") << qsizetype(1) << u"1 KB"_s;
    QTest::newRow("kilobytes are rounded") << qsizetype(12'500) << u"13 KB"_s;
    QTest::newRow("a thousand kilobytes are one megabyte") << qsizetype(999'500) << u"1 MB"_s;
    QTest::newRow("megabytes have a digit") << qsizetype(1'550'000) << u"1.6 MB"_s;
    QTest::newRow("there is nothing above megabytes") << qsizetype(2'500'000'000) << u"2,500 MB"_s;
}

void RequestDetailsModelTest::byteCounts()
{
    QFETCH(const qsizetype, bytes);
    QTEST(QXMediumText::byteCount(bytes), "text");
}

void RequestDetailsModelTest::copyingIsConfirmed()
{
    QXRequestDetailsViewModel model(makeTrace(QString()));
    QCOMPARE(model.alertTitle(), u"Export Failed"_s);
    QVERIFY(!model.alertMessage() && !model.showAlert());
    QStringList order;
    connect(&model, &QXRequestDetailsViewModel::_alertTitleChanged, this,
            [&] { order += model.alertTitle(); });
    connect(&model, &QXRequestDetailsViewModel::_alertMessageChanged, this,
            [&] { order += *model.alertMessage(); });
    connect(&model, &QXRequestDetailsViewModel::_showAlertChanged, this, [&] { order += u"shown"_s; });
    model.copyValue(u"text/html"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"text/html"_s);
    QCOMPARE(order, QStringList({u"Copied!"_s, u"Value copied to pasteboard."_s, u"shown"_s}));
    model.setShowAlert(false);
    model.shareCurl(); // the title of the copy has to go
    QCOMPARE(model.alertTitle(), u"Export Failed"_s);
    QCOMPARE(model.alertMessage(), u"Missing request URL."_s);
    QVERIFY(model.showAlert() && !model.shareItem());
}

void RequestDetailsModelTest::decoding()
{
    QXRequestDetailsViewModel model(makeTrace());
    QVERIFY(!model.canDecodeValue(u"text/html"_s));
    model.decodeValue(u"text/html"_s);
    QVERIFY(!model.decodedPayload());
    const QString encoded = QString::fromLatin1(QByteArray("{\"user\":\"someone\"}").toBase64());
    QVERIFY(model.canDecodeValue(encoded));
    model.decodeValue(encoded);
    QVERIFY(model.decodedPayload());
    model.setProperty("_decodedPayload", QVariant());
    QVERIFY(!model.decodedPayload());
}

void RequestDetailsModelTest::breakpointFollowsTheStore()
{
    QXRequestDetailsViewModel model(makeTrace());
    QSignalSpy changed(&model, &QXRequestDetailsViewModel::breakpointEnabledChanged);
    const QXBreakpointKey key{u"GET"_s, u"shop.test"_s, u"/v1/users/42"_s};
    model.setBreakpointEnabled(true);
    QVERIFY(QXBreakpointStore::shared().contains(key) && model.breakpointEnabled());
    QXBreakpointStore::shared().remove(key);
    QVERIFY(!model.breakpointEnabled());
    QCOMPARE(changed.size(), 2);
    model.setBreakpointEnabled(true);
    model.setBreakpointEnabled(false);
    QVERIFY(QXBreakpointStore::shared().rules().isEmpty());

    QXRequestDetailsViewModel without(makeTrace(QString()));
    const QSignalSpy read(&without, &QXRequestDetailsViewModel::breakpointEnabledChanged);
    without.setBreakpointEnabled(true);
    QVERIFY(!without.breakpointEnabled() && QXBreakpointStore::shared().rules().isEmpty());
    QCOMPARE(read.size(), 1);
}

void RequestDetailsModelTest::logTreeOfABody()
{
    for (const bool hasUrl : {true, false}) {
        auto trace = makeTrace(hasUrl ? u"https://shop.test/a%20b"_s : QString());
        trace.body = "[1]";
        QXRequestDetailsViewModel model(trace);
        model.openLogTree(0);
        QVERIFY(!model.logTreeDestination());
        model.openLogTree(2);
        const auto first = model.logTreeDestination();
        QCOMPARE(first->requestPath, hasUrl ? u"/a b"_s : u"Unknown"_s);
        QCOMPARE(first->jsonString, u"[\n  1\n]"_s);
        model.openLogTree(2);
        QVERIFY(first->id != model.logTreeDestination()->id);
    }
}

void RequestDetailsModelTest::sharing()
{
    auto trace = makeTrace();
    trace.response = makeResponse(200, "{\"a\":1}");
    QXRequestDetailsViewModel model(trace);
    using Action = void (QXRequestDetailsViewModel::*)();
    for (const Action action :
         {&QXRequestDetailsViewModel::shareCurl, &QXRequestDetailsViewModel::shareRawDetails}) {
        (model.*action)();
        QCOMPARE(model.shareItem()->activityItems.value(0).typeId(), int(QMetaType::QString));
    }
    QCOMPARE(model.shareItem()->activityItems.value(0).toString(), rawDetails(trace));
    for (const Action action :
         {&QXRequestDetailsViewModel::shareHarFile, &QXRequestDetailsViewModel::shareMockServerFile,
          &QXRequestDetailsViewModel::shareSwiftModel}) {
        const QUuid before = model.shareItem()->id;
        (model.*action)();
        QVERIFY(model.shareItem()->id != before);
        const QString file = model.shareItem()->activityItems.value(0).toUrl().toLocalFile();
        QVERIFY2(QFile::exists(file), qPrintable(file));
        QVERIFY(QFile::remove(file));
    }
    QVERIFY(!model.showAlert() && !model.alertMessage());
}

void RequestDetailsModelTest::sharingFailures_data()
{
    QTest::addColumn<QXRequestTrace>("trace");
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QString>("message");
    QTest::newRow("a mock without a body") << makeTrace() << QByteArray("shareMockServerFile")
                                           << u"No response body available to generate a mock."_s;
    QTest::newRow("a model without a body") << makeTrace() << QByteArray("shareSwiftModel")
                                            << u"No JSON payload available to generate a model."_s;
    auto trace = makeTrace();
    trace.response = makeResponse(200, "<html>");
    QTest::newRow("a model of what is not JSON")
        << trace << QByteArray("shareSwiftModel") << u"Failed to parse JSON payload."_s;
    trace = makeTrace(u"https://shop.test/"_s + QString(300, u'x'));
    QTest::newRow("an archive with a name that no file can have")
        << trace << QByteArray("shareHarFile") << QString();
}

void RequestDetailsModelTest::sharingFailures()
{
    QFETCH(const QXRequestTrace, trace);
    QFETCH(const QByteArray, action);
    QFETCH(const QString, message);
    QXRequestDetailsViewModel model(trace);
    QVERIFY(QMetaObject::invokeMethod(&model, action.constData()));
    QVERIFY(!model.shareItem() && model.showAlert());
    QCOMPARE(model.alertTitle(), u"Export Failed"_s);
    QVERIFY(!model.alertMessage()->isEmpty());
    if (!message.isEmpty())
        QCOMPARE(*model.alertMessage(), message);
}

void RequestDetailsModelTest::rawDetailsOfACompletedExchange()
{
    auto trace = makeTrace();
    HTTPCookieStorage::shared().setCookies({QNetworkCookie("sid", "a1"), QNetworkCookie("b", "2")},
                                           *trace.url);
    trace.method = u"POST"_s;
    trace.headers = HTTPHeaderFields{{u"b"_s, u"2"_s}, {u"A"_s, u"1"_s}};
    trace.body = "{\"b\":1,\"a\":2}";
    trace.duration = 0.5;
    trace.response = makeResponse(201, QByteArray("\xFF\x01"), {{u"ETag"_s, u"x"_s}});
    const QString date = u"Nov 14, 2023, 10:13:20 PM"_s;
    QStringList cookies;
    for (const QNetworkCookie &cookie : HTTPCookieStorage::shared().cookiesForURL(*trace.url))
        cookies += QString::fromLatin1(cookie.name() + " = " + cookie.value());
    QCOMPARE(cookies.size(), 2);
    const QStringList expected{
        block(u"URL"_s, u"https://shop.test/v1/users/42?q=1"_s),
        block(u"HTTP type"_s, u"POST"_s),
        block(u"Request Headers"_s, u"{\n    \"A\" = 1;\n    \"b\" = 2;\n}"_s),
        block(u"Request Cookies"_s, cookies.join(u'\n')),
        block(u"Request Body"_s, u"{\n  \"a\" : 2,\n  \"b\" : 1\n}"_s),
        block(u"Request time"_s, date),
        block(u"Request status"_s, u"Completed"_s),
        block(u"HTTP Response code"_s, u"201"_s),
        block(u"Response Time"_s, date),
        block(u"Response Headers"_s, u"{\n    \"ETag\" = x;\n}"_s),
        block(u"Response Cookies"_s, cookies.join(u'\n')),
        block(u"Response Cache"_s, u"After request\nlastAccess: 2023-11-14T22:13:20Z\neTag: x"_s),
        block(u"Response Body"_s, u"ff 01"_s),
        block(u"Roundtrip duration"_s, u"0.500000 secs"_s),
        block(u"Request Size"_s, u"1 KB"_s)};
    QCOMPARE(rawDetails(trace), expected.join(QString()).chopped(1)); // the last line is the empty one
}

void RequestDetailsModelTest::rawDetailsOfOthers()
{
    auto trace = makeTrace(QString());
    trace.body = QByteArray();
    const QString pending = rawDetails(trace);
    QVERIFY(pending.startsWith(block(u"URL"_s, u"N/A"_s)));
    QVERIFY(pending.contains(block(u"Request Body"_s, QString())));
    QVERIFY(pending.contains(block(u"Request status"_s, u"Pending"_s)));
    QVERIFY(!pending.contains(u"Headers"_s) && !pending.contains(u"Cookies"_s) &&
            !pending.contains(u"Response"_s));
    trace.error = QXFailureNote(makeURLError(NSURLErrorTimedOut));
    QVERIFY(rawDetails(trace).contains(block(u"Request status"_s, u"Failed"_s)));
}

QTEST_MAIN(RequestDetailsModelTest)
#include "RequestDetailsModelTest.moc"
