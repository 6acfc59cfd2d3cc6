#pragma once

#include <QtQuick/QQuickItem>

#include <algorithm>

/// Calls @p visit for @p item and all its visible descendants, in the order in which they are painted. The
/// children of a hidden or fully transparent item are not visible.
template<typename Visit>
void visitVisible(QQuickItem *item, const Visit &visit)
{
    if (!item->isVisible() || item->opacity() == 0)
        return;
    visit(item);
    QList<QQuickItem *> children = item->childItems();
    std::stable_sort(children.begin(), children.end(),
                     [](const QQuickItem *left, const QQuickItem *right) { return left->z() < right->z(); });
    for (QQuickItem *const child : std::as_const(children))
        visitVisible(child, visit);
}
