#pragma once

#include <QtCore/QString>

/// Writes a table of the exchanges that are captured at the moment, newest first; false when it cannot.
[[nodiscard]] bool writeTourSummary(const QString &path);
