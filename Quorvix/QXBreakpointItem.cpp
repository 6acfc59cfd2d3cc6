#include "Quorvix/QXBreakpointItem.h"

std::optional<QXBreakpointKey> QXBreakpointItem::key() const
{
    return QXBreakpointKey::make(request.url, request.httpMethod);
}

QString QXBreakpointItem::displayTitle() const
{
    const auto itemKey = key();
    return itemKey ? itemKey->displayText() : QString();
}
