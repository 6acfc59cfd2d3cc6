#pragma once

/// Makes sure that the QML module Quorvix.Text is linked, types and files. Any thread, any number of times.
void linkQXTextModule();
