#pragma once

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
    Q_PROPERTY(QString jsonString MEMBER jsonString)

public:
    QXLogTreeDestination() = default;
    QXLogTreeDestination(QString path, QString json)
        : id(QUuid::createUuid()), requestPath(std::move(path)), jsonString(std::move(json))
    {
    }

    QUuid id;
    /// The path of the request that has this body.
    QString requestPath;
    QString jsonString;

    bool operator==(const QXLogTreeDestination &) const = default;
};

[[nodiscard]] inline size_t qHash(const QXLogTreeDestination &destination, size_t seed = 0)
{
    return qHashMulti(seed, destination.id, destination.requestPath, destination.jsonString);
}
