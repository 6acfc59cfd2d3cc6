#include "Text/QXTextEditor.h"

#include "Text/QXTextCommand.h"
#include "Text/QXTextSurroundings.h"

#include <QtCore/QScopedValueRollback>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QInputMethod>
#include <QtGui/QPainter>
#include <QtGui/QStyleHints>

QXTextEditor::QXTextEditor(QQuickItem *parent) : QXTextView(parent)
{
    setFlag(ItemAcceptsInputMethod);
    setActiveFocusOnTab(true);
    connect(this, &QXTextCanvas::documentChanged, this, &QXTextEditor::adoptDocument);
    connect(this, &QXTextCanvas::selectionChanged, this, &QXTextEditor::showCaret);
    setDocument(&m_ownDocument);
}

QXTextEditor::~QXTextEditor()
{
    // Otherwise the destruction of the document would be reported as an empty text.
    if (document())
        document()->disconnect(this);
}

void QXTextEditor::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QXTextView::geometryChange(newGeometry, oldGeometry);
    if (hasActiveFocus() && newGeometry.height() < oldGeometry.height())
        revealCursor(); // as when an on-screen keyboard opens
}

void QXTextEditor::adoptDocument()
{
    m_editing.clear();
    m_preedit.clear();
    if (document())
        connect(document(), &QXTextDocument::replaced, this, &QXTextEditor::followDocument);
    Q_EMIT textChanged();
}

void QXTextEditor::followDocument()
{
    if (!m_isEditing)
        m_editing.clear(); // the stored positions are those of the previous text
    Q_EMIT textChanged();
}

QString QXTextEditor::text() const
{
    return document() ? document()->text() : QString();
}

void QXTextEditor::setText(const QString &text)
{
    if (isReadOnly())
        setDocument(&m_ownDocument);
    if (document()->content().utf16() == text)
        return;
    m_preedit.clear();
    setSelection({});
    document()->replace(0, document()->length(), text);
}

void QXTextEditor::cut()
{
    if (isReadOnly() || !hasSelection())
        return;
    copySelection();
    insert({});
}

void QXTextEditor::paste()
{
    insert(QGuiApplication::clipboard()->text());
}

void QXTextEditor::insert(const QString &text)
{
    replace({selection().start(), selection().end()}, text);
}

void QXTextEditor::clear()
{
    if (document())
        replace({0, document()->length()}, {});
}

void QXTextEditor::undo()
{
    const QScopedValueRollback own(m_isEditing, true);
    if (!isReadOnly())
        restore(m_editing.undo(*document()));
}

void QXTextEditor::redo()
{
    const QScopedValueRollback own(m_isEditing, true);
    if (!isReadOnly())
        restore(m_editing.redo(*document()));
}

void QXTextEditor::restore(const std::optional<QXTextSelection> &selection)
{
    if (!selection)
        return;
    setSelection(*selection);
    revealCursor();
    Q_EMIT textEdited();
}

void QXTextEditor::replace(QXTextRange part, const QString &added)
{
    if (isReadOnly() || (part.start == part.end && added.isEmpty()))
        return;
    breakRows();
    const QScopedValueRollback own(m_isEditing, true);
    const qsizetype cursor = m_editing.replace(*document(), part, added, selection());
    selectFrom(cursor, cursor);
    revealCursor();
    Q_EMIT textEdited();
}

void QXTextEditor::deleteTo(QXTextMove::Target target)
{
    const qsizetype cursor = selection().cursor();
    const qsizetype reached = targetOf(target);
    if (hasSelection())
        insert({});
    else
        replace({qMin(cursor, reached), qMax(cursor, reached)}, {});
}

void QXTextEditor::selectFrom(qsizetype anchor, qsizetype cursor)
{
    QXTextSelection selected;
    selected.set(anchor, cursor);
    setSelection(selected);
}

void QXTextEditor::execute(const QXTextCommand &command)
{
    switch (command.kind) {
    case QXTextCommand::Kind::Undo:
        return undo();
    case QXTextCommand::Kind::Redo:
        return redo();
    case QXTextCommand::Kind::Cut:
        return cut();
    case QXTextCommand::Kind::Paste:
        return paste();
    case QXTextCommand::Kind::Delete:
        return deleteTo(command.target);
    case QXTextCommand::Kind::Insert:
        return insert(command.text);
    }
}

bool QXTextEditor::wantsKey(const QKeyEvent &event) const
{
    return QXTextView::wantsKey(event) || QXTextMove::of(event) ||
           (!isReadOnly() && QXTextCommand::of(event));
}

void QXTextEditor::keyPressEvent(QKeyEvent *event)
{
    const auto command = isReadOnly() ? std::nullopt : QXTextCommand::of(*event);
    const auto move = QXTextMove::of(*event);
    if (command)
        execute(*command);
    else if (move && document())
        moveOrCollapse(*move);
    else
        QXTextView::keyPressEvent(event);
}

/// Moves the cursor. With a selection, a step to the left or right moves it to the end of the selection.
void QXTextEditor::moveOrCollapse(QXTextMove move)
{
    const bool leaves = hasSelection() && !move.selects;
    if (leaves && move.target == QXTextMove::Target::NextCharacter)
        selectFrom(selection().end(), selection().end());
    else if (leaves && move.target == QXTextMove::Target::PreviousCharacter)
        selectFrom(selection().start(), selection().start());
    else
        moveCursor(move);
}

