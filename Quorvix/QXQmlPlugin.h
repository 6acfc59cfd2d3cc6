#pragma once

#include <QtCore/QtGlobal>

/// Makes the linker keep the library, and in it the QML module Quorvix, which applications import by name
/// only. May be called several times. Any thread.
///
/// A static library exports it, too: if a shared library of the host contains the inspector, the program
/// finds it there, and does not get a second one.
extern "C" Q_DECL_EXPORT void quorvix_link_qml_module();
