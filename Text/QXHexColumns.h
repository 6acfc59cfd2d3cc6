#pragma once

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

/// The columns of a row of bytes, in widths of a character of a monospaced font: at the left the offset of
/// its first byte, then the bytes as two digits each, and at the right their printable characters. A value;
/// any thread.
///
/// Only the bytes are text of the document. The columns beside them can neither be selected nor copied.
class QXHexColumns
{
public:
    /// The columns of a text that has no bytes.
    QXHexColumns() = default;
    /// The longest rows for @p byteCount bytes that fit into @p width characters: 16 bytes or, if a slightly
    /// smaller font is enough for them, 8. Narrower views show fewer bytes, and the narrowest only bytes.
    [[nodiscard]] static QXHexColumns fitting(qsizetype byteCount, int width);

    [[nodiscard]] int bytesPerRow() const noexcept { return m_bytesPerRow; }
    /// The factor for the size of the font, at most 1.
    [[nodiscard]] double fontFactor() const noexcept { return m_fontFactor; }
    /// Whether the offset and the characters are shown.
    [[nodiscard]] bool areComplete() const noexcept { return m_offsetDigits > 0; }
    /// Where the bytes begin, and where their characters begin.
    [[nodiscard]] double bytesColumn() const noexcept { return m_offsetDigits + m_gap; }
    [[nodiscard]] double charactersColumn() const noexcept;

    /// The offset of a byte, with as many digits as the last one has.
    [[nodiscard]] QString offsetText(qsizetype byte) const;
    /// One character for each byte: a dot for one that is not printable ASCII.
    [[nodiscard]] static QString charactersOf(QByteArrayView bytes);

private:
    int m_bytesPerRow = 1;
    int m_offsetDigits = 0;
    double m_gap = 0;
    double m_fontFactor = 1;
};
