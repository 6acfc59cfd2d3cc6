#pragma once

#include "Tests/HostWindows.h"
#include "Tests/ScreenTest.h"

#include "Quorvix/QXBreakpointWindow.h"
#include "Quorvix/QXOverlay.h"

/// A test of the inspector over the windows of a host, wherever the inspector shows itself.
class HostTest : public ScreenTest
{
protected:
    void init() override
    {
        startAnew();
        m_host = std::make_unique<HostWindows::Host>();
        m_delivered.clear();
    }

    void cleanup() override
    {
        ScreenTest::cleanup();
        m_host.reset();
    }

    [[nodiscard]] static QXOverlay &overlay() { return *QuorvixClient::shared().overlayWindow(); }
    /// Where the inspector is now.
    [[nodiscard]] static QQuickWindow &place() { return *overlay().screenWindow(); }
    /// The window of the inspector that shows something, or null.
    [[nodiscard]] static QQuickWindow *placeOf(const char *name)
    {
        for (QQuickWindow *const window : {overlay().screenWindow(), overlay().window()}) {
            if (window && ScreenDriver::find(*window, name))
                return window;
        }
        return nullptr;
    }
    static bool has(const char *name) { return placeOf(name); }
    static void press(const char *name)
    {
        QTRY_VERIFY(has(name));
        ScreenDriver::click(*placeOf(name), name);
    }
    void hold(const QByteArray &body)
    {
        QVERIFY(ScreenTest::hold(body, [this](const auto &data, const auto &response, const auto &) {
            const auto &http = dynamic_cast<const Quorvix::NSHTTPURLResponse &>(*response);
            m_delivered.append(QByteArray::number(http.statusCode()) + ' ' + *data);
        }));
    }

    std::unique_ptr<HostWindows::Host> m_host;
    QByteArrayList m_delivered;
};
