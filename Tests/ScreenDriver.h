#pragma once

#include "Examples/VisibleItems.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <QtTest/QTest>

#include <algorithm>

/// Finds items on a window by their object names and acts on them by real events.
namespace ScreenDriver {

inline QList<QQuickItem *> findAll(QQuickItem &root, const char *name)
{
    QList<QQuickItem *> found;
    visitVisible(&root, [&](QQuickItem *item) {
        if (item->objectName() == QLatin1StringView(name))
            found.append(item);
    });
    return found;
}

inline QList<QQuickItem *> findAll(QQuickWindow &window, const char *name)
{
    return findAll(*window.contentItem(), name);
}

/// The one painted last in a window or an item, or null.
inline QQuickItem *find(auto &place, const char *name)
{
    const auto found = findAll(place, name);
    return found.isEmpty() ? nullptr : found.constLast();
}

inline QPoint middle(const QQuickItem &item)
{
    return item.mapToScene(QPointF(item.width() / 2, item.height() / 2)).toPoint();
}

/// Whether a view is on its way, so that the next press catches it. Where frames come late, it can stand
/// still for a while.
inline bool isMoving(QQuickWindow &window)
{
    const auto catchers = findAll(window, "QXCatcher");
    return std::any_of(catchers.begin(), catchers.end(),
                       [](const auto *item) { return item->property("enabled").toBool(); });
}

/// Waits until an item is there and has come to rest.
[[nodiscard]] inline bool waitForRest(QQuickWindow &window, const char *name)
{
    QPointF before;
    int still = 0;
    return QTest::qWaitFor([&] {
        const QQuickItem *const item = find(window, name);
        const QPointF now = item ? item->mapToScene({}) : QPointF();
        still = item && now == before && !isMoving(window) ? still + 1 : 0;
        before = now;
        return still > 4; // looks that are some frames apart
    });
}

inline void click(QQuickWindow &window, const char *name)
{
    QVERIFY2(waitForRest(window, name), name);
    QTest::mouseClick(&window, Qt::LeftButton, {}, middle(*find(window, name)));
}

inline void type(QQuickWindow &window, const char *text)
{
    for (; *text; ++text)
        QTest::keyClick(&window, *text);
}

/// Presses, moves in steps and lets go. The pointer rests before that, so that it throws nothing: the times
/// of these events are made up, and on a busy display a throw can go the wrong way.
inline void drag(QQuickWindow &window, QPoint from, QPoint by)
{
    constexpr int steps = 8;
    constexpr int rest = 150; // milliseconds
    QTest::mousePress(&window, Qt::LeftButton, {}, from);
    for (int step = 1; step <= steps; ++step)
        QTest::mouseMove(&window, from + by * step / steps);
    QTest::mouseRelease(&window, Qt::LeftButton, {}, from + by, rest);
}

/// Turns the wheel by steps of one notch, down when @p notches is positive.
inline void turnWheel(QQuickWindow &window, QPoint at, int notches)
{
    for (int i = 0; i < std::abs(notches); ++i) {
        QWheelEvent event(at, window.mapToGlobal(at), {}, QPoint(0, notches > 0 ? -120 : 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        event.setTimestamp(quint64(QDateTime::currentMSecsSinceEpoch()));
        QCoreApplication::sendEvent(&window, &event);
    }
}

} // namespace ScreenDriver
