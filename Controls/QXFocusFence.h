#pragma once

#include <QtCore/QPointer>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickItem>

/// Keeps the Tab key inside the item that it is a child of: after the last control comes the first one again,
/// and never one of what lies beneath. Main thread only.
///
/// Disabled or hidden with its parent, it fences nothing.
class QXFocusFence : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit QXFocusFence(QQuickItem *parent = nullptr);
    ~QXFocusFence() override;

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    [[nodiscard]] bool isInside(const QQuickItem *item) const;
    void moveFocus(QQuickItem &from, bool forwards);

    QPointer<QQuickWindow> m_watched;
};
