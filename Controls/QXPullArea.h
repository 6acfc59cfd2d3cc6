#pragma once

#include "Controls/QXSpring.h"

#include <QtCore/QList>
#include <QtCore/QPointF>
#include <QtCore/QPointer>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickItem>

/// Lets a finger or the mouse pull a view down by its content. Main thread only.
///
/// What the content does with a pointer has precedence while it scrolls back to its beginning, and where an
/// item keeps the pointer, such as a text whose letters are selected. Buttons and rows lose a press that
/// becomes a pull.
class QXPullArea : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QXSpring *spring READ spring WRITE setSpring NOTIFY springChanged REQUIRED)

public:
    explicit QXPullArea(QQuickItem *parent = nullptr);

    [[nodiscard]] QXSpring *spring() const { return m_spring; }
    void setSpring(QXSpring *spring);

Q_SIGNALS:
    void springChanged();

protected:
    bool childMouseEventFilter(QQuickItem *child, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    void touchEvent(QTouchEvent *event) override;
    void touchUngrabEvent() override;

private:
    /// Returns whether the pointer pulls the view. @p item is the one that gets the event otherwise.
    bool handle(QQuickItem *item, QPointerEvent &event);
    /// Whether the pointer begins to pull.
    [[nodiscard]] bool begins(QQuickItem *item, const QPointF &place, bool isTouch);
    void grab(QQuickItem *item);
    void end();

    QPointer<QXSpring> m_spring;
    /// The areas around the pointer that do not scroll while the view is pulled.
    QList<QPointer<QQuickItem>> m_stopped;
    /// Where the pointer went down, or where it was when the content last scrolled; in the scene.
    QPointF m_from;
    /// The touch point that went down; -1 for the mouse, or for none.
    int m_pointId = -1;
    bool m_isDown = false;
    bool m_hasScrolled = false;
    bool m_isPulling = false;
};
