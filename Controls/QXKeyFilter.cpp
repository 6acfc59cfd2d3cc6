#include "Controls/QXKeyFilter.h"

#include "Controls/QXFinder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QPointer>
#include <QtGui/QGuiApplication>
#include <QtGui/QInputMethod>
#include <QtGui/QKeyEvent>
#include <QtGui/QStyleHints>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

#include <algorithm>
#include <array>
#include <bitset>

namespace {

constexpr auto commandModifiers = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;

bool isStandardKey(const QKeyEvent &event)
{
    for (int key = QKeySequence::HelpContents; key <= QKeySequence::Cancel; ++key) {
        if (event.matches(QKeySequence::StandardKey(key)))
            return true;
    }
    return false;
}

/// Whether a key moves, edits, confirms or opens a menu. With modifiers it does so in another way.
bool isEditingKey(int key)
{
    return (key >= Qt::Key_Escape && key <= Qt::Key_Delete) ||
           (key >= Qt::Key_Home && key <= Qt::Key_PageDown) || key == Qt::Key_Space || key == Qt::Key_Menu ||
           key == Qt::Key_Back;
}

bool typesText(const QKeyEvent &event)
{
    // Some platforms report AltGr as Control and Alt together, and a text for Control alone.
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    if (modifiers & Qt::MetaModifier || (modifiers & Qt::ControlModifier && !(modifiers & Qt::AltModifier)))
        return false;
    const QString text = event.text();
    return !text.isEmpty() && (text[0].isPrint() || text[0].isSurrogate());
}

bool isModifierKey(int key)
{
    return (key >= Qt::Key_Shift && key <= Qt::Key_ScrollLock) || key == Qt::Key_AltGr;
}

/// Identifies a key on the keyboard: with another modifier, the same key can have another code at its
/// release.
quint64 identity(const QKeyEvent &event)
{
    return event.nativeScanCode() ? quint64(event.nativeScanCode()) << 32 : quint64(event.key());
}

bool isTab(const QKeyEvent &event)
{
    return (event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab) &&
           !(event.modifiers() & commandModifiers);
}

/// Moves the focus from an item to the next or previous control inside @p fenced.
void moveFocus(QQuickItem &from, const QQuickItem &fenced, bool forwards)
{
    const auto isInside = [&](const QQuickItem *item) {
        return item == &fenced || fenced.isAncestorOf(item);
    };
    // When no control inside takes the focus, the chain of controls may not return to the item.
    QQuickItem *const first = from.nextItemInFocusChain(forwards);
    QQuickItem *item = first;
    while (item && item != &from && !isInside(item)) {
        item = item->nextItemInFocusChain(forwards);
        if (item == first)
            return;
    }
    if (item && item != &from)
        item->forceActiveFocus(forwards ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    else if (item && item->property("focusReason").isValid())
        item->setProperty("focusReason", Qt::TabFocusReason); // the only control shows that it has the focus
}

/// Delivers a key as the window does, from an item up to its parents, but only as far as @p last.
void deliver(QKeyEvent &event, QPointer<QQuickItem> item, const QPointer<QQuickItem> &last)
{
    // A handler may delete any item, and with the window also the filter.
    while (item) {
        event.accept();
        QCoreApplication::sendEvent(item, &event);
        if (event.isAccepted() || !item || !last || item == last)
            break;
        item = item->parentItem();
    }
    event.accept();
}

} // namespace

QXKeyFilter::QXKeyFilter(QQuickWindow &window) : QObject(&window), m_window(window)
{
    // The filter has to see a key before the window does, because the window passes it to shortcuts and
    // items.
    window.installEventFilter(this);
}

QXKeyFilter &QXKeyFilter::of(QQuickWindow &window)
{
    auto *const filter = window.findChild<QXKeyFilter *>(QString(), Qt::FindDirectChildrenOnly);
    return filter ? *filter : *new QXKeyFilter(window);
}

bool QXKeyFilter::isForScreens(const QKeyEvent &event)
{
    const int key = event.key();
    const auto modifiers = event.modifiers() & (commandModifiers | Qt::ShiftModifier);
    const bool quits = event.matches(QKeySequence::Quit) ||
                       event.keyCombination() == (Qt::CTRL | Qt::Key_Q) ||
                       event.keyCombination() == (Qt::ALT | Qt::Key_F4);
    if (quits || event.matches(QKeySequence::FullScreen))
        return false;
    if (isModifierKey(key) || isEditingKey(key) || isStandardKey(event) || typesText(event) ||
        QXFinder::commandFor(key, modifiers.toInt()) != QXFinder::NoCommand)
        return true;
    const bool isMachineKey = key >= Qt::Key_VolumeDown && key <= Qt::Key_MediaLast;
    const bool isWindowKey = key >= Qt::Key_F11 && key <= Qt::Key_F35;
    const bool isToolKey = modifiers & commandModifiers && std::bitset<32>(modifiers.toInt()).count() > 1;
    return !isMachineKey && !isWindowKey && !isToolKey;
}

void QXKeyFilter::add(const QQuickItem &fence)
{
    m_fences.append(&fence);
}

void QXKeyFilter::remove(const QQuickItem &fence)
{
    m_fences.removeOne(&fence);
    deleteIfIdle();
}

void QXKeyFilter::deleteIfIdle()
{
    if (m_fences.isEmpty() && m_held.isEmpty())
        delete this;
}

bool QXKeyFilter::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::ShortcutOverride:
        return overrideShortcut(static_cast<QKeyEvent &>(*event));
    case QEvent::KeyPress:
        return press(static_cast<QKeyEvent &>(*event));
    case QEvent::KeyRelease:
        return release(static_cast<QKeyEvent &>(*event));
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseButtonRelease:
    case QEvent::TouchBegin:
    case QEvent::TouchEnd:
        handlePointer(static_cast<const QPointerEvent &>(*event));
        return false;
    case QEvent::FocusOut:
        // The window does not hear of the releases now.
        m_held.clear();
        deleteIfIdle();
        return false;
    default:
        return QObject::eventFilter(watched, event);
    }
}

