#pragma once

#include <QtCore/QJsonObject>
#include <QtGui/QColor>
#include <QtQml/qqmlregistration.h>

/// A product for the screens, read from the JSON of the store's HTTP interface.
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
    /// Reads a product; missing fields stay empty.
    [[nodiscard]] static Product fromJson(const QJsonObject &json);
    /// Formats an amount of money for people, from {"amount": cents}.
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
    /// A word that is shown on the picture; empty for most products.
    QString badge;
    /// The path of the picture for the image provider "store".
    QString picture;
    /// The background of the picture, with light and with dark colours.
    QColor tint;
    QColor darkTint;
};
