#include "Controls/QXFocusFence.h"

#include "Controls/QXKeyFilter.h"

QXFocusFence::QXFocusFence(QQuickItem *parent) : QQuickItem(parent) {}

QXFocusFence::~QXFocusFence()
{
    if (m_filter)
        m_filter->remove(*this);
}

void QXFocusFence::itemChange(ItemChange change, const ItemChangeData &value)
{
    if (change == ItemSceneChange) {
        if (m_filter)
            m_filter->remove(*this);
        m_filter = value.window ? &QXKeyFilter::of(*value.window) : nullptr;
        if (m_filter)
            m_filter->add(*this);
    }
    QQuickItem::itemChange(change, value);
}
