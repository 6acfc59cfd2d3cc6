#include "Tests/ScreenDriver.h"
#include "Tests/ScriptedServer.h"

#include <Quorvix/QXRequestRecorder.h>
#include <Quorvix/QuorvixClient.h>

#include <QtNetwork/QNetworkAccessManager>
#include <QtQml/QQmlApplicationEngine>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlNetworkAccessManagerFactory>
#include <QtQuick/QQuickView>
#include <QtTest/QSignalSpy>

#include <atomic>

using namespace Qt::StringLiterals;

/// The module Quorvix, as an application imports it.
class QmlModuleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void capturesFromTheFirstObjectOn_data();
    void capturesFromTheFirstObjectOn();
    void capturesOnlyEnginesThatImport();
    void reportsTheCountOncePerTurn();
    void changesSettings();
    void showsAndHides();

private:
    [[nodiscard]] QByteArray page(const QByteArray &import) const;
    [[nodiscard]] std::unique_ptr<QObject> create(QQmlEngine &engine, const QByteArray &qml) const;

    ScriptedServer m_server;
};

namespace {

/// A factory of the host, which must keep working.
class HostFactory final : public QQmlNetworkAccessManagerFactory
{
public:
    QNetworkAccessManager *create(QObject *parent) override
    {
        ++made;
        return new QNetworkAccessManager(parent);
    }
    std::atomic<int> made = 0;
};

constexpr char script[] = "import QtQml; import Quorvix; QtObject {"
                          " readonly property QtObject inspector: Quorvix;"
                          " function debug() { Quorvix.logLevel = Quorvix.Debug; }"
                          " function openWindow() { Quorvix.presentation = Quorvix.Window; }"
                          " function start() { Quorvix.start(); }"
                          " function hide() { Quorvix.hide(); }"
                          " function clear() { Quorvix.clear(); }"
                          " function load(address, times) { for (let i = 0; i < times; ++i) {"
                          " const request = new XMLHttpRequest();"
                          " request.open('GET', address); request.send(); } } }";

QStringList capturedPaths()
{
    QStringList paths;
    for (const QXRequestTrace &trace : QXRequestRecorder::shared().requests())
        paths += trace.duration ? trace.url->path() : u"running"_s;
    paths.sort();
    return paths;
}

} // namespace

void QmlModuleTest::init()
{
    QTest::failOnWarning(QRegularExpression(u".*"_s));
    QXRequestRecorder::shared().clear();
    m_server.answer("*", {{{httpAnswer("200 OK", R"(<svg xmlns="http://www.w3.org/2000/svg"/>)",
                                       "Content-Type: image/svg+xml\r\n")}}});
}

/// An image that loads while the page is made, and a request when it is complete. Each page has an image of
/// its own, because Qt Quick keeps images.
QByteArray QmlModuleTest::page(const QByteArray &import) const
{
    static int pages = 0;
    const QByteArray root = m_server.url({}).toEncoded();
    return "import QtQuick\n" + import + "\nImage { source: '" + root + "/image?" +
           QByteArray::number(++pages) +
           "'; Component.onCompleted: {"
           " const request = new XMLHttpRequest(); request.open('GET', '" +
           root + "/request'); request.send(); } }";
}

std::unique_ptr<QObject> QmlModuleTest::create(QQmlEngine &engine, const QByteArray &qml) const
{
    QQmlComponent component(&engine);
    component.setData(qml, QUrl(u"qrc:/Page.qml"_s));
    std::unique_ptr<QObject> object(component.create());
    if (!object)
        qCritical().noquote() << component.errorString();
    return object;
}

void QmlModuleTest::capturesFromTheFirstObjectOn_data()
{
    QTest::addColumn<QByteArray>("import");
    QTest::addColumn<bool>("hasFactory");
    QTest::newRow("plain") << QByteArray("import Quorvix") << false;
    QTest::newRow("with a version and a name") << QByteArray("import Quorvix 1.0 as Inspector") << false;
    QTest::newRow("a factory of the host") << QByteArray("import Quorvix") << true;
}

