#pragma once

#include <Quorvix/QXRequestRecorder.h>

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtCore/QRegularExpression>
#include <QtCore/QTimer>
#include <QtGui/QGenericPlugin>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtTest/QTest>

/// Runs a test inside a program that does not know of it. Qt loads the plugin while the program makes its
/// application object, and the test begins with the program's event loop. Its result is the program's exit
/// code.
namespace HostDriver {

template<typename Test>
QObject *start()
{
    auto *const driver = new QObject;
    QTimer::singleShot(0, driver, [] {
        Test test;
        QCoreApplication::exit(QTest::qExec(&test, {QCoreApplication::applicationName()}));
    });
    return driver;
}

/// Fails the test on warnings, except those about what a platform without a display cannot do.
inline void failOnWarnings()
{
    QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not support)")));
}

/// Whether the program was built with its patch.
inline bool isCaptured()
{
    return QCoreApplication::applicationName().endsWith(QLatin1StringView("Captured"));
}

inline QXTraceList traces()
{
    return QXRequestRecorder::shared().requests();
}

inline QByteArray textOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline QByteArray picture(Qt::GlobalColor color)
{
    QByteArray png;
    QBuffer buffer(&png);
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(color);
    image.save(&buffer, "PNG");
    return png;
}

/// The lines that begin with @p mark in the difference between two folders, without that mark.
inline QByteArrayList changedLines(const QString &before, const QString &after, char mark)
{
    QProcess diff;
    diff.start(QStringLiteral("diff"), {QStringLiteral("-rN"), QStringLiteral("-U0"), before, after});
    diff.waitForFinished();
    QByteArrayList lines = diff.readAllStandardOutput().split('\n');
    lines.removeIf([mark](const QByteArray &line) {
        return !line.startsWith(mark) || line.startsWith(QByteArray(3, mark) + ' ');
    });
    for (QByteArray &line : lines)
        line = line.sliced(1).trimmed();
    return lines;
}

/// Checks that the captured program is the plain one except for two changed lines at most, which the guide
/// shows.
inline void verifyChange(const QString &before, const QString &after, qsizetype expectedRemoved)
{
    const QByteArrayList added = changedLines(before, after, '+');
    qInfo("%d lines added, %d lines removed", int(added.size()),
          int(changedLines(before, after, '-').size()));
    QVERIFY(!added.isEmpty() && added.size() <= 2);
    QCOMPARE(changedLines(before, after, '-').size(), expectedRemoved);
    const QByteArray guide = textOf(QStringLiteral(QUORVIX_SOURCES "/docs/network-access-manager.md"));
    for (const QByteArray &line : added)
        QVERIFY2(guide.contains(line), line);
}

} // namespace HostDriver
