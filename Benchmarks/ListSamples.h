#pragma once

#include "Quorvix/QXRequestRecorder.h"

#include "Benchmarks/Exchanges.h"

/// The traces of the benchmarks of the list.
namespace ListSamples {

using Exchanges::identifier;

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

inline void fillRecorder(int count)
{
    recorder().clear();
    for (int i = 0; i < count; ++i) {
        recorder().record(identifier(i), Quorvix::URLRequest(QUrl(urlText(i))));
        recorder().complete(identifier(i), Exchanges::shortResponse(), QByteArrayLiteral("{}"), {});
    }
}

} // namespace ListSamples
