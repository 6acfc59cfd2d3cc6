#include "Quorvix/QXWindowSystem.h"

#include <QtCore/QStringList>
#include <QtGui/QGuiApplication>
#include <QtGui/QWindow>

#include <algorithm>

namespace {

bool isPlatform(const QStringList &names)
{
    return names.contains(QGuiApplication::platformName());
}

bool belongsTo(const QWindow &window, const QWindow &ancestor)
{
    return &window == &ancestor || ancestor.isAncestorOf(&window, QWindow::IncludeTransients);
}

bool blocks(const QWindow &modal, const QWindow &window)
{
    if (!modal.isVisible() || belongsTo(window, modal))
        return false;
    return modal.modality() == Qt::ApplicationModal ||
           (modal.modality() == Qt::WindowModal && belongsTo(modal, window));
}

} // namespace

bool QXWindowSystem::hasSeveralWindows()
{
    return !isPlatform({QStringLiteral("eglfs"), QStringLiteral("minimalegl"), QStringLiteral("vkkhrdisplay"),
                        QStringLiteral("android"), QStringLiteral("ios"), QStringLiteral("wasm")});
}

bool QXWindowSystem::placesWindows()
{
    return !isPlatform({QStringLiteral("wayland"), QStringLiteral("wayland-egl")});
}

bool QXWindowSystem::masksInput()
{
    return !isPlatform({QStringLiteral("linuxfb"), QStringLiteral("vnc")});
}

bool QXWindowSystem::overlapsWindows()
{
    return isPlatform({QStringLiteral("xcb"), QStringLiteral("wayland"), QStringLiteral("wayland-egl"),
                       QStringLiteral("windows"), QStringLiteral("cocoa")});
}

QWindow *QXWindowSystem::blocker(const QWindow &window)
{
    QWindow *const newest = QGuiApplication::modalWindow();
    if (!newest || belongsTo(window, *newest))
        return nullptr;
    if (blocks(*newest, window))
        return newest;
    const QWindowList windows = QGuiApplication::allWindows();
    const auto found = std::find_if(windows.cbegin(), windows.cend(),
                                    [&](const QWindow *modal) { return blocks(*modal, window); });
    if (found == windows.cend())
        return nullptr;
    QWindow *const next = blocker(**found);
    return next ? next : *found;
}

QWindow *QXWindowSystem::activeWindow()
{
    QWindow *window = QGuiApplication::focusWindow();
    while (window && window->parent())
        window = window->parent();
    return window;
}
