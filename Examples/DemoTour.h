#pragma once

#include <QtCore/QString>

class QQuickWindow;

/// An automatic tour of the store and the inspector. It uses pointer and key events only and checks the
/// results. Pictures of a reproducible tour show no real duration.
///
/// Writes a numbered picture of every step, the exported archive and a table of the captured exchanges.
namespace DemoTour {

/// Runs all steps, also after a failed one, and writes a line for each to the standard output. Returns 0 when
/// all succeeded, otherwise 1. Main thread, while the application's event loop runs.
[[nodiscard]] int run(QQuickWindow &window, const QString &outputFolder, bool reproducible);

} // namespace DemoTour
