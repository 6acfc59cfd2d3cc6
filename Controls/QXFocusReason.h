#pragma once

#include <QtCore/QPointer>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickItem>

/// Tells whether an item has got the keyboard focus by the Tab key, so that it shows the focus to those who
/// use the keyboard. What Qt Quick's controls know as visualFocus, for other items. Main thread only.
class QXFocusReason : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickItem *item READ item WRITE setItem NOTIFY itemChanged)
    Q_PROPERTY(bool isVisual READ isVisual NOTIFY isVisualChanged)

public:
    explicit QXFocusReason(QObject *parent = nullptr) : QObject(parent) {}

    [[nodiscard]] QQuickItem *item() const { return m_item; }
    void setItem(QQuickItem *item);
    [[nodiscard]] bool isVisual() const noexcept { return m_isVisual; }

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void itemChanged();
    void isVisualChanged();

private:
    void setVisual(bool visual);

    QPointer<QQuickItem> m_item;
    bool m_isVisual = false;
};
