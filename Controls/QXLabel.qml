import QtQuick
import Quorvix.Controls

/// A text of one line or a few lines. It shows only the beginning of a text that is longer than any line.
QXText {
    required property string content

    text: QXShortText.beginning(content)
}
