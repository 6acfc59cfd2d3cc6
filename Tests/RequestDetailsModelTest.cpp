#include "Tests/Exchanges.h"

#include "Quorvix/QXBodyText.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXDisplayFormat.h"
#include "Quorvix/QXRawDetails.h"
#include "Quorvix/QXRequestDetailsViewModel.h"

#include "Platform/HTTPCookieStorage.h"
#include "Platform/MainActor.h"
#include "Platform/NSByteCountFormatter.h"

#include <QtCore/QFile>
#include <QtCore/QLocale>
#include <QtCore/QStandardPaths>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <ctime>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using Exchanges::makeResponseTrace;
using Exchanges::makeTrace;

namespace {

const QString user = u"https://shop.test/v1/users/42?q=1"_s;

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

/// Replaces the narrow no-break space that newer locale data has before AM and PM.
QString withPlainSpaces(QString text)
{
    return text.replace(u'\u202F', u' ');
}

/// The values of a section, each as "label=text".
QStringList values(const QXRequestDetailsViewModel &model, const QString &title)
{
    QStringList found;
    for (const QVariant &value : sectionData(model, title, QXRequestDetailsViewModel::ValuesRole).toList())
        found +=
            value.value<QXRequestValue>().label + u'=' + withPlainSpaces(value.value<QXRequestValue>().text);
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
    void groupsUnfoldEachByItself();
    void sectionsOfWhatIsMissing();
    void statusColors();
    void bodyTexts_data();
    void bodyTexts();
    void largeBodiesAreMadeReadableElsewhere_data();
    void largeBodiesAreMadeReadableElsewhere();
    void runningExchangesAreAskedOnce();
    void removedBodiesSaySo();
    void openDetailsKeepTheirBodies();
    void datesAndByteCounts();
    void copyingIsConfirmed();
    void logTreeOfABody();
    void sharing();
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
    auto trace = makeTrace(user);
    HTTPCookieStorage::shared().setCookies({QNetworkCookie("sid", "a1")}, *trace.url);
    trace.method = u"PUT"_s;
    trace.headers = HTTPHeaderFields{{u"accept"_s, u"*/*"_s}, {u"Zone"_s, u"z"_s}};
    trace.body = "{}";
    trace.duration = 1.23456;
    // A cookie that the response sets is not listed unless the storage has it.
    trace.response = makeResponseTrace(404, "oops", {{u"ETag"_s, u"x"_s}, {u"Set-Cookie"_s, u"other=1"_s}});
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
             QStringList({u"Status Code=404"_s, u"Time=Nov 14, 2023, 10:13:21 PM"_s}));
    QCOMPARE(values(model, u"RESPONSE CACHE"_s),
             QStringList(u"After request=lastAccess: 2023-11-14T22:13:21Z\neTag: x"_s));
    QCOMPARE(document(model, u"RESPONSE BODY"_s)->text(), u"oops"_s);
    QCOMPARE(values(model, u"ERROR"_s),
             QStringList({u"Description=It failed."_s, u"Domain=D"_s, u"Code=-7"_s}));
}

void RequestDetailsModelTest::groupsUnfoldEachByItself()
{
    using Group = QXRequestSection::Group;
    auto trace = makeTrace(u"https://shop.test/v1/users/42?q=1"_s);
    HTTPCookieStorage::shared().setCookies({QNetworkCookie("sid", "a1")}, *trace.url);
    trace.response = makeResponseTrace(200, {}, {{u"ETag"_s, u"x"_s}});
    QXRequestDetailsViewModel model(trace);
    const auto isExpanded = [&](const QString &title) {
        return sectionData(model, title, QXRequestDetailsViewModel::ExpandedRole).toBool();
    };
    const auto toggle = [&](const QString &title) {
        model.toggleGroup(int(titles(model).indexOf(title)));
    };
    toggle(u"RESPONSE CACHE"_s);
    QVERIFY(isExpanded(u"RESPONSE CACHE"_s) && !isExpanded(u"RESPONSE COOKIES"_s));
    QVERIFY(model.shows(Group::ResponseCache) && model.property("_showResponseCache").toBool());
    toggle(u"REQUEST COOKIES"_s);
    toggle(u"RESPONSE CACHE"_s);
    QVERIFY(isExpanded(u"REQUEST COOKIES"_s) && !isExpanded(u"RESPONSE CACHE"_s));
    QVERIFY(model.shows(Group::RequestCookies) && !model.shows(Group::ResponseCookies));

    const QSignalSpy changed(&model, &QXRequestDetailsViewModel::groupsChanged);
    toggle(u"REQUEST"_s);
    toggle(u"no such section"_s);
    QCOMPARE(changed.size(), 0);
}

