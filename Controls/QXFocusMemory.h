#pragma once

#include <QtCore/QPointer>
#include <QtQuick/QQuickItem>

/// Remembers which item of a window has the keyboard focus, to give the focus back. Main thread only.
class QXFocusMemory
{
public:
    /// Remembers the item with the focus. If @p window is not active, this is the item that gets the focus
    /// when the window becomes active.
    void remember(const QQuickWindow &window);
    /// Takes over what another memory has remembered.
    void remember(const QXFocusMemory &other) { m_item = other.m_item; }

    /// Gives the focus from @p layer back to the remembered item. If that item is gone or hidden, like one of
    /// a popup that has closed, another item of the window gets it.
    void restore(QQuickItem &layer) const;

private:
    QPointer<QQuickItem> m_item;
};
