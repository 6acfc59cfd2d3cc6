#include "Tests/TestKit.h"

#include "Platform/ReplaceFile.h"
#include "Quorvix/QXTemporaryFile.h"

#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <optional>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

constexpr auto onlyOwner = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
constexpr auto others = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ExeGroup |
                        QFileDevice::ReadOther | QFileDevice::WriteOther | QFileDevice::ExeOther;
/// The numbers of users whom no system needs to know.
constexpr uid_t thisUser = 61'001;
constexpr uid_t otherUser = 61'002;

FileWriter writing(const QByteArray &bytes)
{
    return [bytes](QIODevice &device) -> std::optional<NSError> {
        device.write(bytes);
        return std::nullopt;
    };
}

mode_t modeOf(const QString &path)
{
    struct stat found = {};
    return ::lstat(QFile::encodeName(path).constData(), &found) == 0 ? found.st_mode & 07777 : 0;
}

QString usualFolder()
{
    return u"quorvix-%1"_s.arg(::geteuid());
}

/// Whether the export succeeds in a process of that user's.
template<typename Export>
bool succeedsAs(uid_t user, Export exportFile)
{
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(::setgid(user) == 0 && ::setuid(user) == 0 && exportFile() ? 0 : 1);
    int status = -1;
    return child > 0 && ::waitpid(child, &status, 0) == child && status == 0;
}

} // namespace

class TemporaryFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void isItsOwnersOnly();
    void replacesALinkButNotItsTarget();
    void leavesNothingAfterAnError();
    void refusesFileNames();
    void failsWhereItCannotWrite();
    void writesTextUnderItsFolder();
    void refusesPaths();
    void doesNotFollowALinkOnTheWay();
    void hasItsOwnFolderInASharedOne_data();
    void hasItsOwnFolderInASharedOne();
    void otherUsersAreNotInTheWay_data();
    void otherUsersAreNotInTheWay();
    void chosenFiles_data();
    void chosenFiles();
    void chosenFilesOfOtherUsers_data();
    void chosenFilesOfOtherUsers();

private:
    /// Runs commands of a shell in the temporary directory. $U is this user's usual folder.
    [[nodiscard]] bool prepare(const QString &commands) const;

    std::optional<TemporaryFolder> m_temporary;
};

void TemporaryFileTest::init()
{
    m_temporary.emplace();
    QVERIFY(m_temporary->isInForce());
}

bool TemporaryFileTest::prepare(const QString &commands) const
{
    const QString all = u"cd '%1' && U=%2 && %3"_s.arg(m_temporary->dir().path(), usualFolder(), commands);
    return ::system(qPrintable(all)) == 0;
}

void TemporaryFileTest::isItsOwnersOnly()
{
    QFileDevice::Permissions whileWriting;
    const auto url = QXTemporaryFile::write(u"a.har"_s, [&](QIODevice &device) -> std::optional<NSError> {
        device.write("secret");
        whileWriting = qobject_cast<QFileDevice *>(&device)->permissions();
        return std::nullopt;
    });
    QVERIFY(url);
    QCOMPARE(whileWriting & (onlyOwner | others), onlyOwner);
    QCOMPARE(url.value(), QUrl::fromLocalFile(m_temporary->path(u"a.har"_s)));
    QCOMPARE(modeOf(url.value().toLocalFile()), mode_t(0600));
    QCOMPARE(m_temporary->files(), QStringList{u"a.har=secret"_s});
}

void TemporaryFileTest::replacesALinkButNotItsTarget()
{
    QVERIFY(QXTemporaryFile::write(u"target"_s, writing("precious")));
    QVERIFY(QFile::link(m_temporary->path(u"target"_s), m_temporary->path(u"a"_s)));

    QVERIFY(QXTemporaryFile::write(u"a"_s, writing("new")));
    QVERIFY(!QFileInfo(m_temporary->path(u"a"_s)).isSymLink());
    QCOMPARE(m_temporary->files(), (QStringList{u"a=new"_s, u"target=precious"_s}));
}

void TemporaryFileTest::leavesNothingAfterAnError()
{
    QVERIFY(QXTemporaryFile::write(u"a"_s, writing("whole")));
    const NSError failure{NSCocoaErrorDomain, NSFileWriteUnknownError, u"no more"_s};
    const auto halfWriting = [&](QIODevice &device) -> std::optional<NSError> {
        device.write("half");
        return failure;
    };
    const auto url = QXTemporaryFile::write(u"a"_s, halfWriting);
    QVERIFY(!url);
    QCOMPARE(url.error(), failure);
    QCOMPARE(m_temporary->files(), QStringList{u"a=whole"_s});
}

