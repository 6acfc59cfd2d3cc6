#include "Quorvix/QXRequestDetailsViewModel.h"

#include "Quorvix/QXBodyContent.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXLogTreeViewModel.h"
#include "Quorvix/QXOptionalVariant.h"
#include "Quorvix/QXPayloadDecoder.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QXTaskSteps.h"

#include "Platform/FreedMemory.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>

#include <algorithm>
#include <utility>

using namespace Quorvix;

namespace {

/// In UTF-16 code units. A text item needs one frame for a few thousand units, and many seconds for 250,000.
constexpr qsizetype longestValueInOneItem = 3000;

QXRequestDetailsViewModel::Kind kindFor(QXRequestSection::Kind kind)
{
    switch (kind) {
    case QXRequestSection::Kind::Breakpoint:
        return QXRequestDetailsViewModel::BreakpointSection;
    case QXRequestSection::Kind::Group:
        return QXRequestDetailsViewModel::GroupSection;
    case QXRequestSection::Kind::Body:
        return QXRequestDetailsViewModel::BodySection;
    case QXRequestSection::Kind::Values:
        break;
    }
    return QXRequestDetailsViewModel::ValueSection;
}

/// Whether the source of a running exchange has told what has arrived, since @p before.
bool hasAnswer(const QXRequestTrace &before, const QXRequestTrace &now)
{
    return now.duration ||
           (now.response && (!before.response || before.response->date != now.response->date));
}

} // namespace

QXRequestDetailsViewModel::QXRequestDetailsViewModel(const QXRequestTrace &request, QObject *parent)
    : QXPresentingModel(parent), m_request(request),
      m_alertTitle(QCoreApplication::translate("Quorvix", "Export Failed"))
{
    connect(&QXBreakpointStore::shared(), &QXBreakpointStore::rulesChanged, this,
            &QXRequestDetailsViewModel::breakpointEnabledChanged);
    addRows(requestSections(request));
    refresh();
}

QXRequestDetailsViewModel::~QXRequestDetailsViewModel() = default;

/// Asks the source of a running exchange for what has arrived so far, and shows its answer.
void QXRequestDetailsViewModel::refresh()
{
    auto &recorder = QXRequestRecorder::shared();
    const QXTraceList requests = recorder.requests();
    const qsizetype index = requests.indexOf(m_request.id);
    if (m_request.duration || index < 0)
        return;
    // A trace keeps its position counted from the oldest one until the recorder is cleared.
    const auto observe = [this, asked = requests.cell(index), position = requests.size() - index] {
        const QXTraceList current = QXRequestRecorder::shared().requests();
        const bool exists = current.size() >= position;
        const auto cell = exists ? current.cell(current.size() - position) : nullptr;
        if (cell && cell->trace == asked->trace && !hasAnswer(asked->trace, cell->trace))
            return;
        m_observer = {};
        // Another observer may be about to delete this model.
        if (cell && cell->trace == asked->trace)
            QMetaObject::invokeMethod(
                this, [this, cell] { show(cell->trace); }, Qt::QueuedConnection);
    };
    m_observer = NSNotificationCenter::defaultCenter().addObserver(QuorvixRequestsChanged, observe);
    if (!recorder.refresh(m_request.id))
        m_observer = {};
}

/// Changes to a later state of the exchange. The rows above the first difference stay, and with them the
/// place to which the user has scrolled.
void QXRequestDetailsViewModel::show(const QXRequestTrace &trace)
{
    const QXRequestTrace before = std::exchange(m_request, trace);
    // The body of the request that is shown stays, although the recorder may have removed it.
    if (before.body && trace.discardedBodySize == before.body->size()) {
        m_request.body = before.body;
        m_request.discardedBodySize.reset();
    }
    std::vector<QXRequestSection> sections = requestSections(m_request);
    std::size_t same = 0;
    while (same < std::min(sections.size(), m_rows.size()) &&
           sections[same].showsTheSameAs(m_rows[same].section))
        ++same;
    removeRowsFrom(same);
    sections.erase(sections.begin(), sections.begin() + std::ptrdiff_t(same));
    addRows(std::move(sections));
}

void QXRequestDetailsViewModel::addRows(std::vector<QXRequestSection> sections)
{
    if (sections.empty())
        return;
    const std::size_t first = m_rows.size();
    beginInsertRows({}, int(first), int(first + sections.size()) - 1);
    for (QXRequestSection &section : sections)
        m_rows.push_back({std::move(section), nullptr, {}});
    endInsertRows();
    for (std::size_t row = first; row < m_rows.size(); ++row) {
        if (m_rows[row].section.kind == QXRequestSection::Kind::Body)
            loadBody(row);
    }
}

