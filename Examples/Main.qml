import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import QuorvixDemo

/// The store's window.
ApplicationWindow {
    id: root

    required property StoreClient store

    title: qsTr("Alder & Clay")
    color: StoreTheme.page
    visible: true

    Component.onCompleted: {
        root.store.loadProducts();
        root.store.loadCart();
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            currentIndex: tabs.currentIndex

            ShopPage { store: root.store }
            CartPage {
                store: root.store
                onCheckedOut: root.store.signedIn ? notice.show(qsTr("Thank you!")) : tabs.setCurrentIndex(2)
            }
            ProfilePage { store: root.store }
        }
        StoreTabBar {
            id: tabs

            Layout.fillWidth: true
            cartCount: root.store.cartCount
            onCurrentIndexChanged: notice.hide()
        }
    }

    StoreNotice {
        id: notice

        anchors { horizontalCenter: parent.horizontalCenter; bottom: parent.bottom; bottomMargin: 92 }
    }

    Connections {
        target: root.store

        function onNoticed(text: string): void {
            notice.show(text);
        }
    }
}
