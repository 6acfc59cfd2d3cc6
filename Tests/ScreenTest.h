#pragma once

#include "Tests/Exchanges.h"
#include "Tests/ScreenDriver.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointStore.h"
#include "Quorvix/QXRequestRecorder.h"
#include "Quorvix/QuorvixClient.h"

#include "Platform/HTTPCookieStorage.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtGui/QAccessible>
#include <QtGui/QClipboard>
#include <QtGui/QGuiApplication>
#include <QtGui/QPointingDevice>
#include <QtQml/QQmlComponent>
#include <QtQml/QQmlEngine>

#include <memory>

/// A test that acts on a window: that of a host, with the inspector over it, unless a test makes another.
class ScreenTest : public QObject
{
    Q_OBJECT

protected Q_SLOTS:
    virtual void init();

    virtual void cleanup();

protected:
    /// Forgets what earlier tests left; from here on whatever Qt or a screen complains of fails the test.
    static void startAnew();

    /// Waits until a window is shown and takes the keys.
    [[nodiscard]] static bool waitForActive(QWindow &window);

    /// The window of a host that shows nothing, of the size of a phone.
    [[nodiscard]] static std::unique_ptr<QQuickWindow> makeWindow();

    /// The window that @p qml describes.
    [[nodiscard]] static std::unique_ptr<QQuickWindow> makeWindow(QQmlEngine &engine, const char *qml);

    /// Gives the window another size and waits for it. Where a device pixel is no whole number of units, the
    /// size may differ by one.
    [[nodiscard]] bool resize(QSize size);

    /// Adds a rule for a response and holds it by that.
    [[nodiscard]] static bool hold(const QByteArray &body, const Quorvix::DataTaskCompletionHandler &release,
                                   const QString &path = QStringLiteral("/held"));

    [[nodiscard]] QQuickItem *find(const char *name) { return ScreenDriver::find(*m_window, name); }
    [[nodiscard]] auto findAll(const char *name) { return ScreenDriver::findAll(*m_window, name); }
    /// The one that has a property of this value, or null.
    [[nodiscard]] QQuickItem *find(const char *name, const char *property, const QVariant &value)
    {
        const auto items = findAll(name);
        const auto found = std::find_if(items.cbegin(), items.cend(), [&](const QQuickItem *item) {
            return item->property(property) == value;
        });
        return found == items.cend() ? nullptr : *found;
    }
    /// Waits until an item is there and has come to rest.
    [[nodiscard]] bool waitFor(const char *name) { return ScreenDriver::waitForRest(*m_window, name); }
    /// A text that an item shows, or null where there is none.
    [[nodiscard]] QString text(const char *name, const char *property = "text")
    {
        const QQuickItem *const item = find(name);
        return item ? item->property(property).toString() : QString();
    }

    void click(const char *name) { ScreenDriver::click(*m_window, name); }
    void click(QPoint at, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(m_window.get(), button, {}, at);
    }
    /// Clicks beside a view until it is gone. One that has just come up without a movement takes the first
    /// clicks for a double click.
    void dismiss(const char *view, QPoint beside)
    {
        QTRY_VERIFY2((!find(view) || (find(view)->isEnabled() && (click(beside), !find(view)))), view);
    }
    void type(const char *text) { ScreenDriver::type(*m_window, text); }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(m_window.get(), key, modifiers);
    }
    /// Presses keys that are written as in "Ctrl+Z, A".
    void press(const QString &keys)
    {
        for (const QString &key : keys.split(QStringLiteral(", "))) {
            const QKeyCombination combination = QKeySequence::fromString(key)[0];
            press(combination.key(), combination.keyboardModifiers());
        }
    }
    /// The finger goes down, and stays there until it is lifted.
    void touch(QPoint at) { QTest::touchEvent(m_window.get(), m_finger.get()).press(0, at, m_window.get()); }
    void moveFinger(QPoint to)
    {
        QTest::touchEvent(m_window.get(), m_finger.get()).move(0, to, m_window.get());
    }
    void lift(QPoint at) { QTest::touchEvent(m_window.get(), m_finger.get()).release(0, at, m_window.get()); }

    [[nodiscard]] static QString clipboard() { return QGuiApplication::clipboard()->text(); }
    [[nodiscard]] static QRectF sceneRect(const QQuickItem &item)
    {
        return item.mapRectToScene(item.boundingRect());
    }
    [[nodiscard]] static QString spoken(QQuickItem *item, QAccessible::Text text = QAccessible::Name)
    {
        QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(item);
        return accessible ? accessible->text(text) : QString();
    }
    /// Whether an item can be hit by a finger and is told to those who do not see it.
    [[nodiscard]] bool isUsable(const char *name, qreal height = 44)
    {
        QQuickItem *const item = find(name);
        QAccessibleInterface *const accessible = QAccessible::queryAccessibleInterface(item);
        return item && item->width() >= 44 && item->height() >= height && !spoken(item).isEmpty() &&
               accessible->role() != QAccessible::NoRole && accessible->role() != QAccessible::Client;
    }

    std::unique_ptr<QPointingDevice> m_finger{QTest::createTouchDevice()};
    std::unique_ptr<QQuickWindow> m_window;
};
