import QtQuick

/// A screen, or what lies over one: it has the keyboard while it is shown, and Esc and the Back key leave it.
FocusScope {
    id: root

    /// By the keyboard. What nobody answers goes no further either.
    signal leaveRequested

    Keys.onShortcutOverride: event => event.accepted = event.key === Qt.Key_Escape || event.key === Qt.Key_Back
    Keys.onEscapePressed: root.leaveRequested()
    Keys.onBackPressed: root.leaveRequested()
}
