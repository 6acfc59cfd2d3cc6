#include "Controls/QXLayer.h"

#include "Controls/QXSafeArea.h"

#include <QtQuick/QQuickWindow>

namespace {

/// Above everything that Qt Quick shows over a window's content: the z value of its popups is about a
/// million.
constexpr qreal baseZ = 2'000'000;

} // namespace

QXLayer::QXLayer(int level) : m_safeArea(new QXSafeArea(this))
{
    setZ(baseZ + level);
}

QXLayer::~QXLayer()
{
    // The children use the safe area, so they have to be deleted before it.
    qDeleteAll(childItems());
}

void QXLayer::attach(QQuickWindow *window)
{
    if (m_content)
        m_content->disconnect(this);
    if (m_window)
        m_window->disconnect(this);
    m_window = window;
    connect(window, &QWindow::visibleChanged, this, [this](bool visible) {
        if (!visible)
            Q_EMIT windowLost();
    });
    connect(window, &QWindow::screenChanged, this, &QXLayer::fit);
    m_content = window->contentItem();
    setParentItem(m_content);
    connect(m_content, &QQuickItem::widthChanged, this, &QXLayer::fit);
    connect(m_content, &QQuickItem::heightChanged, this, &QXLayer::fit);
    connect(m_content, &QObject::destroyed, this, &QXLayer::windowLost);
    fit();
}

void QXLayer::fit()
{
    if (!m_content || !m_window)
        return;
    m_safeArea->measure(*m_window);
    setSize(m_content->size());
}

bool QXLayer::contains(const QPointF &point) const
{
    return QQuickItem::contains(point) && (!m_claims || m_claims(point));
}
