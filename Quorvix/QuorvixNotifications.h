#pragma once

#include <QtCore/QLatin1StringView>

/// Names of what the default notification center posts, on the main thread, with nothing besides: an observer
/// reads the shared objects anew.
/// @{

/// After every change of the list of QXRequestRecorder::shared().
inline constexpr QLatin1StringView QuorvixRequestsChanged{"QuorvixRequestsChanged"};
/// When a held response becomes the active one, and after every release.
inline constexpr QLatin1StringView QuorvixBreakpointChanged{"QuorvixBreakpointChanged"};

/// @}
