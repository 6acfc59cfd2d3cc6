#include "Text/QXTextBoundaries.h"
#include "Text/QXTextDocument.h"
#include "Text/QXTextRows.h"

#include <QtCore/QRandomGenerator>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

QStringList rowsOf(QStringView text, const QXTextRows &rows)
{
    QStringList result;
    for (int row = 0; row < rows.count(); ++row)
        result.append(text.sliced(rows.start(row), rows.end(row) - rows.start(row)).toString());
    return result;
}

} // namespace

class TextRowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void breaksRows_data();
    void breaksRows();
    void asciiIsLikeOtherText();
    void followsEdits();
};

void TextRowsTest::breaksRows_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("nothing") << QString() << QStringList{QString()};
    QTest::newRow("line end at the edge") << u"abcd\nef"_s << QStringList{u"abcd\n"_s, u"ef"_s};
    QTest::newRow("line end at last") << u"ab\n"_s << QStringList{u"ab\n"_s, QString()};
    QTest::newRow("line ends of all kinds")
        << u"a\r\nb\rc\n\rd"_s << QStringList{u"a\r\n"_s, u"b\r"_s, u"c\n"_s, u"\r"_s, u"d"_s};
    QTest::newRow("tab") << u"a\tb"_s << QStringList{u"a\t"_s, u"b"_s};
    QTest::newRow("combining mark at the edge") << u"abcde\u0301"_s << QStringList{u"abcd"_s, u"e\u0301"_s};
    QTest::newRow("mark stays with the last of a row")
        << u"abcd\u0301ef"_s << QStringList{u"abcd\u0301"_s, u"ef"_s};
    QTest::newRow("wide") << u"a中文字"_s << QStringList{u"a中"_s, u"文字"_s};
    QTest::newRow("surrogate pairs") << u"abc😀😀"_s << QStringList{u"abc"_s, u"😀😀"_s};
    QTest::newRow("joined picture") << u"abcd👩‍💻a"_s << QStringList{u"abcd"_s, u"👩‍💻a"_s};
    QTest::newRow("flags in pairs") << u"abc🇩🇪🇫🇷"_s << QStringList{u"abc"_s, u"🇩🇪🇫🇷"_s};
    QTest::newRow("lone surrogates") << QString(5, QChar(0xD83D))
                                     << QStringList{QString(4, QChar(0xD83D)), QString(QChar(0xD83D))};
    QTest::newRow("marks without end are torn")
        << QString(33, QChar(0x301)) << QStringList{QString(32, QChar(0x301)), QString(QChar(0x301))};
}

void TextRowsTest::breaksRows()
{
    QFETCH(const QString, text);
    QXTextRows rows;
    rows.breakText(text, 4);
    QTEST(rowsOf(text, rows), "rows");
    for (int row = 0; row < rows.count(); ++row)
        QCOMPARE(rows.rowAt(rows.start(row)), row);
}

void TextRowsTest::asciiIsLikeOtherText()
{
    const QByteArray characters("aaaaaaaaaaaaaaaaaaaaaaaaaa  ,_\t\n\r\x1f~\x7f");
    QRandomGenerator random(11);
    for (int turn = 0; turn < 200; ++turn) {
        QByteArray ascii(random.bounded(200), 'a');
        for (char &c : ascii)
            c = characters[random.bounded(int(characters.size()))];
        const QString text = QString::fromLatin1(ascii);
        const QXTextDocument narrow(QXTextContent::ascii(ascii));
        const QXTextDocument wide(text);
        QXTextRows narrowRows;
        QXTextRows wideRows;
        const int columns = 1 + random.bounded(60);
        narrow.content().breakInto(narrowRows, columns);
        wide.content().breakInto(wideRows, columns);
        QCOMPARE(rowsOf(text, narrowRows), rowsOf(text, wideRows));
        QCOMPARE(narrow.text(), text);
        for (qsizetype at = 0; at <= text.size(); ++at) {
            const auto all = [at](const QXTextDocument &document) {
                const QXTextRange word = QXTextBoundaries::wordAt(document, at);
                const QXTextRange line = QXTextBoundaries::lineAt(document, at);
                return QList<qsizetype>{word.start,
                                        word.end,
                                        line.start,
                                        line.end,
                                        QXTextBoundaries::nextWord(document, at),
                                        QXTextBoundaries::previousWord(document, at)};
            };
            QCOMPARE(all(narrow), all(wide));
        }
    }
}

void TextRowsTest::followsEdits()
{
    const QStringList pieces{u""_s,   u"a"_s, u"\n"_s, u"\r"_s,       u"\r\n"_s,    u"\t"_s,      u"\u0301"_s,
                             u"中"_s, u"😀"_s, u"🇩"_s,  u"abcdefgh"_s, u"x\ny\nz"_s, QChar(0x200D)};
    QRandomGenerator random(7);
    QString text;
    QXTextRows rows;
    rows.breakText(text, 5);
    for (int edit = 0; edit < 3000; ++edit) {
        const qsizetype position = random.bounded(int(text.size()) + 1);
        const int most = text.size() > 80 ? 9 : 3;
        const qsizetype removed = qMin<qsizetype>(random.bounded(most), text.size() - position);
        const QString &added = pieces[random.bounded(int(pieces.size()))];
        text.replace(position, removed, added);
        rows.follow(text, position, removed, added.size());
        QXTextRows expected;
        expected.breakText(text, 5);
        QCOMPARE(rowsOf(text, rows), rowsOf(text, expected));
    }
}

QTEST_MAIN(TextRowsTest)
#include "TextRowsTest.moc"
