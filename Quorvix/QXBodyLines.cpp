#include "Quorvix/QXBodyLines.h"

#include <QtCore/QStringDecoder>

#include <algorithm>

namespace {

/// In UTF-16 units.
constexpr qsizetype longestLine = 1000;
constexpr qsizetype bytesPerLine = 256;

/// Where a line that begins at @p start is broken, so that no character is torn apart.
qsizetype breakAfter(const QString &text, qsizetype start)
{
    qsizetype end = start + longestLine;
    if (end < text.size() && text[end].isLowSurrogate() && text[end - 1].isHighSurrogate())
        --end;
    return end;
}

} // namespace

QXBodyLines::QXBodyLines(const QByteArray &body)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    m_text = decoder(body);
    if (decoder.hasError()) {
        m_text.clear();
        m_bytes = body;
    } else {
        breakText();
    }
}

void QXBodyLines::breakText()
{
    qsizetype start = 0;
    while (start < m_text.size()) {
        const qsizetype lineFeed = m_text.indexOf(u'\n', start);
        const qsizetype next = lineFeed < 0 ? m_text.size() : lineFeed + 1;
        for (; next - start > longestLine + 1; start = breakAfter(m_text, start))
            m_starts.append(start);
        m_starts.append(start);
        start = next;
    }
    m_starts.append(m_text.size());
}

int QXBodyLines::count() const
{
    return int(m_starts.isEmpty() ? (m_bytes.size() + bytesPerLine - 1) / bytesPerLine : m_starts.size() - 1);
}

QString QXBodyLines::line(int index) const
{
    if (m_starts.isEmpty())
        return QString::fromLatin1(m_bytes.mid(index * bytesPerLine, bytesPerLine).toHex(' '));
    QStringView line = QStringView(m_text).sliced(m_starts[index], m_starts[index + 1] - m_starts[index]);
    if (line.endsWith(u'\n'))
        line.chop(1);
    if (line.endsWith(u'\r'))
        line.chop(1);
    return line.toString();
}
