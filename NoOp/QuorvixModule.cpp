#include <QtCore/QtGlobal>

// The declaration in this macro needs C++ linkage, and the global namespace.
static void initializeResource()
{
    Q_INIT_RESOURCE(QuorvixNoOp);
}

/// Keeps the QML module in the program, which finds it by its name only. Quorvix::NoOp makes the linker ask
/// for this function.
extern "C" void quorvixNoOpModule()
{
    initializeResource();
}