void QXRequestDetailsViewModel::removeRowsFrom(std::size_t first)
{
    if (first == m_rows.size())
        return;
    beginRemoveRows({}, int(first), int(m_rows.size()) - 1);
    for (std::size_t row = first; row < m_rows.size(); ++row) {
        if (m_rows[row].document)
            m_rows[row].document->deleteLater(); // after the items that show it
    }
    m_rows.resize(first);
    endRemoveRows();
}

void QXRequestDetailsViewModel::loadBody(std::size_t row)
{
    const QByteArray body = m_rows[row].section.body;
    if (body.size() <= QXBackgroundTask::largestSynchronousSize)
        return setBody(row, QXBodyContent::of(body));
    m_conversions.start(
        body.size(), [body](QXTaskProgress *progress) { return QXBodyContent::of(body, progress); },
        [this, row, body](const QXTextContent &content) {
            const Row *const shown = rowWithBody(row, body);
            if (!shown || shown->document)
                return;
            setBody(row, content);
            checkDecodable(row);
        });
}

void QXRequestDetailsViewModel::checkDecodable(std::size_t row)
{
    m_conversions.start(
        m_rows[row].section.body.size(),
        [utf8 = utf8Source(int(row))](QXTaskProgress *progress) {
            return QXPayloadDecoder::hasEncodedCandidate(QByteArrayView(utf8(progress)), progress);
        },
        [this, row, body = m_rows[row].section.body](bool canDecode) {
            if (Row *const shown = rowWithBody(row, body)) {
                shown->decodable = canDecode;
                Q_EMIT decodableChanged();
            }
        });
}

QXRequestDetailsViewModel::Row *QXRequestDetailsViewModel::rowWithBody(std::size_t row,
                                                                       const QByteArray &body)
{
    return row < m_rows.size() && m_rows[row].section.body.isSharedWith(body) ? &m_rows[row] : nullptr;
}

void QXRequestDetailsViewModel::setBody(std::size_t row, const QXTextContent &content)
{
    m_rows[row].document = new QXTextDocument(content, this);
    Q_EMIT dataChanged(index(int(row)), index(int(row)), {DocumentRole});
}

int QXRequestDetailsViewModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant QXRequestDetailsViewModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const QXRequestSection &section = m_rows[std::size_t(index.row())].section;
    switch (role) {
    case KindRole:
        return kindFor(section.kind);
    case Qt::DisplayRole:
    case TitleRole:
        return section.title;
    case ValuesRole:
        return asVariants(section.values);
    case ExpandedRole:
        return section.group && shows(*section.group);
    case DocumentRole:
        return QVariant::fromValue(m_rows[std::size_t(index.row())].document);
    default:
        return {};
    }
}

QHash<int, QByteArray> QXRequestDetailsViewModel::roleNames() const
{
    return {{KindRole, "kind"},
            {TitleRole, "title"},
            {ValuesRole, "values"},
            {ExpandedRole, "expanded"},
            {DocumentRole, "document"}};
}

bool QXRequestDetailsViewModel::breakpointEnabled() const
{
    const auto key = QXBreakpointKey::make(m_request.url, m_request.method);
    return key && QXBreakpointStore::shared().contains(*key);
}

void QXRequestDetailsViewModel::setBreakpointEnabled(bool enabled)
{
    const auto key = QXBreakpointKey::make(m_request.url, m_request.method);
    if (!key)
        Q_EMIT breakpointEnabledChanged(); // makes the switch on screen return to off
    else if (enabled)
        QXBreakpointStore::shared().insert(*key);
    else
        QXBreakpointStore::shared().remove(*key);
}

void QXRequestDetailsViewModel::toggleGroup(int row)
{
    if (row < 0 || row >= rowCount() || !m_rows[std::size_t(row)].section.group)
        return;
    const Group group = *m_rows[std::size_t(row)].section.group;
    if (!m_expandedGroups.remove(group))
        m_expandedGroups.insert(group);
    Q_EMIT groupsChanged();
    Q_EMIT dataChanged(index(row), index(row), {ExpandedRole});
}

QXTextDocument *QXRequestDetailsViewModel::documentForValue(const QString &text)
{
    return text.size() > longestValueInOneItem ? new QXTextDocument(text, this) : nullptr;
}

