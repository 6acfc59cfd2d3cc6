#pragma once

#include "Text/QXTextCanvas.h"
#include "Text/QXTextMove.h"

#include <QtCore/QBasicTimer>
#include <QtCore/QElapsedTimer>

/// A read-only text of any size. The user selects with a mouse, keys or a long press, and can copy the
/// selection. A finger that moves at once scrolls the page. Main thread only.
class QXTextView : public QXTextCanvas
{
    Q_OBJECT
    QML_ELEMENT
    /// The item that takes the focus when the view is pressed and forwards its keys to the view. Without one
    /// the view takes the focus itself.
    Q_PROPERTY(QQuickItem *focusItem MEMBER m_focusItem NOTIFY focusItemChanged)
    /// Whether the selection was made by touch and needs handles.
    Q_PROPERTY(bool needsHandles READ needsHandles NOTIFY edgesMoved)
    /// The start and end of the selection in the item's coordinates, each as high as its row.
    Q_PROPERTY(QRectF startEdge READ startEdge NOTIFY edgesMoved)
    Q_PROPERTY(QRectF endEdge READ endEdge NOTIFY edgesMoved)

public:
    explicit QXTextView(QQuickItem *parent = nullptr);
    ~QXTextView() override;

    /// Copies the selection to the clipboard. Does nothing when nothing is selected.
    Q_INVOKABLE void copySelection() const;
    Q_INVOKABLE void selectAll();
    [[nodiscard]] Q_INVOKABLE QString selectedText() const;

    /// Selects a part of the text and scrolls to it, with some rows around it. While another thread breaks
    /// the rows there, the scrolling waits for them.
    void showRange(qsizetype position, qsizetype length);
    /// Gives the keyboard focus to the view, or to its focus item.
    void takeFocus();

    [[nodiscard]] bool needsHandles() const { return m_isTouched && hasSelection(); }
    [[nodiscard]] QRectF startEdge() const;
    [[nodiscard]] QRectF endEdge() const;
    /// Called when a finger presses, drags and releases the handle at one end of the selection. The point is
    /// in the item's coordinates.
    Q_INVOKABLE void holdEdge(bool isStart);
    Q_INVOKABLE void moveEdge(QPointF point);
    Q_INVOKABLE void releaseEdge();

Q_SIGNALS:
    void focusItemChanged();
    /// Emitted for a right click, the Menu key, or a long press that selected text.
    void contextMenuRequested(QPointF position);
    void edgesMoved();
    /// Requests that the page scrolls to these heights, in the coordinates of the scroll offset.
    void revealRequested(qreal top, qreal bottom);

protected:
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseUngrabEvent() override;
    void keyPressEvent(QKeyEvent *event) override;
    void timerEvent(QTimerEvent *event) override;

    /// Whether this view handles the key, so that no shortcut of the application may.
    [[nodiscard]] virtual bool wantsKey(const QKeyEvent &event) const;
    /// Called when a finger taps the view.
    virtual void tapped(QPointF point);
    /// Moves the cursor and scrolls to it.
    void moveCursor(QXTextMove move);
    void revealCursor(int rowsAround = 0);
    [[nodiscard]] qsizetype targetOf(QXTextMove::Target target);

private:
    [[nodiscard]] qsizetype positionBesideRow(int rows);
    void select(qsizetype position, QXTextSelection::Unit unit);
    void extendTo(QPointF point);
    /// Extends the selection to a point, and scrolls on while the point is outside the visible part.
    void dragTo(QPointF point);
    /// Called after a long press.
    void holdAt(QPointF point);
    void setTouched(bool touched);
    void stopPointer();
    void revealRange();

    QPointer<QQuickItem> m_focusItem;
    QPointF m_pressed;
    /// The pointer's position in the scene, because the view may move while the pointer rests.
    QPointF m_dragged;
    bool m_isSelecting = false;
    /// Whether the current press is a long press.
    bool m_isHeld = false;
    /// Whether the selection was made by touch.
    bool m_isTouched = false;
    /// Whether to scroll to the selection as soon as its rows are known.
    bool m_awaitsRows = false;
    QBasicTimer m_holdTimer;
    QBasicTimer m_scrollTimer;
    QElapsedTimer m_sinceDoubleClick;
    /// The x position for moving the cursor up and down, kept across shorter rows; negative when not measured
    /// yet.
    qreal m_verticalMoveX = -1;
};
