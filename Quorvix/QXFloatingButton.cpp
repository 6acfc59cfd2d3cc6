#include "Quorvix/QXFloatingButton.h"

#include "Quorvix/QXButtonPart.h"

#include "Controls/QXSymbolProvider.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>
#include <QtGui/QRegion>
#include <QtGui/QStyleHints>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickWindow>
#include <QtQuick/QSGRendererInterface>

#include <cmath>

namespace {

constexpr qreal buttonRadius = QXFloatingButton::size / 2;
constexpr QRectF bounds(0, 0, QXFloatingButton::size, QXFloatingButton::size);
/// The part of the shadow that can be seen: a disc below the button.
constexpr qreal shadowRadius = 42;
constexpr qreal shadowOffset = 6;
constexpr qreal shadowSize = 112;
constexpr qreal symbolSize = 22;
constexpr qreal dotSize = 3;
constexpr qreal dotSpacing = 3;
constexpr qreal dotsMargin = 7;
constexpr qreal ringDistance = 3;
constexpr qreal ringWidth = 2;
constexpr qreal faceOpacity = 0.85;

QRectF around(const QPointF &center, qreal side)
{
    return QRectF(center - QPointF(side, side) / 2, QSizeF(side, side));
}

QColor faded(QColor color, qreal opacity)
{
    color.setAlphaF(float(color.alphaF() * opacity));
    return color;
}

/// Draws a symbol at exactly the pixels of the painter's device.
void drawSymbol(QPainter &painter, const QString &name, const QColor &color, const QRectF &frame)
{
    const int pixels = int(std::ceil(frame.width() * painter.deviceTransform().m11()));
    painter.drawImage(frame, QXSymbolProvider::image(name, color, QSize(pixels, pixels)));
}

QRegion disc(const QPointF &center, qreal radius)
{
    return {around(center, 2 * radius).toRect(), QRegion::Ellipse};
}

/// A rectangle with two round ends.
QRegion capsule(const QRectF &frame)
{
    const qreal end = frame.height() / 2;
    const QPointF toEnd(frame.width() / 2 - end, 0);
    return disc(frame.center() - toEnd, end) + disc(frame.center() + toEnd, end) +
           QRegion(frame.adjusted(end, 0, -end, 0).toRect());
}

/// Qt 6.4 tells nothing of any item, for as long as the process runs, once somebody has asked for one before
/// Qt Quick's types are known. They are not where no engine has imported them.
void registerTypes()
{
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData("import QtQuick; Item {}", QUrl());
}

bool canDrawGlass(const QQuickWindow &window)
{
    const auto api = window.rendererInterface()->graphicsApi();
    return QSGRendererInterface::isApiRhiBased(api) && api != QSGRendererInterface::Null;
}

} // namespace

QXFloatingButton::QXFloatingButton(QQuickItem &page, bool isTranslucent)
    : m_isTranslucent(isTranslucent), m_content(new QQuickItem(this)),
      m_edge(new QXButtonPart(*m_content, bounds.adjusted(-1, -1, 1, 1),
                              [this](QPainter &painter) {
                                  painter.fillRect(m_edge->boundingRect(), m_appearance.palette().outline);
                              })),
      m_shadow(new QXButtonPart(*m_content, around(bounds.center() + QPointF(0, shadowOffset), shadowSize),
                                [this](QPainter &painter) {
                                    drawSymbol(painter, QStringLiteral("button.shadow"),
                                               m_appearance.palette().shadow, m_shadow->boundingRect());
                                    paintBacking(painter);
                                })),
      m_face(new QXButtonPart(*m_content, bounds, [this](QPainter &painter) { paintFace(painter); })),
      m_badge(new QXButtonBadge(*m_content)),
      m_ring(new QXButtonPart(
          *m_content, around(bounds.center(), size + 2 * ringDistance), [this](QPainter &painter) {
              const qreal inset = ringWidth / 2;
              painter.setPen(QPen(m_appearance.palette().blue, ringWidth));
              painter.drawEllipse(m_ring->boundingRect().adjusted(inset, inset, -inset, -inset));
          }))
{
    setObjectName(QStringLiteral("QXFloatingButton"));
    setSize(bounds.size());
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptTouchEvents(true);
    // The host's pointer handlers may not take a drag over.
    setKeepMouseGrab(true);
    setKeepTouchGrab(true);
    setAcceptHoverEvents(QGuiApplication::styleHints()->useHoverEffects());
    setActiveFocusOnTab(true);
    setCursor(Qt::ArrowCursor);
    m_content->setSize(bounds.size());
    m_ring->setVisible(false);
    connect(&m_appearance, &QXAppearance::changed, this, &QXFloatingButton::updateLook);
    connect(m_badge, &QXButtonBadge::changed, this, &QXFloatingButton::placeBadge);
    updateLook();
    setParent(&page);
    // Here, because the constructor of the base does not call this class's itemChange().
    setParentItem(&page);
    QAccessible::installActivationObserver(this);
    if (QAccessible::isActive())
        registerTypes();
}