void RequestDetailsModelTest::sectionsOfWhatIsMissing()
{
    const auto sections = [](const QXRequestTrace &trace) {
        return titles(QXRequestDetailsViewModel(trace)).mid(2).join(u'|');
    };
    auto trace = makeTrace(QString());
    trace.method.reset();
    trace.headers = HTTPHeaderFields();
    QCOMPARE(sections(trace), QString());
    const QXRequestDetailsViewModel model(trace);
    QCOMPARE(values(model, u"REQUEST"_s).mid(0, 2), QStringList({u"URL=N/A"_s, u"Method=GET"_s}));
    trace.body = QByteArray();
    QCOMPARE(sections(trace), u"REQUEST BODY"_s);
    trace = makeTrace(user);
    trace.response = makeResponseTrace(200);
    QCOMPARE(sections(trace), u"RESPONSE|RESPONSE CACHE"_s);
    trace.response.reset();
    trace.error = QXFailureNote(makeURLError(NSURLErrorTimedOut));
    QCOMPARE(sections(trace), u"ERROR"_s);
}

void RequestDetailsModelTest::statusColors()
{
    const auto color = [](int status) {
        auto trace = makeTrace(user);
        trace.response = makeResponseTrace(status);
        const QXRequestDetailsViewModel model(trace);
        const auto shown = sectionData(model, u"RESPONSE"_s, QXRequestDetailsViewModel::ValuesRole).toList();
        return shown[0].value<QXRequestValue>().color;
    };
    QCOMPARE(color(199), int(QXSystemColor::Orange));
    QCOMPARE(color(200), int(QXSystemColor::Green));
    QCOMPARE(color(299), int(QXSystemColor::Green));
    QCOMPARE(color(300), int(QXSystemColor::Orange));
    QCOMPARE(color(400), int(QXSystemColor::Red));
    QCOMPARE(color(401), int(QXSystemColor::Red));
}

void RequestDetailsModelTest::bodyTexts_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("text");
    QTest::newRow("keys are sorted at every level")
        << R"({"b":{"d":1,"c":[]},"B":"/"})"_ba
        << u"{\n  \"B\" : \"/\",\n  \"b\" : {\n    \"c\" : [],\n    \"d\" : 1\n  }\n}"_s;
    QTest::newRow("a scalar stays as it is written") << " 1.50 "_ba << u" 1.50 "_s;
    QTest::newRow("broken JSON stays text") << "{\"a\":1,}\r\n"_ba << u"{\"a\":1,}\r\n"_s;
    QTest::newRow("half of an emoji") << R"(["\ud83d"])"_ba << u"[\n  \"\ufffd\"\n]"_s;
    QTest::newRow("JSON in UTF-16") << "\xFE\xFF\0[\0]"_ba << u"[]"_s;
    QTest::newRow("a byte order mark stays") << "\xEF\xBB\xBFx"_ba << u"\uFEFFx"_s;
    QTest::newRow("bytes that are no text") << "\x00\xFF"_ba << u"00 ff"_s;
    QTest::newRow("a NUL is text") << "a\0b"_ba << u"a\0b"_s;
}

void RequestDetailsModelTest::bodyTexts()
{
    QFETCH(const QByteArray, body);
    auto trace = makeTrace(user);
    trace.body = body;
    QTEST(document(QXRequestDetailsViewModel(trace), u"REQUEST BODY"_s)->text(), "text");
}

void RequestDetailsModelTest::largeBodiesAreMadeReadableElsewhere_data()
{
    const QByteArray text(1'000'000, 'x');
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("JSON") << "{\"b\":\"" + text + "\",\"a\":1}";
    QTest::newRow("JSON beyond ASCII") << "{\"b\":\"" + text + "\",\"a\":\"\xC3\xA9\"}";
    QTest::newRow("text") << text;
    QTest::newRow("text with a byte order mark") << "\xEF\xBB\xBF" + text;
    QTest::newRow("bytes") << text + '\xFF';
}

