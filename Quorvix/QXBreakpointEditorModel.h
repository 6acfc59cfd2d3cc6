#pragma once

#include "Quorvix/QXBreakpointItem.h"

#include "Text/QXTextDocument.h"

#include "Controls/QXBackgroundTask.h"

#include <QtCore/QObject>
#include <QtCore/QUuid>
#include <QtQml/qqmlregistration.h>

#include <functional>

/// The state of the breakpoint editor: the user's edits of one held response. Main thread only.
class QXBreakpointEditorModel final : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made for a held response")
    Q_PROPERTY(QString displayTitle READ displayTitle CONSTANT)
    Q_PROPERTY(
        QString statusCodeText READ statusCodeText WRITE setStatusCodeText NOTIFY statusCodeTextChanged)
    /// The body with the user's edits.
    Q_PROPERTY(QXTextDocument *document READ document CONSTANT)
    /// Whether the document has the body. A large one is loaded by a task; if that is cancelled, the body
    /// cannot be edited.
    Q_PROPERTY(bool isLoaded READ isLoaded NOTIFY isLoadedChanged)
    /// Loads and applies a large body.
    Q_PROPERTY(QXBackgroundTask *task READ task CONSTANT)

public:
    explicit QXBreakpointEditorModel(const QXBreakpointItem &item, QObject *parent = nullptr);

    [[nodiscard]] const QString &displayTitle() const noexcept { return m_displayTitle; }
    [[nodiscard]] const QString &statusCodeText() const noexcept { return m_statusCodeText; }
    void setStatusCodeText(const QString &text);
    [[nodiscard]] QXTextDocument *document() const noexcept { return m_document; }
    [[nodiscard]] QString bodyText() const { return m_document->text(); }
    [[nodiscard]] bool isLoaded() const noexcept { return m_isLoaded; }
    [[nodiscard]] QXBackgroundTask *task() const noexcept { return m_task; }

    /// Releases the response without changes, in a later turn of the event loop. The host's completion
    /// handler runs then; it must not run inside an event of the editor, because it can hide the inspector.
    Q_INVOKABLE void continueResponse();
    /// Releases the response with the edited status code and body, in a later turn of the event loop.
    Q_INVOKABLE void applyChanges();
    /// Copies the body to the clipboard.
    Q_INVOKABLE void copyBody();
    /// Empties the body. The editor on screen does this itself instead, so that the user can undo it.
    Q_INVOKABLE void deleteBody();

Q_SIGNALS:
    void statusCodeTextChanged();
    void isLoadedChanged();

private:
    void release(std::function<void()> release);

    QUuid m_item;
    /// The body as it was received.
    QByteArray m_body;
    bool m_isLoaded = false;
    bool m_isReleased = false;
    QString m_displayTitle;
    QString m_statusCodeText;
    // Owned by this object as their QObject parent.
    QXTextDocument *m_document;
    QXBackgroundTask *m_task;
};
