pragma ComponentBehavior: Bound

import QtQuick
import QtQml.XmlListModel

// A reader for magazines: it shows the articles of a server with their pictures, in the server's typeface, and the
// headlines of its feed.
Window {
    id: root

    // The server's root, without a slash at the end; empty until the user has typed it.
    property string server

    function open(address: string) {
        server = address;
        articles.clear();
        note.text = qsTr("Loading");
        const request = new XMLHttpRequest(); // qmllint disable unqualified
        request.onreadystatechange = () => {
            if (request.readyState !== XMLHttpRequest.DONE)
                return;
            if (request.status !== 200) {
                note.text = qsTr("Failed with status %1").arg(request.status);
                return;
            }
            for (const article of JSON.parse(request.responseText))
                articles.append(article);
            note.text = qsTr("%1 articles, %2").arg(articles.count).arg(request.getResponseHeader("Content-Type"));
        };
        request.open("POST", address + "/articles");
        request.setRequestHeader("Content-Type", "application/json");
        request.send(JSON.stringify({
            "section": "front"
        }));
    }

    width: 390
    height: 640
    visible: true
    title: qsTr("Magazine")

    FontLoader {
        id: typeface

        source: root.server ? root.server + "/typeface.ttf" : ""
    }

    ListModel {
        id: articles
    }

    XmlListModel {
        id: headlines

        source: root.server ? root.server + "/feed.xml" : ""
        query: "/rss/channel/item"

        XmlListModelRole {
            name: "headline"
            elementName: "title"
        }
    }

    Column {
        objectName: "page"
        anchors.fill: parent
        anchors.margins: 16
        spacing: 12

        TextInput {
            objectName: "address"
            width: parent.width
            focus: true
            font.pixelSize: 17
            onAccepted: root.open(text)
        }

        Text {
            id: note

            font.family: typeface.font.family
            font.pixelSize: 17
            text: qsTr("Type an address")
        }

        Repeater {
            model: articles

            Row {
                id: article

                required property string title
                required property string picture

                spacing: 12

                Image {
                    width: 48
                    height: 48
                    source: root.server + article.picture
                }

                Text {
                    font.family: typeface.font.family
                    text: article.title
                }
            }
        }

        Repeater {
            model: headlines

            Text {
                required property string headline

                font.family: typeface.font.family
                text: headline
            }
        }
    }
}
