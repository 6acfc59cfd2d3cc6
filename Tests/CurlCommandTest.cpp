#include "Tests/CommandRunner.h"

#include "Quorvix/QXCurlCommandBuilder.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXRequestTrace.h"

#include <QtCore/QStandardPaths>
#include <QtTest/QTest>

#include <numeric>

using namespace Qt::StringLiterals;

namespace {

using Body = std::optional<QByteArray>;

QXRequestTrace makeTrace(const QString &url, const HTTPHeaderFields &headers = {}, const Body &body = {})
{
    URLRequest request{QUrl(url)};
    request.allHTTPHeaderFields = headers;
    request.httpBody = body;
    return {u"ID"_s, request};
}

QString commandFor(const QXRequestTrace &trace)
{
    const auto command = QXCurlCommandBuilder::build(trace);
    return command ? command.value() : command.error().localizedDescription;
}

/// The headers that arrived, less those that curl adds to any request.
QByteArrayList ownHeaders(const Arrival &arrival, const QByteArrayList &expected)
{
    static const QByteArrayList added{"Host", "User-Agent", "Accept", "Content-Length", "Content-Type"};
    QByteArrayList own;
    for (const QByteArray &header : arrival.headers) {
        if (expected.contains(header) ||
            !added.contains(header.first(std::max<qsizetype>(0, header.indexOf(':')))))
            own += header;
    }
    std::sort(own.begin(), own.end());
    return own;
}

QByteArray allBytes()
{
    QByteArray bytes(256, Qt::Uninitialized);
    std::iota(bytes.begin(), bytes.end(), '\0');
    return bytes;
}

} // namespace

class CurlCommandTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void writesText_data();
    void writesText();
    void hasFixedTexts();
    void needsURL();
    void writesLargeBodies_data();
    void writesLargeBodies();
    void repeatsTheRequest_data();
    void repeatsTheRequest();
    void losesOnlyWhatIsKnown_data();
    void losesOnlyWhatIsKnown();
    void readsURLsAsCurlDoes_data();
    void readsURLsAsCurlDoes();

private:
    void checkArrival(const QString &shell, const QXRequestTrace &trace, const QByteArray &target,
                      const QByteArrayList &headers, const QByteArray &body);

    QStringList m_shells;
    CommandRunner m_runner;
};

void CurlCommandTest::initTestCase()
{
    for (const QString &tool : {u"dash"_s, u"curl"_s, u"base64"_s})
        QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(),
                 qPrintable(u"%1 is not installed"_s.arg(tool)));
    m_shells = {u"dash"_s};
    if (!QStandardPaths::findExecutable(u"bash"_s).isEmpty())
        m_shells += u"bash"_s;
    QVERIFY(m_runner.start());
}

void CurlCommandTest::writesText_data()
{
    QTest::addColumn<HTTPHeaderFields>("headers");
    QTest::addColumn<Body>("body");
    QTest::addColumn<QString>("lines");

    const QString afterURL = u" \\\n"_s;
    QTest::newRow("URL alone") << HTTPHeaderFields() << Body() << QString();
    QTest::newRow("order of headers")
        << HTTPHeaderFields{{u"b"_s, u"1"_s}, {u"A"_s, u"2"_s}, {u"a"_s, u"3"_s}} << Body()
        << afterURL + u"  -H 'A: 2' \\\n  -H 'a: 3' \\\n  -H 'b: 1'"_s;
    QTest::newRow("apostrophe") << HTTPHeaderFields{{u"X-Note"_s, u"it's"_s}} << Body()
                                << afterURL + u"  -H 'X-Note: it'\\''s'"_s;
    QTest::newRow("line ends") << HTTPHeaderFields() << Body("a\r\nb\rc\r\r\n\n"_ba)
                               << afterURL + u"  --data-raw 'a\nb\nc\n\n\n'"_s;
    QTest::newRow("empty body") << HTTPHeaderFields() << Body(""_ba) << afterURL + u"  --data-raw ''"_s;
    QTest::newRow("byte order mark") << HTTPHeaderFields() << Body("\xEF\xBB\xBF{}"_ba)
                                     << afterURL + u"  --data-raw '\ufeff{}'"_s;
    QTest::newRow("binary") << HTTPHeaderFields() << Body("\xFF\xFE"_ba)
                            << afterURL + u"  --data-binary \"$(printf '%s' '"_s + u"//4="_s +
                                   u"' | (base64 --decode 2>/dev/null || base64 -D))\""_s;
}

