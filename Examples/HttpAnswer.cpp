#include "Examples/HttpAnswer.h"

#include <QtCore/QJsonObject>

void HttpAnswer::json(httplib::Response &response, const QJsonDocument &document, int status)
{
    response.status = status;
    bytes(response, document.toJson(QJsonDocument::Compact), "application/json; charset=utf-8");
}

void HttpAnswer::problem(httplib::Response &response, int status, const QString &title, const QString &detail)
{
    const QJsonObject report{{QStringLiteral("type"), QStringLiteral("about:blank")},
                             {QStringLiteral("status"), status},
                             {QStringLiteral("title"), title},
                             {QStringLiteral("detail"), detail}};
    response.status = status;
    bytes(response, QJsonDocument(report).toJson(QJsonDocument::Compact), "application/problem+json");
}

void HttpAnswer::bytes(httplib::Response &response, const QByteArray &body, const char *mediaType)
{
    response.set_content(body.constData(), static_cast<size_t>(body.size()), mediaType);
}

QString HttpAnswer::parameter(const httplib::Request &request, const char *name)
{
    return QString::fromStdString(request.get_param_value(name));
}

int HttpAnswer::number(const httplib::Request &request, const char *name, int fallback)
{
    bool valid = false;
    const int value = parameter(request, name).toInt(&valid);
    return valid && value >= 0 ? value : fallback;
}
