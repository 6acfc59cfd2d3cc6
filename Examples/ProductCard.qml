import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QuorvixDemo

/// A product in the catalogue's grid.
AbstractButton {
    id: root

    required property storeProduct product

    objectName: "productCard-" + root.product.id
    padding: StoreTheme.gap
    opacity: root.down ? 0.75 : 1

    Accessible.role: Accessible.Button
    Accessible.name: root.product.name + ", " + root.product.price

    contentItem: ColumnLayout {
        spacing: 3

        ProductTile {
            Layout.fillWidth: true
            Layout.fillHeight: true
            product: root.product
            badgeVisible: true
        }
        Text {
            Layout.topMargin: 6
            Layout.leftMargin: 4
            Layout.fillWidth: true
            text: root.product.name
            color: StoreTheme.ink
            font.pixelSize: StoreTheme.small + 1
            font.weight: Font.DemiBold
            elide: Text.ElideRight
            Accessible.ignored: true
        }
        RowLayout {
            Layout.leftMargin: 4
            Layout.rightMargin: 4

            Text {
                Layout.fillWidth: true
                text: root.product.price
                color: StoreTheme.faint
                font.pixelSize: StoreTheme.small
                Accessible.ignored: true
            }
            Text {
                text: "★ " + root.product.rating
                color: StoreTheme.faint
                font.pixelSize: StoreTheme.caption
                Accessible.ignored: true
            }
        }
    }
}
