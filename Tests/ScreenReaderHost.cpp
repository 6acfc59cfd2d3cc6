#include "Tests/Exchanges.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QuorvixClient.h"

#include <QtCore/QStandardPaths>
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickWindow>

#include <memory>

using namespace Quorvix;
using namespace Qt::StringLiterals;

/// A program with the inspector, which screen-reader.py reads and uses from outside. A breakpoint holds a
/// response as soon as somebody switches on the one in the details. With the argument "plain", the host has
/// no QML of its own.
int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    QGuiApplication::setApplicationName(u"ScreenReaderHost"_s);
    QStandardPaths::setTestModeEnabled(true);
    QQmlEngine engine;
    QQuickWindow plain;
    std::unique_ptr<QObject> window;
    if (QGuiApplication::arguments().contains(u"plain"_s)) {
        plain.resize(390, 844);
        plain.show();
    } else {
        QQmlComponent component(&engine);
        component.setData("import QtQuick; Window { width: 390; height: 844; visible: true }", {});
        window.reset(component.create());
    }

    const QString url = u"https://shop.test/v1/users/42"_s;
    Exchanges::record(u"id"_s, url);
    Exchanges::complete(u"id"_s, 200, R"({"name":"Ada","tags":["a","b"]})");
    QObject::connect(&QXBreakpointStore::shared(), &QXBreakpointStore::rulesChanged, &app, [=] {
        (void)QXBreakpointCenter::shared().check(URLRequest(QUrl(url)), u"held"_s, "{\"held\":true}",
                                                 Exchanges::makeResponse(200), {}, [](auto...) {});
    });
    QuorvixClient::shared().show();
    return QGuiApplication::exec();
}
