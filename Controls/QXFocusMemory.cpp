#include "Controls/QXFocusMemory.h"

#include <QtQuick/QQuickWindow>

#include <algorithm>

namespace {

bool canTakeFocus(const QQuickItem *item, const QQuickItem &layer)
{
    return item && item->window() == layer.window() && item->isVisible() && item->isEnabled();
}

/// Returns an item with a focus of its own beside @p layer, like the content of an application window.
QQuickItem *scopeBeside(const QQuickItem &layer)
{
    const QList<QQuickItem *> items =
        layer.parentItem() ? layer.parentItem()->childItems() : QList<QQuickItem *>();
    const auto found = std::find_if(items.cbegin(), items.cend(), [&](const QQuickItem *item) {
        return item != &layer && item->isFocusScope() && item->scopedFocusItem() && canTakeFocus(item, layer);
    });
    return found == items.cend() ? nullptr : *found;
}

} // namespace

void QXFocusMemory::remember(const QQuickWindow &window)
{
    QQuickItem *item = window.contentItem();
    while (item->isFocusScope() && item->scopedFocusItem())
        item = item->scopedFocusItem();
    m_item = item == window.contentItem() ? nullptr : item;
}

void QXFocusMemory::restore(QQuickItem &layer) const
{
    QQuickItem *const next = canTakeFocus(m_item, layer) ? m_item.data() : scopeBeside(layer);
    if (next)
        next->forceActiveFocus(Qt::ActiveWindowFocusReason);
    else
        layer.setFocus(false);
}
