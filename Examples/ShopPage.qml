pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import QuorvixDemo

/// The catalogue, and over it the chosen product.
StackView {
    id: root

    required property StoreClient store

    function open(id: string): void {
        root.store.openProduct(id);
        root.push(product);
    }

    initialItem: CataloguePage {
        store: root.store
        onProductChosen: id => root.open(id)
    }

    Component {
        id: product

        ProductPage {
            store: root.store
            onClosed: root.pop()
        }
    }
}
