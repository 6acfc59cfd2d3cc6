#include "Quorvix/QXBreakpointWindow.h"

#include "Quorvix/QXBreakpointEditorModel.h"
#include "Quorvix/QXHostWindow.h"
#include "Quorvix/QXLayer.h"
#include "Quorvix/QXQmlView.h"

#include <QtQuick/QQuickWindow>

namespace {

/// Above the overlay, as an alert's window is, and a little more.
constexpr int breakpointLevel = 2002;

} // namespace

QXBreakpointWindow::QXBreakpointWindow(QQmlEngine &engine, QQuickWindow *window)
    : m_engine(engine), m_layer(new QXLayer(breakpointLevel))
{
    m_previousFocus = window->activeFocusItem();
    m_layer->attach(window);
}

QXBreakpointWindow::~QXBreakpointWindow()
{
    const bool wasKey = isKeyWindow();
    m_layer->setVisible(false);
    // Later: it may be a click on the editor that closes it.
    m_layer->deleteLater();
    if (wasKey && m_previousFocus)
        m_previousFocus->forceActiveFocus(Qt::ActiveWindowFocusReason);
}

void QXBreakpointWindow::makeKeyAndVisible(const QXBreakpointItem &item)
{
    if (m_editor) {
        m_editor->setVisible(false);
        m_editor->deleteLater();
    }
    auto model = std::make_unique<QXBreakpointEditorModel>(item);
    const QMarginsF margins =
        m_layer->window() ? QXHostWindow::safeAreaMargins(*m_layer->window()) : QMarginsF();
    m_editor = QXQmlView::make(m_engine, QStringLiteral("QXBreakpointEditorView"),
                               {{QStringLiteral("model"), QVariant::fromValue(model.get())},
                                {QStringLiteral("safeAreaTop"), margins.top()},
                                {QStringLiteral("safeAreaLeft"), margins.left()},
                                {QStringLiteral("safeAreaRight"), margins.right()},
                                {QStringLiteral("safeAreaBottom"), margins.bottom()}},
                               *m_layer);
    if (!m_editor)
        return;
    model.release()->setParent(m_editor);
    m_editor->forceActiveFocus(Qt::ActiveWindowFocusReason);
}

void QXBreakpointWindow::attach(QQuickWindow *window)
{
    m_layer->attach(window);
    if (m_editor)
        m_editor->forceActiveFocus(Qt::ActiveWindowFocusReason);
}

bool QXBreakpointWindow::isKeyWindow() const
{
    return m_editor && m_editor->hasActiveFocus();
}
