#pragma once

#include "Text/QXHexColumns.h"
#include "Text/QXTextDocument.h"
#include "Text/QXTextRowLayout.h"
#include "Text/QXTextRows.h"
#include "Text/QXTextSelection.h"

#include <QtCore/QPointer>
#include <QtGui/QColor>
#include <QtGui/QImage>
#include <QtQuick/QQuickItem>

#include <memory>
#include <unordered_map>

class QXTaskProgress;

/// Paints the visible rows of a document and maps positions to points. Main thread only.
///
/// The rows are painted before a frame, on the main thread, and the render thread only shows the picture:
/// fonts belong to the thread that uses them first, and a render thread ends with its window or when the
/// window releases its resources. A layout that a render thread has drawn may keep such a font.
///
/// Bytes have their offset at the left and their characters at the right; see QXHexColumns.
///
/// Rows are as wide as the item and are broken again at most once per frame. Those of a very long text are
/// broken by another thread; until then the item shows the beginning of the text, or the rows of its former
/// width. Like code, they read from left to right in every language; within a row, text of either direction
/// is shaped correctly.
class QXTextCanvas : public QQuickItem
{
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QXTextDocument *document READ document WRITE setDocument NOTIFY documentChanged)
    /// The font; it has to be monospaced.
    Q_PROPERTY(QFont font READ font WRITE setFont NOTIFY fontChanged)
    /// The background; transparent unless it is set.
    Q_PROPERTY(QColor fillColor MEMBER m_fillColor NOTIFY coloursChanged)
    Q_PROPERTY(QColor color MEMBER m_color NOTIFY coloursChanged)
    /// The colour of what stands beside the bytes of a body.
    Q_PROPERTY(QColor marginColor MEMBER m_marginColor NOTIFY coloursChanged)
    Q_PROPERTY(QColor selectionColor MEMBER m_selectionColor NOTIFY coloursChanged)
    Q_PROPERTY(QColor selectedTextColor MEMBER m_selectedTextColor NOTIFY coloursChanged)
    /// A text that is marked wherever it is visible, in upper or lower case; empty for none.
    Q_PROPERTY(QString markedText READ markedText WRITE setMarkedText NOTIFY markedTextChanged)
    Q_PROPERTY(QColor markColor MEMBER m_markColor NOTIFY coloursChanged)
    /// The total height of all rows.
    Q_PROPERTY(qreal contentHeight READ contentHeight NOTIFY contentHeightChanged)
    Q_PROPERTY(qreal rowHeight READ rowHeight NOTIFY fontChanged)
    /// The height of the rows above the top of the item.
    Q_PROPERTY(qreal scrollOffset READ scrollOffset WRITE setScrollOffset NOTIFY scrollOffsetChanged)
    Q_PROPERTY(bool hasSelection READ hasSelection NOTIFY selectionChanged)

public:
    explicit QXTextCanvas(QQuickItem *parent = nullptr);
    ~QXTextCanvas() override;

    [[nodiscard]] QXTextDocument *document() const { return m_document; }
    void setDocument(QXTextDocument *document);
    [[nodiscard]] const QFont &font() const { return m_font; }
    void setFont(const QFont &font);
    [[nodiscard]] qreal contentHeight() const { return m_contentHeight; }
    [[nodiscard]] qreal rowHeight() const { return m_rowHeight; }
    [[nodiscard]] qreal scrollOffset() const { return m_scrollOffset; }
    void setScrollOffset(qreal offset);

    [[nodiscard]] bool hasSelection() const { return !m_selection.isEmpty(); }
    [[nodiscard]] const QXTextSelection &selection() const { return m_selection; }
    void setSelection(const QXTextSelection &selection);

    [[nodiscard]] const QString &markedText() const { return m_markedText; }
    void setMarkedText(const QString &text);

    /// The position nearest to a point of the item.
    [[nodiscard]] qsizetype positionAt(QPointF point) const;
    /// The caret before the character at @p position, measured from the top of all rows and not of the item.
    /// @p further moves it by so many units, for a row that shows more text than the document has.
    [[nodiscard]] QRectF caretAt(qsizetype position, int further = 0) const;
    /// The text of the row that is painted at a height of the item.
    [[nodiscard]] QString rowTextAt(qreal y) const;
    [[nodiscard]] const QXTextRows &rows() const { return m_rows; }

