#include "Quorvix/QXQmlPlugin.h"

namespace {

/// A call while the program starts is a reference that no linker and no optimizer may drop.
[[maybe_unused]] const bool isLinked = (quorvix_link_qml_module(), true);

} // namespace
