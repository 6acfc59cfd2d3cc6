#include "Quorvix/QXSwiftModelGenerator.h"

#include "Quorvix/QXExportError.h"
#include "Quorvix/QXSwiftName.h"

#include <algorithm>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// The Swift type for values that have no single type. It decodes any JSON value and encodes it unchanged.
constexpr QStringView fallbackType = uR"(enum JSONValue: Codable, Hashable {
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

QString scalarType(QXApiValueKind kind)
{
    switch (kind) {
    case QXApiValueKind::number:
        return u"Double"_s;
    case QXApiValueKind::boolean:
        return u"Bool"_s;
    case QXApiValueKind::null:
        return u"String?"_s;
    default:
        return u"String"_s;
    }
}

QString nestedTypeName(QStringView key, QStringView enclosingName)
{
    return QXSwiftName::withoutResponse(enclosingName).toString() +
           QXSwiftName::typeName(key.startsWith(u'[') ? u"Item" : key);
}

QString elementTypeName(const std::optional<QString> &key, QStringView proposedName)
{
    if (key && *key != "items"_L1)
        return QXSwiftName::singular(QXSwiftName::typeName(*key));
    const QStringView name = QXSwiftName::withoutResponse(proposedName);
    // The name "Response" gives an empty text here; an empty key gives the default type name.
    return name.isEmpty() ? QXSwiftName::typeName({}) : QXSwiftName::singular(name);
}

} // namespace

Result<QString> QXSwiftModelGenerator::source(const QXApiTreeField &root, const QString &rootName,
                                              QXTaskProgress *progress)
{
    QXSwiftModelGenerator generator(QXTaskSteps(progress, root.treeSize()));
    generator.addRoot(root, rootName);
    if (generator.m_isCancelled)
        return cancelledError();
    if (generator.m_isLimitReached)
        return makeError(QXExportError::swiftModelNotGenerated);
    if (generator.m_needsFallback)
        generator.m_text.append(u'\n').append(fallbackType);
    else
        generator.m_text.chop(1);
    finish(progress);
    return std::move(generator.m_text);
}

void QXSwiftModelGenerator::addRoot(const QXApiTreeField &root, const QString &rootName)
{
    if (root.kind() == QXApiValueKind::object) {
        addType(root, rootName);
        return;
    }
    const QString name = reserveName(rootName);
    const QString property = root.kind() == QXApiValueKind::array
                                 ? u"    let items: ["_s + elementType(root, name) + u"]\n"_s
                                 : u"    let value: "_s + scalarType(root.kind()) + u'\n';
    addText(name, property, {});
}

/// Adds the type of an object, after the types of its members, and returns the name of the type.
QString QXSwiftModelGenerator::addType(const QXApiTreeField &object, const QString &proposedName)
{
    QString name = reserveName(proposedName);
    const qsizetype properties = m_properties.size();
    const qsizetype cases = m_cases.size();
    // The children are sorted by key.
    for (const QXApiTreeField &member : object.children()) {
        if (isOver())
            break;
        addProperty(member, name);
    }
    if (!isOver())
        addText(name, QStringView(m_properties).sliced(properties), QStringView(m_cases).sliced(cases));
    m_properties.truncate(properties);
    m_cases.truncate(cases);
    return name;
}

void QXSwiftModelGenerator::addProperty(const QXApiTreeField &member, const QString &enclosingName)
{
    // This call comes first, because it uses the same buffers for the lines of a nested type.
    const QString type = memberType(member, enclosingName);
    if (isOver())
        return;
    const Property &property = propertyFor(member);
    m_properties.append(property.declaration).append(type).append(u'\n');
    m_cases.append(property.codingCase);
    checkSize();
}

const QXSwiftModelGenerator::Property &QXSwiftModelGenerator::propertyFor(const QXApiTreeField &member)
{
    const QByteArrayView utf8 = member.nameUtf8();
    Property &property = m_propertiesOfKeys[{utf8.data(), size_t(utf8.size())}];
    if (property.declaration.isEmpty()) {
        const QString key = QString::fromUtf8(utf8);
        const QString name = QXSwiftName::propertyName(key);
        property.declaration = u"    let "_s + name + u": "_s;
        if (name != key)
            property.codingCase =
                u"        case "_s + name + u" = "_s + QXSwiftName::stringLiteral(key) + u'\n';
    }
    return property;
}

void QXSwiftModelGenerator::addText(QStringView name, QStringView properties, QStringView cases)
{
    m_text.append(u"struct "_s).append(name).append(u": Codable, Hashable {\n"_s).append(properties);
    if (!cases.isEmpty())
        m_text.append(u"\n    enum CodingKeys: String, CodingKey {\n"_s).append(cases).append(u"    }\n"_s);
    m_text.append(u"}\n"_s);
}

QString QXSwiftModelGenerator::memberType(const QXApiTreeField &member, const QString &enclosingName)
{
    switch (member.kind()) {
    case QXApiValueKind::object:
        return addType(member, nestedTypeName(QString::fromUtf8(member.nameUtf8()), enclosingName));
    case QXApiValueKind::array:
        return u'[' + elementType(member, enclosingName) + u']';
    default:
        return scalarType(member.kind());
    }
}

/// The type of an array's elements, taken from the first one. @p proposedName is the name of the enclosing
/// type.
QString QXSwiftModelGenerator::elementType(const QXApiTreeField &array, QStringView proposedName)
{
    const QXApiTreeField::Children elements = array.children();
    if (elements.empty() || !areOfOneKind(elements)) {
        m_needsFallback = true;
        return u"JSONValue"_s;
    }
    const QXApiTreeField &first = elements.front();
    switch (first.kind()) {
    case QXApiValueKind::object:
        return addType(first, elementTypeName(array.key(), proposedName));
    case QXApiValueKind::array:
        return u'[' + elementType(first, elementTypeName(array.key(), proposedName)) + u']';
    default:
        return scalarType(first.kind());
    }
}

/// Returns a name that no other type has, and marks it as used.
QString QXSwiftModelGenerator::reserveName(const QString &proposedName)
{
    QString name = proposedName;
    if (const auto used = m_nextSuffixes.find(name); used != m_nextSuffixes.end()) {
        // Names are never released, so the search continues after the last suffix that was tried.
        int index = used->second;
        do {
            const std::optional<QString> suffix = QXSwiftName::suffix(index++);
            m_isLimitReached |= !suffix;
            name = proposedName + suffix.value_or(QString());
        } while (!isOver() && m_nextSuffixes.contains(name));
        used->second = index;
    }
    m_nextSuffixes.try_emplace(name, 0);
    m_nameSize += name.size();
    checkSize();
    return name;
}

void QXSwiftModelGenerator::checkSize()
{
    const qsizetype size = m_nameSize + m_text.size() + m_properties.size() + m_cases.size();
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
