#pragma once

#include "Quorvix/QXBreakpointKey.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QSet>

/// The breakpoint rules that are switched on, by the user on the screens or by the program. They are kept in
/// memory only. Main thread only, except for matches().
///
/// @code
/// const auto key = QXBreakpointKey::make(QUrl(u"https://example.com/users"_s), u"GET"_s);
/// QXBreakpointStore::shared().insert(*key); // the response of this endpoint is held from now on
/// @endcode
///
/// QXBreakpointCenter holds what matches. A rule is in force for the exchanges that end after it was added;
/// for those of a QXNetworkAccessManager, which are held from their beginning, for those that start after it.
class QUORVIX_CORE_EXPORT QXBreakpointStore final : public QObject
{
    Q_OBJECT

public:
    /// A set of rules without an order.
    using Rules = QSet<QXBreakpointKey>;

    /// The only store; created on first use, lives until the process ends.
    [[nodiscard]] static QXBreakpointStore &shared();

    /// A store of its own, without rules, which nobody asks: for tests of a list of rules. Main thread.
    QXBreakpointStore();

    /// The rules, without an order. Main thread.
    [[nodiscard]] const Rules &rules() const noexcept { return m_rules; }
    /// Replaces all rules. Emits both signals, also if the rules stay the same. A response that is held
    /// already stays held. Main thread.
    void setRules(const Rules &rules);
    /// Adds a rule; a rule that exists already stays. Emits both signals. Main thread.
    void insert(const QXBreakpointKey &key);
    /// Removes a rule, if it exists. Emits both signals. Main thread.
    void remove(const QXBreakpointKey &key);
    /// Whether there is this rule. Main thread.
    [[nodiscard]] bool contains(const QXBreakpointKey &key) const { return m_rules.contains(key); }

    /// The rules sorted by display text in the user's language, ignoring case. Main thread.
    [[nodiscard]] QList<QXBreakpointKey> sortedRules() const;

    /// Whether the shared store contains the key of a request. Any thread.
    [[nodiscard]] static bool matches(const QUrl &url, const QString &method);

Q_SIGNALS:
    /// Emitted before the rules change.
    void objectWillChange();
    /// Emitted after the rules have changed.
    void rulesChanged();

private:
    Rules m_rules;
};
