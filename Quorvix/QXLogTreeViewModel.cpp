#include "Quorvix/QXLogTreeViewModel.h"

#include "Quorvix/QXExportError.h"
#include "Quorvix/QXOptionalVariant.h"
#include "Quorvix/QXPayloadDecoder.h"
#include "Quorvix/QXSwiftName.h"

#include "Platform/FreedMemory.h"
#include "Platform/ShortText.h"

#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

bool breaksLine(QChar unit)
{
    switch (unit.category()) {
    case QChar::Other_Control:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        return false;
    }
}

/// Returns the beginning of a text on one line.
QString shortened(QString text)
{
    text = ShortText::beginning(text);
    for (QChar &unit : text) {
        if (breaksLine(unit))
            unit = u' ';
    }
    return text;
}

/// Converts only the bytes that are needed.
QString shortened(QByteArrayView utf8)
{
    // The last character may be cut in two, so it has to lie far behind the end of the line.
    constexpr qsizetype mostBytes = 4 * (ShortText::longestLine + 64);
    return shortened(QString::fromUtf8(utf8.first(qMin(utf8.size(), mostBytes))));
}

QString shownKey(const QXApiTreeField &field)
{
    const QByteArrayView name = field.nameUtf8();
    return name.isEmpty() ? field.key().value_or(QString()) : shortened(name);
}

QString shownSummary(const QXApiTreeField &field)
{
    if (field.kind() == QXApiValueKind::string)
        return u'"' + shortened(field.textUtf8()) + u'"';
    return shortened(field.summary().value_or(QString()));
}

/// The next visible node after @p node within the subtree @p top, or null.
QXApiTreeField *next(QXApiTreeField *node, const QXApiTreeField *top)
{
    if (node->isExpanded() && !node->children().empty())
        return node->children().data();
    for (; node != top; node = node->parent()) {
        if (node != &node->parent()->children().back())
            return node + 1;
    }
    return nullptr;
}

} // namespace

QXLogTreeViewModel::QXLogTreeViewModel(const QString &json, QObject *parent) : QXPresentingModel(parent)
{
    load(json);
}

QXLogTreeViewModel::~QXLogTreeViewModel()
{
    Quorvix::FreedMemory::note(m_textSize);
}

void QXLogTreeViewModel::load(QStringView json)
{
    m_textSize = json.size();
    auto fields = QXApiTreeParser::parse(json);
    if (!fields) {
        m_parseError = fields.error().localizedDescription;
        Q_EMIT parseErrorChanged();
        return;
    }
    beginResetModel();
    m_rows.clear();
    m_rootFields = std::move(fields).value();
    std::vector<QXApiTreeField *> shown;
    for (const auto &root : std::as_const(m_rootFields))
        shown.push_back(root.get());
    m_rows.insert(0, shown);
    endResetModel();
}

int QXLogTreeViewModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant QXLogTreeViewModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const QXApiTreeField &shown = field(index.row());
    switch (role) {
    case KeyRole:
        return shownKey(shown);
    case Qt::DisplayRole:
    case SummaryRole:
        return shownSummary(shown);
    case KindRole:
        return int(shown.kind());
    case KindNameRole:
        return displayName(shown.kind());
    case DepthRole:
        return shown.depth();
    case IsExpandedRole:
        return shown.isExpanded();
    case HasChildrenRole:
        return !shown.children().empty();
    default:
        return {};
    }
}

QHash<int, QByteArray> QXLogTreeViewModel::roleNames() const
{
    return {{KeyRole, "key"},
            {SummaryRole, "summary"},
            {KindRole, "kind"},
            {KindNameRole, "kindName"},
            {DepthRole, "depth"},
            {IsExpandedRole, "isExpanded"},
            {HasChildrenRole, "hasChildren"}};
}

std::vector<const QXApiTreeField *> QXLogTreeViewModel::visibleFields() const
{
    std::vector<const QXApiTreeField *> fields;
    fields.reserve(m_rows.size());
    for (int row = 0; row < rowCount(); ++row)
        fields.push_back(&field(row));
    return fields;
}

void QXLogTreeViewModel::toggle(int row)
{
    if (!hasRow(row) || field(row).children().empty())
        return;
    field(row).isExpanded() ? removeDescendants(row) : insertDescendants(row);
    Q_EMIT dataChanged(index(row), index(row), {IsExpandedRole});
}

void QXLogTreeViewModel::insertDescendants(int row)
{
    QXApiTreeField &top = field(row);
    top.setExpanded(true);
    std::vector<QXApiTreeField *> below;
    for (QXApiTreeField *node = next(&top, &top); node; node = next(node, &top))
        below.push_back(node);
    beginInsertRows({}, row + 1, row + int(below.size()));
    m_rows.insert(size_t(row) + 1, below);
    endInsertRows();
}

void QXLogTreeViewModel::removeDescendants(int row)
{
    field(row).setExpanded(false);
    // Counts the rows instead of reading the isExpanded() flags: other owners of the nodes can change the
    // flags.
    const size_t count = m_rows.countDescendants(size_t(row));
    if (count == 0)
        return;
    beginRemoveRows({}, row + 1, row + int(count));
    m_rows.remove(size_t(row) + 1, count);
    endRemoveRows();
}

int QXLogTreeViewModel::expand(int row)
{
    if (!hasRow(row) || field(row).children().empty())
        return row;
    if (field(row).isExpanded())
        return row + 1;
    toggle(row);
    return row;
}

int QXLogTreeViewModel::collapse(int row)
{
    if (!hasRow(row))
        return row;
    const QXApiTreeField &shown = field(row);
    if (!shown.isExpanded())
        return shown.parent() ? int(m_rows.rowBefore(size_t(row), shown.parent())) : row;
    toggle(row);
    return row;
}

QString QXLogTreeViewModel::copyText(int row) const
{
    if (!hasRow(row))
        return {};
    const QXApiTreeField &copied = field(row);
    if (const auto text = copied.rowText())
        return *text;
    const QString key = copied.key().value_or(QString());
    const QString summary = copied.summary().value_or(QString());
    return key.isEmpty() ? summary : key + ": "_L1 + summary;
}

void QXLogTreeViewModel::copy(int row) const
{
    if (const QString text = copyText(row); !text.isEmpty())
        QGuiApplication::clipboard()->setText(text);
}

bool QXLogTreeViewModel::canDecodeBase64(int row) const
{
    return hasRow(row) && field(row).kind() == QXApiValueKind::string &&
           QXPayloadDecoder::hasEncodedCandidate(field(row).textUtf8());
}

void QXLogTreeViewModel::decodeBase64(int row)
{
    if (!hasRow(row) || field(row).kind() != QXApiValueKind::string)
        return;
    presentDecodedPayload(QXPayloadDecoder::decodePayload(field(row).textUtf8()));
}

void QXLogTreeViewModel::shareSwiftModel(const QString &requestPath)
{
    if (m_rootFields.isEmpty())
        return presentAlert(makeError(QXExportError::swiftModelNotGenerated).localizedDescription);
    Quorvix::FreedMemory::note(m_textSize);
    const QString name = QXSwiftName::rootTypeName(requestPath);
    const auto source = QXApiTreeParser::swiftModel(*m_rootFields.constFirst(), name);
    if (!source)
        return presentAlert(source.error().localizedDescription);
    presentShareItem(QXShareItem(source.value()));
}

QVariant QXLogTreeViewModel::parseErrorValue() const
{
    return asVariant(m_parseError);
}
