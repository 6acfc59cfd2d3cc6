#pragma once

#include "Text/QXTextContent.h"

#include <functional>
#include <vector>

class QXTaskProgress;

/// Where a text occurs in a content, in upper or lower case. Occurrences do not overlap. A value; any thread.
///
/// Only their number in each block of the content is kept, and a block is searched again for the positions:
/// a letter can occur 100 million times. The content is searched in parts, from its beginning.
class QXTextMatches
{
public:
    /// What search() finds in a part of the content.
    struct Part
    {
        struct Block
        {
            qsizetype first; ///< the position of the first occurrence
            qsizetype count;
        };
        std::vector<Block> blocks; ///< those with an occurrence
        qsizetype end = 0;         ///< where the next part begins
    };

    QXTextMatches() = default;
    QXTextMatches(QXTextContent content, QString needle);

    [[nodiscard]] bool isComplete() const { return m_needle.isEmpty() || m_end >= m_content.length(); }
    [[nodiscard]] qsizetype count() const { return m_counts.empty() ? 0 : m_counts.back(); }
    /// The position of an occurrence, which must exist.
    [[nodiscard]] qsizetype position(qsizetype match) const;
    /// The first known occurrence that does not begin before @p position; count() if there is none.
    [[nodiscard]] qsizetype matchFrom(qsizetype position) const;
    [[nodiscard]] qsizetype needleLength() const { return m_needle.size(); }

    /// Searches the next part, of about @p length units, and changes nothing. Asks @p progress after each
    /// block.
    [[nodiscard]] Part search(qsizetype length, const QXTaskProgress *progress = nullptr) const;
    void append(const Part &part);

    /// Calls @p visitor with the position of each occurrence that begins between two positions. Returns where
    /// the next one can begin.
    static qsizetype visit(const QXTextContent &content, const QString &needle, qsizetype start,
                           qsizetype end, const std::function<void(qsizetype)> &visitor);

private:
    static constexpr qsizetype blockLength = 32'768;

    [[nodiscard]] std::vector<qsizetype> positionsIn(size_t block) const;

    QXTextContent m_content;
    QString m_needle;
    qsizetype m_end = 0;
    /// For each block with an occurrence: the position of the first one, and their number up to its end.
    std::vector<qsizetype> m_firsts;
    std::vector<qsizetype> m_counts;
};
