#pragma once

#include <QtCore/QtGlobal>

/// Keeps a QML module in a program that is linked statically. Without it the linker drops the module's types
/// and files, because QML finds them by name only.
///
/// Defines the function @p function in the global namespace. @p uri is the URI of the module, with "_" for
/// ".", and @p room is the CMake target of the module.
#define QX_QML_MODULE(function, uri, room)                                                                   \
    void qml_register_types_##uri();                                                                         \
    void function()                                                                                          \
    {                                                                                                        \
        Q_INIT_RESOURCE(qmake_##uri);                                                                        \
        Q_INIT_RESOURCE(qmlcache_##room);                                                                    \
        Q_INIT_RESOURCE(room##_raw_qml_0);                                                                   \
        [[maybe_unused]] volatile const auto registration = &qml_register_types_##uri;                       \
    }
