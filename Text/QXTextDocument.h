#pragma once

#include "Text/QXTextContent.h"

#include <QtCore/QObject>
#include <QtQml/qqmlregistration.h>

/// The content of a text view, which an editor can change. Main thread only.
///
/// Positions and lengths count UTF-16 units of the shown text.
class QXTextDocument : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the models")
    /// The beginning of the text, for assistive technologies, which would take too long for a large text.
    Q_PROPERTY(QString beginning READ beginning NOTIFY replaced)

public:
    explicit QXTextDocument(QXTextContent content, QObject *parent = nullptr);
    /// Shares the text.
    explicit QXTextDocument(const QString &text, QObject *parent = nullptr);
    /// Shares the bytes, and shows them as hexadecimal numbers.
    explicit QXTextDocument(const QByteArray &bytes, QObject *parent = nullptr);
    ~QXTextDocument() override;

    [[nodiscard]] const QXTextContent &content() const noexcept { return m_content; }
    [[nodiscard]] bool isHexadecimal() const noexcept { return m_content.isHexadecimal(); }
    [[nodiscard]] qsizetype length() const noexcept { return m_content.length(); }
    [[nodiscard]] QString beginning() const;
    /// The whole text, for copying. Is made anew unless the document holds UTF-16.
    [[nodiscard]] Q_INVOKABLE QString text() const { return m_content.text(); }
    [[nodiscard]] QString text(qsizetype position, qsizetype length) const
    {
        return m_content.text(position, length);
    }

    /// Replaces the whole text, which is shared. Texts only, not bytes.
    void setText(const QString &text);
    /// Replaces a part of the text. Texts only, not bytes.
    void replace(qsizetype position, qsizetype removed, const QString &added);

Q_SIGNALS:
    void replaced(qsizetype position, qsizetype removed, qsizetype added);

private:
    QXTextContent m_content;
};
