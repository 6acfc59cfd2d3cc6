#include "Quorvix/QXApiTreeParser.h"

#include "Platform/JSONReader.h"

#include <QtCore/QTranslator>
#include <QtTest/QTest>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

using FieldPointer = std::shared_ptr<QXApiTreeField>;

/// Null when there is no tree.
FieldPointer parsed(const QByteArray &json)
{
    const auto fields = QXApiTreeParser::parse(QByteArrayView(json));
    return fields && fields.value().size() == 1 ? fields.value().first() : nullptr;
}

/// The one child of the root.
QXApiTreeField &onlyChild(const FieldPointer &root)
{
    return root->children().front();
}

/// The tree as lines: depth, kind, and what is shown of key, path and value.
void list(const QXApiTreeField &field, QStringList &lines)
{
    const auto shown = [](const std::optional<QString> &text) {
        return text.value_or(u"-"_s);
    };
    lines << u"%1 %2 %3 %4 %5"_s.arg(QString::number(field.depth()), displayName(field.kind()),
                                     shown(field.key()), shown(field.keyPath()), shown(field.summary()));
    for (const QXApiTreeField &child : field.children())
        list(child, lines);
}

} // namespace

class TreeParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void buildsTrees_data();
    void buildsTrees();
    void summarisesScalars_data();
    void summarisesScalars();
    void givesValues();
    void tellsRows();
    void sharesNodes();
    void translatesWords();
    void readsTextLikeBytes();
    void refusesALoneSurrogate();
    void acceptsJson_data();
    void acceptsJson();
    void refusesWhatIsNotJson_data();
    void refusesWhatIsNotJson();
    void refusesWhatIsNotText_data();
    void refusesWhatIsNotText();
};

void TreeParserTest::buildsTrees_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QStringList>("lines");

    QTest::newRow("members by character code")
        << R"({"b":1,"A":true,"a":null,"é":2,"":3})"_ba
        << QStringList{u"0 Object - - {5 keys}"_s, u"1 Number  - 3"_s,  u"1 Bool A A true"_s,
                       u"1 Null a a null"_s,       u"1 Number b b 1"_s, u"1 Number é é 2"_s};
    QTest::newRow("paths through arrays") << R"({"users":[{"id":7,"tags":[[true]]}]})"_ba
                                          << QStringList{u"0 Object - - {1 key}"_s,
                                                         u"1 Array users users [1 item]"_s,
                                                         u"2 Object [0] users[0] {2 keys}"_s,
                                                         u"3 Number id users[0].id 7"_s,
                                                         u"3 Array tags users[0].tags [1 item]"_s,
                                                         u"4 Array [0] users[0].tags[0] [1 item]"_s,
                                                         u"5 Bool [0] users[0].tags[0][0] true"_s};
    QTest::newRow("paths start at a root array's members")
        << R"([{"a":1},[{"b":"x"}],{}])"_ba
        << QStringList{u"0 Array - - [3 items]"_s,  u"1 Object [0] - {1 key}"_s, u"2 Number a a 1"_s,
                       u"1 Array [1] - [1 item]"_s, u"2 Object [0] - {1 key}"_s, u"3 String b b \"x\""_s,
                       u"1 Object [2] - -"_s};
    QTest::newRow("keys that look like indexes, and none")
        << R"({"[x]":{"y":1},"p":{"":{"q":2},"[0]":3}})"_ba
        << QStringList{u"0 Object - - {2 keys}"_s, u"1 Object [x] - {1 key}"_s, u"2 Number y y 1"_s,
                       u"1 Object p p {2 keys}"_s, u"2 Object  p {1 key}"_s,    u"3 Number q p.q 2"_s,
                       u"2 Number [0] p[0] 3"_s};
    QTest::newRow("of several with one name the last, in its place")
        << R"({"b":1,"a":[1],"b":2,"a":{"c":0},"b":3})"_ba
        << QStringList{u"0 Object - - {2 keys}"_s, u"1 Object a a {1 key}"_s, u"2 Number c a.c 0"_s,
                       u"1 Number b b 3"_s};
    QTest::newRow("empty object") << "{}"_ba << QStringList{u"0 Object - - -"_s};
    QTest::newRow("scalar alone") << " \"a\" "_ba << QStringList{u"0 String - - \"a\""_s};
}

void TreeParserTest::buildsTrees()
{
    QFETCH(const QByteArray, json);
    const FieldPointer root = parsed(json);
    QVERIFY(root);
    QStringList lines;
    list(*root, lines);
    QTEST(lines, "lines");
}

