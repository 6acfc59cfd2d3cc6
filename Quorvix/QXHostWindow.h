#pragma once

#include <memory>

class QQuickWindow;

/// Finds the host's window, or makes a replacement if there is none. Main thread only.
namespace QXHostWindow {

/// Returns the host's active Qt Quick window, or any visible one, or null.
[[nodiscard]] QQuickWindow *find();

/// Whether @p window was made by makeFallback().
[[nodiscard]] bool isFallback(const QQuickWindow *window);

/// Whether windows can overlap on this platform. If they cannot, nothing is below a window, and Qt prints a
/// warning when the program sets a mask or raises a window.
[[nodiscard]] bool windowsCanOverlap();

/// Makes a transparent window of the main screen's size, for an application without a window of its own.
[[nodiscard]] std::unique_ptr<QQuickWindow> makeFallback();

/// Makes a fallback window a transient child of the host's focused window. The fallback window then closes
/// with the host's windows and does not keep the application running.
void followFocus(QQuickWindow &fallback);

} // namespace QXHostWindow
