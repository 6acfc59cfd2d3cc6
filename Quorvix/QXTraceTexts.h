#pragma once

#include "Quorvix/QXTraceList.h"

#include <array>
#include <string_view>
#include <vector>

/// The texts that a search looks through: of each trace the URL, the method and the status code in lower
/// case, as UTF-8. They stand in few blocks of memory, so that a search reads them at the speed of memory.
///
/// The texts are made when they are needed, from the newest trace to the oldest. A position counts from the
/// oldest trace. The list of traces belongs to the owner, who passes it to each function.
class QXTraceTexts final
{
public:
    /// The number of traces in a block.
    static constexpr qsizetype blockSize = 64;
    /// One bit for each trace of a block, the lowest for the oldest.
    using Mask = quint64;

    /// A text to search for, which is not empty.
    class Query
    {
    public:
        Query(const QXTraceTexts &texts, std::string_view text);

    private:
        friend class QXTraceTexts;
        std::string_view m_text;
        /// Where the byte is that is the rarest in the texts, because a search for it stops least often.
        std::size_t m_rarest = 0;
    };

    /// Whether no text has been made.
    [[nodiscard]] bool isEmpty() const noexcept { return m_end == m_begin; }
    /// Whether every trace of the list has a text.
    [[nodiscard]] bool isComplete(const QXTraceList &traces) const noexcept
    {
        return m_begin == 0 && m_end == traces.size();
    }
    /// The oldest position that has a text; all newer ones have one too.
    [[nodiscard]] qsizetype begin() const noexcept { return m_begin; }
    void clear();

    /// Makes the texts from begin() down to a position, until this has cost as much as reading @p limit
    /// bytes. Returns the cost.
    qsizetype makeDownTo(qsizetype position, const QXTraceList &traces, qsizetype limit);
    /// Makes the texts of the traces that are newer than the newest with a text.
    void makeNewest(const QXTraceList &traces);
    /// Adapts the text of a position to the change from one trace to another.
    void update(qsizetype position, const QXRequestTrace &before, const QXRequestTrace &now);

    /// The traces among @p wanted in a block whose text contains the query. Traces without a text do not.
    [[nodiscard]] Mask find(qsizetype block, const Query &query, Mask wanted) const;
    /// The number of bytes that find() reads for these traces, about.
    [[nodiscard]] qsizetype cost(qsizetype block, Mask wanted) const;

private:
    struct Entry
    {
        /// Where the text begins in its block.
        quint16 start;
        /// The position of the trace within its block.
        quint8 slot;
        /// How many bytes are equal at the beginning of this text and of the one before it.
        quint8 shared;
    };
    /// A text that is too long for the block, or whose URL has changed.
    struct Apart
    {
        quint8 slot;
        QByteArray text;
    };
    struct Block
    {
        QByteArray text;
        std::vector<Entry> entries;
        std::vector<Apart> apart;
    };

    qsizetype make(qsizetype position, const QXRequestTrace &trace);
    static Mask findTogether(const Block &block, const Query &query);

    std::vector<Block> m_blocks;
    qsizetype m_begin = 0;
    qsizetype m_end = 0;
    /// How often each byte occurs in the texts.
    std::array<quint32, 256> m_occurrences{};
};
