#pragma once

#include "Platform/NSNotificationCenter.h"

#include <QtCore/QObject>
#include <QtQml/qqmlregistration.h>

/// The inspector in QML: the singleton `Quorvix` of the module `Quorvix`.
///
/// @code
/// import Quorvix
///
/// Window {
///     Component.onCompleted: Quorvix.start()
/// }
/// @endcode
///
/// The import alone captures what the engine loads from the network: XMLHttpRequest, Image, FontLoader,
/// XmlListModel and the rest. It wraps the network access manager factory that the engine has by then.
/// start() is QuorvixClient::start(); it adds the button. It captures sessions with completion handlers, too,
/// as does each use of logLevel or presentation.
///
/// Each engine has its own object; all of them show the one inspector of the process. Main thread only.
class QXQmlClient : public QObject
{
    Q_OBJECT
    QML_NAMED_ELEMENT(Quorvix)
    QML_SINGLETON
    /// The number of captured exchanges. Changes are reported once per turn of the event loop.
    Q_PROPERTY(int requestCount READ requestCount NOTIFY requestCountChanged FINAL)
    /// The amount of diagnostic output of the inspector: `Quorvix.None`, which is the default,
    /// `Quorvix.Error`, `Quorvix.Info` or `Quorvix.Debug`. A change by C++ code or by another engine is not
    /// reported.
    Q_PROPERTY(LogLevel logLevel READ logLevel WRITE setLogLevel NOTIFY logLevelChanged FINAL)
    /// Where the screens open: `Quorvix.Panel`, over the application's window, which is the default, or
    /// `Quorvix.Window`, in a window of their own. A change applies to the next screen that opens. A change
    /// by C++ code or by another engine is not reported.
    Q_PROPERTY(
        Presentation presentation READ presentation WRITE setPresentation NOTIFY presentationChanged FINAL)

public:
    /// The values of QXLogLevel, with names that QML accepts.
    enum LogLevel { None, Error, Info, Debug };
    Q_ENUM(LogLevel)
    /// The values of QXPresentation, with names that QML accepts.
    enum Presentation { Panel, Window };
    Q_ENUM(Presentation)

    explicit QXQmlClient(QObject *parent = nullptr);
    ~QXQmlClient() override;

    /// The same as show().
    Q_INVOKABLE void start();
    /// Shows the floating button over the active window of the application.
    Q_INVOKABLE void show();
    /// Removes the button and its screens. Capture continues.
    Q_INVOKABLE void hide();
    /// Removes all captured exchanges.
    Q_INVOKABLE void clear();

    [[nodiscard]] int requestCount() const;
    [[nodiscard]] LogLevel logLevel() const;
    void setLogLevel(LogLevel level);
    [[nodiscard]] Presentation presentation() const;
    void setPresentation(Presentation presentation);

Q_SIGNALS:
    void requestCountChanged();
    void logLevelChanged();
    void presentationChanged();

private:
    void handleRequestsChanged();
    void reportRequestCount();

    /// The count that was reported last.
    int m_reportedCount;
    bool m_reportScheduled = false;
    const Quorvix::NSNotificationObserver m_observer;
};
