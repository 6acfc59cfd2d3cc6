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

    /// A name that can be broken into lines between its words.
    [[nodiscard]] Q_INVOKABLE static QString breakable(const QString &name)
    {
        constexpr QChar zeroWidthSpace(0x200b);
        return Quorvix::ShortText::wordsOfName(name).join(zeroWidthSpace);
    }

    /// The length of the longest word of a name.
    [[nodiscard]] Q_INVOKABLE static int longestWord(const QString &name)
    {
        qsizetype longest = 0;
        for (const QString &word : Quorvix::ShortText::wordsOfName(name))
            longest = qMax(longest, word.trimmed().size());
        return int(longest);
    }

private:
    static constexpr int longestLine = int(Quorvix::ShortText::longestLine);
};
