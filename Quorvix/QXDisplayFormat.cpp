#include "Quorvix/QXDisplayFormat.h"

#include "Platform/NSByteCountFormatter.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

QString dateFormat(const QLocale &locale)
{
    QString format = locale.dateFormat(QLocale::LongFormat);
    // Removing a weekday at the beginning also removes the text that joins it to the date. For a weekday at
    // the end, only the separator is removed, because the text before it can contain the suffix of the day.
    format.remove(QRegularExpression(uR"(^\s*dddd(?:'[^']*'|[^dMy'])*)"_s));
    format.remove(QRegularExpression(uR"([\s,،(]*dddd\)?)"_s));
    return format.replace("MMMM"_L1, "MMM"_L1);
}

QString timeFormat(const QLocale &locale)
{
    return locale.timeFormat(QLocale::LongFormat).remove(QRegularExpression(uR"([\s(\[]*t+[\s)\]]*)"_s));
}

} // namespace

QString QXDisplayFormat::date(std::chrono::system_clock::time_point time)
{
    const QLocale locale;
    const auto sinceEpoch = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    const auto dateTime = QDateTime::fromMSecsSinceEpoch(sinceEpoch.count());
    return locale.toString(dateTime.date(), dateFormat(locale)) + ", "_L1 +
           locale.toString(dateTime.time(), timeFormat(locale));
}

QString QXDisplayFormat::discardedBody(qsizetype bytes)
{
    return QCoreApplication::translate("Quorvix", "Removed to stay within the memory budget (%1)")
        .arg(Quorvix::NSByteCountFormatter::string(bytes));
}

QString QXDisplayFormat::seconds(const QString &text, QLatin1StringView directive, double seconds, int digits)
{
    // The text comes from the host's translation and is not safe as a format string of a formatting
    // function.
    return QString(text).replace(directive, QString::number(seconds, 'f', digits));
}
