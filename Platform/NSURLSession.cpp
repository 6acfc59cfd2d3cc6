#include "Platform/NSURLSession.h"

#include "Platform/MainThreadCompletion.h"
#include "Platform/ObjectRuntime.h"
#include "Platform/URLLoader.h"

namespace Quorvix {

struct NSURLSession::Class
{
    Class() : dataTask(objectClass.addMethod(dataTaskSelector, &makeTask)) {}

    static const Class &instance()
    {
        static const auto *const instance = new Class;
        return *instance;
    }

    mutable ObjectClass objectClass;
    /// An exchange of implementations changes the method table, but not this object.
    const Method *const dataTask;
};

NSURLSession::NSURLSession(NSURLSessionConfiguration configuration)
    : m_loadSession(std::make_shared<URLLoadSession>(std::move(configuration)))
{
}

NSURLSession::~NSURLSession() = default;

NSURLSession &NSURLSession::shared()
{
    static auto *const session = new NSURLSession;
    return *session;
}

ObjectClass &NSURLSession::objectClass()
{
    return Class::instance().objectClass;
}

void NSURLSession::setCompletesOnMainThread(bool completes)
{
    m_loadSession->completesOnMainThread = completes;
}

NSURLSessionDataTaskPtr NSURLSession::dataTaskWithRequest(const URLRequest &request,
                                                          CompletionHandler completionHandler)
{
    const Class &self = Class::instance();
    auto *const send = self.objectClass.implementation<DataTaskImplementation>(self.dataTask);
    return send(*this, request, std::move(completionHandler));
}

NSURLSessionDataTaskPtr NSURLSession::dataTaskWithRequest(const URLRequest &request)
{
    return makeTask(*this, request, nullptr);
}

NSURLSessionDataTaskPtr NSURLSession::makeTask(NSURLSession &session, const URLRequest &request,
                                               CompletionHandler completionHandler)
{
    // The hook's own completion goes to the main thread anyway.
    const bool isOnItsWay = !completionHandler || completionHandler.target<MainThreadCompletion>();
    if (session.m_loadSession->completesOnMainThread && !isOnItsWay)
        completionHandler = MainThreadCompletion(std::move(completionHandler));

    auto load = std::make_shared<URLLoadTask>();
    load->session = session.m_loadSession;
    load->request = request;
    load->completionHandler = std::move(completionHandler);
    return NSURLSessionDataTaskPtr(new NSURLSessionDataTask(std::move(load)));
}

} // namespace Quorvix
