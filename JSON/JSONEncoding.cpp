#include "JSON/JSONEncoding.h"

#include <QtCore/QChar>
#include <QtCore/QString>
#include <QtCore/QStringEncoder>
#include <QtCore/QtEndian>

#include <array>

namespace Quorvix {

namespace {

struct Encoding
{
    QByteArrayView mark;
    bool isBigEndian = false;
};

/// The mark of UTF-16LE begins that of UTF-32LE, so the longer marks come first. No JSON text begins with
/// NUL.
constexpr std::array encodings{
    Encoding{{"\xFF\xFE\0\0", 4}, false},
    Encoding{{"\0\0\xFE\xFF", 4}, true},
    Encoding{{"\xFF\xFE", 2}, false},
    Encoding{{"\xFE\xFF", 2}, true},
};

const Encoding *encodingOf(QByteArrayView bytes) noexcept
{
    for (const Encoding &encoding : encodings) {
        if (bytes.startsWith(encoding.mark))
            return &encoding;
    }
    return nullptr;
}

/// The units of a text, whose last one may be cut.
template<typename Unit, typename Take>
bool readUnits(QByteArrayView bytes, bool isBigEndian, Take take)
{
    for (qsizetype at = 0; bytes.size() - at >= qsizetype(sizeof(Unit)); at += sizeof(Unit)) {
        const char *const unit = bytes.data() + at;
        if (!take(isBigEndian ? qFromBigEndian<Unit>(unit) : qFromLittleEndian<Unit>(unit)))
            return false;
    }
    return bytes.size() % qsizetype(sizeof(Unit)) == 0;
}

} // namespace

bool JSONEncoding::isMarked(QByteArrayView bytes) noexcept
{
    return encodingOf(bytes) != nullptr;
}

std::optional<QByteArray> JSONEncoding::toUtf8(QByteArrayView marked)
{
    const Encoding *const encoding = encodingOf(marked);
    if (!encoding)
        return std::nullopt;
    const QByteArrayView bytes = marked.sliced(encoding->mark.size());
    const bool isWide = encoding->mark.size() == sizeof(char32_t);
    QString text;
    text.reserve(bytes.size() / encoding->mark.size());
    const auto takeUnit = [&](quint16 unit) {
        text += QChar(unit);
        return true;
    };
    const auto takeCharacter = [&](quint32 character) {
        if (character > QChar::LastValidCodePoint || QChar::isSurrogate(character))
            return false;
        text += QChar::fromUcs4(character);
        return true;
    };
    const bool isWhole = isWide ? readUnits<quint32>(bytes, encoding->isBigEndian, takeCharacter)
                                : readUnits<quint16>(bytes, encoding->isBigEndian, takeUnit);
    QStringEncoder encoder(QStringEncoder::Utf8, QStringEncoder::Flag::Stateless);
    QByteArray utf8 = encoder.encode(text);
    return isWhole && !encoder.hasError() ? std::optional(std::move(utf8)) : std::nullopt;
}

} // namespace Quorvix
