#include "Examples/DemoServer.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <array>

using namespace Qt::StringLiterals;

/// One program, built with the inspector and with what stands for it in a release.
class NoOpTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void behavesTheSame();
    void behavesTheSameInQml();
    void completesOnTheSameThreadWithTheSwitch_data();
    void completesOnTheSameThreadWithTheSwitch();
    void containsNothingOfTheInspector();
    void loadsOnlyWhatQtAloneLoads();
    void addsLittle_data();
    void addsLittle();

private:
    /// What a program prints.
    QStringList run(const QString &program, const QStringList &arguments = {});
    /// The lines of an output with this text in them.
    static QStringList linesWith(const QStringList &lines, const QString &text) { return lines.filter(text); }
    /// A program of the project that is a release.
    static QString released(const QString &program)
    {
        return QStringLiteral(QUORVIX_RELEASED) + u'/' + program;
    }
    static qint64 strippedSize(const QString &program);

    DemoServer m_server;
    QStringList m_started;
    QStringList m_untouched;
    QStringList m_noOp;
    QStringList m_released;
};

QStringList NoOpTest::run(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QString server = m_server.url().toString();
    server.chop(1);
    process.start(program, QStringList(server) + arguments);
    if (!process.waitForFinished(60'000) || process.exitStatus() != QProcess::NormalExit ||
        process.exitCode() != 0)
        qWarning("%s failed: %s", qPrintable(program), qPrintable(process.errorString()));
    return QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
}

void NoOpTest::initTestCase()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    QVERIFY(m_server.start());
    m_started = run(QStringLiteral(QUORVIX_CONSUMER), {u"start"_s});
    m_untouched = run(QStringLiteral(QUORVIX_CONSUMER));
    m_noOp = run(QStringLiteral(QUORVIX_CONSUMER_NO_OP), {u"start"_s});
    if (QFile::exists(released(u"Consumer"_s)))
        m_released = run(released(u"Consumer"_s), {u"start"_s});
}

void NoOpTest::behavesTheSame()
{
    QCOMPARE(linesWith(m_noOp, u" = "_s), linesWith(m_started, u" = "_s));
    QVERIFY(linesWith(m_noOp, u" = "_s).size() >= 15);
    // What differs shows that one of them has the inspector, and the other one has not.
    const QList<std::array<QString, 3>> differences{
        {u"recorded: "_s, u"11 4"_s, u"0 0"_s},
        {u"rules: "_s, u"1 1"_s, u"0 0"_s},
        {u"held: "_s, u"1"_s, u"0"_s},
        {u"changes: "_s, u"1"_s, u"0"_s},
        {u"reply of wrapped: "_s, u"another"_s, u"the host's"_s},
        {u"reply of thorough: "_s, u"another"_s, u"the host's"_s},
    };
    for (const auto &[what, started, noOp] : differences) {
        QCOMPARE(linesWith(m_started, what), QStringList(what + started));
        QCOMPARE(linesWith(m_noOp, what), QStringList(what + noOp));
    }
}

void NoOpTest::behavesTheSameInQml()
{
    const QStringList started = run(QStringLiteral(QUORVIX_QML));
    const QStringList noOp = run(QStringLiteral(QUORVIX_QML_NO_OP));
    QCOMPARE(linesWith(noOp, u" = "_s), linesWith(started, u" = "_s));
    QCOMPARE(linesWith(noOp, u" = "_s).size(), 7);
    QCOMPARE(linesWith(started, u": "_s),
             QStringList({u"counts: some"_s, u"manager: QXNetworkAccessManager"_s}));
    QCOMPARE(linesWith(noOp, u": "_s), QStringList({u"counts: none"_s, u"manager: QNetworkAccessManager"_s}));
}

void NoOpTest::completesOnTheSameThreadWithTheSwitch_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("whenOff");
    QTest::newRow("with the inspector") << m_started << u"main"_s;
    QTest::newRow("linked, but never started") << m_untouched << u"session"_s;
    QTest::newRow("without it: NoOp") << m_noOp << u"session"_s;
    QTest::newRow("without it: QUORVIX_ENABLED=OFF") << m_released << u"session"_s;
}

/// Prints the table that the README shows.
void NoOpTest::completesOnTheSameThreadWithTheSwitch()
{
    QFETCH(const QStringList, lines);
    QFETCH(const QString, whenOff);
    for (const auto &[state, expected] : {std::pair(u"off"_s, whenOff), {u"on"_s, u"main"_s}}) {
        for (const QString &outcome : {u"success"_s, u"error"_s, u"cancelled"_s}) {
            const QString prefix = u"thread: switch %1 %2 "_s.arg(state, outcome);
            QCOMPARE(linesWith(lines, prefix), QStringList(prefix + expected));
        }
        qInfo("switch %-3s: handlers run on the %s thread", qPrintable(state), qPrintable(expected));
    }
}

void NoOpTest::containsNothingOfTheInspector()
{
    // In the core, the same check finds a lot.
    for (const auto &[program, isExpected] : {std::pair(QStringLiteral(QUORVIX_CONSUMER_NO_OP), 0),
                                              {released(u"Consumer"_s), 0},
                                              {QStringLiteral(QUORVIX_CORE), 1}}) {
        QProcess script;
        script.setProcessChannelMode(QProcess::MergedChannels);
        script.start(QStringLiteral(QUORVIX_SCRIPT),
                     {u"program"_s, program, QStringLiteral(QUORVIX_HEADERS)});
        QVERIFY(script.waitForFinished(60'000));
        QVERIFY2(script.exitCode() == isExpected, script.readAll().constData());
    }
}

void NoOpTest::loadsOnlyWhatQtAloneLoads()
{
    const QStringList loaded = linesWith(m_noOp, u"library: "_s);
    if (loaded.isEmpty())
        QSKIP("This system does not tell which libraries are loaded");
    QCOMPARE(linesWith(loaded, u"Qt6Network"_s).size(), 1);
    for (const QString &library :
         {u"Qt6Gui"_s, u"Qt6Qml"_s, u"Qt6Quick"_s, u"Qt6Svg"_s, u"simdjson"_s, u"libQuorvix"_s})
        QCOMPARE(linesWith(loaded, library), QStringList());
    QVERIFY(!linesWith(m_started, u"Qt6Quick"_s).isEmpty());
}

qint64 NoOpTest::strippedSize(const QString &program)
{
    const QTemporaryDir folder;
    const QString copy = folder.filePath(u"stripped"_s);
    return QProcess::execute(u"strip"_s, {u"-o"_s, copy, released(program)}) == 0 ? QFileInfo(copy).size()
                                                                                  : -1;
}

void NoOpTest::addsLittle_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<int>("kilobytes");
    QTest::newRow("a manager") << u"Captured"_s << 8;
    QTest::newRow("everything, the session too") << u"Consumer"_s << 350;
}

/// Compares optimized programs, which NoOpReleaseTest has built.
void NoOpTest::addsLittle()
{
    QFETCH(const QString, program);
    QFETCH(const int, kilobytes);
    const qint64 ours = strippedSize(program);
    const qint64 alone = strippedSize(u"Plain"_s);
    QVERIFY2(ours > 0 && alone > 0, "NoOpReleaseTest builds these programs");
    qInfo("%.1f KB, %.1f KB with Qt alone: adds %.1f KB", double(ours) / 1024, double(alone) / 1024,
          double(ours - alone) / 1024);
    QVERIFY(ours - alone < kilobytes * 1024);
}

QTEST_GUILESS_MAIN(NoOpTest)
#include "NoOpTest.moc"
