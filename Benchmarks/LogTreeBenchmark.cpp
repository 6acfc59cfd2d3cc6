// Measures what it costs to open and close a small node among 600,000 visible rows; for comparison, to build
// the list of rows again and reset the model.

#include "Quorvix/QXLogTreeViewModel.h"

#include "Benchmarks/Contest.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

using Contest::require;

namespace {

constexpr int nodeCount = 600 * 1000;
constexpr int rowsPerRecord = 12;
constexpr int rounds = 101;

/// An array of records, each with a list of ten values.
QString makeText()
{
    QString text = QStringLiteral("[");
    for (int i = 0; i < nodeCount / rowsPerRecord; ++i) {
        text += i == 0 ? QString() : QStringLiteral(",");
        text += QStringLiteral(R"({"list":[0,1,2,3,4,5,6,7,8,%1]})").arg(i);
    }
    return text + QLatin1Char(']');
}

/// The simple way: all rows in one array, which is built again whenever a node is toggled.
class PlainModel final : public QAbstractListModel
{
public:
    explicit PlainModel(QXApiTreeField &root) : m_root(root) { flatten(); }

    [[nodiscard]] int rowCount(const QModelIndex & = {}) const override { return int(m_rows.size()); }
    [[nodiscard]] QVariant data(const QModelIndex &, int) const override { return {}; }

    void toggle(int row)
    {
        beginResetModel();
        QXApiTreeField &field = *m_rows[size_t(row)];
        field.setExpanded(!field.isExpanded());
        flatten();
        endResetModel();
    }

private:
    void flatten()
    {
        m_rows.clear();
        visit(m_root);
    }

    void visit(QXApiTreeField &field)
    {
        m_rows.push_back(&field);
        if (!field.isExpanded())
            return;
        for (QXApiTreeField &child : field.children())
            visit(child);
    }

    QXApiTreeField &m_root;
    std::vector<QXApiTreeField *> m_rows;
};

double medianMicroseconds(const std::function<void()> &work)
{
    std::vector<double> times(rounds);
    std::generate(times.begin(), times.end(), [&] { return 1e3 * Contest::milliseconds(work); });
    return Contest::median(std::move(times));
}

void expandAll(QXLogTreeViewModel &model)
{
    for (int row = 0; row < model.rowCount(); ++row)
        model.toggle(row);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QString text = makeText();
    QXLogTreeViewModel ours(text);
    expandAll(ours);
    QXLogTreeViewModel other(text);
    expandAll(other);
    PlainModel plain(*other.rootFields().constFirst());
    require(ours.rowCount() == nodeCount + 1 && plain.rowCount() == ours.rowCount(), "not all is shown");

    std::printf("A node with 10 children among %d shown rows, toggled; median of %d turns\n\n",
                ours.rowCount(), rounds);
    std::printf("%-10s %18s %18s %10s\n", "where", "rows put in", "model reset", "ratio");
    const int records = nodeCount / rowsPerRecord;
    for (const auto &[where, record] :
         {std::pair("the top", 0), std::pair("middle", records / 2), std::pair("the end", records - 1)}) {
        const int row = 1 + record * rowsPerRecord + 1;
        require(ours.field(row).children().size() == 10, "no node with 10 children");
        const double peer = medianMicroseconds([&, row = row] { plain.toggle(row); });
        const double own = medianMicroseconds([&, row = row] { ours.toggle(row); });
        require(ours.rowCount() == nodeCount - 9 && plain.rowCount() == nodeCount - 9, "not toggled");
        plain.toggle(row);
        ours.toggle(row);
        std::printf("%-10s %15.1f us %15.1f us %9.0fx\n", where, own, peer, peer / own);
    }

    const double parse = medianMicroseconds([&] { QXLogTreeViewModel{text}; });
    const double whole = medianMicroseconds([&] { ours.toggle(0); });
    std::printf("\nOpening the text of %.1f MB: %.1f ms. All %d rows opened or closed at once: %.1f ms.\n",
                double(text.size()) / 1e6, parse / 1e3, nodeCount, whole / 1e3);
}
