#include "Platform/NSURLSession.h"

#include "Platform/ObjectRuntime.h"
#include "Platform/URLLoader.h"

struct NSURLSession::Class
{
    Class() : dataTask(objectClass.addMethod(dataTaskSelector, &makeTask)) {}

    static const Class &instance()
    {
        static const auto *const instance = new Class;
        return *instance;
    }

    mutable ObjectClass objectClass;
    /// Keeps its place in the table whatever is exchanged.
    const Method *const dataTask;
};

NSURLSession::NSURLSession(NSURLSessionConfiguration configuration)
    : m_core(std::make_shared<Core>(std::move(configuration)))
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

NSURLSessionDataTaskPtr NSURLSession::dataTaskWithRequest(const URLRequest &request,
                                                          CompletionHandler completionHandler)
{
    const Class &self = Class::instance();
    auto *const send = self.objectClass.implementation<DataTaskImplementation>(self.dataTask);
    return send(*this, request, std::move(completionHandler));
}

NSURLSessionDataTaskPtr NSURLSession::dataTaskWithRequest(const URLRequest &request)
{
    return makeTask(*this, request, [](const auto &, const auto &, const auto &) {});
}

NSURLSessionDataTaskPtr NSURLSession::makeTask(NSURLSession &session, const URLRequest &request,
                                               CompletionHandler completionHandler)
{
    auto core = std::make_shared<NSURLSessionDataTask::Core>();
    core->session = session.m_core;
    core->request = request;
    core->completionHandler = std::move(completionHandler);
    return NSURLSessionDataTaskPtr(new NSURLSessionDataTask(std::move(core)));
}
