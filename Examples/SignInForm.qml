import QtQuick
import QtQuick.Layouts
import QuorvixDemo

/// The form for signing in.
ColumnLayout {
    id: root

    required property StoreClient store

    spacing: StoreTheme.space

    Text {
        Layout.fillWidth: true
        text: qsTr("Welcome back")
        color: StoreTheme.ink
        font.pixelSize: StoreTheme.display
        font.weight: Font.Bold
        font.letterSpacing: -0.6
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Text {
        Layout.fillWidth: true
        Layout.bottomMargin: StoreTheme.gap
        text: qsTr("Sign in to see your orders and check out faster. The password of this store is “open sesame”.")
        color: StoreTheme.faint
        font.pixelSize: StoreTheme.small + 1
        lineHeight: 1.25
        wrapMode: Text.Wrap
    }
    StoreField {
        id: email

        objectName: "emailField"
        Layout.fillWidth: true
        label: qsTr("Email address")
        inputMethodHints: Qt.ImhEmailCharactersOnly
        onAccepted: password.forceActiveFocus()
    }
    StoreField {
        id: password

        objectName: "passwordField"
        Layout.fillWidth: true
        label: qsTr("Password")
        echoMode: TextInput.Password
        onAccepted: root.store.signIn(email.text, password.text)
    }
    Text {
        objectName: "signInError"
        Layout.fillWidth: true
        visible: text !== ""
        text: root.store.signInError
        color: StoreTheme.bad
        font.pixelSize: StoreTheme.small
        wrapMode: Text.Wrap
        Accessible.role: Accessible.AlertMessage
        Accessible.name: text
    }
    StoreButton {
        objectName: "signInButton"
        Layout.fillWidth: true
        Layout.topMargin: StoreTheme.gap
        enabled: email.text !== "" && password.text !== ""
        text: qsTr("Sign in")
        onClicked: root.store.signIn(email.text, password.text)
    }
}
