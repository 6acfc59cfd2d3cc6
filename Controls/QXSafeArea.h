#pragma once

#include <QtCore/QMarginsF>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtQml/qqmlregistration.h>

#include <algorithm>

class QQuickWindow;

/// The margins that bars and notches cover at the edges of a window, and the part that an on-screen keyboard
/// covers, in points. Main thread only.
class QXSafeArea : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a layer has it")
    Q_PROPERTY(qreal top READ top NOTIFY marginsChanged)
    Q_PROPERTY(qreal left READ left NOTIFY marginsChanged)
    Q_PROPERTY(qreal right READ right NOTIFY marginsChanged)
    /// What bars cover above an on-screen keyboard, if there is one.
    Q_PROPERTY(qreal bottom READ bottom NOTIFY marginsChanged)
    /// The distance from the bottom of the window to the top of an item that floats over the screens, and to
    /// its bottom. Both are 0 while there is none.
    Q_PROPERTY(qreal floatTop READ floatTop NOTIFY floatChanged)
    Q_PROPERTY(qreal floatBottom READ floatBottom NOTIFY floatChanged)

public:
    explicit QXSafeArea(QObject *parent);

    [[nodiscard]] const QMarginsF &margins() const noexcept { return m_margins; }
    void setMargins(const QMarginsF &margins);
    /// Updates the margins and the keyboard to those of @p window, and from now on the keyboard follows that
    /// of the window.
    void measure(QQuickWindow &window);

    /// The height at the bottom of the window that an on-screen keyboard covers: a keyboard of the platform,
    /// or one that is an item of the host's scene. It changes at most once for each turn of the event loop,
    /// and does not become smaller while a button or a finger is down: what is pressed has to stay in its
    /// place.
    [[nodiscard]] qreal keyboard() const noexcept { return m_keyboard; }

    [[nodiscard]] qreal top() const noexcept { return m_margins.top(); }
    [[nodiscard]] qreal left() const noexcept { return m_margins.left(); }
    [[nodiscard]] qreal right() const noexcept { return m_margins.right(); }
    [[nodiscard]] qreal bottom() const noexcept { return std::max(0.0, m_margins.bottom() - m_keyboard); }

    [[nodiscard]] qreal floatTop() const noexcept { return m_floatTop; }
    [[nodiscard]] qreal floatBottom() const noexcept { return m_floatBottom; }
    void setFloat(qreal top, qreal bottom);

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void marginsChanged();
    void keyboardChanged();
    void floatChanged();
    /// Emitted by a page while the user scrolls it.
    void scrolled();

private:
    void scheduleKeyboard();
    void measureKeyboard();

    QMarginsF m_margins;
    qreal m_keyboard = 0;
    qreal m_floatTop = 0;
    qreal m_floatBottom = 0;
    bool m_isKeyboardScheduled = false;
    bool m_isPressed = false;
    QPointer<QQuickWindow> m_window;
};
