import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QuorvixDemo

/// One product; the picture and the text are side by side where there is room.
Item {
    id: root

    required property StoreClient store

    readonly property bool wide: root.width > 700

    signal closed

    Flickable {
        id: scroll

        anchors.fill: parent
        contentHeight: content.implicitHeight + 2 * StoreTheme.pad
        clip: true

        GridLayout {
            id: content

            x: StoreTheme.pad
            y: StoreTheme.pad
            width: scroll.width - 2 * StoreTheme.pad
            columns: root.wide ? 2 : 1
            columnSpacing: 2 * StoreTheme.pad
            rowSpacing: StoreTheme.pad

            ProductTile {
                Layout.fillWidth: true
                Layout.preferredWidth: 100
                Layout.preferredHeight: width * (root.wide ? 1 : 0.94)
                Layout.alignment: Qt.AlignTop
                product: root.store.product
                radius: StoreTheme.radius + 8
                inset: 28
            }
            ProductFacts {
                Layout.fillWidth: true
                Layout.preferredWidth: 100
                Layout.alignment: Qt.AlignTop
                product: root.store.product
                onWanted: root.store.addToCart(root.store.product.id)
            }
        }
    }

    AbstractButton {
        id: back

        objectName: "productBackButton"
        x: StoreTheme.pad + StoreTheme.space
        y: StoreTheme.pad + StoreTheme.space
        width: StoreTheme.touch
        height: StoreTheme.touch
        background: Rectangle {
            radius: width / 2
            color: StoreTheme.card
            opacity: back.down ? 0.7 : 0.95
        }
        contentItem: Item {
            StoreIcon {
                anchors.centerIn: parent
                path: "M14.5 5.5 L8 12 L14.5 18.5"
            }
        }
        onClicked: root.closed()

        Accessible.role: Accessible.Button
        Accessible.name: qsTr("Back")
    }
}
