#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <utility>

class QXTaskProgress;
class QXTextRows;

/// What a text document holds: a text, or bytes that are shown as two-digit lower-case hexadecimal numbers
/// separated by single spaces. A value that shares its data; any thread.
///
/// A text of ASCII characters only takes one byte for each, because most long texts are such, and to write
/// twice as much memory takes longer than everything else that is done for them. Positions and lengths count
/// UTF-16 units of the shown text. Units are made only for the requested part.
class QXTextContent
{
public:
    QXTextContent() = default;
    explicit QXTextContent(QString text) : m_text(std::move(text)) {}
    /// @p text must be ASCII.
    [[nodiscard]] static QXTextContent ascii(QByteArray text) { return {std::move(text), Kind::Ascii}; }
    [[nodiscard]] static QXTextContent hexadecimal(QByteArray bytes)
    {
        return {std::move(bytes), Kind::Hexadecimal};
    }

    [[nodiscard]] bool isAscii() const noexcept { return m_kind == Kind::Ascii; }
    [[nodiscard]] bool isHexadecimal() const noexcept { return m_kind == Kind::Hexadecimal; }
    [[nodiscard]] qsizetype length() const noexcept;
    /// The bytes of memory that it may be the last to hold.
    [[nodiscard]] qsizetype memory() const noexcept;
    /// The text between two positions, which are moved into the text.
    [[nodiscard]] QString text(qsizetype position, qsizetype length) const;
    [[nodiscard]] QString text() const;
    /// text() in UTF-8. ASCII is shared.
    [[nodiscard]] QByteArray utf8() const;
    /// The text if it is held in UTF-16, as it is after a change; empty otherwise.
    [[nodiscard]] QStringView utf16() const { return m_text; }
    /// The units of the shown text per byte: two digits and a space.
    static constexpr qsizetype unitsPerByte = 3;
    /// The bytes that are shown as numbers; empty for a text.
    [[nodiscard]] QByteArray bytes() const { return isHexadecimal() ? m_bytes : QByteArray(); }

    /// Calls @p visitor with the whole text, as a view of its characters. Not for bytes.
    template<typename Visitor>
    auto visit(const Visitor &visitor) const
    {
        return m_kind == Kind::Ascii ? visitor(QLatin1StringView(m_bytes)) : visitor(QStringView(m_text));
    }

    /// Like QXTextRows::breakText(), and makes the rows of QXHexColumns for bytes.
    void breakInto(QXTextRows &rows, int columns, const QXTaskProgress *progress = nullptr) const;

    /// The text, so that it can be changed. Not for bytes.
    [[nodiscard]] QString &editable();

    bool operator==(const QXTextContent &) const = default;

private:
    enum class Kind { Text, Ascii, Hexadecimal };

    QXTextContent(QByteArray bytes, Kind kind) : m_bytes(std::move(bytes)), m_kind(kind) {}

    QString m_text;
    QByteArray m_bytes;
    Kind m_kind = Kind::Text;
};
