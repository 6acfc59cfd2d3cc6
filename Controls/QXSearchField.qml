import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A field that searches while the user types; its button clears it, and Esc unless `clearsOnEscape` is off.
T.TextField {
    id: root

    property bool clearsOnEscape: true

    objectName: "QXSearchField"
    implicitWidth: 200
    implicitHeight: Math.max(QXTheme.touchTarget, contentHeight + 2 * QXTheme.spacing)
    leftPadding: QXTheme.isMirrored ? clearButton.width : 38
    rightPadding: QXTheme.isMirrored ? 38 : clearButton.width
    // See QXTextField.
    horizontalAlignment: TextInput.AlignLeft
    verticalAlignment: TextInput.AlignVCenter
    font: QXTheme.body
    color: QXTheme.label
    selectionColor: QXTheme.selection
    selectedTextColor: QXTheme.onColor
    selectByMouse: true
    inputMethodHints: Qt.ImhNoAutoUppercase | Qt.ImhNoPredictiveText

    background: Rectangle {
        implicitHeight: QXTheme.touchTarget
        radius: QXTheme.cornerRadius
        color: QXTheme.fill
        border.width: root.activeFocus ? 2 : 0
        border.color: QXTheme.blue
    }

    Accessible.name: placeholderText
    Accessible.role: Accessible.EditableText
    Accessible.searchEdit: true

    Keys.onEscapePressed: event => {
        event.accepted = root.clearsOnEscape && root.text.length > 0;
        if (event.accepted)
            root.clear();
    }

    QXIcon {
        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.verticalCenter: parent.verticalCenter
        symbol: "magnifyingglass"
        size: 20
        color: QXTheme.secondaryLabel
    }

    QXText {
        objectName: "QXSearchPrompt"
        anchors.fill: parent
        anchors.leftMargin: 38
        anchors.rightMargin: 10
        visible: root.text.length === 0 && root.preeditText.length === 0
        text: root.placeholderText
        font: root.font
        color: QXTheme.secondaryLabel
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: QXTheme.caption.pixelSize
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
        Accessible.ignored: true
    }

    QXToolButton {
        id: clearButton

        objectName: "QXSearchClearButton"
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        visible: root.text.length > 0
        symbol: "xmark.circle.fill"
        symbolSize: 18
        color: QXTheme.secondaryLabel
        text: qsTranslate("Quorvix", "Clear text")
        onClicked: {
            root.clear();
            root.forceActiveFocus();
        }
    }
}
