// Checks that the model of any body consists only of lines that a model can have.

#include "FuzzCheck.h"

#include "Quorvix/QXApiTreeParser.h"
#include "Quorvix/QXSwiftName.h"

#include <QtCore/QRegularExpression>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// The source without the type at its end, which is always the same.
QStringView withoutFallback(QStringView source)
{
    const qsizetype fallback = source.indexOf(u"\n\nenum JSONValue: Codable, Hashable {\n");
    return fallback < 0 ? source : source.first(fallback);
}

bool isLineOfAModel(QStringView line)
{
    static const QRegularExpression shape(
        uR"(^(?:struct [\p{L}\p{M}\p{N}]+: Codable, Hashable \{|)"
        uR"(    let `?[\p{L}\p{M}\p{N}]+`?: \[*[\p{L}\p{M}\p{N}]+\??\]*|)"
        uR"(|    enum CodingKeys: String, CodingKey \{|)"
        uR"(        case `?[\p{L}\p{M}\p{N}]+`? = "(?:[^"\\\p{Cc}\x{2028}\x{2029}]|\\["\\0nrt]|\\u\{[0-9A-Fa-f]{1,8}\})*"|)"
        uR"(    \}|\})$)"_s,
        QRegularExpression::UseUnicodePropertiesOption);
    return shape.match(line.toString()).hasMatch();
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    // The first line is a request path, the rest a body.
    const QByteArrayView bytes = view(data, size);
    const qsizetype lineEnd = std::max<qsizetype>(bytes.indexOf('\n'), 0);
    const QString rootName = QXSwiftName::rootTypeName(QString::fromUtf8(bytes.first(lineEnd)));
    const auto fields = QXApiTreeParser::parse(bytes.sliced(lineEnd));
    if (!fields)
        return 0;
    const auto source = QXApiTreeParser::swiftModel(*fields.value().first(), rootName);
    if (!source)
        return 0;
    for (const QStringView line : withoutFallback(source.value()).split(u'\n'))
        check(isLineOfAModel(line), "every line has one of a model's shapes");
    return 0;
}
