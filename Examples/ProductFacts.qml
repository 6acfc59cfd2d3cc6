import QtQuick
import QtQuick.Layouts
import QuorvixDemo

/// The description of a product, and the button that adds it to the cart.
ColumnLayout {
    id: root

    required property storeProduct product

    signal wanted

    spacing: StoreTheme.gap

    Text {
        text: root.product.maker
        color: StoreTheme.accent
        font.pixelSize: StoreTheme.small
        font.weight: Font.DemiBold
    }
    Text {
        objectName: "productName"
        Layout.fillWidth: true
        text: root.product.name
        color: StoreTheme.ink
        font.pixelSize: StoreTheme.display - 2
        font.weight: Font.Bold
        font.letterSpacing: -0.5
        wrapMode: Text.Wrap
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    Text {
        text: root.product.price
        color: StoreTheme.ink
        font.pixelSize: StoreTheme.title
        font.weight: Font.DemiBold
    }
    RowLayout {
        spacing: StoreTheme.gap

        Text {
            text: "★ " + root.product.rating
            color: StoreTheme.ink
            font.pixelSize: StoreTheme.small
            font.weight: Font.DemiBold
        }
        Text {
            Layout.fillWidth: true
            text: root.product.reviews
            color: StoreTheme.faint
            font.pixelSize: StoreTheme.small
        }
        Text {
            text: root.product.stock
            color: StoreTheme.good
            font.pixelSize: StoreTheme.small
            font.weight: Font.DemiBold
        }
    }
    Rectangle {
        Layout.fillWidth: true
        Layout.topMargin: StoreTheme.gap
        Layout.bottomMargin: StoreTheme.gap
        implicitHeight: 1
        color: StoreTheme.line
    }
    Text {
        Layout.fillWidth: true
        text: root.product.about
        color: StoreTheme.ink
        font.pixelSize: StoreTheme.body
        lineHeight: 1.35
        wrapMode: Text.Wrap
    }
    Text {
        Layout.fillWidth: true
        text: qsTr("Free delivery over €50 · Returns within 60 days")
        color: StoreTheme.faint
        font.pixelSize: StoreTheme.small
        wrapMode: Text.Wrap
    }
    StoreButton {
        objectName: "addToCartButton"
        Layout.fillWidth: true
        Layout.topMargin: StoreTheme.space
        text: qsTr("Add to cart")
        onClicked: root.wanted()
    }
}