void TreeParserTest::summarisesScalars_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("summary");

    QTest::newRow("empty string") << R"("")"_ba << uR"("")"_s;
    QTest::newRow("string as it reads, unescaped")
        << R"("a\"b\n\u00e9\ud83d\ude00")"_ba << u"\"a\"b\né\U0001F600\""_s;
    QTest::newRow("NUL in a string") << R"("a\u0000b")"_ba << u"\"a\0b\""_s;
    QTest::newRow("0 is no boolean") << "0"_ba << u"0"_s;
    QTest::newRow("smallest of 64 bits") << "-9223372036854775808"_ba << u"-9223372036854775808"_s;
    QTest::newRow("exact beyond the doubles' 53 bits") << "9007199254740993"_ba << u"9007199254740993"_s;
    QTest::newRow("largest of 64 bits") << "18446744073709551615"_ba << u"18446744073709551615"_s;
    QTest::newRow("beyond 64 bits") << "123456789012345678901"_ba << u"123456789012345678901"_s;
    QTest::newRow("beyond the doubles") << "-1.5E+400"_ba << u"-1.5E+400"_s;
    QTest::newRow("fraction") << "-19.90"_ba << u"-19.9"_s;
    QTest::newRow("no fraction without need") << "100000.0"_ba << u"100000"_s;
    QTest::newRow("large") << "1.5e300"_ba << u"1.5e+300"_s;
    QTest::newRow("tenth") << "0.1"_ba << u"0.1"_s;
}

void TreeParserTest::summarisesScalars()
{
    QFETCH(const QByteArray, json);
    const FieldPointer root = parsed(json);
    QVERIFY(root);
    QTEST(root->summary().value(), "summary");
}

void TreeParserTest::givesValues()
{
    using Value = QXApiTreeField::Value;
    const FieldPointer root = parsed(R"([null,true,false,-1,18446744073709551615,0.5,1e999,"x",[1,2]])");
    QVERIFY(root);
    const std::vector<Value> scalars = {nullptr,
                                        true,
                                        false,
                                        qint64(-1),
                                        std::numeric_limits<quint64>::max(),
                                        0.5,
                                        std::numeric_limits<double>::max(),
                                        u"x"_s};
    for (size_t i = 0; i < scalars.size(); ++i) {
        const Value value = root->children()[i].value();
        QCOMPARE(value.index(), scalars[i].index());
        QVERIFY(std::visit(
            []<typename A, typename B>(const A &actual, const B &expected) {
                if constexpr (std::is_same_v<A, B> && !std::is_same_v<A, QXApiTreeField::Children>)
                    return actual == expected;
                else
                    return false;
            },
            value, scalars[i]));
    }
    QCOMPARE(std::get<QXApiTreeField::Children>(root->children().back().value()).size(), size_t(2));
}

void TreeParserTest::tellsRows()
{
    const auto row = [](const char *json) {
        return onlyChild(parsed(json)).rowText();
    };
    QCOMPARE(row(R"({"id":42})"), u"id: 42"_s);
    QCOMPARE(row(R"(["x"])"), u"[0]: \"x\""_s);
    QCOMPARE(row(R"({"list":[]})"), u"list: "_s);
    QCOMPARE(row(R"({"list":[1]})"), std::nullopt);
    QCOMPARE(row(R"({"":1})"), std::nullopt);
    QCOMPARE(parsed("42")->rowText(), std::nullopt);
}

/// A node seen through one pointer is the node seen through another, and any pointer keeps the whole tree.
void TreeParserTest::sharesNodes()
{
    FieldPointer root = parsed(R"({"a":{"b":["deep"]}})");
    QVERIFY(!root->isExpanded());
    FieldPointer deepest = onlyChild(root).children().front().children().front().share();
    onlyChild(root).setExpanded(true);
    const std::weak_ptr<QXApiTreeField> watch = root;
    root.reset();

    QCOMPARE(deepest->keyPath(), u"a.b[0]"_s);
    QVERIFY(deepest->parent()->parent()->isExpanded());
    QCOMPARE(deepest->parent()->parent()->parent()->key(), std::nullopt);
    QVERIFY(!watch.expired());
    deepest.reset();
    QVERIFY(watch.expired());
}

void TreeParserTest::translatesWords()
{
    class Words final : public QTranslator
    {
        [[nodiscard]] bool isEmpty() const override { return false; }
        [[nodiscard]] QString translate(const char *context, const char *text, const char *,
                                        int) const override
        {
            return qstrcmp(context, "Quorvix") == 0 ? QString::fromLatin1(text).toUpper() : QString();
        }
    } words;
    QVERIFY(QCoreApplication::installTranslator(&words));
    const FieldPointer root = parsed(R"({"a":[1,2],"b":[null],"c":{"d":0}})");
    QCOMPARE(root->summary(), u"{3 KEYS}"_s);
    QCOMPARE(root->children()[0].summary(), u"[2 ITEMS]"_s);
    QCOMPARE(root->children()[1].summary(), u"[1 ITEM]"_s);
    QCOMPARE(root->children()[1].children()[0].summary(), u"NULL"_s);
    QCOMPARE(root->children()[2].summary(), u"{1 KEY}"_s);
    QCOMPARE(displayName(QXApiValueKind::boolean), u"BOOL"_s);
}

