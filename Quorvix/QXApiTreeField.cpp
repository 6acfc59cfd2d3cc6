#include "Quorvix/QXApiTreeField.h"

#include "Platform/Localized.h"
#include "JSON/JSONTape.h"
#include "JSON/JSONWideNumbers.h"
#include "JSON/JSONWriter.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <vector>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// A count with its noun: "1 item", "3 items".
QString counted(quint32 count, const char *one, const char *many)
{
    return QString::number(count) + u' ' + localized(count == 1 ? one : many);
}

/// The path of the node @p key below the path @p parent. Empty if the node has no path.
QString joined(const QString &parent, const QString &key)
{
    if (key.isEmpty())
        return parent;
    if (key.startsWith(u'['))
        return parent.isEmpty() ? QString() : parent + key;
    return parent.isEmpty() ? key : parent + u'.' + key;
}

} // namespace

std::optional<QString> QXApiTreeField::key() const
{
    if (!m_parent)
        return std::nullopt;
    if (m_parent->m_form == Form::Array)
        return u'[' + QString::number(this - m_parent->m_children) + u']';
    return QString::fromUtf8(nameUtf8());
}

std::optional<QString> QXApiTreeField::keyPath() const
{
    std::vector<const QXApiTreeField *> nodes;
    for (const QXApiTreeField *node = this; node->m_parent; node = node->m_parent)
        nodes.push_back(node);
    QString path;
    std::reverse(nodes.begin(), nodes.end());
    for (const QXApiTreeField *node : nodes)
        path = joined(path, *node->key());
    return path.isEmpty() ? std::nullopt : std::optional(path);
}

QXApiTreeField::Value QXApiTreeField::value() const
{
    switch (m_form) {
    case Form::Object:
    case Form::Array:
        return children();
    case Form::String:
        return QString::fromUtf8(textUtf8());
    case Form::Int64:
        return m_int64;
    case Form::UInt64:
        return m_uint64;
    case Form::Double:
        return m_double;
    case Form::WideNumber:
        return nearestDouble({m_text, m_size});
    case Form::True:
    case Form::False:
        return m_form == Form::True;
    case Form::Null:
        break;
    }
    return nullptr;
}

QXApiValueKind QXApiTreeField::kind() const noexcept
{
    switch (m_form) {
    case Form::Object:
        return QXApiValueKind::object;
    case Form::Array:
        return QXApiValueKind::array;
    case Form::String:
        return QXApiValueKind::string;
    case Form::Int64:
    case Form::UInt64:
    case Form::Double:
    case Form::WideNumber:
        return QXApiValueKind::number;
    case Form::True:
    case Form::False:
        return QXApiValueKind::boolean;
    case Form::Null:
        break;
    }
    return QXApiValueKind::null;
}

QXApiTreeField::Children QXApiTreeField::children() const noexcept
{
    return isContainer() ? Children(m_children, m_size) : Children();
}

std::shared_ptr<QXApiTreeField> QXApiTreeField::share()
{
    return {owner().shared_from_this(), this};
}

QXApiTreeField::Owner &QXApiTreeField::owner() const noexcept
{
    const QXApiTreeField *root = this;
    while (root->m_parent)
        root = root->m_parent;
    return *root->m_owner;
}

std::optional<QString> QXApiTreeField::summary() const
{
    switch (m_form) {
    case Form::Object:
        return m_size == 0 ? std::nullopt
                           : std::optional(u'{' +
                                           counted(m_size, QT_TRANSLATE_NOOP("Quorvix", "key"),
                                                   QT_TRANSLATE_NOOP("Quorvix", "keys")) +
                                           u'}');
    case Form::Array:
        return m_size == 0 ? std::nullopt
                           : std::optional(u'[' +
                                           counted(m_size, QT_TRANSLATE_NOOP("Quorvix", "item"),
                                                   QT_TRANSLATE_NOOP("Quorvix", "items")) +
                                           u']');
    case Form::String:
        return u'"' + QString::fromUtf8(textUtf8()) + u'"';
    case Form::Int64:
        return QString::number(m_int64);
    case Form::UInt64:
        return QString::number(m_uint64);
    case Form::Double:
        return QString::fromLatin1(JSONWriter::text(m_double));
    case Form::WideNumber:
        return QString::fromLatin1(m_text, m_size);
    case Form::True:
        return u"true"_s;
    case Form::False:
        return u"false"_s;
    case Form::Null:
        break;
    }
    return QCoreApplication::translate("Quorvix", "null");
}

std::optional<QString> QXApiTreeField::rowText() const
{
    const std::optional<QString> name = key();
    if (!children().empty() || !name || name->isEmpty())
        return std::nullopt;
    return *name + ": "_L1 + summary().value_or(QString());
}

QByteArrayView QXApiTreeField::nameUtf8() const noexcept
{
    return m_parent && m_name ? JSONTape::view(m_name) : QByteArrayView();
}

QByteArrayView QXApiTreeField::textUtf8() const noexcept
{
    return m_form == Form::String ? JSONTape::view(m_text) : QByteArrayView();
}
