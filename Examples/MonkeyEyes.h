#pragma once

#include <QtCore/QMap>
#include <QtCore/QPoint>
#include <QtCore/QPointer>
#include <QtCore/QSet>
#include <QtCore/QString>
#include <QtQuick/QQuickItem>

class MonkeyRandom;
class QQuickWindow;

/// What the monkey sees of a window: its visible named items and the screens. Main thread only.
class MonkeyEyes final
{
public:
    /// Looks at the window, and counts the screens that have appeared since the last look.
    void look(QQuickWindow &window);

    /// A point to act on: within a visible item that has a name, mostly one that no screen
    /// covers, or anywhere. @p what gets the item's name.
    [[nodiscard]] QPoint aim(QQuickWindow &window, MonkeyRandom &random, QString *what) const;
    [[nodiscard]] bool sees(const QString &name) const { return m_items.contains(name); }
    /// One of the items of this name; null when there is none.
    [[nodiscard]] QQuickItem *item(const QString &name) const { return m_items.value(name); }

    /// How often each screen appeared, as "list 12, search 3".
    [[nodiscard]] QString reached() const;

private:
    [[nodiscard]] QString chooseName(MonkeyRandom &random) const;

    QMultiMap<QString, QPointer<QQuickItem>> m_items;
    /// The names that no screen covers.
    QSet<QString> m_front;
    QMap<QString, int> m_reached;
    QStringList m_shown;
};
