#include "Tests/Exchanges.h"
#include "Tests/TestKit.h"

#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXSwiftModelExport.h"
#include "Quorvix/QXSwiftModelGenerator.h"
#include "Quorvix/QXSwiftName.h"

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <optional>

using namespace Quorvix;
using namespace Qt::StringLiterals;
using Exchanges::makeResponseTrace;
using Exchanges::makeTrace;

namespace {

Result<QString> modelOf(const QByteArray &json, const QString &rootName)
{
    const auto fields = QXApiTreeParser::parse(QByteArrayView(json));
    return fields ? QXSwiftModelGenerator::source(*fields.value().front(), rootName)
                  : Result<QString>(fields.error());
}

/// The characters of an identifier, from "The Swift Programming Language", Lexical Structure, Identifiers,
/// without the invisible ones.
const QString headRanges =
    u"A-Za-z\\x{AA}\\x{B2}-\\x{B5}\\x{B7}-\\x{BA}\\x{BC}-\\x{BE}\\x{C0}-\\x{D6}\\x{D8}-\\x{F6}"
    u"\\x{F8}-\\x{2FF}\\x{370}-\\x{167F}\\x{1681}-\\x{180D}\\x{180F}-\\x{1DBF}\\x{1E00}-\\x{1FFF}"
    u"\\x{2070}-\\x{20CF}\\x{2100}-\\x{218F}\\x{2460}-\\x{24FF}\\x{2776}-\\x{2793}\\x{2C00}-\\x{2DFF}"
    u"\\x{2E80}-\\x{2FFF}\\x{3004}-\\x{3007}\\x{3021}-\\x{302F}\\x{3031}-\\x{303F}\\x{3040}-\\x{D7FF}"
    u"\\x{F900}-\\x{FD3D}\\x{FD40}-\\x{FDCF}\\x{FDF0}-\\x{FE1F}\\x{FE30}-\\x{FE44}\\x{FE47}-\\x{FFFD}"
    u"\\x{10000}-\\x{1FFFD}\\x{20000}-\\x{2FFFD}\\x{30000}-\\x{3FFFD}\\x{E0000}-\\x{EFFFD}"_s;
const QString identifier =
    u"[%1][%1"_s.arg(headRanges) +
    u"0-9\\x{300}-\\x{36F}\\x{1DC0}-\\x{1DFF}\\x{20D0}-\\x{20FF}\\x{FE20}-\\x{FE2F}]*"_s;

/// `{"k0":{"users":[{}]},"k1":{"users":[{}]}...`: @p count types whose preferred name is "User".
QByteArray usersJson(int count)
{
    QByteArray json;
    for (int i = 0; i < count; ++i)
        json += (i == 0 ? "{\"k" : ",\"k") + QByteArray::number(i) + R"(":{"users":[{}]})";
    return json + '}';
}

/// Nested objects.
QByteArray nestedJson(int depth, const QByteArray &key)
{
    return QByteArray("{\"" + key + "\":").repeated(depth - 1) + "{}" + QByteArray(depth - 1, '}');
}

} // namespace

class SwiftModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void generates_data();
    void generates();
    void skipsTakenSuffixes();
    void runsOutOfNames();
    void survivesDepth();
    void namesAfterKeys_data();
    void namesAfterKeys();
    void makesIdentifiersOfEveryCharacter();
    void namesAfterPaths_data();
    void namesAfterPaths();
    void exportsPayload_data();
    void exportsPayload();
    void failsToExport_data();
    void failsToExport();

private:
    std::optional<TemporaryFolder> m_temporary;
};

void SwiftModelTest::init()
{
    m_temporary.emplace();
    QVERIFY(m_temporary->isInForce());
}

void SwiftModelTest::generates_data()
{
    QTest::addColumn<QString>("path");
    const QDir folder(QFINDTESTDATA("swift"));
    const QStringList names = folder.entryList({u"*.json"_s}, QDir::Files, QDir::Name);
    QCOMPARE_GE(names.size(), 12);
    for (const QString &name : names)
        QTest::newRow(qUtf8Printable(name)) << folder.filePath(name);
}

void SwiftModelTest::generates()
{
    QFETCH(const QString, path);
    const QFileInfo input(path);
    const auto source = modelOf(contentOf(path), input.completeBaseName());
    QVERIFY(source);
    QByteArray expected = contentOf(input.dir().filePath(input.completeBaseName() + ".swift"_L1));
    // The type at the end is always the same and has its own file.
    expected.replace("\nenum JSONValue\n", '\n' + contentOf(input.dir().filePath(u"JSONValue.swift"_s)));
    QCOMPARE((source.value() + u'\n').split(u'\n'), QString::fromUtf8(expected).split(u'\n'));
}