void TreeParserTest::readsTextLikeBytes()
{
    const QString text = u"{\"Genève\":[\"\U0001F600\",\"\\ud83d\\ude00\"]}"_s;
    const auto fields = QXApiTreeParser::parse(text);
    QVERIFY(fields);
    QStringList fromText;
    QStringList fromBytes;
    list(*fields.value().first(), fromText);
    list(*parsed(text.toUtf8()), fromBytes);
    QCOMPARE(fromText, fromBytes);
    QCOMPARE(fromText.last(), u"2 String [1] Genève[1] \"\U0001F600\""_s);
}

void TreeParserTest::refusesALoneSurrogate()
{
    const auto fields = QXApiTreeParser::parse(QString(u"[\""_s + QChar(0xD800) + u"\"]"_s));
    QVERIFY(!fields);
    QCOMPARE(fields.error(), (NSError{u"LogTreeParser"_s, -1, u"Invalid UTF-8 string"_s}));
}

void TreeParserTest::acceptsJson_data()
{
    QTest::addColumn<QByteArray>("json");

    const std::initializer_list<const char *> texts = {
        // White space and containers
        "[]", "{}", " [ ] ", "\t{\r\n}\n", "[[],[[]]]", "[\n7\n]", "[null,true,false,0,\"\",{},[]]",
        "\xEF\xBB\xBF[]",
        // Numbers
        "[0]", "[-0]", "[-7]", "[10]", "[0.0]", "[-0.5]",
        "[0.000000000000000000000000000000000000000000000000007]", "[3e0]", "[3E5]", "[3e+5]", "[3E-5]",
        "[0e7]", "[0E+7]", "[-2.75e11]", "[5e-99999]", "[-5e99999]", "[98765432109876543210]",
        "[0.1234567890123456789012345678901234567890]",
        // Objects
        R"({"":""})", R"({"a":1,"a":1})", R"({"k":"v" , "l":{"m":[]}})", R"({"n\u0000m":0})", R"({"é":"è"})",
        R"({"a b":{"c\"d":{"e\\f":1}}})",
        // Strings
        R"("")", R"(["\"\\\/\b\f\n\r\t"])", R"(["\u0041\u00e9\u20AC\uabCD"])", R"(["\\u0041"])", R"(["\\"])",
        R"(["/"])", R"(["\ud83d\ude80\uD83D\uDE80"])", R"(["\u0000\u001f\u007f"])",
        R"(["\uFFFE\ufdd0\uDBFF\udfff"])", "[\"\x7f\"]", "[\"// no /* comment */ # here\"]", "[\"[1,{\"]",
        "[\"\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF\"]", "[\"\xF0\x90\x80\x80\xF4\x8F\xBF\xBF\"]",
        "[\"\xE2\x80\xA8\xE2\x80\xA9\xC2\xA0\"]",
        // Alone at the top
        "17", "-0.25", "\"text\"", "true", "false", "null", "\n null \t"};
    for (const char *text : texts)
        QTest::newRow(text) << QByteArray(text);
    QTest::newRow("five hundred levels") << "["_ba.repeated(500) + "]"_ba.repeated(500);
    QTest::newRow("long string") << "[\""_ba + QByteArray(1'000'000, 'x') + "\"]"_ba;
}

void TreeParserTest::acceptsJson()
{
    QFETCH(const QByteArray, json);
    QVERIFY(parsed(json));
}

