#include "Tests/EveryScreen.h"

#include "Quorvix/QXLogTreeViewModel.h"
#include "Quorvix/QXRequestDetailsViewModel.h"

#include "Text/QXTextMatches.h"
#include "Text/QXTextView.h"

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// Three lines of each hundred contain "needle", the last one at a row's end.
QByteArray haystack(int lines)
{
    QByteArray text;
    for (int i = 0; i < lines; ++i)
        text += "line " + QByteArray::number(i) + (i % 100 == 7 || i % 100 == 50 ? " Needle" : "") +
                (i % 100 == 99 ? " the NEEDLE" : "") + '\n';
    return text;
}

std::vector<qsizetype> occurrences(const QString &text, const QString &needle)
{
    std::vector<qsizetype> found;
    for (qsizetype at = 0; (at = text.indexOf(needle, at, Qt::CaseInsensitive)) >= 0; at += needle.size())
        found.push_back(at);
    return found;
}

} // namespace

/// Finds in bodies and in trees, with the keyboard and with the buttons.
class FindTest : public EveryScreen
{
    Q_OBJECT

private Q_SLOTS:
    void matchesAreThoseOfASimpleSearch_data();
    void matchesAreThoseOfASimpleSearch();
    void walksThroughABody_data();
    void walksThroughABody();
    void goesOnFromTheCursor();
    void findsInBothBodies();
    void walksThroughATree();
    void barOpensAndCloses();
    void findsInADecodedPayload();

private:
    void openBody(const QByteArray &body, const QByteArray &sent = {});
    void openTree(const QByteArray &body);
    void openFind(const char *sought);
    [[nodiscard]] QString selected()
    {
        for (QQuickItem *const item : findAll("QXTextView")) {
            if (const auto *const view = qobject_cast<QXTextView *>(item); view && view->hasSelection())
                return view->selectedText();
        }
        return {};
    }
};

void FindTest::openBody(const QByteArray &body, const QByteArray &sent)
{
    URLRequest request = Exchanges::makeRequest(u"https://shop.test/v1/users/42"_s);
    if (!sent.isEmpty())
        request.httpBody = sent;
    QXRequestRecorder::shared().record(u"id"_s, request);
    Exchanges::complete(u"id"_s, 200, body);
    openList();
    openDetails();
    QTRY_COMPARE(findAll("QXBodyBlock").size(), sent.isEmpty() ? 1 : 2);
}

void FindTest::openTree(const QByteArray &body)
{
    openBody(body);
    const QVariant details = find("QXRequestDetailsView")->property("viewModel");
    auto *const model = details.value<QXRequestDetailsViewModel *>();
    model->openLogTree(model->rowCount() - 1);
    QVERIFY(waitFor("QXLogTreeRow"));
}

void FindTest::openFind(const char *sought)
{
    press(u"Ctrl+F"_s);
    QVERIFY(waitFor("QXFindBar"));
    QVERIFY(find("QXFindField")->hasActiveFocus());
    type(sought);
}

