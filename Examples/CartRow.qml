import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QuorvixDemo

/// A line of the cart.
Item {
    id: root

    required property storeProduct product
    required property int quantity

    signal removed

    implicitHeight: 108

    RowLayout {
        anchors { fill: parent; topMargin: StoreTheme.gap; bottomMargin: StoreTheme.gap }
        spacing: StoreTheme.space + 2

        ProductTile {
            Layout.fillHeight: true
            Layout.preferredWidth: height
            product: root.product
            inset: 8
        }
        ColumnLayout {
            spacing: 3

            Text {
                Layout.fillWidth: true
                text: root.product.name
                color: StoreTheme.ink
                font.pixelSize: StoreTheme.body
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
            Text {
                text: root.product.maker
                color: StoreTheme.faint
                font.pixelSize: StoreTheme.small
            }
            Text {
                text: root.quantity > 1 ? root.quantity + " × " + root.product.price : root.product.price
                color: StoreTheme.ink
                font.pixelSize: StoreTheme.small + 1
            }
        }
        AbstractButton {
            objectName: "cartRemove-" + root.product.id
            implicitWidth: StoreTheme.touch
            implicitHeight: StoreTheme.touch
            contentItem: Item {
                StoreIcon {
                    anchors.centerIn: parent
                    color: StoreTheme.faint
                    path: "M4.5 7 H19.5 M9 7 V4.5 H15 V7 M6.5 7 L7.5 20 H16.5 L17.5 7 M10 11 V16 M14 11 V16"
                }
            }
            onClicked: root.removed()

            Accessible.role: Accessible.Button
            Accessible.name: qsTr("Remove %1").arg(root.product.name)
        }
    }
}
