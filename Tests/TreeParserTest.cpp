#include "Tests/TestKit.h"

#include "Quorvix/QXApiTreeParser.h"

#include "JSON/JSONReader.h"

#include <QtTest/QTest>

#include <limits>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

using FieldPointer = std::shared_ptr<QXApiTreeField>;

/// The tree of a text; null when there is none.
FieldPointer parsed(const QByteArray &json)
{
    const auto fields = QXApiTreeParser::parse(QByteArrayView(json));
    return fields && fields.value().size() == 1 ? fields.value().first() : nullptr;
}

/// The only child of the root.
QXApiTreeField &onlyChild(const FieldPointer &root)
{
    return root->children().front();
}

/// Lists the tree as lines: depth, kind, and the shown key, path and value.
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
    void givesValues();
    void tellsRows();
    void sharesNodes();
    void translatesWords();
    void readsTextLikeBytes();
    void acceptsJson();
    void refusesWhatIsNotJson_data();
    void refusesWhatIsNotJson();
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
    QTest::newRow("scalars of every form")
        << R"([0,-9223372036854775808,18446744073709551615,-1.5E+400,-19.90,"a\"b\n\u0000\ud83d\ude00"])"_ba
        << QStringList{u"0 Array - - [6 items]"_s,
                       u"1 Number [0] - 0"_s,
                       u"1 Number [1] - -9223372036854775808"_s,
                       u"1 Number [2] - 18446744073709551615"_s,
                       u"1 Number [3] - -1.5E+400"_s,
                       u"1 Number [4] - -19.9"_s,
                       u"1 String [5] - \"a\"b\n\0\U0001F600\""_s};
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

void TreeParserTest::givesValues()
{
    const FieldPointer root = parsed(R"([null,true,false,-1,18446744073709551615,0.5,1e999,"x",[1,2]])");
    QVERIFY(root);
    const auto valueAt = [&](size_t index) {
        return root->children()[index].value();
    };
    QVERIFY(std::holds_alternative<std::nullptr_t>(valueAt(0)));
    QCOMPARE(std::get<bool>(valueAt(1)), true);
    QCOMPARE(std::get<bool>(valueAt(2)), false);
    QCOMPARE(std::get<qint64>(valueAt(3)), -1);
    QCOMPARE(std::get<quint64>(valueAt(4)), std::numeric_limits<quint64>::max());
    QCOMPARE(std::get<double>(valueAt(5)), 0.5);
    QCOMPARE(std::get<double>(valueAt(6)), std::numeric_limits<double>::max());
    QCOMPARE(std::get<QString>(valueAt(7)), u"x"_s);
    QCOMPARE(std::get<QXApiTreeField::Children>(valueAt(8)).size(), size_t(2));
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

/// All pointers to a node refer to the same node, and any pointer keeps the whole tree alive.
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
    ShoutingTranslator words;
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
    const auto fields = QXApiTreeParser::parse(u"{\"Genève\":[\"\U0001F600\"]}"_s);
    QVERIFY(fields);
    QStringList lines;
    list(*fields.value().first(), lines);
    QCOMPARE(lines.last(), u"2 String [0] Genève[0] \"\U0001F600\""_s);
}

void TreeParserTest::acceptsJson()
{
    for (const char *json :
         {"[98765432109876543210]", "[-5e99999]", "[5e-99999]", "[-0E+7]", "{\"1e999\":\"\\\"\",\"b\":1e999}",
          "[0.1234567890123456789012345678901234567890]", "\xEF\xBB\xBF[]", "{\"\\ude00\":\"\\ud83d\"}",
          "[\"// no /* comment */ # here\"]"})
        QVERIFY2(parsed(json), json);
}

void TreeParserTest::refusesWhatIsNotJson_data()
{
    QTest::addColumn<QByteArray>("json");
    for (const char *text :
         {// Malformed numbers, the last ones beyond 64 bits
          "[-]", "[+1]", "[01]", "[-01]", "[.5]", "[-.5]", "[5.]", "[5.e99999]", "[5e]", "[5E-]", "[5e1.5]",
          "[0x1F]", "[1.2.3]", "[5-1]", "[98765432109876543210x]", "[5e99999.]", "[-098765432109876543210]",
          // Syntax of other formats
          "", "[1,]", "{\"a\":1,}", "[1][2]", "{a:1}", "{'a':1}", "[True]", "[NaN]", "[-Infinity]",
          "[\"a\nb\"]", "[1]//", "/**/[1]", "[\f1]", "\xC2\xA0[1]", "\xEF\xBB\xBF\xEF\xBB\xBF[1]"})
        QTest::newRow(text) << QByteArray(text);
    QTest::newRow("NUL at the end") << "[1]\0"_ba;
    QTest::newRow("open objects") << "[{\"\":"_ba.repeated(50'000);
}

void TreeParserTest::refusesWhatIsNotJson()
{
    QFETCH(const QByteArray, json);
    const auto fields = QXApiTreeParser::parse(QByteArrayView(json));
    QVERIFY(!fields);
    QCOMPARE(fields.error(), JSONReader::parse(json).error());
    QVERIFY(!fields.error().localizedDescription.isEmpty());
}

void TreeParserTest::refusesWhatIsNotText()
{
    QList results{QXApiTreeParser::parse(QString(u"[\""_s + QChar(0xD800) + u"\"]"_s))};
    for (const char *bytes : {"[\"\xE5\"]", "[\"\xED\xA0\x80\"]", "[1]\xFF"})
        results += QXApiTreeParser::parse(QByteArrayView(bytes));
    for (const auto &fields : std::as_const(results)) {
        QVERIFY(!fields);
        QCOMPARE(fields.error(), (NSError{u"LogTreeParser"_s, -1, u"Invalid UTF-8 string"_s}));
    }
}

QTEST_GUILESS_MAIN(TreeParserTest)
#include "TreeParserTest.moc"