void FindTest::matchesAreThoseOfASimpleSearch_data()
{
    QTest::addColumn<QXTextContent>("content");
    QTest::addColumn<QString>("needle");
    const QByteArray lines = haystack(9000);
    QTest::newRow("ASCII") << QXTextContent::ascii(lines) << u"nEEdle"_s;
    QTest::newRow("letters of two cases") << QXTextContent(u"Größe ÄPFEL "_s.repeated(9000)) << u"äpfel"_s;
    QTest::newRow("letter beyond ASCII in ASCII") << QXTextContent::ascii(lines) << u"ä"_s;
    QTest::newRow("overlapping, across blocks") << QXTextContent(u"a"_s.repeated(100'001)) << u"aaaaaaa"_s;
    QTest::newRow("bytes") << QXTextContent::hexadecimal(QByteArray("\x0a\xb1", 2).repeated(40'000))
                           << u"a b"_s;
    QTest::newRow("longer than the text") << QXTextContent(u"ab"_s) << u"abc"_s;
    QTest::newRow("nothing sought") << QXTextContent::ascii(lines) << QString();
}

void FindTest::matchesAreThoseOfASimpleSearch()
{
    QFETCH(const QXTextContent, content);
    QFETCH(const QString, needle);
    const auto expected = needle.isEmpty() ? std::vector<qsizetype>() : occurrences(content.text(), needle);
    QXTextMatches matches(content, needle);
    while (!matches.isComplete())
        matches.append(matches.search(50'000));
    QCOMPARE(matches.count(), qsizetype(expected.size()));
    for (size_t i = 0; i < expected.size(); i += 1 + expected.size() / 500) {
        QCOMPARE(matches.position(qsizetype(i)), expected[i]);
        QCOMPARE(matches.matchFrom(expected[i]), qsizetype(i));
        QCOMPARE(matches.matchFrom(expected[i] + 1), qsizetype(i) + 1);
    }
}

void FindTest::walksThroughABody_data()
{
    QTest::addColumn<int>("lines");
    QTest::newRow("searched at once") << 400;
    QTest::newRow("searched by another thread") << 40'000;
    QTest::newRow("rows broken by another thread") << 200'000;
}

void FindTest::walksThroughABody()
{
    QFETCH(const int, lines);
    openBody(haystack(lines));
    openFind("needle");
    const int matches = 3 * lines / 100;
    const auto outcome = [&](int match) {
        return u"%1 of %2"_s.arg(QLocale().toString(match), QLocale().toString(matches));
    };
    QTRY_COMPARE(text("QXFindCount"), outcome(1));
    // Each key goes to a match, which is selected and in view.
    for (const auto &[keys, match, shown] : {std::tuple(u"Return"_s, 2, u"Needle"_s),
                                             {u"Ctrl+G"_s, 3, u"NEEDLE"_s},
                                             {u"F3"_s, 4, u"Needle"_s},
                                             {u"Ctrl+Shift+G"_s, 3, u"NEEDLE"_s},
                                             {u"Shift+Return"_s, 2, u"Needle"_s},
                                             {u"Shift+F3"_s, 1, u"Needle"_s},
                                             {u"Shift+F3"_s, matches, u"NEEDLE"_s},
                                             {u"Ctrl+G"_s, 1, u"Needle"_s},
                                             {u"Ctrl+Shift+G"_s, matches, u"NEEDLE"_s}}) {
        press(keys);
        QTRY_COMPARE(text("QXFindCount"), outcome(match));
        QCOMPARE(selected(), shown);
        const auto *const view = qobject_cast<QXTextView *>(find("QXTextView"));
        QTRY_VERIFY2(view->startEdge().top() >= 0 && view->startEdge().bottom() <= view->height(),
                     qPrintable(keys));
    }
    press(u"Esc"_s);
    QTRY_VERIFY(!find("QXFindBar"));
    press(u"Ctrl+C"_s);
    QCOMPARE(clipboard(), u"NEEDLE"_s);
}

void FindTest::goesOnFromTheCursor()
{
    openBody(haystack(400));
    openFind("needle");
    QCOMPARE(text("QXFindCount"), u"1 of 12"_s);
    auto *const view = qobject_cast<QXTextView *>(find("QXTextView"));
    view->showRange(view->document()->length() - 20, 3);
    press(u"Ctrl+G"_s);
    QCOMPARE(text("QXFindCount"), u"12 of 12"_s);
    for (const char *key : {"x", "y"})
        type(key);
    QCOMPARE(text("QXFindCount"), u"Not found"_s);
    press(u"Backspace, Backspace"_s);
    QCOMPARE(text("QXFindCount"), u"12 of 12"_s);
}

void FindTest::findsInBothBodies()
{
    openBody("response", "request, Response");
    openFind("response");
    QCOMPARE(text("QXFindCount"), u"1 of 2"_s);
    QCOMPARE(selected(), u"Response"_s);
    click("QXFindNext");
    QCOMPARE(text("QXFindCount"), u"2 of 2"_s);
    QCOMPARE(selected(), u"response"_s);
    click("QXFindPrevious");
    QCOMPARE(selected(), u"Response"_s);
}

void FindTest::walksThroughATree()
{
    // The members of 200 objects, all of them collapsed at first; keys, strings, numbers and literals.
    QByteArray body = "{\"list\":[";
    for (int i = 0; i < 200; ++i)
        body += R"({"id":)" + QByteArray::number(i) + R"(,"Köln":{"deep":"a Needle"},"on":true},)";
    body.back() = ']';
    openTree(body + ",\"needle\":null}");
    openFind("needle");
    QTRY_COMPARE(text("QXFindCount"), u"1 of 201"_s);
    const auto current = [&] {
        return find("QXLogTreeRow", "isCurrent", true);
    };
    const auto key = [&] {
        return current() ? current()->property("key").toString() : QString();
    };
    QTRY_COMPARE(key(), u"deep"_s);
    press(u"Ctrl+Shift+G"_s);
    QTRY_COMPARE(key(), u"needle"_s);
    QCOMPARE(text("QXFindCount"), u"201 of 201"_s);
    press(u"Shift+Return"_s);
    QCOMPARE(text("QXFindCount"), u"200 of 201"_s);
    QTRY_VERIFY(current() && sceneRect(*find("QXLogTreeList")).contains(sceneRect(*current())));
    for (const auto &[sought, count] :
         {std::pair(u"köln"_s, 200), {u"199"_s, 1}, {u"TRUE"_s, 200}, {u"null"_s, 1}, {u"[3]"_s, 0}}) {
        find("QXFindField")->setProperty("text", sought);
        QTRY_VERIFY2(text("QXFindCount").endsWith(count > 0 ? u" of %1"_s.arg(count) : u"Not found"_s),
                     qPrintable(sought + text("QXFindCount")));
    }
    press(u"Esc"_s);
    QTRY_VERIFY(find("QXLogTreeList")->hasActiveFocus());
}

void FindTest::barOpensAndCloses()
{
    openBody(haystack(400));
    press(u"Ctrl+G"_s); // there is nothing to repeat
    QVERIFY(waitFor("QXFindBar"));
    for (const char *name : {"QXFindField", "QXFindPrevious", "QXFindNext", "QXFindClose"})
        QVERIFY2(isUsable(name), name);
    type("needle");
    QCOMPARE(spoken(find("QXFindField"), QAccessible::Description), u"1 of 12"_s);
    const QRectF before = sceneRect(*find("QXTextView"));
    const qreal offset = find("QXTextView")->property("scrollOffset").toReal();
    click("QXFindClose");
    QTRY_VERIFY(!find("QXFindBar"));
    // What the user reads stays where it is.
    QTRY_COMPARE(find("QXTextView")->property("scrollOffset").toReal() - offset,
                 sceneRect(*find("QXTextView")).top() - before.top());
    press(u"Ctrl+G"_s);
    QVERIFY(!find("QXFindBar"));
    press(u"Ctrl+F"_s);
    QCOMPARE(text("QXFindCount"), u"2 of 12"_s);
    QCOMPARE(find("QXFindField")->property("selectedText").toString(), u"needle"_s);
    press(u"Esc"_s);
    QTRY_VERIFY(!find("QXFindBar"));
    // A finger has no keys.
    press(Qt::Key_Menu);
    click("QXFindItem");
    QTRY_VERIFY(find("QXFindField") && find("QXFindField")->hasActiveFocus());
    press(u"Esc"_s);
    QTRY_VERIFY(!find("QXFindBar"));
    press(u"Esc"_s);
    QTRY_VERIFY(!find("QXRequestDetailsView"));
}

void FindTest::findsInADecodedPayload()
{
    openBody(haystack(400).toBase64());
    click(sceneRect(*find("QXBodyBlock")).topLeft().toPoint() + QPoint(20, 20), Qt::RightButton);
    click("QXDecodeValueItem");
    QVERIFY(waitFor("QXDecodedSectionText"));
    press(u"Ctrl+F"_s);
    QVERIFY(waitFor("QXFindBar"));
    type("needle");
    QTRY_COMPARE(text("QXFindCount"), u"1 of 12"_s);
    press(u"Shift+Return"_s);
    QTRY_COMPARE(text("QXFindCount"), u"12 of 12"_s);
    const QRectF page = sceneRect(*find("QXDecodedPayloadPage"));
    QVERIFY(page.top() >= sceneRect(*find("QXFindBar")).bottom());
    press(u"Esc"_s);
    QTRY_VERIFY(!find("QXFindBar"));
    QCOMPARE(selected().toLower(), u"needle"_s);
    // Esc closes the field also where it has no focus, and only then the sheet.
    press(u"Ctrl+F, Tab, Tab, Tab, Tab, Esc"_s);
    QTRY_VERIFY(!find("QXFindBar"));
    QVERIFY(find("QXDecodedPayloadSheet"));
    press(u"Esc"_s);
    QTRY_VERIFY(!find("QXDecodedPayloadSheet"));
}

QTEST_MAIN(FindTest)
#include "FindTest.moc"