void QXTextEditor::mousePressEvent(QMouseEvent *event)
{
    commitPreedit();
    QXTextView::mousePressEvent(event);
}

void QXTextEditor::tapped(QPointF point)
{
    QXTextView::tapped(point);
    forceActiveFocus(Qt::MouseFocusReason);
    if (!isReadOnly())
        QGuiApplication::inputMethod()->show();
}

void QXTextEditor::focusInEvent(QFocusEvent *event)
{
    QXTextView::focusInEvent(event);
    showCaret();
    // After a press the cursor moves later, to the pressed position.
    if (event->reason() == Qt::TabFocusReason || event->reason() == Qt::BacktabFocusReason)
        revealCursor();
}

void QXTextEditor::focusOutEvent(QFocusEvent *event)
{
    QXTextView::focusOutEvent(event);
    setPreedit({}, 0);
    m_blinkTimer.stop();
    m_isCaretShown = false;
    polish();
}

void QXTextEditor::timerEvent(QTimerEvent *event)
{
    if (event->timerId() != m_blinkTimer.timerId()) {
        QXTextView::timerEvent(event);
        return;
    }
    m_isCaretShown = !m_isCaretShown;
    polish();
}

/// Shows the caret and restarts its blinking.
void QXTextEditor::showCaret()
{
    if (!m_preedit.isEmpty())
        clearLayouts(); // the composed text is painted at the cursor
    if (!hasActiveFocus())
        return;
    m_isCaretShown = true;
    if (const int period = QGuiApplication::styleHints()->cursorFlashTime(); period > 1)
        m_blinkTimer.start(period / 2, this);
    updateInputMethod(Qt::ImQueryInput | Qt::ImCurrentSelection | Qt::ImCursorRectangle);
    polish();
}

void QXTextEditor::paint(QPainter &painter)
{
    QXTextView::paint(painter);
    const QRectF caret = visibleCaret();
    if (m_isCaretShown && !isReadOnly())
        painter.fillRect(caret, color());
    if (m_preedit.isEmpty())
        return;
    const qreal start = caretAt(selection().cursor()).x();
    const qreal end = caretAt(selection().cursor(), int(m_preedit.size())).x();
    painter.fillRect(QRectF(qMin(start, end), caret.bottom() - 2, qAbs(end - start), 1), color());
}

QRectF QXTextEditor::visibleCaret() const
{
    return caretAt(selection().cursor(), m_preeditCursor).translated(0, -scrollOffset());
}

QString QXTextEditor::rowText(int row) const
{
    QString text = QXTextView::rowText(row);
    const qsizetype cursor = selection().cursor();
    if (!m_preedit.isEmpty() && rows().rowAt(cursor) == row)
        text.insert(cursor - rows().start(row), m_preedit);
    return text;
}

void QXTextEditor::setPreedit(const QString &text, int cursor)
{
    if (m_preedit.isEmpty() && text.isEmpty())
        return;
    m_preedit = text;
    m_preeditCursor = cursor;
    clearLayouts();
    showCaret();
}

void QXTextEditor::commitPreedit()
{
    if (m_preedit.isEmpty())
        return;
    QGuiApplication::inputMethod()->commit();
    setPreedit({}, 0);
}

void QXTextEditor::inputMethodEvent(QInputMethodEvent *event)
{
    if (isReadOnly()) {
        event->ignore();
        return;
    }
    const qsizetype told = QXTextSurroundings(*document(), selection()).start();
    setPreedit({}, 0);
    if (hasSelection() && !event->preeditString().isEmpty())
        insert({});
    if (event->replacementLength() > 0) {
        const qsizetype start =
            qBound<qsizetype>(0, selection().cursor() + event->replacementStart(), document()->length());
        replace({start, qMin(start + event->replacementLength(), document()->length())},
                event->commitString());
    } else if (!event->commitString().isEmpty()) {
        insert(event->commitString());
    }
    int cursor = int(event->preeditString().size());
    for (const QInputMethodEvent::Attribute &attribute : event->attributes()) {
        const auto position = [&](qsizetype offset) {
            return qBound<qsizetype>(0, told + offset, document()->length());
        };
        if (attribute.type == QInputMethodEvent::Selection)
            selectFrom(position(attribute.start), position(qsizetype{attribute.start} + attribute.length));
        else if (attribute.type == QInputMethodEvent::Cursor)
            cursor = attribute.start;
    }
    setPreedit(event->preeditString(), qBound(0, cursor, int(event->preeditString().size())));
}

QVariant QXTextEditor::inputMethodQuery(Qt::InputMethodQuery query) const
{
    switch (query) {
    case Qt::ImEnabled:
        return !isReadOnly();
    case Qt::ImHints:
        return int(m_inputMethodHints);
    case Qt::ImFont:
        return font();
    case Qt::ImCursorRectangle:
        return visibleCaret();
    case Qt::ImAnchorRectangle:
        return caretAt(selection().anchor()).translated(0, -scrollOffset());
    case Qt::ImInputItemClipRectangle:
        return boundingRect();
    default:
        break;
    }
    const QVariant answer =
        document() ? QXTextSurroundings(*document(), selection()).answer(query) : QVariant();
    return answer.isValid() ? answer : QXTextView::inputMethodQuery(query);
}