void TemporaryFileTest::refusesFileNames()
{
    for (const QString &name : {QString(), u"."_s, u".."_s, u"a/b"_s, u"..\\a"_s, u"a.har\u0000.exe"_s}) {
        const auto url = QXTemporaryFile::write(name, writing("x"));
        QVERIFY2(!url, qPrintable(name));
        QCOMPARE(url.error().code, NSFileWriteInvalidFileNameError);
        QCOMPARE(m_temporary->files(), QStringList());
    }
}

void TemporaryFileTest::failsWhereItCannotWrite()
{
    QVERIFY(m_temporary->dir().mkdir(u"taken"_s));
    const QByteArray temporary = qgetenv("TMPDIR");
    for (const auto &[folder, name] : {std::pair{temporary, u"taken"_s},
                                       {temporary, QString(300, u'x')},
                                       {temporary + "/missing", u"a"_s},
                                       {"relative", u"a"_s}}) {
        qputenv("TMPDIR", folder);
        const auto url = QXTemporaryFile::write(name, writing("x"));
        qputenv("TMPDIR", temporary);
        QVERIFY2(!url, folder + qPrintable(name));
        QCOMPARE(url.error().domain, NSCocoaErrorDomain);
        QVERIFY(!url.error().localizedDescription.isEmpty());
        QCOMPARE(m_temporary->files(), QStringList());
    }
}

void TemporaryFileTest::writesTextUnderItsFolder()
{
    const QString written = u"Quorvix/mocks/:a b/{id}_GET.json"_s;
    for (const char *text : {"a long first text", "\u00e9\n"}) {
        const auto url = QXTemporaryFile::writeText(u"//mocks/:a b/{id}_GET.json"_s, text);
        QVERIFY(url);
        QCOMPARE(url.value(), QUrl::fromLocalFile(m_temporary->path(written)));
    }
    QCOMPARE(m_temporary->files(), QStringList(written + u"=\u00e9\n"_s));
    for (const QString &folder : {u"Quorvix"_s, u"Quorvix/mocks"_s, u"Quorvix/mocks/:a b"_s})
        QCOMPARE(modeOf(m_temporary->path(folder)), mode_t(0700));
}

void TemporaryFileTest::refusesPaths()
{
    for (const QString &path : {QString(), u"a/"_s, u"/../a"_s, u"a/../../b"_s, u"a/.."_s, u"a\\..\\b"_s}) {
        const auto url = QXTemporaryFile::writeText(path, "x");
        QVERIFY2(!url, qPrintable(path));
        QCOMPARE(url.error().code, NSFileWriteInvalidFileNameError);
        QCOMPARE(m_temporary->files(), QStringList());
    }
}

void TemporaryFileTest::doesNotFollowALinkOnTheWay()
{
    QVERIFY(prepare(u"mkdir elsewhere && ln -s elsewhere Quorvix"_s));
    QVERIFY(!QXTemporaryFile::writeText(u"a"_s, "x"));
    QVERIFY(prepare(u"rm Quorvix && mkdir Quorvix && ln -s ../elsewhere Quorvix/mocks"_s));
    QVERIFY(!QXTemporaryFile::writeText(u"mocks/a"_s, "x"));
    QCOMPARE(m_temporary->files(), QStringList());
}

void TemporaryFileTest::hasItsOwnFolderInASharedOne_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<bool>("isUsual");
    QTest::newRow("new") << u"chmod 1777 ."_s << true;
    QTest::newRow("not sticky") << u"chmod 777 ."_s << true;
    QTest::newRow("of a group") << u"chmod 770 ."_s << true;
    QTest::newRow("may not be listed") << u"chmod 1733 ."_s << true;
    QTest::newRow("group is handed down") << u"chmod 3777 ."_s << true;
    QTest::newRow("used before") << u"chmod 1777 . && mkdir -m 700 $U"_s << true;
    QTest::newRow("readable by others") << u"chmod 1777 . && mkdir -m 755 $U"_s << false;
    QTest::newRow("a link") << u"chmod 1777 . && mkdir -m 700 own && ln -s own $U"_s << false;
    QTest::newRow("a link to nothing") << u"chmod 1777 . && ln -s gone $U"_s << false;
    QTest::newRow("a file") << u"chmod 1777 . && touch $U"_s << false;
    QTest::newRow("of everybody") << u"chmod 1777 . && mkdir -m 1777 $U"_s << false;
}

