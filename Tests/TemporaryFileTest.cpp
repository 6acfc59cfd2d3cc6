#include "Quorvix/QXTemporaryFile.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr auto onlyOwner = QFileDevice::ReadOwner | QFileDevice::WriteOwner;
constexpr auto others = QFileDevice::ReadGroup | QFileDevice::WriteGroup | QFileDevice::ExeGroup |
                        QFileDevice::ReadOther | QFileDevice::WriteOther | QFileDevice::ExeOther;

QXTemporaryFile::Writer writing(const QByteArray &bytes)
{
    return [bytes](QIODevice &device) -> std::optional<NSError> {
        device.write(bytes);
        return std::nullopt;
    };
}

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}

QStringList entriesOf(const QDir &folder)
{
    return folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace

class TemporaryFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void isItsOwnersOnly();
    void replacesAFile();
    void replacesALinkButNotItsTarget();
    void leavesNothingAfterAnError();
    void refusesFileNames_data();
    void refusesFileNames();
    void failsWhereItCannotWrite_data();
    void failsWhereItCannotWrite();
    void writesTextUnderItsFolder_data();
    void writesTextUnderItsFolder();
    void refusesPaths_data();
    void refusesPaths();
    void doesNotFollowALinkOnTheWay();

private:
    [[nodiscard]] QDir folder() const { return QDir(m_folder->path()); }

    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_formerTemporaryFolder;
};

void TemporaryFileTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_formerTemporaryFolder = qgetenv("TMPDIR");
    qputenv("TMPDIR", QFile::encodeName(m_folder->path()));
    QCOMPARE(QDir::tempPath(), m_folder->path());
}

void TemporaryFileTest::cleanup()
{
    qputenv("TMPDIR", m_formerTemporaryFolder);
    m_folder.reset();
}

void TemporaryFileTest::isItsOwnersOnly()
{
    QFileDevice::Permissions whileWriting;
    const auto url =
        QXTemporaryFile::write(folder(), u"a.har"_s, [&](QIODevice &device) -> std::optional<NSError> {
            device.write("secret");
            whileWriting = qobject_cast<QFileDevice *>(&device)->permissions();
            return std::nullopt;
        });
    QVERIFY(url);
    QVERIFY(!(whileWriting & others));
    QCOMPARE(url.value(), QUrl::fromLocalFile(folder().filePath(u"a.har"_s)));
    const QFileInfo info(url.value().toLocalFile());
    QVERIFY(!(info.permissions() & others));
    QCOMPARE(info.permissions() & onlyOwner, onlyOwner);
    QCOMPARE(contentOf(info.filePath()), "secret");
    QCOMPARE(entriesOf(folder()), QStringList{u"a.har"_s});
}

void TemporaryFileTest::replacesAFile()
{
    QVERIFY(QXTemporaryFile::write(folder(), u"a"_s, writing("a long first content")));
    QVERIFY(QXTemporaryFile::write(folder(), u"a"_s, writing("second")));
    QCOMPARE(contentOf(folder().filePath(u"a"_s)), "second");
}

void TemporaryFileTest::replacesALinkButNotItsTarget()
{
    const QString target = folder().filePath(u"target"_s);
    QVERIFY(QXTemporaryFile::write(folder(), u"target"_s, writing("precious")));
    QVERIFY(QFile::link(target, folder().filePath(u"a"_s)));

    QVERIFY(QXTemporaryFile::write(folder(), u"a"_s, writing("new")));
    QCOMPARE(contentOf(target), "precious");
    QVERIFY(!QFileInfo(folder().filePath(u"a"_s)).isSymLink());
    QCOMPARE(contentOf(folder().filePath(u"a"_s)), "new");
}

void TemporaryFileTest::leavesNothingAfterAnError()
{
    QVERIFY(QXTemporaryFile::write(folder(), u"a"_s, writing("whole")));
    const NSError failure{NSCocoaErrorDomain, NSFileWriteUnknownError, u"no more"_s};
    const auto url =
        QXTemporaryFile::write(folder(), u"a"_s, [&](QIODevice &device) -> std::optional<NSError> {
            device.write("half");
            return failure;
        });
    QVERIFY(!url);
    QCOMPARE(url.error(), failure);
    QCOMPARE(contentOf(folder().filePath(u"a"_s)), "whole");
    QCOMPARE(entriesOf(folder()), QStringList{u"a"_s});
}

void TemporaryFileTest::refusesFileNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("empty") << QString();
    QTest::newRow("this folder") << u"."_s;
    QTest::newRow("its parent") << u".."_s;
    QTest::newRow("slash") << u"a/b"_s;
    QTest::newRow("up and down") << u"../a"_s;
    QTest::newRow("backslash") << u"..\\a"_s;
    QTest::newRow("cut at a NUL") << u"a.har\u0000.exe"_s;
}

