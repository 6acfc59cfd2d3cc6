#include "Quorvix/QXTraceTexts.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>

namespace {

using Mask = QXTraceTexts::Mask;

/// Ends each part of a text. UTF-8 does not contain it, so no query matches across parts.
constexpr char separator = '\xff';
/// The room for the status code, which comes last because it changes. It is filled with separators.
constexpr qsizetype statusRoom = 3;
/// Longer texts stand apart, so that an offset in a block has 16 bits.
constexpr qsizetype longestTogether = 1000;
static_assert(longestTogether * QXTraceTexts::blockSize <= std::numeric_limits<quint16>::max());
/// What it costs to make a text, as a number of bytes that are read in the same time.
constexpr qsizetype costOfText = 3000;
constexpr qsizetype costOfMadeByte = 20;
/// What it costs to look at a block.
constexpr qsizetype costOfBlock = 200;

constexpr Mask bit(qsizetype slot)
{
    return Mask(1) << slot;
}

/// Writes the status code at the end of a text; returns false if it does not fit.
bool writeStatus(const QXRequestTrace &trace, char *room)
{
    std::fill_n(room, statusRoom, separator);
    if (!trace.response)
        return true;
    return std::to_chars(room, room + statusRoom, trace.response->statusCode).ec == std::errc();
}

/// The URL and the method.
QByteArray fixedText(const QXRequestTrace &trace)
{
    QByteArray text;
    if (trace.url)
        text = trace.url->toEncoded().toLower();
    text += separator;
    if (trace.method)
        text += trace.method->toLower().toUtf8();
    return text += separator;
}

/// The URL and the method, which @p fixed is, and the status code.
QByteArray fullText(QByteArray fixed, const QXRequestTrace &trace)
{
    if (trace.response)
        fixed += QByteArray::number(trace.response->statusCode);
    return fixed;
}

} // namespace

QXTraceTexts::Query::Query(const QXTraceTexts &texts, std::string_view text) : m_text(text)
{
    const auto occurrences = [&](char byte) {
        return texts.m_occurrences[quint8(byte)];
    };
    const auto rarest = std::min_element(text.begin(), text.end(), [&](char left, char right) {
        return occurrences(left) < occurrences(right);
    });
    m_rarest = std::size_t(rarest - text.begin());
}

void QXTraceTexts::clear()
{
    *this = {};
}

qsizetype QXTraceTexts::make(qsizetype position, const QXRequestTrace &trace)
{
    Block &block = m_blocks[std::size_t(position / blockSize)];
    const auto slot = quint8(position % blockSize);
    const QByteArray fixed = fixedText(trace);
    std::array<char, statusRoom + 1> status{};
    status.back() = separator;
    if (fixed.size() + qsizetype(status.size()) > longestTogether || !writeStatus(trace, status.data())) {
        block.apart.push_back({slot, fullText(fixed, trace)});
    } else {
        Entry entry{quint16(block.text.size()), slot, 0};
        if (!block.entries.empty()) {
            const qsizetype before = block.entries.back().start;
            const qsizetype fixedBefore = block.text.size() - before - qsizetype(status.size());
            const auto end = block.text.cbegin() + before + std::min<qsizetype>(fixedBefore, 255);
            const auto differing =
                std::mismatch(block.text.cbegin() + before, end, fixed.cbegin(), fixed.cend()).first;
            entry.shared = quint8(differing - block.text.cbegin() - before);
        }
        for (const char byte : fixed)
            ++m_occurrences[quint8(byte)];
        block.entries.push_back(entry);
        block.text.append(fixed).append(status.data(), status.size());
    }
    if (block.entries.size() + block.apart.size() == blockSize) {
        block.text.squeeze();
        block.entries.shrink_to_fit();
    }
    return costOfText + costOfMadeByte * fixed.size();
}

