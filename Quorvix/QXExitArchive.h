#pragma once

/// The archive that a program writes at its end, when the environment variable QUORVIX_HAR names a file.
///
/// "%p" in the name stands for the process identifier, so that the programs of a test suite do not write to
/// the same file. A relative name is relative to the working directory at the start. The archive has what the
/// recorder has at the end, with running exchanges, and what other threads have reported by then. The file
/// appears complete or not at all; a failure goes to the inspector's log only. It is written when the
/// application object is destroyed, or when its thread calls exit() or returns from main() without that.
class QXExitArchive final
{
public:
    /// Reads the variable and, if it is set, sees to the archive at the end of the current application.
    /// Returns whether it is set: then the sessions have to be captured, too. Each source file with which
    /// capture can begin calls it when the application starts; only the first call has an effect. On the
    /// application's thread.
    static bool begin();

private:
    static void write();
};