void TemporaryFileTest::refusesFileNames()
{
    QFETCH(const QString, name);
    const auto url = QXTemporaryFile::write(folder(), name, writing("x"));
    QVERIFY(!url);
    QCOMPARE(url.error().code, NSFileWriteInvalidFileNameError);
    QVERIFY(entriesOf(folder()).isEmpty());
}

void TemporaryFileTest::failsWhereItCannotWrite_data()
{
    QTest::addColumn<QString>("folderName");
    QTest::addColumn<QString>("name");
    QTest::newRow("no such folder") << u"missing"_s << u"a"_s;
    QTest::newRow("a folder has the name") << u"."_s << u"taken"_s;
    QTest::newRow("name too long") << u"."_s << QString(300, u'x');
}

void TemporaryFileTest::failsWhereItCannotWrite()
{
    QFETCH(const QString, folderName);
    QFETCH(const QString, name);
    QVERIFY(folder().mkdir(u"taken"_s));
    const auto url = QXTemporaryFile::write(QDir(folder().filePath(folderName)), name, writing("x"));
    QVERIFY(!url);
    QCOMPARE(url.error().domain, NSCocoaErrorDomain);
    QVERIFY(!url.error().localizedDescription.isEmpty());
    QCOMPARE(entriesOf(folder()), QStringList{u"taken"_s});
}

void TemporaryFileTest::writesTextUnderItsFolder_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("written");
    QTest::newRow("file") << u"Model.swift"_s << u"Quorvix/Model.swift"_s;
    QTest::newRow("folders") << u"mocks/custom/a.json"_s << u"Quorvix/mocks/custom/a.json"_s;
    QTest::newRow("leading slash") << u"/mocks/a.json"_s << u"Quorvix/mocks/a.json"_s;
    QTest::newRow("absolute after one slash is lost") << u"//etc//a"_s << u"Quorvix/etc/a"_s;
    QTest::newRow("braces and blanks") << u"a b/{id}_GET.json"_s << u"Quorvix/a b/{id}_GET.json"_s;
}

void TemporaryFileTest::writesTextUnderItsFolder()
{
    QFETCH(const QString, path);
    QFETCH(const QString, written);
    const QByteArray text = u"\u00e9\n"_s.toUtf8();
    for (int twice = 0; twice < 2; ++twice) {
        const auto url = QXTemporaryFile::writeText(path, text);
        QVERIFY(url);
        QCOMPARE(url.value(), QUrl::fromLocalFile(folder().filePath(written)));
    }
    QCOMPARE(contentOf(folder().filePath(written)), text);
    for (QString parent = written; parent.contains(u'/');) {
        parent.truncate(parent.lastIndexOf(u'/'));
        QVERIFY(!(QFileInfo(folder().filePath(parent)).permissions() & others));
    }
}

void TemporaryFileTest::refusesPaths_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("empty") << QString();
    QTest::newRow("slash alone") << u"/"_s;
    QTest::newRow("a folder") << u"a/"_s;
    QTest::newRow("out of the folder") << u"../a"_s;
    QTest::newRow("out after a leading slash") << u"/../a"_s;
    QTest::newRow("out from below") << u"a/../../b"_s;
    QTest::newRow("ends in the parent") << u"a/.."_s;
    QTest::newRow("backslash") << u"a\\..\\b"_s;
    QTest::newRow("NUL") << u"a\u0000/b"_s;
}

void TemporaryFileTest::refusesPaths()
{
    QFETCH(const QString, path);
    const auto url = QXTemporaryFile::writeText(path, "x");
    QVERIFY(!url);
    QCOMPARE(url.error().code, NSFileWriteInvalidFileNameError);
    QVERIFY(entriesOf(folder()).isEmpty());
}

void TemporaryFileTest::doesNotFollowALinkOnTheWay()
{
    QVERIFY(folder().mkdir(u"elsewhere"_s));
    const QDir elsewhere(folder().filePath(u"elsewhere"_s));
    QVERIFY(QFile::link(elsewhere.path(), folder().filePath(u"Quorvix"_s)));
    QVERIFY(!QXTemporaryFile::writeText(u"a"_s, "x"));

    QVERIFY(QFile::remove(folder().filePath(u"Quorvix"_s)));
    QVERIFY(folder().mkdir(u"Quorvix"_s));
    QVERIFY(QFile::link(elsewhere.path(), folder().filePath(u"Quorvix/mocks"_s)));
    QVERIFY(!QXTemporaryFile::writeText(u"mocks/a"_s, "x"));
    QVERIFY(entriesOf(elsewhere).isEmpty());
}

QTEST_GUILESS_MAIN(TemporaryFileTest)
#include "TemporaryFileTest.moc"
