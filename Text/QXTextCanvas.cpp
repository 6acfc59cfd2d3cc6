#include "Text/QXTextCanvas.h"

#include "Text/QXTextCell.h"

#include "Platform/BackgroundThread.h"
#include "Platform/MainActor.h"
#include "Platform/QXTaskProgress.h"

#include <QtGui/QFontMetricsF>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

/// The line height as a factor; wider lines make long texts easier to read.
constexpr qreal leading = 1.2;
/// The maximum number of cached row layouts: enough for a few screens.
constexpr size_t maximumLayouts = 500;
constexpr qreal caretWidth = 1;
/// The length of a text whose rows are broken at once, in UTF-16 units. That takes a few milliseconds, and in
/// scripts of wide or joined characters up to a frame.
constexpr qsizetype longestSynchronousText = 1 << 21;
/// The part of a longer text that is shown at once.
constexpr qsizetype beginningLength = 100'000;

/// The width of one column. If the font is not monospaced, this is the width of the widest letter.
qreal columnWidth(const QFontMetricsF &metrics)
{
    return qMax(metrics.horizontalAdvance(u'W'), metrics.horizontalAdvance(u'0'));
}

/// The font in another size.
QFont reduced(QFont font, qreal factor)
{
    if (factor < 1 && font.pixelSize() > 0)
        font.setPixelSize(int(font.pixelSize() * factor));
    else if (factor < 1)
        font.setPointSizeF(font.pointSizeF() * factor);
    return font;
}

} // namespace

QXTextCanvas::QXTextCanvas(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
    setFont(QFont());
    connect(this, &QXTextCanvas::coloursChanged, this, &QQuickItem::polish);
}

QXTextCanvas::~QXTextCanvas()
{
    stopBreaking();
}

void QXTextCanvas::setDocument(QXTextDocument *document)
{
    if (m_document == document)
        return;
    if (m_document)
        disconnect(m_document, nullptr, this, nullptr);
    m_document = document;
    if (m_document) {
        connect(m_document, &QXTextDocument::replaced, this, &QXTextCanvas::followEdit);
        connect(m_document, &QObject::destroyed, this, &QXTextCanvas::forgetText);
    }
    setSelection({});
    forgetText();
    Q_EMIT documentChanged();
}

void QXTextCanvas::setFont(const QFont &font)
{
    if (m_rowHeight > 1 && m_font == font)
        return;
    m_font = font;
    m_columnWidth = columnWidth(QFontMetricsF(font));
    showFont(font);
    invalidateRows();
}

void QXTextCanvas::showFont(const QFont &font)
{
    if (m_rowHeight > 1 && m_shownFont == font)
        return;
    m_shownFont = font;
    const QFontMetricsF metrics(font);
    m_cellWidth = columnWidth(metrics);
    m_rowHeight = std::ceil(metrics.height() * leading);
    m_baseline = std::round((m_rowHeight - metrics.height()) / 2 + metrics.ascent());
    clearLayouts();
    Q_EMIT fontChanged();
}

void QXTextCanvas::setScrollOffset(qreal offset)
{
    if (m_scrollOffset == offset)
        return;
    m_scrollOffset = offset;
    polish();
    Q_EMIT scrollOffsetChanged();
}

void QXTextCanvas::setSelection(const QXTextSelection &selection)
{
    const bool isSame =
        m_selection.anchor() == selection.anchor() && m_selection.cursor() == selection.cursor();
    m_selection = selection;
    if (isSame)
        return;
    polish();
    Q_EMIT selectionChanged();
}

void QXTextCanvas::setMarkedText(const QString &text)
{
    if (m_markedText == text)
        return;
    m_markedText = text;
    polish();
    Q_EMIT markedTextChanged();
}

void QXTextCanvas::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (newGeometry.size() != oldGeometry.size())
        polish();
}

void QXTextCanvas::itemChange(ItemChange change, const ItemChangeData &data)
{
    if (change == ItemSceneChange || change == ItemVisibleHasChanged ||
        change == ItemDevicePixelRatioHasChanged)
        polish();
    QQuickItem::itemChange(change, data);
}

void QXTextCanvas::updatePolish()
{
    breakRows();
    if (!isVisible()) {
        m_picture = {};
        return;
    }
    m_picture = paintPicture();
    update();
}

void QXTextCanvas::invalidateRows()
{
    m_columns = 0;
    clearLayouts();
}

void QXTextCanvas::forgetText()
{
    stopBreaking(); // its rows are those of another text
    m_hasRows = false;
    invalidateRows();
}

void QXTextCanvas::breakRows()
{
    if (!m_document || width() <= 0) {
        stopBreaking();
        m_rows = {};
        m_hasRows = false;
        m_columns = 0;
        setContentHeight(0);
        return;
    }
    const int columns = qMax(1, int(width() / m_columnWidth + 0.01));
    if (columns == m_columns)
        return;
    const bool keepsTop = std::exchange(m_columns, columns) != 0;
    stopBreaking();
    m_layouts.clear();
    m_hexColumns = m_document->isHexadecimal()
                       ? QXHexColumns::fitting(m_document->content().bytes().size(), columns)
                       : QXHexColumns();
    showFont(reduced(m_font, m_hexColumns.fontFactor()));
    if (!m_document->isHexadecimal() && m_document->length() > longestSynchronousText)
        return breakInBackground(keepsTop);
    QXTextRows rows;
    m_document->content().breakInto(rows, columns);
    setRows(std::move(rows), keepsTop);
}

