pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls
import Quorvix.Screens

/// Shows what a model presents over its screen: the share sheet, a decoded payload, an alert, the
/// progress of a task.
Item {
    id: root

    required property QXPresentationLayer presentationLayer
    required property QXPresentingModel model
    required property string alertTitle

    property bool hasShared: false
    property bool hasDecoded: false

    // The sheets are made when they are needed first, because the user waits while a list or details open. They take
    // the keyboard focus only after that.
    Repeater {
        model: root.hasShared ? 1 : 0

        delegate: QXActivityView {
            presentationLayer: root.presentationLayer
            shareItem: undefined
            onDismissRequested: root.model.shareItem = undefined
        }

        onItemAdded: (index, item) => (item as QXActivityView).shareItem = Qt.binding(() => root.model.shareItem)
    }

    Repeater {
        model: root.hasDecoded ? 1 : 0

        delegate: QXDecodedPayloadView {
            presentationLayer: root.presentationLayer
            onDismissRequested: root.model.decodedPayload = undefined
        }

        onItemAdded: (index, item) => (item as QXDecodedPayloadView).payload = Qt.binding(() => root.model.decodedPayload)
    }

    Connections {
        target: root.model

        function onShareItemChanged() {
            root.hasShared = true;
        }

        function onDecodedPayloadChanged() {
            root.hasDecoded = true;
        }
    }

    QXAlert {
        presentationLayer: root.presentationLayer
        presented: root.model.showAlert
        title: root.alertTitle
        message: root.model.alertMessage
        onDismissRequested: root.model.showAlert = false
    }

    QXProgressCard {
        presentationLayer: root.presentationLayer
        task: root.model.task
    }
}
