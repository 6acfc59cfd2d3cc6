#include "Quorvix/QXBreakpointWindow.h"

#include "Quorvix/QXBreakpointEditorModel.h"
#include "Quorvix/QXHostWindow.h"
#include "Quorvix/QXQmlView.h"

#include "Controls/QXLayer.h"
#include "Controls/QXSafeArea.h"

#include <QtQuick/QQuickWindow>

namespace {

/// The level of the breakpoint window. It is above the overlay.
constexpr int breakpointLevel = 2002;

} // namespace

QXBreakpointWindow::QXBreakpointWindow(QQmlEngine &engine, QXHostWindow &host)
    : m_engine(engine), m_host(host)
{
    makeLayer();
}

QXBreakpointWindow::~QXBreakpointWindow()
{
    returnFocus();
    m_host.activatePrevious();
    dropLayer();
    // After the editor.
    if (m_model)
        m_model.release()->deleteLater();
}

void QXBreakpointWindow::makeLayer()
{
    m_layer = new QXLayer(*m_host.screenWindow(), breakpointLevel);
    // Queued, because the host is still deleting its items.
    QObject::connect(m_layer, &QXLayer::lost, &m_host, &QXHostWindow::changed, Qt::QueuedConnection);
    m_previousFocus.remember(*m_host.screenWindow());
}

void QXBreakpointWindow::dropLayer()
{
    if (!m_layer)
        return;
    m_layer->disconnect(&m_host);
    m_layer->setVisible(false);
    // Deleted later, because a handler of the editor may be running now.
    m_layer->deleteLater();
    m_layer = nullptr;
}

void QXBreakpointWindow::makeKeyAndVisible(const QXBreakpointItem &item)
{
    if (!m_editor || m_item != item.id) {
        if (m_editor) {
            m_editor->setVisible(false);
            m_editor->deleteLater();
        }
        if (m_model)
            m_model.release()->deleteLater();
        m_item = item.id;
        m_model = std::make_unique<QXBreakpointEditorModel>(item);
        // The host may have just deleted the layer. Without a window, the editor waits for the next one.
        if (!m_layer && m_host.screenWindow())
            makeLayer();
        if (m_layer)
            makeEditor();
    }
    takeFocus();
    m_host.activate();
}

void QXBreakpointWindow::makeEditor()
{
    m_editor = QXQmlView::make(m_engine, QStringLiteral("QXBreakpointEditorView"),
                               {{QStringLiteral("model"), QVariant::fromValue(m_model.get())},
                                {QStringLiteral("safeArea"), QVariant::fromValue(m_layer->safeArea())}},
                               m_layer->page());
}

void QXBreakpointWindow::followHost()
{
    if (!m_host.screenWindow() || (m_layer && m_layer->window() == m_host.screenWindow()))
        return;
    returnFocus();
    dropLayer();
    makeLayer();
    makeEditor();
    takeFocus();
    m_host.activate();
}

void QXBreakpointWindow::setPreviousFocus(const QXFocusMemory &focus)
{
    m_previousFocus.remember(focus);
}

bool QXBreakpointWindow::isKeyWindow() const
{
    return m_editor && m_editor->hasActiveFocus();
}

void QXBreakpointWindow::takeFocus()
{
    if (m_editor)
        m_editor->forceActiveFocus(Qt::ActiveWindowFocusReason);
}

/// Returns keyboard focus to the previous item, unless another item of the window has taken it from the
/// editor.
void QXBreakpointWindow::returnFocus()
{
    if (m_editor && m_layer && m_layer->hasFocus())
        m_previousFocus.restore(*m_layer);
}
