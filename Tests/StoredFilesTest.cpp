#include "Tests/ScriptedServer.h"
#include "Tests/TestKit.h"

#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QStandardPaths>
#include <QtTest/QTest>

#include <optional>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

using Modes = std::optional<uint>;

/// A row of a table of SECURITY.md.
struct Promise
{
    QString pattern;
    QRegularExpression paths;
    /// The permissions; absent if the document does not promise any.
    Modes mode;
    bool isOurs = false;
};

/// A call that creates or changes a file, or connects.
struct Act
{
    QString what;
    QString path;
    Modes mode;
    bool isConnection = false;
};

Modes modeOf(const QString &path)
{
    struct stat found = {};
    return ::lstat(QFile::encodeName(path).constData(), &found) == 0 ? Modes(found.st_mode & 0777) : Modes();
}

Modes octal(const QString &text)
{
    bool isNumber = false;
    const uint mode = text.toUInt(&isNumber, 8);
    return isNumber ? Modes(mode) : Modes();
}

/// What a line of strace says, if it is about something that has changed.
std::optional<Act> actIn(const QString &line)
{
    static const QRegularExpression call(u"^(\\w+)\\((.*)\\)\\s+= (-?\\d+)"_s);
    static const QRegularExpression place(u"(?:(?:AT_FDCWD|\\d+)<([^>]*)>, )?\"((?:[^\"\\\\]|\\\\.)*)\""_s);
    static const QRegularExpression descriptor(u"^\\d+<([^>]*)>"_s);
    static const QRegularExpression octals(u"\\b(0[0-7]{3,4})\\b"_s);
    static const QRegularExpression peer(u"sa_family=(AF_INET6?|AF_UNIX), (.*)\\}"_s);
    const auto match = call.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    const QString name = match.captured(1);
    const QString arguments = match.captured(2);
    if (name == "connect"_L1 || name == "sendto"_L1 || name == "sendmsg"_L1) {
        const auto to = peer.match(arguments);
        return to.hasMatch() ? std::optional(Act{line, to.captured(2), {}, true}) : std::nullopt;
    }
    static const QRegularExpression writing(u"O_WRONLY|O_RDWR|O_CREAT|O_TRUNC"_s);
    const bool opens = name.startsWith("open"_L1);
    // A file without a name exists for others only when linkat() gives it one.
    if (match.captured(3).startsWith(u'-') ||
        (opens && (!arguments.contains(writing) || arguments.contains("O_TMPFILE"_L1))))
        return std::nullopt;
    QString path = descriptor.match(arguments).captured(1);
    for (auto places = place.globalMatch(arguments); places.hasNext();) {
        const auto found = places.next();
        path = QDir::cleanPath(QDir(found.captured(1)).filePath(found.captured(2)));
    }
    QString last;
    for (auto modes = octals.globalMatch(arguments.section(u'"', -1)); modes.hasNext();)
        last = modes.next().captured(1);
    return Act{line, path, octal(last), false};
}

} // namespace

/// Holds a program with the inspector to what SECURITY.md says of files and connections.
class StoredFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void createsWhatIsPromised_data();
    void createsWhatIsPromised();
    void seesWhatStrays();

private:
    void readPromises();
    /// Runs a function of the host, and returns what it has done.
    [[nodiscard]] QList<Act> observe(const QString &function, const QString &archive = {});
    /// What breaks the promises; @p kept gets the patterns that were of use.
    [[nodiscard]] QStringList complaints(const QList<Act> &acts, QSet<QString> &kept) const;

    ScriptedServer m_server;
    std::optional<QTemporaryDir> m_home;
    QList<Promise> m_promises;
    QMap<QString, QString> m_places;
};

void StoredFilesTest::initTestCase()
{
    QVERIFY2(!QStandardPaths::findExecutable(u"strace"_s).isEmpty(), "strace is not installed");
    if (QProcess::execute(u"strace"_s, {u"-o"_s, u"/dev/null"_s, u"true"_s}) != 0)
        QSKIP("NOT TESTED: this machine does not permit to observe a process");
    m_server.answer(
        "*", {{{httpAnswer("200 OK", "{\"name\":\"secret\"}", "Content-Type: application/json\r\n")}}});
}

