#pragma once

#include "Quorvix/QXApiMockAnyEncodable.h"

#include "Platform/Result.h"

#include <QtCore/QMap>
#include <QtCore/QString>

/// What a mock answers to.
struct QXApiMockRequest
{
    /// A regular expression over the path, with or without a query.
    QString url;
    QString method;
};

/// One of a mock's answers.
struct QXApiMockResponse
{
    qint64 status = 200;
    QXApiMockAnyEncodable data;
    /// Whether it is given unless another one is asked for. Coded as "default".
    bool isDefault = true;
};

/// One endpoint of a mock server: what is asked, and the named responses that may be given. A value.
///
/// Coded as JSON objects whose keys are the names of the fields.
struct QXApiMockDefinition
{
    /// How people call the endpoint.
    QString name;
    QXApiMockRequest request;
    QMap<QString, QXApiMockResponse> responses;

    /// The definition as pretty-printed JSON with the keys in ascending order. Any thread.
    [[nodiscard]] QByteArray encode() const;
    /// Reads what encode() writes. Every key has to be there, and no other may be: it would be lost when the
    /// definition is written again.
    ///
    /// Fails with NSCocoaErrorDomain / NSPropertyListReadCorruptError. Any thread.
    static Quorvix::Result<QXApiMockDefinition> decode(QByteArrayView utf8);
};
