pragma Singleton

import QtQuick
import Quorvix.Controls

/// The colours, fonts and sizes of every screen; follows the system's palette and font while the app runs.
QtObject {
    id: root

    readonly property QXAppearance appearance: QXAppearance {}
    readonly property bool isDark: appearance.isDark
    readonly property bool isMirrored: appearance.isMirrored
    /// The factor for every size that grows with the text.
    readonly property real scale: appearance.fontScale
    /// Whether texts are too large to stand side by side on a narrow screen.
    readonly property bool isLargeText: scale >= 1.4

    readonly property color label: appearance.palette.label
    readonly property color secondaryLabel: isDark ? "#99ebebf5" : "#bf3c3c43"
    readonly property color tertiaryLabel: isDark ? "#4debebf5" : "#4d3c3c43"
    readonly property color separator: isDark ? "#99545458" : "#4a3c3c43"
    readonly property color background: isDark ? "#000000" : "#ffffff"
    readonly property color secondaryBackground: isDark ? "#1c1c1e" : "#f2f2f7"
    /// The background of cards on the secondary background, and of sheets and menus.
    readonly property color elevatedBackground: isDark ? "#2c2c2e" : "#ffffff"
    /// The background of a page in a sheet.
    readonly property color sheetPage: isDark ? secondaryBackground : background
    /// The secondary label's colour at 8 % on the page of a sheet.
    readonly property color faintFill: isDark ? "#2d2d2f" : "#efeff0"
    readonly property color fill: isDark ? "#3d767680" : "#1f767680"
    readonly property color pressedFill: appearance.palette.pressedFill
    readonly property color scrim: isDark ? "#80000000" : "#66000000"
    /// Dims the screen behind a menu only lightly, because the item of the menu has to stay visible.
    readonly property color menuScrim: isDark ? "#40000000" : "#1f000000"
    /// The border of a card in dark, where a shadow would not part it from the page.
    readonly property color cardEdge: isDark ? "#48484a" : "transparent"
    readonly property color outline: appearance.palette.outline

    readonly property color red: appearance.palette.red
    readonly property color orange: isDark ? "#ff9f0a" : "#ff9500"
    readonly property color yellow: isDark ? "#ffd60a" : "#ffcc00"
    readonly property color green: isDark ? "#30d158" : "#34c759"
    readonly property color blue: appearance.palette.blue
    readonly property color pink: isDark ? "#ff375f" : "#ff2d55"
    readonly property color gray: "#8e8e93"
    /// Texts and symbols that can be pressed. The plain colours are too light for text on a light background.
    readonly property color link: isDark ? "#409cff" : "#0062cc"
    readonly property color redText: isDark ? "#ff6961" : "#d70015"
    readonly property color orangeText: isDark ? "#ff9f0a" : "#a85300"
    readonly property color greenText: isDark ? "#30d158" : "#1f7a34"
    /// Backgrounds of white text.
    readonly property color selection: "#0062cc"
    /// The background of a text that was found.
    readonly property color mark: isDark ? "#6b5500" : "#ffe680"
    readonly property color destructive: "#d70015"
    readonly property color onColor: appearance.palette.onColor
    /// Backgrounds of small white text for different categories, in light and dark.
    readonly property color indigoFill: "#5856d6"
    readonly property color tealFill: "#0b7a84"
    readonly property color greenFill: "#217d38"
    readonly property color blueFill: "#0a66d6"
    readonly property color orangeFill: "#b85600"
    readonly property color grayFill: "#6c6c70"
    readonly property color shadow: appearance.palette.shadow

    /// The text in a bar grows only up to this factor, because the bar does not grow.
    readonly property real barScale: Math.min(scale, 1.15)
    readonly property font barTitle: Qt.font({
        family: appearance.fontFamily,
        pixelSize: Math.round(17 * barScale),
        weight: Font.DemiBold
    })
    readonly property font barItem: Qt.font({
        family: appearance.fontFamily,
        pixelSize: Math.round(17 * barScale)
    })

    readonly property font largeTitle: text(34, Font.Bold)
    readonly property font headline: text(17, Font.DemiBold)
    readonly property font body: text(17, Font.Normal)
    readonly property font subheadline: text(15, Font.Normal)
    readonly property font subheadlineSemibold: text(15, Font.DemiBold)
    readonly property font footnote: text(13, Font.Normal)
    readonly property font caption: text(12, Font.Normal)
    readonly property font captionBold: text(12, Font.Bold)
    readonly property font monospaced: Qt.font({
        family: appearance.monospacedFamily,
        pixelSize: Math.round(13 * scale)
    })

    /// The smallest size of a control that a finger can press reliably.
    readonly property real touchTarget: 44
    readonly property real margin: 16
    readonly property real spacing: 8
    readonly property real cornerRadius: 10
    readonly property real cardRadius: 14
    readonly property real symbolSize: 22
    /// The largest width of a column of text that is easy to read.
    readonly property real readableWidth: 720
    /// Whether views move by themselves. Otherwise they are at the end of their way at once, and so is what fades. An
    /// animation is not even started then: one that takes no time makes Qt advance all the others in between.
    readonly property bool animates: !appearance.isMotionReduced
    readonly property int duration: 300
    readonly property int shortDuration: 150

    function text(size: int, weight: int): font {
        return Qt.font({
            family: root.appearance.fontFamily,
            pixelSize: Math.round(size * root.scale),
            weight: weight
        });
    }

    /// The margin at either side of a column in a view of this width.
    function columnMargin(width: real): real {
        return Math.max(root.margin, (width - root.readableWidth) / 2);
    }

    /// The margin at either side of a row in a view of this width. A row of a narrow view touches both edges.
    function columnEdge(width: real): real {
        const column = root.columnMargin(width);
        return column > root.margin ? column : 0;
    }

    /// The text colour for a QXSystemColor.
    function textColor(value: int): color {
        switch (value) {
        case QXSystemColor.Clear:
            return root.label;
        case QXSystemColor.Green:
            return root.greenText;
        case QXSystemColor.Orange:
            return root.orangeText;
        case QXSystemColor.Red:
            return root.redText;
        default:
            return root.systemColor(value);
        }
    }

    function systemColor(value: int): color {
        switch (value) {
        case QXSystemColor.Gray:
            return root.gray;
        case QXSystemColor.Green:
            return root.green;
        case QXSystemColor.Yellow:
            return root.yellow;
        case QXSystemColor.Orange:
            return root.orange;
        case QXSystemColor.Red:
            return root.red;
        default:
            return "transparent";
        }
    }
}
