#include "Examples/MonkeyHands.h"

#include "Examples/MonkeyDiary.h"
#include "Examples/MonkeyEyes.h"
#include "Examples/MonkeyInputMethod.h"
#include "Examples/MonkeyRandom.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QStyleHints>
#include <QtGui/QWheelEvent>
#include <QtTest/QTest>

namespace {

constexpr Qt::MouseButton buttons[] = {Qt::LeftButton,  Qt::LeftButton, Qt::LeftButton, Qt::LeftButton,
                                       Qt::RightButton, Qt::LeftButton, Qt::LeftButton, Qt::MiddleButton,
                                       Qt::RightButton, Qt::LeftButton, Qt::BackButton, Qt::ForwardButton};

constexpr Qt::Key keys[] = {
    Qt::Key_Escape, Qt::Key_Tab,    Qt::Key_Backtab, Qt::Key_Return,    Qt::Key_Enter,  Qt::Key_Space,
    Qt::Key_Left,   Qt::Key_Right,  Qt::Key_Up,      Qt::Key_Down,      Qt::Key_Home,   Qt::Key_End,
    Qt::Key_PageUp, Qt::Key_Delete, Qt::Key_Back,    Qt::Key_Backspace, Qt::Key_Menu,   Qt::Key_PageDown,
    Qt::Key_Insert, Qt::Key_A,      Qt::Key_C,       Qt::Key_V,         Qt::Key_X,      Qt::Key_Z,
    Qt::Key_Y,      Qt::Key_F,      Qt::Key_W,       Qt::Key_Shift,     Qt::Key_Cancel, Qt::Key_Tab,
    Qt::Key_Tab,    Qt::Key_Down,   Qt::Key_Return,  Qt::Key_Space,     Qt::Key_F10,    Qt::Key_Copy,
    Qt::Key_Paste,  Qt::Key_Cut,    Qt::Key_Undo,    Qt::Key_Find,
};

constexpr Qt::KeyboardModifiers modifiers[] = {
    Qt::NoModifier,      Qt::NoModifier,    Qt::NoModifier,      Qt::NoModifier,
    Qt::ControlModifier, Qt::ShiftModifier, Qt::ControlModifier, Qt::ControlModifier | Qt::ShiftModifier,
    Qt::AltModifier,     Qt::MetaModifier,  Qt::KeypadModifier,  Qt::AltModifier | Qt::ShiftModifier,
};

QString name(QPoint point)
{
    return QStringLiteral("%1,%2 ").arg(point.x()).arg(point.y());
}

/// The text of a key event, as keyboards send it.
QString textOf(Qt::Key key, Qt::KeyboardModifiers held)
{
    switch (key) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return QStringLiteral("\r");
    case Qt::Key_Tab:
        return QStringLiteral("\t");
    case Qt::Key_Backspace:
        return QStringLiteral("\b");
    case Qt::Key_Delete:
        return QStringLiteral("\x7f");
    case Qt::Key_Escape:
        return QStringLiteral("\x1b");
    default:
        break;
    }
    if (key > Qt::Key_Z)
        return {};
    if (held & Qt::ControlModifier)
        return QString(QChar(key & 0x1f));
    return held & Qt::ShiftModifier ? QString(QChar(key)) : QString(QChar(key)).toLower();
}

} // namespace

MonkeyHands::MonkeyHands(MonkeyRandom &random, const MonkeyEyes &eyes)
    : m_random(random), m_eyes(eyes), m_touchScreen(QTest::createTouchDevice())
{
}

MonkeyHands::~MonkeyHands() = default;

QPoint MonkeyHands::anywhere(const QQuickWindow &window)
{
    return {m_random.below(window.width()), m_random.below(window.height())};
}

void MonkeyHands::point(QQuickWindow &window)
{
    QString what;
    const QPoint at = m_eyes.aim(window, m_random, &what);
    const Qt::MouseButton button = m_random.oneOf(buttons);
    const Qt::KeyboardModifiers held = m_random.chance(90) ? Qt::NoModifier : m_random.oneOf(modifiers);
    const QString where = name(at) + what + QStringLiteral(" button %1").arg(int(button));
    switch (m_random.below(14)) {
    case 0:
        MonkeyDiary::note("double click", where);
        QTest::mouseDClick(&window, button, held, at);
        return;
    case 1:
    case 2:
        MonkeyDiary::note("long press", where);
        QTest::mousePress(&window, button, held, at);
        QTest::qWait(QGuiApplication::styleHints()->mousePressAndHoldInterval() + 20);
        QTest::mouseRelease(&window, button, held, at);
        return;
    case 3:
    case 4: {
        const QPoint to =
            m_random.chance(50) ? anywhere(window) : at + QPoint(m_random.between(-320, 320), 0);
        MonkeyDiary::note("drag", where + QStringLiteral(" to ") + name(to));
        drag(window, at, to);
        return;
    }
    case 5:
        MonkeyDiary::note("press", where);
        QTest::mousePress(&window, button, held, at);
        m_pressed.insert(button);
        return;
    case 6:
    case 7:
        MonkeyDiary::note("move", where);
        QTest::mouseMove(&window, at, 5);
        return;
    case 8:
        MonkeyDiary::note("release", where);
        QTest::mouseRelease(&window, button, held, at);
        m_pressed.remove(button);
        return;
    default:
        MonkeyDiary::note("click", where);
        QTest::mouseClick(&window, button, held, at);
    }
}

