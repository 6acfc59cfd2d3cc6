#include "Quorvix/QXDecodedPayloadModel.h"
#include "Quorvix/QXLogTreeViewModel.h"

#include "Platform/BackgroundThread.h"

#include <QtCore/QSemaphore>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <random>

using namespace Qt::StringLiterals;

namespace {

/// The rows as the user sees them: indentation, a mark for rows that open, key and summary.
QStringList shown(const QAbstractItemModel &model)
{
    using Model = QXLogTreeViewModel;
    QStringList lines;
    for (int row = 0; row < model.rowCount(); ++row) {
        const auto value = [&](int role) {
            return model.index(row, 0).data(role);
        };
        const QString mark = !value(Model::HasChildrenRole).toBool() ? u""_s
                             : value(Model::IsExpandedRole).toBool() ? u"-"_s
                                                                     : u"+"_s;
        lines.append(QString(value(Model::DepthRole).toInt(), u' ') + mark +
                     value(Model::KeyRole).toString() + u'=' + value(Model::SummaryRole).toString());
    }
    return lines;
}

/// Collects the visible rows in the simplest way, to compare with the model.
void flatten(const QXApiTreeField &field, std::vector<const QXApiTreeField *> &fields)
{
    fields.push_back(&field);
    if (!field.isExpanded())
        return;
    for (const QXApiTreeField &child : field.children())
        flatten(child, fields);
}

} // namespace

class LogTreeModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void rowsAgreeWithAPlainVector();
    void togglesShowAndHide();
    void anyTogglesGiveTheFlattening();
    void leavesDoNotToggle();
    void rolesStayShort();
    void copies();
    void decodes();
    void decodableIsOfTheShownTree();
    void brokenTextIsAParseError();
    void payloadStaysUntilTheNext();
};

void LogTreeModelTest::rowsAgreeWithAPlainVector()
{
    std::mt19937 random(7); // NOLINT(bugprone-random-generator-seed): the same each time
    const auto below = [&](size_t limit) {
        return std::uniform_int_distribution<size_t>(0, limit)(random);
    };
    const auto tree = QXApiTreeParser::parse(u'[' + u"0,"_s.repeated(2'000'000) + u"0]"_s).value().first();
    QXApiTreeField *next = tree->children().data();
    QXApiTreeField *const end = next + tree->children().size();
    QXLogTreeRows rows;
    std::vector<QXApiTreeField *> plain;
    for (int step = 0; step < 1500; ++step) {
        // From time to time the list shrinks until it is empty.
        const bool grows = (step / 100) % 3 != 2;
        const size_t row = below(plain.size());
        const auto place = plain.begin() + std::ptrdiff_t(row);
        if (below(9) < (grows ? 7U : 2U)) {
            std::vector<QXLogTreeRows::Run> runs;
            std::vector<QXApiTreeField *> added;
            for (size_t run = below(2); run > 0; --run) {
                runs.push_back({next, below(std::min<size_t>(500, size_t(end - next)))});
                for (size_t i = 0; i < runs.back().count; ++i)
                    added.push_back(next++);
                next += int(below(1)) * int(next != end); // not all runs follow each other
            }
            rows.insert(row, runs);
            plain.insert(place, added.begin(), added.end());
        } else {
            const size_t count = below(std::min<size_t>(1000, plain.size() - row));
            rows.remove(row, count);
            plain.erase(place, place + std::ptrdiff_t(count));
        }
        QCOMPARE(rows.size(), plain.size());
        for (size_t probe = 0; probe < 20 && !plain.empty(); ++probe) {
            const size_t row = below(plain.size() - 1);
            QCOMPARE(rows.at(row), plain[row]);
            QCOMPARE(rows.rowBefore(plain.size(), plain[row]), row);
            QCOMPARE(rows.rowBefore(row + 1, plain[row]), row);
        }
    }
    for (size_t row = 0; row < plain.size(); ++row)
        QCOMPARE(rows.at(row), plain[row]);
}

