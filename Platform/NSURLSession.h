#pragma once

#include "NSURLSessionConfiguration.h"
#include "NSURLSessionDataTask.h"

#include <QtCore/QByteArrayView>

namespace Quorvix {

class ObjectClass;
struct URLLoadSession;

/// Loads URLs (http, https, file, data) in the background. Any thread may use a session.
///
/// A session follows redirects, decodes content codings, keeps cookies in the shared storage and uses HTTP/2
/// when the server negotiates it. A session may be destroyed while its tasks run; the tasks continue.
///
/// The content codings are gzip (also x-gzip), deflate (with the header of zlib or raw), br and zstd, alone
/// or several in a row. A request offers all of them, unless it sets Accept-Encoding itself: then that is
/// sent as it is, and a body in one of these codings is decoded all the same. A body with any other coding,
/// or a part of one (status 206), arrives as it was sent. Content-Length, the length of the coded body, is
/// left out of a response with a decoded one.
///
/// Data that cannot be decoded is an error: NSURLErrorCannotDecodeRawData if it is damaged,
/// NSURLErrorCannotDecodeContentData if it has more than five codings. A body that is shorter than its
/// Content-Length is NSURLErrorNetworkConnectionLost. The response, if any, comes with the error, the data
/// does not.
class QUORVIX_CORE_EXPORT NSURLSession
{
public:
    /// What a task calls when it ends.
    using CompletionHandler = DataTaskCompletionHandler;
    /// The signature of the method "dataTaskWithRequest:completionHandler:".
    using DataTaskImplementation = NSURLSessionDataTaskPtr(NSURLSession &, const URLRequest &,
                                                           CompletionHandler);

    /// The selector of the method that makes data tasks.
    static constexpr QByteArrayView dataTaskSelector{"dataTaskWithRequest:completionHandler:"};

    /// A session that loads with this configuration.
    explicit NSURLSession(NSURLSessionConfiguration configuration = {});
    ~NSURLSession();
    NSURLSession(const NSURLSession &) = delete;
    NSURLSession &operator=(const NSURLSession &) = delete;

    /// A session with the default configuration. It is created on first use and lives until the process ends.
    [[nodiscard]] static NSURLSession &shared();

    /// The class of sessions, whose methods can be looked up and exchanged.
    [[nodiscard]] static ObjectClass &objectClass();

    /// Whether the tasks that are made from now on call their handlers on the main thread: what
    /// NSURLSessionConfiguration::completesOnMainThread says, for a session that exists, such as shared().
    void setCompletesOnMainThread(bool completes);

    /// A suspended task for @p request. The task calls @p completionHandler once: on the main thread while
    /// sessions are captured or if this one completes there, otherwise in the sessions' own thread. A handler
    /// for the main thread is also destroyed there, at the end of the application at the latest, and one that
    /// has not run by then is not called. The call goes through the class's method table.
    [[nodiscard]] NSURLSessionDataTaskPtr dataTaskWithRequest(const URLRequest &request,
                                                              CompletionHandler completionHandler);

    /// A suspended task that reports its outcome to nobody.
    [[nodiscard]] NSURLSessionDataTaskPtr dataTaskWithRequest(const URLRequest &request);

private:
    struct Class;
    static NSURLSessionDataTaskPtr makeTask(NSURLSession &session, const URLRequest &request,
                                            CompletionHandler completionHandler);

    std::shared_ptr<URLLoadSession> m_loadSession;
};

} // namespace Quorvix
