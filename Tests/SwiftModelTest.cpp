#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXRequestTrace.h"
#include "Quorvix/QXSwiftModelExport.h"
#include "Quorvix/QXSwiftModelGenerator.h"
#include "Quorvix/QXSwiftName.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRandomGenerator>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

Result<QString> modelOf(const QByteArray &json, const QString &rootName)
{
    const auto fields = QXApiTreeParser::parse(QByteArrayView(json));
    return fields ? QXSwiftModelGenerator::source(*fields.value().front(), rootName)
                  : Result<QString>(fields.error());
}

/// What an identifier may consist of, from "The Swift Programming Language", Lexical Structure, Identifiers;
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

QRegularExpression wholeText(const QString &pattern)
{
    return QRegularExpression(u"\\A(?:"_s + pattern + u")\\z"_s);
}

/// What a string literal stands for; nothing when it does not end where it should or shows what it must not.
std::optional<QString> literalValue(const QString &literal)
{
    static const QRegularExpression valid =
        wholeText(uR"("(?:[^"\\\p{C}\p{Zl}\p{Zp}]|\\(?:["\\nrt0]|u\{[0-9A-F]+\}))*")"_s);
    static const QRegularExpression escape(uR"(\\(?:u\{([0-9A-F]+)\}|(.)))"_s);
    if (!valid.match(literal).hasMatch())
        return std::nullopt;
    QString value;
    qsizetype at = 1;
    for (auto it = escape.globalMatch(literal); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        value += QStringView(literal).sliced(at, match.capturedStart() - at);
        const char32_t codePoint = match.captured(1).toUInt(nullptr, 16);
        const QString letter = match.captured(2);
        const qsizetype known = u"nrt0"_s.indexOf(letter);
        if (letter.isEmpty())
            value += QString::fromUcs4(&codePoint, 1);
        else
            value += known < 0 ? letter[0] : u"\n\r\t\0"[known];
        at = match.capturedEnd();
    }
    return value.append(QStringView(literal).sliced(at).chopped(1));
}

/// `{"k0":{"users":[{}]},"k1":{"users":[{}]}...`: so many types that want to be called "User".
QByteArray usersJson(int count)
{
    QByteArray json;
    for (int i = 0; i < count; ++i)
        json += (i == 0 ? "{\"k" : ",\"k") + QByteArray::number(i) + R"(":{"users":[{}]})";
    return json + '}';
}

/// Objects in objects.
QByteArray nestedJson(int depth, const QByteArray &key)
{
    return QByteArray("{\"" + key + "\":").repeated(depth - 1) + "{}" + QByteArray(depth - 1, '}');
}

QXRequestTrace makeTrace(const QString &url, const std::optional<QByteArray> &requestBody,
                         const std::optional<QByteArray> &responseBody)
{
    QXRequestTrace trace(u"ID"_s, URLRequest(QUrl(url)));
    trace.body = requestBody;
    trace.response = QXResponseTrace(NSHTTPURLResponse({}, 200, u"HTTP/2"_s, {}), responseBody);
    return trace;
}

} // namespace

class SwiftModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void generates_data();
    void generates();
    void generatesAroundScalars_data();
    void generatesAroundScalars();
    void skipsTakenSuffixes();
    void runsOutOfNames();
    void survivesDepth_data();
    void survivesDepth();
    void namesAfterKeys_data();
    void namesAfterKeys();
    void makesIdentifiersOfEveryCharacter();
    void keepsOddKeysInTheirLines();
    void namesAfterPaths_data();
    void namesAfterPaths();
    void exportsPayload_data();
    void exportsPayload();
    void failsToExport_data();
    void failsToExport();

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_formerTemporaryFolder;
};

void SwiftModelTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_formerTemporaryFolder = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(m_folder->path()));
}

void SwiftModelTest::cleanup()
{
    qputenv("TMPDIR", m_formerTemporaryFolder);
    m_folder.reset();
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
    // The type at the end is always the same, and has a file of its own.
    expected.replace("\nenum JSONValue\n", '\n' + contentOf(input.dir().filePath(u"JSONValue.swift"_s)));
    // Line by line, as a whole file is cut where it would get interesting.
    const QStringList lines = (source.value() + u'\n').split(u'\n');
    const QStringList expectedLines = QString::fromUtf8(expected).split(u'\n');
    for (qsizetype i = 0; i < std::min(lines.size(), expectedLines.size()); ++i)
        QCOMPARE(lines[i], expectedLines[i]);
    QCOMPARE(lines.size(), expectedLines.size());
}

