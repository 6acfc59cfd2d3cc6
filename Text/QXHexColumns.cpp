#include "Text/QXHexColumns.h"

#include <algorithm>

namespace {

/// A font that is reduced more is too small to read.
constexpr double smallestFactor = 0.75;
constexpr double largestGap = 2;

/// An even number of digits, four or more.
int digitsFor(qsizetype byteCount)
{
    int digits = 4;
    while (digits < 16 && ((byteCount - 1) >> (4 * digits)) > 0)
        digits += 2;
    return digits;
}

} // namespace

QXHexColumns QXHexColumns::fitting(qsizetype byteCount, int width)
{
    QXHexColumns columns;
    const int digits = digitsFor(byteCount);
    for (const int bytes : {16, 8, 4, 2}) {
        const int withoutGaps = digits + 4 * bytes - 1;
        const double factor = std::min(1.0, double(width) / (withoutGaps + 2));
        if (factor < (bytes == 16 ? 1 : smallestFactor))
            continue;
        columns.m_bytesPerRow = bytes;
        columns.m_offsetDigits = digits;
        columns.m_fontFactor = factor;
        columns.m_gap = std::clamp((width - withoutGaps) / 2.0, 1.0, largestGap);
        return columns;
    }
    columns.m_bytesPerRow = std::max(1, (width + 1) / 3);
    return columns;
}

double QXHexColumns::charactersColumn() const noexcept
{
    return bytesColumn() + 3 * m_bytesPerRow - 1 + m_gap;
}

QString QXHexColumns::offsetText(qsizetype byte) const
{
    return QString::number(byte, 16).rightJustified(m_offsetDigits, u'0');
}

QString QXHexColumns::charactersOf(QByteArrayView bytes)
{
    QString characters(bytes.size(), u'.');
    std::transform(bytes.begin(), bytes.end(), characters.begin(), [](char byte) {
        return byte >= ' ' && byte <= '~' ? QLatin1Char(byte) : QLatin1Char('.');
    });
    return characters;
}
