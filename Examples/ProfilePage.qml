import QtQuick
import QtQuick.Layouts
import QuorvixDemo

/// The user's page: the sign-in form or the profile, and the diagnostics.
Flickable {
    id: root

    required property StoreClient store

    objectName: "profilePage"
    contentHeight: content.implicitHeight + 2 * StoreTheme.pad

    ColumnLayout {
        id: content

        x: Math.max(StoreTheme.pad, (root.width - width) / 2)
        y: StoreTheme.pad
        width: Math.min(root.width - 2 * StoreTheme.pad, StoreTheme.column)
        spacing: StoreTheme.pad

        SignInForm {
            Layout.fillWidth: true
            visible: !root.store.signedIn
            store: root.store
        }
        ProfileCard {
            Layout.fillWidth: true
            visible: root.store.signedIn
            profile: root.store.profile
            onSignedOut: root.store.signOut()
        }
        DiagnosticsCard {
            Layout.fillWidth: true
            diagnostics: root.store.diagnostics
        }
    }
}
