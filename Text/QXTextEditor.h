#pragma once

#include "Text/QXTextEditing.h"
#include "Text/QXTextView.h"

struct QXTextCommand;

/// An editor for a text of any size that supports the platform's keys and input methods. Main thread only.
///
/// The editor does not change text that the user does not edit, line ends of all kinds included. Bytes in
/// hexadecimal are read-only.
class QXTextEditor : public QXTextView
{
    Q_OBJECT
    QML_ELEMENT
    /// The text of the document. Reading it is cheap, but while a caller keeps it, the next keystroke copies
    /// the whole text.
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(Qt::InputMethodHints inputMethodHints MEMBER m_inputMethodHints NOTIFY inputMethodHintsChanged)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY textChanged)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY textChanged)
    Q_PROPERTY(bool isReadOnly READ isReadOnly NOTIFY documentChanged)

public:
    /// Creates an editor with its own empty document.
    explicit QXTextEditor(QQuickItem *parent = nullptr);
    ~QXTextEditor() override;

    [[nodiscard]] QString text() const;
    /// Replaces the whole text and clears the edits that can be undone.
    void setText(const QString &text);
    [[nodiscard]] bool canUndo() const { return m_editing.canUndo(); }
    [[nodiscard]] bool canRedo() const { return m_editing.canRedo(); }
    [[nodiscard]] bool isReadOnly() const { return !document() || document()->isHexadecimal(); }

    Q_INVOKABLE void cut();
    Q_INVOKABLE void paste();
    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();
    /// Replaces the selection by the text, or inserts it at the cursor.
    Q_INVOKABLE void insert(const QString &text);
    /// Deletes the whole text.
    Q_INVOKABLE void clear();
    /// Requests that the page scrolls to the cursor.
    Q_INVOKABLE void showCursor() { revealCursor(); }

    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

Q_SIGNALS:
    /// Emitted after every change of the text, by the user or by the program.
    void textChanged();
    /// Emitted after a change by the user.
    void textEdited();
    void inputMethodHintsChanged();

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void inputMethodEvent(QInputMethodEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    void paint(QPainter &painter) override;

    [[nodiscard]] bool wantsKey(const QKeyEvent &event) const override;
    [[nodiscard]] QString rowText(int row) const override;
    void tapped(QPointF point) override;

private:
    void adoptDocument();
    void followDocument();
    void execute(const QXTextCommand &command);
    void moveOrCollapse(QXTextMove move);
    void replace(QXTextRange part, const QString &added);
    /// Deletes the selection, or the text up to the target when there is none.
    void deleteTo(QXTextMove::Target target);
    void restore(const std::optional<QXTextSelection> &selection);
    void selectFrom(qsizetype anchor, qsizetype cursor);
    void showCaret();
    void setPreedit(const QString &text, int cursor);
    void commitPreedit();
    /// The position of the visible caret, which can be inside the text that an input method is composing.
    [[nodiscard]] QRectF visibleCaret() const;

    QXTextDocument m_ownDocument{QString()};
    QXTextEditing m_editing;
    /// True while the editor itself changes the document.
    bool m_isEditing = false;
    Qt::InputMethodHints m_inputMethodHints =
        Qt::ImhMultiLine | Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText;
    QBasicTimer m_blinkTimer;
    bool m_isCaretShown = false;
    /// The text that an input method is composing at the cursor; not yet part of the document.
    QString m_preedit;
    int m_preeditCursor = 0;
};
