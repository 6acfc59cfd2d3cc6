#include "Tests/ScreenTest.h"

#include "Examples/AnimationClock.h"

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

std::unique_ptr<QQuickWindow> ScreenTest::makeWindow()
{
    auto window = std::make_unique<QQuickWindow>();
    window->resize(390, 844);
    window->show();
    return QTest::qWaitForWindowActive(window.get()) ? std::move(window) : nullptr;
}

std::unique_ptr<QQuickWindow> ScreenTest::makeWindow(QQmlEngine &engine, const char *qml)
{
    QQmlComponent component(&engine);
    component.setData(qml, QUrl());
    std::unique_ptr<QQuickWindow> window(qobject_cast<QQuickWindow *>(component.create()));
    if (!window || !QTest::qWaitForWindowActive(window.get()))
        qFatal("no window: %s", qPrintable(component.errorString()));
    return window;
}

bool ScreenTest::hold(const QByteArray &body, const Quorvix::DataTaskCompletionHandler &release)
{
    const QUrl url(QStringLiteral("http://host/held"));
    QXBreakpointStore::shared().insert(*QXBreakpointKey::make(url, {}));
    return QXBreakpointCenter::shared().check(Quorvix::URLRequest(url), QStringLiteral("held"), body,
                                              Exchanges::makeResponse(200), {}, release);
}