void MonkeyHands::drag(QQuickWindow &window, QPoint from, QPoint to)
{
    constexpr int interval = 12;
    const int steps = m_random.between(1, 10);
    QTest::mousePress(&window, Qt::LeftButton, {}, from);
    for (int step = 1; step <= steps; ++step)
        QTest::mouseMove(&window, from + (to - from) * step / steps, interval);
    QTest::mouseRelease(&window, Qt::LeftButton, {}, to, interval);
}

void MonkeyHands::touch(QQuickWindow &window)
{
    QString what;
    const QPoint at = m_eyes.aim(window, m_random, &what);
    const QPoint to = m_random.chance(60) ? anywhere(window) : at + QPoint(0, m_random.between(-200, 200));
    const auto event = [&] {
        return QTest::touchEvent(&window, m_touchScreen.get());
    };
    if (m_touched == &window) {
        const bool lifts = m_random.chance(50);
        MonkeyDiary::note(lifts ? "finger up" : "finger move", name(to));
        if (lifts)
            event().release(0, to);
        else
            event().move(0, to);
        m_finger = to;
        m_touched = lifts ? nullptr : &window;
        return;
    }
    const QString way = name(at) + what + QStringLiteral(" to ") + name(to);
    switch (m_random.below(7)) {
    case 6:
        MonkeyDiary::note("long touch", way);
        event().press(0, at);
        QTest::qWait(QGuiApplication::styleHints()->mousePressAndHoldInterval() + 20);
        event().release(0, at);
        return;
    case 0:
        MonkeyDiary::note("finger down", way);
        event().press(0, at);
        m_finger = at;
        m_touched = &window;
        return;
    case 1:
    case 2:
        MonkeyDiary::note("swipe", way);
        event().press(0, at);
        for (int step = 1; step <= 6; ++step)
            event().move(0, at + (to - at) * step / 6);
        event().release(0, to);
        return;
    case 3:
        MonkeyDiary::note("two fingers", way);
        event().press(0, at).press(1, to);
        for (int step = 1; step <= 4; ++step)
            event().move(0, at + (to - at) * step / 8).move(1, to + (at - to) * step / 8);
        event().release(0, at + (to - at) / 2).stationary(1);
        event().release(1, to + (at - to) / 2);
        return;
    default:
        MonkeyDiary::note("tap", way);
        event().press(0, at);
        event().release(0, at);
    }
}

void MonkeyHands::turnWheel(QQuickWindow &window)
{
    QString what;
    const QPoint at = m_eyes.aim(window, m_random, &what);
    const bool isPad = m_random.chance(40);
    const QPoint turn(m_random.chance(20) ? m_random.between(-240, 240) : 0, m_random.between(-1200, 1200));
    const Qt::ScrollPhase phase = isPad ? Qt::ScrollPhase(m_random.between(1, 4)) : Qt::NoScrollPhase;
    MonkeyDiary::note("wheel", name(at) + what + QStringLiteral(" by ") + name(turn));
    QWheelEvent wheel(at, window.mapToGlobal(at), isPad ? turn : QPoint(), turn, Qt::NoButton,
                      m_random.chance(90) ? Qt::NoModifier : m_random.oneOf(modifiers), phase, false);
    QCoreApplication::sendEvent(&window, &wheel);
}

void MonkeyHands::pressKey(QQuickWindow &window)
{
    const Qt::Key key = m_random.oneOf(keys);
    const Qt::KeyboardModifiers held = m_random.oneOf(modifiers);
    MonkeyDiary::note("key", QKeySequence(held | key).toString());
    const QTest::KeyAction action = m_random.chance(95)   ? QTest::Click
                                    : m_random.chance(50) ? QTest::Press
                                                          : QTest::Release;
    QTest::sendKeyEvent(action, &window, key, textOf(key, held), held);
}

QString MonkeyHands::text()
{
    // Without "/", so that no path leaves the folder of the monkey.
    static const QString letters = QStringLiteral("ab7 {}[]\":,.\\-_GETé漢\u0301\u202e\u200d\n\t");
    QString text;
    for (int left = m_random.between(0, 12); left > 0; --left)
        text += m_random.chance(90) ? QString(m_random.oneOf(letters)) : QStringLiteral("😀");
    return text;
}

void MonkeyHands::typeText(QQuickWindow &window)
{
    // Half of the texts find something in the list.
    static const QStringList searches{QStringLiteral("prod"), QStringLiteral("404"), QStringLiteral("echo"),
                                      QStringLiteral("200"), QStringLiteral("cookies")};
    const QString typed = m_random.chance(50) ? m_random.oneOf(searches) : text();
    MonkeyDiary::note("type", typed);
    for (const QChar letter : typed)
        QTest::sendKeyEvent(QTest::Click, &window, Qt::Key_unknown, QString(letter), Qt::NoModifier);
}

void MonkeyHands::compose()
{
    QObject *const target = QGuiApplication::focusObject();
    if (!target)
        return;
    // The inspector's editor has to bear anything. Qt's own fields do not, so they get valid events.
    if (target->inherits("QXTextEditor") && m_random.chance(50))
        MonkeyInputMethod::sendAny(*target, text(), text(), m_random);
    else
        MonkeyInputMethod::sendValid(*target, text(), text(), m_random);
}

void MonkeyHands::letGo(QQuickWindow &window)
{
    for (const Qt::MouseButton button : std::as_const(m_pressed))
        QTest::mouseRelease(&window, button, {}, {1, 1});
    m_pressed.clear();
    if (m_touched == &window)
        QTest::touchEvent(&window, m_touchScreen.get()).release(0, m_finger);
    m_touched = nullptr;
}