void RequestDetailsModelTest::largeBodiesAreMadeReadableElsewhere()
{
    QFETCH(const QByteArray, body);
    auto trace = makeTrace(user);
    trace.response = makeResponseTrace(200, body);
    {
        const QXRequestDetailsViewModel gone(trace); // its result arrives after the model is destroyed
    }
    QXRequestDetailsViewModel model(trace);
    const QSignalSpy changed(&model, &QAbstractItemModel::dataChanged);
    QVERIFY(!document(model, u"RESPONSE BODY"_s));
    model.openLogTree(model.rowCount() - 1);
    QVERIFY(!model.logTreeDestination());
    QTRY_VERIFY(document(model, u"RESPONSE BODY"_s));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(document(model, u"RESPONSE BODY"_s)->text(), QXBodyText::text(body));
    model.openLogTree(model.rowCount() - 1);
    QCOMPARE(model.logTreeDestination()->jsonString(), QXBodyText::text(body));
}

void RequestDetailsModelTest::runningExchangesAreAskedOnce()
{
    auto &recorder = QXRequestRecorder::shared();
    const QString id = u"running"_s;
    const auto shown = [](const QXRequestDetailsViewModel &model) {
        const QXTextDocument *const body = document(model, u"RESPONSE BODY"_s);
        return body ? body->text() : QString();
    };
    const auto durations = [](const QXRequestDetailsViewModel &model) {
        return values(model, u"REQUEST"_s).filter(u"Duration"_s).size();
    };
    recorder.clear();
    URLRequest request = Exchanges::makeRequest(user);
    request.httpBody = QByteArray(1'000'000, 'x'); // its text arrives after the answer
    recorder.record(id, request);
    const auto answer = [&](const QByteArray &body) {
        recorder.progress(id, Exchanges::makeResponse(200), body);
    };
    const auto running = [&] {
        return recorder.requests()[recorder.requests().indexOf(id)];
    };

    QXRequestDetailsViewModel unasked(running());
    recorder.setRefresher(id, [&] { MainActor::schedule([&] { answer("half"); }); });
    QXRequestDetailsViewModel model(running());
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QSignalSpy removed(&model, &QAbstractItemModel::rowsRemoved);
    recorder.amend(id, request);
    Exchanges::record(u"another"_s, user);
    QCOMPARE(shown(model), QString());
    QTRY_COMPARE(shown(model), u"half"_s);
    QTRY_VERIFY(document(model, u"REQUEST BODY"_s));
    QCOMPARE(removed.size(), 0);
    QCOMPARE(durations(model), 0);
    QCOMPARE(model.request().response->body, "half");

    // The previous answer is shown until the next one.
    recorder.setRefresher(id, [&] { answer(QByteArray(500'000, 'y')); });
    QXRequestDetailsViewModel again(running());
    const QAbstractItemModelTester againTester(&again,
                                               QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(shown(again), u"half"_s);
    QTRY_COMPARE(shown(again).size(), 500'000);

    recorder.setRefresher(id, [&] { Exchanges::complete(id, 200, "whole"); });
    QXRequestDetailsViewModel last(running());
    QTRY_COMPARE(shown(last), u"whole"_s);
    QCOMPARE(durations(last), 1);
    QCOMPARE(shown(model), u"half"_s);
    QCOMPARE(shown(unasked), QString());

    recorder.record(id, request);
    recorder.setRefresher(id, [&] { recorder.clear(); });
    const QXRequestDetailsViewModel cleared(running());
    Exchanges::record(id, user);
    Exchanges::complete(id, 200, "of another exchange");
    QCoreApplication::processEvents();
    QCOMPARE(shown(cleared), QString());
}

void RequestDetailsModelTest::removedBodiesSaySo()
{
    auto trace = makeTrace(user);
    trace.discardedBodySize = 1'240'000;
    trace.response = makeResponseTrace(200);
    trace.response->discardedBodySize = 999;
    QXRequestDetailsViewModel model(trace);
    const QString note = u"Removed to stay within the memory budget (%1)"_s;
    for (const auto &[title, size] :
         {std::pair(u"REQUEST BODY"_s, u"1.2 MB"_s), {u"RESPONSE BODY"_s, u"1 KB"_s}}) {
        QCOMPARE(sectionData(model, title, QXRequestDetailsViewModel::KindRole).toInt(),
                 int(QXRequestDetailsViewModel::ValueSection));
        const QVariantList values = sectionData(model, title, QXRequestDetailsViewModel::ValuesRole).toList();
        QCOMPARE(values.size(), 1);
        QCOMPARE(values[0].value<QXRequestValue>().text, note.arg(size));
        QVERIFY(!document(model, title));
    }
    const QString raw = rawDetails(trace);
    QVERIFY(raw.contains(block(u"Request Body"_s, note.arg(u"1.2 MB"_s))));
    QVERIFY(raw.contains(block(u"Response Body"_s, note.arg(u"1 KB"_s))));
    QVERIFY(withPlainSpaces(raw).endsWith(block(u"Request Size"_s, u"1.2 MB"_s).chopped(1)));
    model.shareMockServerFile();
    QCOMPARE(model.alertMessage(), u"No response body available to generate a mock."_s);
    model.shareCurl();
    QVERIFY(model.shareItem()->activityItems.value(0).toString().endsWith(u"'\n# Request Body: "_s +
                                                                          note.arg(u"1.2 MB"_s)));
}

void RequestDetailsModelTest::openDetailsKeepTheirBodies()
{
    auto &recorder = QXRequestRecorder::shared();
    URLRequest request(QUrl{user});
    request.httpBody = "body";
    recorder.record(u"running"_s, request);
    recorder.setRefresher(u"running"_s, [] {});
    QXRequestDetailsViewModel model(recorder.requests()[0]);
    recorder.setBodyBudget(3);
    Exchanges::complete(u"running"_s, 200, "out");
    QCOMPARE(recorder.requests()[0].discardedBodySize, 4);
    QTRY_VERIFY(titles(model).contains(u"RESPONSE BODY"_s));
    QCOMPARE(document(model, u"REQUEST BODY"_s)->text(), u"body"_s);
    recorder.setBodyBudget(std::nullopt);
    recorder.clear();
}

void RequestDetailsModelTest::datesAndByteCounts()
{
    for (const auto &[locale, date] : {std::pair(u"en_GB"_s, u"14 Nov 2023, 22:13:20"_s),
                                       {u"da_DK"_s, u"14. nov. 2023, 22.13.20"_s},
                                       {u"ja_JP"_s, u"2023年11月14日, 22時13分20秒"_s},
                                       {u"es_ES"_s, u"14 de nov de 2023, 22:13:20"_s}}) {
        QLocale::setDefault(QLocale(locale));
        QCOMPARE(QXDisplayFormat::date(Exchanges::sent), date);
    }
    QLocale::setDefault(QLocale(u"en_US"_s));
    for (const auto &[bytes, text] : {std::pair(0, u"0 KB"_s),
                                      {1, u"1 KB"_s},
                                      {12'500, u"13 KB"_s},
                                      {999'500, u"1 MB"_s},
                                      {1'550'000, u"1.6 MB"_s},
                                      {2'000'000'000, u"2,000 MB"_s}})
        QCOMPARE(NSByteCountFormatter::string(bytes), text);
}

void RequestDetailsModelTest::copyingIsConfirmed()
{
    QXRequestDetailsViewModel model(makeTrace(QString()));
    model.copyValue(u"text/html"_s);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"text/html"_s);
    QVERIFY(model.showAlert());
    QCOMPARE(model.alertTitle(), u"Copied!"_s);
    QCOMPARE(model.alertMessage(), u"Value copied to pasteboard."_s);
    model.setShowAlert(false);
    model.shareCurl(); // the title of the copy has to disappear
    QCOMPARE(model.alertTitle(), u"Export Failed"_s);
    QCOMPARE(model.alertMessage(), u"Missing request URL."_s);
    QVERIFY(model.showAlert() && !model.shareItem());
}

void RequestDetailsModelTest::logTreeOfABody()
{
    auto trace = makeTrace(u"https://shop.test/a%20b"_s);
    trace.body = "[1]";
    QXRequestDetailsViewModel model(trace);
    model.openLogTree(0);
    QVERIFY(!model.logTreeDestination());
    model.openLogTree(2);
    QCOMPARE(model.logTreeDestination()->requestPath, u"/a b"_s);
    QCOMPARE(model.logTreeDestination()->jsonString(), u"[\n  1\n]"_s);
    trace.url.reset();
    QXRequestDetailsViewModel without(trace);
    without.openLogTree(2);
    QCOMPARE(without.logTreeDestination()->requestPath, u"Unknown"_s);
}

void RequestDetailsModelTest::sharing()
{
    auto trace = makeTrace(user);
    trace.response = makeResponseTrace(200, "{\"a\":1}");
    QXRequestDetailsViewModel model(trace);
    model.shareCurl();
    QVERIFY(model.shareItem()->activityItems.value(0).toString().startsWith(u"curl "_s));
    model.shareRawDetails();
    QCOMPARE(model.shareItem()->activityItems.value(0).toString(), rawDetails(trace));
    using Action = void (QXRequestDetailsViewModel::*)();
    for (const Action action :
         {&QXRequestDetailsViewModel::shareHarFile, &QXRequestDetailsViewModel::shareMockServerFile,
          &QXRequestDetailsViewModel::shareSwiftModel}) {
        const QUuid before = model.shareItem()->id;
        (model.*action)();
        QVERIFY(model.shareItem()->id != before);
        QVERIFY(QFile::remove(model.shareItem()->activityItems.value(0).toUrl().toLocalFile()));
    }
    QVERIFY(!model.showAlert() && !model.alertMessage());
}

void RequestDetailsModelTest::sharingFailures()
{
    using Model = QXRequestDetailsViewModel;
    const auto failure = [](const QXRequestTrace &trace, void (Model::*share)()) {
        Model model(trace);
        (model.*share)();
        return model.showAlert() && !model.shareItem() && model.alertTitle() == u"Export Failed"_s
                   ? model.alertMessage().value_or(QString())
                   : QString();
    };
    QCOMPARE(failure(makeTrace(user), &Model::shareMockServerFile),
             u"No response body available to generate a mock."_s);
    QCOMPARE(failure(makeTrace(user), &Model::shareSwiftModel),
             u"No JSON payload available to generate a model."_s);
    auto page = makeTrace(user);
    page.response = makeResponseTrace(200, "<html>");
    QCOMPARE(failure(page, &Model::shareSwiftModel), u"Failed to parse JSON payload."_s);
    // The name is too long for a file.
    QVERIFY(
        !failure(makeTrace(u"https://shop.test/"_s + QString(300, u'x')), &Model::shareHarFile).isEmpty());
}

void RequestDetailsModelTest::rawDetailsOfACompletedExchange()
{
    auto trace = makeTrace(user);
    HTTPCookieStorage::shared().setCookies({QNetworkCookie("sid", "a1")}, *trace.url);
    trace.method = u"POST"_s;
    trace.headers = HTTPHeaderFields{{u"b"_s, u"2"_s}, {u"A"_s, u"1"_s}};
    trace.body = "{\"b\":1,\"a\":2}";
    trace.duration = 0.5;
    trace.response = makeResponseTrace(201, "\xFF\x01"_ba, {{u"ETag"_s, u"x"_s}});
    const QStringList expected{
        block(u"URL"_s, u"https://shop.test/v1/users/42?q=1"_s),
        block(u"HTTP type"_s, u"POST"_s),
        block(u"Request Headers"_s, u"{\n    \"A\" = 1;\n    \"b\" = 2;\n}"_s),
        block(u"Request Cookies"_s, u"sid = a1"_s),
        block(u"Request Body"_s, u"{\n  \"a\" : 2,\n  \"b\" : 1\n}"_s),
        block(u"Request time"_s, u"Nov 14, 2023, 10:13:20 PM"_s),
        block(u"Request status"_s, u"Completed"_s),
        block(u"HTTP Response code"_s, u"201"_s),
        block(u"Response Time"_s, u"Nov 14, 2023, 10:13:21 PM"_s),
        block(u"Response Headers"_s, u"{\n    \"ETag\" = x;\n}"_s),
        block(u"Response Cookies"_s, u"sid = a1"_s),
        block(u"Response Cache"_s, u"After request\nlastAccess: 2023-11-14T22:13:21Z\neTag: x"_s),
        block(u"Response Body"_s, u"ff 01"_s),
        block(u"Roundtrip duration"_s, u"0.500000 secs"_s),
        block(u"Request Size"_s, u"1 KB"_s)};
    QCOMPARE(withPlainSpaces(rawDetails(trace)),
             expected.join(QString()).chopped(1)); // the last line is empty
}

void RequestDetailsModelTest::rawDetailsOfOthers()
{
    auto trace = makeTrace(QString());
    trace.body = QByteArray();
    const QString date = u"Nov 14, 2023, 10:13:20 PM"_s;
    const QString start = block(u"URL"_s, u"N/A"_s) + block(u"HTTP type"_s, u"GET"_s) +
                          block(u"Request Body"_s, QString()) + block(u"Request time"_s, date);
    QVERIFY(withPlainSpaces(rawDetails(trace)).startsWith(start + block(u"Request status"_s, u"Pending"_s)));
    trace.error = QXFailureNote(makeURLError(NSURLErrorTimedOut));
    QVERIFY(withPlainSpaces(rawDetails(trace)).startsWith(start + block(u"Request status"_s, u"Failed"_s)));
}

QTEST_MAIN(RequestDetailsModelTest)
#include "RequestDetailsModelTest.moc"
