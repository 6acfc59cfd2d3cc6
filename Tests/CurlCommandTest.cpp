#include "Tests/CommandRunner.h"
#include "Tests/Exchanges.h"
#include "Tests/TestKit.h"

#include "Quorvix/QXCurlCommandBuilder.h"
#include "Quorvix/QXExportError.h"

#include <QtCore/QStandardPaths>
#include <QtTest/QTest>

#include <filesystem>
#include <fstream>
#include <numeric>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using Exchanges::makeTrace;

namespace {

using Body = std::optional<QByteArray>;

QString commandFor(const QXRequestTrace &trace)
{
    const auto command = QXCurlCommandBuilder::build(trace);
    return command ? command.value() : command.error().localizedDescription;
}

/// The received headers without those that curl adds to every request.
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
    void encodesBrackets_data();
    void encodesBrackets();
    void needsURL();
    void writesLargeBodies();
    void repeatsTheRequest_data();
    void repeatsTheRequest();
    void repeatsTheMethod_data();
    void repeatsTheMethod();

private:
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

void CurlCommandTest::encodesBrackets_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QString>("written");
    QTest::newRow("host") << u"http://[::1]:80/a[1]?b[c]=[::1]#[d]"_s
                          << u"http://[::1]:80/a%5B1%5D?b%5Bc%5D=%5B::1%5D#%5Bd%5D"_s;
    QTest::newRow("host alone") << u"http://[::1]"_s << u"http://[::1]"_s;
    QTest::newRow("URL in the path") << u"http://h//[::1]/"_s << u"http://h//%5B::1%5D/"_s;
    QTest::newRow("user") << u"http://u[1]@h/"_s << u"http://u%5B1%5D@h/"_s;
    QTest::newRow("no scheme") << u"//[::1]/[x]"_s << u"//[::1]/%5Bx%5D"_s;
    QTest::newRow("no host") << u"urn:[x]"_s << u"urn:%5Bx%5D"_s;
    QTest::newRow("encoded before") << u"http://h/%5B%7B{\\"_s << u"http://h/%5B%7B%7B%5C"_s;
}

void CurlCommandTest::encodesBrackets()
{
    QFETCH(const QString, url);
    QFETCH(const QString, written);
    QCOMPARE(commandFor(makeTrace(url)), u"curl -X GET '%1'"_s.arg(written));
}

void CurlCommandTest::needsURL()
{
    QXRequestTrace trace = makeTrace(QString());
    const auto command = QXCurlCommandBuilder::build(trace);
    QVERIFY(!command);
    QCOMPARE(command.error(), makeError(QXExportError::missingRequestURL));
    trace.url = QUrl();
    QCOMPARE(commandFor(trace), u"Missing request URL."_s);
}

