#pragma once

#include "Text/QXTextContent.h"

#include <QtCore/QHashFunctions>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QUuid>

#include <utility>

/// A body that is shown as a tree, with a new identifier. A value.
struct QXLogTreeDestination
{
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id)
    Q_PROPERTY(QString requestPath MEMBER requestPath)
    Q_PROPERTY(QString jsonString READ jsonString)

public:
    QXLogTreeDestination() = default;
    QXLogTreeDestination(QString path, QXTextContent text)
        : id(QUuid::createUuid()), requestPath(std::move(path)), json(std::move(text))
    {
    }

    /// The text of the body. Takes long for a large one.
    [[nodiscard]] QString jsonString() const { return json.text(); }

    QUuid id;
    /// The path of the request that has this body.
    QString requestPath;
    QXTextContent json;

    bool operator==(const QXLogTreeDestination &) const = default;
};

[[nodiscard]] inline size_t qHash(const QXLogTreeDestination &destination, size_t seed = 0)
{
    return qHashMulti(seed, destination.id, destination.requestPath, destination.jsonString());
}
