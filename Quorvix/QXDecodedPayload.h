#pragma once

#include "Platform/PlatformGlobal.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QUuid>

#include <utility>

/// One block of readable text with a title and a new identifier. A value.
struct QXDecodedSection
{
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString content MEMBER content)

public:
    QXDecodedSection() = default;
    QXDecodedSection(QString newTitle, QString newContent)
        : id(QUuid::createUuid()), title(std::move(newTitle)), content(std::move(newContent))
    {
    }

    QUuid id;
    QString title;
    QString content;

    bool operator==(const QXDecodedSection &) const = default;
};

/// The decoded content of an encoded text, with a new identifier. A value.
struct QUORVIX_INTERNAL_EXPORT QXDecodedPayload
{
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QList<QXDecodedSection> sections MEMBER sections)

public:
    QXDecodedPayload() = default;
    QXDecodedPayload(QString newTitle, QList<QXDecodedSection> newSections)
        : id(QUuid::createUuid()), title(std::move(newTitle)), sections(std::move(newSections))
    {
    }

    QUuid id;
    QString title;
    QList<QXDecodedSection> sections;

    bool operator==(const QXDecodedPayload &) const = default;
};
