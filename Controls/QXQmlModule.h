#pragma once

#include <QtCore/QtGlobal>

/// Keeps a room's QML module in a program that is linked statically: the linker drops what nothing refers to,
/// and QML finds its types and files by name only.
///
/// Defines the function @p function in the global namespace; @p uri is the module's, with "_" for ".", and
/// @p room the target that it is made with.
#define QX_QML_MODULE(function, uri, room)                                                                   \
    void qml_register_types_##uri();                                                                         \
    void function()                                                                                          \
    {                                                                                                        \
        Q_INIT_RESOURCE(qmake_##uri);                                                                        \
        Q_INIT_RESOURCE(qmlcache_##room);                                                                    \
        Q_INIT_RESOURCE(room##_raw_qml_0);                                                                   \
        [[maybe_unused]] volatile const auto registration = &qml_register_types_##uri;                       \
    }
