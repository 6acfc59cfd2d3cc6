#include "Platform/URLLoadSession.h"

#include "Platform/HTTPCookieStorage.h"
#include "Platform/LoadingThread.h"

#include <QtNetwork/QNetworkCookieJar>

namespace Quorvix {

URLLoadSession::URLLoadSession(NSURLSessionConfiguration sessionConfiguration)
    : configuration(std::move(sessionConfiguration)),
      completesOnMainThread(configuration.completesOnMainThread)
{
}

URLLoadSession::~URLLoadSession()
{
    if (m_manager) {
        LoadingThread::post([manager = m_manager, parent = m_parent] {
            if (parent == LoadingThread::parent())
                delete manager;
        });
    }
}

URLLoadManager *URLLoadSession::manager()
{
    if (!m_manager || m_parent != LoadingThread::parent()) {
        m_parent = LoadingThread::parent();
        m_manager = new URLLoadManager(LoadingThread::parent());
        m_manager->setCookieJar(HTTPCookieStorage::makeJar().release());
    }
    return m_manager;
}

} // namespace Quorvix