void StoredFilesTest::init()
{
    m_home.emplace();
    const QDir home(m_home->path());
    for (const QString &folder : {u"tmp"_s, u"run"_s})
        QVERIFY(home.mkdir(folder));
    // As shared as /tmp is.
    QCOMPARE(::chmod(qPrintable(home.filePath(u"tmp"_s)), 01777), 0);
    QCOMPARE(::chmod(qPrintable(home.filePath(u"run"_s)), 0700), 0);
    m_places = {
        {u"$TMPDIR"_s, home.filePath(u"tmp"_s)},          {u"$HOME"_s, home.path()},
        {u"$XDG_RUNTIME_DIR"_s, home.filePath(u"run"_s)}, {u"$CONFIG"_s, home.filePath(u".config"_s)},
        {u"$SAVED"_s, home.filePath(u"saved.har"_s)},     {u"$QUORVIX_HAR"_s, home.filePath(u"exit.har"_s)}};
    readPromises();
}

void StoredFilesTest::readPromises()
{
    m_promises.clear();
    static const QRegularExpression row(u"^\\| `([^`]+)` \\| ([^|]+) \\|"_s);
    const QString document = QString::fromUtf8(contentOf(QStringLiteral(QUORVIX_SECURITY)));
    bool isOurs = true;
    for (const QString &line : document.split(u'\n')) {
        isOurs = isOurs && !line.startsWith("Qt and the libraries"_L1);
        const auto match = row.match(line);
        if (!match.hasMatch())
            continue;
        QString path = match.captured(1);
        for (auto it = m_places.cbegin(); it != m_places.cend(); ++it)
            path.replace(it.key(), it.value());
        path.replace("quorvix-UID"_L1, u"quorvix-%1"_s.arg(::geteuid()));
        if (!path.startsWith(u'/'))
            path.prepend(u"**/"_s);
        if (path.endsWith(u'/'))
            path.chop(1);
        QString paths = QRegularExpression::escape(path);
        paths.replace("\\*\\*"_L1, ".+"_L1).replace("\\*"_L1, "[^/]+"_L1);
        m_promises.append({match.captured(1), QRegularExpression(QRegularExpression::anchoredPattern(paths)),
                           octal(match.captured(2)), isOurs});
    }
    QVERIFY(m_promises.size() > 15);
}

QList<Act> StoredFilesTest::observe(const QString &function, const QString &archive)
{
    const QDir home(m_home->path());
    const QString log = home.filePath(u"trace"_s);
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"DBUS_SESSION_BUS_ADDRESS"_s, u"XDG_CACHE_HOME"_s, u"XDG_CONFIG_HOME"_s})
        environment.remove(name);
    for (const QString &name : {u"HOME"_s, u"TMPDIR"_s, u"XDG_RUNTIME_DIR"_s, u"SAVED"_s})
        environment.insert(name, m_places[u'$' + name]);
    environment.insert(u"QUORVIX_TEST_URL"_s, m_server.url(u"/v1/users/42"_s).toString());
    environment.insert(u"QUORVIX_HAR"_s, archive);
    // The search for leaks observes the process, too, and there can be one observer only.
    environment.insert(u"ASAN_OPTIONS"_s, environment.value(u"ASAN_OPTIONS"_s) + u":detect_leaks=0"_s);
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::MergedChannels);
    // One file for each thread, because calls of several would be mixed up in one.
    process.start(
        u"strace"_s,
        {u"-ff"_s, u"--seccomp-bpf"_s, u"-y"_s, u"-s"_s, u"4096"_s, u"-o"_s, log, u"-e"_s,
         u"trace=open,openat,creat,rename,renameat,renameat2,mkdir,mkdirat,chmod,fchmod,fchmodat,"
         "link,linkat,symlink,symlinkat,mknod,mknodat,truncate,unlink,unlinkat,rmdir,connect,sendto,"
         "sendmsg"_s,
         QStringLiteral(QUORVIX_HOST), function});
    process.waitForFinished(120'000);
    const QByteArray output = process.readAll();
    if (process.exitCode() != 0)
        qWarning("%s", output.constData());
    QList<Act> acts;
    for (const QFileInfo &file : home.entryInfoList({u"trace.*"_s}, QDir::Files)) {
        for (const QString &line : QString::fromUtf8(contentOf(file.filePath())).split(u'\n')) {
            if (auto act = actIn(line))
                acts.append(*act);
        }
    }
    return process.exitCode() == 0 ? acts : QList<Act>();
}

