#include "Examples/AnimationClock.h"
#include "Examples/DemoServer.h"
#include "Examples/DemoTour.h"
#include "Examples/Monkey.h"
#include "Examples/SessionToken.h"
#include "Examples/StoreClient.h"
#include "Examples/StoreImages.h"

#include <Quorvix/QuorvixClient.h>

#include <QtCore/QCommandLineParser>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtGui/QFontDatabase>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>
#include <QtQml/QQmlApplicationEngine>
#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <string_view>

namespace {

/// Below those that the system gives to clients.
constexpr quint16 reproduciblePort = 18'440;

struct Options
{
    /// The folder for the results of the tour; empty without a tour.
    QString tourFolder;
    QSize size{390, 844};
    bool dark = false;
    /// The number of events of the monkey; 0 without it.
    int monkeyEvents = 0;
    quint64 seed = 1;
    /// Whether pictures of two tours are to be compared: no duration, port or token differs.
    bool reproducible = false;
};

Options readOptions(const QCoreApplication &application)
{
    const QCommandLineOption headless(QStringLiteral("headless"),
                                      QStringLiteral("Take the tour, write to <folder>."),
                                      QStringLiteral("folder"));
    const QCommandLineOption size(QStringLiteral("size"), QStringLiteral("The window's size."),
                                  QStringLiteral("WxH"), QStringLiteral("390x844"));
    const QCommandLineOption dark(QStringLiteral("dark"), QStringLiteral("Start with a dark palette."));
    const QCommandLineOption monkey(QStringLiteral("monkey"), QStringLiteral("Play <events> random events."),
                                    QStringLiteral("events"), QStringLiteral("0"));
    const QCommandLineOption seed(QStringLiteral("seed"), QStringLiteral("The seed of the random events."),
                                  QStringLiteral("seed"), QStringLiteral("1"));
    const QCommandLineOption reproducible(
        QStringLiteral("reproducible"),
        QStringLiteral("Show the same port, tokens and durations each time."));
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({headless, size, dark, monkey, seed, reproducible});
    parser.process(application);
    const QStringList sides = parser.value(size).split(u'x');
    const QSize wanted(sides.value(0).toInt(), sides.value(1).toInt());
    return {parser.value(headless),
            wanted.isEmpty() ? QSize(390, 844) : wanted,
            parser.isSet(dark),
            parser.value(monkey).toInt(),
            parser.value(seed).toULongLong(),
            parser.isSet(reproducible)};
}

bool hasOption(int argc, char *argv[], std::string_view option)
{
    return std::any_of(argv, argv + argc, [&](std::string_view argument) {
        return argument.substr(0, argument.find('=')) == option;
    });
}

/// Selects a platform without a display, unless the environment selects another one. This has to happen
/// before the application is created.
void chooseHeadlessPlatform()
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (qgetenv("QT_QPA_PLATFORM") == "offscreen" && !qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
        qputenv("QT_QUICK_BACKEND", "software");
}

void applyAppearance(const Options &options)
{
    if (QFontDatabase::families().contains(QStringLiteral("Inter"))) {
        QFont font = QGuiApplication::font(); // of the system's size
        font.setFamily(QStringLiteral("Inter"));
        QGuiApplication::setFont(font);
    }
    if (options.dark)
        QGuiApplication::setPalette(QPalette(QColor(0x2c, 0x2c, 0x2e), QColor(0x1c, 0x1c, 0x1e)));
}

int takeTour(QQuickWindow &window, const Options &options)
{
    AnimationClock clock(5);
    // A render loop with a thread has an animation driver of its own.
    if (QGuiApplication::platformName() == QStringLiteral("offscreen"))
        clock.install();
    return DemoTour::run(window, options.tourFolder, options.reproducible);
}

} // namespace

int main(int argc, char *argv[])
{
    const bool isMonkey = hasOption(argc, argv, "--monkey");
    if (isMonkey)
        Monkey::moveFolders();
    if (isMonkey || hasOption(argc, argv, "--headless"))
        chooseHeadlessPlatform();
    const QGuiApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Alder and Clay"));
    QCoreApplication::setApplicationName(QStringLiteral("Store"));
    const Options options = readOptions(application);
    const QTemporaryDir tourSettings;
    if (!options.tourFolder.isEmpty())
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, tourSettings.path());
    applyAppearance(options);

    DemoServer server;
    if (options.reproducible)
        SessionToken::useKey("the key of reproducible tours");
    if (!server.start(options.reproducible ? reproduciblePort : quint16(0)))
        qFatal("No port on the loopback interface");
    QuorvixClient &inspector = QuorvixClient::shared();

    StoreClient store(server.url());
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("store"), new StoreImages(server.url()));
    engine.setInitialProperties({{QStringLiteral("store"), QVariant::fromValue(&store)},
                                 {QStringLiteral("width"), options.size.width()},
                                 {QStringLiteral("height"), options.size.height()}});
    const auto openWindow = [&engine] {
        engine.load(QUrl(QStringLiteral("qrc:/qt/qml/QuorvixDemo/Main.qml")));
        return engine.rootObjects().isEmpty()
                   ? nullptr
                   : qobject_cast<QQuickWindow *>(engine.rootObjects().constLast());
    };
    auto *const window = openWindow();
    if (!window)
        return 1;
    inspector.show();
    if (!options.tourFolder.isEmpty())
        QTimer::singleShot(0, window,
                           [window, &options] { QCoreApplication::exit(takeTour(*window, options)); });
    if (options.monkeyEvents > 0) {
        QTimer::singleShot(0, &store, [&] {
            Monkey monkey(*window, openWindow, store, server.url(), options.seed);
            QCoreApplication::exit(monkey.play(options.monkeyEvents));
        });
    }
    return QGuiApplication::exec();
}
