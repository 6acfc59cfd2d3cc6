#pragma once

#include "Quorvix/QXTextCanvas.h"
#include "Quorvix/QXTextMove.h"

#include <QtCore/QBasicTimer>
#include <QtCore/QElapsedTimer>

/// A text of any size, read only: a mouse and keys select from it, and it can be copied. A finger scrolls
/// what the view lies on. Main thread only.
class QUORVIX_INTERNAL_EXPORT QXTextView : public QXTextCanvas
{
    Q_OBJECT
    QML_ELEMENT
    /// Takes the focus when the view is pressed, and hands on its keys; without one the view does so itself.
    Q_PROPERTY(QQuickItem *focusItem MEMBER m_focusItem NOTIFY focusItemChanged)

public:
    explicit QXTextView(QQuickItem *parent = nullptr);
    ~QXTextView() override;

    /// Does nothing when nothing is selected.
    Q_INVOKABLE void copySelection() const;
    Q_INVOKABLE void selectAll();
    [[nodiscard]] QString selectedText() const;

Q_SIGNALS:
    void focusItemChanged();
    /// By a right click, press and hold, or the Menu key.
    void contextMenuRequested(QPointF position);
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
    void stopPointer();

    QPointer<QQuickItem> m_focusItem;
    QPointF m_pressed;
    /// In the scene: while the pointer rests, the view may move.
    QPointF m_dragged;
    bool m_isSelecting = false;
    QBasicTimer m_holdTimer;
    QBasicTimer m_scrollTimer;
    QElapsedTimer m_sinceDoubleClick;
    /// Where the cursor goes up and down, kept past shorter rows; negative when it has yet to be measured.
    qreal m_climbX = -1;
};
