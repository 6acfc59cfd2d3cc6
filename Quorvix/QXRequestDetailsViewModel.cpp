#include "Quorvix/QXRequestDetailsViewModel.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>

namespace {

QString translated(const char *text)
{
    return QCoreApplication::translate("Quorvix", text);
}

/// Date and time as the locale writes them, with the month cut short and neither weekday nor time zone.
QString mediumText(std::chrono::system_clock::time_point time)
{
    const QLocale locale;
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch());
    const auto dateTime = QDateTime::fromMSecsSinceEpoch(milliseconds.count());
    QString dateFormat = locale.dateFormat(QLocale::LongFormat);
    dateFormat.remove(QRegularExpression(QStringLiteral("[\\s,]*dddd[\\s,.]*")));
    dateFormat.replace(QLatin1StringView("MMMM"), QLatin1StringView("MMM"));
    QString timeFormat = locale.timeFormat(QLocale::LongFormat);
    timeFormat.remove(QRegularExpression(QStringLiteral("[\\s(\\[]*t+[\\s)\\]]*")));
    return locale.toString(dateTime.date(), dateFormat) + QStringLiteral(", ") +
           locale.toString(dateTime.time(), timeFormat);
}

/// The translation is not handed to a formatting function: it comes from the host.
QString durationText(double seconds)
{
    return translated("%.3f seconds").replace(QLatin1StringView("%.3f"), QString::number(seconds, 'f', 3));
}

/// Not the rule of the list: there is no yellow here.
QXSystemColor::Value colorForStatusCode(qint64 code)
{
    if (code >= 200 && code <= 299)
        return QXSystemColor::Green;
    return code >= 400 ? QXSystemColor::Red : QXSystemColor::Orange;
}

} // namespace

QXRequestDetailsViewModel::QXRequestDetailsViewModel(const QXRequestTrace &request, QObject *parent)
    : QAbstractListModel(parent), m_request(request)
{
    addRequest();
    if (m_request.response)
        addResponse(*m_request.response);
    if (m_request.error) {
        addValues(translated("ERROR"), {{translated("Description"), m_request.error->localizedDescription},
                                        {translated("Domain"), m_request.error->domain},
                                        {translated("Code"), QString::number(m_request.error->code)}});
    }
}

void QXRequestDetailsViewModel::addRequest()
{
    std::vector<Value> values{
        {translated("URL"), m_request.url ? absoluteString(*m_request.url) : translated("N/A")},
        {translated("Method"), m_request.method.value_or(QStringLiteral("GET"))},
        {translated("Time"), mediumText(m_request.date)}};
    if (m_request.duration)
        values.push_back({translated("Duration"), durationText(*m_request.duration)});
    addValues(translated("REQUEST"), std::move(values));
    addHeaders(translated("REQUEST HEADERS"), m_request.headers);
    addBody(translated("REQUEST BODY"), m_request.body);
}

void QXRequestDetailsViewModel::addResponse(const QXResponseTrace &response)
{
    addValues(translated("RESPONSE"), {{translated("Status Code"), QString::number(response.statusCode),
                                        colorForStatusCode(response.statusCode)},
                                       {translated("Time"), mediumText(response.date)}});
    addHeaders(translated("RESPONSE HEADERS"), response.headers);
    addBody(translated("RESPONSE BODY"), response.body);
}

void QXRequestDetailsViewModel::addValues(const QString &title, std::vector<Value> values)
{
    m_sections.push_back({title, std::move(values), std::nullopt});
}

void QXRequestDetailsViewModel::addHeaders(const QString &title,
                                           const std::optional<HTTPHeaderFields> &headers)
{
    if (!headers || headers->isEmpty())
        return;
    std::vector<Value> values;
    for (auto it = headers->cbegin(); it != headers->cend(); ++it)
        values.push_back({it.key(), it.value()});
    addValues(title, std::move(values));
}

void QXRequestDetailsViewModel::addBody(const QString &title, const std::optional<QByteArray> &body)
{
    if (body)
        m_sections.push_back({title, {}, QXBodyLines(*body)});
}

int QXRequestDetailsViewModel::rowCount(const QModelIndex &parent) const
{
    if (parent.isValid())
        return 0;
    int count = 0;
    for (const Section &section : m_sections)
        count += 1 + section.contentCount();
    return count;
}

QVariant QXRequestDetailsViewModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    int row = index.row();
    for (const Section &section : m_sections) {
        if (row == 0)
            return titleData(section, role);
        if (row <= section.contentCount())
            return contentData(section, row - 1, role);
        row -= 1 + section.contentCount();
    }
    return {};
}

QVariant QXRequestDetailsViewModel::titleData(const Section &section, int role)
{
    switch (role) {
    case KindRole:
        return SectionTitle;
    case Qt::DisplayRole:
    case LabelRole:
        return section.title;
    case TextRole:
        return QString();
    case TextColorRole:
        return QXSystemColor::Clear;
    case IsFirstRole:
    case IsLastRole:
        return false;
    default:
        return {};
    }
}

QVariant QXRequestDetailsViewModel::contentData(const Section &section, int index, int role)
{
    switch (role) {
    case KindRole:
        return section.body ? BodyLine : ValueRow;
    case LabelRole:
        return section.body ? QString() : section.values[std::size_t(index)].label;
    case Qt::DisplayRole:
    case TextRole:
        return section.body ? section.body->line(index) : section.values[std::size_t(index)].text;
    case TextColorRole:
        return section.body ? QXSystemColor::Clear : section.values[std::size_t(index)].color;
    case IsFirstRole:
        return index == 0;
    case IsLastRole:
        return index == section.contentCount() - 1;
    default:
        return {};
    }
}

QHash<int, QByteArray> QXRequestDetailsViewModel::roleNames() const
{
    return {{KindRole, "kind"},           {LabelRole, "label"},     {TextRole, "text"},
            {TextColorRole, "textColor"}, {IsFirstRole, "isFirst"}, {IsLastRole, "isLast"}};
}