void CurlCommandTest::writesText()
{
    QFETCH(const HTTPHeaderFields, headers);
    QFETCH(const Body, body);
    QFETCH(const QString, lines);
    QXRequestTrace trace = makeTrace(u"https://h.example/?q=it's"_s, headers, body);
    QCOMPARE(commandFor(trace), u"curl -X GET 'https://h.example/?q=it'\\''s'"_s + lines);
    trace.method = u"PUT"_s;
    QVERIFY(commandFor(trace).startsWith(u"curl -X PUT 'h"_s));
    trace.method.reset();
    QVERIFY(commandFor(trace).startsWith(u"curl -X GET 'h"_s));
}

void CurlCommandTest::hasFixedTexts()
{
    const QString line = commandFor(makeTrace(u"h:"_s, {}, "\xFF\xFE"_ba)).section(u'\n', 1);
    QCOMPARE(line.indexOf("//4="_L1), 32);
    QCOMPARE(line.size(), 32 + 4 + 48);
}

void CurlCommandTest::needsURL()
{
    for (const auto &url : {std::optional<QUrl>(), std::optional(QUrl())}) {
        QXRequestTrace trace = makeTrace(u"https://h.example/"_s);
        trace.url = url;
        const auto command = QXCurlCommandBuilder::build(trace);
        QVERIFY(!command);
        QCOMPARE(command.error(), makeError(QXExportError::missingRequestURL));
        QCOMPARE(command.error().localizedDescription, u"Missing request URL."_s);
    }
}

void CurlCommandTest::writesLargeBodies_data()
{
    QTest::addColumn<QByteArray>("pattern");
    QTest::newRow("ends of lines") << "\r\n"_ba;
    QTest::newRow("returns") << "\r\r\n"_ba;
    QTest::newRow("characters of four bytes") << "a\U0001F600"_ba;
    QTest::newRow("apostrophes") << "it's"_ba;
    QTest::newRow("binary") << "ab\xFF\x80"_ba;
}

