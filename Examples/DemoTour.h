#pragma once

#include <QtCore/QString>

class QQuickWindow;

/// A walk through the store and the inspector, by pointer and key events alone, that checks what it finds.
///
/// Leaves a numbered picture of every step, the exported archive and a table of the captured exchanges.
namespace DemoTour {

/// Takes all steps, each whatever became of the others, and writes a line for each to the standard output.
/// 0 when all succeeded, else 1. Main thread, while the application's event loop runs.
[[nodiscard]] int run(QQuickWindow &window, const QString &outputFolder);

} // namespace DemoTour
