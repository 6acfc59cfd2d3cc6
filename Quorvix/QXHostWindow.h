#pragma once

#include <memory>

class QQuickWindow;

/// Finds the host's window, or makes do without one. Main thread only.
namespace QXHostWindow {

/// The host's active Qt Quick window, else any that is visible, else null.
[[nodiscard]] QQuickWindow *find();

/// Whether the inspector made @p window for itself.
[[nodiscard]] bool isFallback(const QQuickWindow *window);

/// Whether the platform lays windows over one another. Where it does not there is nothing beneath, and asking
/// for a mask or for another order only earns a warning.
[[nodiscard]] bool areStacked();

/// A transparent window of the main screen's size, for an application that has none of its own.
[[nodiscard]] std::unique_ptr<QQuickWindow> makeFallback();

/// Makes a fallback window part of the window that the host shows now, so that it ends with the host's
/// windows and never keeps the application from ending.
void followFocus(QQuickWindow &fallback);

} // namespace QXHostWindow