void QXTextCanvas::breakInBackground(bool keepsTop)
{
    if (!m_hasRows) {
        QXTextRows beginning;
        beginning.breakText(m_document->text(0, beginningLength), m_columns);
        setRows(std::move(beginning), false);
    }
    m_breaking = std::make_shared<QXTaskProgress>();
    Quorvix::BackgroundThread::postTask(
        [this, keepsTop, content = m_document->content(), columns = m_columns, progress = m_breaking] {
            const auto rows = std::make_shared<QXTextRows>();
            content.breakInto(*rows, columns, progress.get());
            if (progress->isCancelled())
                return;
            Quorvix::MainActor::schedule([this, keepsTop, rows, progress] {
                if (progress->isCancelled())
                    return;
                m_breaking.reset();
                m_layouts.clear();
                setRows(std::move(*rows), keepsTop);
                polish();
            });
        },
        [progress = m_breaking] { progress->cancel(); });
}

void QXTextCanvas::stopBreaking()
{
    if (m_breaking)
        m_breaking->cancel();
    m_breaking.reset();
}

/// Shows other rows of the text. With @p keepsTop the row at the top stays there.
void QXTextCanvas::setRows(QXTextRows rows, bool keepsTop)
{
    const int top = rowAtOffset(m_scrollOffset);
    const qsizetype topPosition = m_rows.start(top);
    m_hasRows = true;
    m_rows = std::move(rows);
    setContentHeight(m_rows.count() * m_rowHeight);
    if (const int moved = m_rows.rowAt(topPosition) - top; keepsTop && m_scrollOffset > 0 && moved != 0)
        Q_EMIT topRowMoved(moved * m_rowHeight);
}

void QXTextCanvas::setContentHeight(qreal height)
{
    if (std::exchange(m_contentHeight, height) != height)
        Q_EMIT contentHeightChanged();
}

void QXTextCanvas::followEdit(qsizetype position, qsizetype removed, qsizetype added)
{
    clearLayouts();
    const bool areBroken = m_columns > 0;
    if (areBroken && !m_breaking && added <= longestSynchronousText) {
        m_rows.follow(m_document->content().utf16(), position, removed, added);
    } else {
        forgetText();
        if (areBroken)
            breakRows();
    }
    // This happens before any signal, so that no listener asks for a position beyond the end.
    const qsizetype length = m_document->length();
    if (m_selection.end() > length) {
        QXTextSelection kept;
        kept.set(qMin(m_selection.anchor(), length), qMin(m_selection.cursor(), length));
        setSelection(kept);
    }
    if (areBroken)
        setContentHeight(m_rows.count() * m_rowHeight);
}

int QXTextCanvas::rowAtOffset(qreal offset) const
{
    return int(qBound<qreal>(0, std::floor(offset / m_rowHeight), m_rows.count() - 1));
}

QString QXTextCanvas::rowText(int row) const
{
    if (!m_document)
        return {};
    const qsizetype start = m_rows.start(row);
    QString text = m_document->text(start, m_rows.end(row) - start);
    if (text.endsWith(u'\n'))
        text.chop(1);
    if (text.endsWith(u'\r'))
        text.chop(1);
    return text;
}

void QXTextCanvas::clearLayouts()
{
    m_layouts.clear();
    polish();
}

const QXTextRowLayout &QXTextCanvas::layoutOf(int row) const
{
    if (m_layouts.size() > maximumLayouts)
        m_layouts.clear();
    std::unique_ptr<QXTextRowLayout> &layout = m_layouts[row];
    if (!layout)
        layout = std::make_unique<QXTextRowLayout>(rowText(row), m_shownFont, width(),
                                                   QXTextCell::tabColumns * m_columnWidth);
    return *layout;
}

qsizetype QXTextCanvas::positionAt(QPointF point) const
{
    const qreal offset = point.y() + m_scrollOffset;
    if (offset < 0)
        return 0;
    if (offset >= m_rows.count() * m_rowHeight)
        return m_rows.end(m_rows.count() - 1);
    const int row = rowAtOffset(offset);
    if (m_document && m_document->isHexadecimal())
        return qMin(byteAt(row, point.x()) * QXTextContent::unitsPerByte, m_document->length());
    return m_rows.start(row) + layoutOf(row).positionAt(point.x());
}

QRectF QXTextCanvas::caretAt(qsizetype position, int further) const
{
    const int row = m_rows.rowAt(position);
    const qreal x = layoutOf(row).xAt(int(position - m_rows.start(row)) + further);
    return {qBound<qreal>(0, textLeft() + x, qMax<qreal>(0, width() - caretWidth)), row * m_rowHeight,
            caretWidth, m_rowHeight};
}

QString QXTextCanvas::rowTextAt(qreal y) const
{
    return layoutOf(rowAtOffset(y + m_scrollOffset)).text();
}
