#include "Quorvix/QXLog.h"

#include <QtCore/QLoggingCategory>

#include <atomic>

namespace {

std::atomic<QXLogLevel> currentLevel = QXLogLevel::none;

const QLoggingCategory &category()
{
    static const auto *const category = new QLoggingCategory("Quorvix");
    return *category;
}

} // namespace

QXLogLevel QXLog::level() noexcept
{
    return currentLevel.load(std::memory_order_relaxed);
}

void QXLog::setLevel(QXLogLevel level) noexcept
{
    currentLevel.store(level, std::memory_order_relaxed);
}

void QXLog::log(QXLogLevel level, const QString &message)
{
    if (level == QXLogLevel::none || level > QXLog::level())
        return;
    switch (level) {
    case QXLogLevel::error:
        qCCritical(category).noquote() << message;
        break;
    case QXLogLevel::info:
        qCInfo(category).noquote() << message;
        break;
    default:
        qCDebug(category).noquote() << message;
        break;
    }
}
