#include "Text/QXTextView.h"

#include <QtGui/QClipboard>
#include <QtGui/QCursor>
#include <QtGui/QGuiApplication>
#include <QtGui/QStyleHints>

#include <utility>

namespace {

using Target = QXTextMove::Target;

constexpr int frameInterval = 16; // milliseconds
/// The rows that stay visible above and below a range that is shown.
constexpr int rowsAroundRange = 4;

bool isFinger(const QMouseEvent &event)
{
    return event.device() && event.device()->type() == QInputDevice::DeviceType::TouchScreen;
}

bool isDrag(QPointF a, QPointF b)
{
    return (a - b).manhattanLength() > QGuiApplication::styleHints()->startDragDistance();
}

bool isMenuKey(const QKeyEvent &event)
{
    return event.key() == Qt::Key_Menu ||
           (event.key() == Qt::Key_F10 && event.modifiers() == Qt::ShiftModifier);
}

} // namespace

QXTextView::QXTextView(QQuickItem *parent) : QXTextCanvas(parent)
{
    setAcceptedMouseButtons(Qt::LeftButton | Qt::RightButton);
    setCursor(Qt::IBeamCursor);
    for (const auto moved : {&QXTextCanvas::selectionChanged, &QXTextCanvas::scrollOffsetChanged,
                             &QXTextCanvas::contentHeightChanged, &QXTextCanvas::fontChanged})
        connect(this, moved, this, &QXTextView::edgesMoved);
    // Later, because the page learns of the new height from the same signal.
    connect(
        this, &QXTextCanvas::contentHeightChanged, this,
        [this] {
            if (std::exchange(m_awaitsRows, false))
                revealRange();
        },
        Qt::QueuedConnection);
}

QXTextView::~QXTextView() = default;

QString QXTextView::selectedText() const
{
    if (!document() || !hasSelection())
        return {};
    if (!document()->isHexadecimal())
        return document()->text(selection().start(), selection().length());
    // Whole bytes, without the space that a selection may begin or end with.
    constexpr qsizetype unitsPerByte = QXTextContent::unitsPerByte;
    const qsizetype first = (selection().start() + 1) / unitsPerByte;
    const qsizetype last = (selection().end() + 2) / unitsPerByte;
    return document()->text(first * unitsPerByte, (last - first) * unitsPerByte - 1);
}

void QXTextView::copySelection() const
{
    if (hasSelection())
        QGuiApplication::clipboard()->setText(selectedText());
}

void QXTextView::selectAll()
{
    if (!document())
        return;
    QXTextSelection all;
    all.set(0, document()->length());
    setSelection(all);
}

void QXTextView::showRange(qsizetype position, qsizetype length)
{
    if (!document())
        return;
    setTouched(false);
    m_verticalMoveX = -1;
    QXTextSelection shown;
    // The cursor is at the start, which a person reads first.
    shown.set(position + length, position);
    setSelection(shown);
    revealRange();
}

void QXTextView::revealRange()
{
    breakRows();
    m_awaitsRows = rows().end(rows().count() - 1) < selection().end();
    revealCursor(rowsAroundRange);
}

bool QXTextView::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && wantsKey(static_cast<const QKeyEvent &>(*event))) {
        event->accept();
        return true;
    }
    return QXTextCanvas::event(event);
}

void QXTextView::mousePressEvent(QMouseEvent *event)
{
    m_pressed = event->position();
    if (event->button() == Qt::RightButton) {
        Q_EMIT contextMenuRequested(m_pressed);
        return;
    }
    if (isFinger(*event)) {
        m_holdTimer.start(QGuiApplication::styleHints()->mousePressAndHoldInterval(), this);
        return;
    }
    takeFocus();
    setTouched(false);
    if (!document())
        return;
    setKeepMouseGrab(true); // otherwise the page would be dragged
    m_isSelecting = true;
    m_dragged = event->scenePosition();
    m_verticalMoveX = -1;
    const bool isThird =
        m_sinceDoubleClick.isValid() &&
        !m_sinceDoubleClick.hasExpired(QGuiApplication::styleHints()->mouseDoubleClickInterval());
    m_sinceDoubleClick.invalidate();
    if (event->modifiers() & Qt::ShiftModifier)
        extendTo(m_pressed);
    else
        select(positionAt(m_pressed),
               isThird ? QXTextSelection::Unit::Line : QXTextSelection::Unit::Character);
}