Q_SIGNALS:
    void documentChanged();
    void fontChanged();
    void coloursChanged();
    void contentHeightChanged();
    void scrollOffsetChanged();
    void selectionChanged();
    void markedTextChanged();
    /// Emitted when new row widths move the row at the top of the item by this distance. The scrolling page
    /// follows.
    void topRowMoved(qreal distance);

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void itemChange(ItemChange change, const ItemChangeData &data) override;
    void updatePolish() override;
    QSGNode *updatePaintNode(QSGNode *before, UpdatePaintNodeData *) override;

    /// Paints the visible rows. Called before a frame when the item was polished, like after every change
    /// that is visible.
    virtual void paint(QPainter &painter);
    /// Breaks the rows now if they have to be broken.
    void breakRows();
    /// The text that a row shows, without its line end.
    [[nodiscard]] virtual QString rowText(int row) const;
    /// Clears the cached layouts. Must be called when the text of a row changes.
    void clearLayouts();
    [[nodiscard]] QColor color() const { return m_color; }

private:
    void invalidateRows();
    /// Uses another font for the rows.
    void showFont(const QFont &font);
    [[nodiscard]] qreal textLeft() const { return m_hexColumns.bytesColumn() * m_cellWidth; }
    [[nodiscard]] qsizetype byteAt(int row, qreal x) const;
    void paintHexMargins(QPainter &painter, int row) const;
    void forgetText();
    void breakInBackground(bool keepsTop);
    void stopBreaking();
    void setRows(QXTextRows rows, bool keepsTop);
    void setContentHeight(qreal height);
    void followEdit(qsizetype position, qsizetype removed, qsizetype added);
    [[nodiscard]] int rowAtOffset(qreal offset) const;
    [[nodiscard]] const QXTextRowLayout &layoutOf(int row) const;
    [[nodiscard]] QImage paintPicture();
    void paintRow(QPainter &painter, int row) const;
    void fillRow(QPainter &painter, int row, qsizetype start, qsizetype end, const QColor &color) const;
    void paintMarks(QPainter &painter, int first, int last) const;

    QPointer<QXTextDocument> m_document;
    QFont m_font;
    /// The font of the rows: smaller if that makes room for more bytes.
    QFont m_shownFont;
    QXHexColumns m_hexColumns;
    QColor m_fillColor = Qt::transparent;
    QColor m_color = Qt::black;
    QColor m_marginColor = Qt::darkGray;
    QColor m_selectionColor = Qt::blue;
    QColor m_selectedTextColor = Qt::white;
    QColor m_markColor = Qt::yellow;
    QString m_markedText;
    qreal m_columnWidth = 1;
    /// The width of a column in the font of the rows.
    qreal m_cellWidth = 1;
    qreal m_rowHeight = 1;
    qreal m_baseline = 0;
    qreal m_contentHeight = 0;
    qreal m_scrollOffset = 0;
    QXTextRows m_rows;
    /// The number of columns per row; 0 when the rows have to be broken.
    int m_columns = 0;
    /// Whether the rows are those of the text, maybe of its beginning only or with another width.
    bool m_hasRows = false;
    /// The work of another thread that breaks the rows, or null.
    std::shared_ptr<QXTaskProgress> m_breaking;
    QXTextSelection m_selection;
    /// The item in device pixels. Kept, because a window that has released its resources asks for it again.
    QImage m_picture;
    mutable std::unordered_map<int, std::unique_ptr<QXTextRowLayout>> m_layouts;
};