QQuickItem *QXKeyFilter::fencedAround(QQuickItem *item) const
{
    for (; item; item = item->parentItem()) {
        if (std::any_of(m_fences.cbegin(), m_fences.cend(), [item](const QQuickItem *fence) {
                return fence->parentItem() == item && fence->isEnabled() && fence->isVisible();
            }))
            return item;
    }
    return nullptr;
}

bool QXKeyFilter::overrideShortcut(QKeyEvent &event)
{
    const bool isOurs = fencedAround(m_window.activeFocusItem())
                            ? isForScreens(event)
                            : event.isAutoRepeat() && m_held.contains(identity(event));
    if (isOurs)
        event.accept();
    return isOurs;
}

bool QXKeyFilter::press(QKeyEvent &event)
{
    QQuickItem *const focused = m_window.activeFocusItem();
    QQuickItem *const fenced = fencedAround(focused);
    if (fenced && isForScreens(event)) {
        m_held.insert(identity(event));
        event.accept();
        if (isTab(event))
            moveFocus(*focused, *fenced,
                      event.key() == Qt::Key_Tab && !(event.modifiers() & Qt::ShiftModifier));
        else
            deliver(event, focused, fenced);
        return true;
    }
    if (event.isAutoRepeat() && m_held.contains(identity(event))) {
        event.accept();
        return true;
    }
    m_held.remove(identity(event)); // its release was lost
    deleteIfIdle();
    return false;
}

bool QXKeyFilter::release(QKeyEvent &event)
{
    // The release of a key that was pressed in the host is for the host.
    if (!m_held.contains(identity(event)))
        return false;
    QQuickItem *const focused = m_window.activeFocusItem();
    QQuickItem *const fenced = fencedAround(focused);
    if (!event.isAutoRepeat())
        m_held.remove(identity(event));
    event.accept();
    if (fenced)
        deliver(event, focused, fenced);
    else
        deleteIfIdle();
    return true;
}

void QXKeyFilter::handlePointer(const QPointerEvent &event)
{
    const QPointF point = event.points().isEmpty() ? QPointF() : event.points().constFirst().position();
    if (event.isBeginEvent()) {
        m_pressed = point;
        return;
    }
    const bool isTap = event.pointCount() == 1 && (point - m_pressed).manhattanLength() <
                                                      QGuiApplication::styleHints()->startDragDistance();
    // Later, because the items get the tap after the filter, and it may move the focus into a field.
    if (isTap)
        QMetaObject::invokeMethod(
            this, [this, point] { hideKeyboardBeside(point); }, Qt::QueuedConnection);
}

void QXKeyFilter::hideKeyboardBeside(const QPointF &point)
{
    QQuickItem *const focused = m_window.activeFocusItem();
    QQuickItem *const fenced = fencedAround(focused);
    const auto contains = [&](const QQuickItem &item) {
        return item.contains(item.mapFromScene(point));
    };
    // The keyboard itself may be in the scene, outside of the fence. The field keeps the focus, so that a
    // keyboard of the machine goes on typing into it.
    if (fenced && contains(*fenced) && !contains(*focused) && QGuiApplication::inputMethod()->isVisible())
        QGuiApplication::inputMethod()->hide();
}
