#include "Quorvix/QXHostWindow.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <QtQuick/QQuickWindow>

namespace {

constexpr char fallbackProperty[] = "quorvixFallbackWindow";

QQuickWindow *asHostWindow(QWindow *window)
{
    auto *const quickWindow = qobject_cast<QQuickWindow *>(window);
    return quickWindow && quickWindow->isVisible() && !QXHostWindow::isFallback(quickWindow) ? quickWindow
                                                                                             : nullptr;
}

} // namespace

QQuickWindow *QXHostWindow::find()
{
    if (QQuickWindow *const active = asHostWindow(QGuiApplication::focusWindow()))
        return active;
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (QWindow *const window : windows) {
        if (QQuickWindow *const quickWindow = asHostWindow(window))
            return quickWindow;
    }
    return nullptr;
}

bool QXHostWindow::isFallback(const QQuickWindow *window)
{
    return window->property(fallbackProperty).toBool();
}

bool QXHostWindow::windowsCanOverlap()
{
    return QStringList{QStringLiteral("xcb"), QStringLiteral("wayland"), QStringLiteral("windows"),
                       QStringLiteral("cocoa")}
        .contains(QGuiApplication::platformName());
}

std::unique_ptr<QQuickWindow> QXHostWindow::makeFallback()
{
    auto window = std::make_unique<QQuickWindow>();
    window->setProperty(fallbackProperty, true);
    window->setColor(Qt::transparent);
    window->setFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    followFocus(*window);
    if (const QScreen *const screen = QGuiApplication::primaryScreen())
        window->setGeometry(screen->geometry());
    window->show();
    return window;
}

void QXHostWindow::followFocus(QQuickWindow &fallback)
{
    QWindow *const focused = QGuiApplication::focusWindow();
    if (focused && focused != &fallback && !fallback.transientParent())
        fallback.setTransientParent(focused);
}
