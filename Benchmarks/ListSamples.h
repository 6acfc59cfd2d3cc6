#pragma once

#include "Quorvix/QXRequestRecorder.h"

/// The traces of the benchmarks of the list.
namespace ListSamples {

inline constexpr int few = 100;
inline constexpr int many = 100'000;

inline QXRequestRecorder &recorder()
{
    return QXRequestRecorder::shared();
}

/// The URLs of an app that talks to three hosts, mixed as they come.
inline QString urlText(int number)
{
    static const QStringList forms{
        QStringLiteral("https://api.example.com/v1/products/%1?page=%2"),
        QStringLiteral("https://images.example.net/thumbnails/%1/%2.webp"),
        QStringLiteral("https://api.example.com/v1/customers/%1/orders?state=open&limit=%2"),
        QStringLiteral("https://api.example.com/v1/products/%1/reviews?sort=newest&page=%2"),
        QStringLiteral("https://metrics.example.org/collect/%1?session=5f1c9a&event=%2")};
    const auto form = qsizetype(quint32(number) * 2654435761U >> 16) % forms.size();
    return forms[form].arg(number).arg(number % 7);
}

inline QString identifier(int number)
{
    return QStringLiteral("6BA7B810-9DAD-11D1-80B4-%1").arg(number, 12, 10, QLatin1Char('0'));
}

inline const Quorvix::NSURLResponsePtr &response()
{
    static const Quorvix::NSURLResponsePtr made = Quorvix::NSHTTPURLResponse::create(
        QUrl(QStringLiteral("https://api.example.com/")), 200, QStringLiteral("HTTP/1.1"),
        {{QStringLiteral("Content-Type"), QStringLiteral("application/json")}});
    return made;
}

inline void fillRecorder(int count)
{
    recorder().clear();
    for (int i = 0; i < count; ++i) {
        recorder().record(identifier(i), Quorvix::URLRequest(QUrl(urlText(i))));
        recorder().complete(identifier(i), response(), QByteArrayLiteral("{}"), {});
    }
}

} // namespace ListSamples
