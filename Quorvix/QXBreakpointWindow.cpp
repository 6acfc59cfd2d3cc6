#include "Quorvix/QXBreakpointWindow.h"

#include "Quorvix/QXBreakpointEditorModel.h"
#include "Quorvix/QXHostWindow.h"
#include "Quorvix/QXQmlView.h"

#include "Controls/QXLayer.h"
#include "Controls/QXSafeArea.h"

#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickWindow>

namespace {

/// The level of the breakpoint window. It is above the overlay.
constexpr int breakpointLevel = 2002;

/// The item with keyboard focus in a window. If the window is not active, the item that gets the focus when
/// the window becomes active.
QQuickItem *focusItem(const QQuickWindow &window)
{
    QQuickItem *item = window.contentItem();
    while (item->isFocusScope() && item->scopedFocusItem())
        item = item->scopedFocusItem();
    return item == window.contentItem() ? nullptr : item;
}

} // namespace

QXBreakpointWindow::QXBreakpointWindow(QQmlEngine &engine, QQuickWindow *window)
    : m_engine(engine), m_layer(new QXLayer(breakpointLevel)), m_previousFocus(focusItem(*window))
{
    m_layer->attach(window);
}

QXBreakpointWindow::~QXBreakpointWindow()
{
    returnFocus();
    m_layer->setVisible(false);
    // Deleted later, because a click handler of the editor may be running now.
    m_layer->deleteLater();
    const QWindow *const window = m_layer->window();
    if (m_previousWindow && m_previousWindow->isVisible() && window && window->isActive())
        m_previousWindow->requestActivate();
}

void QXBreakpointWindow::makeKeyAndVisible(const QXBreakpointItem &item)
{
    if (m_editor) {
        m_editor->setVisible(false);
        m_editor->deleteLater();
    }
    auto model = std::make_unique<QXBreakpointEditorModel>(item);
    const QVariantMap properties{{QStringLiteral("model"), QVariant::fromValue(model.get())},
                                 {QStringLiteral("safeArea"), QVariant::fromValue(m_layer->safeArea())}};
    m_editor = QXQmlView::make(m_engine, QStringLiteral("QXBreakpointEditorView"), properties, *m_layer);
    if (!m_editor)
        return;
    model.release()->setParent(m_editor);
    takeFocus();
    activate();
}

void QXBreakpointWindow::attach(QQuickWindow *window)
{
    if (window == m_layer->window())
        return;
    returnFocus();
    m_previousFocus = focusItem(*window);
    m_layer->attach(window);
    if (m_editor)
        takeFocus();
}

void QXBreakpointWindow::setPreviousFocus(QQuickItem *item)
{
    m_previousFocus = item;
}

bool QXBreakpointWindow::isKeyWindow() const
{
    return m_editor && m_editor->hasActiveFocus();
}

/// Brings the window to the front and gives it keyboard focus.
void QXBreakpointWindow::activate()
{
    QWindow *const window = m_layer->window();
    QWindow *const active = QGuiApplication::focusWindow();
    // QWindow::isActive() is true for the windows that belong to the active one, too.
    if (!window || window == active)
        return;
    m_previousWindow = active;
    // QWindow::show() would make a maximised window a normal one.
    if (window->windowStates() & Qt::WindowMinimized)
        window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
    window->setVisible(true);
    if (QXHostWindow::windowsCanOverlap())
        window->raise();
    window->requestActivate();
}

void QXBreakpointWindow::takeFocus()
{
    m_editor->forceActiveFocus(Qt::ActiveWindowFocusReason);
}

/// Returns keyboard focus to the previous item, unless another item of the window has taken it from the
/// editor.
void QXBreakpointWindow::returnFocus()
{
    if (m_editor && m_editor->hasFocus() && m_previousFocus)
        m_previousFocus->forceActiveFocus(Qt::ActiveWindowFocusReason);
}
