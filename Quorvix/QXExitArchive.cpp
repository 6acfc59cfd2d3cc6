#include "Quorvix/QXExitArchive.h"

#include "Quorvix/QXArchiveWriter.h"
#include "Quorvix/QXLog.h"
#include "Quorvix/QXRequestRecorder.h"

#include "Platform/MainActor.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>

#include <utility>

using namespace Quorvix;
using namespace Qt::StringLiterals;

namespace {

/// On the application's thread only.
struct Assignment
{
    /// Never destroyed: a static application object may be the last of all static objects to go.
    static Assignment &instance()
    {
        static auto *const assignment = new Assignment;
        return *assignment;
    }

    /// Where to write; empty if there is nothing to write, or no more.
    QString path;
    /// A child process that goes on after fork() ends, too, and would replace the file of its parent.
    qint64 processId = 0;
};

} // namespace

bool QXExitArchive::begin()
{
    Assignment &assignment = Assignment::instance();
    if (!assignment.path.isEmpty())
        return true;
    QString name = qEnvironmentVariable("QUORVIX_HAR");
    if (name.isEmpty())
        return false;
    assignment.processId = QCoreApplication::applicationPid();
    name.replace("%p"_L1, QString::number(assignment.processId));
    assignment.path = QFileInfo(name).absoluteFilePath();
    MainActor::callAtEnd(&QXExitArchive::write);
    return true;
}

void QXExitArchive::write()
{
    const Assignment assignment = std::exchange(Assignment::instance(), {});
    if (assignment.path.isEmpty() || assignment.processId != QCoreApplication::applicationPid())
        return;
    auto &recorder = QXRequestRecorder::shared();
    // What the host has connected to the changes may be gone by now.
    recorder.m_isQuiet = true;
    MainActor::flushReports();
    recorder.m_isQuiet = false;
    const QXTraceList traces = recorder.requests();
    if (const auto error = QXArchiveWriter::write(QXArchiveWriter::sourceOf(traces), assignment.path))
        QXLog::log(QXLogLevel::error,
                   u"[Archive] %1: %2"_s.arg(assignment.path, error->localizedDescription));
}
