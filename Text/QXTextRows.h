#pragma once

#include <QtCore/QStringView>

#include <vector>

/// Where a text is broken into rows: at its line ends, and anywhere as soon as the columns are used up. A
/// value; any thread.
///
/// A line ends at a line feed, at a carriage return, or at both. A row includes the line end that it has; a
/// text that ends with one has an empty row at last, and an empty text has one row. Positions count UTF-16
/// units. A character is torn apart by a row's end only when it does not fit on a row of its own.
class QXTextRows
{
public:
    /// Breaks a text. Takes a time in proportion to it.
    void breakText(QStringView text, int columns);
    /// Makes rows of @p rowLength units out of something that has no line ends.
    void breakEvenly(qsizetype length, qsizetype rowLength);
    /// Follows an edit that put @p added units in the place of @p removed ones at @p position. Breaks anew
    /// from there to where rows begin as before, at the latest to the end of the line. @p text is what came
    /// of it.
    void follow(QStringView text, qsizetype position, qsizetype removed, qsizetype added);

    [[nodiscard]] int count() const;
    [[nodiscard]] qsizetype start(int row) const;
    /// Where the next row begins, or the text ends.
    [[nodiscard]] qsizetype end(int row) const;
    /// The row in which the unit at @p position is; the last one for a position at the end.
    [[nodiscard]] int rowAt(qsizetype position) const;

private:
    qsizetype m_length = 0;
    int m_columns = 1;
    /// 0 for a text.
    qsizetype m_rowLength = 0;
    std::vector<quint32> m_starts{0};
};
