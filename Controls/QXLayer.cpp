#include "Controls/QXLayer.h"

#include "Controls/QXPointerFence.h"
#include "Controls/QXSafeArea.h"

#include <QtQuick/QQuickWindow>

namespace {

/// Above everything that Qt Quick shows over a window's content: the z value of its popups is about a
/// million.
constexpr qreal baseZ = 2'000'000;

} // namespace

QXLayer::QXLayer(QQuickWindow &window, int level)
    : m_safeArea(new QXSafeArea(this)), m_page(new QQuickItem(this)), m_window(&window),
      m_content(window.contentItem())
{
    setZ(baseZ + level);
    // The focus inside leaves the window with the layer, whatever moved it inside.
    setFlag(ItemIsFocusScope);
    setParentItem(m_content);
    new QXPointerFence(window, *this);
    connect(m_safeArea, &QXSafeArea::keyboardChanged, this, &QXLayer::fit);
    connect(m_window, &QWindow::screenChanged, this, &QXLayer::fit);
    connect(m_content, &QQuickItem::widthChanged, this, &QXLayer::fit);
    connect(m_content, &QQuickItem::heightChanged, this, &QXLayer::fit);
    fit();
}

QXLayer::~QXLayer()
{
    // While all items are alive: the window would go on sending keys to a deleted one.
    setParentItem(nullptr);
    // The screens use the safe area, so they have to be deleted before it.
    delete m_page;
}

void QXLayer::itemChange(ItemChange change, const ItemChangeData &value)
{
    QQuickItem::itemChange(change, value);
    if (change == ItemParentHasChanged && value.item != m_content)
        Q_EMIT lost();
}

void QXLayer::fit()
{
    if (!m_content || !m_window)
        return;
    m_safeArea->measure(*m_window);
    m_page->setSize({m_content->width(), m_content->height() - m_safeArea->keyboard()});
    // Sheets and screens that move in from below would be painted over a keyboard in the host's scene.
    m_page->setClip(m_safeArea->keyboard() > 0);
}

bool QXLayer::contains(const QPointF &point) const
{
    return m_page->contains(point) && (!m_claims || m_claims(point));
}
