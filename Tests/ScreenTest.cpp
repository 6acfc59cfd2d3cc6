#include "Tests/ScreenTest.h"

#include "Examples/AnimationClock.h"

namespace {

/// Whether Qt only describes the display that the test runs on.
bool isAboutTheDisplay(const QString &message)
{
    for (const char *const start :
         {"QUnifiedTimer: animation driver already installed", // the render loop has its own clock; ours
                                                               // stays
          "Running on a software rasterizer", "This plugin does not support propagateSizeHints()",
          "This plugin does not support grabbing the keyboard", "This plugin does not support raise()"}) {
        if (message.startsWith(QLatin1StringView(start)))
            return true;
    }
    return false;
}

} // namespace

void ScreenTest::init()
{
    startAnew();
    m_window = makeWindow();
    QuorvixClient::shared().show();
}

void ScreenTest::cleanup()
{
    while (QXBreakpointCenter::shared().activeBreakpoint())
        QXBreakpointCenter::shared().continueActive();
    QuorvixClient::shared().hide();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    m_window.reset();
}

void ScreenTest::startAnew()
{
    static QtMessageHandler testHandler = nullptr;
    if (!testHandler) {
        testHandler = qInstallMessageHandler([](auto type, const auto &context, const auto &message) {
            if (isAboutTheDisplay(message))
                return;
            // Screens complain in critical lines of the log, and only warnings can fail a test.
            testHandler(type == QtCriticalMsg ? QtWarningMsg : type, context, message);
        });
        auto *const clock = new AnimationClock(4);
        clock->setParent(QCoreApplication::instance());
        clock->install();
        // Every look at the clock is past the last cooldown.
        QXBreakpointCenter::shared().setClock(
            [now = QXBreakpointCenter::TimePoint()]() mutable { return now += std::chrono::seconds(1); });
        QStandardPaths::setTestModeEnabled(true);
    }
    QuorvixClient::shared().setLogLevel(QXLogLevel::error);
    QTest::failOnWarning(QRegularExpression(QStringLiteral(".*")));
    QSettings().clear();
    QXRequestRecorder::shared().clear();
    QXBreakpointStore::shared().setRules({});
    Quorvix::HTTPCookieStorage::shared().removeAllCookies();
}

bool ScreenTest::waitForActive(QWindow &window)
{
    // QTest::qWaitForWindowActive() does not wait on platforms where only people activate windows, and
    // complains.
    return QTest::qWaitForWindowExposed(&window) && QTest::qWaitFor([&] { return window.isActive(); });
}

bool ScreenTest::resize(QSize size)
{
    m_window->resize(size);
    return QTest::qWaitFor([&] {
        const QSizeF rest = m_window->contentItem()->size() - size;
        return qAbs(rest.width()) <= 1 && qAbs(rest.height()) <= 1;
    });
}

std::unique_ptr<QQuickWindow> ScreenTest::makeWindow()
{
    auto window = std::make_unique<QQuickWindow>();
    window->resize(390, 844);
    window->show();
    return waitForActive(*window) ? std::move(window) : nullptr;
}

std::unique_ptr<QQuickWindow> ScreenTest::makeWindow(QQmlEngine &engine, const char *qml)
{
    QQmlComponent component(&engine);
    component.setData(qml, QUrl());
    std::unique_ptr<QQuickWindow> window(qobject_cast<QQuickWindow *>(component.create()));
    if (!window || !waitForActive(*window))
        qFatal("no window: %s", qPrintable(component.errorString()));
    return window;
}

bool ScreenTest::hold(const QByteArray &body, const Quorvix::DataTaskCompletionHandler &release,
                      const QString &path)
{
    const QUrl url(QStringLiteral("http://host") + path);
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(url, {}));
    return QXBreakpointCenter::shared().check(Quorvix::URLRequest(url), QStringLiteral("held"), body,
                                              Exchanges::makeResponse(200), {}, release);
}
