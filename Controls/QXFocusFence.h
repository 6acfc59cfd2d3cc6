#pragma once

#include <QtCore/QPointer>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickItem>

class QXKeyFilter;

/// Keeps the keyboard inside the parent item while an item there has the focus: the Tab key moves from the
/// last control to the first one and never to a control beneath, and the keys that are meant for the parent's
/// items do not reach the host's shortcuts and items; see QXKeyFilter. Main thread only.
///
/// The fence has no effect while it is disabled or hidden. The innermost of several fences has the effect.
class QXFocusFence : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit QXFocusFence(QQuickItem *parent = nullptr);
    ~QXFocusFence() override;

protected:
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    QPointer<QXKeyFilter> m_filter;
};