void LogTreeModelTest::togglesShowAndHide()
{
    QXLogTreeViewModel model(u"[{\"b\":[true],\"a\":{\"c\":null}},7]"_s);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(shown(model), QStringList{u"+=[2 items]"_s});
    model.toggle(0);
    QCOMPARE(shown(model), (QStringList{u"-=[2 items]"_s, u" +[0]={2 keys}"_s, u" [1]=7"_s}));
    model.toggle(1);
    model.toggle(3);
    const QStringList all = shown(model);
    QCOMPARE(all, (QStringList{u"-=[2 items]"_s, u" -[0]={2 keys}"_s, u"  +a={1 key}"_s, u"  -b=[1 item]"_s,
                               u"   [0]=true"_s, u" [1]=7"_s}));
    // A collapsed node hides its expanded children; they are still expanded when it opens again.
    model.toggle(0);
    QCOMPARE(model.rowCount(), 1);
    QVERIFY(model.rootFields().first()->children()[0].children()[1].isExpanded());
    model.toggle(0);
    QCOMPARE(shown(model), all);
    // Another owner of the nodes may expand or collapse them without telling the model.
    QXApiTreeField &inner = model.rootFields().first()->children()[0].children()[1];
    inner.setExpanded(false);
    model.toggle(0);
    QCOMPARE(model.rowCount(), 1);
    inner.parent()->parent()->setExpanded(true);
    model.toggle(0);
    QCOMPARE(model.rowCount(), 1);
    model.toggle(0);
    QCOMPARE(model.rowCount(), 5);
}

void LogTreeModelTest::anyTogglesGiveTheFlattening()
{
    QString json = u"1"_s;
    for (int level = 0; level < 6; ++level)
        json = u"[%1,%1,{\"x\":%1,\"y\":{},\"z\":\"s\"}]"_s.arg(json);
    QXLogTreeViewModel model(json);
    // A reset would lose the scroll position of the screen.
    const QSignalSpy reset(&model, &QAbstractItemModel::modelReset);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    std::mt19937 random(11); // NOLINT(bugprone-random-generator-seed): the same each time
    int most = 0;
    for (int step = 0; step < 600; ++step) {
        model.toggle(std::uniform_int_distribution(0, model.rowCount() - 1)(random));
        std::vector<const QXApiTreeField *> expected;
        flatten(*model.rootFields().first(), expected);
        QCOMPARE(model.visibleFields(), expected);
        most = std::max(most, model.rowCount());
    }
    QVERIFY(most > 60 && reset.isEmpty());
}

void LogTreeModelTest::leavesDoNotToggle()
{
    QXLogTreeViewModel model(u"[1,\"x\",null,{},[]]"_s);
    model.toggle(0);
    for (const int row : {1, 2, 3, 4, 5, 6, -1}) {
        model.toggle(row);
        QCOMPARE(model.expand(row), row);
        QCOMPARE(model.rowCount(), 6);
    }
    QVERIFY(!model.field(4).isExpanded());
}

void LogTreeModelTest::rolesStayShort()
{
    const QString text = u"x"_s.repeated(5'000'000);
    QXLogTreeViewModel model(u"{\"a\":\"%1\",\"b\":\"%2\",\"c\":%3,\"%4\":\"\\n1\\t2\\u2028\"}"_s.arg(
        text, u"\U0001F600"_s.repeated(400), u"9"_s.repeated(5000), u"k"_s.repeated(5000)));
    QTRY_COMPARE(model.rowCount(), 1); // another thread parses it
    model.toggle(0);
    QStringList summaries;
    for (int row = 0; row < 5; ++row) {
        summaries += model.index(row).data(QXLogTreeViewModel::SummaryRole).toString();
        QVERIFY(summaries[row].size() < 310 && summaries[row].isValidUtf16());
    }
    QVERIFY(summaries[1].endsWith(u"x…\""_s) && summaries[2].endsWith(u"\U0001F600…\""_s));
    QVERIFY(summaries[3].endsWith(u"9…"_s));
    QCOMPARE(summaries[4], u"\" 1 2 \""_s); // one line
    const QString key = model.index(4).data(QXLogTreeViewModel::KeyRole).toString();
    QVERIFY(key.size() < 310 && key.endsWith(u"k…"_s));
    QCOMPARE(model.copyText(1), u"a: \""_s + text + u'"');
    QCOMPARE(model.copyText(4), u"k"_s.repeated(5000) + u": \"\n1\t2\u2028\""_s);
}