void SwiftModelTest::generatesAroundScalars_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("line");
    QTest::newRow("number") << "4.5"_ba << u"    let value: Double"_s;
    QTest::newRow("boolean") << "false"_ba << u"    let value: Bool"_s;
    QTest::newRow("null") << "null"_ba << u"    let value: String?"_s;
    QTest::newRow("array of nulls") << "[null]"_ba << u"    let items: [String?]"_s;
    QTest::newRow("array of arrays") << "[[1],[]]"_ba << u"    let items: [[Double]]"_s;
}

void SwiftModelTest::generatesAroundScalars()
{
    QFETCH(const QByteArray, json);
    QFETCH(const QString, line);
    const auto source = modelOf(json, u"R"_s);
    QVERIFY(source);
    QCOMPARE(source.value(), u"struct R: Codable, Hashable {\n"_s + line + u"\n}"_s);
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
    for (const auto &[index, name] : {std::pair(0, u"User"_s),
                                      {1, u"UserA"_s},
                                      {26, u"UserZ"_s},
                                      {27, u"UserAA"_s},
                                      {28, u"UserAB"_s},
                                      {702, u"UserZZ"_s}})
        QCOMPARE(names[index], name);

    const auto failure = modelOf(usersJson(2 + QXSwiftName::suffixCount), u"Root"_s);
    QVERIFY(!failure);
    QCOMPARE(failure.error(), makeError(QXExportError::swiftModelNotGenerated));
}

void SwiftModelTest::survivesDepth_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<bool>("isGenerated");
    QTest::newRow("objects") << nestedJson(1024, "k") << true;
    QTest::newRow("arrays") << QByteArray(1024, '[') + QByteArray(1024, ']') << true;
    QTest::newRow("names that outgrow the memory") << nestedJson(1024, QByteArray(4000, 'k')) << false;
    QTest::newRow("one long name") << nestedJson(2, QByteArray(1000000, 'k')) << true;
}

void SwiftModelTest::survivesDepth()
{
    QFETCH(const QByteArray, json);
    QFETCH(const bool, isGenerated);
    const auto source = modelOf(json, u"Root"_s);
    QCOMPARE(bool(source), isGenerated);
    if (!isGenerated)
        QCOMPARE(source.error(), makeError(QXExportError::swiftModelNotGenerated));
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
    QTest::newRow("letter with a mark of its own") << u"ŉa ŉb"_s << u"ŉaʼNb"_s << u"ʼNaʼNb"_s;
    QTest::newRow("lower case of two") << u"İd"_s << u"i\u0307d"_s << u"İd"_s;
    QTest::newRow("mark tears a word apart") << u"e\u0301t e"_s << u"e\u0301tE"_s << u"E\u0301tE"_s;
    QTest::newRow("mark begins a word") << u"\u0301a"_s << u"a"_s << u"A"_s;
    QTest::newRow("mark alone") << u"\u0301"_s << u"value"_s << u"ApiResponse"_s;
    QTest::newRow("ideographic zero") << u"二〇"_s << u"二〇"_s << u"二〇"_s;
    QTest::newRow("digit of another script") << u"١ب"_s << u"value١ب"_s << u"Api١ب"_s;
    QTest::newRow("digit beyond the basic plane") << u"𝟘a"_s << u"value𝟘a"_s << u"Api𝟘a"_s;
    QTest::newRow("letter that no identifier has") << u"a\u2e2fb"_s << u"aB"_s << u"AB"_s;
    QTest::newRow("joiner between letters")
        << u"\u0645\u06cc\u200c\u0634"_s << u"\u0645\u06cc\u0634"_s << u"\u0645\u06cc\u0634"_s;
    QTest::newRow("keyword with a capital") << u"Class"_s << u"`class`"_s << u"Class"_s;
    QTest::newRow("no keyword, but elsewhere") << u"type"_s << u"type"_s << u"Type"_s;
    QTest::newRow("keyword of two words") << u"type_alias"_s << u"typeAlias"_s << u"TypeAlias"_s;
}

void SwiftModelTest::namesAfterKeys()
{
    QFETCH(const QString, key);
    QTEST(QXSwiftName::propertyName(key), "property");
    QTEST(QXSwiftName::typeName(key), "type");
}

