// Checks that header names and values keep what was received, and that a request finds its headers in any
// case.

#include "FuzzCheck.h"
#include "FuzzParts.h"

#include "Platform/HTTPHeaderName.h"
#include "Platform/ReplyOutcome.h"
#include "Platform/StoredHeaderFields.h"
#include "Platform/URLRequest.h"

#include <algorithm>

using namespace Quorvix;

namespace {

bool isAscii(const QByteArray &bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return uchar(c) < 0x80; });
}

void checkText(const QByteArray &bytes)
{
    const QString text = ReplyOutcome::fieldText(bytes);
    const bool isUtf8 = QUtf8StringView(bytes.constData(), bytes.size()).isValidUtf8();
    check((isUtf8 ? text.toUtf8() : text.toLatin1()) == bytes, "no byte of a value is lost");
}

void checkName(const QByteArray &bytes)
{
    const QByteArray spelling = HTTPHeaderName::usualSpelling(bytes);
    check(spelling.compare(bytes, Qt::CaseInsensitive) == 0, "only the case of a name changes");
    check(HTTPHeaderName::usualSpelling(spelling) == spelling, "the usual spelling is the usual one");
    const QByteArray lower = HTTPHeaderName::usualSpelling(bytes.toLower());
    check(HTTPHeaderName::usualSpelling(lower.toLower()) == lower, "lower case has one spelling");
    for (int time = 0; time < 2; ++time)
        check(ReplyOutcome::fieldName(bytes) == ReplyOutcome::fieldText(spelling),
              "a known name is the same again");
}

void checkRequest(const QList<std::pair<QByteArray, QByteArray>> &fields)
{
    URLRequest request;
    for (const auto &[nameBytes, valueBytes] : fields) {
        const QString name = ReplyOutcome::fieldName(nameBytes);
        const QString value = ReplyOutcome::fieldText(valueBytes);
        const auto former = request.value(name);
        const qsizetype count = request.allHTTPHeaderFields ? request.allHTTPHeaderFields->size() : 0;
        if (valueBytes.startsWith('+')) {
            request.addValue(value, name);
            check(request.value(name) == (former ? *former + QStringLiteral(", ") + value : value),
                  "a value is added behind a comma");
        } else {
            request.setValue(value, name);
            check(request.value(name) == value, "a value is set");
        }
        check(request.allHTTPHeaderFields->size() == count + (former ? 0 : 1), "each header is there once");
        if (isAscii(nameBytes))
            check(request.value(name.toUpper()) == request.value(name.toLower()), "case makes no difference");
        check(findHeader(*request.allHTTPHeaderFields, name) != request.allHTTPHeaderFields->cend(),
              "a header is found");
    }
    const HTTPHeaderFields headers = request.allHTTPHeaderFields.value_or(HTTPHeaderFields());
    const StoredHeaderFields stored(headers);
    check(stored.toMap() == headers, "a trace keeps all headers");
    for (auto it = headers.cbegin(); it != headers.cend(); ++it)
        check(stored.exactValue(it.key()) == it.value(), "a kept header is found");
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto fields = FuzzParts(view(data, size)).takeFields();
    for (const auto &[name, value] : fields) {
        checkName(name);
        checkText(value);
    }
    // The parts of a hostile name may also hold NUL.
    checkName(view(data, size).toByteArray());
    checkText(view(data, size).toByteArray());
    checkRequest(fields);
    return 0;
}
