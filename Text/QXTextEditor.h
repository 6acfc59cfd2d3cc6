#pragma once

#include "Text/QXTextEditing.h"
#include "Text/QXTextView.h"

struct QXTextCommand;

/// A text of any size to be edited, with the keys of the platform and its input methods. Main thread only.
///
/// The text is kept as it came where it is not edited, line ends of all kinds included. Bytes in hexadecimal
/// can only be read.
class QXTextEditor : public QXTextView
{
    Q_OBJECT
    QML_ELEMENT
    /// That of the document. Reading it is cheap; whoever keeps it makes the next keystroke copy all of it.
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(Qt::InputMethodHints inputMethodHints MEMBER m_inputMethodHints NOTIFY inputMethodHintsChanged)
    Q_PROPERTY(bool canUndo READ canUndo NOTIFY textChanged)
    Q_PROPERTY(bool canRedo READ canRedo NOTIFY textChanged)
    Q_PROPERTY(bool isReadOnly READ isReadOnly NOTIFY documentChanged)

public:
    /// With an empty document of its own.
    explicit QXTextEditor(QQuickItem *parent = nullptr);
    ~QXTextEditor() override;

    [[nodiscard]] QString text() const;
    /// Begins anew: there is nothing to undo then.
    void setText(const QString &text);
    [[nodiscard]] bool canUndo() const { return m_editing.canUndo(); }
    [[nodiscard]] bool canRedo() const { return m_editing.canRedo(); }
    [[nodiscard]] bool isReadOnly() const { return !document() || document()->isHexadecimal(); }

    Q_INVOKABLE void cut();
    Q_INVOKABLE void paste();
    Q_INVOKABLE void undo();
    Q_INVOKABLE void redo();
    /// Puts the text in the place of what is selected, or where the cursor is.
    Q_INVOKABLE void insert(const QString &text);
    /// Deletes the whole text.
    Q_INVOKABLE void clear();
    /// Asks whoever scrolls to show where the cursor is.
    Q_INVOKABLE void showCursor() { revealCursor(); }

    void paint(QPainter *painter) override;
    [[nodiscard]] QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

Q_SIGNALS:
    /// By whomever.
    void textChanged();
    /// By the user.
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

    [[nodiscard]] bool wantsKey(const QKeyEvent &event) const override;
    [[nodiscard]] QString rowText(int row) const override;
    void tapped(QPointF point) override;

private:
    void adoptDocument();
    void followDocument();
    void obey(const QXTextCommand &command);
    void leaveOrMove(QXTextMove move);
    void replace(QXTextRange part, const QString &added);
    /// Deletes what is selected, else as far as the target.
    void deleteTo(QXTextMove::Target target);
    void restore(const std::optional<QXTextSelection> &selection);
    void selectFrom(qsizetype anchor, qsizetype cursor);
    void showCaret();
    void setPreedit(const QString &text, int cursor);
    void commitPreedit();
    /// Where the caret is seen, within or after what is being composed.
    [[nodiscard]] QRectF seenCaret() const;

    QXTextDocument m_ownDocument{QString()};
    QXTextEditing m_editing;
    /// While it is the editor that changes the document.
    bool m_isEditing = false;
    Qt::InputMethodHints m_inputMethodHints =
        Qt::ImhMultiLine | Qt::ImhNoAutoUppercase | Qt::ImhNoPredictiveText;
    QBasicTimer m_blinkTimer;
    bool m_isCaretShown = false;
    /// What an input method is composing at the cursor; not yet part of the text.
    QString m_preedit;
    int m_preeditCursor = 0;
};
