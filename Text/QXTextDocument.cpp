#include "Text/QXTextDocument.h"

#include "Text/QXTextRows.h"

#include "Platform/FreedMemory.h"
#include "Platform/HexDigit.h"

#include <utility>

using Quorvix::hexDigit;

namespace {

constexpr qsizetype unitsPerByte = 3;
/// A row holds a multiple of this many bytes, because rows are easier to compare at round offsets.
constexpr int bytesPerGroup = 4;
constexpr qsizetype longestBeginning = 500;

QString hexadecimal(const QByteArray &bytes, qsizetype position, qsizetype length)
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

} // namespace

QXTextDocument::QXTextDocument(const QString &text, QObject *parent) : QObject(parent), m_text(text) {}

QXTextDocument::QXTextDocument(const QByteArray &bytes, QObject *parent)
    : QObject(parent), m_bytes(bytes), m_isHexadecimal(true)
{
}

QXTextDocument::~QXTextDocument()
{
    const qsizetype size = m_text.size() * qsizetype(sizeof(QChar));
    Quorvix::FreedMemory::discard(std::move(m_text), size);
    Quorvix::FreedMemory::note(m_bytes.size());
}

qsizetype QXTextDocument::length() const
{
    return m_isHexadecimal ? qMax<qsizetype>(0, m_bytes.size() * unitsPerByte - 1) : m_text.size();
}

QString QXTextDocument::beginning() const
{
    return text(0, longestBeginning);
}

QString QXTextDocument::text() const
{
    return m_isHexadecimal ? text(0, length()) : m_text;
}

QString QXTextDocument::text(qsizetype position, qsizetype length) const
{
    const qsizetype start = qBound<qsizetype>(0, position, this->length());
    const qsizetype available = qBound<qsizetype>(0, length, this->length() - start);
    return m_isHexadecimal ? hexadecimal(m_bytes, start, available) : m_text.mid(start, available);
}

void QXTextDocument::breakInto(QXTextRows &rows, int columns) const
{
    if (m_isHexadecimal) {
        const int bytes = qMax(1, (columns + 1) / int(unitsPerByte));
        const int round = bytes < bytesPerGroup ? bytes : bytes - bytes % bytesPerGroup;
        rows.breakEvenly(length(), round * unitsPerByte);
    } else {
        rows.breakText(m_text, columns);
    }
}

void QXTextDocument::setText(const QString &text)
{
    Q_ASSERT(!m_isHexadecimal);
    const qsizetype removed = m_text.size();
    m_text = text;
    Q_EMIT replaced(0, removed, m_text.size());
}

void QXTextDocument::replace(qsizetype position, qsizetype removed, const QString &added)
{
    Q_ASSERT(!m_isHexadecimal);
    const qsizetype start = qBound<qsizetype>(0, position, m_text.size());
    const qsizetype available = qBound<qsizetype>(0, removed, m_text.size() - start);
    // Edits that can be undone share the whole text, which would be copied first.
    if (available == m_text.size())
        return setText(added);
    m_text.replace(start, available, added);
    Q_EMIT replaced(start, available, added.size());
}
