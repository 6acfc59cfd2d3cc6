#pragma once

/// Makes the linker keep the types and files of the QML module Quorvix.Text. May be called several times. Any
/// thread.
void linkQXTextModule();
