#include "Examples/TourRobot.h"

#include "Examples/SteadyTexts.h"
#include "Examples/VisibleItems.h"

#include <QtCore/QAbstractAnimation>
#include <QtCore/QDeadlineTimer>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QWheelEvent>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <QtTest/QTest>

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace {

constexpr int dragSteps = 12;
/// The time between the steps of a drag, in milliseconds by the clock of the simulated events.
constexpr int dragInterval = 16;
/// After so many steps a page or an item that still moves is seen at another place.
constexpr int stepsThatShow = 4;
/// The angle of one step of a mouse wheel, in eighths of a degree.
constexpr int wheelStep = 120;
constexpr int mostTurns = 4;
/// A movement is so slow at its end that some pictures of it are equal.
constexpr int restingPictures = 4;
/// Closer to an item than this many pixels, the wheel turns by one step at a time.
constexpr double singleStepsWithin = 500;
/// No page scrolls farther than this with one step of a wide turn.
constexpr double pixelsPerStep = 144;

/// Counts the steps of the animations in the application. Timers tell nothing about them on a busy machine.
class StepCounter final : public QAbstractAnimation
{
public:
    [[nodiscard]] int duration() const override { return -1; }
    [[nodiscard]] int count() const noexcept { return m_count; }

protected:
    void updateCurrentTime(int /*time*/) override { ++m_count; }

private:
    int m_count = 0;
};

/// Whether an item matches a name as TourRobot::find() describes it.
bool isNamed(const QQuickItem *item, const QString &name)
{
    const qsizetype colon = name.indexOf(u':');
    if (colon < 0 || item->objectName() != QStringView(name).first(colon))
        return item->objectName() == name;
    const QStringView label = QStringView(name).sliced(colon + 1);
    const auto has = [&](const char *property) {
        return item->property(property).toString() == label;
    };
    return has("label") || has("key") || has("text");
}

/// The nearest ancestor of @p item that scrolls; null when there is none.
QQuickItem *scroller(const QQuickItem *item)
{
    for (QQuickItem *parent = item->parentItem(); parent; parent = parent->parentItem()) {
        if (parent->inherits("QQuickFlickable"))
            return parent;
    }
    return nullptr;
}

/// The scroll positions of the visible pages.
QList<QPointF> scrollPositions(QQuickItem *content)
{
    QList<QPointF> positions;
    visitVisible(content, [&](const QQuickItem *item) {
        if (item->inherits("QQuickFlickable"))
            positions += {item->property("contentX").toDouble(), item->property("contentY").toDouble()};
    });
    return positions;
}

/// Whether an item takes clicks: it is enabled, and no stack of pages is changing pages around it.
bool isReady(const QQuickItem *item)
{
    if (!item || !item->isEnabled())
        return false;
    for (const QQuickItem *parent = item->parentItem(); parent; parent = parent->parentItem()) {
        if (parent->property("busy").toBool())
            return false;
    }
    return true;
}

} // namespace

QQuickItem *TourRobot::find(const QString &name) const
{
    QQuickItem *found = nullptr;
    visitVisible(m_window.contentItem(), [&](QQuickItem *item) {
        if (isNamed(item, name))
            found = item;
    });
    return found;
}

int TourRobot::count(const QString &name) const
{
    int count = 0;
    visitVisible(m_window.contentItem(), [&](const QQuickItem *item) { count += isNamed(item, name); });
    return count;
}

QString TourRobot::text(const QString &name) const
{
    const QQuickItem *const item = find(name);
    return item ? item->property("text").toString() : QString();
}

bool TourRobot::waitUntil(const std::function<bool()> &condition, const QString &what,
                          std::chrono::milliseconds limit)
{
    return QTest::qWaitFor(condition, static_cast<int>(limit.count())) || complain(what);
}

bool TourRobot::waitFor(const QString &name, std::chrono::milliseconds limit)
{
    return waitUntil([&] { return find(name) != nullptr; }, QStringLiteral("no ") + name, limit);
}

bool TourRobot::waitUntilGone(const QString &name)
{
    return waitUntil([&] { return find(name) == nullptr; }, name + QStringLiteral(" is still there"));
}

