import QtQuick
import QtQuick.Controls.Basic
import QuorvixDemo

/// The tab bar that switches between the three pages of the store.
TabBar {
    id: root

    property int cartCount: 0

    topPadding: 6
    bottomPadding: 6

    background: Rectangle {
        color: StoreTheme.card

        Rectangle {
            width: parent.width
            height: 1
            color: StoreTheme.line
        }
    }

    StoreTab {
        objectName: "shopTab"
        text: qsTr("Shop")
        path: "M4 10 L12 4 L20 10 V20 H14.5 V14 H9.5 V20 H4 Z"
    }
    StoreTab {
        objectName: "cartTab"
        text: qsTr("Cart")
        path: "M5 8 H19 L18 20.5 H6 Z M8.5 10.5 V7.5 A3.5 3.5 0 0 1 15.5 7.5 V10.5"
        count: root.cartCount
    }
    StoreTab {
        objectName: "profileTab"
        text: qsTr("Profile")
        path: "M12 12 A4 4 0 1 0 12 4 A4 4 0 1 0 12 12 M4.5 20.5 C4.5 13.5 19.5 13.5 19.5 20.5"
    }
}
