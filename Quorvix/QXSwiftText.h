#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <cstring>
#include <string_view>

/// Swift source that is being written, in UTF-8. It also knows its length in UTF-16, which is what the limit
/// of a model counts. Appending calls no function unless the memory has to grow.
class QXSwiftText final
{
public:
    /// A part of a text, valid until the text changes.
    struct Part
    {
        std::string_view utf8;
        /// How many bytes more there are than UTF-16 units; 0 for ASCII.
        qsizetype excess = 0;
    };
    /// A place in a text.
    struct Mark
    {
        qsizetype size = 0;
        qsizetype excess = 0;
    };

    /// @p expectedSize is a guess; memory that is not used costs nothing.
    explicit QXSwiftText(qsizetype expectedSize = 0) { grow(expectedSize); }

    void append(Part part)
    {
        // An empty part may have no address, from which nothing may be copied.
        if (part.utf8.empty())
            return;
        const auto size = qsizetype(part.utf8.size());
        std::memcpy(room(size), part.utf8.data(), part.utf8.size());
        m_end.size += size;
        m_end.excess += part.excess;
    }
    void appendAscii(std::string_view text) { append(Part{text}); }
    void appendAscii(char character) { appendAscii({&character, 1}); }
    void appendText(const QString &text);

    /// Memory for @p size more bytes of ASCII; added() tells how many were written.
    [[nodiscard]] char *room(qsizetype size)
    {
        if (m_end.size + size >= m_utf8.size())
            grow(size);
        return m_data + m_end.size;
    }
    void added(qsizetype size) noexcept { m_end.size += size; }

    [[nodiscard]] Mark end() const noexcept { return m_end; }
    /// What was appended since end() was @p mark.
    [[nodiscard]] Part from(Mark mark) const noexcept
    {
        return {{m_data + mark.size, size_t(m_end.size - mark.size)}, m_end.excess - mark.excess};
    }
    [[nodiscard]] Part all() const noexcept { return from({}); }
    [[nodiscard]] qsizetype utf16Size() const noexcept { return m_end.size - m_end.excess; }

    void truncate(Mark mark) noexcept { m_end = mark; }
    /// The text without its last @p size bytes, which are ASCII.
    void chop(qsizetype size) noexcept { m_end.size -= size; }

    /// Gives up the text.
    [[nodiscard]] QByteArray take();

private:
    void grow(qsizetype size);

    /// Its size is the memory that there is; the text ends earlier.
    QByteArray m_utf8;
    char *m_data = nullptr;
    Mark m_end;
};