void TemporaryFileTest::hasItsOwnFolderInASharedOne()
{
    QFETCH(const QString, before);
    QFETCH(const bool, isUsual);
    QVERIFY(prepare(before));
    const QStringList others = m_temporary->files();
    const auto archive = QXTemporaryFile::write(u"a.har"_s, writing("secret"));
    const auto text = QXTemporaryFile::writeText(u"mocks/a"_s, "x");
    QVERIFY(archive && text);

    const QString folder = QFileInfo(archive.value().toLocalFile()).path();
    QCOMPARE(text.value().toLocalFile(), folder + u"/Quorvix/mocks/a"_s); // one folder for all exports
    QCOMPARE(QFileInfo(folder).path(), m_temporary->dir().path());
    QCOMPARE(QFileInfo(folder).fileName() == usualFolder(), isUsual);
    QVERIFY(QFileInfo(folder).fileName().startsWith(usualFolder()));
    QCOMPARE(modeOf(folder) & 0777, mode_t(0700));
    QCOMPARE(modeOf(archive.value().toLocalFile()), mode_t(0600));
    QCOMPARE(m_temporary->files().size(), others.size() + 2);

    // A folder that was cleaned away is made again.
    QVERIFY(QDir(folder).removeRecursively());
    QVERIFY(QXTemporaryFile::write(u"a.har"_s, writing("secret")));
}

void TemporaryFileTest::otherUsersAreNotInTheWay_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<bool>("succeeds");
    const QString shared = u"chown 0:0 . && chmod 1777 . && "_s;
    QTest::newRow("fixed name") << shared + u"mkdir -m 700 Quorvix && chown $O Quorvix"_s << true;
    QTest::newRow("folder") << shared + u"mkdir -m 700 $U && chown $O $U"_s << true;
    QTest::newRow("open folder") << shared + u"mkdir -m 1777 $U && chown $O $U"_s << true;
    QTest::newRow("file") << shared + u"touch $U && chown $O $U"_s << true;
    QTest::newRow("link to its folder")
        << shared + u"mkdir -m 777 trap && chown $O trap && ln -s trap $U && chown -h $O $U"_s << true;
    QTest::newRow("link to this user's")
        << shared + u"mkdir -m 700 own && chown $T own && ln -s own $U"_s << true;
    QTest::newRow("its own temporary directory") << u"chown $O . && chmod 777 ."_s << true;
    QTest::newRow("unwritable") << u"chown 0:0 . && chmod 755 ."_s << false;
    QTest::newRow("invisible") << u"chown 0:0 . && chmod 700 ."_s << false;
    QTest::newRow("missing") << u"cd .. && rm -r tmp"_s << false;
}

void TemporaryFileTest::otherUsersAreNotInTheWay()
{
    if (::geteuid() != 0)
        QSKIP("NOT TESTED: only root can act as two users");
    QFETCH(QString, before);
    QFETCH(const bool, succeeds);
    // Everybody may pass through the folders around.
    QVERIFY(prepare(u"chmod 711 .. ../.. && "_s + before.replace(u"$U"_s, u"quorvix-%1"_s.arg(thisUser))
                                                      .replace(u"$O"_s, QString::number(otherUser))
                                                      .replace(u"$T"_s, QString::number(thisUser))));
    const auto exportBoth = [&] {
        const auto archive = QXTemporaryFile::write(u"a.har"_s, writing("secret"));
        const auto text = QXTemporaryFile::writeText(u"mocks/a"_s, "secret");
        if (!succeeds)
            return !archive && !text && !archive.error().localizedDescription.isEmpty();
        const QString folder = archive ? QFileInfo(archive.value().toLocalFile()).path() : QString();
        return text && QFileInfo(folder).ownerId() == thisUser && modeOf(folder) == 0700 &&
               contentOf(folder + u"/Quorvix/mocks/a"_s) == "secret";
    };
    QVERIFY(succeedsAs(thisUser, exportBoth));
    // Nothing is where the other user wanted it, and nothing of this user's lies open.
    const QRegularExpression own(u"^%1/quorvix-%2(-\\w+)?(/|$)"_s.arg(
        QRegularExpression::escape(m_temporary->dir().path()), QString::number(thisUser)));
    QDirIterator entries(m_temporary->dir().path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        const QFileInfo entry(entries.next());
        if (entry.ownerId() == thisUser)
            QVERIFY2(own.match(entry.filePath()).hasMatch() && modeOf(entry.filePath()) == 0600,
                     qPrintable(entry.filePath()));
    }
}

