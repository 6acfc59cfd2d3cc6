// Prints the rows that benchmark programs have written as one table: PrintTable [OPTION...] PROGRAM.rows...

#include "Benchmarks/Table.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QThread>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

QString processorModel()
{
    for (const QByteArray &line : contents(u"/proc/cpuinfo"_s).split('\n')) {
        if (line.startsWith("model name"))
            return QString::fromUtf8(line.mid(line.indexOf(':') + 1).trimmed());
    }
    return QSysInfo::currentCpuArchitecture();
}

QString loadAverage()
{
    return QString::fromLatin1(contents(u"/proc/loadavg"_s).split(' ').mid(0, 3).join(' '));
}

QString compiler()
{
#ifdef __clang__
    return u"clang " __clang_version__ ""_s;
#else
    return u"g++ " __VERSION__ ""_s;
#endif
}

void print(const QString &text, FILE *to = stdout)
{
    std::fputs(text.toUtf8().constData(), to);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption asMarkdown(u"markdown"_s, u"Print rows of a table in Markdown."_s);
    const QCommandLineOption json(u"json"_s, u"Write the rows and facts of this machine."_s, u"file"_s);
    const QCommandLineOption commit(u"commit"_s, u"The commit that was measured."_s, u"name"_s, u"unknown"_s);
    const QCommandLineOption load(u"load"_s, u"The load averages before the run."_s, u"three"_s,
                                  loadAverage());
    parser.addOptions({asMarkdown, json, commit, load});
    parser.addHelpOption();
    parser.addPositionalArgument(u"rows"_s, u"Files of rows, with the names of their programs."_s);
    parser.process(application);

    QStringList complaints;
    QJsonArray rows;
    for (const QString &path : parser.positionalArguments()) {
        for (const auto &row : Table::read(QFileInfo(path).completeBaseName(), contents(path), complaints))
            rows.append(row);
    }
    const QJsonObject machine{{u"processor"_s, processorModel()},
                              {u"processors"_s, QThread::idealThreadCount()},
                              {u"loadBefore"_s, parser.value(load)},
                              {u"loadAfter"_s, loadAverage()},
                              {u"system"_s, QSysInfo::prettyProductName()},
                              {u"qt"_s, QString::fromLatin1(qVersion())},
                              {u"compiler"_s, compiler()},
                              {u"build"_s, QStringLiteral(QUORVIX_BUILD_TYPE)},
                              {u"commit"_s, parser.value(commit)},
                              {u"date"_s, QDateTime::currentDateTimeUtc().toString(Qt::ISODate)}};
    const auto fact = [&](const QString &name) {
        return machine[name].toVariant().toString();
    };
    print(fact(u"processor"_s) + u", "_s + fact(u"processors"_s) + u" of them, load "_s +
          fact(u"loadBefore"_s) + u" before and "_s + fact(u"loadAfter"_s) + u" after; "_s +
          fact(u"system"_s) + u"\nQt "_s + fact(u"qt"_s) + u", "_s + fact(u"compiler"_s) + u", "_s +
          fact(u"build"_s) + u"; commit "_s + fact(u"commit"_s) + u", "_s + fact(u"date"_s) + u"\n\n"_s);
    print(parser.isSet(asMarkdown) ? Table::markdown(rows) : Table::text(rows));

    if (parser.isSet(json)) {
        QFile file(parser.value(json));
        const QByteArray text =
            QJsonDocument(QJsonObject{{u"machine"_s, machine}, {u"rows"_s, rows}}).toJson();
        if (!file.open(QFile::WriteOnly) || file.write(text) != text.size() || !file.flush())
            complaints += u"Cannot write "_s + file.fileName() + u": "_s + file.errorString();
    }
    std::fflush(stdout);
    for (const QString &complaint : complaints)
        print(complaint + u'\n', stderr);
    return complaints.isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE;
}