/// Bodies are converted in pieces. In this test pieces end at every place of the pattern.
void CurlCommandTest::writesLargeBodies()
{
    for (const QByteArray &pattern : {"\r\n"_ba, "a\U0001F600"_ba, "it's"_ba, "ab\xFF\x80"_ba}) {
        for (const qsizetype shift : {0, 1, 2, 3}) {
            const QByteArray body = QByteArray(shift, 'x') + pattern.repeated(20'000);
            const QString command = commandFor(makeTrace(u"h:"_s, {}, body));
            const bool isText = QString::fromUtf8(body).toUtf8() == body;
            const QString quoted =
                QString::fromUtf8(body).replace(u"\r\n"_s, u"\n"_s).replace(u"'"_s, u"'\\''"_s);
            const QString inCommand = isText
                                          ? u"  --data-raw '"_s + quoted + u'\''
                                          : u"'%s' '"_s + QString::fromLatin1(body.toBase64()) + u"' | ("_s;
            QVERIFY(command.contains(inCommand));
        }
    }
}

void CurlCommandTest::repeatsTheRequest_data()
{
    QTest::addColumn<QString>("shell");
    QTest::addColumn<QString>("path");
    QTest::addColumn<HTTPHeaderFields>("headers");
    QTest::addColumn<Body>("body");
    QTest::addColumn<QByteArrayList>("arrivingHeaders");
    QTest::addColumn<QByteArray>("arrivingBody");

    const auto loss = [this](const char *name, const QString &path, const HTTPHeaderFields &headers,
                             const Body &body, const QByteArrayList &arrivingHeaders,
                             const QByteArray &arrivingBody) {
        for (const QString &shell : std::as_const(m_shells))
            QTest::addRow("%s: %s", qPrintable(shell), name)
                << shell << path << headers << body << arrivingHeaders << arrivingBody;
    };
    const auto row = [&loss](const char *name, const QString &path, const HTTPHeaderFields &headers,
                             const Body &body) {
        QByteArrayList lines;
        for (auto it = headers.cbegin(); it != headers.cend(); ++it)
            lines += (it.key() + u": "_s + it.value()).toUtf8();
        loss(name, path, headers, body, lines, body.value_or(QByteArray()));
    };
    const QString hostile =
        u"it's '' \"$HOME\" $(touch ran) `touch ran` !! %s %41 & ; | > ran < * ? ~ \\ \\' # {a,b} [1-3]"_s;
    row("query is cut at &", u"/a?x=1&y=2;z=3"_s, {}, {});
    row("URL breaks the quotation", u"/it's/''/$(touch%20ran)/`touch ran`/!!?q='&r=$HOME"_s, {}, {});
    row("URL is encoded again", u"/%27%20%25/é?q=a+b%26"_s, {}, {});
    row("brackets are ranges", u"/a[1-3]/b]?r=[1-3]&filter[name]=x&s=[a-z:2]"_s, {}, {});
    row("braces are alternatives", u"/{a,b}?q={c,d}&e=\\["_s, {}, {});
    row("header breaks the quotation", u"/"_s, {{u"X-Note"_s, hostile}}, {});
    row("header's name begins with a dash", u"/"_s, {{u"-o"_s, u"ran"_s}}, {});
    row("header takes the place of curl's own", u"/"_s,
        {{u"Accept"_s, u"text/css"_s}, {u"Content-Type"_s, u"a/b"_s}, {u"User-Agent"_s, u"Me"_s}}, "x"_ba);
    row("body breaks the quotation", u"/"_s, {}, hostile.toUtf8());
    row("body of several lines", u"/"_s, {}, "\n\na\n \\\n  -H 'X: 1'\nb\n\n"_ba);
    row("empty body", u"/"_s, {}, ""_ba);
    row("body is taken for a file", u"/"_s, {}, "@/etc/hostname"_ba);
    row("body that is not ASCII", u"/"_s, {}, u"Grüße, 世界 \U0001F600\u0081\u0088"_s.toUtf8());
    row("binary body", u"/"_s, {}, allBytes().sliced(1));
    row("large text", u"/"_s, {}, QByteArray("0123456789abcde\n").repeated(8000) + '.');
    row("large binary", u"/"_s, {}, allBytes().sliced(1).repeated(350));

    loss("returns become line feeds", u"/"_s, {{u"X-A"_s, u"a\r\nX-C: c"_s}}, "a\r\nb\rc\r\r\n"_ba,
         {"X-A: a\nX-C: c"}, "a\nb\nc\n\n");
    loss("the shell drops NUL from text", u"/"_s, {}, QByteArray("a\0b\0", 4), {}, "ab");
    loss("the shell drops NUL from binary, and line feeds behind", u"/"_s, {},
         QByteArray("\0\xFF\0\n\0a\n\0\n", 9), {}, "\xFF\na");
    loss("binary that begins with @ is a file's name", u"/"_s, {}, "@\xFF"_ba, {}, "");
}

void CurlCommandTest::repeatsTheRequest()
{
    QFETCH(const QString, shell);
    QFETCH(const QString, path);
    QFETCH(const HTTPHeaderFields, headers);
    QFETCH(const Body, body);
    QFETCH(const QByteArrayList, arrivingHeaders);
    QXRequestTrace trace = makeTrace(m_runner.url(path), headers, body);
    trace.method = body ? u"PATCH"_s : u"DELETE"_s;
    // When the file is missing, newer curl sends nothing and older curl sends an empty body. The file is
    // created with the standard library, because Qt cannot express every byte in a file name.
    std::filesystem::path file;
    if (body == "@\xFF"_ba) {
        file = m_runner.home().path().toStdString() + '/' + body->sliced(1).toStdString();
        std::ofstream make(file);
    }
    const QList<Arrival> arrivals = m_runner.run(shell, commandFor(trace));
    if (!file.empty())
        std::filesystem::remove(file);
    QVERIFY2(m_runner.exitCode() == 0, m_runner.complaints());
    QCOMPARE(arrivals.size(), 1);
    QCOMPARE(arrivals[0].method, trace.method->toUtf8());
    const QUrl::ComponentFormattingOption asSent = QUrl::FullyEncoded;
    QByteArray target = trace.url->toEncoded(QUrl::RemoveScheme | QUrl::RemoveAuthority | asSent);
    QCOMPARE(arrivals[0].target, target.replace('[', "%5B").replace(']', "%5D"));
    QCOMPARE(ownHeaders(arrivals[0], arrivingHeaders), arrivingHeaders);
    QTEST(arrivals[0].body, "arrivingBody");
    QVERIFY(m_runner.home().isEmpty());
}

void CurlCommandTest::repeatsTheMethod_data()
{
    QTest::addColumn<QString>("shell");
    QTest::addColumn<QString>("method");
    QTest::addColumn<bool>("isQuoted");
    for (const QString &shell : std::as_const(m_shells)) {
        for (const char *method : {"M-SEARCH", "a.b_1"})
            QTest::addRow("%s: %s", qPrintable(shell), method)
                << shell << QString::fromLatin1(method) << false;
        for (const char *method :
             {"A`touch ran`", "$(touch ran)", "a|touch ran", "a&touch ran", "a;touch ran", "a>ran", "it's",
              "*", "~", "!!", "#", "a\ntouch ran", "-o", "$HOME"})
            QTest::addRow("%s: %s", qPrintable(shell), method)
                << shell << QString::fromLatin1(method) << (qstrcmp(method, "-o") != 0);
    }
}

void CurlCommandTest::repeatsTheMethod()
{
    QFETCH(const QString, shell);
    QFETCH(const QString, method);
    QFETCH(const bool, isQuoted);
    QXRequestTrace trace = makeTrace(m_runner.url(u"/"_s));
    trace.method = method;
    const QString command = commandFor(trace);
    QCOMPARE(command.startsWith(u"curl -X '"_s), isQuoted);
    const QList<Arrival> arrivals = m_runner.run(shell, command);
    QVERIFY2(m_runner.home().isEmpty(), qPrintable(m_runner.home().entryList().join(u' ')));
    QVERIFY2(m_runner.exitCode() == 0, m_runner.complaints());
    QCOMPARE(arrivals.size(), 1);
    // A space ends the method on the wire.
    QCOMPARE(arrivals[0].method, method.toUtf8().split(' ').constFirst());
}

QTEST_GUILESS_MAIN(CurlCommandTest)
#include "CurlCommandTest.moc"
