pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls
import Quorvix.Text

/// The two handles at the ends of a selection that was made by touch. The user drags them to change it.
Item {
    id: root

    required property QXTextView view

    readonly property real knobSize: 12
    readonly property real stemWidth: 2

    anchors.fill: view
    visible: view.needsHandles

    Repeater {
        model: 2

        delegate: Item {
            id: handle

            required property int index

            readonly property bool isStart: index === 0
            // Read only while visible, because it changes with every frame of scrolling.
            readonly property rect edge: !root.visible ? Qt.rect(0, 0, 0, 0)
                                       : isStart ? root.view.startEdge : root.view.endEdge
            /// The middle of the knob.
            readonly property real knobY: isStart ? edge.top - root.knobSize / 2 + 1 : edge.bottom + root.knobSize / 2 - 1

            objectName: isStart ? "QXSelectionStart" : "QXSelectionEnd"
            x: edge.x - width / 2
            y: isStart ? knobY + root.knobSize - height : knobY - root.knobSize
            width: QXTheme.touchTarget
            height: QXTheme.touchTarget
            visible: area.pressed || (edge.bottom > 0 && edge.top < root.view.height)

            Accessible.ignored: true

            Rectangle {
                anchors.horizontalCenter: parent.horizontalCenter
                y: handle.edge.y - handle.y
                width: root.stemWidth
                height: handle.edge.height
                color: QXTheme.blue
            }

            Rectangle {
                anchors.horizontalCenter: parent.horizontalCenter
                y: handle.knobY - handle.y - height / 2
                width: root.knobSize
                height: root.knobSize
                radius: root.knobSize / 2
                color: QXTheme.blue
            }

            MouseArea {
                id: area

                /// The offset from the finger to the middle of the row at this end of the selection.
                property point offset

                anchors.fill: parent
                preventStealing: true

                onPressed: mouse => {
                    const at = mapToItem(root.view, mouse.x, mouse.y);
                    offset = Qt.point(handle.edge.x - at.x, handle.edge.y + handle.edge.height / 2 - at.y);
                    root.view.holdEdge(handle.isStart);
                }
                onPositionChanged: mouse => root.view.moveEdge(place(mouse))
                onCanceled: root.view.releaseEdge()
                onReleased: mouse => {
                    root.view.releaseEdge();
                    root.view.contextMenuRequested(place(mouse));
                }

                function place(mouse: var): point {
                    const at = mapToItem(root.view, mouse.x, mouse.y);
                    return Qt.point(at.x + offset.x, at.y + offset.y);
                }
            }
        }
    }
}
