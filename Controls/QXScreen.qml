import QtQuick

/// A screen, or a view over a screen. It has the keyboard focus while it is visible; Esc and the Back key
/// leave it.
FocusScope {
    id: root

    /// Emitted for Esc and the Back key. The key is accepted even when nothing is connected.
    signal leaveRequested

    Keys.onEscapePressed: root.leaveRequested()
    Keys.onBackPressed: root.leaveRequested()
}
