import QtQuick
import Quorvix.Controls

/// A part of a window into which assistive technologies do not go while it is covered.
QXCoverable {
    id: root

    property bool isCovered: !enabled

    Accessible.role: Accessible.Grouping
    Accessible.ignored: !root.isCovered
}
