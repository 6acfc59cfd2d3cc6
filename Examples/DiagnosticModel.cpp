#include "Examples/DiagnosticModel.h"

#include <QtCore/QLocale>

using namespace Quorvix;

namespace {

using namespace std::chrono_literals;

QString summarize(const StoreReply &reply)
{
    const QString outcome = reply.error ? reply.error->localizedDescription : QString::number(reply.status);
    QStringList parts{outcome, QStringLiteral("%1 ms").arg(reply.time.count())};
    if (!reply.body.isEmpty())
        parts.append(
            QLocale(QLocale::English).formattedDataSize(reply.body.size(), 2, QLocale::DataSizeSIFormat));
    return parts.join(QStringLiteral(" · "));
}

URLRequest withTimeout(URLRequest request, std::chrono::milliseconds timeout)
{
    request.timeoutInterval = timeout;
    return request;
}

} // namespace

DiagnosticModel::DiagnosticModel(StoreApi &api, QObject *parent) : QAbstractListModel(parent), m_api(api)
{
    const QJsonObject note{{QStringLiteral("note"), QStringLiteral("Grüße aus Galway")},
                           {QStringLiteral("stars"), 5},
                           {QStringLiteral("tags"), QJsonValue::Null}};
    const QList<QPair<QString, QString>> feedback{
        {QStringLiteral("topic"), QStringLiteral("delivery & returns")},
        {QStringLiteral("text"), QStringLiteral("It's great!")}};
    const auto get = [&api](const char *path) {
        return api.request(QLatin1StringView(path));
    };
    add("notFound", "Not found", get("/status/404"));
    add("serverError", "Server error", get("/status/500"));
    add("unauthorized", "Unauthorized", get("/status/401"));
    add("notModified", "Not modified", get("/status/304"));
    add("redirect", "Three redirects", get("/redirect/3"));
    add("redirectLoop", "Redirect loop", get("/redirect-loop"));
    add("slow", "Slow answer", get("/slow?ms=1500"));
    add("timeout", "Time-out", withTimeout(get("/slow?ms=6000"), 700ms));
    add("drop", "Dropped at once", get("/drop"));
    add("dropMidway", "Dropped midway", get("/drop-midway"));
    add("gzip", "Compressed with gzip", get("/api/v1/articles"));
    add("export", "10 MB of JSON", get("/api/v1/export"));
    add("binary", "Binary body", get("/binary?size=65536"));
    add("cookies", "Two cookies", get("/set-cookies"));
    add("form", "Form post", api.formRequest(QStringLiteral("/echo"), feedback));
    add("put", "JSON put", api.jsonRequest(QStringLiteral("/echo?draft=1"), QStringLiteral("PUT"), note));
    add("patch", "JSON patch", api.jsonRequest(QStringLiteral("/echo"), QStringLiteral("PATCH"), note));
    add("unknownHost", "Unknown host", get("http://store.invalid/"));
}

int DiagnosticModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_diagnostics.size());
}

QVariant DiagnosticModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Diagnostic &diagnostic = m_diagnostics.at(index.row());
    switch (role) {
    case KeyRole:
        return diagnostic.key;
    case TitleRole:
        return diagnostic.title;
    case CallRole:
        return diagnostic.call;
    case ResultRole:
        return diagnostic.result;
    default:
        return {};
    }
}

QHash<int, QByteArray> DiagnosticModel::roleNames() const
{
    return {{KeyRole, "key"}, {TitleRole, "title"}, {CallRole, "call"}, {ResultRole, "result"}};
}

void DiagnosticModel::run(int row)
{
    if (row < 0 || row >= m_diagnostics.size())
        return;
    setRunning(m_running + 1);
    setResult(row, QStringLiteral("…"));
    m_api.send(m_diagnostics.at(row).request, [this, row](const StoreReply &reply) {
        setResult(row, summarize(reply));
        setRunning(m_running - 1);
    });
}

void DiagnosticModel::runAll()
{
    for (int row = 0; row < rowCount(); ++row)
        run(row);
}

void DiagnosticModel::add(const char *key, const char *title, URLRequest request)
{
    const QUrl url = request.url.value_or(QUrl());
    const QString target = url.host() == QLatin1StringView("127.0.0.1")
                               ? url.toString(QUrl::RemoveScheme | QUrl::RemoveAuthority)
                               : url.toString();
    const QString call = request.httpMethod.value_or(QString()) + u' ' + target;
    m_diagnostics.append(
        {QString::fromUtf8(key), QString::fromUtf8(title), call, std::move(request), QString()});
}

void DiagnosticModel::setResult(int row, const QString &result)
{
    m_diagnostics[row].result = result;
    const QModelIndex changed = index(row);
    Q_EMIT dataChanged(changed, changed, {ResultRole});
}

void DiagnosticModel::setRunning(int running)
{
    m_running = running;
    Q_EMIT runningChanged();
}
