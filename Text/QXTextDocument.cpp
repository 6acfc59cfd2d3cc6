#include "Text/QXTextDocument.h"

#include "Platform/FreedMemory.h"

#include <utility>

namespace {

constexpr qsizetype longestBeginning = 500;

} // namespace

QXTextDocument::QXTextDocument(QXTextContent content, QObject *parent)
    : QObject(parent), m_content(std::move(content))
{
}

QXTextDocument::QXTextDocument(const QString &text, QObject *parent)
    : QXTextDocument(QXTextContent(text), parent)
{
}

QXTextDocument::QXTextDocument(const QByteArray &bytes, QObject *parent)
    : QXTextDocument(QXTextContent::hexadecimal(bytes), parent)
{
}

QXTextDocument::~QXTextDocument()
{
    const qsizetype size = m_content.memory();
    Quorvix::FreedMemory::discard(std::move(m_content), size);
}

QString QXTextDocument::beginning() const
{
    return text(0, longestBeginning);
}

void QXTextDocument::setText(const QString &text)
{
    Q_ASSERT(!isHexadecimal());
    const qsizetype removed = length();
    m_content = QXTextContent(text);
    Q_EMIT replaced(0, removed, text.size());
}

void QXTextDocument::replace(qsizetype position, qsizetype removed, const QString &added)
{
    Q_ASSERT(!isHexadecimal());
    const qsizetype start = qBound<qsizetype>(0, position, length());
    const qsizetype available = qBound<qsizetype>(0, removed, length() - start);
    // Edits that can be undone share the whole text, which would be copied first.
    if (available == length())
        return setText(added);
    m_content.editable().replace(start, available, added);
    Q_EMIT replaced(start, available, added.size());
}
