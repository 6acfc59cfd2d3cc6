#include "Examples/TourSummary.h"

#include <Quorvix/QXRequestRecorder.h>

#include <QtCore/QSaveFile>

namespace {

QString outcome(const QXRequestTrace &trace)
{
    if (trace.response)
        return QString::number(trace.response->statusCode);
    return trace.error ? QStringLiteral("failed") : QStringLiteral("-");
}

QString duration(const QXRequestTrace &trace)
{
    return trace.duration ? QString::number(*trace.duration * 1000, 'f', 1) : QStringLiteral("-");
}

QString line(const QString &method, const QString &path, const QString &status, const QString &time)
{
    return QStringLiteral("%1  %2  %3  %4\n").arg(method, -7).arg(path, -44).arg(status, 6).arg(time, 10);
}

} // namespace

bool writeTourSummary(const QString &path)
{
    QString table = line(QStringLiteral("method"), QStringLiteral("path"), QStringLiteral("status"),
                         QStringLiteral("ms"));
    for (const QXRequestTrace &trace : QXRequestRecorder::shared().requests()) {
        const QUrl url = trace.url.value_or(QUrl());
        table +=
            line(Quorvix::sentMethod(trace.method), url.toString(QUrl::RemoveScheme | QUrl::RemoveAuthority),
                 outcome(trace), duration(trace));
    }
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(table.toUtf8()) >= 0 && file.commit();
}
