import QtQuick
import Quorvix.Controls

/// Plain text. Text from outside is never interpreted as markup.
Text {
    color: QXTheme.label
    font: QXTheme.body
    textFormat: Text.PlainText
    horizontalAlignment: Text.AlignLeft
}
