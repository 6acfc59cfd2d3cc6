#include "Soak/SoakScreens.h"

#include "Examples/VisibleItems.h"
#include "Quorvix/QuorvixClient.h"

#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <QtTest/QTest>

#include <algorithm>

namespace {

constexpr int interval = 150; // ms

/// What is clicked. Left out is what clears the list without the soak, changes a held response without it, or
/// opens another program.
constexpr const char *targets[] = {
    "QXFloatingButton",
    "QXRequestRow",
    "QXRequestRow",
    "QXRequestRow",
    "QXLogTreeButton",
    "QXLogTreeRow",
    "QXLogTreeRow",
    "QXLogTreeChevron",
    "QXShareButton",
    "QXShareCurl",
    "QXShareHarFile",
    "QXShareMockServerFile",
    "QXShareRawDetails",
    "QXShareSwiftModel",
    "QXShareModelButton",
    "QXActivityCopy",
    "QXBreakpointsButton",
    "QXBreakpointSwitch",
    "QXBreakpointsEditButton",
    "QXBackButton",
    "QXCloseButton",
    "QXCancelButton",
    "QXCopyBodyButton",
    "QXDisclosureGroup",
    "QXSearchField",
    "QXSearchClearButton",
    "QXRequestSection",
    "QXDecodeValueItem",
};

bool isTarget(const QQuickItem &item)
{
    const QString name = item.objectName();
    return std::any_of(std::begin(targets), std::end(targets),
                       [&](const char *target) { return name == QLatin1StringView(target); });
}

} // namespace

SoakScreens::SoakScreens(quint64 seed) : m_random(seed)
{
    startTimer(interval);
}

SoakScreens::~SoakScreens() = default;

void SoakScreens::open()
{
    m_window = std::make_unique<QQuickWindow>();
    m_window->resize(390, 844);
    m_window->show();
    QuorvixClient::shared().show();
}

void SoakScreens::close()
{
    QuorvixClient::shared().hide();
    m_window.reset();
}

void SoakScreens::timerEvent(QTimerEvent * /*event*/)
{
    if (!m_window)
        return;
    ++m_actions;
    if (m_random.chance(15))
        return QTest::keyClick(m_window.get(), Qt::Key_Escape);
    if (m_random.chance(5))
        return QTest::keyClick(m_window.get(), char('a' + m_random.below(26)));
    QList<QQuickItem *> seen;
    bool isEditing = false;
    visitVisible(m_window->contentItem(), [&](QQuickItem *item) {
        isEditing = isEditing || item->objectName() == QLatin1StringView("QXBreakpointEditorView");
        if (isTarget(*item))
            seen.append(item);
    });
    // The editor covers the others, and a click on it could change the response.
    if (isEditing)
        return;
    if (seen.isEmpty())
        return QTest::keyClick(m_window.get(), Qt::Key_Escape);
    const QQuickItem &item = *m_random.oneOf(seen);
    const QPointF place(item.width() * m_random.below(100) / 100, item.height() * m_random.below(100) / 100);
    const auto button = m_random.chance(5) ? Qt::RightButton : Qt::LeftButton;
    QTest::mouseClick(m_window.get(), button, {}, item.mapToScene(place).toPoint());
}
