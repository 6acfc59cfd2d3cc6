#pragma once

#include "Text/QXTextCanvas.h"
#include "Text/QXTextMove.h"

#include <QtCore/QBasicTimer>
#include <QtCore/QElapsedTimer>

/// A text of any size, read only: a mouse, keys and a finger that is held select from it, and it can be
/// copied. A finger that moves at once scrolls what the view lies on. Main thread only.
class QXTextView : public QXTextCanvas
{
    Q_OBJECT
    QML_ELEMENT
    /// Takes the focus when the view is pressed, and hands on its keys; without one the view does so itself.
    Q_PROPERTY(QQuickItem *focusItem MEMBER m_focusItem NOTIFY focusItemChanged)
    /// Whether a finger has selected something, and needs handles to select less or more.
    Q_PROPERTY(bool needsHandles READ needsHandles NOTIFY edgesMoved)
    /// Where the selection begins and ends, in the item's coordinates: each as high as its row.
    Q_PROPERTY(QRectF startEdge READ startEdge NOTIFY edgesMoved)
    Q_PROPERTY(QRectF endEdge READ endEdge NOTIFY edgesMoved)

public:
    explicit QXTextView(QQuickItem *parent = nullptr);
    ~QXTextView() override;

    /// Does nothing when nothing is selected.
    Q_INVOKABLE void copySelection() const;
    Q_INVOKABLE void selectAll();
    [[nodiscard]] Q_INVOKABLE QString selectedText() const;

    [[nodiscard]] bool needsHandles() const { return m_isTouched && hasSelection(); }
    [[nodiscard]] QRectF startEdge() const;
    [[nodiscard]] QRectF endEdge() const;
    /// A finger takes hold of one end of the selection, moves it to a point of the item, and lets go of it.
    Q_INVOKABLE void holdEdge(bool isStart);
    Q_INVOKABLE void moveEdge(QPointF point);
    Q_INVOKABLE void releaseEdge();

Q_SIGNALS:
    void focusItemChanged();
    /// By a right click, the Menu key, or a finger that has selected something.
    void contextMenuRequested(QPointF position);
    void edgesMoved();
    /// Asks whoever scrolls to show these heights, measured as the scroll offset is.
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

    /// Whether the key is one that this view acts on, and no shortcut of the application may take.
    [[nodiscard]] virtual bool wantsKey(const QKeyEvent &event) const;
    /// A finger was put down and lifted again.
    virtual void tapped(QPointF point);
    /// Moves the cursor as @p move says and shows where it went.
    void moveCursor(QXTextMove move);
    void revealCursor();
    [[nodiscard]] qsizetype targetOf(QXTextMove::Target target);

private:
    [[nodiscard]] qsizetype positionBesideRow(int rows);
    void select(qsizetype position, QXTextSelection::Unit unit);
    void extendTo(QPointF point);
    /// Selects as far as a point, and goes on while it stays outside.
    void dragTo(QPointF point);
    /// A finger has rested for long enough.
    void holdAt(QPointF point);
    void takeFocus();
    void setTouched(bool touched);
    void stopPointer();

    QPointer<QQuickItem> m_focusItem;
    QPointF m_pressed;
    /// In the scene: while the pointer rests, the view may move.
    QPointF m_dragged;
    bool m_isSelecting = false;
    /// Whether the finger that is down has been held.
    bool m_isHeld = false;
    /// Whether the selection is a finger's.
    bool m_isTouched = false;
    QBasicTimer m_holdTimer;
    QBasicTimer m_scrollTimer;
    QElapsedTimer m_sinceDoubleClick;
    /// Where the cursor goes up and down, kept past shorter rows; negative when it has yet to be measured.
    qreal m_climbX = -1;
};
