#include "Platform/MainActor.h"

#include "Platform/TaskMailbox.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <memory>
#include <utility>
#include <vector>

namespace Quorvix {

namespace {

TaskMailbox &mailbox()
{
    static auto *const mailbox = new TaskMailbox;
    return *mailbox;
}

/// A task that can run at the end of the application, or something else in its place.
class ReportTask final : public MailboxTask
{
public:
    ReportTask(std::function<void()> task, std::function<void()> reportAlone)
        : m_task(std::move(task)), m_report(std::move(reportAlone))
    {
    }

    void run() override { m_task(); }
    bool report() override
    {
        m_report ? m_report() : m_task();
        return true;
    }

private:
    const std::function<void()> m_task;
    /// Null if the task itself can run at the end.
    const std::function<void()> m_report;
};

std::vector<ApplicationEnd::Routine> &endRoutines()
{
    static auto *const routines = new std::vector<ApplicationEnd::Routine>;
    return *routines;
}

void applicationEnds()
{
    for (const auto routine : std::exchange(endRoutines(), {}))
        routine();
    const TaskMailbox::Remains remains = mailbox().close();
    delete remains.receiver;
}

void followApplication()
{
    mailbox().open(QCoreApplication::instance()->thread());
    qAddPostRoutine(applicationEnds);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(followApplication)

void MainActor::schedule(std::function<void()> task)
{
    mailbox().post(std::move(task));
}

void MainActor::scheduleReport(std::function<void()> task)
{
    scheduleReport(std::move(task), nullptr);
}

void MainActor::scheduleReport(std::function<void()> task, std::function<void()> report)
{
    post(std::make_shared<ReportTask>(std::move(task), std::move(report)));
}

void MainActor::post(MailboxTaskPtr task)
{
    mailbox().post(std::move(task));
}

void MainActor::post(std::vector<MailboxTaskPtr> tasks)
{
    mailbox().post(std::move(tasks));
}

void MainActor::flushReports()
{
    mailbox().reportWaitingTasks();
}

void MainActor::callAtEnd(ApplicationEnd::Routine routine)
{
    endRoutines().push_back(routine);
    ApplicationEnd::call(routine);
}

bool MainActor::isCurrent()
{
    const QCoreApplication *application = QCoreApplication::instance();
    return application && application->thread() == QThread::currentThread();
}

} // namespace Quorvix
