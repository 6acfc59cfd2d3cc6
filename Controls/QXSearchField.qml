import QtQuick
import QtQuick.Templates as T
import Quorvix.Controls

/// A field that searches while the user types; Esc or its button clears it.
T.TextField {
    id: root

    objectName: "QXSearchField"
    implicitWidth: 200
    implicitHeight: Math.max(QXTheme.touchTarget, contentHeight + 2 * QXTheme.spacing)
    leftPadding: QXTheme.isMirrored ? clearButton.width : 38
    rightPadding: QXTheme.isMirrored ? 38 : clearButton.width
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
        event.accepted = root.text.length > 0;
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
        anchors.fill: parent
        anchors.leftMargin: 38
        anchors.rightMargin: clearButton.width
        visible: root.text.length === 0 && root.preeditText.length === 0
        text: root.placeholderText
        font: root.font
        color: QXTheme.secondaryLabel
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
