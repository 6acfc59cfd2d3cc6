#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

class QXTextRows;

/// The content of a text view: a text, or bytes as two-digit lower-case hexadecimal numbers separated by
/// single spaces. Main thread only.
///
/// Positions and lengths count UTF-16 units of the shown text. The hexadecimal text of bytes is created only
/// for the requested part.
class QXTextDocument : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the models")
    /// The beginning of the text, for assistive technologies, which would take too long for a large text.
    Q_PROPERTY(QString beginning READ beginning NOTIFY replaced)

public:
    /// Shares the text.
    explicit QXTextDocument(const QString &text, QObject *parent = nullptr);
    /// Shares the bytes.
    explicit QXTextDocument(const QByteArray &bytes, QObject *parent = nullptr);
    ~QXTextDocument() override;

    [[nodiscard]] bool isHexadecimal() const noexcept { return m_isHexadecimal; }
    [[nodiscard]] qsizetype length() const;
    [[nodiscard]] QString beginning() const;
    /// The whole text, for copying. A text is shared; for bytes the result has three units per byte.
    [[nodiscard]] Q_INVOKABLE QString text() const;
    [[nodiscard]] QString text(qsizetype position, qsizetype length) const;
    /// The text itself; empty when bytes are shown.
    [[nodiscard]] QStringView view() const { return m_text; }

    /// Replaces the whole text, which is shared. Texts only, not bytes.
    void setText(const QString &text);
    void breakInto(QXTextRows &rows, int columns) const;
    /// Replaces a part of the text. Texts only, not bytes.
    void replace(qsizetype position, qsizetype removed, const QString &added);

Q_SIGNALS:
    void replaced(qsizetype position, qsizetype removed, qsizetype added);

private:
    QString m_text;
    QByteArray m_bytes;
    bool m_isHexadecimal = false;
};
