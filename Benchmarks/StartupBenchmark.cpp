// What the inspector adds to the start and the memory of hosts, and its size. The same hosts run with it and
// without it, as processes of their own, by turns.
#include "Contest.h"
#include "Report.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QProcess>
#include <QtCore/QTemporaryDir>

namespace {

constexpr int pairs = 11;

/// Runs a host and returns the numbers of each line that it prints.
std::vector<std::vector<double>> run(const QString &name, const QStringList &arguments = {})
{
    QProcess host;
    host.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    host.start(QDir(QCoreApplication::applicationDirPath()).filePath(name), arguments);
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
    explicit Pairs(const QString &host)
    {
        run(host + QStringLiteral("Alone")); // the files are in memory afterwards
        run(host);
        for (int i = 0; i < pairs; ++i) {
            m_alone.push_back(run(host + QStringLiteral("Alone")).at(0));
            m_ours.push_back(run(host).at(0));
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
    const char *time;
    const char *processor;
    const char *resident;
    const char *written;
    const char *place;
};

constexpr Host hosts[] = {
    {"StartupWindowHost", "Qt Quick host, start: added until its first frame",
     "Qt Quick host, start: added time of processors",
     "Qt Quick host with the button: added memory, resident",
     "Qt Quick host with the button: added memory, written", "whole process, software renderer"},
    {"StartupWidgetHost", "widget host, start: added until its first frame",
     "widget host, start: added time of processors", "widget host with the button: added memory, resident",
     "widget host with the button: added memory, written", "whole process, raster"},
    {"StartupConsoleHost", "console host, start: added until its loop runs",
     "console host, start: added time of processors", "console host: added memory, resident",
     "console host: added memory, written", "whole process"},
};

void reportHost(const Host &host)
{
    const Pairs runs(QString::fromUtf8(host.program));
    const auto row = [&](const char *metric, const char *unit, size_t column, double divisor) {
        const Cost cost = runs.cost(column);
        return Report::Row{.metric = metric,
                           .place = host.place,
                           .unit = unit,
                           .ours = cost.added / divisor,
                           .peer = Report::Other{"the host alone", cost.alone / divisor}};
    };
    const auto add = [](Report::Row row, const char *goal, double value) {
        row.goal = goal;
        row.goalValue = value;
        Report::add(row);
    };
    add(row(host.time, "ms", 0, 1), "8 ms", 8);
    Report::add(row(host.processor, "ms", 3, 1));
    add(row(host.resident, "MB", 1, 1024), "3 MB", 3);
    add(row(host.written, "MB", 2, 1024), "3 MB", 3);
}

void reportOpening()
{
    std::vector<double> times;
    for (int i = 0; i < pairs; ++i)
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
