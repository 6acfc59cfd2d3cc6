#include "Text/QXTextContent.h"

#include "Text/QXHexColumns.h"
#include "Text/QXTextRows.h"

#include "Platform/HexDigit.h"
#include "Platform/LargeText.h"

using Quorvix::hexDigit;

namespace {

constexpr qsizetype unitsPerByte = QXTextContent::unitsPerByte;

QString hexadecimalText(const QByteArray &bytes, qsizetype position, qsizetype length)
{
    QString text(length, Qt::Uninitialized);
    QChar *unit = text.data();
    for (qsizetype i = position; i < position + length; ++i) {
        const auto byte = quint8(bytes[i / unitsPerByte]);
        const qsizetype part = i % unitsPerByte;
        *unit++ = QLatin1Char(part == 0 ? hexDigit(byte >> 4) : part == 1 ? hexDigit(byte & 0xF) : ' ');
    }
    return text;
}

QString widened(QLatin1StringView ascii)
{
    QString text;
    Quorvix::LargeText::reserve(text, ascii.size());
    text += ascii;
    text.squeeze();
    return text;
}

} // namespace

qsizetype QXTextContent::length() const noexcept
{
    switch (m_kind) {
    case Kind::Text:
        return m_text.size();
    case Kind::Ascii:
        return m_bytes.size();
    case Kind::Hexadecimal:
        break;
    }
    return qMax<qsizetype>(0, m_bytes.size() * unitsPerByte - 1);
}

qsizetype QXTextContent::memory() const noexcept
{
    return m_bytes.size() + m_text.size() * qsizetype(sizeof(QChar));
}

QString QXTextContent::text(qsizetype position, qsizetype length) const
{
    const qsizetype start = qBound<qsizetype>(0, position, this->length());
    const qsizetype available = qBound<qsizetype>(0, length, this->length() - start);
    switch (m_kind) {
    case Kind::Text:
        return m_text.mid(start, available);
    case Kind::Ascii:
        return widened(QLatin1StringView(m_bytes).sliced(start, available));
    case Kind::Hexadecimal:
        break;
    }
    return hexadecimalText(m_bytes, start, available);
}

QString QXTextContent::text() const
{
    return text(0, length());
}

QByteArray QXTextContent::utf8() const
{
    return m_kind == Kind::Ascii ? m_bytes : text().toUtf8();
}

void QXTextContent::breakInto(QXTextRows &rows, int columns, const QXTaskProgress *progress) const
{
    if (m_kind == Kind::Hexadecimal) {
        rows.breakEvenly(length(),
                         QXHexColumns::fitting(m_bytes.size(), columns).bytesPerRow() * unitsPerByte);
    } else {
        visit([&](auto all) { rows.breakText(all, columns, progress); });
    }
}

QString &QXTextContent::editable()
{
    Q_ASSERT(m_kind != Kind::Hexadecimal);
    if (m_kind == Kind::Ascii)
        *this = QXTextContent(text());
    return m_text;
}