bool TourRobot::click(const QString &name)
{
    return clickWith(Qt::LeftButton, name);
}

bool TourRobot::show(const QString &name)
{
    return waitFor(name) && bringIntoView(name) && waitUntilStill(name);
}

bool TourRobot::clickFirst(const QString &name)
{
    if (!show(name))
        return false;
    QPoint highest = middle(*find(name));
    visitVisible(m_window.contentItem(), [&](const QQuickItem *item) {
        if (isNamed(item, name) && middle(*item).y() < highest.y())
            highest = middle(*item);
    });
    QTest::mouseClick(&m_window, Qt::LeftButton, {}, highest);
    return true;
}

bool TourRobot::rightClick(const QString &name)
{
    return clickWith(Qt::RightButton, name);
}

bool TourRobot::clickWith(Qt::MouseButton button, const QString &name)
{
    if (!show(name))
        return false;
    QTest::mouseClick(&m_window, button, {}, middle(*find(name)));
    return true;
}

bool TourRobot::press(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(&m_window, key, modifiers);
    return true;
}

bool TourRobot::paste(const QString &name, const QString &text)
{
    if (!click(name))
        return false;
    QGuiApplication::clipboard()->setText(text);
    press(Qt::Key_A, Qt::ControlModifier);
    press(Qt::Key_V, Qt::ControlModifier);
    return waitUntil([&] { return this->text(name) == text; },
                     name + QStringLiteral(" did not take the text"));
}

bool TourRobot::type(const QString &name, const QString &text)
{
    if (!click(name))
        return false;
    for (const char letter : text.toLatin1())
        QTest::keyClick(&m_window, letter);
    return waitUntil([&] { return this->text(name).endsWith(text); },
                     QStringLiteral("%1 did not take \"%2\"").arg(name, text));
}

