import QtQuick
import Quorvix

/// One row of the details: a section's title, a labelled value, or a line of a body.
Item {
    id: root

    required property int kind
    required property string label
    required property string text
    required property int textColor
    required property bool isFirst
    required property bool isLast
    property real columnMargin: QXTheme.margin

    readonly property bool isTitle: kind === QXRequestDetailsViewModel.SectionTitle
    readonly property bool isBody: kind === QXRequestDetailsViewModel.BodyLine
    readonly property bool isValue: kind === QXRequestDetailsViewModel.ValueRow
    readonly property real labelWidth: 100 * Math.max(1, QXTheme.scale)
    readonly property real blockPadding: 12

    objectName: "QXRequestDetailsRow"
    implicitHeight: isTitle ? title.implicitHeight + 30
                  : isBody ? body.implicitHeight + (isFirst ? blockPadding : 0) + (isLast ? blockPadding : 0)
                  : Math.max(title.implicitHeight, value.implicitHeight) + 12

    Accessible.role: isTitle ? Accessible.Heading : Accessible.StaticText
    Accessible.name: isValue ? label + ", " + text : label + text

    QXText {
        id: title

        anchors.left: parent.left
        anchors.leftMargin: root.columnMargin
        y: root.isTitle ? 24 : 6
        width: root.isTitle ? parent.width - 2 * root.columnMargin : root.labelWidth
        visible: !root.isBody
        text: root.label
        font: root.isTitle ? QXTheme.captionBold : QXTheme.subheadlineSemibold
        color: QXTheme.secondaryLabel
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }

    QXText {
        id: value

        anchors.left: title.right
        anchors.leftMargin: QXTheme.spacing
        anchors.right: parent.right
        anchors.rightMargin: root.columnMargin
        y: 6
        visible: root.isValue
        text: root.isValue ? root.text : ""
        font: QXTheme.subheadline
        color: root.textColor === QXSystemColor.Clear ? QXTheme.label : QXTheme.systemColor(root.textColor)
        wrapMode: Text.Wrap
        Accessible.ignored: true
    }

    // The block goes on above and below, so that only its first and last line have round corners.
    Item {
        anchors.fill: parent
        clip: true
        visible: root.isBody

        Rectangle {
            anchors.fill: parent
            anchors.leftMargin: root.columnMargin
            anchors.rightMargin: root.columnMargin
            anchors.topMargin: root.isFirst ? 0 : -radius
            anchors.bottomMargin: root.isLast ? 0 : -radius
            radius: QXTheme.cornerRadius
            color: QXTheme.secondaryBackground
        }

        QXText {
            id: body

            // Code reads from left to right everywhere.
            LayoutMirroring.enabled: false
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.leftMargin: root.columnMargin + root.blockPadding
            anchors.rightMargin: root.columnMargin + root.blockPadding
            y: root.isFirst ? root.blockPadding : 0
            text: root.isBody ? root.text : ""
            font: QXTheme.monospaced
            wrapMode: Text.WrapAnywhere
            Accessible.ignored: true
        }
    }
}
