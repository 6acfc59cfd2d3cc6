#pragma once

#include "Platform/ShortText.h"

#include <QtCore/QObject>
#include <QtQml/qqmlregistration.h>

/// Quorvix::ShortText for screens. QXLabel is a text item that uses it.
class QXShortText : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    explicit QXShortText(QObject *parent = nullptr) : QObject(parent) {}

    [[nodiscard]] Q_INVOKABLE static QString beginning(const QString &text, int longest = longestLine)
    {
        return Quorvix::ShortText::beginning(text, longest);
    }

private:
    static constexpr int longestLine = int(Quorvix::ShortText::longestLine);
};