void QXRequestDetailsViewModel::copyValue(const QString &text)
{
    QGuiApplication::clipboard()->setText(text);
    alert(QCoreApplication::translate("Quorvix", "Copied!"),
          QCoreApplication::translate("Quorvix", "Value copied to pasteboard."));
}

bool QXRequestDetailsViewModel::canDecodeValue(const QString &text) const
{
    return QXPayloadDecoder::hasEncodedCandidate(text);
}

void QXRequestDetailsViewModel::decodeValue(const QString &text)
{
    decode(text.size(), [text](QXTaskProgress *) { return text.toUtf8(); });
}

void QXRequestDetailsViewModel::decode(qsizetype size, Source<QByteArray> utf8)
{
    task()->perform(
        size, QCoreApplication::translate("Quorvix", "Decoding…"),
        [utf8 = std::move(utf8)](QXTaskProgress *progress) {
            return QXPayloadDecoder::decodePayload(QByteArrayView(utf8(progress)), progress);
        },
        [this](std::optional<QXDecodedPayload> payload) {
            if (payload)
                presentDecodedPayload(std::move(payload));
        });
}

QXTextDocument *QXRequestDetailsViewModel::document(int row) const
{
    return row >= 0 && row < rowCount() ? m_rows[std::size_t(row)].document : nullptr;
}

QString QXRequestDetailsViewModel::bodyText(int row) const
{
    return document(row) ? document(row)->text() : QString();
}

QXRequestDetailsViewModel::Source<QString> QXRequestDetailsViewModel::bodySource(int row) const
{
    return [content = document(row)->content()](QXTaskProgress *progress) {
        QString text = QXBodyContent::text(content, QXTaskSteps(progress, content.bytes().size()));
        finish(progress);
        return text;
    };
}

QXRequestDetailsViewModel::Source<QByteArray> QXRequestDetailsViewModel::utf8Source(int row) const
{
    return [content = document(row)->content()](QXTaskProgress *progress) {
        return content.isAscii() ? content.utf8()
                                 : QXBodyContent::text(content, QXTaskSteps(progress)).toUtf8();
    };
}

/// A measure of the work that bodySource() makes, for bytes that have to be written as digits: their number.
qsizetype QXRequestDetailsViewModel::bodySize(int row) const
{
    const QXTextContent &content = document(row)->content();
    if (content.isHexadecimal())
        return content.bytes().size();
    // ASCII is widened so many times faster.
    constexpr qsizetype advantage = 16;
    return content.isAscii() ? content.length() / advantage : 0;
}

void QXRequestDetailsViewModel::copyBody(int row)
{
    if (document(row))
        task()->perform(bodySize(row), QCoreApplication::translate("Quorvix", "Copying…"), bodySource(row),
                        [this](const QString &text) { copyValue(text); });
}

bool QXRequestDetailsViewModel::canDecodeBody(int row) const
{
    if (!document(row))
        return false;
    const Row &shown = m_rows[std::size_t(row)];
    const bool isLarge = shown.section.body.size() > QXBackgroundTask::largestSynchronousSize;
    return isLarge ? shown.decodable.value_or(false) : canDecodeValue(bodyText(row));
}

void QXRequestDetailsViewModel::decodeBody(int row)
{
    if (document(row))
        decode(document(row)->length(), utf8Source(row));
}

void QXRequestDetailsViewModel::openLogTree(int row)
{
    if (!document(row))
        return;
    const QString path =
        m_request.url ? m_request.url->path() : QCoreApplication::translate("Quorvix", "Unknown");
    m_logTreeDestination = QXLogTreeDestination(path, document(row)->content());
    Q_EMIT _logTreeDestinationChanged();
}

QXLogTreeViewModel *QXRequestDetailsViewModel::makeLogTree() const
{
    return m_logTreeDestination ? new QXLogTreeViewModel(m_logTreeDestination->json) : nullptr;
}

void QXRequestDetailsViewModel::alert(const QString &title, const QString &message)
{
    m_alertTitle = title;
    Q_EMIT _alertTitleChanged();
    presentAlert(message);
}

QVariant QXRequestDetailsViewModel::logTreeDestinationValue() const
{
    return asVariant(m_logTreeDestination);
}

void QXRequestDetailsViewModel::setLogTreeDestinationValue(const QVariant &value)
{
    auto former = std::exchange(m_logTreeDestination, fromVariant<QXLogTreeDestination>(value));
    Q_EMIT _logTreeDestinationChanged();
    if (!former)
        return;
    // The script engine has the destination, too.
    const qsizetype size = former->json.memory();
    FreedMemory::discard(std::move(former), size);
}
