#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

class QXTextRows;

/// What a text view shows: a text, or bytes as two-digit lower-case hexadecimal numbers separated by single
/// spaces. Main thread only.
///
/// Positions and lengths count UTF-16 units of what is shown. Of bytes only the numbers that are asked for
/// are ever made.
class QXTextDocument : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the models")
    /// What is read out instead of all of it.
    Q_PROPERTY(QString beginning READ beginning NOTIFY replaced)

public:
    /// Shares the text.
    explicit QXTextDocument(const QString &text, QObject *parent = nullptr);
    /// Shares the bytes.
    explicit QXTextDocument(const QByteArray &bytes, QObject *parent = nullptr);

    [[nodiscard]] bool isHexadecimal() const noexcept { return m_isHexadecimal; }
    [[nodiscard]] qsizetype length() const;
    [[nodiscard]] QString beginning() const;
    /// All of it, for copying. Shared when it is a text, and three units per byte otherwise.
    [[nodiscard]] Q_INVOKABLE QString text() const;
    [[nodiscard]] QString text(qsizetype position, qsizetype length) const;
    /// The text itself; empty when bytes are shown.
    [[nodiscard]] QStringView view() const { return m_text; }

    void breakInto(QXTextRows &rows, int columns) const;
    /// Puts another text in the place of a part. Texts only.
    void replace(qsizetype position, qsizetype removed, const QString &added);

Q_SIGNALS:
    void replaced(qsizetype position, qsizetype removed, qsizetype added);

private:
    QString m_text;
    QByteArray m_bytes;
    bool m_isHexadecimal = false;
};
