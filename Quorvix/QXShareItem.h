#pragma once

#include <QtCore/QObject>
#include <QtCore/QUrl>
#include <QtCore/QUuid>
#include <QtCore/QVariantList>

/// One presentation of the share sheet: the shared items, with a new identifier. A value.
struct QXShareItem
{
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id)
    Q_PROPERTY(QVariantList activityItems MEMBER activityItems)
    Q_PROPERTY(QString title MEMBER title)

public:
    QXShareItem() = default;
    QXShareItem(const QString &text, const QString &itsTitle)
        : id(QUuid::createUuid()), activityItems{text}, title(itsTitle)
    {
    }
    QXShareItem(const QUrl &fileUrl, const QString &itsTitle)
        : id(QUuid::createUuid()), activityItems{fileUrl}, title(itsTitle)
    {
    }

    QUuid id;
    /// Texts and file URLs.
    QVariantList activityItems;
    /// What is shared, for people: "HAR archive".
    QString title;

    bool operator==(const QXShareItem &) const = default;
};
