#pragma once

#include "Quorvix/QXTraceList.h"

#include <deque>
#include <vector>

/// The search for the traces whose URL, method or status code contains a query. Works in steps from the
/// newest trace to the oldest, so that an owner on the main thread can limit the time of each step.
///
/// A position counts from the oldest trace. The list of traces belongs to the owner, who passes it to each
/// function and who announces rows before it adds what a function has found.
class QXTraceSearch final
{
public:
    using Positions = std::vector<quint32>;

    /// Whether there is a query. Without one, nothing is searched.
    [[nodiscard]] bool isActive() const noexcept { return !m_query.isEmpty(); }
    /// Whether every trace has been examined.
    [[nodiscard]] bool isComplete() const noexcept { return m_unexamined == 0 && m_candidates.empty(); }
    [[nodiscard]] const QByteArray &query() const noexcept { return m_query; }

    [[nodiscard]] qsizetype matchCount() const noexcept { return qsizetype(m_matches.size()); }
    /// The position of a match, counted from the newest match.
    [[nodiscard]] qsizetype match(qsizetype index) const;

    /// Makes the query of a search text: lower case, without white space at both ends.
    [[nodiscard]] static QByteArray queryFor(const QString &searchText);

    /// Starts the search for a query in a list of @p count traces; forgets all matches. A trace that the
    /// current query does not match is not examined again for a query that contains the current one.
    void begin(const QByteArray &query, qsizetype count);
    /// Starts the search for the same query in another list.
    void restart(qsizetype count);

    /// Examines traces until it has read about @p limit bytes. Returns the matches, the newest first; they
    /// are older than all matches so far.
    [[nodiscard]] Positions examine(const QXTraceList &traces, qsizetype limit);
    /// The matches from a position up to the newest trace, the oldest first.
    [[nodiscard]] Positions examineFrom(const QXTraceList &traces, qsizetype first) const;
    void addOlder(const Positions &found);
    void addNewer(const Positions &found);

    /// What the change of a trace means for the matches.
    struct Change
    {
        enum Kind { None, Changed, Added, Removed };
        Kind kind = None;
        /// The place among the matches, counted from the newest.
        qsizetype index = 0;
    };
    /// Examines a trace that has changed, unless it will be examined anyway.
    [[nodiscard]] Change examineChange(const QXTraceList &traces, qsizetype position);
    /// Adds or removes a match as examineChange() found.
    void apply(const Change &change, qsizetype position);

private:
    QByteArray m_query;
    /// All ascending. Those that have to be examined: all positions below m_unexamined, then the candidates.
    quint32 m_unexamined = 0;
    Positions m_candidates;
    /// All of them are newer than the last candidate.
    std::deque<quint32> m_matches;
};
