import QtQuick
import Quorvix.Controls

/// A text as it stands: what came from elsewhere is never taken for markup.
Text {
    color: QXTheme.label
    font: QXTheme.body
    textFormat: Text.PlainText
    horizontalAlignment: Text.AlignLeft
}
