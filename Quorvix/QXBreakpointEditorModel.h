#pragma once

#include "Quorvix/QXBreakpointItem.h"

#include <QtCore/QObject>
#include <QtQml/qqmlregistration.h>

/// The state of the breakpoint editor: what the user makes of one held response. Main thread only.
class QUORVIX_INTERNAL_EXPORT QXBreakpointEditorModel final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a held response")
    Q_PROPERTY(QString displayTitle READ displayTitle CONSTANT)
    Q_PROPERTY(
        QString statusCodeText READ statusCodeText WRITE setStatusCodeText NOTIFY statusCodeTextChanged)
    Q_PROPERTY(QString bodyText READ bodyText WRITE setBodyText NOTIFY bodyTextChanged)

public:
    explicit QXBreakpointEditorModel(const QXBreakpointItem &item, QObject *parent = nullptr);

    [[nodiscard]] const QString &displayTitle() const noexcept { return m_displayTitle; }
    [[nodiscard]] const QString &statusCodeText() const noexcept { return m_statusCodeText; }
    void setStatusCodeText(const QString &text);
    [[nodiscard]] const QString &bodyText() const noexcept { return m_bodyText; }
    /// Takes over what a text editor holds. A text that differs only by what such an editor cannot hold, as
    /// carriage returns, is no edit and leaves the body as it came.
    void setBodyText(const QString &text);

    /// Releases the response as it came.
    Q_INVOKABLE void continueResponse();
    /// Releases the response with both texts, exactly as they stand.
    Q_INVOKABLE void applyChanges();
    /// Places the body on the clipboard.
    Q_INVOKABLE void copyBody();
    /// Empties the body.
    Q_INVOKABLE void deleteBody();

Q_SIGNALS:
    void statusCodeTextChanged();
    void bodyTextChanged();

private:
    QString m_displayTitle;
    QString m_statusCodeText;
    QString m_bodyText;
};
