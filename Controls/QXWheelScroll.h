#pragma once

#include <QtCore/QPointer>
#include <QtCore/QVariantAnimation>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickItem>

class QWheelEvent;

/// Scrolls a Flickable by lines for each step of a mouse wheel. Main thread only.
///
/// A Flickable takes steps that follow each other quickly for a flick, and can go six steps far for three.
/// What a touchpad measures in pixels is left to the Flickable, and so is everything at its end, which
/// scrolls what is around it.
class QXWheelScroll : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QQuickItem *flickable READ flickable WRITE setFlickable NOTIFY flickableChanged)
    Q_PROPERTY(qreal lineHeight MEMBER m_lineHeight NOTIFY lineHeightChanged)
    /// Whether the content moves to its new place. Otherwise it is there at once.
    Q_PROPERTY(bool animates MEMBER m_animates NOTIFY animatesChanged)
    Q_PROPERTY(bool isMoving READ isMoving NOTIFY isMovingChanged)

public:
    explicit QXWheelScroll(QObject *parent = nullptr);

    [[nodiscard]] QQuickItem *flickable() const { return m_flickable; }
    void setFlickable(QQuickItem *flickable);
    [[nodiscard]] bool isMoving() const noexcept { return m_isMoving; }
    /// Ends the movement at once, where the content is.
    Q_INVOKABLE void stop();

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void flickableChanged();
    void lineHeightChanged();
    void animatesChanged();
    void isMovingChanged();

private:
    /// Returns whether the event moves something.
    [[nodiscard]] bool scroll(const QWheelEvent &event);
    void advance();
    /// Moves the content to a part of its way, from 0 to 1.
    void moveTo(qreal part);
    void setMoving(bool isMoving);
    [[nodiscard]] qreal get(const char *property) const { return m_flickable->property(property).toReal(); }
    /// Moves a position of the content into what can be shown.
    [[nodiscard]] qreal bounded(qreal y) const;

    QPointer<QQuickItem> m_flickable;
    qreal m_lineHeight = 24;
    bool m_animates = true;
    /// Where the animation begins, how far it moves, and where it has moved the content.
    qreal m_start = 0;
    qreal m_distance = 0;
    qreal m_reached = 0;
    bool m_isMoving = false;
    QVariantAnimation m_animation;
};