void SwiftModelTest::makesIdentifiersOfEveryCharacter()
{
    const QRegularExpression valid = wholeText(u"(?:"_s + identifier + u"\\n)+"_s);
    QVERIFY2(valid.isValid(), qPrintable(valid.errorString()));
    for (char32_t page = 0; page <= QChar::LastValidCodePoint; page += 256) {
        // No characters are assigned in the middle planes.
        if (QChar::isSurrogate(page) || (page >= 0x40000 && page < 0xE0000))
            continue;
        QString names;
        QString all;
        for (char32_t c = page; c < page + 256; ++c) {
            const QString text = QString::fromUcs4(&c, 1);
            const QString key = text + u"a-"_s + text;
            names += QXSwiftName::propertyName(key) + u'\n' + QXSwiftName::typeName(key) + u'\n';
            all += text;
        }
        QVERIFY2(valid.match(names).hasMatch(), qPrintable(names));
        QVERIFY2(literalValue(QXSwiftName::stringLiteral(all)) == all, qPrintable(all));
    }
}

void SwiftModelTest::keepsOddKeysInTheirLines()
{
    const QStringList pieces = {u"\""_s,     u"\\"_s,    u"\\("_s, u"\n"_s, u"\r"_s,     u"\0"_s,
                                u"`"_s,      u"//"_s,    u"/*"_s,  u"*/"_s, u"}"_s,      u"{"_s,
                                u"a"_s,      u"class"_s, u"1"_s,   u" "_s,  u"\u2028"_s, u"\u202e"_s,
                                u"\u0301"_s, u"न"_s,     u"𐐀"_s,   u"🎉"_s,  u"\"\"\""_s, u"#"_s};
    const QRegularExpression property = wholeText(u"    let (`[a-z]+`|"_s + identifier + u"): Double"_s);
    const QRegularExpression codingCase =
        wholeText(u"        case (`[a-z]+`|"_s + identifier + u") = (\".*\")"_s);
    QRandomGenerator generator(7);
    for (int round = 0; round < 200; ++round) {
        QJsonObject object;
        for (int i = 0; i < 20; ++i) {
            QString key;
            for (quint32 left = generator.bounded(6U); left > 0; --left)
                key += pieces[generator.bounded(pieces.size())];
            object[key] = 1;
        }
        const auto source = modelOf(QJsonDocument(object).toJson(), u"R"_s);
        QVERIFY(source);
        QStringList lines = source.value().split(u'\n');
        QCOMPARE(lines.takeFirst(), u"struct R: Codable, Hashable {"_s);
        QCOMPARE(lines.takeLast(), u"}"_s);
        QStringList names;
        for (qsizetype i = 0; i < object.size(); ++i) {
            const QRegularExpressionMatch match = property.match(lines.takeFirst());
            QVERIFY2(match.hasMatch(), qPrintable(source.value()));
            names += match.captured(1);
        }
        if (lines.isEmpty())
            continue;
        QCOMPARE(lines.takeFirst(), QString());
        QCOMPARE(lines.takeFirst(), u"    enum CodingKeys: String, CodingKey {"_s);
        QCOMPARE(lines.takeLast(), u"    }"_s);
        for (const QString &line : lines) {
            const QRegularExpressionMatch match = codingCase.match(line);
            QVERIFY2(match.hasMatch(), qPrintable(line));
            const std::optional<QString> key = literalValue(match.captured(2));
            QVERIFY2(key && object.contains(*key) && *key != match.captured(1), qPrintable(line));
            QVERIFY2(names.contains(match.captured(1)), qPrintable(line));
        }
    }
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
    row("date", u"/rates/2024-01-31"_s, u"RatesResponse"_s);
    row("UUID", u"/orders/5D8C2A10-9f3e-4c11-8e6a-0242ac120002"_s, u"OrdersResponse"_s);
    row("short hash is a word", u"/orders/facade"_s, u"FacadeResponse"_s);
    row("version only", u"/v1/v2.1/V3beta1"_s, u"ApiResponse"_s);
    row("word like a version", u"/video"_s, u"VideoResponse"_s);
    row("says it already", u"/user_response"_s, u"UserResponse"_s);
    row("says nothing else", u"/users/response"_s, u"UsersResponse"_s);
    row("says nothing at all", u"/Response"_s, u"ApiResponse"_s);
    row("extension", u"/data/users.json"_s, u"UsersResponse"_s);
    row("begins with a digit", u"/2fa"_s, u"Api2faResponse"_s);
    row("encoded", u"/caf%C3%A9%2Fbar%20b"_s, u"CaféBarBResponse"_s);
    row("way up", u"/a/%2e%2e%2f..%00/../"_s, u"AResponse"_s);
    row("broken encoding", u"/a%FFb%"_s, u"ABResponse"_s);
    row("root", u"/"_s, u"ApiResponse"_s);
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
    QTest::addColumn<std::optional<QByteArray>>("requestBody");
    QTest::addColumn<std::optional<QByteArray>>("responseBody");
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("property");
    using Body = std::optional<QByteArray>;
    const Body asked = R"({"asked":1})"_ba;
    const Body answered = R"({"answered":1})"_ba;
    const QString url = u"https://h.example/v1/users/7?a=/b"_s;
    const QString answer = u"answered"_s;
    QTest::newRow("response before request")
        << url << asked << answered << u"UsersResponse.swift"_s << answer;
    QTest::newRow("no response body") << url << asked << Body() << u"UsersResponse.swift"_s << u"asked"_s;
    QTest::newRow("empty response body")
        << url << asked << Body(""_ba) << u"UsersResponse.swift"_s << u"asked"_s;
    QTest::newRow("no URL") << QString() << Body() << answered << u"ApiResponse.swift"_s << answer;
    QTest::newRow("path leads out") << u"https://h.example/a/%2e%2e%2fb"_s << Body() << answered
                                    << u"BResponse.swift"_s << answer;
    QTest::newRow("name too long for a file")
        << u"https://h.example/x"_s + QString(400, u'é') << Body() << answered
        << u'X' + QString(124, u'é') + u".swift"_s << answer;
}

