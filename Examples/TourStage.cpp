#include "Examples/TourStage.h"

#include "Quorvix/QXRequestRecorder.h"

TourStage::TourStage(TourRobot &robot, const QString &outputFolder)
    : m_robot(robot), m_outputFolder(outputFolder), m_started(QDateTime::currentDateTime())
{
}

TourStage::~TourStage() = default;

QString TourStage::name(const char *objectName)
{
    return QString::fromLatin1(objectName);
}

bool TourStage::captured(const QString &path, int status)
{
    const auto traces = QXRequestRecorder::shared().findRequests([&](const QXRequestTrace &trace) {
        return trace.url && trace.url->path() == path && trace.response &&
               trace.response->statusCode == status;
    });
    return !traces.isEmpty();
}

qsizetype TourStage::capturedCount()
{
    return QXRequestRecorder::shared().requests().size();
}

QString TourStage::outputFile(const QString &fileName) const
{
    return m_outputFolder + u'/' + fileName;
}
