pragma ComponentBehavior: Bound

import QtQuick
import QuorvixDemo

/// The products of the store in a grid below a search field. Pulling the grid down loads them again.
Item {
    id: root

    required property StoreClient store

    readonly property int columns: Math.max(2, Math.floor(grid.width / 230))

    signal productChosen(id: string)

    CatalogueHeader {
        id: header

        anchors {
            left: parent.left
            right: parent.right
            leftMargin: StoreTheme.space
            rightMargin: StoreTheme.space
        }
        onSearched: text => root.store.loadProducts(text)
    }

    GridView {
        id: grid

        objectName: "catalogueGrid"
        anchors {
            left: header.left
            right: header.right
            top: header.bottom
            bottom: parent.bottom
        }
        clip: true
        cacheBuffer: 0 // Qt prints a warning when a search changes the products before those beyond the edge exist
        cellWidth: Math.floor(width / root.columns)
        cellHeight: cellWidth + 58
        bottomMargin: StoreTheme.pad
        model: root.store.products
        delegate: ProductCard {
            width: grid.cellWidth
            height: grid.cellHeight
            onClicked: root.productChosen(product.id)
        }

        Accessible.role: Accessible.List
        Accessible.name: qsTr("Products")

        onDragEnded: {
            if (verticalOvershoot < -60)
                root.store.loadProducts();
        }
    }

    Text {
        anchors.centerIn: parent
        visible: grid.count === 0 && !root.store.busy
        text: qsTr("Nothing here by that name")
        color: StoreTheme.faint
        font.pixelSize: StoreTheme.body
    }
}