void QXTextView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || isFinger(*event) || !document())
        return;
    select(positionAt(event->position()), QXTextSelection::Unit::Word);
    m_sinceDoubleClick.start();
}

void QXTextView::mouseMoveEvent(QMouseEvent *event)
{
    if (isDrag(event->position(), m_pressed))
        m_holdTimer.stop();
    if (m_isSelecting)
        dragTo(event->position());
}

void QXTextView::dragTo(QPointF point)
{
    m_dragged = mapToScene(point);
    extendTo(point);
    if (point.y() >= 0 && point.y() < height())
        m_scrollTimer.stop();
    else if (!m_scrollTimer.isActive())
        m_scrollTimer.start(frameInterval, this);
}

void QXTextView::mouseReleaseEvent(QMouseEvent *event)
{
    const bool isTap = m_holdTimer.isActive();
    const bool wasHeld = m_isHeld;
    stopPointer();
    if (isTap)
        tapped(event->position());
    else if (wasHeld)
        Q_EMIT contextMenuRequested(event->position());
}

void QXTextView::mouseUngrabEvent()
{
    stopPointer();
}

void QXTextView::stopPointer()
{
    m_isSelecting = false;
    m_isHeld = false;
    m_holdTimer.stop();
    m_scrollTimer.stop();
    setKeepMouseGrab(false);
}

void QXTextView::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == m_holdTimer.timerId()) {
        m_holdTimer.stop();
        holdAt(m_pressed);
    } else if (event->timerId() == m_scrollTimer.timerId()) {
        const QPointF point = mapFromScene(m_dragged);
        // Scrolls faster when the pointer is farther away.
        const qreal goal = qBound<qreal>(0, scrollOffset() + point.y(), contentHeight());
        Q_EMIT revealRequested(goal, goal);
        extendTo(point);
    } else {
        QXTextCanvas::timerEvent(event);
    }
}

void QXTextView::select(qsizetype position, QXTextSelection::Unit unit)
{
    QXTextSelection selected = selection();
    selected.begin(*document(), position, unit);
    setSelection(selected);
}

void QXTextView::extendTo(QPointF point)
{
    if (!document())
        return;
    QXTextSelection selected = selection();
    selected.extend(*document(), positionAt(point));
    setSelection(selected);
}

void QXTextView::tapped(QPointF point)
{
    if (!document())
        return;
    const qsizetype position = positionAt(point);
    if (needsHandles() && position >= selection().start() && position <= selection().end())
        Q_EMIT contextMenuRequested(point);
    else
        select(position, QXTextSelection::Unit::Character);
}

void QXTextView::holdAt(QPointF point)
{
    if (!document())
        return;
    takeFocus();
    setKeepMouseGrab(true);
    m_isHeld = true;
    const qsizetype position = positionAt(point);
    if (position >= selection().start() && position < selection().end())
        return; // keeps the selection, because the menu is about it
    m_isSelecting = true;
    setTouched(true);
    select(position, QXTextSelection::Unit::Word);
}

void QXTextView::takeFocus()
{
    (m_focusItem ? m_focusItem.data() : this)->forceActiveFocus(Qt::MouseFocusReason);
}

void QXTextView::setTouched(bool touched)
{
    if (std::exchange(m_isTouched, touched) != touched)
        Q_EMIT edgesMoved();
}

QRectF QXTextView::startEdge() const
{
    return caretAt(selection().start()).translated(0, -scrollOffset());
}

QRectF QXTextView::endEdge() const
{
    // The edge is after the last selected character, because the next character may be on another row.
    const bool hasLast = hasSelection();
    return caretAt(selection().end() - hasLast, hasLast).translated(0, -scrollOffset());
}

