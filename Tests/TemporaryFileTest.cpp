#include "Tests/TestKit.h"

#include "Quorvix/QXTemporaryFile.h"

#include <QtCore/QFileInfo>
#include <QtTest/QTest>

#include <optional>

using namespace Quorvix;
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

private:
    std::optional<TemporaryFolder> m_temporary;
};

void TemporaryFileTest::init()
{
    m_temporary.emplace();
    QVERIFY(m_temporary->isInForce());
}

void TemporaryFileTest::isItsOwnersOnly()
{
    QFileDevice::Permissions whileWriting;
    const auto url = QXTemporaryFile::write(
        m_temporary->dir(), u"a.har"_s, [&](QIODevice &device) -> std::optional<NSError> {
            device.write("secret");
            whileWriting = qobject_cast<QFileDevice *>(&device)->permissions();
            return std::nullopt;
        });
    QVERIFY(url);
    QVERIFY(!(whileWriting & others));
    QCOMPARE(url.value(), QUrl::fromLocalFile(m_temporary->path(u"a.har"_s)));
    const QFileDevice::Permissions permissions = QFile::permissions(url.value().toLocalFile());
    QVERIFY(!(permissions & others));
    QCOMPARE(permissions & onlyOwner, onlyOwner);
    QCOMPARE(m_temporary->files(), QStringList{u"a.har=secret"_s});
}

void TemporaryFileTest::replacesALinkButNotItsTarget()
{
    QVERIFY(QXTemporaryFile::write(m_temporary->dir(), u"target"_s, writing("precious")));
    QVERIFY(QFile::link(m_temporary->path(u"target"_s), m_temporary->path(u"a"_s)));

    QVERIFY(QXTemporaryFile::write(m_temporary->dir(), u"a"_s, writing("new")));
    QVERIFY(!QFileInfo(m_temporary->path(u"a"_s)).isSymLink());
    QCOMPARE(m_temporary->files(), (QStringList{u"a=new"_s, u"target=precious"_s}));
}

void TemporaryFileTest::leavesNothingAfterAnError()
{
    QVERIFY(QXTemporaryFile::write(m_temporary->dir(), u"a"_s, writing("whole")));
    const NSError failure{NSCocoaErrorDomain, NSFileWriteUnknownError, u"no more"_s};
    const auto halfWriting = [&](QIODevice &device) -> std::optional<NSError> {
        device.write("half");
        return failure;
    };
    const auto url = QXTemporaryFile::write(m_temporary->dir(), u"a"_s, halfWriting);
    QVERIFY(!url);
    QCOMPARE(url.error(), failure);
    QCOMPARE(m_temporary->files(), QStringList{u"a=whole"_s});
}

void TemporaryFileTest::refusesFileNames()
{
    for (const QString &name : {QString(), u"."_s, u".."_s, u"a/b"_s, u"..\\a"_s, u"a.har\u0000.exe"_s}) {
        const auto url = QXTemporaryFile::write(m_temporary->dir(), name, writing("x"));
        QVERIFY2(!url, qPrintable(name));
        QCOMPARE(url.error().code, NSFileWriteInvalidFileNameError);
        QCOMPARE(m_temporary->files(), QStringList());
    }
}

void TemporaryFileTest::failsWhereItCannotWrite()
{
    QVERIFY(m_temporary->dir().mkdir(u"taken"_s));
    for (const QString &path : {u"missing/a"_s, u"./taken"_s, u"./"_s + QString(300, u'x')}) {
        const QDir folder(m_temporary->path(path.section(u'/', 0, 0)));
        const auto url = QXTemporaryFile::write(folder, path.section(u'/', 1), writing("x"));
        QVERIFY2(!url, qPrintable(path));
        QCOMPARE(url.error().domain, NSCocoaErrorDomain);
        QVERIFY(!url.error().localizedDescription.isEmpty());
        QCOMPARE(m_temporary->files(), QStringList());
    }
    // Qt returns an empty path when there is no temporary directory; it would mean the current folder.
    QVERIFY(!QXTemporaryFile::write(QDir(QString()), u"a"_s, writing("x")));
}

void TemporaryFileTest::writesTextUnderItsFolder()
{
    const QString written = u"Quorvix/mocks/a b/{id}_GET.json"_s;
    for (const char *text : {"a long first text", "\u00e9\n"}) {
        const auto url = QXTemporaryFile::writeText(u"//mocks/a b/{id}_GET.json"_s, text);
        QVERIFY(url);
        QCOMPARE(url.value(), QUrl::fromLocalFile(m_temporary->path(written)));
    }
    QCOMPARE(m_temporary->files(), QStringList(written + u"=\u00e9\n"_s));
    for (const QString &folder : {u"Quorvix"_s, u"Quorvix/mocks"_s, u"Quorvix/mocks/a b"_s})
        QVERIFY(!(QFile::permissions(m_temporary->path(folder)) & others));
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
    const QDir &folder = m_temporary->dir();
    QVERIFY(folder.mkdir(u"elsewhere"_s));
    QVERIFY(QFile::link(folder.filePath(u"elsewhere"_s), folder.filePath(u"Quorvix"_s)));
    QVERIFY(!QXTemporaryFile::writeText(u"a"_s, "x"));

    QVERIFY(QFile::remove(folder.filePath(u"Quorvix"_s)));
    QVERIFY(folder.mkdir(u"Quorvix"_s));
    QVERIFY(QFile::link(folder.filePath(u"elsewhere"_s), folder.filePath(u"Quorvix/mocks"_s)));
    QVERIFY(!QXTemporaryFile::writeText(u"mocks/a"_s, "x"));
    QCOMPARE(m_temporary->files(), QStringList());
}

QTEST_GUILESS_MAIN(TemporaryFileTest)
#include "TemporaryFileTest.moc"
