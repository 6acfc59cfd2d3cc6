#pragma once

#include "Controls/QXAppearance.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtGui/QAccessible>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickItem>

#include <optional>

class QPainter;
class QRegion;
class QXButtonBadge;
class QXButtonPart;

/// The round button over the host's window: a click opens or closes the request list, a drag moves it. Main
/// thread only.
///
/// It needs no QML, because most programs that show it never open a screen, and an engine would take them
/// longer to make than all of the rest. Only its frosted glass and what it says to assistive technologies are
/// in QML; needsParts() asks for them.
class QXFloatingButton final : public QQuickItem, private QAccessible::ActivationObserver
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the overlay")
    /// The name of the button.
    Q_PROPERTY(QString text READ text CONSTANT)
    Q_PROPERTY(QString badgeText READ badgeText NOTIFY badgeChanged)
    /// Whether frosted glass is behind the button. Set by that.
    Q_PROPERTY(bool isFrosted MEMBER m_isFrosted WRITE setFrosted)

public:
    static constexpr qreal size = 52;
    /// How far the badge stands out at the top and at the side.
    static constexpr qreal badgeOverhang = 4;

    /// Makes a button as a child of @p page. @p isTranslucent is whether the host's window is visible below
    /// what is transparent here.
    QXFloatingButton(QQuickItem &page, bool isTranslucent);
    ~QXFloatingButton() override;

    [[nodiscard]] QString text() const;
    [[nodiscard]] QString badgeText() const;
    /// Shows @p text in the badge, or no badge if it is empty.
    void setBadgeText(const QString &text);
    /// Sets whether a screen fills the window of the button.
    void setOnScreen(bool isOnScreen);
    void setFrosted(bool isFrosted);

    /// The part of the window, in the button's coordinates, in which something of it is visible: the disc,
    /// the badge, and the shadow where one can see it.
    [[nodiscard]] QRegion visibleRegion() const;
    /// Puts an item between the shadow and the face, instead of the previous one.
    void setParts(QQuickItem *parts);
    [[nodiscard]] bool hasParts() const { return !m_parts.isNull(); }

    /// Asks for the parts in QML if someone needs them.
    void askForParts();

Q_SIGNALS:
    /// Emitted before a click: when the pointer goes over the button or down on it.
    void approached();
    void clicked();
    /// Emitted while the button is dragged, with the way since the last time.
    void dragged(const QPointF &translation);
    /// Emitted at the end of a drag.
    void dropped();
    /// Emitted when what is in the badge or its place changes.
    void badgeChanged();
    /// Emitted when the glass can be drawn, or when an assistive technology reads the window.
    void needsParts();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    void touchEvent(QTouchEvent *event) override;
    void touchUngrabEvent() override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void hoverEnterEvent(QHoverEvent *event) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    void accessibilityActiveChanged(bool isActive) override;
    void press(const QPointF &scenePoint);
    void move(const QPointF &scenePoint);
    void release();
    void cancel();
    void setPressed(bool isPressed);
    void animate();
    void updateLook();
    void placeBadge();
    void paintBacking(QPainter &painter) const;
    void paintFace(QPainter &painter) const;
    [[nodiscard]] bool isCutOut() const { return !m_isTranslucent && !m_isOnScreen; }

    const bool m_isTranslucent;
    bool m_isOnScreen = false;
    bool m_isFrosted = false;
    bool m_isPressed = false;
    bool m_isDragged = false;
    /// Where the pointer went down, and how far it has moved since then, while it is down.
    std::optional<QPointF> m_origin;
    QPointF m_way;
    int m_touchPoint = -1;
    QXAppearance m_appearance;
    /// Becomes smaller while the button is pressed, with everything that is visible.
    QQuickItem *const m_content;
    QXButtonPart *const m_edge;
    QXButtonPart *const m_shadow;
    QXButtonPart *const m_face;
    QXButtonBadge *const m_badge;
    QXButtonPart *const m_ring;
    /// The animation of the content's size: when it began, from which scale, and the frames that move it on.
    QElapsedTimer m_sincePressed;
    qreal m_firstScale = 1;
    QMetaObject::Connection m_frames;
    QPointer<QQuickItem> m_parts;
};
