#include "Controls/QXFocusReason.h"

#include <QtGui/QFocusEvent>

#include <utility>

void QXFocusReason::setItem(QQuickItem *item)
{
    if (m_item == item)
        return;
    if (m_item)
        m_item->removeEventFilter(this);
    m_item = item;
    if (m_item)
        m_item->installEventFilter(this);
    Q_EMIT itemChanged();
}

bool QXFocusReason::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusIn) {
        const Qt::FocusReason reason = static_cast<const QFocusEvent &>(*event).reason();
        setVisual(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason);
    } else if (event->type() == QEvent::FocusOut || event->type() == QEvent::MouseButtonPress) {
        setVisual(false);
    }
    return QObject::eventFilter(watched, event);
}

void QXFocusReason::setVisual(bool visual)
{
    if (std::exchange(m_isVisual, visual) != visual)
        Q_EMIT isVisualChanged();
}
