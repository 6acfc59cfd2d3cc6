#pragma once

#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

/// The signed-in user; all fields are empty when nobody is signed in.
struct StoreProfile
{
    Q_GADGET
    QML_VALUE_TYPE(storeProfile)
    Q_PROPERTY(QString name MEMBER name FINAL)
    Q_PROPERTY(QString initials MEMBER initials FINAL)
    Q_PROPERTY(QString email MEMBER email FINAL)
    Q_PROPERTY(QString since MEMBER since FINAL)
    Q_PROPERTY(QString address MEMBER address FINAL)
    Q_PROPERTY(QString points MEMBER points FINAL)

public:
    QString name;
    QString initials;
    QString email;
    QString since;
    QString address;
    QString points;
};
