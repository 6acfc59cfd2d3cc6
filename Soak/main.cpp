// Loads the inspector for a long time; `./run soak` calls it.

#include "Soak/Soak.h"
#include "Soak/SoakServer.h"

#include "Quorvix/QuorvixClient.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtGui/QGuiApplication>

#include <cstdio>
#include <cstring>

namespace {

struct Options
{
    double minutes = 1;
    quint64 seed = 0;
};

Options readOptions(const QCoreApplication &application)
{
    const QCommandLineOption minutes(QStringLiteral("minutes"), QStringLiteral("How long to run."),
                                     QStringLiteral("minutes"), QStringLiteral("1"));
    const QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("For the random numbers."),
                                  QStringLiteral("seed"));
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({minutes, seed});
    parser.process(application);
    const quint64 another = quint64(QDateTime::currentSecsSinceEpoch() % 1'000'000);
    return {parser.value(minutes).toDouble(),
            parser.isSet(seed) ? parser.value(seed).toULongLong() : another};
}

/// Exports and settings of the run go to a folder that is removed with it.
void moveFolders()
{
    static const QTemporaryDir folder;
    for (const char *const variable : {"HOME", "TMPDIR", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        qputenv(variable, QFile::encodeName(folder.path()));
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 2 && std::strcmp(argv[1], SoakServer::argument) == 0)
        return SoakServer::serve();
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qgetenv("QT_QPA_PLATFORM") == "offscreen" && !qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        qputenv("QT_QUICK_BACKEND", "software");
    moveFolders();
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    const Options options = readOptions(application);
    SoakServer server;
    if (!server.start(QCoreApplication::applicationFilePath())) {
        std::fprintf(stderr, "The server does not start\n");
        return 2;
    }
    // From here on, sessions are captured.
    static_cast<void>(QuorvixClient::shared());
    const bool isRight =
        Soak(server.port(), options.seed).run(std::chrono::seconds(qint64(options.minutes * 60)));
    return isRight && server.isRunning() ? 0 : 1;
}
