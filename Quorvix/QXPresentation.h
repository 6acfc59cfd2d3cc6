#pragma once

/// Where the inspector shows its screens.
enum class QXPresentation {
    /// Over the host's window. On Wayland, where a program cannot place its windows, the screens of a host
    /// without Qt Quick windows open in a window of their own all the same.
    panel,
    /// In a window of their own, with a title and a frame. Platforms with a single window show them over it.
    window,
};
