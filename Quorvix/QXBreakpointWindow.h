#pragma once

#include "Quorvix/QXBreakpointItem.h"

#include <QtCore/QPointer>
#include <QtGui/QWindow>

#include <memory>

class QQmlEngine;
class QQuickItem;
class QQuickWindow;
class QXLayer;

/// The window of the breakpoint editor: a layer above all others that has keyboard focus. Main thread only.
///
/// When the editor closes, keyboard focus returns to the item that had it before.
class QXBreakpointWindow
{
public:
    /// Shows the layer over @p window. @p engine must outlive this object.
    QXBreakpointWindow(QQmlEngine &engine, QQuickWindow *window);
    ~QXBreakpointWindow();

    /// Shows an editor for @p item and takes keyboard focus, also from another window. Replaces the previous
    /// editor.
    void makeKeyAndVisible(const QXBreakpointItem &item);
    /// Moves the layer to another window.
    void attach(QQuickWindow *window);
    /// Sets the item that gets keyboard focus when the editor closes. With null, no item gets it.
    void setPreviousFocus(QQuickItem *item);

    /// Whether the editor has keyboard focus.
    [[nodiscard]] bool isKeyWindow() const;
    /// The editor that is shown, or null.
    [[nodiscard]] QQuickItem *editor() const { return m_editor; }

private:
    void activate();
    void takeFocus();
    void returnFocus();

    QQmlEngine &m_engine;
    QXLayer *m_layer;
    QPointer<QQuickItem> m_editor;
    QPointer<QQuickItem> m_previousFocus;
    /// The window that was active before the layer's window.
    QPointer<QWindow> m_previousWindow;
};
