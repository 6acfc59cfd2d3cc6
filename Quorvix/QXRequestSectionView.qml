pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls
import Quorvix.Text
import Quorvix.Screens

/// One section of the details screen: values, the breakpoint switch, a group of values that can be
/// collapsed, or a body.
Column {
    id: root

    required property int index
    required property int kind
    required property string title
    required property var values
    required property bool expanded
    required property QXTextDocument document
    required property QXRequestDetailsViewModel viewModel
    required property QXPage page
    /// Finds in the body.
    required property QXTextFinder finder
    property real columnMargin: QXTheme.margin

    readonly property bool isBody: kind === QXRequestDetailsViewModel.BodySection
    readonly property bool isGroup: kind === QXRequestDetailsViewModel.GroupSection
    readonly property real columnWidth: width - 2 * columnMargin

    /// Requests the menu of a value; @p position is in the coordinates of @p item.
    signal menuRequested(Item item, point position, string text)
    /// Requests the menu of this section's body; @p position is in the coordinates of @p block.
    signal bodyMenuRequested(QXTextBlock block, point position)

    objectName: "QXRequestSection"
    topPadding: isGroup ? 10 : 20

    QXSectionTitle {
        x: root.columnMargin
        width: root.columnWidth
        bottomPadding: 4
        visible: !root.isBody && !root.isGroup
        text: root.title
    }

    // The Repeaters below create an item only for the sections that need it.
    Repeater {
        model: root.kind === QXRequestDetailsViewModel.BreakpointSection ? 1 : 0

        delegate: QXSwitch {
            id: breakpoint

            objectName: "QXBreakpointSwitch"
            x: root.columnMargin
            width: root.columnWidth
            text: qsTranslate("Quorvix", "Enable response breakpoint")
            checked: root.viewModel.breakpointEnabled
            onToggled: root.viewModel.breakpointEnabled = checked
            onVisualFocusChanged: root.page.revealFocused(breakpoint)
        }
    }

    Repeater {
        model: root.isGroup ? 1 : 0

        delegate: QXDisclosureGroup {
            id: group

            width: root.width
            columnMargin: root.columnMargin
            text: root.title
            expanded: root.expanded
            onClicked: root.viewModel.toggleGroup(root.index)
            onVisualFocusChanged: root.page.revealFocused(group)
        }
    }

    Repeater {
        model: root.values

        delegate: QXValueRow {
            id: row

            required property var modelData

            width: root.width
            visible: !root.isGroup || root.expanded
            columnMargin: root.columnMargin
            label: modelData.label
            text: modelData.text
            document: root.viewModel.documentForValue(modelData.text)
            page: root.page
            textColor: QXTheme.textColor(modelData.color)
            onCopyRequested: root.viewModel.copyValue(row.text)
            onContextMenuRequested: position => root.menuRequested(row, position, row.text)
            onVisualFocusChanged: {
                if (row.visualFocus)
                    root.page.reveal(row);
            }
        }
    }

    Repeater {
        model: root.isBody ? 1 : 0

        delegate: QXBodyTitle {
            x: root.columnMargin
            width: root.columnWidth
            text: root.title
            page: root.page
            canOpen: root.document !== null
            onTreeRequested: root.viewModel.openLogTree(root.index)
        }
    }

    // A placeholder until the text of the body is ready.
    Rectangle {
        x: root.columnMargin
        width: root.columnWidth
        height: QXTheme.touchTarget
        visible: root.isBody && root.document === null
        radius: QXTheme.cornerRadius
        color: QXTheme.secondaryBackground
    }

    Repeater {
        model: root.isBody && root.document !== null ? 1 : 0

        delegate: QXTextBlock {
            id: block

            objectName: "QXBodyBlock"
            x: root.columnMargin
            width: root.columnWidth
            page: root.page
            document: root.document
            Component.onCompleted: root.finder.add(block.view)
            onCopyRequested: root.viewModel.copyBody(root.index)
            onContextMenuRequested: position => root.bodyMenuRequested(block, position)
            onActiveFocusChanged: {
                if (activeFocus)
                    root.page.revealBeginning(block);
            }
        }
    }
}
