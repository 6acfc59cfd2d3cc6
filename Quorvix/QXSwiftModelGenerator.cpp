#include "Quorvix/QXSwiftModelGenerator.h"

#include "Quorvix/QXExportError.h"
#include "Quorvix/QXSwiftKey.h"
#include "Quorvix/QXSwiftName.h"

#include <optional>

using namespace Quorvix;

namespace {

/// The Swift type for values that have no single type. It decodes any JSON value and encodes it unchanged.
constexpr std::string_view fallbackType = R"(enum JSONValue: Codable, Hashable {
    case string(String)
    case number(Double)
    case bool(Bool)
    case object([String: JSONValue])
    case array([JSONValue])
    case null

    init(from decoder: Decoder) throws {
        let container = try decoder.singleValueContainer()
        if container.decodeNil() {
            self = .null
        } else if let value = try? container.decode(Bool.self) {
            self = .bool(value)
        } else if let value = try? container.decode(Double.self) {
            self = .number(value)
        } else if let value = try? container.decode(String.self) {
            self = .string(value)
        } else if let value = try? container.decode([JSONValue].self) {
            self = .array(value)
        } else if let value = try? container.decode([String: JSONValue].self) {
            self = .object(value)
        } else {
            self = .null
        }
    }

    func encode(to encoder: Encoder) throws {
        var container = encoder.singleValueContainer()
        switch self {
        case .string(let value):
            try container.encode(value)
        case .number(let value):
            try container.encode(value)
        case .bool(let value):
            try container.encode(value)
        case .object(let value):
            try container.encode(value)
        case .array(let value):
            try container.encode(value)
        case .null:
            try container.encodeNil()
        }
    }
})";

std::string_view scalarType(QXApiValueKind kind)
{
    switch (kind) {
    case QXApiValueKind::number:
        return "Double";
    case QXApiValueKind::boolean:
        return "Bool";
    case QXApiValueKind::null:
        return "String?";
    default:
        return "String";
    }
}

constexpr std::string_view response = "Response";

void appendWithoutResponse(QXSwiftText &text, QXSwiftText::Part typeName)
{
    if (typeName.utf8.ends_with(response))
        typeName.utf8.remove_suffix(response.size());
    text.append(typeName);
}

/// "Categories" becomes "Category", "Users" becomes "User". Only these two endings are known: "Status"
/// becomes "Statu".
void makeSingular(QXSwiftText &text)
{
    const std::string_view name = text.all().utf8;
    if (name.ends_with("ies") && name.size() > 3) {
        text.chop(3);
        text.appendAscii('y');
    } else if (name.ends_with('s') && name.size() > 1 && !name.ends_with("ss")) {
        text.chop(1);
    }
}

/// The key of a node; absent for the root. Only the first element of an array gets a type.
std::optional<QByteArrayView> keyOf(const QXApiTreeField &node)
{
    if (!node.parent())
        return std::nullopt;
    return node.parent()->kind() == QXApiValueKind::array ? QByteArrayView("[0]") : node.nameUtf8();
}

} // namespace

Result<QByteArray> QXSwiftModelGenerator::utf8Source(const QXApiTreeField &root, const QString &rootName,
                                                     QXTaskProgress *progress)
{
    QXSwiftModelGenerator generator(QXTaskSteps(progress, root.treeSize()), root.treeSize());
    generator.m_proposed.appendText(rootName);
    generator.addRoot(root);
    if (generator.m_isCancelled)
        return cancelledError();
    if (generator.m_isLimitReached)
        return makeError(QXExportError::swiftModelNotGenerated);
    if (generator.m_needsFallback) {
        generator.m_text.appendAscii('\n');
        generator.m_text.appendAscii(fallbackType);
    } else {
        generator.m_text.chop(1);
    }
    finish(progress);
    return generator.m_text.take();
}

Result<QString> QXSwiftModelGenerator::source(const QXApiTreeField &root, const QString &rootName,
                                              QXTaskProgress *progress)
{
    const Result<QByteArray> utf8 = utf8Source(root, rootName, progress);
    return utf8 ? QString::fromUtf8(utf8.value()) : Result<QString>(utf8.error());
}

void QXSwiftModelGenerator::addRoot(const QXApiTreeField &root)
{
    if (root.kind() == QXApiValueKind::object) {
        addType(root);
        return;
    }
    const Part name = reserveName();
    if (root.kind() == QXApiValueKind::array) {
        m_properties.appendAscii("    let items: [");
        appendElementType(root, name);
        m_properties.appendAscii("]\n");
    } else {
        m_properties.appendAscii("    let value: ");
        m_properties.appendAscii(scalarType(root.kind()));
        m_properties.appendAscii('\n');
    }
    addText(name, m_properties.all(), {});
}

/// Adds the type of an object, after the types of its members, and returns the name of the type.
QXSwiftText::Part QXSwiftModelGenerator::addType(const QXApiTreeField &object)
{
    const Part name = reserveName();
    const QXSwiftText::Mark properties = m_properties.end();
    const QXSwiftText::Mark cases = m_cases.end();
    // The children are sorted by key.
    for (const QXApiTreeField &member : object.children()) {
        if (isOver())
            break;
        addProperty(member, name);
    }
    if (!isOver())
        addText(name, m_properties.from(properties), m_cases.from(cases));
    m_properties.truncate(properties);
    m_cases.truncate(cases);
    return name;
}

