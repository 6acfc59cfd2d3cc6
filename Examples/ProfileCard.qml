import QtQuick
import QtQuick.Layouts
import QuorvixDemo

/// The profile of the signed-in user.
Rectangle {
    id: root

    required property storeProfile profile

    signal signedOut

    implicitHeight: content.implicitHeight + 2 * StoreTheme.pad
    radius: StoreTheme.radius + 4
    color: StoreTheme.card
    border.color: StoreTheme.line

    ColumnLayout {
        id: content

        anchors { fill: parent; margins: StoreTheme.pad }
        spacing: StoreTheme.space

        RowLayout {
            spacing: StoreTheme.space + 4

            Rectangle {
                implicitWidth: 60
                implicitHeight: 60
                radius: 30
                color: StoreTheme.wash

                Text {
                    anchors.centerIn: parent
                    text: root.profile.initials
                    color: StoreTheme.accent
                    font.pixelSize: StoreTheme.title
                    font.weight: Font.DemiBold
                    Accessible.ignored: true
                }
            }
            ColumnLayout {
                spacing: 2

                Text {
                    objectName: "profileName"
                    Layout.fillWidth: true
                    text: root.profile.name
                    color: StoreTheme.ink
                    font.pixelSize: StoreTheme.title
                    font.weight: Font.DemiBold
                }
                Text {
                    Layout.fillWidth: true
                    text: root.profile.email
                    color: StoreTheme.faint
                    font.pixelSize: StoreTheme.small
                    elide: Text.ElideMiddle
                }
            }
        }
        ProfileFact {
            Layout.fillWidth: true
            name: qsTr("Points")
            value: root.profile.points
        }
        ProfileFact {
            Layout.fillWidth: true
            name: qsTr("Member since")
            value: root.profile.since
        }
        ProfileFact {
            Layout.fillWidth: true
            name: qsTr("Delivers to")
            value: root.profile.address
        }
        StoreButton {
            objectName: "signOutButton"
            Layout.fillWidth: true
            prominent: false
            text: qsTr("Sign out")
            onClicked: root.signedOut()
        }
    }
}
