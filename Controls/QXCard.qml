import QtQuick
import Quorvix.Controls

/// The rounded ground of a sheet, an alert, or a menu. In dark a thin edge parts it from the page below.
Rectangle {
    radius: QXTheme.cardRadius
    color: QXTheme.elevatedBackground
    border.width: QXTheme.isDark ? 1 : 0
    border.color: QXTheme.cardEdge
}
