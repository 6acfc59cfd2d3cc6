#pragma once

#include "Quorvix/QXLogLevel.h"
#include "Quorvix/QuorvixGlobal.h"

#include <memory>

class QXOverlay;

/// All that a host application needs to touch.
///
/// @code
/// QuorvixClient::shared().start(); // from now on every data task is captured, and the button floats
/// @endcode
class QUORVIX_EXPORT QuorvixClient
{
public:
    /// The one client; made on first use, lives until the process ends. Its making starts the capture of
    /// every data task that is created with a completion handler, for the rest of the process. Any thread.
    [[nodiscard]] static QuorvixClient &shared();

    QuorvixClient(const QuorvixClient &) = delete;
    QuorvixClient &operator=(const QuorvixClient &) = delete;

    /// The same as show().
    void start();
    /// Puts up the floating button, over the active Qt Quick window. Does nothing
    /// without a QGuiApplication. Main thread only.
    void show();
    /// Takes the button and its screens away. Capture goes on. Main thread only.
    void hide();

    /// How much the inspector writes about itself; none unless set. Any thread.
    [[nodiscard]] QXLogLevel logLevel() const;
    void setLogLevel(QXLogLevel level);

    /// The overlay now up, or null. Main thread only.
    [[nodiscard]] QXOverlay *overlayWindow() const;

private:
    QuorvixClient();
    ~QuorvixClient();

    static void applicationEnds();

    struct DeleteLater
    {
        void operator()(QXOverlay *overlay) const;
    };
    std::unique_ptr<QXOverlay, DeleteLater> m_overlayWindow;
};