void QmlModuleTest::capturesFromTheFirstObjectOn()
{
    QFETCH(QByteArray, import);
    QFETCH(bool, hasFactory);

    HostFactory factory;
    QQmlApplicationEngine application;
    QQuickView view;
    QQmlEngine engine;
    if (hasFactory) {
        for (QQmlEngine *const each : {static_cast<QQmlEngine *>(&application), view.engine(), &engine})
            each->setNetworkAccessManagerFactory(&factory);
    }
    const auto expected = [](int pages) {
        return QStringList(pages, u"/image"_s) + QStringList(pages, u"/request"_s);
    };

    application.loadData(page(import));
    QTRY_COMPARE(capturedPaths(), expected(1));

    QQmlComponent component(view.engine());
    component.setData(page(import), QUrl(u"qrc:/Page.qml"_s));
    view.setContent(component.url(), &component, component.create());
    QTRY_COMPARE(capturedPaths(), expected(2));

    const auto object = create(engine, page(import));
    QTRY_COMPARE(capturedPaths(), expected(3));
    QCOMPARE(factory.made > 0, hasFactory);
    view.setContent({}, nullptr, nullptr);
}

void QmlModuleTest::capturesOnlyEnginesThatImport()
{
    QQmlEngine captured;
    const auto inspector = create(captured, script);
    QQmlEngine plain;
    const auto before = m_server.arrived().size();
    const auto object = create(plain, page({}));
    QTRY_COMPARE(m_server.arrived().size(), before + 2);
    QCOMPARE(capturedPaths(), QStringList());
    QVERIFY(captured.networkAccessManagerFactory() && !plain.networkAccessManagerFactory());
}

void QmlModuleTest::reportsTheCountOncePerTurn()
{
    QQmlEngine engine;
    const auto object = create(engine, script);
    QVERIFY(object);
    auto *const inspector = object->property("inspector").value<QObject *>();
    QVERIFY(inspector);
    QSignalSpy changes(inspector, SIGNAL(requestCountChanged()));
    constexpr int times = 5;
    QMetaObject::invokeMethod(object.get(), "load", Q_ARG(QVariant, m_server.url(u"/a"_s)),
                              Q_ARG(QVariant, times));
    QTRY_COMPARE(capturedPaths(), QStringList(times, u"/a"_s));
    QCOMPARE(inspector->property("requestCount").toInt(), times);
    QCOMPARE(changes.size(), 1);

    QMetaObject::invokeMethod(object.get(), "clear");
    QCOMPARE(inspector->property("requestCount").toInt(), 0);
    QTRY_COMPARE(changes.size(), 2);
    QVERIFY(capturedPaths().isEmpty());
}

void QmlModuleTest::changesSettings()
{
    auto &client = QuorvixClient::shared();
    QQmlEngine engine;
    const auto object = create(engine, script);
    QVERIFY(object);
    auto *const inspector = object->property("inspector").value<QObject *>();
    QSignalSpy levels(inspector, SIGNAL(logLevelChanged()));
    QSignalSpy presentations(inspector, SIGNAL(presentationChanged()));
    for (int i = 0; i < 2; ++i) {
        QMetaObject::invokeMethod(object.get(), "debug");
        QMetaObject::invokeMethod(object.get(), "openWindow");
    }
    QCOMPARE(inspector->property("logLevel").toInt(), int(QXLogLevel::debug));
    QCOMPARE(inspector->property("presentation").toInt(), int(QXPresentation::window));
    QVERIFY(client.logLevel() == QXLogLevel::debug && client.presentation() == QXPresentation::window);
    QVERIFY(levels.size() == 1 && presentations.size() == 1);
    client.setLogLevel(QXLogLevel::none);
    client.setPresentation(QXPresentation::panel);
}

void QmlModuleTest::showsAndHides()
{
    QQmlEngine engine;
    const auto object = create(engine, script);
    QVERIFY(object);
    QQuickWindow window;
    window.resize(390, 600);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QMetaObject::invokeMethod(object.get(), "start");
    QTRY_VERIFY(ScreenDriver::find(window, "QXFloatingButton"));
    ScreenDriver::click(window, "QXFloatingButton");
    QTRY_VERIFY(ScreenDriver::find(window, "QXRequestListView"));
    const QQmlEngine *const own = qmlEngine(ScreenDriver::find(window, "QXRequestListView"));
    QVERIFY(own && own != &engine && !own->networkAccessManagerFactory());
    QMetaObject::invokeMethod(object.get(), "hide");
    QTRY_VERIFY(!ScreenDriver::find(window, "QXFloatingButton"));
}

QTEST_MAIN(QmlModuleTest)
#include "QmlModuleTest.moc"