/// Bodies are converted piece by piece; here, pieces end everywhere in the pattern.
void CurlCommandTest::writesLargeBodies()
{
    QFETCH(const QByteArray, pattern);
    for (const qsizetype shift : {0, 1, 2, 3}) {
        const QByteArray body = QByteArray(shift, 'x') + pattern.repeated(20'000);
        const QString command = commandFor(makeTrace(u"h:"_s, {}, body));
        const bool isText = QString::fromUtf8(body).toUtf8() == body;
        const QString quoted = QString::fromUtf8(body)
                                   .replace(u"\r\n"_s, u"\n"_s)
                                   .replace(u'\r', u'\n')
                                   .replace(u"'"_s, u"'\\''"_s);
        const QString inCommand = isText ? u"  --data-raw '"_s + quoted + u'\''
                                         : u"'%s' '"_s + QString::fromLatin1(body.toBase64()) + u"' | ("_s;
        QVERIFY(command.contains(inCommand));
    }
}

void CurlCommandTest::repeatsTheRequest_data()
{
    QTest::addColumn<QString>("shell");
    QTest::addColumn<QString>("path");
    QTest::addColumn<HTTPHeaderFields>("headers");
    QTest::addColumn<Body>("body");

    const auto row = [this](const char *name, const QString &path, const HTTPHeaderFields &headers,
                            const Body &body) {
        for (const QString &shell : std::as_const(m_shells))
            QTest::addRow("%s: %s", qPrintable(shell), name) << shell << path << headers << body;
    };
    const auto header = [](const QString &value) {
        return HTTPHeaderFields{{u"X-Note"_s, value}};
    };
    const QString hostile =
        u"it's '' \"$HOME\" $(touch ran) `touch ran` !! %s %41 & ; | > ran < * ? ~ \\ \\' # {a,b} [1-3]"_s;
    row("nothing but a URL", u"/"_s, {}, {});
    row("query is cut at &", u"/a?x=1&y=2;z=3"_s, {}, {});
    row("URL breaks the quotation", u"/it's/''/$(touch%20ran)/`touch ran`/!!?q='&r=$HOME"_s, {}, {});
    row("URL is encoded again", u"/%27%20%25/é?q=a+b%26"_s, {}, {});
    row("pattern in the path", u"/*?q=*&{a,b}"_s, {}, {});
    row("header breaks the quotation", u"/"_s, header(hostile), {});
    row("header that is not ASCII", u"/"_s, header(u"Grüße, 世界 \U0001F600"_s), {});
    row("header begins with a dash", u"/"_s, header(u"-o ran"_s), {});
    row("header's name begins with a dash", u"/"_s, {{u"-o"_s, u"ran"_s}}, {});
    row("header takes the place of curl's own", u"/"_s,
        {{u"Accept"_s, u"text/css"_s}, {u"Content-Type"_s, u"a/b"_s}, {u"User-Agent"_s, u"Me"_s}}, "x"_ba);
    row("body breaks the quotation", u"/"_s, {}, hostile.toUtf8());
    row("body of several lines", u"/"_s, {}, "\n\na\n \\\n  -H 'X: 1'\nb\n\n"_ba);
    row("body of one backslash", u"/"_s, {}, "\\"_ba);
    row("empty body", u"/"_s, {}, ""_ba);
    row("body is taken for a file", u"/"_s, {}, "@/etc/hostname"_ba);
    row("body is taken for an option", u"/"_s, {}, "-o ran"_ba);
    row("body that is not ASCII", u"/"_s, {}, u"Grüße, 世界 \U0001F600\u0081\u0088"_s.toUtf8());
    row("byte order mark is lost", u"/"_s, {}, "\xEF\xBB\xBF{}"_ba);
    row("control characters", u"/"_s, {}, "\x01\x02\x1b\x7f\t\b"_ba);
    row("binary body", u"/"_s, {}, allBytes().sliced(1));
    row("binary body that breaks the quotation", u"/"_s, {}, "\xFF'\"$(touch ran)`touch ran`\\\r\n%s\r"_ba);
    row("binary body of any length", u"/"_s, {}, "\xFF"_ba);
    row("large text", u"/"_s, {}, QByteArray("0123456789abcde\n").repeated(8000) + '.');
    row("large binary", u"/"_s, {}, allBytes().sliced(1).repeated(350));
}

void CurlCommandTest::repeatsTheRequest()
{
    QFETCH(const QString, shell);
    QFETCH(const QString, path);
    QFETCH(const HTTPHeaderFields, headers);
    QFETCH(const Body, body);
    QXRequestTrace trace = makeTrace(m_runner.url(path), headers, body);
    trace.method = body ? u"PATCH"_s : u"DELETE"_s;
    QByteArrayList lines;
    for (auto it = headers.cbegin(); it != headers.cend(); ++it)
        lines += (it.key() + u": "_s + it.value()).toUtf8();
    const QUrl::ComponentFormattingOption asSent = QUrl::FullyEncoded;
    checkArrival(shell, trace, trace.url->toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority | asSent),
                 lines, body.value_or(QByteArray()));
}

void CurlCommandTest::checkArrival(const QString &shell, const QXRequestTrace &trace,
                                   const QByteArray &target, const QByteArrayList &headers,
                                   const QByteArray &body)
{
    const QList<Arrival> arrivals = m_runner.run(shell, commandFor(trace));
    QVERIFY2(m_runner.exitCode() == 0, m_runner.complaints());
    QCOMPARE(arrivals.size(), 1);
    QCOMPARE(arrivals[0].method, trace.method->toUtf8());
    QCOMPARE(arrivals[0].target, target);
    QCOMPARE(ownHeaders(arrivals[0], headers), headers);
    QCOMPARE(arrivals[0].body, body);
    QVERIFY(m_runner.home().isEmpty());
}