bool TourRobot::erase(const QString &name)
{
    if (!click(name))
        return false;
    QTest::keyClick(&m_window, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(&m_window, Qt::Key_Backspace);
    return waitUntil([&] { return text(name).isEmpty(); }, name + QStringLiteral(" is not empty"));
}

bool TourRobot::drag(const QString &name, QPoint by)
{
    if (!waitFor(name))
        return false;
    const QPoint start = middle(*find(name));
    QTest::mousePress(&m_window, Qt::LeftButton, {}, start);
    for (int step = 1; step <= dragSteps; ++step)
        QTest::mouseMove(&m_window, start + by * step / dragSteps, dragInterval);
    QTest::mouseRelease(&m_window, Qt::LeftButton, {}, start + by, dragInterval);
    return true;
}

bool TourRobot::scroll(const QString &name, int turn)
{
    if (!waitFor(name))
        return false;
    const QPoint at = middle(*find(name));
    // A long way takes few wide turns: the page comes to rest after each, which takes its time.
    const int step = std::max(wheelStep, std::abs(turn) / mostTurns);
    for (int left = std::abs(turn); left > 0; left -= step) {
        turnWheel(at, turn < 0 ? -std::min(left, step) : std::min(left, step));
        // The distance of fast turns differs between Qt releases. Separate turns have the same distance in
        // all.
        if (!waitUntil([this] { return isAtRest(); }, name + QStringLiteral(" does not come to rest")))
            return false;
    }
    return true;
}

bool TourRobot::resize(QSize size)
{
    m_window.resize(size);
    // Where a device pixel is no whole number of units, the size may differ by one.
    return waitUntil(
        [&] {
            const QSizeF rest = m_window.contentItem()->size() - size;
            return qAbs(rest.width()) <= 1 && qAbs(rest.height()) <= 1;
        },
        QStringLiteral("the window did not take its size"));
}

bool TourRobot::screenshot(const QString &path)
{
    std::optional<SteadyTexts> steady;
    QImage picture;
    int equal = 0;
    for (const QDeadlineTimer limit(defaultTimeout); equal < restingPictures && !limit.hasExpired();) {
        if (!waitForFrames())
            return false;
        // Texts may have changed meanwhile.
        if (m_isReproducible)
            steady.emplace(m_window.contentItem());
        QImage next = m_window.grabWindow();
        const bool isSame = std::exchange(picture, next) == next && !showsScrolling();
        equal = isSame ? equal + 1 : 0;
    }
    if (picture.isNull() || !picture.save(path))
        return complain(QStringLiteral("cannot save ") + path);
    return equal == restingPictures || complain(QStringLiteral("the picture never comes to rest"));
}

bool TourRobot::showsScrolling() const
{
    const QQuickItem *const button = find(QStringLiteral("QXFloatingButton"));
    bool shows = button && button->parentItem()->opacity() < 1;
    visitVisible(m_window.contentItem(), [&](const QQuickItem *item) {
        if (!item->inherits("QQuickScrollBar") || item->property("hovered").toBool())
            return;
        const auto *const bar = item->property("contentItem").value<QQuickItem *>();
        shows = shows || (bar && bar->opacity() > 0);
    });
    return shows;
}

bool TourRobot::waitForFrames()
{
    StepCounter steps;
    steps.start();
    int frames = 0;
    // Emitted when the items are laid out and the frame shows them.
    const auto counting = QObject::connect(&m_window, &QQuickWindow::afterAnimating, [&] { ++frames; });
    const bool done = waitUntil(
        [&] {
            m_window.update();
            return steps.count() >= stepsThatShow && frames >= 2;
        },
        QStringLiteral("the window draws nothing"));
    QObject::disconnect(counting);
    return done;
}

bool TourRobot::check(bool condition, const char *otherwise)
{
    return condition || complain(QString::fromUtf8(otherwise));
}

bool TourRobot::complain(const QString &complaint)
{
    m_complaint = complaint;
    return false;
}

double TourRobot::distanceFromView(const QQuickItem *item) const
{
    const QQuickItem *const around = item ? scroller(item) : nullptr;
    if (!around)
        return 0;
    const double y = item->mapToItem(around, QPointF(0, item->height() / 2)).y();
    if (y < 0)
        return y - item->height();
    // Of an item that is taller than the view, the middle is enough.
    if (const double below = y + std::min(item->height(), around->height()) / 2 - around->height(); below > 0)
        return below;
    // A user cannot press through the floating button either.
    const QQuickItem *const button = find(QStringLiteral("QXFloatingButton"));
    if (!button || !button->contains(button->mapFromScene(middle(*item))))
        return 0;
    return around->property("atYEnd").toBool() ? -button->height() : button->height();
}

bool TourRobot::bringIntoView(const QString &name)
{
    return waitUntil(
        [&] {
            // Turns add up: a page that still scrolls would go past the item.
            if (!isAtRest())
                return false;
            const QQuickItem *const item = find(name);
            const double by = distanceFromView(item);
            if (by == 0)
                return true;
            // A mouse wheel turns by whole steps only. Smaller turns would in the end scroll by less than a
            // pixel.
            const int steps = std::max(1, int((std::abs(by) - singleStepsWithin) / pixelsPerStep));
            turnWheel(middle(*scroller(item)), by < 0 ? -steps * wheelStep : steps * wheelStep);
            return false;
        },
        QStringLiteral("cannot scroll to ") + name);
}

void TourRobot::turnWheel(QPoint at, int turn)
{
    const QPoint down(0, -turn);
    QWheelEvent wheel(at, m_window.mapToGlobal(at), {}, down, Qt::NoButton, {}, Qt::NoScrollPhase, false);
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    wheel.setTimestamp(
        static_cast<quint64>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count()));
    QCoreApplication::sendEvent(&m_window, &wheel);
}

bool TourRobot::isAtRest()
{
    const QList<QPointF> positions = scrollPositions(m_window.contentItem());
    return waitForFrames() && scrollPositions(m_window.contentItem()) == positions;
}

bool TourRobot::waitUntilStill(const QString &name)
{
    std::optional<QPoint> last;
    return waitUntil(
        [&] {
            if (!waitForFrames())
                return false;
            const QQuickItem *const item = find(name);
            const auto now = isReady(item) ? std::optional(middle(*item)) : std::nullopt;
            return now && std::exchange(last, now) == now;
        },
        QStringLiteral("%1 does not keep still").arg(name));
}

QPoint TourRobot::middle(const QQuickItem &item) const
{
    return item.mapToScene(QPointF(item.width() / 2, item.height() / 2)).toPoint();
}
