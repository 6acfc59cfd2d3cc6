import QtQuick
import QuorvixDemo

/// A line drawing on a square of 24 by 24.
Image {
    id: root

    required property string path
    property color color: StoreTheme.ink

    readonly property string drawing: "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 24 24' fill='none' "
        + "stroke='" + root.color + "' stroke-width='1.8' stroke-linecap='round' stroke-linejoin='round'>"
        + "<path d='" + root.path + "'/></svg>"

    width: 24
    height: 24
    source: "data:image/svg+xml," + encodeURIComponent(root.drawing)
    sourceSize { width: 24; height: 24 }
    Accessible.ignored: true
}
