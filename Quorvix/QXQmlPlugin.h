#pragma once

#include "Quorvix/QuorvixGlobal.h"

/// Makes the linker keep the library, and in it the QML module Quorvix, which applications import by name
/// only. May be called several times. Any thread.
extern "C" QUORVIX_EXPORT void quorvix_link_qml_module();
