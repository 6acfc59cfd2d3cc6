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

    QXActivityView {
        presentationLayer: root.presentationLayer
        shareItem: root.model.shareItem
        onDismissRequested: root.model.shareItem = undefined
    }

    QXDecodedPayloadView {
        presentationLayer: root.presentationLayer
        payload: root.model.decodedPayload
        onDismissRequested: root.model.decodedPayload = undefined
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