QStringList StoredFilesTest::complaints(const QList<Act> &acts, QSet<QString> &kept) const
{
    const QString server = u"htons(%1), sin_addr=inet_addr(\"127.0.0.1\")"_s.arg(m_server.port());
    QStringList complaints;
    for (const Act &act : acts) {
        if (act.isConnection) {
            // The C library asks the system's cache for the names of users.
            if (!act.path.contains(server) && !act.path.contains("/nscd/"_L1))
                complaints += u"connection: "_s + act.what;
            continue;
        }
        const auto promise = std::find_if(m_promises.cbegin(), m_promises.cend(), [&](const Promise &one) {
            return one.paths.match(act.path).hasMatch();
        });
        if (promise == m_promises.cend()) {
            complaints += u"unnamed: "_s + act.what;
            continue;
        }
        if (promise->isOurs)
            kept += promise->pattern;
        const Modes mode = modeOf(act.path);
        if (promise->mode && ((act.mode && (*act.mode & ~*promise->mode)) || (mode && mode != promise->mode)))
            complaints += u"mode: "_s + act.what;
    }
    return complaints;
}

void StoredFilesTest::createsWhatIsPromised_data()
{
    QTest::addColumn<QString>("function");
    QTest::addColumn<QString>("files");
    QTest::newRow("nothing without an export") << u"captures"_s << QString();
    QTest::newRow("exports") << u"exports"_s << u"\\$TMPDIR.*|\\$SAVED|\\.Quorvix-\\*"_s;
    QTest::newRow("archive at the end") << u"captures, QUORVIX_HAR"_s << u"\\$QUORVIX_HAR|\\.Quorvix-\\*"_s;
    QTest::newRow("settings") << u"moves"_s << u"\\$CONFIG.*"_s;
}

void StoredFilesTest::createsWhatIsPromised()
{
    QFETCH(const QString, function);
    QFETCH(const QString, files);
    const QString archive = function.contains("QUORVIX_HAR"_L1) ? m_places[u"$QUORVIX_HAR"_s] : QString();
    const QList<Act> acts = observe(function.section(u',', 0, 0), archive);
    const auto connects = [](const Act &act) {
        return act.isConnection;
    };
    QVERIFY(std::any_of(acts.cbegin(), acts.cend(), connects)); // to the server, or nothing was observed
    QSet<QString> kept;
    const QStringList found = complaints(acts, kept);
    QVERIFY2(found.isEmpty(), qPrintable(u'\n' + found.join(u'\n')));
    // All of the files that belong to this, and no others.
    const QRegularExpression wanted(QRegularExpression::anchoredPattern(files));
    for (const Promise &promise : std::as_const(m_promises)) {
        if (promise.isOurs)
            QVERIFY2(kept.contains(promise.pattern) == wanted.match(promise.pattern).hasMatch(),
                     qPrintable(promise.pattern));
    }
}

void StoredFilesTest::seesWhatStrays()
{
    QSet<QString> kept;
    const QStringList found = complaints(observe(u"strays"_s), kept);
    QCOMPARE(found.filter(u"unnamed: "_s).size(), 1);
    QCOMPARE(found.filter(u"mode: "_s).size(), 1);
    QCOMPARE(found.filter(u"connection: "_s).size(), 1);
}

QTEST_GUILESS_MAIN(StoredFilesTest)
#include "StoredFilesTest.moc"
