#include "Examples/MonkeyGuard.h"

#include "Examples/MonkeyDiary.h"

#include <QtGui/QDesktopServices>

#include <chrono>
#include <csignal>
#include <cstdio>

#include <pthread.h>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/common_interface_defs.h>
#endif

namespace {

using namespace std::chrono_literals;

#ifdef __SANITIZE_ADDRESS__
constexpr auto longestHang = 60s;
#else
constexpr auto longestHang = 15s;
#endif

const QStringList urlSchemes{QStringLiteral("file"), QStringLiteral("http"), QStringLiteral("https")};

std::atomic<int> complaintCount = 0;
pthread_t mainThread;

/// What Qt itself says about the platform, about limits of it, or about the simulated events.
bool isHarmless(const QString &message)
{
    static const QStringList beginnings{
        QStringLiteral("This plugin does not support"),         // of the platform "offscreen"
        QStringLiteral("QStandardPaths: "),                     // about the environment of the process
        QStringLiteral("Mouse event at"),                       // a drag may leave the window
        QStringLiteral("OpenType support missing"),             // of a script in a font of the system
        QStringLiteral("QUnifiedTimer::"),                      // about the clock of the animations
        QStringLiteral("QXcbClipboard: "),                      // about other clients of the display
        QStringLiteral("QNetworkReplyImplPrivate::error: "),    // about two faults of one answer
        QStringLiteral("QQuickTextInputPrivate::setSelection"), // the input method selects beyond the text
    };
    // The store shows no picture when its held response is released without a body.
    return message.endsWith(QStringLiteral("Not a picture")) ||
           std::any_of(
               beginnings.cbegin(), beginnings.cend(),
               [text = message.trimmed()](const QString &beginning) { return text.startsWith(beginning); });
}

void receiveMessage(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (type == QtDebugMsg || type == QtInfoMsg)
        std::fprintf(stderr, "%s\n", qPrintable(message));
    else if (!isHarmless(message))
        MonkeyGuard::complain(QStringLiteral("%1: %2").arg(
            QString::fromUtf8(context.category ? context.category : "?"), message));
}

#ifndef __SANITIZE_ADDRESS__
void crashed(int signal)
{
    MonkeyDiary::print();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}
#endif

/// A sanitizer reports a signal with a stack, and then calls MonkeyDiary::print().
void printDiaryOnCrash()
{
#ifdef __SANITIZE_ADDRESS__
    __sanitizer_set_death_callback(&MonkeyDiary::print);
#else
    for (const int signal : {SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL})
        std::signal(signal, &crashed);
#endif
}

} // namespace

MonkeyGuard::MonkeyGuard()
{
    mainThread = pthread_self();
    printDiaryOnCrash();
    qInstallMessageHandler(&receiveMessage);
    for (const QString &scheme : urlSchemes)
        QDesktopServices::setUrlHandler(scheme, this, "openUrl");
    startTimer(100ms);
    m_watchdog = std::thread(&MonkeyGuard::watch, this);
}

MonkeyGuard::~MonkeyGuard()
{
    m_ends = true;
    m_watchdog.join();
    for (const QString &scheme : urlSchemes)
        QDesktopServices::unsetUrlHandler(scheme);
}

void MonkeyGuard::complain(const QString &complaint)
{
    constexpr int mostDiaries = 5;
    const int number = ++complaintCount;
    std::fprintf(stderr, "COMPLAINT %d: %s\n", number, qPrintable(complaint));
    if (number <= mostDiaries)
        MonkeyDiary::print();
}

int MonkeyGuard::complaints() noexcept
{
    return complaintCount;
}

void MonkeyGuard::openUrl(const QUrl &url)
{
    MonkeyDiary::note("url", url.toDisplayString());
}

void MonkeyGuard::timerEvent(QTimerEvent * /*event*/)
{
    ++m_beats;
}

void MonkeyGuard::watch() noexcept
{
    constexpr auto interval = 250ms;
    unsigned seen = m_beats;
    auto quiet = 0ms;
    while (!m_ends) {
        std::this_thread::sleep_for(interval);
        quiet = m_beats == seen ? quiet + interval : 0ms;
        seen = m_beats;
        if (quiet < longestHang)
            continue;
        std::fprintf(stderr, "COMPLAINT: the main thread hangs\n");
        // The stack that a sanitizer or a debugger shows is then the main thread's.
        pthread_kill(mainThread, SIGABRT);
        return;
    }
}
