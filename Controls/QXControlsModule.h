#pragma once

/// Makes sure that the QML module Quorvix.Controls is linked, types and files. Any thread, any number of
/// times.
void linkQXControlsModule();
