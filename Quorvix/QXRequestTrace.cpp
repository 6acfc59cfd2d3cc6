#include "Quorvix/QXRequestTrace.h"

using namespace Quorvix;

QXRequestTrace::QXRequestTrace(QString traceId, const URLRequest &request)
    : QXRequestTrace(std::move(traceId), request, std::chrono::system_clock::now())
{
}

QXRequestTrace::QXRequestTrace(QString traceId, const URLRequest &request,
                               std::chrono::system_clock::time_point sentAt)
    : id(std::move(traceId)), url(request.url), method(request.httpMethod),
      headers(request.allHTTPHeaderFields), body(request.httpBody), date(sentAt)
{
    if (headers && headers->isEmpty())
        headers.reset();
}
