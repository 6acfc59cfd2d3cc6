#include "Benchmarks/Guard/Baseline.h"

#include <QtTest/QTest>

using namespace Qt::StringLiterals;

/// A guard that passes everything is worse than none.
class GuardBaselineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void compares_data();
    void compares();
};

void GuardBaselineTest::compares_data()
{
    QTest::addColumn<QByteArray>("counts");
    QTest::addColumn<bool>("isSameSystem");
    QTest::addColumn<bool>("isGood");
    QTest::addColumn<QString>("says");
    const auto row = [](const char *name, const char *counts, bool isSameSystem, bool isGood,
                        const char *says) {
        QTest::newRow(name) << QByteArray(counts) << isSameSystem << isGood << QString::fromLatin1(says);
    };
    row("a little more", "1029 a b\n500 c\n", true, true, "+2.90 %");
    row("too many", "1031 a b\n500 c\n", true, false, "+3.10 % MORE");
    row("too many on another system", "2000 a b\n500 c\n", false, true, "nothing is compared");
    row("fewer", "900 a b\n500 c\n", true, true, "A path became cheaper");
    row("a path is missing", "1000 a b\n", true, false, "NOT COUNTED");
    row("a path is new", "1000 a b\n500 c\n7 d\n", true, false, "not recorded");
}

void GuardBaselineTest::compares()
{
    QFETCH(const QByteArray, counts);
    QFETCH(const bool, isSameSystem);
    QFETCH(const QString, says);
    const QJsonObject system = Baseline::thisSystem();
    QVERIFY(!system[u"qt"_s].toString().isEmpty());
    QJsonObject other = system;
    other[u"qt"_s] = u"6.0"_s;
    const QJsonObject baseline{{u"system"_s, isSameSystem ? system : other},
                               {u"instructions"_s, Baseline::readCounts("1000 a b\n500 c\n")}};
    const Baseline::Verdict verdict = Baseline::compare(Baseline::readCounts(counts), system, baseline);
    QTEST(verdict.isGood, "isGood");
    QVERIFY2(verdict.text.contains(says), qPrintable(verdict.text));
}

QTEST_GUILESS_MAIN(GuardBaselineTest)
#include "GuardBaselineTest.moc"
