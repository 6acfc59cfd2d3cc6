import QtQuick
import QtQuick.Layouts
import QuorvixDemo

/// The catalogue's title and search field.
ColumnLayout {
    id: root

    signal searched(text: string)

    spacing: 2

    Text {
        Layout.topMargin: StoreTheme.pad + 4
        Layout.leftMargin: StoreTheme.gap
        text: qsTr("Alder & Clay")
        color: StoreTheme.accent
        font.pixelSize: StoreTheme.small
        font.weight: Font.DemiBold
        font.letterSpacing: 0.4
    }
    Text {
        Layout.leftMargin: StoreTheme.gap
        text: qsTr("Things to live with")
        color: StoreTheme.ink
        font.pixelSize: StoreTheme.display
        font.weight: Font.Bold
        font.letterSpacing: -0.6
        Accessible.role: Accessible.Heading
        Accessible.name: text
    }
    StoreField {
        objectName: "storeSearchField"
        Layout.fillWidth: true
        Layout.maximumWidth: StoreTheme.column
        Layout.margins: StoreTheme.gap
        Layout.topMargin: StoreTheme.space
        label: qsTr("Search vases, lamps, makers…")
        inputMethodHints: Qt.ImhNoPredictiveText
        onTextEdited: root.searched(text)
    }
}
