#pragma once

#include <QtCore/QJsonObject>
#include <QtGui/QColor>
#include <QtQml/qqmlregistration.h>

/// A product as the screens show it, read from the interface's JSON.
struct Product
{
    Q_GADGET
    QML_VALUE_TYPE(storeProduct)
    Q_PROPERTY(QString id MEMBER id FINAL)
    Q_PROPERTY(QString name MEMBER name FINAL)
    Q_PROPERTY(QString maker MEMBER maker FINAL)
    Q_PROPERTY(QString category MEMBER category FINAL)
    Q_PROPERTY(QString about MEMBER about FINAL)
    Q_PROPERTY(QString price MEMBER price FINAL)
    Q_PROPERTY(QString rating MEMBER rating FINAL)
    Q_PROPERTY(QString reviews MEMBER reviews FINAL)
    Q_PROPERTY(QString stock MEMBER stock FINAL)
    Q_PROPERTY(QString badge MEMBER badge FINAL)
    Q_PROPERTY(QString picture MEMBER picture FINAL)
    Q_PROPERTY(QColor tint MEMBER tint FINAL)
    Q_PROPERTY(QColor darkTint MEMBER darkTint FINAL)

public:
    /// Missing fields stay empty.
    [[nodiscard]] static Product fromJson(const QJsonObject &json);
    /// An amount of money for people, from {"amount": cents}.
    [[nodiscard]] static QString formatPrice(const QJsonObject &price);

    QString id;
    QString name;
    QString maker;
    QString category;
    QString about;
    QString price;
    QString rating;
    QString reviews;
    QString stock;
    /// A word that stands on the picture; empty for most.
    QString badge;
    /// For the image provider "store".
    QString picture;
    /// What the picture stands on, by day and by night.
    QColor tint;
    QColor darkTint;
};
