// A program with a window: a list of a hundred rows. Ends when it has drawn its first frame and has come to
// rest; with the argument "start", as soon as it has drawn. With "open", it opens the inspector's list at
// last.
#include "Footprint.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtGui/QMouseEvent>
#include <QtNetwork/QNetworkAccessManager>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <memory>
#include <utility>

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

bool shows(const QQuickItem &item, const QString &name)
{
    const QList<QQuickItem *> children = item.childItems();
    return item.objectName() == name ||
           std::any_of(children.cbegin(), children.cend(),
                       [&](const QQuickItem *child) { return shows(*child, name); });
}

/// Clicks the inspector's button, and prints the time in milliseconds until the first frame with the list.
void openList(QQuickWindow &window)
{
    QElapsedTimer timer;
    timer.start();
    const QPointF button(50, window.height() - 50);
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        const bool isPress = type == QEvent::MouseButtonPress;
        QMouseEvent event(type, button, button, window.mapToGlobal(button), Qt::LeftButton,
                          isPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&window, &event);
    }
    QObject::connect(&window, &QQuickWindow::frameSwapped, &window, [&window, timer] {
        if (!shows(*window.contentItem(), QStringLiteral("QXRequestListView")))
            return;
        std::printf("%.2f\n", double(timer.nsecsElapsed()) / 1e6);
        QCoreApplication::quit();
    });
}

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
    const QString task = QCoreApplication::arguments().value(1);
    bool isReady = false;
    QObject::connect(&window, &QQuickWindow::frameSwapped, &application, [&] {
        footprint.ready();
        if (std::exchange(isReady, true))
            return;
        QTimer::singleShot(task == QStringLiteral("start") ? 0 : 800, &application, [&] {
            footprint.print();
            if (task == QStringLiteral("open"))
                openList(window);
            else
                QCoreApplication::quit();
        });
    });
    return application.exec();
}
