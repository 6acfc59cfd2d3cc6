#include "Controls/UIActivityViewController.h"

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtCore/QUrl>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : "unreadable"_ba;
}

/// Saves the item. Returns the reason of a failure, or an empty text.
QString save(UIActivityViewController &controller, const QString &path)
{
    const QSignalSpy saved(&controller, &UIActivityViewController::saved);
    controller.saveAs(path);
    const bool isDone = QTest::qWaitFor([&] { return !saved.isEmpty(); });
    return isDone ? saved.constFirst().constFirst().toString() : u"not saved"_s;
}

} // namespace

class ActivityTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void fileIsShownCopiedAndSaved();
    void textIsNeverTakenForAFile();
    void savingTellsWhyItFailed();

private:
    QTemporaryDir m_folder;
    QString m_path;
};

void ActivityTest::init()
{
    m_path = m_folder.filePath(u"archive.har"_s);
    QFile file(m_path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write("{\"log\" : \"ü\"}"), 14);
}

void ActivityTest::fileIsShownCopiedAndSaved()
{
    UIActivityViewController controller;
    controller.setActivityItems({QUrl::fromLocalFile(m_path)});
    QVERIFY(controller.isFile());
    QCOMPARE(controller.title(), u"archive.har"_s);
    controller.setTitle(u"HAR archive"_s);
    QCOMPARE(controller.title(), u"HAR archive"_s);
    QCOMPARE(controller.subtitle(), u"archive.har · 1 KB"_s);
    QCOMPARE(controller.previewLines(), QStringList{u"{\"log\" : \"ü\"}"_s});
    QVERIFY(controller.suggestedPath().contains(u"archive"_s));
    controller.copy();
    QVERIFY(QGuiApplication::clipboard()->text().endsWith(u"archive.har"_s));
    const QString target = m_folder.filePath(u"saved.har"_s);
    QCOMPARE(save(controller, target), QString());
    QCOMPARE(contents(target), contents(m_path));
    constexpr auto others = QFileDevice::ReadGroup | QFileDevice::ReadOther;
    QVERIFY(!(QFile::permissions(target) & others));
}

void ActivityTest::textIsNeverTakenForAFile()
{
    const QString text = QUrl::fromLocalFile(m_path).toString();
    UIActivityViewController controller;
    controller.setActivityItems({text});
    QVERIFY(!controller.isFile());
    QCOMPARE(controller.previewLines(), QStringList{text});
    QVERIFY(!controller.open() && !controller.showInFolder());
    const QString target = m_folder.filePath(u"saved.txt"_s);
    QCOMPARE(save(controller, target), QString());
    QCOMPARE(contents(target), text.toUtf8());
}

void ActivityTest::savingTellsWhyItFailed()
{
    UIActivityViewController controller;
    controller.setActivityItems({QUrl::fromLocalFile(m_path)});
    const QString taken = m_folder.filePath(u"saved.har"_s);
    QVERIFY(!save(controller, m_folder.filePath(u"no/such/folder/saved.har"_s)).isEmpty());
    QVERIFY(QFile::remove(m_path));
    const QByteArray before = contents(taken);
    QVERIFY(!save(controller, taken).isEmpty());
    QCOMPARE(contents(taken), before); // a failure does not change the existing file
}

QTEST_MAIN(ActivityTest)
#include "ActivityTest.moc"
