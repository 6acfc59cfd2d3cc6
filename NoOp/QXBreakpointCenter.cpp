#include "Quorvix/QXBreakpointCenter.h"

using namespace Quorvix;

// Nothing is ever held.

QXBreakpointCenter::QXBreakpointCenter() = default;

QXBreakpointCenter &QXBreakpointCenter::shared()
{
    static auto *const center = new QXBreakpointCenter;
    return *center;
}

bool QXBreakpointCenter::check(const URLRequest &, const QString &, const std::optional<QByteArray> &,
                               const NSURLResponsePtr &, const std::optional<NSError> &,
                               const DataTaskCompletionHandler &)
{
    return false;
}

void QXBreakpointCenter::continueActive() {}
void QXBreakpointCenter::apply(const std::optional<QString> &, const std::optional<QString> &) {}
void QXBreakpointCenter::applyBody(const std::optional<QString> &, const QByteArray &) {}
void QXBreakpointCenter::dropAll() {}