qsizetype QXTraceTexts::makeDownTo(qsizetype position, const QXTraceList &traces, qsizetype limit)
{
    if (isEmpty()) {
        m_begin = m_end = traces.size();
        m_blocks.resize(std::size_t((m_end + blockSize - 1) / blockSize));
    }
    qsizetype cost = 0;
    while (m_begin > position && cost < limit) {
        --m_begin;
        cost += make(m_begin, traces[traces.size() - 1 - m_begin]);
    }
    return cost;
}

void QXTraceTexts::makeNewest(const QXTraceList &traces)
{
    for (; m_end < traces.size(); ++m_end) {
        m_blocks.resize(std::size_t(m_end / blockSize + 1));
        make(m_end, traces[traces.size() - 1 - m_end]);
    }
}

void QXTraceTexts::update(qsizetype position, const QXRequestTrace &before, const QXRequestTrace &now)
{
    if (position < m_begin || position >= m_end)
        return;
    Block &block = m_blocks[std::size_t(position / blockSize)];
    const auto isIt = [slot = position % blockSize](const auto &text) {
        return text.slot == slot;
    };
    if (const auto apart = std::find_if(block.apart.begin(), block.apart.end(), isIt);
        apart != block.apart.end()) {
        apart->text = fullText(fixedText(now), now);
        return;
    }
    const auto entry = std::find_if(block.entries.begin(), block.entries.end(), isIt);
    const auto next = entry + 1;
    char *const start = block.text.data() + entry->start;
    char *const end = block.text.data() + (next == block.entries.end() ? block.text.size() : next->start);
    if (before.url == now.url && before.method == now.method && writeStatus(now, end - statusRoom - 1))
        return;
    std::fill(start, end, separator);
    entry->shared = 0;
    if (next != block.entries.end())
        next->shared = 0;
    block.apart.push_back({entry->slot, fullText(fixedText(now), now)});
}

QXTraceTexts::Mask QXTraceTexts::findTogether(const Block &block, const Query &query)
{
    Mask found = 0;
    const char *const text = block.text.constData();
    const char *const textEnd = text + block.text.size();
    const Entry *entry = block.entries.data();
    const Entry *const end = entry + block.entries.size();
    const char rarest = query.m_text[query.m_rarest];
    const auto length = qsizetype(query.m_text.size());
    for (const char *from = text; textEnd - from >= length;) {
        const char *const behind = from + query.m_rarest;
        const auto *const hit =
            static_cast<const char *>(std::memchr(behind, rarest, std::size_t(textEnd - behind)));
        if (!hit)
            break;
        const char *const start = hit - query.m_rarest;
        if (textEnd - start < length)
            break;
        // Most places are ruled out by their first or last byte, without a call.
        if (*start != query.m_text.front() || start[length - 1] != query.m_text.back() ||
            std::memcmp(start, query.m_text.data(), std::size_t(length)) != 0) {
            from = start + 1;
            continue;
        }
        while (entry + 1 != end && entry[1].start <= start - text)
            ++entry;
        // The texts that begin alike contain the query at the same place.
        const qsizetype matched = start + length - (text + entry->start);
        do
            found |= bit(entry->slot);
        while (++entry != end && entry->shared >= matched);
        if (entry == end)
            break;
        from = text + entry->start;
    }
    return found;
}

QXTraceTexts::Mask QXTraceTexts::find(qsizetype block, const Query &query, Mask wanted) const
{
    const Block &texts = m_blocks[std::size_t(block)];
    Mask found = findTogether(texts, query);
    for (const Apart &apart : texts.apart) {
        if ((wanted & bit(apart.slot)) &&
            std::string_view(apart.text.constData(), std::size_t(apart.text.size())).find(query.m_text) !=
                std::string_view::npos)
            found |= bit(apart.slot);
    }
    return found & wanted;
}

qsizetype QXTraceTexts::cost(qsizetype block, Mask wanted) const
{
    const Block &texts = m_blocks[std::size_t(block)];
    qsizetype cost = costOfBlock + texts.text.size();
    for (const Apart &apart : texts.apart)
        cost += wanted & bit(apart.slot) ? apart.text.size() : 0;
    return cost;
}
