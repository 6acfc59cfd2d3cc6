pragma ComponentBehavior: Bound

import QtQuick
import Quorvix

// A travel guide: it shows the places that a server knows, each with a picture. The program has no C++ code but Qt's
// usual main(); the inspector comes by its import, and with the button by one call.
Window {
    id: root

    // The server's root, without a slash at the end; empty until the user has typed it.
    property string server

    readonly property color ink: "#1f2933"
    readonly property color faint: "#7b8794"

    function open(address: string) {
        server = address;
        places.clear();
        note.text = qsTr("Loading");
        const request = new XMLHttpRequest(); // qmllint disable unqualified
        request.onreadystatechange = () => {
            if (request.readyState !== XMLHttpRequest.DONE)
                return;
            if (request.status !== 200) {
                note.text = qsTr("The guide is not available (%1)").arg(request.status);
                return;
            }
            for (const place of JSON.parse(request.responseText))
                places.append(place);
            note.text = qsTr("%1 places to see").arg(places.count);
        };
        request.open("GET", address + "/places");
        request.send();
    }

    width: 390
    height: 720
    visible: true
    title: qsTr("Places")
    color: "#f5f7fa"

    Component.onCompleted: Quorvix.start()

    ListModel {
        id: places
    }

    Column {
        objectName: "page"
        anchors.fill: parent
        anchors.margins: 20
        spacing: 14

        Text {
            color: root.ink
            font.pixelSize: 34
            font.bold: true
            text: root.title
        }

        Rectangle {
            width: parent.width
            height: 44
            radius: 12
            color: "white"
            border.color: address.activeFocus ? "#2680c2" : "#cbd2d9"

            TextInput {
                id: address

                objectName: "address"
                anchors.fill: parent
                anchors.margins: 12
                focus: true
                clip: true
                color: root.ink
                font.pixelSize: 16
                verticalAlignment: TextInput.AlignVCenter
                onAccepted: root.open(text)
                Accessible.name: qsTr("Address of the server")
            }
        }

        Text {
            id: note

            objectName: "note"
            color: root.faint
            font.pixelSize: 15
            text: qsTr("Type the address of a server")
        }

        Repeater {
            model: places

            Rectangle {
                id: card

                required property string name
                required property string country
                required property string picture

                width: parent?.width ?? 0
                height: 88
                radius: 16
                color: "white"

                Image {
                    objectName: "picture"
                    x: 12
                    y: 12
                    width: 64
                    height: 64
                    fillMode: Image.PreserveAspectCrop
                    source: root.server + card.picture
                }

                Column {
                    anchors.left: parent.left
                    anchors.leftMargin: 90
                    anchors.verticalCenter: parent.verticalCenter
                    spacing: 4

                    Text {
                        color: root.ink
                        font.pixelSize: 18
                        font.bold: true
                        text: card.name
                    }

                    Text {
                        color: root.faint
                        font.pixelSize: 15
                        text: card.country
                    }
                }
            }
        }
    }

    Text {
        objectName: "count"
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        anchors.margins: 20
        color: root.faint
        font.pixelSize: 13
        text: qsTr("%1 requests so far").arg(Quorvix.requestCount)
    }
}
