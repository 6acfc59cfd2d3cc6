import QtQuick
import QuorvixDemo

/// The picture of a product on its background colour.
Rectangle {
    id: root

    required property storeProduct product
    property bool badgeVisible: false
    property int inset: 14

    radius: StoreTheme.radius
    color: StoreTheme.dark ? root.product.darkTint : root.product.tint

    Image {
        anchors { fill: parent; margins: root.inset }
        // Qt makes no mipmaps, and says so, for a picture that comes while it has no area.
        source: width > 0 && height > 0 ? root.product.picture : ""
        sourceSize { width: 480; height: 480 }
        fillMode: Image.PreserveAspectFit
        asynchronous: true
        mipmap: true
        opacity: status === Image.Ready ? 1 : 0
        Accessible.ignored: true

        Behavior on opacity { NumberAnimation { duration: 180 } }
    }

    Rectangle {
        anchors { left: parent.left; top: parent.top; margins: StoreTheme.space }
        visible: root.badgeVisible && root.product.badge !== ""
        width: badge.implicitWidth + 18
        height: 26
        radius: 13
        color: StoreTheme.card

        Text {
            id: badge

            anchors.centerIn: parent
            text: root.product.badge
            color: StoreTheme.accent
            font.pixelSize: StoreTheme.caption
            font.weight: Font.DemiBold
            Accessible.ignored: true
        }
    }
}
