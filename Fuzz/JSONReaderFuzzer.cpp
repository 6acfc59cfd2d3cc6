// Checks that the reader accepts the same texts as a simple one, and reads the same values from them: also
// with lone surrogates, in UTF-16 and UTF-32, and with numbers that no machine type holds.

#include "FuzzCheck.h"

#include "Quorvix/QXBodyText.h"

#include "JSON/JSONReader.h"
#include "JSON/JSONWriter.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QStringDecoder>
#include <QtCore/QStringEncoder>

#include <charconv>
#include <cmath>
#include <cstring>
#include <optional>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// The bytes as UTF-8, without a byte order mark; absent if they are malformed.
std::optional<QByteArray> utf8Of(QByteArrayView bytes)
{
    using enum QStringConverter::Encoding;
    constexpr std::pair<QStringConverter::Encoding, std::string_view> marks[] = {
        {Utf32LE, {"\xFF\xFE\0\0", 4}},
        {Utf32BE, {"\0\0\xFE\xFF", 4}},
        {Utf16LE, {"\xFF\xFE", 2}},
        {Utf16BE, {"\xFE\xFF", 2}},
    };
    for (const auto &[encoding, mark] : marks) {
        if (!bytes.startsWith(QByteArrayView(mark.data(), qsizetype(mark.size()))))
            continue;
        const QByteArrayView units = bytes.sliced(qsizetype(mark.size()));
        QStringDecoder decoder(encoding,
                               QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
        const QString text = decoder.decode(units);
        QStringEncoder encoder(encoding, QStringConverter::Flag::Stateless);
        const QByteArray again = encoder.encode(text);
        return text.isValidUtf16() && again == units ? std::optional(text.toUtf8()) : std::nullopt;
    }
    const QByteArrayView utf8 = bytes.startsWith("\xEF\xBB\xBF") ? bytes.sliced(3) : bytes;
    return QUtf8StringView(utf8.data(), utf8.size()).isValidUtf8() ? std::optional(utf8.toByteArray())
                                                                   : std::nullopt;
}

/// A reader that goes through the text once and writes the values in compact form.
class SimpleReader
{
public:
    explicit SimpleReader(const QByteArray &utf8) : m_text(utf8) {}

    /// Whether the text is JSON.
    bool read()
    {
        const bool isValue = value(0);
        skipBlanks();
        return isValue && m_at == m_text.size();
    }

    [[nodiscard]] bool isNestedDeeply() const { return m_isNestedDeeply; }
    [[nodiscard]] QByteArray written() { return m_writer.takeBuffer(); }

private:
    [[nodiscard]] char peek() const { return m_at < m_text.size() ? m_text[m_at] : '\0'; }

    bool skip(QByteArrayView word)
    {
        if (!QByteArrayView(m_text).sliced(m_at).startsWith(word))
            return false;
        m_at += word.size();
        return true;
    }

    void skipBlanks()
    {
        while (m_at < m_text.size() && std::strchr(" \t\n\r", m_text[m_at]) && m_text[m_at])
            ++m_at;
    }

    bool value(int depth)
    {
        m_isNestedDeeply |= depth > 1000;
        if (m_isNestedDeeply)
            return false;
        skipBlanks();
        if (skip("{"))
            return members(depth);
        if (skip("["))
            return elements(depth);
        if (peek() == '"')
            return string([this](const QByteArray &text) { m_writer.utf8(text); });
        if (skip("true"))
            return m_writer.boolean(true), true;
        if (skip("false"))
            return m_writer.boolean(false), true;
        if (skip("null"))
            return m_writer.null(), true;
        return number();
    }

    bool members(int depth)
    {
        m_writer.beginObject();
        skipBlanks();
        if (skip("}"))
            return m_writer.endObject(), true;
        do {
            skipBlanks();
            if (!string([this](const QByteArray &name) { m_writer.keyUtf8(name); }))
                return false;
            skipBlanks();
            if (!skip(":") || !value(depth + 1))
                return false;
            skipBlanks();
        } while (skip(","));
        m_writer.endObject();
        return skip("}");
    }

    bool elements(int depth)
    {
        m_writer.beginArray();
        skipBlanks();
        if (skip("]"))
            return m_writer.endArray(), true;
        do {
            if (!value(depth + 1))
                return false;
            skipBlanks();
        } while (skip(","));
        m_writer.endArray();
        return skip("]");
    }

    template<typename Write>
    bool string(Write write)
    {
        if (!skip("\""))
            return false;
        QString text;
        while (peek() != '"') {
            const qsizetype plain = m_at;
            while (m_at < m_text.size() && uchar(m_text[m_at]) >= 0x20 && m_text[m_at] != '"' &&
                   m_text[m_at] != '\\')
                ++m_at;
            text += QString::fromUtf8("x" + m_text.sliced(plain, m_at - plain))
                        .sliced(1); // fromUtf8() drops a mark
            if (peek() != '"' && !(skip("\\") && escape(text)))
                return false;
        }
        ++m_at;
        // A lone surrogate becomes U+FFFD, and not several.
        QByteArray utf8;
        for (qsizetype i = 0; i < text.size(); ++i) {
            const bool isPair =
                text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
            if (isPair)
                utf8 += text.sliced(i++, 2).toUtf8();
            else
                utf8 += text[i].isSurrogate() ? "\xEF\xBF\xBD"_ba : QString(text[i]).toUtf8();
        }
        write(utf8);
        return true;
    }

    bool escape(QString &text)
    {
        constexpr std::string_view letters = "\"\\/bfnrt";
        constexpr std::string_view meanings = "\"\\/\b\f\n\r\t";
        if (skip("u")) {
            static const QRegularExpression digits(u"^[0-9A-Fa-f]{4}$"_s);
            const QString unit =
                QString::fromLatin1(m_text.sliced(m_at).first(qMin(4, m_text.size() - m_at)));
            if (!digits.match(unit).hasMatch() || unit.size() != 4)
                return false;
            text += QChar(unit.toUShort(nullptr, 16));
            m_at += 4;
            return true;
        }
        const size_t letter = m_at < m_text.size() ? letters.find(m_text[m_at]) : letters.npos;
        if (letter == letters.npos)
            return false;
        ++m_at;
        text += QLatin1Char(meanings[letter]);
        return true;
    }

    bool number()
    {
        static const QRegularExpression shape(u"\\G-?(?:0|[1-9][0-9]*)(\\.[0-9]+)?([eE][+-]?[0-9]+)?"_s);
        const QString rest = QString::fromLatin1(m_text.sliced(m_at));
        const auto match = shape.match(rest);
        if (!match.hasMatch())
            return false;
        const QByteArray digits = match.captured().toLatin1();
        m_at += digits.size();
        bool fits = false;
        if (match.lastCapturedIndex() == 0) {
            if (const qint64 integer = digits.toLongLong(&fits); fits)
                return m_writer.integer(integer), true;
            if (const quint64 integer = digits.toULongLong(&fits); fits && !digits.startsWith('-'))
                return m_writer.unsignedInteger(integer), true;
            return m_writer.number(QByteArrayView(digits)), true;
        }
        const double nearest = std::strtod(digits.constData(), nullptr);
        if (std::isinf(nearest))
            m_writer.number(QByteArrayView(digits));
        else
            m_writer.number(nearest);
        return true;
    }

    const QByteArray m_text;
    qsizetype m_at = 0;
    bool m_isNestedDeeply = false;
    JSONWriter m_writer{JSONWriter::Format::Compact};
};

QByteArray written(const JSONDocument &document, JSONWriter::KeyOrder order, JSONWriter::Format format)
{
    JSONWriter writer(format);
    writer.value(document.root(), order);
    return writer.takeBuffer();
}

void checkBodyText(QByteArrayView bytes, const Result<JSONDocument> &container)
{
    const auto text = QXBodyText::readable(bytes.toByteArray());
    if (container) {
        check(JSONReader::beginsLikeContainer(bytes), "the fast check rejects no container");
        check(text == QString::fromUtf8(written(container.value(), JSONWriter::KeyOrder::Sorted,
                                                JSONWriter::Format::Pretty)),
              "a container is shown pretty");
    } else {
        check(text.has_value() == isValidUtf8(bytes), "other text is shown if it is UTF-8");
        check(!text || text->toUtf8() == bytes, "other text is shown unchanged");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView bytes = view(data, size);
    const auto document = JSONReader::parse(bytes);
    const auto container = JSONReader::parse(bytes, JSONReader::TopLevel::Container);
    checkBodyText(bytes, container);

    const auto utf8 = utf8Of(bytes);
    check(utf8 || !document, "a text that is malformed in its encoding is refused");
    if (!utf8)
        return 0;
    SimpleReader reader(*utf8);
    const bool isJson = reader.read();
    if (reader.isNestedDeeply())
        return 0;
    check(isJson == bool(document), "the reader accepts what is JSON");
    if (!document)
        return 0;
    check(written(document.value(), JSONWriter::KeyOrder::Document, JSONWriter::Format::Compact) ==
              reader.written(),
          "the values are those of the text");
    const JSONValue::Kind kind = document.value().root().kind();
    check(bool(container) == (kind == JSONValue::Kind::Object || kind == JSONValue::Kind::Array),
          "a scalar is no container");
    return 0;
}
