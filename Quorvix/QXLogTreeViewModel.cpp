#include "Quorvix/QXLogTreeViewModel.h"

#include "Quorvix/QXBodyContent.h"
#include "Quorvix/QXExportError.h"
#include "Quorvix/QXOptionalVariant.h"
#include "Quorvix/QXPayloadDecoder.h"
#include "Quorvix/QXSwiftName.h"
#include "Quorvix/QXTaskSteps.h"

#include "Platform/BackgroundThread.h"
#include "Platform/FreedMemory.h"
#include "Platform/MainActor.h"
#include "Platform/ShortText.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

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

/// The text of a row for the clipboard.
QString textOf(const QXApiTreeField &copied)
{
    if (const auto text = copied.rowText())
        return *text;
    const QString key = copied.key().value_or(QString());
    const QString summary = copied.summary().value_or(QString());
    return key.isEmpty() ? summary : key + ": "_L1 + summary;
}

/// The visible descendants of a node that is expanded.
std::vector<QXLogTreeRows::Run> descendantsOf(QXApiTreeField &top)
{
    struct Level
    {
        QXApiTreeField *next;
        QXApiTreeField *end;
    };
    const auto levelOf = [](QXApiTreeField &node) {
        return Level{node.children().data(), node.children().data() + node.children().size()};
    };
    const auto isOpen = [](const QXApiTreeField &node) {
        return node.isExpanded() && !node.children().empty();
    };
    std::vector<QXLogTreeRows::Run> runs;
    std::vector<Level> levels{levelOf(top)};
    while (!levels.empty()) {
        Level &level = levels.back();
        QXApiTreeField *const first = level.next;
        QXApiTreeField *const open = std::find_if(first, level.end, isOpen);
        level.next = open == level.end ? open : open + 1;
        runs.push_back({first, size_t(level.next - first)});
        if (open == level.end)
            levels.pop_back();
        else
            levels.push_back(levelOf(*open));
    }
    return runs;
}

/// About how many bytes the tree of a text of that many UTF-16 units needs.
constexpr qsizetype treeSize(qsizetype units)
{
    return 4 * units;
}

} // namespace

QXLogTreeViewModel::QXLogTreeViewModel(const QXTextContent &json, QObject *parent) : QXPresentingModel(parent)
{
    load(json);
}

QXLogTreeViewModel::QXLogTreeViewModel(const QString &json, QObject *parent)
    : QXLogTreeViewModel(QXTextContent(json), parent)
{
}

QXLogTreeViewModel::~QXLogTreeViewModel()
{
    m_check->cancel();
    FreedMemory::discard(std::move(m_rootFields), treeSize(m_textSize));
}

void QXLogTreeViewModel::load(const QXTextContent &json)
{
    m_textSize = json.length();
    task()->perform(
        json.length(), QCoreApplication::translate("Quorvix", "Opening Tree…"),
        [json](QXTaskProgress *progress) {
            return json.isAscii()
                       ? QXApiTreeParser::parse(QByteArrayView(json.utf8()), progress)
                       : QXApiTreeParser::parse(QXBodyContent::text(json, QXTaskSteps(progress)), progress);
        },
        [this](Result<Fields> fields) {
            if (fields)
                return show(std::move(fields).value());
            m_parseError = fields.error().localizedDescription;
            Q_EMIT parseErrorChanged();
        });
}

void QXLogTreeViewModel::show(Fields fields)
{
    m_check->cancel();
    m_checked = nullptr; // a node of the new tree can get the same address
    m_unfolded.clear();
    beginResetModel();
    m_rows.clear();
    FreedMemory::discard(std::exchange(m_rootFields, std::move(fields)), treeSize(m_textSize));
    for (const auto &root : std::as_const(m_rootFields))
        m_rows.insert(m_rows.size(), std::array{QXLogTreeRows::Run{root.get(), 1}});
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
    case WholeValueRole:
        return m_unfolded.text(shown);
    case DocumentRole:
        return QVariant::fromValue(m_unfolded.document(shown));
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
            {HasChildrenRole, "hasChildren"},
            {WholeValueRole, "wholeValue"},
            {DocumentRole, "document"}};
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
    const auto runs = descendantsOf(top);
    const size_t count = std::accumulate(runs.cbegin(), runs.cend(), size_t(0),
                                         [](size_t sum, const auto &run) { return sum + run.count; });
    beginInsertRows({}, row + 1, row + int(count));
    m_rows.insert(size_t(row) + 1, runs);
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

