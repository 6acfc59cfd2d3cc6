#pragma once

#include <QtCore/QLatin1StringView>
#include <QtCore/QStringView>

#include <vector>

class QXTaskProgress;

/// The rows of a text. A row ends at a line end, or at any character when its columns are full. A value; any
/// thread.
///
/// A line ends at a line feed, at a carriage return, or at both. A row includes its line end; a text that
/// ends with one has an empty last row, and an empty text has one row. Positions count UTF-16 units. The end
/// of a row splits a character only when the character does not fit on a row of its own.
class QXTextRows
{
public:
    /// Breaks a text into rows. Takes linear time. If @p progress is cancelled, the rest of the text is one
    /// row.
    void breakText(QStringView text, int columns, const QXTaskProgress *progress = nullptr);
    void breakText(QLatin1StringView text, int columns, const QXTaskProgress *progress = nullptr);
    /// Makes rows of @p rowLength units for a text without line ends.
    void breakEvenly(qsizetype length, qsizetype rowLength);
    /// Updates the rows after an edit that replaced @p removed units at @p position by @p added units. Breaks
    /// rows only up to the first row that begins where it did before, at most to the end of the line. @p text
    /// is the text after the edit.
    void follow(QStringView text, qsizetype position, qsizetype removed, qsizetype added);

    [[nodiscard]] int count() const;
    [[nodiscard]] qsizetype start(int row) const;
    /// The start of the next row, or the end of the text.
    [[nodiscard]] qsizetype end(int row) const;
    /// The row of the unit at @p position; the last row for a position at the end.
    [[nodiscard]] int rowAt(qsizetype position) const;
    /// The number of rows that breakText() and follow() have broken so far: a measure of their work.
    [[nodiscard]] qsizetype brokenCount() const noexcept { return m_brokenCount; }

private:
    template<typename View>
    void breakView(View text, int columns, const QXTaskProgress *progress);

    qsizetype m_length = 0;
    int m_columns = 1;
    /// The units per row after breakEvenly(); 0 after breakText().
    qsizetype m_rowLength = 0;
    std::vector<quint32> m_starts{0};
    qsizetype m_brokenCount = 0;
};
