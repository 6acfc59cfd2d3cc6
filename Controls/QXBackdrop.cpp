#include "Controls/QXBackdrop.h"

#include "Controls/QXFrost.h"
#include "Controls/QXLayer.h"

#include <QtQml/QQmlContext>
#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <tuple>
#include <utility>

namespace {

/// The shortest time between two pictures while the host renders, in milliseconds.
constexpr qint64 pictureInterval = 250;
/// With more host items than this beneath the backdrop, the effect costs the host too much.
constexpr qsizetype maximumPanes = 16;

/// Whether @p item is part of the host's content, and not a layer of the inspector or the popup overlay.
bool isContent(const QQuickItem &item)
{
    return !qobject_cast<const QXLayer *>(&item) && !item.inherits("QQuickOverlay");
}

/// Whether @p item or one of its children is visible within @p area. The bars of an application window are
/// children of the content but lie outside of it.
bool reaches(const QQuickItem &item, const QRectF &area)
{
    // An item without a size cannot be rendered to a picture.
    if (item.boundingRect().isEmpty())
        return false;
    if (item.boundingRect().intersects(area))
        return true;
    const QList<QQuickItem *> children = item.clip() ? QList<QQuickItem *>() : item.childItems();
    return std::any_of(children.cbegin(), children.cend(), [&](const QQuickItem *child) {
        return child->isVisible() && child->mapRectToItem(&item, child->boundingRect()).intersects(area);
    });
}

} // namespace

QXBackdrop::QXBackdrop(QQuickItem *parent) : QQuickItem(parent)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &QXBackdrop::takePictures);
}

QXBackdrop::~QXBackdrop()
{
    watch(nullptr);
}

QList<QQuickItem *> QXBackdrop::hostItems() const
{
    if (!m_content)
        return {};
    QList<QQuickItem *> items = m_content->childItems();
    items.removeIf([this](const QQuickItem *item) {
        return !isContent(*item) || !item->isVisible() || item->opacity() <= 0 ||
               !reaches(*item, mapRectToItem(item, boundingRect()));
    });
    std::stable_sort(items.begin(), items.end(),
                     [](const auto *a, const auto *b) { return a->z() < b->z(); });
    return items.size() <= maximumPanes ? items : QList<QQuickItem *>();
}

void QXBackdrop::refresh()
{
    if (m_content)
        m_timer.start(0);
}

void QXBackdrop::componentComplete()
{
    QQuickItem::componentComplete();
    watch(isVisible() ? window() : nullptr);
}

void QXBackdrop::itemChange(ItemChange change, const ItemChangeData &data)
{
    QQuickItem::itemChange(change, data);
    if (change == ItemSceneChange)
        watch(isComponentComplete() && isVisible() ? data.window : nullptr);
    else if (change == ItemVisibleHasChanged)
        watch(isComponentComplete() && data.boolValue ? window() : nullptr);
}

void QXBackdrop::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    for (const Pane &pane : m_panes)
        pane.frost->setSize(size());
    refresh();
}

void QXBackdrop::watch(QQuickWindow *window)
{
    if (m_window == window)
        return;
    // A window that is being destroyed has no content item any more.
    if (m_window)
        m_window->disconnect(this);
    if (m_content)
        m_content->disconnect(this);
    m_timer.stop();
    show({});
    m_window = window;
    m_content = window ? window->contentItem() : nullptr;
    if (!m_content)
        return;
    // A removed item may move to another window or be destroyed, so its pane has to be deleted first.
    connect(m_content, &QQuickItem::childrenChanged, this, [this] {
        const QList<QQuickItem *> children = m_content->childItems();
        std::erase_if(m_panes, [&](const Pane &pane) { return !children.contains(pane.item); });
        updateFrosted();
        refresh();
    });
    // The main thread is blocked while the render thread synchronises. The two queued calls arrive in order.
    connect(
        m_window, &QQuickWindow::afterSynchronizing, this,
        [this] {
            const bool isOwn = std::exchange(m_hasNewPictures, false);
            QMetaObject::invokeMethod(
                this, [this, isOwn] { m_isOwnFrame = isOwn; }, Qt::QueuedConnection);
        },
        Qt::DirectConnection);
    connect(m_window, &QQuickWindow::frameSwapped, this, &QXBackdrop::handleFrame, Qt::QueuedConnection);
    refresh();
}

/// Called after each frame. The host may have changed what is beneath, so new pictures are needed. A frame
/// that only shows new pictures must not request the next ones, or rendering would never stop.
void QXBackdrop::handleFrame()
{
    if (std::exchange(m_isOwnFrame, false) || m_timer.isActive() || !m_content)
        return;
    const qint64 rest = m_sincePictures.isValid() ? pictureInterval - m_sincePictures.elapsed() : 0;
    m_timer.start(int(std::max<qint64>(0, rest)));
}

void QXBackdrop::takePictures()
{
    show(hostItems());
    m_sincePictures.start();
    for (const Pane &pane : m_panes) {
        QQuickItem *const source = pane.frost->source();
        // The item's own opacity is not part of its picture.
        pane.frost->setOpacity(pane.item->opacity());
        source->setProperty("sourceRect", mapRectToItem(pane.item, boundingRect()));
        QMetaObject::invokeMethod(source, "scheduleUpdate");
        m_hasNewPictures = true;
    }
}

/// Creates missing panes and deletes others, so that there is one pane for each of @p items.
void QXBackdrop::show(const QList<QQuickItem *> &items)
{
    const bool isSame =
        std::equal(m_panes.cbegin(), m_panes.cend(), items.cbegin(), items.cend(),
                   [](const Pane &pane, const QQuickItem *item) { return pane.item == item; });
    if (isSame)
        return;
    m_panes.clear();
    for (QQuickItem *const item : items) {
        std::unique_ptr<QXFrost> frost = makePane();
        if (!frost)
            break;
        frost->source()->setProperty("sourceItem", QVariant::fromValue(item));
        m_panes.push_back({item, std::move(frost)});
    }
    updateFrosted();
}

void QXBackdrop::updateFrosted()
{
    if (std::exchange(m_isFrosted, !m_panes.empty()) != m_isFrosted)
        Q_EMIT isFrostedChanged();
}

std::unique_ptr<QXFrost> QXBackdrop::makePane()
{
    std::unique_ptr<QObject> object(m_component ? m_component->create(m_component->creationContext())
                                                : nullptr);
    std::unique_ptr<QXFrost> frost(qobject_cast<QXFrost *>(object.get()));
    if (!frost)
        return {};
    std::ignore = object.release();
    if (!frost->source())
        return {};
    frost->setParentItem(this);
    frost->setSize(size());
    return frost;
}
