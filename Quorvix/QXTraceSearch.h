#pragma once

#include "Quorvix/QXTraceTexts.h"

#include <vector>

/// The search for the traces whose URL, method or status code contains a query. Works in steps from the
/// newest trace to the oldest, so that an owner on the main thread can limit the time of each step.
///
/// A position counts from the oldest trace. The list of traces and their texts belong to the owner, who
/// passes them to each function.
class QXTraceSearch final
{
public:
    /// Whether there is a query. Without one, nothing is searched.
    [[nodiscard]] bool isActive() const noexcept { return !m_query.isEmpty(); }
    /// Whether every trace has been examined.
    [[nodiscard]] bool isComplete() const noexcept { return m_unexamined == 0; }
    [[nodiscard]] const QByteArray &query() const noexcept { return m_query; }

    [[nodiscard]] qsizetype matchCount() const noexcept { return m_ranks.back(); }
    /// The position of a match, counted from the newest match.
    [[nodiscard]] qsizetype match(qsizetype index) const;
    /// The positions of all matches, the newest first.
    [[nodiscard]] std::vector<qsizetype> matches() const;
    /// Whether both searches have found the same traces so far.
    [[nodiscard]] bool hasSameMatches(const QXTraceSearch &other) const;

    /// Makes the query of a search text: lower case, without white space at both ends.
    [[nodiscard]] static QByteArray queryFor(const QString &searchText);

    /// Starts the search for a query in a list of @p count traces; forgets all matches. A trace that the
    /// current query does not match is not examined again for a query that contains the current one.
    void begin(const QByteArray &query, qsizetype count);
    /// Starts the search for the same query in another list.
    void restart(qsizetype count);

    /// Examines traces until it has read about @p limit bytes. The matches are older than all others.
    void examine(const QXTraceList &traces, QXTraceTexts &texts, qsizetype limit);
    /// The matches from a position up to the newest trace.
    [[nodiscard]] std::vector<qsizetype> examineFrom(qsizetype first, const QXTraceList &traces,
                                                     QXTraceTexts &texts) const;
    /// Adds what examineFrom() has found in a list that now has @p count traces.
    void addNewer(const std::vector<qsizetype> &found, qsizetype count);

    /// What the change of a trace means for the matches.
    struct Change
    {
        enum Kind { None, Changed, Added, Removed };
        Kind kind = None;
        /// The place among the matches, counted from the newest.
        qsizetype index = 0;
    };
    /// Examines a trace whose text has changed, unless it will be examined anyway.
    [[nodiscard]] Change examineChange(const QXTraceTexts &texts, qsizetype position);
    /// Adds or removes a match as examineChange() found.
    void apply(const Change &change, qsizetype position);

private:
    using Mask = QXTraceTexts::Mask;

    void restart(std::vector<Mask> wanted, qsizetype count);
    void countFromBlock(std::size_t block);

    QByteArray m_query;
    /// All positions below this one have to be examined,
    qsizetype m_unexamined = 0;
    /// if they are in one of these, one for each block.
    std::vector<Mask> m_wanted;
    /// The matches, one for each block.
    std::vector<Mask> m_matches;
    /// The number of matches in all older blocks; one more for the number of all matches.
    std::vector<qint32> m_ranks{0};
};
