#include "Platform/MainActor.h"

#include "Platform/TaskMailbox.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QThread>

#include <atomic>
#include <list>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace Quorvix {

namespace {

TaskMailbox &mailbox()
{
    static auto *const mailbox = new TaskMailbox;
    return *mailbox;
}

/// The reports whose tasks have not been destroyed yet, oldest first.
struct Reports
{
    struct Report
    {
        explicit Report(std::function<void()> reportedTask, std::function<void()> reportAlone)
            : task(std::move(reportedTask)), report(std::move(reportAlone))
        {
        }
        Q_DISABLE_COPY_MOVE(Report)
        ~Report() { instance().remove(place); }

        std::function<void()> task;
        /// Null if the task itself can run at the end.
        std::function<void()> report;
        bool hasRun = false;
        std::list<std::weak_ptr<Report>>::iterator place;
    };

    static Reports &instance()
    {
        static auto *const reports = new Reports;
        return *reports;
    }

    void add(const std::shared_ptr<Report> &report)
    {
        const std::scoped_lock lock(mutex);
        report->place = list.insert(list.end(), report);
    }

    void remove(std::list<std::weak_ptr<Report>>::iterator place)
    {
        const std::scoped_lock lock(mutex);
        list.erase(place);
    }

    void flush()
    {
        std::vector<std::shared_ptr<Report>> pending;
        {
            const std::scoped_lock lock(mutex);
            for (const auto &entry : list) {
                if (auto report = entry.lock())
                    pending.push_back(std::move(report));
            }
        }
        for (const auto &report : pending) {
            if (!std::exchange(report->hasRun, true))
                report->report ? report->report() : report->task();
        }
    }

    std::mutex mutex;
    std::list<std::weak_ptr<Report>> list;
};

std::atomic<bool> areReportsKept = true;

std::vector<ApplicationEnd::Routine> &endRoutines()
{
    static auto *const routines = new std::vector<ApplicationEnd::Routine>;
    return *routines;
}

void applicationEnds()
{
    for (const auto routine : std::exchange(endRoutines(), {}))
        routine();
    delete mailbox().close();
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
    if (!areReportsKept)
        return schedule(std::move(task));
    auto made = std::make_shared<Reports::Report>(std::move(task), std::move(report));
    Reports::instance().add(made);
    // Moved, so that what the task has captured is never destroyed by this thread.
    schedule([made = std::move(made)] {
        if (!std::exchange(made->hasRun, true))
            made->task();
    });
}

void MainActor::keepReports(bool keep)
{
    areReportsKept = keep;
}

void MainActor::flushReports()
{
    Reports::instance().flush();
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
