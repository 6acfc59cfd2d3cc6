// What the inspector adds to the start and the memory of hosts, and its size. The same hosts run with it and
// without it, as processes of their own, by turns.
#include "Benchmarks/Contest.h"
#include "Benchmarks/Cost/Footprint.h"
#include "Benchmarks/Report.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

namespace {

/// A start is short and varies; what memory is left in the end varies little.
constexpr int startPairs = 15;
constexpr int memoryPairs = 5;

/// Runs a host and returns the numbers of each line that it prints.
std::vector<std::vector<double>> run(const QString &name, const QStringList &arguments = {})
{
    QProcess host;
    host.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    const QString path = QDir(QCoreApplication::applicationDirPath()).filePath(name);
    qputenv(Footprint::startVariable, QByteArray::number(Footprint::now()));
    host.start(path, arguments);
    Contest::require(host.waitForFinished() && host.exitCode() == 0, qPrintable(name));
    std::vector<std::vector<double>> lines;
    const QList<QByteArray> texts = host.readAllStandardOutput().trimmed().split('\n');
    for (const QByteArray &text : texts) {
        lines.emplace_back();
        const QList<QByteArray> words = text.split(' ');
        for (const QByteArray &word : words) {
            bool isNumber = false;
            lines.back().push_back(word.toDouble(&isNumber));
            Contest::require(isNumber, "a number of a host");
        }
    }
    return lines;
}

/// The medians of a number that hosts print: of the host alone, and of the difference within each pair.
struct Cost
{
    double alone;
    double added;
};

class Pairs
{
public:
    Pairs(const QString &host, const QStringList &arguments, int count)
    {
        const QString alone = host + QStringLiteral("Alone");
        run(alone, arguments); // the files are in memory afterwards
        run(host, arguments);
        for (int i = 0; i < count; ++i) {
            m_alone.push_back(run(alone, arguments).at(0));
            m_ours.push_back(run(host, arguments).at(0));
        }
    }

    [[nodiscard]] Cost cost(size_t column) const
    {
        std::vector<double> alone;
        std::vector<double> added;
        for (size_t i = 0; i < m_alone.size(); ++i) {
            alone.push_back(m_alone[i].at(column));
            added.push_back(m_ours[i].at(column) - m_alone[i].at(column));
        }
        Contest::require(Contest::median(alone) > 0, "the host alone");
        return {Contest::median(alone), Contest::median(added)};
    }

private:
    std::vector<std::vector<double>> m_alone;
    std::vector<std::vector<double>> m_ours;
};

struct Host
{
    const char *program;
    const char *name;
    /// When its start is over.
    const char *ready;
    const char *place;
};

constexpr Host hosts[] = {
    {"StartupWindowHost", "Qt Quick host", "its first frame", "whole process, software renderer"},
    {"StartupWidgetHost", "widget host", "its first frame", "whole process, raster"},
    {"StartupConsoleHost", "console host", "its loop runs", "whole process"},
};

/// What is added has no peer: the host alone costs nothing more than itself. How much that is stands beside
/// it.
void reportHost(const Host &host)
{
    const QString program = QString::fromUtf8(host.program);
    const auto add = [&](const Cost &cost, const QByteArray &what, const char *unit, double divisor,
                         const char *goal = nullptr, std::optional<double> goalValue = {}) {
        const QByteArray metric = host.name + what;
        const QByteArray place = QByteArray(host.place) +
                                 "; the host alone: " + QByteArray::number(cost.alone / divisor, 'f', 1) +
                                 ' ' + unit;
        Report::add({.metric = metric.constData(),
                     .place = place.constData(),
                     .unit = unit,
                     .ours = cost.added / divisor,
                     .goal = goal,
                     .goalValue = goalValue});
    };
    const Pairs starts(program, {QStringLiteral("start")}, startPairs);
    add(starts.cost(0), ", start: added from its launch until " + QByteArray(host.ready), "ms", 1, "8 ms", 8);
    add(starts.cost(3), ", start: added time of processors", "ms", 1);
    const Pairs memory(program, {}, memoryPairs);
    add(memory.cost(1), ": added memory, resident", "MB", 1024, "3 MB", 3);
    add(memory.cost(2), ": added memory, written", "MB", 1024, "3 MB", 3);
}

void reportOpening()
{
    std::vector<double> times;
    for (int i = 0; i < Contest::rounds; ++i)
        times.push_back(run(QStringLiteral("StartupWindowHost"), {QStringLiteral("open")}).at(1).at(0));
    Report::add({.metric = "list opens for the first time: click to first frame",
                 .place = "software renderer, engine and screens made by the click",
                 .unit = "ms",
                 .ours = Contest::median(times),
                 .goal = "100 ms",
                 .goalValue = 100});
}

#ifdef QUORVIX_LIBRARIES
void reportSize()
{
    const QTemporaryDir folder;
    double bytes = 0;
    const QStringList libraries = QStringLiteral(QUORVIX_LIBRARIES).split(u'|');
    for (const QString &library : libraries) {
        const QString stripped = folder.filePath(QFileInfo(library).fileName());
        const int result =
            QProcess::execute(QStringLiteral("strip"), {QStringLiteral("-o"), stripped, library});
        Contest::require(result == 0, "the size of a stripped library");
        bytes += double(QFileInfo(stripped).size());
    }
    Report::add({.metric = "core and screens, shared libraries, stripped",
                 .place = "files",
                 .unit = "KB",
                 .ours = bytes / 1024,
                 .goal = "2,048 KB",
                 .goalValue = 2048});
}
#endif

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    qputenv("QT_QUICK_BACKEND", "software");
    for (const Host &host : hosts)
        reportHost(host);
    reportOpening();
#ifdef QUORVIX_LIBRARIES
    reportSize();
#endif
    return 0;
}