void TemporaryFileTest::chosenFiles_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("written");
    QTest::addColumn<uint>("mode");
    QTest::newRow("new") << u"true"_s << u"a.har"_s << 0600U;
    QTest::newRow("new, nothing is forbidden") << u"umask 0"_s << u"a.har"_s << 0600U;
    QTest::newRow("existing") << u"touch a.har && chmod 640 a.har"_s << u"a.har"_s << 0640U;
    QTest::newRow("another name") << u"touch b && chmod 644 b && ln b a.har"_s << u"a.har"_s << 0600U;
    QTest::newRow("link") << u"touch b && chmod 644 b && ln -s b a.har"_s << u"b"_s << 0644U;
    QTest::newRow("link to nothing yet") << u"mkdir c && ln -s c/b a.har"_s << u"c/b"_s << 0600U;
    QTest::newRow("backslash") << u"ln -s 'b\\c' a.har"_s << u"b\\c"_s << 0600U;
}

void TemporaryFileTest::chosenFiles()
{
    QFETCH(const QString, before);
    QFETCH(const QString, written);
    QFETCH(const uint, mode);
    QVERIFY(prepare(before));
    const mode_t umask = ::umask(0);
    const auto error = replaceFile(m_temporary->path(u"a.har"_s), writing("secret"));
    ::umask(umask);
    QCOMPARE(error, std::nullopt);
    QVERIFY(m_temporary->files().contains(written + u"=secret"_s));
    QCOMPARE(QFileInfo(m_temporary->path(u"a.har"_s)).isSymLink(), written != "a.har"_L1);
    QCOMPARE(modeOf(m_temporary->path(written)), mode_t(mode));

    const NSError failure{NSCocoaErrorDomain, NSFileWriteUnknownError, u"no more"_s};
    const QStringList files = m_temporary->files();
    QCOMPARE(replaceFile(m_temporary->path(u"a.har"_s), [&](QIODevice &) { return std::optional(failure); }),
             failure);
    QCOMPARE(m_temporary->files(), files);
}

void TemporaryFileTest::chosenFilesOfOtherUsers_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<bool>("succeeds");
    QTest::newRow("link to this user's file")
        << u"install -m 600 -o $T /dev/null own && ln -s own a.har && chown -h $O a.har"_s << false;
    QTest::newRow("pipe") << u"mkfifo -m 666 a.har && chown $O a.har && { cat a.har >got & }"_s << false;
    QTest::newRow("open file") << u"install -m 666 -o $O /dev/null a.har"_s << false;
    QTest::newRow("open file where all may rename")
        << u"chmod 777 . && install -m 666 -o $O /dev/null a.har"_s << true;
    QTest::newRow("protected file") << u"chown $T . && install -m 400 -o $T /dev/null a.har"_s << false;
    QTest::newRow("device of the system") << u"ln -s /dev/null a.har"_s << true;
    QTest::newRow("this user's link") << u"ln -s b a.har && chown -h $T a.har"_s << true;
}

void TemporaryFileTest::chosenFilesOfOtherUsers()
{
    if (::geteuid() != 0)
        QSKIP("NOT TESTED: only root can act as two users");
    QFETCH(QString, before);
    QFETCH(const bool, succeeds);
    QVERIFY(prepare(
        u"chmod 711 .. ../.. && chmod 1777 . && "_s +
        before.replace(u"$O"_s, QString::number(otherUser)).replace(u"$T"_s, QString::number(thisUser))));
    const QString path = m_temporary->path(u"a.har"_s);
    QVERIFY(succeedsAs(thisUser, [&] { return !replaceFile(path, writing("secret")) == succeeds; }));
    if (before.contains(u"mkfifo"_s)) {
        // The reader of the pipe goes when the pipe has a writer that ends.
        const int writer = ::open(QFile::encodeName(path).constData(), O_WRONLY);
        ::close(writer);
    }
    const QDir dir = m_temporary->dir();
    for (const QFileInfo &file : dir.entryInfoList(QDir::Files | QDir::Hidden)) {
        const bool isSecret = !file.isSymLink() && contentOf(file.filePath()) == "secret";
        QVERIFY2(!isSecret || (succeeds && modeOf(file.filePath()) == 0600), qPrintable(file.filePath()));
    }
}

QTEST_GUILESS_MAIN(TemporaryFileTest)
#include "TemporaryFileTest.moc"