void SwiftModelTest::skipsTakenSuffixes()
{
    const auto source =
        modelOf(R"({"a":{"users":[{}]},"b":{"userA":[{}]},"c":{"users":[{}]},"d":{"userAs":[{}]}})", u"R"_s);
    QVERIFY(source);
    for (const QString &line : {u"struct RA: Codable, Hashable {\n    let users: [User]"_s,
                                u"struct RB: Codable, Hashable {\n    let userA: [UserA]"_s,
                                u"struct RC: Codable, Hashable {\n    let users: [UserB]"_s,
                                u"struct RD: Codable, Hashable {\n    let userAs: [UserAA]"_s})
        QVERIFY2(source.value().contains(line), qPrintable(source.value()));
}

void SwiftModelTest::runsOutOfNames()
{
    const auto source = modelOf(usersJson(1 + QXSwiftName::suffixCount), u"Root"_s);
    QVERIFY(source);
    QStringList names;
    static const QRegularExpression type(u"^struct (User[A-Z]*):"_s, QRegularExpression::MultilineOption);
    for (auto it = type.globalMatch(source.value()); it.hasNext();)
        names += it.next().captured(1);
    QCOMPARE(names.size(), 703);
    for (const auto &[index, name] :
         {std::pair(0, u"User"_s), {26, u"UserZ"_s}, {27, u"UserAA"_s}, {702, u"UserZZ"_s}})
        QCOMPARE(names[index], name);

    const auto failure = modelOf(usersJson(2 + QXSwiftName::suffixCount), u"Root"_s);
    QVERIFY(!failure);
    QCOMPARE(failure.error(), makeError(QXExportError::swiftModelNotGenerated));
}

void SwiftModelTest::survivesDepth()
{
    QVERIFY(modelOf(nestedJson(1024, "k"), u"Root"_s));
    QVERIFY(modelOf(QByteArray(1024, '[') + QByteArray(1024, ']'), u"Root"_s));
    QVERIFY(modelOf(nestedJson(2, QByteArray(1'000'000, 'k')), u"Root"_s));
    // Each name contains the names of the enclosing types, so this model becomes too large.
    const auto outgrown = modelOf(nestedJson(1024, QByteArray(4000, 'k')), u"Root"_s);
    QVERIFY(!outgrown);
    QCOMPARE(outgrown.error(), makeError(QXExportError::swiftModelNotGenerated));
}

void SwiftModelTest::namesAfterKeys_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("type");
    QTest::newRow("inner capitals lost") << u"imageURL_small"_s << u"imageURLSmall"_s << u"ImageURLSmall"_s;
    QTest::newRow("separators at the ends") << u"--a..b  c/"_s << u"aBC"_s << u"ABC"_s;
    QTest::newRow("digits in later words") << u"a_1b"_s << u"a1b"_s << u"A1b"_s;
    QTest::newRow("letter that becomes two") << u"ßa ßb"_s << u"ßaSSb"_s << u"SSaSSb"_s;
    QTest::newRow("lower case of two") << u"İd"_s << u"i\u0307d"_s << u"İd"_s;
    QTest::newRow("mark tears a word apart") << u"e\u0301t e"_s << u"e\u0301tE"_s << u"E\u0301tE"_s;
    QTest::newRow("mark begins a word") << u"\u0301a"_s << u"a"_s << u"A"_s;
    QTest::newRow("mark alone") << u"\u0301"_s << u"value"_s << u"ApiResponse"_s;
    QTest::newRow("digit of another script") << u"١ب"_s << u"value١ب"_s << u"Api١ب"_s;
    QTest::newRow("digit beyond the basic plane") << u"𝟘a"_s << u"value𝟘a"_s << u"Api𝟘a"_s;
    QTest::newRow("letter that no identifier has") << u"a\u2e2fb"_s << u"aB"_s << u"AB"_s;
    QTest::newRow("joiner between letters")
        << u"\u0645\u06cc\u200c\u0634"_s << u"\u0645\u06cc\u0634"_s << u"\u0645\u06cc\u0634"_s;
    QTest::newRow("keyword with a capital") << u"Class"_s << u"`class`"_s << u"Class"_s;
}

void SwiftModelTest::namesAfterKeys()
{
    QFETCH(const QString, key);
    QTEST(QXSwiftName::propertyName(key), "property");
    QTEST(QXSwiftName::typeName(key), "type");
}

void SwiftModelTest::makesIdentifiersOfEveryCharacter()
{
    const QRegularExpression names(QRegularExpression::anchoredPattern(u"(?:"_s + identifier + u"\\n)+"_s));
    QVERIFY2(names.isValid(), qPrintable(names.errorString()));
    const QRegularExpression literal(QRegularExpression::anchoredPattern(
        uR"("(?:[^"\\\p{C}\p{Zl}\p{Zp}]|\\(?:["\\nrt0]|u\{[0-9A-F]+\}))*")"_s));
    for (char32_t page = 0; page <= QChar::LastValidCodePoint; page += 256) {
        // No characters are assigned in the middle planes.
        if (QChar::isSurrogate(page) || (page >= 0x40000 && page < 0xE0000))
            continue;
        QString named;
        QString all;
        for (char32_t c = page; c < page + 256; ++c) {
            const QString text = QString::fromUcs4(&c, 1);
            const QString key = text + u"a-"_s + text;
            named += QXSwiftName::propertyName(key) + u'\n' + QXSwiftName::typeName(key) + u'\n';
            all += text;
        }
        QVERIFY2(names.match(named).hasMatch(), qPrintable(named));
        QVERIFY2(literal.match(QXSwiftName::stringLiteral(all)).hasMatch(), qPrintable(all));
    }
    QCOMPARE(QXSwiftName::stringLiteral(u"é\U000E0001🎉"_s), u"\"é\\u{E0001}🎉\""_s);
}