void TreeParserTest::refusesWhatIsNotJson_data()
{
    QTest::addColumn<QByteArray>("json");

    const std::initializer_list<const char *> texts = {
        // Nothing, too little, too much
        "", " ", "\n\t", "[", "]", "{", "}", "[1", "[1,", "[\"a\"", "[\"a\",", "[{}", "[[]", "{\"a\"",
        "{\"a\":", "{\"a\":1", "{\"a\":1,", "\"", "\"a", "[\"a", "[]]", "{}}", "[]{}", "[1][2]", "1 2",
        "\"a\" \"b\"", "null,", "[],", "[1]x", "true1",
        // Commas, colons, brackets
        "[,]", "[,1]", "[1,]", "[1,,2]", "[,,]", "[1 2]", "[1;2]", "[1:2]", "{,}", "{\"a\":1,}", "{,\"a\":1}",
        "{\"a\":1,,\"b\":2}", "{\"a\" 1}", "{\"a\"::1}", "{\"a\",1}", "{\"a\":1 \"b\":2}", "{:1}", "{\"a\":}",
        "{\"a\"}", "[1}", "{\"a\":1]", "(1)", "<1>",
        // Names
        "{a:1}", "{'a':1}", "{1:1}", "{null:1}", "{[]:1}", "{\xC3\xA9:1}",
        // Words
        "tru", "[nul]", "[fals]", "[True]", "[NULL]", "[truee]", "[nan]", "[NaN]", "[-NaN]", "[Infinity]",
        "[-inf]", "[undefined]", "[yes]", "*", "[*]",
        // Numbers
        "-", "[-]", "[+1]", "[--1]", "[- 1]", "[01]", "[-01]", "[00]", "[.5]", "[-.5]", "[5.]", "[-5.]",
        "[5.e1]", "[.e1]", "[5e]", "[5e+]", "[5E-]", "[5.5e]", "[5e1.5]", "[5ee1]", "[5e+-1]", "[1.2.3]",
        "[1 000]", "[1_000]", "[1,5.]", "[0x1F]", "[1f]", "[1a]", "[-a]", "[5-1]", "[\xEF\xBC\x95]",
        "[98765432109876543210x]", "[5e99999.]", "[-098765432109876543210]", "3@",
        // Strings
        "['a']", "[a]", "[\"a]", "[\"\\\"]", R"(["\x41"])", R"(["\a"])", R"(["\u"])", R"(["\u004"])",
        R"(["\u00g1"])", R"(["\U0041"])", R"(["\ud83d\"])", R"(["\ud83d\u"])", R"(["\ud83d\ude8"])",
        "[\"\\\xC3\xA9\"]", "[\"\\\n\"]", "[\"a\tb\"]", "[\"a\nb\"]", "[\"a\x01\"]", "[\"a\x1f\"]", "[\\n]",
        "[\\u0041]", "\"a\"b\"",
        // What other formats have
        "[1]//", "[1]#", "/**/[1]", "{\"a\":/*b*/1}", "[1,\n# two\n2]", "\xC2\xA0[1]", "[1]\xE2\x80\xA8",
        "[\x0b]", "[\f1]", "\xE2\x80\x8B[1]", "\xEF\xBB\xBF\xEF\xBB\xBF[1]", "a: 1", "<a/>"};
    for (const char *text : texts)
        QTest::newRow(text) << QByteArray(text);
    QTest::newRow("NUL at the end") << "[1]\0"_ba;
    QTest::newRow("NUL in a string") << "[\"a\0a\"]"_ba;
    QTest::newRow("NUL as white space") << "[\0 1]"_ba;
    QTest::newRow("open arrays") << "["_ba.repeated(100'000);
    QTest::newRow("open objects") << "[{\"\":"_ba.repeated(50'000);
    QTest::newRow("closed, but too deep") << "["_ba.repeated(100'000) + "]"_ba.repeated(100'000);
}

void TreeParserTest::refusesWhatIsNotJson()
{
    QFETCH(const QByteArray, json);
    const auto fields = QXApiTreeParser::parse(QByteArrayView(json));
    QVERIFY(!fields);
    const auto document = JSONReader::parse(json);
    QCOMPARE(fields.error(), document.error());
    QVERIFY(!fields.error().localizedDescription.isEmpty());
}

void TreeParserTest::refusesWhatIsNotText_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("stray byte") << "[\"\xE5\"]"_ba;
    QTest::newRow("continuation alone") << "[\"\x81\"]"_ba;
    QTest::newRow("cut off") << "[\"\xE2\x82\"]"_ba;
    QTest::newRow("overlong slash") << "[\"\xC0\xAF\"]"_ba;
    QTest::newRow("overlong in six bytes") << "[\"\xFC\x83\xBF\xBF\xBF\xBF\"]"_ba;
    QTest::newRow("surrogate") << "[\"\xED\xA0\x80\"]"_ba;
    QTest::newRow("beyond Unicode") << "[\"\xF4\xBF\xBF\xBF\"]"_ba;
    QTest::newRow("outside a string") << "[1]\xFF"_ba;
    QTest::newRow("UTF-16") << "\xFE\xFF\0[\0]"_ba;
}

void TreeParserTest::refusesWhatIsNotText()
{
    QFETCH(const QByteArray, bytes);
    const NSError expected{u"LogTreeParser"_s, -1, u"Invalid UTF-8 string"_s};
    const auto fields = QXApiTreeParser::parse(QByteArrayView(bytes));
    QVERIFY(!fields);
    QCOMPARE(fields.error(), expected);
}

QTEST_GUILESS_MAIN(TreeParserTest)
#include "TreeParserTest.moc"
