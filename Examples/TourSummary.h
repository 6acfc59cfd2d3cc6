#pragma once

#include <QtCore/QString>

/// Writes a table of the captured exchanges to a file, newest first; false when that fails.
[[nodiscard]] bool writeTourSummary(const QString &path);