void SwiftModelTest::namesAfterPaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("name");
    const auto row = [](const char *title, const QString &path, const QString &name) {
        QTest::newRow(title) << path << name;
    };
    row("last segment", u"/api/v2/user-profiles"_s, u"UserProfilesResponse"_s);
    row("number", u"/users/42/"_s, u"UsersResponse"_s);
    row("UUID", u"/orders/5D8C2A10-9f3e-4c11-8e6a-0242ac120002"_s, u"OrdersResponse"_s);
    row("short hash is a word", u"/orders/facade"_s, u"FacadeResponse"_s);
    row("version only", u"/v1/v2.1/V3beta1"_s, u"ApiResponse"_s);
    row("word like a version", u"/video"_s, u"VideoResponse"_s);
    row("says it already", u"/user_response"_s, u"UserResponse"_s);
    row("says nothing else", u"/users/response"_s, u"UsersResponse"_s);
    row("extension", u"/data/users.json"_s, u"UsersResponse"_s);
    row("begins with a digit", u"/2fa"_s, u"Api2faResponse"_s);
    row("encoded", u"/caf%C3%A9%2Fbar%20b"_s, u"CaféBarBResponse"_s);
    row("encoded in Latin-1", u"/caf%E9"_s, u"CafE9Response"_s);
    row("way up", u"/a/%2e%2e%2f..%00/../"_s, u"AResponse"_s);
    row("empty", QString(), u"ApiResponse"_s);
}

void SwiftModelTest::namesAfterPaths()
{
    QFETCH(const QString, path);
    QTEST(QXSwiftName::rootTypeName(path), "name");
}

void SwiftModelTest::exportsPayload_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<QByteArray>("responseBody");
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("property");
    const QByteArray answered = R"({"answered":1})"_ba;
    const QString url = u"https://h.example/v1/users/7?a=/b"_s;
    QTest::newRow("response before request") << url << answered << u"UsersResponse.swift"_s << u"answered"_s;
    QTest::newRow("empty response") << url << ""_ba << u"UsersResponse.swift"_s << u"asked"_s;
    QTest::newRow("response in UTF-16")
        << url << "\xFF\xFE{\0\"\0b\0\"\0:\0\x31\0}\0"_ba << u"UsersResponse.swift"_s << u"b"_s;
    QTest::newRow("no URL") << QString() << answered << u"ApiResponse.swift"_s << u"answered"_s;
    QTest::newRow("path leads out") << u"https://h.example/a%2f%2e%2e%2fb"_s << answered
                                    << u"ABResponse.swift"_s << u"answered"_s;
    QTest::newRow("name too long for a file") << u"https://h.example/xy"_s + QString(400, u'é') << answered
                                              << u"Xy"_s + QString(123, u'é') + u".swift"_s << u"answered"_s;
}

void SwiftModelTest::exportsPayload()
{
    QFETCH(const QString, url);
    QFETCH(const QByteArray, responseBody);
    QFETCH(const QString, fileName);
    QFETCH(const QString, property);
    QXRequestTrace trace = makeTrace(url, {}, R"({"asked":1})"_ba);
    trace.response = makeResponseTrace(200, responseBody);
    const auto file = QXSwiftModelExport::exportTrace(trace);
    QVERIFY(file);
    QCOMPARE(file.value(), QUrl::fromLocalFile(m_temporary->path(u"Quorvix/"_s + fileName)));
    const QString content = QString::fromUtf8(contentOf(file.value().toLocalFile()));
    QVERIFY2(content.contains(u"    let "_s + property + u": Double\n"_s), qPrintable(content));
}

void SwiftModelTest::failsToExport_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("empty body") << ""_ba << u"No JSON payload available to generate a model."_s;
    QTest::newRow("not JSON") << "<html>"_ba << u"Failed to parse JSON payload."_s;
    QTest::newRow("too many types") << usersJson(704) << u"Unable to generate Swift model."_s;
    QTest::newRow("folder is a file") << "{}"_ba << u"Failed to create Swift model file."_s;
}

void SwiftModelTest::failsToExport()
{
    QFETCH(const QByteArray, body);
    QFile obstacle(m_temporary->path(u"Quorvix"_s));
    QVERIFY(obstacle.open(QIODevice::WriteOnly));
    const auto file = QXSwiftModelExport::exportTrace(makeTrace(u"https://h.example/a"_s, {}, body));
    QVERIFY(!file);
    QCOMPARE(file.error().domain, u"QXExportError"_s);
    QTEST(file.error().localizedDescription, "sentence");
}

QTEST_GUILESS_MAIN(SwiftModelTest)
#include "SwiftModelTest.moc"
