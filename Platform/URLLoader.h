#pragma once

#include "Platform/NSURLSession.h"

#include <QtCore/QPointer>
#include <QtNetwork/QNetworkAccessManager>
#include <QtNetwork/QNetworkReply>

#include <atomic>

/// The thread in which all sessions load. It starts with the first task and ends with the application.
namespace LoadingThread {

/// Runs @p task there, in order; before there is an application it waits, after its end it is dropped.
void post(std::function<void()> task);

} // namespace LoadingThread

/// A session's part of the loading thread.
struct NSURLSession::Core
{
    explicit Core(NSURLSessionConfiguration sessionConfiguration);
    ~Core();

    /// Made on first use, in the loading thread, and gone with it at the latest.
    [[nodiscard]] QNetworkAccessManager *manager();

    const NSURLSessionConfiguration configuration;

private:
    QPointer<QNetworkAccessManager> m_manager;
};

/// A task's state; shared with the loading thread, which keeps it until the exchange is over.
struct NSURLSessionDataTask::Core
{
    std::shared_ptr<NSURLSession::Core> session;
    URLRequest request;
    DataTaskCompletionHandler completionHandler;
    std::atomic<State> state = State::Suspended;
    /// The request now on its way: the original one, or the one that a redirect led to.
    URLRequest current;
    int redirects = 0;
    /// Present while bytes are awaited; used in the loading thread only.
    QPointer<QNetworkReply> reply;
};

/// Sends the request. In the loading thread.
void startLoading(const std::shared_ptr<NSURLSessionDataTask::Core> &task);
/// Ends the exchange, whether or not it was started. In the loading thread.
void cancelLoading(const std::shared_ptr<NSURLSessionDataTask::Core> &task);
