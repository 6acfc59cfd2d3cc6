import QtQuick
import Quorvix.Controls

/// The field of a finder, with the number of matches and buttons that go from one to the next. It is a part of
/// a navigation bar.
FocusScope {
    id: root

    required property QXFinder finder
    /// Whether the buttons are below the field, which would be too short beside them.
    readonly property bool isNarrow: width < 18 * QXTheme.body.pixelSize

    /// Emitted for the button and the Esc key.
    signal closeRequested

    objectName: "QXFindBar"
    implicitHeight: field.height + (isNarrow ? buttons.height : 0)

    Keys.onEscapePressed: root.closeRequested()

    QXSearchField {
        id: field

        objectName: "QXFindField"
        anchors.left: parent.left
        anchors.right: root.isNarrow ? parent.right : count.left
        anchors.rightMargin: root.isNarrow ? 0 : QXTheme.spacing
        focus: true
        clearsOnEscape: false
        placeholderText: qsTranslate("Quorvix", "Find")
        text: root.finder.text
        Accessible.description: count.text
        onTextChanged: root.finder.text = text
        onAccepted: root.finder.next()
        Keys.onPressed: event => {
            event.accepted = (event.modifiers & Qt.ShiftModifier) !== 0
                    && (event.key === Qt.Key_Return || event.key === Qt.Key_Enter);
            if (event.accepted)
                root.finder.previous();
        }
    }

    QXText {
        id: count

        objectName: "QXFindCount"
        anchors.right: buttons.left
        anchors.verticalCenter: buttons.verticalCenter
        width: Math.min(implicitWidth, (root.isNarrow ? 1 : 0.35) * (root.width - buttons.width))
        text: root.finder.outcome
        font: QXTheme.footnote
        color: QXTheme.secondaryLabel
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: 9
        elide: Text.ElideRight
        Accessible.role: Accessible.StaticText
        Accessible.name: text
    }

    Row {
        id: buttons

        anchors.right: parent.right
        anchors.rightMargin: -11
        anchors.bottom: parent.bottom

        QXToolButton {
            objectName: "QXFindPrevious"
            symbol: "chevron.up"
            text: qsTranslate("Quorvix", "Previous match")
            enabled: root.finder.hasMatches
            onClicked: root.finder.previous()
        }

        QXToolButton {
            objectName: "QXFindNext"
            symbol: "chevron.down"
            text: qsTranslate("Quorvix", "Next match")
            enabled: root.finder.hasMatches
            onClicked: root.finder.next()
        }

        QXToolButton {
            objectName: "QXFindClose"
            symbol: "xmark"
            text: qsTranslate("Quorvix", "Close find")
            onClicked: root.closeRequested()
        }
    }

    function begin() {
        field.forceActiveFocus();
        field.selectAll();
    }
}
