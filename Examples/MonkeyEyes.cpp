#include "Examples/MonkeyEyes.h"

#include "Examples/MonkeyRandom.h"
#include "Examples/VisibleItems.h"

#include <QtQuick/QQuickWindow>

#include <algorithm>

namespace {

/// A screen or a state of one, and the named item that shows it.
struct Screen
{
    const char *title;
    const char *item;
    /// Whether it covers what is painted before it.
    bool covers;
};

constexpr Screen screens[] = {
    {"host", "catalogueGrid", false},
    {"list", "QXRequestListView", true},
    {"search", "QXSearchClearButton", false},
    {"details", "QXRequestDetailsView", true},
    {"body", "QXBodyBlock", false},
    {"tree", "QXLogTreeView", true},
    {"share sheet", "QXActivitySheet", true},
    {"save field", "QXActivityPath", false},
    {"decoded sheet", "QXDecodedPayloadSheet", true},
    {"menu", "QXContextMenuCard", true},
    {"choice", "QXConfirmationDialog", true},
    {"alert", "QXAlert", true},
    {"breakpoints", "QXBreakpointsListView", true},
    {"rule", "QXBreakpointRow", false},
    {"editor", "QXBreakpointEditorView", true},
    {"text handles", "QXSelectionStart", false},
};

bool isCover(const QString &name)
{
    return std::any_of(std::begin(screens), std::end(screens), [&](const Screen &screen) {
        return screen.covers && name == QLatin1StringView(screen.item);
    });
}

/// What the monkey would seldom do by chance, and how often it does it when it can.
struct Guide
{
    const char *item;
    int percent;
};

constexpr Guide guides[] = {
    {"QXDecodeItem", 40}, {"QXDecodeValueItem", 40},  {"QXBreakpointSwitch", 6}, {"QXLogTreeButton", 12},
    {"QXSearchField", 6}, {"QXSearchClearButton", 6}, {"QXActivitySaveAs", 10},  {"QXLogTreeRow", 10},
    {"QXValueRow", 10},   {"QXTextView", 10},
};

/// Scrolls the page around an item so that the item is visible, because the monkey does not see beyond its
/// edges.
void reveal(QQuickItem *item)
{
    for (QQuickItem *page = item->parentItem(); page; page = page->parentItem()) {
        const double bottom = page->property("contentHeight").toDouble() - page->height();
        if (!page->inherits("QQuickFlickable") || bottom <= 0)
            continue;
        const double top = item->mapToItem(page, QPointF()).y();
        if (top < 0 || top > page->height() - item->height()) {
            const double wanted = page->property("contentY").toDouble() + top - page->height() / 3;
            page->setProperty("contentY", std::clamp(wanted, 0.0, bottom));
        }
        return;
    }
}

/// Items that leave a screen or empty it. The monkey would seldom come far without avoiding them.
bool leaves(const QString &name)
{
    static const QStringList names{
        QStringLiteral("QXActivityDone"), QStringLiteral("QXBackButton"),  QStringLiteral("QXCloseButton"),
        QStringLiteral("QXSheetDone"),    QStringLiteral("QXTrashButton"), QStringLiteral("QXFloatingButton"),
    };
    return names.contains(name);
}

} // namespace

void MonkeyEyes::look(QQuickWindow &window)
{
    m_items.clear();
    m_front.clear();
    visitVisible(window.contentItem(), [this](QQuickItem *item) {
        const QString name = item->objectName();
        if (name.isEmpty())
            return;
        m_items.insert(name, item);
        if (isCover(name))
            m_front.clear();
        m_front.insert(name);
    });
    QStringList shown;
    for (const Screen &screen : screens) {
        if (sees(QString::fromLatin1(screen.item)))
            shown += QString::fromLatin1(screen.title);
    }
    for (const QString &title : std::as_const(shown))
        m_reached[title] += !m_shown.contains(title);
    m_shown = shown;
}

QString MonkeyEyes::chooseName(MonkeyRandom &random) const
{
    for (const Guide &guide : guides) {
        QString name = QString::fromLatin1(guide.item);
        if (m_front.contains(name) && random.chance(guide.percent))
            return name;
    }
    if (random.chance(10) || m_front.isEmpty())
        return random.oneOf(m_items.uniqueKeys());
    QStringList front(m_front.cbegin(), m_front.cend());
    front.sort();
    QString name = random.oneOf(front);
    for (int attempt = 0; attempt < 3 && leaves(name); ++attempt)
        name = random.oneOf(front);
    return name;
}

QPoint MonkeyEyes::aim(QQuickWindow &window, MonkeyRandom &random, QString *what) const
{
    const QPoint anywhere(random.below(window.width()), random.below(window.height()));
    if (m_items.isEmpty() || random.chance(15))
        return anywhere;
    const QString name = chooseName(random);
    const QList<QPointer<QQuickItem>> items = m_items.values(name);
    QQuickItem *const item = random.oneOf(items);
    if (!item)
        return anywhere;
    if (random.chance(50))
        reveal(item);
    *what = name;
    const QPointF inside(random.between(1, 9) * item->width() / 10,
                         random.between(1, 9) * item->height() / 10);
    const QPoint point = item->mapToScene(inside).toPoint();
    return {qBound(0, point.x(), window.width() - 1), qBound(0, point.y(), window.height() - 1)};
}

QString MonkeyEyes::reached() const
{
    QStringList reached;
    for (const Screen &screen : screens) {
        const QString title = QString::fromLatin1(screen.title);
        reached += QStringLiteral("%1 %2").arg(title).arg(m_reached.value(title));
    }
    return reached.join(QStringLiteral(", "));
}
