pragma Singleton

import QtQml

/// What `import Quorvix` gives in a program without the inspector: the same members, which do nothing.
QtObject {
    enum LogLevel {
        None,
        Error,
        Info,
        Debug
    }

    enum Presentation {
        Panel,
        Window
    }

    readonly property int requestCount: 0
    property int logLevel: Quorvix.None
    property int presentation: Quorvix.Panel

    function start() {
    }

    function show() {
    }

    function hide() {
    }

    function clear() {
    }
}
