#pragma once

#include <QtCore/QPointer>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickItem>

/// Keeps the keyboard focus inside the parent item: the Tab key moves from the last control to the first one,
/// and never to a control beneath. Main thread only.
///
/// The fence has no effect while it is disabled or hidden.
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
