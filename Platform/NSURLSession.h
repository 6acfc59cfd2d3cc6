#pragma once

#include "NSURLSessionConfiguration.h"
#include "NSURLSessionDataTask.h"

#include <QtCore/QByteArrayView>

namespace Quorvix {

class ObjectClass;
struct URLLoadSession;

/// Loads URLs (http, https, file, data) in the background. Any thread may use a session.
///
/// Redirects are followed, content codings decoded, cookies kept in the shared storage; HTTP/2 is used where
/// it is negotiated. A session may go while its tasks run: they end as they would have.
class QUORVIX_CORE_EXPORT NSURLSession
{
public:
    using CompletionHandler = DataTaskCompletionHandler;
    /// What stands behind the selector "dataTaskWithRequest:completionHandler:".
    using DataTaskImplementation = NSURLSessionDataTaskPtr(NSURLSession &, const URLRequest &,
                                                           CompletionHandler);

    static constexpr QByteArrayView dataTaskSelector{"dataTaskWithRequest:completionHandler:"};

    explicit NSURLSession(NSURLSessionConfiguration configuration = {});
    ~NSURLSession();
    NSURLSession(const NSURLSession &) = delete;
    NSURLSession &operator=(const NSURLSession &) = delete;

    /// A session with the default configuration; made on first use, lives until the process ends.
    [[nodiscard]] static NSURLSession &shared();

    /// The class, whose methods can be looked up and exchanged.
    [[nodiscard]] static ObjectClass &objectClass();

    /// A suspended task for @p request. @p completionHandler is called once, in the sessions' own thread,
    /// unless the method was exchanged for one that calls it elsewhere. Sent through the class's method
    /// table.
    [[nodiscard]] NSURLSessionDataTaskPtr dataTaskWithRequest(const URLRequest &request,
                                                              CompletionHandler completionHandler);

    /// A suspended task whose outcome nobody is told of.
    [[nodiscard]] NSURLSessionDataTaskPtr dataTaskWithRequest(const URLRequest &request);

private:
    struct Class;
    static NSURLSessionDataTaskPtr makeTask(NSURLSession &session, const URLRequest &request,
                                            CompletionHandler completionHandler);

    std::shared_ptr<URLLoadSession> m_loadSession;
};

} // namespace Quorvix
