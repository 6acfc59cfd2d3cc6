#include "Quorvix/QXApiMockDefinition.h"

#include "Quorvix/QXTaskSteps.h"

#include "JSON/JSONWriter.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <initializer_list>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView nameKey{"name"};
constexpr QLatin1StringView requestKey{"request"};
constexpr QLatin1StringView responsesKey{"responses"};
constexpr QLatin1StringView urlKey{"url"};
constexpr QLatin1StringView methodKey{"method"};
constexpr QLatin1StringView statusKey{"status"};
constexpr QLatin1StringView dataKey{"data"};
constexpr QLatin1StringView defaultKey{"default"};

void encode(JSONWriter &writer, const QXApiMockRequest &request)
{
    writer.beginObject();
    writer.key(methodKey);
    writer.string(request.method);
    writer.key(urlKey);
    writer.string(request.url);
    writer.endObject();
}

void encode(JSONWriter &writer, const QXApiMockResponse &response, QXTaskProgress *progress)
{
    writer.beginObject();
    writer.key(dataKey);
    response.data.encode(writer, progress);
    writer.key(defaultKey);
    writer.boolean(response.isDefault);
    writer.key(statusKey);
    writer.integer(response.status);
    writer.endObject();
}

void encode(JSONWriter &writer, const QXApiMockDefinition &definition, QXTaskProgress *progress)
{
    writer.beginObject();
    writer.key(nameKey);
    writer.string(definition.name);
    writer.key(requestKey);
    encode(writer, definition.request);
    writer.key(responsesKey);
    writer.beginObject();
    for (auto it = definition.responses.cbegin(); it != definition.responses.cend(); ++it) {
        writer.keyUtf8(it.key().toUtf8());
        encode(writer, *it, progress);
    }
    writer.endObject();
    writer.endObject();
}

/// Reads an object that must have exactly the given keys, each with the given kind of value.
class Record
{
public:
    struct Field
    {
        QLatin1StringView key;
        std::optional<JSONValue::Kind> kind;
    };

    explicit Record(const JSONValue &object) : m_object(object) {}

    [[nodiscard]] bool hasExactly(std::initializer_list<Field> fields) const
    {
        const auto isKnown = [&](QByteArrayView name) {
            return std::any_of(fields.begin(), fields.end(),
                               [&](const Field &f) { return view(f.key) == name; });
        };
        for (const auto &member : m_object.members()) {
            if (!isKnown(member.name))
                return false;
        }
        return std::all_of(fields.begin(), fields.end(), [this](const Field &field) {
            const auto member = m_object.member(view(field.key));
            return member && (!field.kind || member->kind() == *field.kind);
        });
    }

    /// The value of @p key. hasExactly() must have accepted this key.
    [[nodiscard]] JSONValue operator[](QLatin1StringView key) const { return *m_object.member(view(key)); }

private:
    static QByteArrayView view(QLatin1StringView key) { return {key.data(), key.size()}; }

    JSONValue m_object;
};

using Kind = JSONValue::Kind;

std::optional<QXApiMockRequest> decodeRequest(const JSONValue &value)
{
    const Record record(value);
    if (!record.hasExactly({{urlKey, Kind::String}, {methodKey, Kind::String}}))
        return std::nullopt;
    return QXApiMockRequest{record[urlKey].text(), record[methodKey].text()};
}

std::optional<QXApiMockResponse> decodeResponse(const JSONDocument &document, const JSONValue &value)
{
    const Record record(value);
    if (!record.hasExactly({{statusKey, Kind::Number}, {dataKey, std::nullopt}, {defaultKey, Kind::Boolean}}))
        return std::nullopt;
    if (record[statusKey].numberKind() != JSONValue::NumberKind::Int64)
        return std::nullopt;
    return QXApiMockResponse{record[statusKey].toInt64(), QXApiMockAnyEncodable(document, record[dataKey]),
                             record[defaultKey].isTrue()};
}

std::optional<QXApiMockDefinition> decodeDefinition(const JSONDocument &document)
{
    const Record record(document.root());
    if (!record.hasExactly(
            {{nameKey, Kind::String}, {requestKey, Kind::Object}, {responsesKey, Kind::Object}}))
        return std::nullopt;
    const auto request = decodeRequest(record[requestKey]);
    if (!request)
        return std::nullopt;
    QXApiMockDefinition definition{record[nameKey].text(), *request, {}};
    for (const auto &[name, value] : record[responsesKey].members()) {
        const auto response = decodeResponse(document, value);
        if (!response)
            return std::nullopt;
        definition.responses.insert(QString::fromUtf8(name), *response);
    }
    return definition;
}

} // namespace

QByteArray QXApiMockDefinition::encode() const
{
    JSONWriter writer;
    ::encode(writer, *this, nullptr);
    return writer.takeBuffer();
}

std::optional<NSError> QXApiMockDefinition::encode(QIODevice &device, QXTaskProgress *progress) const
{
    JSONWriter writer(device);
    ::encode(writer, *this, progress);
    return isCancelled(progress) ? cancelledError() : writer.finish();
}

Result<QXApiMockDefinition> QXApiMockDefinition::decode(QByteArrayView utf8)
{
    const auto document = JSONReader::parse(utf8);
    if (!document)
        return document.error();
    if (auto definition = decodeDefinition(document.value()))
        return *std::move(definition);
    return NSError{NSCocoaErrorDomain, NSPropertyListReadCorruptError,
                   QCoreApplication::translate("Quorvix", "The text is not a mock definition.")};
}
