import QtQuick
import Quorvix.Controls

/// What stands over a section.
QXText {
    font: QXTheme.captionBold
    color: QXTheme.secondaryLabel
    wrapMode: Text.Wrap
    Accessible.role: Accessible.Heading
    Accessible.name: text
}
