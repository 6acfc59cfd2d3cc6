#pragma once

#include "Quorvix/QXApiMockAnyEncodable.h"

#include "Platform/Result.h"

#include <QtCore/QMap>
#include <QtCore/QString>

#include <optional>

class QIODevice;
class QXTaskProgress;

/// The request that a mock responds to.
struct QXApiMockRequest
{
    /// A regular expression that is matched against the path, with or without a query.
    QString url;
    QString method;
};

/// One response of a mock.
struct QXApiMockResponse
{
    qint64 status = 200;
    QXApiMockAnyEncodable data;
    /// True if the mock server sends this response when the client does not select another one. The JSON key
    /// is "default".
    bool isDefault = true;
};

/// One endpoint of a mock server: the request, and the named responses to choose from. A value.
///
/// It is encoded as JSON objects whose keys are the names of the fields.
struct QXApiMockDefinition
{
    /// The name of the endpoint, for display.
    QString name;
    QXApiMockRequest request;
    QMap<QString, QXApiMockResponse> responses;

    /// The definition as pretty-printed JSON with the keys in ascending order. Any thread.
    [[nodiscard]] QByteArray encode() const;
    /// Writes it to @p device. Fails with the device's own error, or with NSUserCancelledError. The current
    /// stage of @p progress covers one response.
    [[nodiscard]] std::optional<Quorvix::NSError> encode(QIODevice &device, QXTaskProgress *progress) const;
    /// Reads the output of encode(). Every key is required, and unknown keys are an error because they would
    /// be lost when the definition is written again.
    ///
    /// Fails with NSCocoaErrorDomain / NSPropertyListReadCorruptError. Any thread.
    static Quorvix::Result<QXApiMockDefinition> decode(QByteArrayView utf8);
};
