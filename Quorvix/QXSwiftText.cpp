#include "Quorvix/QXSwiftText.h"

#include "Platform/LargeMemory.h"

#include <algorithm>
#include <utility>

void QXSwiftText::appendText(const QString &text)
{
    const QByteArray utf8 = text.toUtf8();
    append({{utf8.constData(), size_t(utf8.size())}, utf8.size() - text.size()});
}

QByteArray QXSwiftText::take()
{
    m_utf8.truncate(m_end.size);
    return std::move(m_utf8);
}

void QXSwiftText::grow(qsizetype size)
{
    constexpr qsizetype smallest = 1024;
    m_utf8.resize(std::max({smallest, 2 * m_utf8.size(), m_end.size + size + 1}));
    m_data = m_utf8.data();
    Quorvix::LargeMemory::requestLargePages(m_data, size_t(m_utf8.size()));
}
