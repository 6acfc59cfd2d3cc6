#include "CurlClient.h"

//! [includes]
#include <Quorvix/Platform/NSHTTPURLResponse.h>
#include <Quorvix/QXExchange.h>
//! [includes]

#include <curl/curl.h>

#include <memory>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

size_t appendBody(char *bytes, size_t, size_t count, void *answer)
{
    static_cast<CurlAnswer *>(answer)->body.append(bytes, static_cast<qsizetype>(count));
    return count;
}

size_t readHeader(char *bytes, size_t, size_t count, void *target)
{
    auto &answer = *static_cast<CurlAnswer *>(target);
    const QByteArray line = QByteArray(bytes, static_cast<qsizetype>(count)).trimmed();
    const qsizetype colon = line.indexOf(':');
    if (line.startsWith("HTTP/")) { // the first line of another answer, for example after a redirect
        answer.version = line.first(line.indexOf(' '));
        answer.headers.clear();
    } else if (colon > 0) {
        answer.headers[line.first(colon)] = line.sliced(colon + 1).trimmed();
    }
    return count;
}

} // namespace

CurlAnswer curlGet(const QUrl &url)
{
    CurlAnswer answer;
    const std::unique_ptr<CURL, void (*)(CURL *)> handle(curl_easy_init(), curl_easy_cleanup);
    CURL *const curl = handle.get();
    curl_easy_setopt(curl, CURLOPT_URL, url.toEncoded().constData());
    curl_easy_setopt(curl, CURLOPT_USERAGENT, "CurlClient/1.0");
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L); // required in programs with threads
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, appendBody);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &answer);
    curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, readHeader);
    curl_easy_setopt(curl, CURLOPT_HEADERDATA, &answer);

    //! [record]
    URLRequest request(url);
    request.setValue(u"CurlClient/1.0"_s, u"User-Agent"_s);
    QXExchange exchange(request); // the exchange starts now

    const CURLcode code = curl_easy_perform(curl);

    if (code == CURLE_OK) {
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &answer.status);
        NSHeaderFields fields;
        for (const auto &[name, value] : answer.headers)
            fields[QString::fromLatin1(name)] = QString::fromLatin1(value);
        exchange.complete(
            NSHTTPURLResponse::create(url, answer.status, QString::fromLatin1(answer.version), fields),
            answer.body, std::nullopt);
    } else {
        answer.failure = curl_easy_strerror(code);
        exchange.complete(nullptr, std::nullopt,
                          NSError{u"libcurl"_s, code, QString::fromUtf8(answer.failure)});
    }
    //! [record]
    return answer;
}
