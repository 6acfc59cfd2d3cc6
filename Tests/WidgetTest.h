#pragma once

#include "Tests/HostTest.h"

#include "Quorvix/QXWindowSystem.h"

#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMessageBox>

/// A test of the inspector over hosts that consist of widgets.
class WidgetTest : public HostTest
{
protected:
    void cleanup() override
    {
        QuorvixClient::shared().setPresentation(QXPresentation::panel);
        HostTest::cleanup();
    }

    /// A main window around a widget that takes the keyboard.
    static QMainWindow *makeMain(HostWindows::Host &host, QWidget *center = new QLineEdit)
    {
        auto *const window = host.make<QMainWindow>();
        auto *const page = new QWidget;
        center->setParent(page);
        center->resize(300, 200);
        window->setCentralWidget(page);
        window->setGeometry(220, 140, 600, 500);
        window->show();
        center->setFocus();
        return window;
    }

    /// Starts the inspector and waits until its button is over a window, which keeps the keyboard.
    static void start(QWidget &window)
    {
        QVERIFY(waitForActive(*window.windowHandle()));
        QuorvixClient::shared().start();
        QTRY_VERIFY(has("QXFloatingButton") && covers(window));
        // Some platforms activate each window that is shown; ours then gives the keyboard back.
        QTRY_VERIFY(place().isExposed() && QApplication::activeWindow() == &window);
    }

    static void openList()
    {
        press("QXFloatingButton");
        QTRY_VERIFY(has("QXRequestListView"));
    }

    [[nodiscard]] static bool isNear(const QRect &one, const QRect &other)
    {
        // Where a device pixel is no whole number of units, each edge may differ by one.
        const QRect rest(one.topLeft() - other.topLeft(), one.bottomRight() - other.bottomRight());
        return qAbs(rest.left()) <= 1 && qAbs(rest.top()) <= 1 && qAbs(rest.right()) <= 1 &&
               qAbs(rest.bottom()) <= 1;
    }

    /// Whether the cover lies over a window, and over nothing else.
    [[nodiscard]] static bool covers(const QWidget &window)
    {
        const QWindow *const host = window.windowHandle();
        const QQuickWindow *const cover = overlay().window();
        if (!host || !cover || !cover->isVisible())
            return false;
        if (!QXWindowSystem::placesWindows())
            return cover->parent() == host && cover->geometry() == QRect(QPoint(), host->size());
        return cover->screen() == host->screen() && isNear(cover->geometry(), host->geometry()) &&
               cover->transientParent() && !(cover->windowStates() & Qt::WindowMinimized);
    }
};