void QXLogTreeViewModel::toggleValue(int row)
{
    if (!hasRow(row) || !field(row).children().empty())
        return;
    const auto changed = [this, row, node = &field(row)] {
        if (hasRow(row) && &field(row) == node)
            Q_EMIT dataChanged(index(row), index(row), {WholeValueRole, DocumentRole});
    };
    if (m_unfolded.contains(field(row))) {
        m_unfolded.remove(field(row));
        return changed();
    }
    task()->perform(
        field(row).textUtf8().size(), QCoreApplication::translate("Quorvix", "Opening Value…"),
        [node = field(row).share()](QXTaskProgress *) {
            return std::pair(node, QXUnfoldedValues::valueOf(*node));
        },
        [this, changed](const auto &value) {
            m_unfolded.insert(*value.first, value.second);
            changed();
        });
}

int QXLogTreeViewModel::reveal(const QXApiTreeField &revealed)
{
    std::vector<const QXApiTreeField *> path{&revealed};
    while (path.back()->parent())
        path.push_back(path.back()->parent());
    for (size_t node = path.size() - 1; node > 0; --node) {
        if (!path[node]->isExpanded())
            toggle(int(m_rows.rowBefore(m_rows.size(), path[node])));
    }
    return int(m_rows.rowBefore(m_rows.size(), &revealed));
}

QString QXLogTreeViewModel::copyText(int row) const
{
    return hasRow(row) ? textOf(field(row)) : QString();
}

void QXLogTreeViewModel::copy(int row) const
{
    if (!hasRow(row))
        return;
    task()->perform(
        field(row).textUtf8().size(), QCoreApplication::translate("Quorvix", "Copying…"),
        [copied = field(row).share()](QXTaskProgress *) { return textOf(*copied); },
        [](const QString &text) {
            if (!text.isEmpty())
                QGuiApplication::clipboard()->setText(text);
        });
}

bool QXLogTreeViewModel::canDecodeBase64(int row)
{
    if (!hasRow(row) || field(row).kind() != QXApiValueKind::string)
        return false;
    QXApiTreeField &checked = field(row);
    if (checked.textUtf8().size() <= QXBackgroundTask::largestSynchronousSize)
        return QXPayloadDecoder::hasEncodedCandidate(checked.textUtf8());
    if (m_checked != &checked)
        checkDecodable(checked);
    return m_isCheckedDecodable;
}

void QXLogTreeViewModel::checkDecodable(QXApiTreeField &checked)
{
    m_check->cancel();
    m_check = std::make_shared<QXTaskProgress>();
    m_checked = &checked;
    m_isCheckedDecodable = false;
    BackgroundThread::post(
        [this, progress = m_check, shared = checked.share()] {
            if (!QXPayloadDecoder::hasEncodedCandidate(shared->textUtf8(), progress.get()))
                return;
            MainActor::schedule([this, progress] {
                if (progress->isCancelled())
                    return;
                m_isCheckedDecodable = true;
                Q_EMIT decodableChanged();
            });
        },
        [progress = m_check] { progress->cancel(); });
}

void QXLogTreeViewModel::decodeBase64(int row)
{
    if (!hasRow(row) || field(row).kind() != QXApiValueKind::string)
        return;
    task()->perform(
        field(row).textUtf8().size(), QCoreApplication::translate("Quorvix", "Decoding…"),
        [decoded = field(row).share()](QXTaskProgress *progress) {
            return QXPayloadDecoder::decodePayload(decoded->textUtf8(), progress);
        },
        [this](std::optional<QXDecodedPayload> payload) { presentDecodedPayload(std::move(payload)); });
}

void QXLogTreeViewModel::shareSwiftModel(const QString &requestPath)
{
    if (m_rootFields.isEmpty())
        return presentAlert(makeError(QXExportError::swiftModelNotGenerated).localizedDescription);
    task()->perform(
        m_textSize, QCoreApplication::translate("Quorvix", "Preparing Swift Model…"),
        [root = m_rootFields.constFirst(), requestPath](QXTaskProgress *progress) {
            return QXApiTreeParser::swiftModel(*root, QXSwiftName::rootTypeName(requestPath), progress);
        },
        [this](const Result<QString> &source) {
            FreedMemory::note(m_textSize);
            if (!source)
                return presentAlert(source.error().localizedDescription);
            presentShareItem(
                QXShareItem(source.value(), QCoreApplication::translate("Quorvix", "Swift model")));
        });
}

QVariant QXLogTreeViewModel::parseErrorValue() const
{
    return asVariant(m_parseError);
}
