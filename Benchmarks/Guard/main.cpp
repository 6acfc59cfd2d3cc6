// Runs a hot path under callgrind, which counts its instructions, and compares what was counted with what is
// recorded.
//   Guard list
//   Guard run NAME [PERCENT]                 prints the system
//   Guard compare COUNTS SYSTEM BASELINE     prints a table, and fails if there are too many instructions
//   Guard record COUNTS SYSTEM BASELINE      writes the baseline

#include "Benchmarks/Guard/Baseline.h"
#include "Benchmarks/Guard/HotPaths.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QJsonDocument>

#include <cstdio>
#include <cstdlib>

#include <valgrind/callgrind.h>

using namespace Qt::StringLiterals;

namespace {

int complain(const QString &what)
{
    std::fputs(qPrintable(what + u'\n'), stderr);
    return EXIT_FAILURE;
}

int list()
{
    for (const HotPath &path : hotPaths())
        std::puts(path.name);
    return EXIT_SUCCESS;
}

int run(const QString &name, int amount)
{
    for (const HotPath &path : hotPaths()) {
        if (name != QString::fromUtf8(path.name))
            continue;
        const std::function<void()> work = path.prepare(amount);
        // All threads are counted from here. What waits executes nothing.
        CALLGRIND_START_INSTRUMENTATION;
        work();
        CALLGRIND_STOP_INSTRUMENTATION;
        std::puts(QJsonDocument(Baseline::thisSystem()).toJson(QJsonDocument::Compact).constData());
        return EXIT_SUCCESS;
    }
    return complain(u"There is no path \"%1\""_s.arg(name));
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

QJsonObject object(const QString &path)
{
    return QJsonDocument::fromJson(contents(path)).object();
}

int record(const QJsonObject &counts, const QJsonObject &system, const QString &path)
{
    QFile file(path);
    const QByteArray text =
        QJsonDocument(QJsonObject{{u"instructions"_s, counts}, {u"system"_s, system}}).toJson();
    if (!file.open(QFile::WriteOnly) || file.write(text) != text.size() || !file.flush())
        return complain(u"Cannot write %1: %2"_s.arg(path, file.errorString()));
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    const QString command = arguments.value(1);
    if (command == u"list")
        return list();
    if (command == u"run")
        return run(arguments.value(2), arguments.value(3, u"100"_s).toInt());
    if (arguments.size() != 5)
        return complain(u"usage: Guard list | run NAME [PERCENT] | compare|record COUNTS SYSTEM BASELINE"_s);

    const QJsonObject counts = Baseline::readCounts(contents(arguments.at(2)));
    const QJsonObject system = object(arguments.at(3));
    if (counts.isEmpty() || system.isEmpty())
        return complain(u"Nothing was counted"_s);
    if (command == u"record")
        return record(counts, system, arguments.at(4));
    const Baseline::Verdict verdict = Baseline::compare(counts, system, object(arguments.at(4)));
    std::fputs(verdict.text.toUtf8().constData(), stdout);
    return verdict.isGood ? EXIT_SUCCESS : EXIT_FAILURE;
}
