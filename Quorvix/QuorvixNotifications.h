#pragma once

#include <QtCore/QLatin1StringView>

/// The names of the notifications that the default notification center posts on the main thread. They carry
/// no data; an observer reads the shared objects again.
/// @{

/// Posted after every change of the list of QXRequestRecorder::shared().
inline constexpr QLatin1StringView QuorvixRequestsChanged{"QuorvixRequestsChanged"};
/// Posted when a held response becomes the active one, and after every release.
inline constexpr QLatin1StringView QuorvixBreakpointChanged{"QuorvixBreakpointChanged"};

/// @}