QXFloatingButton::~QXFloatingButton()
{
    QAccessible::removeActivationObserver(this);
    // While the button that they read is alive.
    delete m_parts;
}

QString QXFloatingButton::text() const
{
    return QCoreApplication::translate("Quorvix", "Network Trace");
}

// The parts in QML

void QXFloatingButton::setParts(QQuickItem *parts)
{
    m_parts = parts;
    if (!parts)
        return;
    parts->setParentItem(m_content);
    parts->stackBefore(m_face);
}

void QXFloatingButton::askForParts()
{
    if (window() && !m_parts && (QAccessible::isActive() || canDrawGlass(*window())))
        Q_EMIT needsParts();
}

void QXFloatingButton::accessibilityActiveChanged(bool isActive)
{
    if (!isActive)
        return;
    registerTypes();
    // Queued, because the platform may be in the middle of an answer to the technology.
    QMetaObject::invokeMethod(this, &QXFloatingButton::askForParts, Qt::QueuedConnection);
}

void QXFloatingButton::itemChange(ItemChange change, const ItemChangeData &value)
{
    QQuickItem::itemChange(change, value);
    if (change == ItemSceneChange) {
        disconnect(m_frames);
        m_content->setScale(1);
    }
    // After a frame, so that the host's first one does not wait for them. It may be drawn by another thread.
    if (change == ItemSceneChange && value.window)
        connect(value.window, &QQuickWindow::frameSwapped, this, &QXFloatingButton::askForParts,
                Qt::ConnectionType(Qt::QueuedConnection | Qt::SingleShotConnection));
}

// The look

void QXFloatingButton::setFrosted(bool isFrosted)
{
    m_isFrosted = isFrosted;
    m_face->update();
}

void QXFloatingButton::setOnScreen(bool isOnScreen)
{
    m_isOnScreen = isOnScreen;
    updateLook();
}

QString QXFloatingButton::badgeText() const
{
    return m_badge->text();
}

void QXFloatingButton::setBadgeText(const QString &text)
{
    m_badge->setText(text);
}

/// Puts the badge on the corner where a line of text ends.
void QXFloatingButton::placeBadge()
{
    m_badge->setPosition(
        {m_appearance.isMirrored() ? -badgeOverhang : size + badgeOverhang - m_badge->width(),
         -badgeOverhang});
    Q_EMIT badgeChanged();
}

void QXFloatingButton::updateLook()
{
    m_edge->setVisible(isCutOut());
    m_shadow->setVisible(!isCutOut());
    m_badge->setLook(m_appearance.palette(), m_appearance.fontFamily(), isCutOut());
    for (QXButtonPart *const part : {m_edge, m_shadow, m_face, m_ring})
        part->update();
}

QRegion QXFloatingButton::visibleRegion() const
{
    const QRegion badge =
        badgeText().isEmpty() ? QRegion() : capsule(QRectF(m_badge->position(), m_badge->size()));
    const QPointF center = bounds.center();
    return badge + (m_isTranslucent ? disc(center + QPointF(0, shadowOffset), shadowRadius)
                                    : disc(center, buttonRadius + 1));
}

/// The face and the glass are translucent. Without this, letters of the content would be visible through
/// them.
void QXFloatingButton::paintBacking(QPainter &painter) const
{
    const qreal radius = buttonRadius - 0.5;
    painter.setBrush(m_appearance.palette().material);
    painter.drawEllipse(m_shadow->boundingRect().center() - QPointF(0, shadowOffset), radius, radius);
}

void QXFloatingButton::paintFace(QPainter &painter) const
{
    const QXPalette palette = m_appearance.palette();
    const qreal opacity = m_isTranslucent ? faceOpacity : 1;
    // The edge is beside the material and not over it.
    painter.setBrush(faded(palette.material, opacity * (m_isFrosted ? 0.6 : 1)));
    painter.drawEllipse(bounds.adjusted(1, 1, -1, -1));
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(faded(palette.materialEdge, opacity), 1));
    painter.drawEllipse(bounds.adjusted(0.5, 0.5, -0.5, -0.5));
    painter.setPen(Qt::NoPen);
    if (m_isPressed) {
        painter.setBrush(faded(palette.pressedFill, opacity));
        painter.drawEllipse(bounds);
    }
    drawSymbol(painter, QStringLiteral("antenna.radiowaves.left.and.right"), palette.label,
               around(bounds.center(), symbolSize));
    painter.setBrush(faded(palette.label, 0.5));
    for (const int place : {-1, 0, 1})
        painter.drawEllipse(around(
            {buttonRadius + place * (dotSize + dotSpacing), size - dotsMargin - dotSize / 2}, dotSize));
}
