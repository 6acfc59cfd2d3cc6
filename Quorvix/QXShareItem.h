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

public:
    QXShareItem() = default;
    explicit QXShareItem(const QString &text) : id(QUuid::createUuid()), activityItems{text} {}
    explicit QXShareItem(const QUrl &fileUrl) : id(QUuid::createUuid()), activityItems{fileUrl} {}

    QUuid id;
    /// Texts and file URLs.
    QVariantList activityItems;

    bool operator==(const QXShareItem &) const = default;
};
