import QtQuick
import QtQuick.Templates as T

/// A control that the user presses with a pointer, Space, Return or Enter, or an assistive technology.
T.AbstractButton {
    id: root

    focusPolicy: Qt.StrongFocus

    Accessible.name: text
    Accessible.role: Accessible.Button
    // Qt 6.4 presses only some kinds of buttons itself.
    Accessible.onPressAction: {
        if (root.enabled)
            root.clicked();
    }

    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()
}
