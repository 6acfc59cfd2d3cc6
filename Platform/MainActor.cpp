#include "Platform/MainActor.h"

#include "Platform/TaskMailbox.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

namespace Quorvix {

namespace {

TaskMailbox &mailbox()
{
    static auto *const mailbox = new TaskMailbox;
    return *mailbox;
}

void followApplication()
{
    mailbox().open(QCoreApplication::instance()->thread());
    qAddPostRoutine([] { delete mailbox().close(); });
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followApplication)

void MainActor::schedule(std::function<void()> task)
{
    mailbox().post(std::move(task));
}

bool MainActor::isCurrent()
{
    const QCoreApplication *application = QCoreApplication::instance();
    return application && application->thread() == QThread::currentThread();
}

} // namespace Quorvix
