import QtQuick
import Quorvix.Controls

/// The share sheet: the shared item and its actions. The sheet opens once for each share item.
QXSheet {
    id: root

    /// A QXShareItem, or undefined while there is nothing to share.
    required property var shareItem

    objectName: "QXActivitySheet"
    doneName: "QXActivityDone"
    presented: shareItem !== undefined
    contentHeight: column.implicitHeight
    scrollArea: page
    Accessible.name: activity.title

    Keys.onPressed: event => {
        if (event.matches(StandardKey.Save))
            actions.saveAs();
        else if (event.matches(StandardKey.Copy))
            actions.copy();
        else
            return;
        event.accepted = true;
    }

    onShareItemChanged: root.begin()
    onVisibleChanged: {
        if (!visible && !presented)
            activity.activityItems = [];
    }
    onPresentedChanged: {
        if (!presented)
            activity.task.cancel();
    }
    Component.onCompleted: root.begin()

    function begin() {
        if (root.shareItem === undefined)
            return;
        activity.activityItems = root.shareItem.activityItems;
        activity.title = root.shareItem.title;
        actions.begin();
        page.contentY = 0;
        if (root.presented)
            root.appear(); // the sheet may be leaving with an earlier item
    }

    UIActivityViewController {
        id: activity
    }

    QXProgressCard {
        presentationLayer: root.presentationLayer
        task: activity.task
    }

    QXScrollArea {
        id: page

        anchors.fill: parent
        contentHeight: column.implicitHeight

        Column {
            id: column

            x: QXTheme.margin
            width: page.width - 2 * x
            spacing: QXTheme.margin
            bottomPadding: QXTheme.margin

            QXActivityHeader {
                width: parent.width
                symbol: activity.isFile ? "doc.text" : "curlybraces"
                title: activity.title
                subtitle: activity.subtitle
            }

            QXActivityPreview {
                width: parent.width
                visible: activity.previewText.length > 0
                controller: activity
            }

            QXActivityActions {
                id: actions

                width: parent.width
                controller: activity
                scrollArea: page
            }

            QXText {
                width: parent.width
                visible: actions.couldNotOpen
                text: qsTranslate("Quorvix", "No application could be found to open it.")
                font: QXTheme.footnote
                color: QXTheme.redText
                wrapMode: Text.Wrap
                Accessible.role: Accessible.AlertMessage
                Accessible.name: text
            }
        }
    }

    QXScrollHint {
        area: page
        ground: root.ground
        radius: root.isCard ? QXTheme.cardRadius : 0
    }
}