void QXSwiftModelGenerator::addProperty(const QXApiTreeField &member, Part enclosingName)
{
    const QXSwiftKey key(member.nameUtf8());
    m_properties.appendAscii("    let ");
    const QXSwiftText::Mark name = m_properties.end();
    if (key.appendPropertyName(m_properties)) {
        m_cases.appendAscii("        case ");
        m_cases.append(m_properties.from(name));
        m_cases.appendAscii(" = ");
        key.appendLiteral(m_cases);
        m_cases.appendAscii('\n');
    }
    m_properties.appendAscii(": ");
    // The lines of a nested type stand behind this unfinished line, until the type is finished.
    appendMemberType(member, key, enclosingName);
    m_properties.appendAscii('\n');
    checkSize();
}

void QXSwiftModelGenerator::addText(Part name, Part properties, Part cases)
{
    m_text.appendAscii("struct ");
    m_text.append(name);
    m_text.appendAscii(": Codable, Hashable {\n");
    m_text.append(properties);
    if (!cases.utf8.empty()) {
        m_text.appendAscii("\n    enum CodingKeys: String, CodingKey {\n");
        m_text.append(cases);
        m_text.appendAscii("    }\n");
    }
    m_text.appendAscii("}\n");
}

void QXSwiftModelGenerator::appendMemberType(const QXApiTreeField &member, const QXSwiftKey &key,
                                             Part enclosingName)
{
    switch (member.kind()) {
    case QXApiValueKind::object:
        m_proposed.truncate({});
        appendWithoutResponse(m_proposed, enclosingName);
        if (member.nameUtf8().startsWith('['))
            m_proposed.appendAscii("Item");
        else
            key.appendTypeName(m_proposed);
        m_properties.append(addType(member));
        break;
    case QXApiValueKind::array:
        m_properties.appendAscii('[');
        appendElementType(member, enclosingName);
        m_properties.appendAscii(']');
        break;
    default:
        m_properties.appendAscii(scalarType(member.kind()));
    }
}

/// Appends the type of an array's elements, taken from the first one. @p proposedName is the name of the
/// enclosing type.
void QXSwiftModelGenerator::appendElementType(const QXApiTreeField &array, Part proposedName)
{
    const QXApiTreeField::Children elements = array.children();
    if (elements.empty() || !areOfOneKind(elements)) {
        m_needsFallback = true;
        m_properties.appendAscii("JSONValue");
        return;
    }
    const QXApiTreeField &first = elements.front();
    switch (first.kind()) {
    case QXApiValueKind::object:
        proposeElementName(array, proposedName);
        m_properties.append(addType(first));
        break;
    case QXApiValueKind::array: {
        proposeElementName(array, proposedName);
        m_properties.appendAscii('[');
        appendElementType(first, m_names.stored(m_proposed.all()));
        m_properties.appendAscii(']');
        break;
    }
    default:
        m_properties.appendAscii(scalarType(first.kind()));
    }
}

void QXSwiftModelGenerator::proposeElementName(const QXApiTreeField &array, Part proposedName)
{
    const std::optional<QByteArrayView> key = keyOf(array);
    m_proposed.truncate({});
    if (key && *key != "items")
        QXSwiftKey(*key).appendTypeName(m_proposed);
    else
        appendWithoutResponse(m_proposed, proposedName);
    // The name "Response" gives an empty text here; an empty key gives the default type name.
    if (m_proposed.end().size == 0)
        QXSwiftKey({}).appendTypeName(m_proposed);
    else
        makeSingular(m_proposed);
}

/// Makes a name that no other type has from the proposed one, and marks it as used.
QXSwiftText::Part QXSwiftModelGenerator::reserveName()
{
    const QXSwiftText::Mark proposed = m_proposed.end();
    QXSwiftNames::Insertion inserted = m_names.insert(m_proposed.all());
    // Names are never released, so the search continues after the last suffix that was tried.
    for (const size_t used = inserted.index; !inserted.isNew && !isOver();) {
        const std::optional<QString> suffix = QXSwiftName::suffix(m_names.nextSuffix(used)++);
        m_isLimitReached |= !suffix;
        m_proposed.truncate(proposed);
        m_proposed.appendText(suffix.value_or(QString()));
        inserted = m_names.insert(m_proposed.all());
    }
    m_nameSize += m_proposed.utf16Size();
    checkSize();
    return inserted.name;
}

void QXSwiftModelGenerator::checkSize()
{
    const qsizetype size = m_nameSize + m_text.utf16Size() + m_properties.utf16Size() + m_cases.utf16Size();
    m_isLimitReached |= size > maximumSize;
    m_isCancelled |= !m_steps.goOn(++m_done);
}

bool QXSwiftModelGenerator::areOfOneKind(QXApiTreeField::Children nodes)
{
    const QXApiValueKind kind = nodes.front().kind();
    for (const QXApiTreeField &node : nodes) {
        m_isCancelled |= !m_steps.goOn(++m_done);
        if (node.kind() != kind || m_isCancelled)
            return false;
    }
    return true;
}
