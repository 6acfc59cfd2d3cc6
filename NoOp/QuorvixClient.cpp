#include "Quorvix/QuorvixClient.h"

#include <atomic>

namespace {

/// A host reads back what it has set.
std::atomic<QXLogLevel> currentLevel = QXLogLevel::none;

} // namespace

QuorvixClient::QuorvixClient() = default;
QuorvixClient::~QuorvixClient() = default;

void QuorvixClient::DeleteLater::operator()(QXOverlay *) const {}

QuorvixClient &QuorvixClient::shared()
{
    static auto *const client = new QuorvixClient;
    return *client;
}

void QuorvixClient::start() {}
void QuorvixClient::start(QQmlEngine &) {}
void QuorvixClient::show() {}
void QuorvixClient::hide() {}

QXLogLevel QuorvixClient::logLevel() const
{
    return currentLevel;
}

void QuorvixClient::setLogLevel(QXLogLevel level)
{
    currentLevel = level;
}

QXPresentation QuorvixClient::presentation() const
{
    return m_presentation;
}

void QuorvixClient::setPresentation(QXPresentation presentation)
{
    m_presentation = presentation;
}

QXOverlay *QuorvixClient::overlayWindow() const
{
    return nullptr;
}
