// A program with a window: a list of a hundred rows. Ends when it has drawn its first frame and has come to
// rest.
#include "Footprint.h"

#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtNetwork/QNetworkAccessManager>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <memory>

#ifdef WITH_QUORVIX
#include <Quorvix/QXNetworkAccessManager.h>
#include <Quorvix/QuorvixClient.h>
using Manager = QXNetworkAccessManager;
#else
using Manager = QNetworkAccessManager;
#endif

constexpr char page[] = R"(
    import QtQuick
    ListView {
        anchors.fill: parent
        model: 100
        delegate: Rectangle {
            required property int index
            width: ListView.view.width
            height: 48
            color: index % 2 ? "#f2f2f7" : "#ffffff"
            Text { anchors.centerIn: parent; text: "Row " + parent.index; font.pixelSize: 17 }
        }
    })";

int main(int argc, char *argv[])
{
    Footprint footprint;
    QGuiApplication application(argc, argv);
    QQmlEngine engine;
    QQuickWindow window;
    window.resize(390, 844);
    QQmlComponent component(&engine);
    component.setData(page, QUrl());
    const std::unique_ptr<QObject> list(component.create());
    qobject_cast<QQuickItem *>(list.get())->setParentItem(window.contentItem());
    const Manager manager;
    window.show();
#ifdef WITH_QUORVIX
    QuorvixClient::shared().start();
#endif
    QObject::connect(&window, &QQuickWindow::frameSwapped, &application, [&footprint] {
        footprint.ready();
        // The inspector's button fades in.
        static const bool isFirst = [&footprint] {
            QTimer::singleShot(800, qApp, [&footprint] {
                footprint.print();
                QCoreApplication::quit();
            });
            return true;
        }();
        Q_UNUSED(isFirst);
    });
    return application.exec();
}
