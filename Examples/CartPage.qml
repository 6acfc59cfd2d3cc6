pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Layouts
import QuorvixDemo

/// The products in the cart and their total price.
Item {
    id: root

    required property StoreClient store

    signal checkedOut

    ColumnLayout {
        anchors { fill: parent; margins: StoreTheme.pad }
        spacing: StoreTheme.space

        Text {
            Layout.fillWidth: true
            Layout.maximumWidth: StoreTheme.column
            Layout.alignment: Qt.AlignHCenter
            text: qsTr("Your cart")
            color: StoreTheme.ink
            font.pixelSize: StoreTheme.display
            font.weight: Font.Bold
            font.letterSpacing: -0.6
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        ListView {
            id: lines

            objectName: "cartList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.maximumWidth: StoreTheme.column
            Layout.alignment: Qt.AlignHCenter
            clip: true
            cacheBuffer: 0 // as in the catalogue
            model: root.store.cart
            delegate: CartRow {
                width: lines.width
                onRemoved: root.store.removeFromCart(product.id)
            }

            Accessible.role: Accessible.List
            Accessible.name: qsTr("Cart")

            Text {
                anchors.centerIn: parent
                visible: root.store.cart.count === 0
                text: qsTr("Nothing in it yet")
                color: StoreTheme.faint
                font.pixelSize: StoreTheme.body
            }
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.maximumWidth: StoreTheme.column
            Layout.alignment: Qt.AlignHCenter

            Text {
                Layout.fillWidth: true
                text: qsTr("Total with VAT")
                color: StoreTheme.faint
                font.pixelSize: StoreTheme.body
            }
            Text {
                objectName: "cartTotal"
                text: root.store.cartTotal
                color: StoreTheme.ink
                font.pixelSize: StoreTheme.title + 4
                font.weight: Font.Bold
            }
        }
        StoreButton {
            objectName: "checkoutButton"
            Layout.fillWidth: true
            Layout.maximumWidth: StoreTheme.column
            Layout.alignment: Qt.AlignHCenter
            enabled: root.store.cartCount > 0
            text: root.store.signedIn ? qsTr("Check out") : qsTr("Sign in to check out")
            onClicked: root.checkedOut()
        }
    }
}
