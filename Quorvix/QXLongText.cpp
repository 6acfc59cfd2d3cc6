#include "Quorvix/QXLongText.h"

#include "Quorvix/QXTaskSteps.h"

#include "JSON/JSONDocument.h"

#include "Platform/HexDigit.h"
#include "Platform/LargeText.h"

#include <QtCore/QIODevice>
#include <QtCore/QStringDecoder>

#include <array>
#include <cstring>

using namespace Quorvix;

namespace {

/// The number of bytes that are appended at once: about a millisecond's work.
constexpr qsizetype pieceSize = 1 << 20;
/// The same for bytes that are written as digits, which takes longer.
constexpr qsizetype digitsPieceSize = 1 << 16;

/// Appends the UTF-8 that is written to it.
class TextDevice final : public QIODevice
{
public:
    explicit TextDevice(QString &text)
        : m_text(text), m_decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom)
    {
        open(WriteOnly | Unbuffered);
    }

protected:
    qint64 readData(char *, qint64) override { return -1; }

    qint64 writeData(const char *bytes, qint64 size) override
    {
        const qsizetype before = m_text.size();
        m_text.resize(before + m_decoder.requiredSpace(size));
        const QChar *end = m_decoder.appendToBuffer(m_text.data() + before, {bytes, qsizetype(size)});
        m_text.truncate(end - m_text.constData());
        return size;
    }

private:
    QString &m_text;
    QStringDecoder m_decoder;
};

/// Appends what is written to it.
class Utf8Device final : public QIODevice
{
public:
    explicit Utf8Device(QByteArray &utf8) : m_utf8(utf8) { open(WriteOnly | Unbuffered); }

protected:
    qint64 readData(char *, qint64) override { return -1; }

    qint64 writeData(const char *bytes, qint64 size) override
    {
        m_utf8.append(bytes, qsizetype(size));
        return size;
    }

private:
    QByteArray &m_utf8;
};

bool writeJson(QIODevice &device, const JSONDocument &document, JSONWriter::KeyOrder order, QXTaskSteps steps)
{
    JSONWriter writer(device);
    bool goesOn = true;
    writer.value(document.root(), order,
                 [&](qsizetype done) { return goesOn = steps.goOn(done) && steps.goOn(); });
    return goesOn && !writer.finish();
}

/// The two hexadecimal digits of every byte.
constexpr auto hexDigits = [] {
    std::array<std::array<char16_t, 2>, 256> table{};
    for (unsigned byte = 0; byte < table.size(); ++byte)
        table[byte] = {char16_t(hexDigit(byte >> 4)), char16_t(hexDigit(byte & 0xF))};
    return table;
}();

} // namespace

bool QXLongText::appendJson(QString &text, const JSONDocument &document, JSONWriter::KeyOrder order,
                            QXTaskSteps steps)
{
    TextDevice device(text);
    return writeJson(device, document, order, steps);
}

bool QXLongText::appendJson(QByteArray &utf8, const JSONDocument &document, JSONWriter::KeyOrder order,
                            QXTaskSteps steps)
{
    Utf8Device device(utf8);
    return writeJson(device, document, order, steps);
}

bool QXLongText::appendUtf8(QString &text, QByteArrayView utf8, QXTaskSteps steps)
{
    LargeText::reserve(text, text.size() + utf8.size());
    TextDevice device(text);
    for (qsizetype at = 0; at < utf8.size(); at += pieceSize) {
        if (!steps.goOn(at))
            return false;
        device.write(utf8.data() + at, std::min(pieceSize, utf8.size() - at));
    }
    return true;
}

bool QXLongText::appendHex(QString &text, QByteArrayView bytes, Digits digits, QXTaskSteps steps)
{
    constexpr qsizetype digitsPerByte = 2;
    const bool isSpaced = digits == Digits::InPairs;
    const qsizetype before = text.size();
    LargeText::reserve(text, before + bytes.size() * (digitsPerByte + (isSpaced ? 1 : 0)));
    text.resize(before + bytes.size() * (digitsPerByte + (isSpaced ? 1 : 0)));
    QChar *to = text.data() + before;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (i % digitsPieceSize == 0 && !steps.goOn(i))
            return false;
        std::memcpy(static_cast<void *>(to), hexDigits[uchar(bytes[i])].data(),
                    digitsPerByte * sizeof(QChar));
        to += digitsPerByte;
        if (isSpaced)
            *to++ = u' ';
    }
    if (isSpaced && !bytes.isEmpty())
        text.chop(1);
    return true;
}
