#include "Benchmarks/Table.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QLocale>

#include <algorithm>
#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array columns{27, 18, 12, 22, 19, 12};
using Cells = std::array<QString, columns.size()>;

constexpr QStringView explanation =
    u"ours   the median of alternating rounds, on this machine\n"
    "peer   another way to do the same work, in the same run. 2 × means that ours takes half of its time or\n"
    "       memory, or has twice its rate; below 1 × ours is worse\n"
    "limit  what no code can beat, in the same run. Of 40 % ours takes 2.5 times as long; 100 % would reach "
    "it\n"
    "goal   what ours aims at, and whether this run met it, where the goal has a number\n\n";

/// With three digits that say something, and with commas between thousands.
QString number(double value)
{
    const double size = std::abs(value);
    const int decimals = size >= 100 || size == 0 ? 0 : size >= 10 ? 1 : size >= 1 ? 2 : 3;
    QLocale locale = QLocale::c();
    locale.setNumberOptions({});
    return locale.toString(value, 'f', decimals);
}

QString amount(const QJsonValue &value, const QString &unit)
{
    return value.isDouble() ? number(value.toDouble()) + u' ' + unit : u"no value"_s;
}

QString described(const QJsonObject &other, const QString &unit)
{
    return other[u"name"_s].toString() + u": "_s + amount(other[u"value"_s], unit);
}

QString times(const QJsonObject &peer)
{
    const QJsonValue advantage = peer[u"advantage"_s];
    return advantage.isDouble() ? number(advantage.toDouble()) + u" ×"_s : QString();
}

QString part(const QJsonObject &limit)
{
    const QJsonValue advantage = limit[u"advantage"_s];
    return advantage.isDouble() ? number(100 * advantage.toDouble()) + u" %"_s : QString();
}

/// Breaks a text between words, and words that are longer than a line.
QStringList wrapped(QStringView text, int width)
{
    QStringList lines;
    while (text.size() > width) {
        const qsizetype space = text.left(width + 1).lastIndexOf(u' ');
        lines += text.left(space > 0 ? space : width).toString();
        text = text.mid(space > 0 ? space + 1 : width);
    }
    return lines += text.toString();
}

void addLines(QString &table, const Cells &cells)
{
    std::array<QStringList, columns.size()> lines;
    qsizetype height = 1;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        lines[i] = wrapped(cells[i], columns[i]);
        height = std::max(height, lines[i].size());
    }
    for (qsizetype line = 0; line < height; ++line) {
        QString row;
        for (std::size_t i = 0; i < cells.size(); ++i)
            row += lines[i].value(line).leftJustified(columns[i]) + u' ';
        table += row.trimmed().isEmpty() ? QString() : u"  "_s + row;
        while (table.endsWith(u' '))
            table.chop(1);
        table += u'\n';
    }
}

Cells cellsOf(const QJsonObject &row)
{
    const QString unit = row[u"unit"_s].toString();
    Cells cells{row[u"metric"_s].toString(), row[u"place"_s].toString(), amount(row[u"ours"_s], unit)};
    if (const QJsonObject peer = row[u"peer"_s].toObject(); !peer.isEmpty())
        cells[3] = (times(peer) + u' ' + described(peer, unit)).trimmed();
    if (const QJsonObject limit = row[u"limit"_s].toObject(); !limit.isEmpty())
        cells[4] = (part(limit).replace(u"%"_s, u"% of"_s) + u' ' + described(limit, unit)).trimmed();
    cells[5] = row[u"goal"_s].toString();
    if (row.contains(u"met"_s))
        cells[5] +=
            (cells[5].isEmpty() ? u""_s : u": "_s) + (row[u"met"_s].toBool() ? u"met"_s : u"missed"_s);
    return cells;
}

} // namespace

QJsonArray Table::read(const QString &program, const QByteArray &lines, QStringList &complaints)
{
    QJsonArray rows;
    for (const QByteArray &line : lines.split('\n')) {
        if (line.trimmed().isEmpty())
            continue;
        QJsonObject row = QJsonDocument::fromJson(line).object();
        const QString metric = row[u"metric"_s].toString();
        if (metric.isEmpty()) {
            complaints += program + u" wrote a line that is no row: "_s + QString::fromUtf8(line.left(80));
            continue;
        }
        const auto check = [&](const QString &what, const QJsonValue &value) {
            if (!value.isDouble())
                complaints += program + u": \""_s + metric + u"\" has no value of "_s + what;
        };
        check(u"ours"_s, row[u"ours"_s]);
        // Nothing is a number of times better than zero.
        const QString compared = row[u"ours"_s].toDouble(1) > 0 ? u"advantage"_s : u"value"_s;
        for (const QString &other : {u"peer"_s, u"limit"_s}) {
            if (row.contains(other))
                check(row[other][u"name"_s].toString(), row[other][compared]);
        }
        row.insert(u"program"_s, program);
        rows.append(row);
    }
    if (rows.isEmpty())
        complaints += program + u" measured nothing"_s;
    return rows;
}

QString Table::text(const QJsonArray &rows)
{
    QString table = explanation.toString();
    addLines(table, {u"metric"_s, u"measured"_s, u"ours"_s, u"times better than peer"_s, u"part of limit"_s,
                     u"goal"_s});
    QString program;
    for (const auto &value : rows) {
        const QJsonObject row = value.toObject();
        if (const QString name = row[u"program"_s].toString(); name != program)
            table += u'\n' + (program = name) + u'\n';
        addLines(table, cellsOf(row));
    }
    return table;
}

QString Table::markdown(const QJsonArray &rows)
{
    QString table = u"| | ours | peer | times better |\n|---|---|---|---|\n"_s;
    for (const auto &value : rows) {
        const QJsonObject row = value.toObject();
        if (!row.contains(u"goal"_s) && !row.contains(u"met"_s))
            continue;
        const QString unit = row[u"unit"_s].toString();
        const QJsonObject peer = row[u"peer"_s].toObject();
        const QJsonObject limit = row[u"limit"_s].toObject();
        QStringList cells{row[u"metric"_s].toString(), amount(row[u"ours"_s], unit), QString(), QString()};
        if (!peer.isEmpty()) {
            cells[2] = described(peer, unit);
            cells[3] = times(peer);
        } else if (!limit.isEmpty()) {
            cells[2] = u"the limit, "_s + described(limit, unit);
            cells[3] = part(limit);
        }
        table += u'|';
        for (QString &cell : cells)
            table += (cell.isEmpty() ? u" |"_s : u' ' + cell.replace(u"|"_s, u"\\|"_s) + u" |"_s);
        table += u'\n';
    }
    return table;
}
