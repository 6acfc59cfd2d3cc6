#pragma once

#include "Quorvix/QXBreakpointItem.h"

#include <QtCore/QPointer>
#include <QtGui/QWindow>

#include <memory>

class QQmlEngine;
class QQuickItem;
class QQuickWindow;
class QXLayer;

/// The window of the breakpoint editor: a layer above all others, with the keyboard. Main thread only.
///
/// The keyboard goes back to where it was once the editor is gone.
class QXBreakpointWindow
{
public:
    /// Lies over @p window; @p engine must outlive it.
    QXBreakpointWindow(QQmlEngine &engine, QQuickWindow *window);
    ~QXBreakpointWindow();

    /// Shows an editor for @p item, in place of the one that was there, and takes the keyboard, from another
    /// window too.
    void makeKeyAndVisible(const QXBreakpointItem &item);
    /// Lies over another window from now on.
    void attach(QQuickWindow *window);
    /// Gives the keyboard to @p item when the editor is gone; to nobody if that is null.
    void setPreviousFocus(QQuickItem *item);

    /// Whether the keyboard is the editor's.
    [[nodiscard]] bool isKeyWindow() const;
    /// The editor on show.
    [[nodiscard]] QQuickItem *editor() const { return m_editor; }

private:
    void activate();
    void takeFocus();
    void returnFocus();

    QQmlEngine &m_engine;
    QXLayer *m_layer;
    QPointer<QQuickItem> m_editor;
    QPointer<QQuickItem> m_previousFocus;
    /// The one that was active instead of the layer's.
    QPointer<QWindow> m_previousWindow;
};
