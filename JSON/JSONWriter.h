#pragma once

#include "Platform/NSError.h"

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QLatin1StringView>
#include <QtCore/QStringView>

#include <functional>
#include <optional>

class QIODevice;

namespace Quorvix {

class JSONValue;

/// Writes one JSON text (RFC 8259) piece by piece, into a buffer of its own or to a device.
///
/// The caller supplies a well-formed sequence: a key before each member's value, an end for each begin.
/// Pretty texts have two spaces of indentation, `"key" : value` and one member or element per line; an empty
/// container is `[]` or `{}`. Slashes are not escaped. Not thread-safe.
class QUORVIX_INTERNAL_EXPORT JSONWriter final
{
public:
    enum class Format { Pretty, Compact };
    /// How the members of a parsed object are ordered: as in its text, or ascending by the code points of
    /// their names.
    enum class KeyOrder { Document, Sorted };
    /// Asked about every millisecond while a long value is written, with what is done of it: bytes, or
    /// parts of JSONDocument::size(). Returns false to stop. The text is then incomplete and of no use.
    using Checkpoint = std::function<bool(qsizetype done)>;

    /// Writes to a buffer, which takeBuffer() returns. The buffer grows in small steps, so the peak use of
    /// memory is close to the size of the result.
    explicit JSONWriter(Format format = Format::Pretty);
    /// Writes to @p device in blocks of about 256 KB. The device has to outlive the writer.
    explicit JSONWriter(QIODevice &device, Format format = Format::Pretty);
    Q_DISABLE_COPY_MOVE(JSONWriter)
    ~JSONWriter() = default;

    void beginObject() { begin('{'); }
    void endObject() { end('}'); }
    void beginArray() { begin('['); }
    void endArray() { end(']'); }

    /// Writes a name of ASCII characters that need no escapes.
    void key(QLatin1StringView plainName);
    void keyUtf8(QByteArrayView name);

    /// Writes text; a lone surrogate becomes U+FFFD.
    void string(QStringView text);
    /// Writes text that is known to be well-formed UTF-8; see isValidUtf8().
    void utf8(QByteArrayView text, const Checkpoint &checkpoint = {});
    /// Writes bytes as Base64 text (RFC 4648, section 4), without line breaks.
    void base64(QByteArrayView bytes, const Checkpoint &checkpoint = {});
    void integer(qint64 number);
    void unsignedInteger(quint64 number);
    /// Writes a number in the form of text(). JSON has no infinity and no NaN; both are written as 0, so that
    /// every reader accepts the file.
    void number(double number);
    void boolean(bool value);
    void null();
    /// Writes a whole parsed value, with all members that share a name.
    void value(const JSONValue &value, KeyOrder order, const Checkpoint &checkpoint = {});

    /// Writes a number with the digits of a JSON text; they are not checked.
    void number(QByteArrayView digits);
    /// The shortest decimal form that reads back as the same double, with an exponent only where a person
    /// would write one: 250, 100000, 0.1, 1e+21, 1e-07. Any thread.
    [[nodiscard]] static QByteArray text(double number);

    /// Writes the rest to the device. Fails with NSCocoaErrorDomain / NSFileWriteUnknownError and the
    /// device's own sentence if any write failed; everything after the failed write is dropped.
    [[nodiscard]] std::optional<NSError> finish();
    /// Returns the text. The writer must not be used afterwards.
    [[nodiscard]] QByteArray takeBuffer();

private:
    void begin(char bracket);
    void end(char bracket);
    char *beginValue(qsizetype size);
    char *breakLine(char *to) const;
    void writePlain(QByteArrayView value);
    void beginText(qsizetype units);
    void endName();

    /// Where at least @p size bytes can be written. The caller then moves m_cursor behind what it wrote.
    char *room(qsizetype size) { return m_limit - m_cursor < size ? grownRoom(size) : m_cursor; }
    char *grownRoom(qsizetype size);
    void flush();

    QIODevice *m_device = nullptr;
    const Format m_format;
    QByteArray m_buffer;
    char *m_cursor = nullptr;
    char *m_limit = nullptr;
    qsizetype m_depth = 0;
    /// Whether the innermost open container has no element or member yet.
    bool m_isEmpty = true;
    bool m_afterKey = false;
    std::optional<NSError> m_error;
};

/// Whether bytes are well-formed UTF-8 (RFC 3629), as every text in a JSON file must be. Any thread.
[[nodiscard]] bool isValidUtf8(QByteArrayView bytes) noexcept;

} // namespace Quorvix
