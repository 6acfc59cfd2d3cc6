#include <Quorvix/QXNetworkAccessManagerFactory.h>
#include <Quorvix/QuorvixClient.h>

#include <QtGui/QGuiApplication>
#include <QtNetwork/QNetworkAccessManager>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

#include <cstdio>
#include <memory>

// A program with Qt Quick, which uses all that the module Quorvix offers in QML, and prints what it sees like
// NoOpConsumer.

namespace {

constexpr char page[] = R"(
import QtQuick
import Quorvix

Item {
    id: root
    property string server
    property string seen
    property var counts: []
    signal done

    function note(name, value) { seen += name + " = " + value + "\n" }

    Connections {
        target: Quorvix
        function onRequestCountChanged() { root.counts.push(Quorvix.requestCount) }
        function onLogLevelChanged() { root.note("new level", Quorvix.logLevel) }
        function onPresentationChanged() { root.note("new presentation", Quorvix.presentation) }
    }

    Component.onCompleted: {
        note("values", [Quorvix.None, Quorvix.Error, Quorvix.Info, Quorvix.Debug, Quorvix.Panel, Quorvix.Window]);
        note("defaults", [Quorvix.logLevel, Quorvix.presentation]);
        Quorvix.logLevel = Quorvix.Info;
        Quorvix.presentation = Quorvix.Window;
        note("set", [Quorvix.logLevel, Quorvix.presentation]);
        try { Quorvix.requestCount = 7 } catch (error) { note("refused", error.message) }
        Quorvix.start();
        Quorvix.show();
        Quorvix.hide();
        const request = new XMLHttpRequest();
        request.onreadystatechange = () => {
            if (request.readyState !== XMLHttpRequest.DONE)
                return;
            note("answer", request.status + " " + request.responseText.length);
            Qt.callLater(() => { Quorvix.clear(); Qt.callLater(root.done) });
        };
        request.open("GET", server + "/echo");
        request.send();
    }
}
)";

} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    QQmlEngine engine;
    QuorvixClient::shared().start(engine);
    QuorvixClient::shared().hide();
    QXNetworkAccessManagerFactory factory;
    const std::unique_ptr<QNetworkAccessManager> manager(factory.create(nullptr));
    QQmlComponent component(&engine);
    component.setData(page, QUrl());
    const QVariantMap properties{{QStringLiteral("server"), QCoreApplication::arguments().value(1)}};
    const std::unique_ptr<QObject> root(component.createWithInitialProperties(properties));
    if (!root) {
        std::fputs(qPrintable(component.errorString()), stderr);
        return 1;
    }
    QObject::connect(root.get(), SIGNAL(done()), &application, SLOT(quit()));
    QGuiApplication::exec();
    std::fputs(qPrintable(root->property("seen").toString()), stdout);
    std::printf("counts: %s\n", root->property("counts").toList().isEmpty() ? "none" : "some");
    std::printf("manager: %s\n", manager->metaObject()->className());
    return 0;
}
