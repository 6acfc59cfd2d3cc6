// The overlay's button: what it needs of QML, and where it is.

#include "Quorvix/QXFloatingButton.h"
#include "Quorvix/QXOverlay.h"
#include "Quorvix/QXQmlView.h"

#include "Controls/QXLayer.h"
#include "Controls/QXSafeArea.h"

#include <QtCore/QSettings>
#include <QtQml/QQmlEngine>

#include <algorithm>

namespace {

constexpr qreal buttonRadius = QXFloatingButton::size / 2;
/// The minimum distance between the button and the edge of the safe area.
constexpr qreal edgeDistance = 12;
/// The default distance of the button's centre from the left edge and from the bottom edge.
constexpr qreal defaultDistance = 50;

} // namespace

void QXOverlay::makeButton()
{
    m_button = new QXFloatingButton(m_layer->page(), m_isTranslucent);
    m_button->setBadgeText(m_badgeText);
    // Queued, so that the pointer's event is answered first.
    connect(m_button, &QXFloatingButton::approached, this, &QXOverlay::prepare, Qt::QueuedConnection);
    connect(m_button, &QXFloatingButton::clicked, this, &QXOverlay::handleFloatingButtonTap);
    connect(m_button, &QXFloatingButton::dragged, this, &QXOverlay::handleButtonPan);
    connect(m_button, &QXFloatingButton::dropped, this, &QXOverlay::handleButtonPanEnd);
    connect(m_button, &QXFloatingButton::badgeChanged, this, &QXOverlay::updateMask);
    connect(m_button, &QXFloatingButton::needsParts, this, &QXOverlay::makeButtonParts);
    updateButton();
}

/// Makes what the button has of QML.
void QXOverlay::makeButtonParts()
{
    if (!m_button || m_button->hasParts())
        return;
    m_button->setParts(QXQmlView::make(engine(), QStringLiteral("QXButtonParts"),
                                       {{QStringLiteral("overlay"), QVariant::fromValue(this)},
                                        {QStringLiteral("button"), QVariant::fromValue(m_button.data())}},
                                       m_layer->page()));
}

/// Makes the view for the list in the window of the button.
void QXOverlay::makeButtonView()
{
    makeButtonParts();
    m_view = makeView(*m_layer, false);
    if (!m_view)
        return;
    const bool hadFocus = m_button->hasActiveFocus();
    // Over the list, and below what the list presents.
    m_button->setParentItem(m_view->property("buttonPlace").value<QQuickItem *>());
    // The view has no focus yet, so that the button has lost it, which it only gets by a key.
    if (hadFocus)
        m_button->forceActiveFocus(Qt::TabFocusReason);
}

/// Loads the screens while the finger is still down, so that they open at once.
void QXOverlay::prepare()
{
    if (m_layer && !m_view && !m_host.needsFrame())
        makeButtonView();
}

void QXOverlay::updateButton()
{
    if (m_button)
        m_button->setOnScreen(m_isShowingRequestList && !isFramed());
}

void QXOverlay::placeButton()
{
    if (m_button)
        m_button->setPosition(buttonFrame().topLeft());
    updateFloat();
    updateMask();
}

/// Tells the screens where the button floats over them, with its badge.
void QXOverlay::updateFloat()
{
    if (!m_layer)
        return;
    const qreal height = m_layer->page().height();
    const QRectF frame = buttonFrame();
    safeArea()->setFloat(height - frame.top() + QXFloatingButton::badgeOverhang, height - frame.bottom());
}

QXSafeArea *QXOverlay::safeArea() const
{
    return m_layer ? m_layer->safeArea() : nullptr;
}

QRectF QXOverlay::contentRect() const
{
    // An on-screen keyboard does not count, so that the button only moves when the keyboard would cover it.
    return m_layer ? m_layer->page().boundingRect().adjusted(0, 0, 0, safeArea()->keyboard()) : QRectF();
}

QRectF QXOverlay::safeRect() const
{
    return m_layer ? contentRect().marginsRemoved(safeArea()->margins()) : QRectF();
}

QXOverlayPoint QXOverlay::constraint() const
{
    if (m_constraint)
        return *m_constraint;
    return {defaultDistance - contentRect().width() * 0.5, contentRect().height() * 0.5 - defaultDistance};
}

QPointF QXOverlay::buttonCenter() const
{
    // A position from a larger window is only limited here, not changed, so that it applies again when the
    // window grows.
    const QRectF area = safeRect();
    const QXOverlayPoint offset = constraint().within(area.size(), buttonRadius + edgeDistance);
    const QPointF center = area.center() + QPointF(offset.x, offset.y);
    if (!m_layer || safeArea()->keyboard() == 0)
        return center;
    const qreal aboveKeyboard = m_layer->page().height() - edgeDistance - buttonRadius;
    return {center.x(), std::min(center.y(), std::max(aboveKeyboard, m_layer->page().height() / 2))};
}

QRectF QXOverlay::buttonFrame() const
{
    return QRectF(buttonCenter() - QPointF(buttonRadius, buttonRadius),
                  QSizeF(buttonRadius, buttonRadius) * 2);
}

void QXOverlay::handleButtonPan(const QPointF &translation)
{
    const QRectF area = safeRect();
    const QPointF offset = buttonCenter() - area.center() + translation;
    m_constraint = QXOverlayPoint{offset.x(), offset.y()}.within(area.size(), buttonRadius + edgeDistance);
    Q_EMIT buttonMoved();
}

void QXOverlay::handleButtonPanEnd()
{
    if (m_constraint)
        QSettings().setValue(dragPositionKey, m_constraint->encoded());
}
