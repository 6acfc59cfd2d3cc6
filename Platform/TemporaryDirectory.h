#pragma once

#include "Platform/OpenFolder.h"

namespace Quorvix {

/// The temporary directory of this process, into which no other user can write: the system's, for example
/// TMPDIR, if that is so. In a temporary directory that users share, it is a folder of this user's, which no
/// other user can look into: "quorvix-" with the number of the user. Where another user, or something else,
/// has that name, a random number follows, and the folder is this process's only.
///
/// Fails if the system's temporary directory is missing, or if no folder can be created there. Any thread.
[[nodiscard]] Result<OpenFolder> temporaryDirectory();

} // namespace Quorvix
