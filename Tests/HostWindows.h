#pragma once

#include <QtCore/QTemporaryFile>
#include <QtCore/QTimer>
#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>
#include <QtQuick/QQuickWindow>
#include <QtQuickWidgets/QQuickWidget>
#include <QtWidgets/QDialog>
#include <QtWidgets/QMainWindow>

#include <memory>
#include <vector>

/// The windows of hosts of different kinds.
namespace HostWindows {

/// A host's windows, destroyed in the reverse order.
struct Host
{
    QQmlEngine engine;
    std::vector<std::unique_ptr<QObject>> objects;

    template<typename Object, typename... Arguments>
    Object *make(Arguments &&...arguments)
    {
        objects.push_back(std::make_unique<Object>(std::forward<Arguments>(arguments)...));
        return static_cast<Object *>(objects.back().get());
    }

    QObject *makeQml(const QByteArray &qml)
    {
        QQmlComponent component(&engine);
        component.setData("import QtQuick\n" + qml, QUrl());
        objects.emplace_back(component.create());
        if (!objects.back())
            qFatal("%s", qPrintable(component.errorString()));
        return objects.back().get();
    }

    ~Host()
    {
        while (!objects.empty())
            objects.pop_back();
    }
};

using MakeHost = void (*)(Host &);

inline void makeQuickWindow(Host &host)
{
    host.makeQml("Window { visible: true; width: 390; height: 844 }");
}

/// Replaces all items, as a program does that loads one page after another.
inline void makeLoader(Host &host)
{
    QObject *const window = host.makeQml(R"(
        Window {
            property int page
            visible: true; width: 390; height: 844
            Loader { anchors.fill: parent; sourceComponent: parent.Window.window.page % 2 ? one : two }
            Component { id: one; Rectangle { color: "red" } }
            Component { id: two; FocusScope { focus: true } }
        })");
    for (int page = 1; page < 4; ++page)
        QTimer::singleShot(50 * page, window, [window, page] { window->setProperty("page", page); });
}

inline void makeWindowOnEachScreen(Host &host)
{
    for (QScreen *const screen : QGuiApplication::screens()) {
        auto *const window = host.make<QQuickWindow>();
        window->setScreen(screen);
        window->setGeometry(QRect(screen->geometry().topLeft() + QPoint(20, 20), QSize(400, 500)));
        window->show();
    }
}

inline void makeModalQuickWindow(Host &host)
{
    makeQuickWindow(host);
    host.makeQml("Window { visible: true; width: 300; height: 400; modality: Qt.ApplicationModal }");
}

inline void makeQuickWidget(Host &host)
{
    auto *const window = host.make<QMainWindow>();
    window->setCentralWidget(new QQuickWidget);
    window->resize(600, 500);
    window->show();
}

inline void makeWidgets(Host &host)
{
    auto *const window = host.make<QMainWindow>();
    window->resize(600, 500);
    window->show();
    auto *const dialog = host.make<QDialog>(window);
    dialog->open();
    dialog->setModal(true);
}

inline void makeDialogOverQuickWindow(Host &host)
{
    makeQuickWindow(host);
    auto *const dialog = host.make<QDialog>();
    dialog->setModal(true);
    dialog->show();
}

/// Describes several screens, to be called before there is an application: without a display there is one.
inline void addScreens()
{
    static QTemporaryFile file;
    if (qgetenv("QT_QPA_PLATFORM") != "offscreen" || !file.open())
        return;
    file.write(R"({"screens": [
        {"name": "first", "x": 0, "y": 0, "width": 1280, "height": 1024, "logicalDpi": 96, "dpr": 1},
        {"name": "second", "x": 1280, "y": 0, "width": 1600, "height": 1200, "logicalDpi": 96, "dpr": 2}]})");
    file.flush();
    qputenv("QT_QPA_PLATFORM", "offscreen:configfile=" + file.fileName().toUtf8());
}

} // namespace HostWindows
