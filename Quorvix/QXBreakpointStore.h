#pragma once

#include "Quorvix/QXBreakpointKey.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QSet>

/// The breakpoint rules now switched on, in memory only. Main thread only.
class QUORVIX_INTERNAL_EXPORT QXBreakpointStore final : public QObject
{
    Q_OBJECT

public:
    using Rules = QSet<QXBreakpointKey>;

    /// The one store; made on first use, lives until the process ends.
    [[nodiscard]] static QXBreakpointStore &shared();

    QXBreakpointStore();

    [[nodiscard]] const Rules &rules() const noexcept { return m_rules; }
    void setRules(const Rules &rules);
    void insert(const QXBreakpointKey &key);
    void remove(const QXBreakpointKey &key);
    [[nodiscard]] bool contains(const QXBreakpointKey &key) const { return m_rules.contains(key); }

    /// The rules by display text, ascending in the user's language, upper and lower case alike.
    [[nodiscard]] QList<QXBreakpointKey> sortedRules() const;

Q_SIGNALS:
    /// A change is about to take effect.
    void objectWillChange();
    void rulesChanged();

private:
    Rules m_rules;
};
