// Measures what it costs to open and close a small node among 600,000 visible rows; for comparison, to build
// the list of rows again and reset the model. Then how long a large text keeps the main thread at most.

#include "Quorvix/QXLogTreeViewModel.h"

#include "Benchmarks/Contest.h"
#include "Benchmarks/Report.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QThread>

#include <algorithm>
#include <functional>
#include <memory>
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

/// Runs the event loop until a task is done. Returns the longest turn in milliseconds.
double longestTurnUntil(const std::function<bool()> &isDone)
{
    double longest = 0;
    while (!isDone()) {
        longest = std::max(longest, Contest::milliseconds([] { QCoreApplication::processEvents(); }));
        QThread::usleep(200);
    }
    return longest;
}

void expandAll(QXLogTreeViewModel &model)
{
    longestTurnUntil([&] { return model.rowCount() > 0; });
    for (int row = 0; row < model.rowCount(); ++row)
        model.toggle(row);
}

void compareToggles()
{
    const QString text = makeText();
    QXLogTreeViewModel ours(text);
    expandAll(ours);
    QXLogTreeViewModel other(text);
    expandAll(other);
    PlainModel plain(*other.rootFields().constFirst());
    require(ours.rowCount() == nodeCount + 1 && plain.rowCount() == ours.rowCount(), "not all is shown");

    const int records = nodeCount / rowsPerRecord;
    for (const auto &[metric, record] :
         {std::pair("10 of 600,000 rows opened or closed, at the top", 0),
          std::pair("the same in the middle", records / 2), std::pair("the same at the end", records - 1)}) {
        const int row = 1 + record * rowsPerRecord + 1;
        require(ours.field(row).children().size() == 10, "no node with 10 children");
        const auto times = Contest::medians({{"ours",
                                              [&, row = row] {
                                                  ours.toggle(row);
                                              }},
                                             {"model reset",
                                              [&, row = row] {
                                                  plain.toggle(row);
                                              }}},
                                            rounds);
        require(ours.rowCount() == nodeCount - 9 && plain.rowCount() == nodeCount - 9, "not toggled");
        plain.toggle(row);
        ours.toggle(row);
        Report::add({metric, "main thread, no screen", "us", 1e3 * times[0],
                     Report::Other{"model reset", 1e3 * times[1]}});
    }
    Report::add({"600,000 rows opened or closed at once", "main thread, no screen", "us",
                 1e3 * Contest::medians({{"ours",
                                          [&] {
                                              ours.toggle(0);
                                          }}},
                                        rounds)
                           .front()});
}

/// An object of 340,000 objects, each of which becomes a type.
QString makeMap()
{
    QByteArray text;
    for (int i = 0; i < 340'000; ++i) {
        const QByteArray number = QByteArray::number(i);
        text += (i == 0 ? "{\"user-" : ",\"user-") + number + "\":{\"id\":" + number + '}';
    }
    return QString::fromLatin1(text + '}');
}

/// The longest time for which the main thread does nothing else while a large text is opened, expanded,
/// shared and closed, in milliseconds.
double longestStretch(const QString &text)
{
    double longest = 0;
    const auto note = [&](const std::function<void()> &step) {
        longest = std::max(longest, Contest::milliseconds(step));
    };
    const auto wait = [&](const std::function<bool()> &isDone) {
        longest = std::max(longest, longestTurnUntil(isDone));
    };
    std::unique_ptr<QXLogTreeViewModel> model;
    note([&] { model = std::make_unique<QXLogTreeViewModel>(text); });
    wait([&] { return !model->task()->isRunning(); });
    note([&] { model->toggle(0); });
    require(model->rowCount() > 340'000, "not all is shown");
    note([&] { model->shareSwiftModel(QStringLiteral("/users")); });
    wait([&] { return !model->task()->isRunning(); });
    require(model->shareItem() &&
                model->shareItem()->activityItems.constFirst().toString().size() > text.size(),
            "no model");
    note([&] { model->setProperty("shareItem", QVariant()); });
    note([&] { model.reset(); });
    // What was shown is freed a moment later, also that of the script engine.
    QElapsedTimer freeing;
    freeing.start();
    wait([&] { return freeing.hasExpired(700); });
    return longest;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    compareToggles();
    const QString map = makeMap();
    std::vector<double> stretches(Contest::rounds);
    std::generate(stretches.begin(), stretches.end(), [&] { return longestStretch(map); });
    Report::add({.metric = "longest stretch: 10 MB as a tree, opened, its models shared",
                 .place = "main thread, no screen",
                 .unit = "ms",
                 .ours = Contest::median(std::move(stretches)),
                 .goal = "16 ms",
                 .goalValue = 16});
}
