#pragma once

/// Makes the linker keep the types and files of the QML module Quorvix.Controls. May be called several times.
/// Any thread.
void linkQXControlsModule();
