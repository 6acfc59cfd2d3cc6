// A program whose C++ code does not know the inspector, so that the linker could leave it out: only QML
// imports it.
#include <QtGui/QGuiApplication>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

#include <cstdio>
#include <memory>

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    QQmlEngine engine;
    QQmlComponent component(&engine);
    component.setData(
        "import QtQml\n"
        "import Quorvix\n"
        "QtObject { property int count: Quorvix.requestCount; Component.onCompleted: Quorvix.start() }",
        QUrl());
    const std::unique_ptr<QObject> object(component.create());
    if (object && object->property("count") == 0)
        return 0;
    std::fprintf(stderr, "%s\n", qPrintable(component.errorString()));
    return 1;
}
