#include "Platform/ApplicationEnd.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <vector>

namespace Quorvix {

namespace {

/// The objects of a thread that calls exit() are destroyed before all static objects. So this is the last
/// moment at which another thread can still use Qt. A function that is registered with std::atexit() would
/// be too late: Qt makes many of its static objects after that.
struct ExitRoutines
{
    ~ExitRoutines()
    {
        for (const ApplicationEnd::Routine routine : routines)
            routine();
    }

    std::vector<ApplicationEnd::Routine> routines;
};

} // namespace

void ApplicationEnd::call(Routine routine)
{
    static thread_local ExitRoutines ofThread;

    qAddPostRoutine(routine);
    if (std::find(ofThread.routines.cbegin(), ofThread.routines.cend(), routine) == ofThread.routines.cend())
        ofThread.routines.push_back(routine);
}

} // namespace Quorvix
