#pragma once

#include "Quorvix/QXBreakpointKey.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QSet>

/// The breakpoint rules that are switched on. They are kept in memory only. Main thread only, except for
/// matches().
class QUORVIX_INTERNAL_EXPORT QXBreakpointStore final : public QObject
{
    Q_OBJECT

public:
    using Rules = QSet<QXBreakpointKey>;

    /// The only store; created on first use, lives until the process ends.
    [[nodiscard]] static QXBreakpointStore &shared();

    QXBreakpointStore();

    [[nodiscard]] const Rules &rules() const noexcept { return m_rules; }
    void setRules(const Rules &rules);
    void insert(const QXBreakpointKey &key);
    void remove(const QXBreakpointKey &key);
    [[nodiscard]] bool contains(const QXBreakpointKey &key) const { return m_rules.contains(key); }

    /// The rules sorted by display text in the user's language, ignoring case.
    [[nodiscard]] QList<QXBreakpointKey> sortedRules() const;

    /// Whether the shared store contains the key of a request. Any thread.
    [[nodiscard]] static bool matches(const QUrl &url, const QString &method);

Q_SIGNALS:
    /// Emitted before the rules change.
    void objectWillChange();
    void rulesChanged();

private:
    Rules m_rules;
};