void SwiftModelTest::exportsPayload()
{
    QFETCH(const QString, url);
    QFETCH(const std::optional<QByteArray>, requestBody);
    QFETCH(const std::optional<QByteArray>, responseBody);
    QFETCH(const QString, fileName);
    QFETCH(const QString, property);
    QXRequestTrace trace = makeTrace(url, requestBody, responseBody);
    if (url.isEmpty())
        trace.url.reset();
    const auto file = QXSwiftModelExport::exportTrace(trace);
    QVERIFY(file);
    QCOMPARE(file.value(), QUrl::fromLocalFile(m_folder->filePath(u"Quorvix/"_s + fileName)));
    const QString content = QString::fromUtf8(contentOf(file.value().toLocalFile()));
    const QRegularExpression expected =
        wholeText(u"struct "_s + identifier + u"Response: Codable, Hashable {\n    let "_s + property +
                  u": Double\n}"_s);
    QVERIFY2(expected.match(content).hasMatch(), qPrintable(content));
}

void SwiftModelTest::failsToExport_data()
{
    QTest::addColumn<std::optional<QByteArray>>("body");
    QTest::addColumn<int>("reason");
    using Body = std::optional<QByteArray>;
    QTest::newRow("no body") << Body() << int(QXExportError::missingPayload);
    QTest::newRow("empty body") << Body(""_ba) << int(QXExportError::missingPayload);
    QTest::newRow("not JSON") << Body("<html>"_ba) << int(QXExportError::payloadNotParsed);
    QTest::newRow("not UTF-8") << Body("\"\xff\""_ba) << int(QXExportError::payloadNotParsed);
    QTest::newRow("too many types") << Body(usersJson(704)) << int(QXExportError::swiftModelNotGenerated);
    QTest::newRow("folder is a file") << Body("{}"_ba) << int(QXExportError::swiftModelFileNotCreated);
}

void SwiftModelTest::failsToExport()
{
    QFETCH(const std::optional<QByteArray>, body);
    QFETCH(const int, reason);
    QFile obstacle(m_folder->filePath(u"Quorvix"_s));
    QVERIFY(obstacle.open(QIODevice::WriteOnly));
    const auto file = QXSwiftModelExport::exportTrace(makeTrace(u"https://h.example/a"_s, {}, body));
    QVERIFY(!file);
    QCOMPARE(file.error(), makeError(QXExportError(reason)));
}

QTEST_GUILESS_MAIN(SwiftModelTest)
#include "SwiftModelTest.moc"
