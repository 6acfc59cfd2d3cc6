#include "Examples/AnimationClock.h"
#include "Examples/DemoServer.h"
#include "Examples/DemoTour.h"
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

#include <cstring>

namespace {

struct Options
{
    /// The folder for the results of the tour; empty without a tour.
    QString tourFolder;
    QSize size{390, 844};
    bool dark = false;
};

Options readOptions(const QCoreApplication &application)
{
    const QCommandLineOption headless(QStringLiteral("headless"),
                                      QStringLiteral("Take the tour, write to <folder>."),
                                      QStringLiteral("folder"));
    const QCommandLineOption size(QStringLiteral("size"), QStringLiteral("The window's size."),
                                  QStringLiteral("WxH"), QStringLiteral("390x844"));
    const QCommandLineOption dark(QStringLiteral("dark"), QStringLiteral("Start with a dark palette."));
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOptions({headless, size, dark});
    parser.process(application);
    const QStringList sides = parser.value(size).split(u'x');
    const QSize wanted(sides.value(0).toInt(), sides.value(1).toInt());
    return {parser.value(headless), wanted.isEmpty() ? QSize(390, 844) : wanted, parser.isSet(dark)};
}

/// Selects a platform without a display for the tour, unless the environment selects another one. This has to
/// happen before the application is created.
void chooseHeadlessPlatform(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i) {
        if (std::strncmp(argv[i], "--headless", 10) != 0)
            continue;
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        if (qgetenv("QT_QPA_PLATFORM") == "offscreen" && !qEnvironmentVariableIsSet("QT_QUICK_BACKEND"))
            qputenv("QT_QUICK_BACKEND", "software");
    }
}

void applyAppearance(const Options &options)
{
    if (QFontDatabase::families().contains(QStringLiteral("Inter")))
        QGuiApplication::setFont(QFont(QStringLiteral("Inter")));
    if (options.dark)
        QGuiApplication::setPalette(QPalette(QColor(0x2c, 0x2c, 0x2e), QColor(0x1c, 0x1c, 0x1e)));
}

int takeTour(QQuickWindow &window, const QString &folder)
{
    AnimationClock clock(5);
    clock.install();
    return DemoTour::run(window, folder);
}

} // namespace

int main(int argc, char *argv[])
{
    chooseHeadlessPlatform(argc, argv);
    const QGuiApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("Alder and Clay"));
    QCoreApplication::setApplicationName(QStringLiteral("Store"));
    const Options options = readOptions(application);
    const QTemporaryDir tourSettings;
    if (!options.tourFolder.isEmpty())
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, tourSettings.path());
    applyAppearance(options);

    DemoServer server;
    if (!server.start())
        qFatal("No port on the loopback interface");
    QuorvixClient &inspector = QuorvixClient::shared();

    StoreClient store(server.url());
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("store"), new StoreImages(server.url()));
    engine.setInitialProperties({{QStringLiteral("store"), QVariant::fromValue(&store)},
                                 {QStringLiteral("width"), options.size.width()},
                                 {QStringLiteral("height"), options.size.height()}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/QuorvixDemo/Main.qml")));
    auto *const window = qobject_cast<QQuickWindow *>(engine.rootObjects().value(0));
    if (!window)
        return 1;
    inspector.show();
    if (!options.tourFolder.isEmpty())
        QTimer::singleShot(
            0, window, [window, &options] { QCoreApplication::exit(takeTour(*window, options.tourFolder)); });
    return QGuiApplication::exec();
}
