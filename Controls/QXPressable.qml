import QtQuick
import QtQuick.Templates as T

/// Something that is pressed: by a pointer, with Space, Return and Enter, and by an assistive technology.
T.AbstractButton {
    id: root

    focusPolicy: Qt.StrongFocus

    Accessible.name: text
    Accessible.role: Accessible.Button

    Keys.onReturnPressed: root.clicked()
    Keys.onEnterPressed: root.clicked()
}
