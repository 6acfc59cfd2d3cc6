pragma ComponentBehavior: Bound

import QtQuick
import Quorvix.Controls

/// The place of a find bar, which takes room only while the user finds something. The view around it passes on its
/// keys.
Column {
    id: root

    /// Finds in what the view shows; null for a view in which nothing can be found.
    property QXFinder finder: null
    property bool isFinding: false
    /// What gets the keyboard focus after the find field, unless a match gets it.
    property Item content: null

    // The Repeater creates an item only while the field is open.
    Repeater {
        id: bars

        model: root.isFinding ? 1 : 0

        delegate: QXFindBar {
            width: root.width
            finder: root.finder
            onCloseRequested: root.end()
        }
    }

    /// Returns which command a key is: QXFinder.Find, Next or Previous, or 0.
    function commandOf(event: var): int {
        return root.finder ? root.finder.commandFor(event.key, event.modifiers) : 0;
    }

    /// Opens the find field, or goes to the next or previous match. Returns whether the command is one.
    function perform(command: int): bool {
        if (command === 0)
            return false;
        if (command === QXFinder.Find || root.finder.text.length === 0) {
            root.isFinding = true;
            root.finder.marksMatches = true;
            (bars.itemAt(0) as QXFindBar).begin();
        } else if (command === QXFinder.Next) {
            root.finder.next();
        } else {
            root.finder.previous();
        }
        return true;
    }

    /// Closes the find field. Returns whether it was open.
    function end(): bool {
        if (!root.isFinding)
            return false;
        const hadFocus = bars.itemAt(0).activeFocus;
        root.finder.marksMatches = false;
        root.isFinding = false;
        if (hadFocus && !root.finder.focusMatch())
            root.content?.forceActiveFocus();
        return true;
    }
}
