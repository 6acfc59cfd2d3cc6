#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QUrl>

#include <map>

/// What libcurl received.
struct CurlAnswer
{
    long status = 0;
    QByteArray version;
    std::map<QByteArray, QByteArray> headers;
    QByteArray body;
    /// Empty when an answer arrived.
    QByteArray failure;
};

/// Gets a document with libcurl, and reports the exchange to the inspector. Blocks; any thread.
[[nodiscard]] CurlAnswer curlGet(const QUrl &url);
