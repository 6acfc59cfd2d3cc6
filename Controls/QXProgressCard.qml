import QtQuick
import Quorvix.Controls

/// What a task does and how far it is, with a button that cancels it. A task that ends soon shows no card.
QXModal {
    id: root

    required property QXBackgroundTask task

    objectName: "QXProgressCard"
    dismissesOnOutsideTap: false

    onDismissRequested: root.task.cancel()

    Accessible.role: Accessible.AlertMessage
    Accessible.name: root.task.title

    Timer {
        interval: 150
        running: root.task.isRunning
        onTriggered: root.presented = true
    }

    Connections {
        target: root.task

        function onIsRunningChanged() {
            if (!root.task.isRunning)
                root.presented = false;
        }
    }

    QXCard {
        anchors.centerIn: parent
        width: Math.min(270 * Math.max(1, QXTheme.scale), root.width - 2 * QXTheme.margin)
        height: column.implicitHeight + button.height
        scale: root.presented ? 1 + 0.1 * (1 - root.progress) : 1
        opacity: root.progress

        MouseArea {
            anchors.fill: parent
        }

        Column {
            id: column

            width: parent.width
            topPadding: 20
            bottomPadding: 24
            spacing: QXTheme.margin

            QXText {
                x: QXTheme.margin
                width: parent.width - 2 * x
                text: root.task.title
                font: QXTheme.headline
                wrapMode: Text.Wrap
                horizontalAlignment: Text.AlignHCenter
                Accessible.ignored: true
            }

            QXProgressBar {
                x: QXTheme.margin
                width: parent.width - 2 * x
                value: root.task.progress
                Accessible.name: root.task.title
            }
        }

        QXTextButton {
            id: button

            objectName: "QXProgressCancel"
            anchors.bottom: parent.bottom
            width: parent.width
            focus: true
            text: qsTranslate("Quorvix", "Cancel")
            font: QXTheme.headline
            onClicked: root.task.cancel()

            QXSeparator {
                width: parent.width
            }
        }
    }
}