void LogTreeModelTest::copies()
{
    QXLogTreeViewModel model(u"{\"\":true,\"id\":42,\"list\":[1,2],\"none\":[]}"_s);
    model.toggle(0);
    QStringList copied;
    for (int row = 0; row < model.rowCount(); ++row)
        copied += model.copyText(row);
    QCOMPARE(copied, QStringList({u"{4 keys}"_s, u"true"_s, u"id: 42"_s, u"list: [2 items]"_s, u"none: "_s}));
    model.copy(2);
    // An empty root has no text, so the clipboard does not change.
    const QXLogTreeViewModel empty(u"{}"_s);
    empty.copy(0);
    empty.copy(1);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"id: 42"_s);
}

void LogTreeModelTest::decodes()
{
    QXLogTreeViewModel model(
        u"[\"SGVsbG8sIHdvcmxkIQ==\",\"Hi, you!\",123456789012345678901234,true,[\"SGVsbG8sIHdvcmxkIQ==\"]]"_s);
    model.toggle(0);
    const QSignalSpy changed(&model, &QXLogTreeViewModel::decodedPayloadChanged);
    for (const int row : {0, 1, 2, 3, 4, 5, 6, -1}) {
        QCOMPARE(model.canDecodeBase64(row), row == 1);
        model.decodeBase64(row);
        QCOMPARE(model.decodedPayload().has_value(), row == 1);
        // A string without an encoded part publishes that there is no payload; other kinds publish nothing.
        QCOMPARE(changed.size(), row < 0 ? 2 : qMin(row, 2));
    }
}

void LogTreeModelTest::decodableIsOfTheShownTree()
{
    using Quorvix::BackgroundThread::post;
    for (const bool isReplaced : {false, true}) {
        QXLogTreeViewModel model(u"[\"%1\"]"_s.arg(u"QUJD"_s.repeated(50'000)));
        QTRY_COMPARE(model.rowCount(), 1);
        model.toggle(0);
        const QSignalSpy changed(&model, &QXLogTreeViewModel::decodableChanged);
        QVERIFY(!model.canDecodeBase64(1));
        if (isReplaced)
            model.load(u"[1]");
        QSemaphore checked;
        post([&] { checked.release(); });
        checked.acquire();
        QCoreApplication::processEvents();
        QCOMPARE(changed.size(), isReplaced ? 0 : 1);
        QCOMPARE(model.canDecodeBase64(1), !isReplaced);
    }
}

void LogTreeModelTest::brokenTextIsAParseError()
{
    QXLogTreeViewModel model(u"{\"a\":"_s);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QCOMPARE(model.parseError(), QXApiTreeParser::parse(u"{\"a\":").error().localizedDescription);
    QCOMPARE(model.rowCount(), 0);

    // A text that is not JSON leaves the shown tree unchanged.
    model.load(u"[1,2]");
    model.toggle(0);
    const QStringList lines = shown(model);
    model.load(u"nonsense");
    QCOMPARE(shown(model), lines);
    QVERIFY(!QXLogTreeViewModel(u"5"_s).property("parseError").isValid());
}

void LogTreeModelTest::payloadStaysUntilTheNext()
{
    QXDecodedPayloadModel model;
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QXDecodedPayload payload(u"Two"_s, {{u"First"_s, u"a"_s}, {u"Second"_s, u"b"_s}});
    model.setProperty("payload", QVariant::fromValue(payload));
    model.setProperty("payload", QVariant());
    QCOMPARE(model.title(), u"Two"_s);
    QCOMPARE(model.rowCount(), 2);
    const auto *document = model.index(1).data(QXDecodedPayloadModel::DocumentRole).value<QXTextDocument *>();
    QVERIFY(document);
    QCOMPARE(document->text(), u"b"_s);
    QCOMPARE(model.index(1).data(QXDecodedPayloadModel::TitleRole), u"Second"_s);
}

QTEST_MAIN(LogTreeModelTest)
#include "LogTreeModelTest.moc"
