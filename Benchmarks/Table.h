#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QJsonArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// The table of all benchmarks, made of the rows that Report::add() has written.
namespace Table {

/// Reads rows, each a line of JSON, and adds the name of the program that wrote them. A line that is no row,
/// and a value that is not a number, are added to @p complaints; the other rows and values are kept.
[[nodiscard]] QJsonArray read(const QString &program, const QByteArray &lines, QStringList &complaints);

/// The table for a terminal of 120 columns, grouped by program, with an explanation above it.
[[nodiscard]] QString text(const QJsonArray &rows);

/// The rows that have a goal, as a table in Markdown: metric, ours, peer, how many times better; of a row
/// without a peer the limit, and the part of it.
[[nodiscard]] QString markdown(const QJsonArray &rows);

} // namespace Table
