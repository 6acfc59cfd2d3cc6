#pragma once

#include "Quorvix/QXLogLevel.h"
#include "Quorvix/QXPresentation.h"
#include "Quorvix/QuorvixGlobal.h"

#include <memory>

class QQmlEngine;
class QXOverlay;

/// The entry point for a host application.
///
/// @code
/// QuorvixClient::shared().start(); // captures every data task from now on and shows the floating button
/// @endcode
///
/// The requests of a QXNetworkAccessManager are captured without this, too.
class QUORVIX_EXPORT QuorvixClient
{
public:
    /// The only client; created on first use, lives until the process ends. Its constructor starts the
    /// capture of every data task with a completion handler, until the process ends. Any thread.
    [[nodiscard]] static QuorvixClient &shared();

    QuorvixClient(const QuorvixClient &) = delete;
    QuorvixClient &operator=(const QuorvixClient &) = delete;

    /// The same as show().
    void start();
    /// Captures what @p engine loads from the network, and shows the button. Called before the engine loads
    /// anything. Main thread only.
    void start(QQmlEngine &engine);
    /// Shows the floating button over the active window of the host. Does nothing without a QGuiApplication.
    /// Main thread only.
    void show();
    /// Removes the button and its screens. Capture continues. Main thread only.
    void hide();

    /// Where the screens open: over the host's window by default. Main thread only.
    [[nodiscard]] QXPresentation presentation() const;
    /// Sets where the next screen that opens is shown; those that are open stay. Main thread only.
    void setPresentation(QXPresentation presentation);

    /// The amount of diagnostic output of the inspector; none by default. Any thread.
    [[nodiscard]] QXLogLevel logLevel() const;
    /// Sets how much the inspector prints, in the category "Quorvix". Any thread.
    void setLogLevel(QXLogLevel level);

    /// The current overlay, or null. Main thread only.
    [[nodiscard]] QXOverlay *overlayWindow() const;

private:
    QuorvixClient();
    ~QuorvixClient();

    static void applicationEnds();
    static void stopDrawing();

    struct DeleteLater
    {
        void operator()(QXOverlay *overlay) const;
    };
    std::unique_ptr<QXOverlay, DeleteLater> m_overlayWindow;
    QXPresentation m_presentation = QXPresentation::panel;
};
