#include "Examples/TourStage.h"

#include <Quorvix/QXRequestRecorder.h>

#include <QtGui/QFontInfo>
#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickItem>

namespace {

using namespace std::chrono_literals;

/// The time limit for steps that process 10 MB, also on a busy machine.
constexpr auto largeBodyLimit = 180s;

} // namespace

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

void TourStage::doubleTextSize()
{
    QFont font = QGuiApplication::font();
    font.setPixelSize(2 * QFontInfo(font).pixelSize());
    QGuiApplication::setFont(font);
}

bool TourStage::openExchange(const char *search)
{
    return (robot().text(name("QXSearchField")).isEmpty() || robot().click(name("QXSearchClearButton"))) &&
           robot().type(name("QXSearchField"), name(search)) &&
           robot().waitUntil([this] { return robot().count(name("QXRequestRow")) <= 5; },
                             QStringLiteral("too many rows for ") + name(search)) &&
           robot().clickFirst(name("QXRequestRow")) && robot().waitFor(name("QXValueRow:URL"));
}

bool TourStage::closeExchange()
{
    return robot().click(name("QXBackButton")) && robot().waitUntilGone(name("QXRequestDetailsView"));
}

bool TourStage::openTree()
{
    return robot().waitUntil(
               [this] {
                   const QQuickItem *const button = robot().find(name("QXLogTreeButton"));
                   return button && button->isEnabled();
               },
               QStringLiteral("the body is not ready"), largeBodyLimit) &&
           robot().click(name("QXLogTreeButton")) && robot().waitFor(name("QXLogTreeRow"), largeBodyLimit);
}

bool TourStage::closeTree()
{
    return robot().click(name("QXBackButton")) && robot().waitUntilGone(name("QXLogTreeView"));
}

QString TourStage::outputFile(const QString &fileName) const
{
    return m_outputFolder + u'/' + fileName;
}
