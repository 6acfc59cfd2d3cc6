#include "Platform/StoredHeaderFields.h"

#include "Platform/KnownHeaderNames.h"

#include <QtCore/QVarLengthArray>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <new>

namespace Quorvix {

/// The bytes of all headers follow the block: for each one a byte that names it, or 0 and its name, and then
/// its value. A text is its length, seven bits in each byte from the lowest on, and its characters.
struct StoredHeaderFields::Block
{
    std::atomic<int> references = 1;
    quint32 bytes = 0;
    quint32 count = 0;
    /// Whether a character is a byte, as in nearly all headers; else it is two.
    bool isLatin1 = true;
    /// Made on first use.
    std::atomic<const HTTPHeaderFields *> map = nullptr;

    static Block *create(const char *data, quint32 bytes, quint32 count, bool isLatin1)
    {
        auto *const block = new (::operator new(sizeof(Block) + bytes)) Block;
        block->bytes = bytes;
        block->count = count;
        block->isLatin1 = isLatin1;
        std::memcpy(block->data(), data, bytes);
        return block;
    }

    [[nodiscard]] const char *data() const { return reinterpret_cast<const char *>(this + 1); }
    [[nodiscard]] char *data() { return reinterpret_cast<char *>(this + 1); }
};

namespace {

using Buffer = QVarLengthArray<char, 4096>;

/// Writes the headers one after the other.
class Writer final
{
public:
    explicit Writer(bool isLatin1) : m_isLatin1(isLatin1) {}

    void add(QStringView name, QStringView value)
    {
        const uchar known = KnownHeaderNames::number(name);
        char *const to = room(name.size() + value.size());
        char *end = to;
        *end++ = char(known);
        if (!known)
            end = put(end, name);
        end = put(end, value);
        m_buffer.resize(end - m_buffer.data());
        ++m_count;
    }

    /// Whether a character did not fit into its byte.
    [[nodiscard]] bool hasFailed() const { return m_isLatin1 && m_bits > 0xFF; }
    [[nodiscard]] quint32 count() const { return m_count; }
    [[nodiscard]] const Buffer &buffer() const { return m_buffer; }

private:
    char *room(qsizetype characters)
    {
        constexpr qsizetype lengths = 1 + 2 * 10;
        const qsizetype before = m_buffer.size();
        const qsizetype after = before + lengths + 2 * characters;
        // Qt would make just enough room, and copy all headers again for each one.
        if (after > m_buffer.capacity())
            m_buffer.reserve(std::max(after, 2 * m_buffer.capacity()));
        m_buffer.resize(after);
        return m_buffer.data() + before;
    }

    char *put(char *to, QStringView text)
    {
        auto length = quint64(text.size());
        for (; length >= 0x80; length >>= 7)
            *to++ = char(length | 0x80);
        *to++ = char(length);
        if (!m_isLatin1) {
            std::memcpy(to, text.utf16(), std::size_t(text.size()) * sizeof(char16_t));
            return to + 2 * text.size();
        }
        const char16_t *const from = text.utf16();
        unsigned bits = 0;
        for (qsizetype i = 0; i < text.size(); ++i) {
            bits |= from[i];
            to[i] = char(from[i]);
        }
        m_bits |= bits;
        return to + text.size();
    }

    const bool m_isLatin1;
    unsigned m_bits = 0;
    quint32 m_count = 0;
    Buffer m_buffer;
};

/// A text as it is stored.
struct Text
{
    const char *data;
    qsizetype size;
    bool isLatin1;

    [[nodiscard]] QString toString() const
    {
        if (isLatin1)
            return QString::fromLatin1(data, size);
        QString text(size, Qt::Uninitialized);
        std::memcpy(text.data(), data, std::size_t(size) * sizeof(char16_t));
        return text;
    }
};

/// Reads the headers one after the other.
class Reader final
{
public:
    Reader(const char *data, bool isLatin1) : m_data(data), m_isLatin1(isLatin1) {}

    void next()
    {
        m_known = uchar(*m_data++);
        if (!m_known)
            m_name = take();
        m_value = take();
    }

    [[nodiscard]] bool hasName(const QString &name, uchar known) const
    {
        if (m_known || known)
            return m_known == known;
        return m_isLatin1 ? name == QLatin1StringView(m_name.data, m_name.size) : name == m_name.toString();
    }
    [[nodiscard]] QString name() const
    {
        return m_known ? KnownHeaderNames::name(m_known) : m_name.toString();
    }
    [[nodiscard]] QString value() const { return m_value.toString(); }

private:
    Text take()
    {
        quint64 length = 0;
        int shift = 0;
        for (; uchar(*m_data) & 0x80; shift += 7)
            length |= quint64(uchar(*m_data++) & 0x7F) << shift;
        length |= quint64(uchar(*m_data++)) << shift;
        const Text text{m_data, qsizetype(length), m_isLatin1};
        m_data += m_isLatin1 ? length : 2 * length;
        return text;
    }

