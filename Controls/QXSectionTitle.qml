import QtQuick
import Quorvix.Controls

/// The title of a section.
QXText {
    font: QXTheme.captionBold
    color: QXTheme.secondaryLabel
    wrapMode: Text.Wrap
    Accessible.role: Accessible.Heading
    Accessible.name: text
}
