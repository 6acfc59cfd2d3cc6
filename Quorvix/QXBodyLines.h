#pragma once

#include "Quorvix/QuorvixGlobal.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

/// A body as lines to be drawn one by one: its text when it is UTF-8, else its bytes in hexadecimal. A value.
///
/// A long line is broken into pieces, so that no single one takes long to lay out; nothing is left out.
class QUORVIX_INTERNAL_EXPORT QXBodyLines
{
public:
    explicit QXBodyLines(const QByteArray &body);

    [[nodiscard]] int count() const;
    /// The line at @p index, without its line end.
    [[nodiscard]] QString line(int index) const;

private:
    void breakText();

    /// Empty when the body is no text.
    QString m_text;
    /// Where the lines of the text begin, and where the last one ends.
    QList<qsizetype> m_starts;
    /// Shared with the trace; kept only when it is no text.
    QByteArray m_bytes;
};