    const char *m_data;
    const bool m_isLatin1;
    uchar m_known = 0;
    Text m_name{};
    Text m_value{};
};

} // namespace

/// @p visitFields calls the function that it gets with each name and value. Null if there are none.
template<typename Visit>
StoredHeaderFields::Block *StoredHeaderFields::packed(const Visit &visitFields)
{
    const auto write = [&](bool isLatin1) -> Block * {
        Writer writer(isLatin1);
        visitFields([&](QStringView name, QStringView value) { writer.add(name, value); });
        if (writer.hasFailed() || writer.count() == 0)
            return nullptr;
        const Buffer &bytes = writer.buffer();
        return Block::create(bytes.data(), quint32(bytes.size()), writer.count(), isLatin1);
    };
    Block *const block = write(true);
    return block ? block : write(false);
}

StoredHeaderFields::StoredHeaderFields(const HTTPHeaderFields &fields)
    : m_block(fields.isEmpty() ? nullptr : packed([&](const auto &add) {
          for (auto it = fields.cbegin(); it != fields.cend(); ++it)
              add(it.key(), it.value());
      }))
{
}

std::optional<StoredHeaderFields> StoredHeaderFields::fromFields(const NSHeaderFields &fields)
{
    for (const auto &[name, value] : fields) {
        if (!std::holds_alternative<QString>(name) || !std::holds_alternative<QString>(value))
            return std::nullopt;
    }
    StoredHeaderFields stored;
    if (!fields.empty())
        stored.m_block = packed([&](const auto &add) {
            for (const auto &[name, value] : fields)
                add(*std::get_if<QString>(&name), *std::get_if<QString>(&value));
        });
    return stored;
}

StoredHeaderFields::StoredHeaderFields(const StoredHeaderFields &other) noexcept : m_block(other.m_block)
{
    if (m_block)
        m_block->references.fetch_add(1, std::memory_order_relaxed);
}

StoredHeaderFields::~StoredHeaderFields()
{
    if (!m_block || m_block->references.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;
    delete m_block->map.load(std::memory_order_relaxed);
    m_block->~Block();
    ::operator delete(m_block);
}

StoredHeaderFields StoredHeaderFields::unshared() const
{
    StoredHeaderFields copy;
    if (m_block)
        copy.m_block = Block::create(m_block->data(), m_block->bytes, m_block->count, m_block->isLatin1);
    return copy;
}

qsizetype StoredHeaderFields::size() const noexcept
{
    return m_block ? m_block->count : 0;
}

void StoredHeaderFields::visitAll(void *visitor,
                                  void (*visit)(void *, const QString &, const QString &)) const
{
    if (!m_block)
        return;
    Reader reader(m_block->data(), m_block->isLatin1);
    for (quint32 i = 0; i < m_block->count; ++i) {
        reader.next();
        visit(visitor, reader.name(), reader.value());
    }
}

HTTPHeaderFields StoredHeaderFields::toMap() const
{
    HTTPHeaderFields fields;
    forEach([&](const QString &name, const QString &value) { fields.insert(fields.cend(), name, value); });
    return fields;
}

const HTTPHeaderFields &StoredHeaderFields::map() const
{
    static const HTTPHeaderFields none;
    if (!m_block)
        return none;
    const HTTPHeaderFields *known = m_block->map.load(std::memory_order_acquire);
    if (!known) {
        auto made = std::make_unique<const HTTPHeaderFields>(toMap());
        // Another thread may be faster.
        if (m_block->map.compare_exchange_strong(known, made.get(), std::memory_order_acq_rel,
                                                 std::memory_order_acquire))
            known = made.release();
    }
    return *known;
}

std::optional<QString> StoredHeaderFields::exactValue(const QString &name) const
{
    if (!m_block)
        return std::nullopt;
    const uchar known = KnownHeaderNames::number(name);
    Reader reader(m_block->data(), m_block->isLatin1);
    for (quint32 i = 0; i < m_block->count; ++i) {
        reader.next();
        if (reader.hasName(name, known))
            return reader.value();
    }
    return std::nullopt;
}

void StoredHeaderFields::insert(const QString &name, const QString &value)
{
    HTTPHeaderFields fields = toMap();
    fields.insert(name, value);
    *this = fields;
}

qsizetype StoredHeaderFields::remove(const QString &name)
{
    HTTPHeaderFields fields = toMap();
    const qsizetype removed = fields.remove(name);
    *this = fields;
    return removed;
}

bool StoredHeaderFields::isSame(const StoredHeaderFields &other) const noexcept
{
    // The same headers have the same bytes.
    return m_block == other.m_block ||
           (m_block && other.m_block && m_block->bytes == other.m_block->bytes &&
            m_block->isLatin1 == other.m_block->isLatin1 &&
            std::memcmp(m_block->data(), other.m_block->data(), m_block->bytes) == 0);
}

std::optional<QString> headerValue(const std::optional<StoredHeaderFields> &fields, QAnyStringView name)
{
    std::optional<QString> found;
    if (fields) {
        fields->forEach([&](const QString &key, const QString &value) {
            if (!found && isSameHeaderName(key, name))
                found = value;
        });
    }
    return found;
}

} // namespace Quorvix
