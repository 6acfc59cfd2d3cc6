#include "Quorvix/QXWindowSystem.h"

#include <QtCore/QLibrary>
#include <QtCore/QStringList>
#include <QtGui/QGuiApplication>
#include <QtGui/QWindow>

#include <algorithm>

namespace {

bool isPlatform(const QStringList &names)
{
    return names.contains(QGuiApplication::platformName());
}

#if QT_CONFIG(xcb)
/// Whether a compositor runs on the display: it owns a selection with a name that all of them share.
bool hasCompositor(Display *display)
{
    using Atom = unsigned long;
    using Window = unsigned long;
    // We do not link Xlib, which Qt's platform plugin has loaded.
    QLibrary xlib(QStringLiteral("X11"), 6);
    const auto defaultScreen = reinterpret_cast<int (*)(Display *)>(xlib.resolve("XDefaultScreen"));
    const auto internAtom =
        reinterpret_cast<Atom (*)(Display *, const char *, int)>(xlib.resolve("XInternAtom"));
    const auto selectionOwner =
        reinterpret_cast<Window (*)(Display *, Atom)>(xlib.resolve("XGetSelectionOwner"));
    if (!display || !defaultScreen || !internAtom || !selectionOwner)
        return false;
    const QByteArray name = "_NET_WM_CM_S" + QByteArray::number(defaultScreen(display));
    return selectionOwner(display, internAtom(display, name.constData(), false)) != 0;
}
#endif

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

bool QXWindowSystem::blendsWindows()
{
#if QT_CONFIG(xcb)
    if (const auto *const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>())
        return hasCompositor(x11->display());
#endif
    return true;
}

bool QXWindowSystem::isForLong(const QWindow &window)
{
    return window.type() != Qt::Popup && window.type() != Qt::ToolTip && window.type() != Qt::SplashScreen;
}

bool QXWindowSystem::isMain(const QWindow &window)
{
    return window.type() == Qt::Window;
}

QWindow *QXWindowSystem::blocker(const QWindow &window)
{
    QWindow *const newest = QGuiApplication::modalWindow();
    if (!newest)
        return nullptr;
    const QWindowList windows = QGuiApplication::allWindows();
    // Only Qt knows which of two modal windows is the newer one: here, both can block each other.
    QWindowList found;
    while (true) {
        const QWindow &last = found.isEmpty() ? window : *found.last();
        if (belongsTo(last, *newest))
            break;
        if (blocks(*newest, last))
            return newest;
        const auto next = std::find_if(windows.cbegin(), windows.cend(), [&](QWindow *modal) {
            return modal != &window && !found.contains(modal) && blocks(*modal, last);
        });
        if (next == windows.cend())
            break;
        found.append(*next);
    }
    return found.isEmpty() ? nullptr : found.last();
}

QWindow *QXWindowSystem::activeWindow()
{
    QWindow *window = QGuiApplication::focusWindow();
    while (window && window->parent())
        window = window->parent();
    return window;
}