void QXTextView::holdEdge(bool isStart)
{
    QXTextSelection held;
    held.set(isStart ? selection().end() : selection().start(),
             isStart ? selection().start() : selection().end());
    setSelection(held);
}

void QXTextView::moveEdge(QPointF point)
{
    // The selection must not become empty: the handles would disappear during the drag.
    if (positionAt(point) != selection().anchor())
        dragTo(point);
}

void QXTextView::releaseEdge()
{
    stopPointer();
}

bool QXTextView::wantsKey(const QKeyEvent &event) const
{
    const auto move = QXTextMove::of(event);
    return event.matches(QKeySequence::Copy) || event.matches(QKeySequence::SelectAll) ||
           (move && move->selects);
}

void QXTextView::keyPressEvent(QKeyEvent *event)
{
    const auto move = QXTextMove::of(*event);
    if (isMenuKey(*event)) {
        const QRectF caret = caretAt(selection().cursor()).translated(0, -scrollOffset());
        const bool isSeen = caret.top() >= 0 && caret.bottom() <= height();
        Q_EMIT contextMenuRequested(isSeen ? caret.bottomLeft() : QPointF());
    } else if (event->matches(QKeySequence::Copy) && hasSelection()) {
        copySelection();
    } else if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
    } else if (move && move->selects && document()) {
        // A cursor that is not visible is not a useful start for a movement.
        const qreal cursor = caretAt(selection().cursor()).top() - scrollOffset();
        if (!hasSelection() && (cursor + rowHeight() <= 0 || cursor >= height()))
            select(positionAt({0, rowHeight()}), QXTextSelection::Unit::Character);
        moveCursor(*move);
    } else {
        event->ignore();
    }
}

void QXTextView::moveCursor(QXTextMove move)
{
    breakRows();
    if (!move.isVertical())
        m_verticalMoveX = -1;
    const qsizetype target = targetOf(move.target);
    QXTextSelection moved = selection();
    moved.set(move.selects ? moved.anchor() : target, target);
    setSelection(moved);
    revealCursor();
}

void QXTextView::revealCursor(int rowsAround)
{
    const QRectF caret = caretAt(selection().cursor());
    const qreal around = rowsAround * rowHeight();
    Q_EMIT revealRequested(qMax<qreal>(0, caret.top() - around),
                           qMin(contentHeight(), caret.bottom() + around));
}

qsizetype QXTextView::targetOf(Target target)
{
    const QXTextDocument &text = *document();
    const qsizetype cursor = selection().cursor();
    const int row = rows().rowAt(cursor);
    const int page = qMax(1, int(height() / rowHeight()) - 1);
    switch (target) {
    case Target::NextCharacter:
        return QXTextBoundaries::nextCharacter(text, cursor);
    case Target::PreviousCharacter:
        return QXTextBoundaries::previousCharacter(text, cursor);
    case Target::NextWord:
        return QXTextBoundaries::nextWord(text, cursor);
    case Target::PreviousWord:
        return QXTextBoundaries::previousWord(text, cursor);
    case Target::NextRow:
        return positionBesideRow(1);
    case Target::PreviousRow:
        return positionBesideRow(-1);
    case Target::NextPage:
        return positionBesideRow(page);
    case Target::PreviousPage:
        return positionBesideRow(-page);
    case Target::RowStart:
        return rows().start(row);
    case Target::RowEnd:
        // The end position of a row without a line end belongs to the next row, so the cursor stops before
        // it.
        if (row + 1 == rows().count())
            return text.length();
        return text.isHexadecimal() ? rows().end(row) - 1
                                    : QXTextBoundaries::previousCharacter(text, rows().end(row));
    case Target::Start:
        return 0;
    case Target::End:
        return text.length();
    }
    return cursor;
}

qsizetype QXTextView::positionBesideRow(int rows)
{
    const QRectF caret = caretAt(selection().cursor());
    if (m_verticalMoveX < 0)
        m_verticalMoveX = caret.x();
    return positionAt({m_verticalMoveX, caret.center().y() + rows * rowHeight() - scrollOffset()});
}
