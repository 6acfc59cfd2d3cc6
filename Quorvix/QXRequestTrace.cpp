#include "Quorvix/QXRequestTrace.h"

using namespace Quorvix;

QXRequestTrace::QXRequestTrace(QString traceId, const URLRequest &request)
    : id(std::move(traceId)), url(request.url), method(request.httpMethod),
      headers(request.allHTTPHeaderFields), body(request.httpBody), date(std::chrono::system_clock::now())
{
    if (headers && headers->isEmpty())
        headers.reset();
}
