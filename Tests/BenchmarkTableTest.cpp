#include "Benchmarks/Report.h"
#include "Benchmarks/Table.h"

#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <limits>

using namespace Qt::StringLiterals;

/// What benchmarks report has to arrive in the table, and what is wrong with it must not hide the rest.
class BenchmarkTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsReportedRows();
    void complains_data();
    void complains();
};

void BenchmarkTableTest::showsReportedRows()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"rows"_s);
    qputenv("QUORVIX_BENCH_ROWS", QFile::encodeName(path));
    Report::add({.metric = "HAR of 1,000 bodies of 100 KB of text",
                 .place = "main thread",
                 .unit = "MB/s",
                 .ours = 2160,
                 .peer = Report::Other{"QJsonDocument", 360},
                 .limit = Report::Other{"UTF-8 check and memcpy", 5400},
                 .isRate = true,
                 .goal = "6 x the peer",
                 .goalAdvantage = 6,
                 .goalOfLimit = 0.5});
    Report::add(
        {.metric = "One exchange", .place = "all threads", .unit = "us", .ours = 7.25, .goalValue = 8});
    Report::add(
        {.metric = "Added", .place = "", .unit = "ms", .ours = -1, .peer = Report::Other{"alone", 9}});
    Report::add({.metric = "No number",
                 .place = "",
                 .unit = "ms",
                 .ours = std::numeric_limits<double>::quiet_NaN(),
                 .peer = Report::Other{"a|b", 1},
                 .goalAdvantage = 1});
    QFile file(path);
    QVERIFY(file.open(QFile::ReadOnly));
    QStringList complaints;
    const QJsonArray rows = Table::read(u"Sample"_s, file.readAll(), complaints);
    QCOMPARE(complaints, QStringList({u"Sample: \"No number\" has no value of ours"_s,
                                      u"Sample: \"No number\" has no value of a|b"_s}));

    const QString table = Table::text(rows);
    const QString expected = uR"(
Sample
  HAR of 1,000 bodies of 100  main thread        2,160 MB/s   6.00 × QJsonDocument:  40.0 % of UTF-8     6 x the
  KB of text                                                  360 MB/s               check and memcpy:   peer: missed
                                                                                     5,400 MB/s
  One exchange                all threads        7.25 us                                                 met
  Added                                          -1.00 ms     alone: 9.00 ms
  No number                                      no value     a|b: 1.00 ms                               missed
)"_s;
    QCOMPARE(table.mid(table.indexOf(u"\nSample\n"_s)), expected);
    for (const QString &line : table.split(u'\n'))
        QVERIFY2(line.size() <= 120, qPrintable(line));

    QCOMPARE(Table::markdown(rows), uR"(| | ours | peer | times better |
|---|---|---|---|
| HAR of 1,000 bodies of 100 KB of text | 2,160 MB/s | QJsonDocument: 360 MB/s | 6.00 × |
| One exchange | 7.25 us | | |
| No number | no value | a\|b: 1.00 ms | |
)"_s);
}

void BenchmarkTableTest::complains_data()
{
    QTest::addColumn<QByteArray>("lines");
    QTest::addColumn<int>("rows");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("nothing was measured") << QByteArray("\n") << 0 << u"Sample measured nothing"_s;
    QTest::newRow("the program ended within a line")
        << QByteArray("{\"metric\":\"whole\",\"ours\":1}\n{\"metric\":\"cu") << 1
        << u"Sample wrote a line that is no row: {\"metric\":\"cu"_s;
    QTest::newRow("a peer without a value")
        << QByteArray(
               "{\"metric\":\"m\",\"ours\":1,\"peer\":{\"name\":\"p\",\"value\":1,\"advantage\":null}}")
        << 1 << u"Sample: \"m\" has no value of p"_s;
}

void BenchmarkTableTest::complains()
{
    QFETCH(const QByteArray, lines);
    QStringList complaints;
    const QJsonArray rows = Table::read(u"Sample"_s, lines, complaints);
    QTEST(int(rows.size()), "rows");
    QTEST(complaints.join(u'\n'), "complaint");
    QVERIFY(!Table::text(rows).isEmpty());
}

QTEST_GUILESS_MAIN(BenchmarkTableTest)
#include "BenchmarkTableTest.moc"