void CurlCommandTest::losesOnlyWhatIsKnown_data()
{
    QTest::addColumn<QString>("shell");
    QTest::addColumn<HTTPHeaderFields>("headers");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArrayList>("arrivingHeaders");
    QTest::addColumn<QByteArray>("arrivingBody");

    const auto row = [this](const char *name, const QByteArray &body, const QByteArray &arriving) {
        for (const QString &shell : std::as_const(m_shells))
            QTest::addRow("%s: %s", qPrintable(shell), name)
                << shell << HTTPHeaderFields() << body << QByteArrayList() << arriving;
    };
    row("returns become line feeds", "a\r\nb\rc\r\r\n"_ba, "a\nb\nc\n\n"_ba);
    row("the shell drops NUL from text", QByteArray("a\0b\0", 4), "ab"_ba);
    row("the shell drops NUL from binary", QByteArray("\0\xFF\0\n\0a", 6), "\xFF\na"_ba);
    row("the shell drops line feeds behind binary", "\n\xFF\n\n\n"_ba, "\n\xFF"_ba);
    row("the shell drops both", QByteArray("\xFF\n\0\n", 4), "\xFF"_ba);
    row("binary that begins with @ is a file's name", "@\xFF"_ba, ""_ba);

    const auto headerRow = [this](const char *name, const HTTPHeaderFields &headers,
                                  const QByteArrayList &arriving) {
        for (const QString &shell : std::as_const(m_shells))
            QTest::addRow("%s: %s", qPrintable(shell), name)
                << shell << headers << "x"_ba << arriving << "x"_ba;
    };
    headerRow("curl sends no header without a value", {{u"X-A"_s, QString()}, {u"X-B"_s, u"b"_s}},
              {"X-B: b"});
    headerRow("returns in a header become line feeds", {{u"X-A"_s, u"a\r\nX-C: c"_s}}, {"X-A: a\nX-C: c"});
    headerRow("curl reads headers from a file", {{u"@X-A"_s, u"a"_s}, {u"X-B"_s, u"b"_s}}, {"X-B: b"});
}

void CurlCommandTest::losesOnlyWhatIsKnown()
{
    QFETCH(const QString, shell);
    QFETCH(const HTTPHeaderFields, headers);
    QFETCH(const QByteArray, body);
    QFETCH(const QByteArrayList, arrivingHeaders);
    QFETCH(const QByteArray, arrivingBody);
    QXRequestTrace trace = makeTrace(m_runner.url(u"/"_s), headers, body);
    trace.method = u"POST"_s;
    checkArrival(shell, trace, "/", arrivingHeaders, arrivingBody);
}

void CurlCommandTest::readsURLsAsCurlDoes_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArrayList>("targets");
    QTest::newRow("counts through a range")
        << u"/?a[1-3]=x"_s << QByteArrayList{"/?a1=x", "/?a2=x", "/?a3=x"};
    QTest::newRow("refuses an index") << u"/?a[0]=x"_s << QByteArrayList();
    QTest::newRow("brackets without content") << u"/?a[]=x"_s << QByteArrayList{"/?a[]=x"};
    QTest::newRow("brackets that are escaped") << u"/?a%5B1-3%5D=x"_s << QByteArrayList{"/?a%5B1-3%5D=x"};
    QTest::newRow("resolves dot segments") << u"/a/../b/./c"_s << QByteArrayList{"/b/c"};
    QTest::newRow("keeps the fragment") << u"/a#b"_s << QByteArrayList{"/a"};
}

void CurlCommandTest::readsURLsAsCurlDoes()
{
    QFETCH(const QString, path);
    QFETCH(const QByteArrayList, targets);
    QByteArrayList arrived;
    for (const Arrival &arrival : m_runner.run(u"dash"_s, commandFor(makeTrace(m_runner.url(path)))))
        arrived += arrival.target;
    QCOMPARE(arrived, targets);
    QCOMPARE(m_runner.exitCode() == 0, !targets.isEmpty());
    QVERIFY(m_runner.home().isEmpty());
}

QTEST_GUILESS_MAIN(CurlCommandTest)
#include "CurlCommandTest.moc"
