#pragma once

#include "Quorvix/QXBreakpointItem.h"

#include "Controls/QXFocusMemory.h"

#include <QtCore/QPointer>

#include <memory>

class QQmlEngine;
class QQuickItem;
class QQuickWindow;
class QXBreakpointEditorModel;
class QXHostWindow;
class QXLayer;

/// The window of the breakpoint editor: a layer above all others that has keyboard focus. Main thread only.
///
/// When the editor closes, keyboard focus returns to the item that had it before.
class QXBreakpointWindow
{
public:
    /// Shows the layer over the window of @p host for screens, which must not be null. The arguments must
    /// outlive this object.
    QXBreakpointWindow(QQmlEngine &engine, QXHostWindow &host);
    ~QXBreakpointWindow();

    /// Shows an editor for @p item and takes keyboard focus, also from another window. Replaces the previous
    /// editor, unless it is for the same item.
    void makeKeyAndVisible(const QXBreakpointItem &item);
    /// Shows the editor in the host's current window for screens, again if the host has deleted its items.
    /// The user's edits are kept.
    void followHost();
    /// Sets where the keyboard focus goes when the editor closes.
    void setPreviousFocus(const QXFocusMemory &focus);

    /// Whether the editor has keyboard focus.
    [[nodiscard]] bool isKeyWindow() const;
    /// The editor that is shown, or null.
    [[nodiscard]] QQuickItem *editor() const { return m_editor; }

private:
    void makeLayer();
    void dropLayer();
    void makeEditor();
    void takeFocus();
    void returnFocus();

    QQmlEngine &m_engine;
    QXHostWindow &m_host;
    /// Owned by this object; null when the host has deleted it.
    QPointer<QXLayer> m_layer;
    QUuid m_item;
    std::unique_ptr<QXBreakpointEditorModel> m_model;
    QPointer<QQuickItem> m_editor;
    QXFocusMemory m_previousFocus;
};
