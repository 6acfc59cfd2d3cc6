#include "Controls/QXFinder.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>

#include <utility>

namespace {

/// How long the main thread waits for a step, in milliseconds: short texts are found without a flicker, and a
/// frame is not missed.
constexpr int longestWait = 6;

} // namespace

int QXFinder::commandFor(int key, int modifiers)
{
    const bool isBack = (modifiers & int(Qt::ShiftModifier)) != 0;
    const int others = modifiers & ~int(Qt::ShiftModifier | Qt::KeypadModifier);
    const bool isControl = others == int(Qt::ControlModifier);
    if (key == Qt::Key_F && isControl && !isBack)
        return Find;
    if ((key == Qt::Key_G && isControl) || (key == Qt::Key_F3 && others == 0))
        return isBack ? Previous : Next;
    return NoCommand;
}

QXFinder::QXFinder(QObject *parent) : QObject(parent)
{
    m_task.setLongestWait(longestWait);
}

void QXFinder::setText(const QString &text)
{
    if (m_text == text)
        return;
    m_text = text;
    Q_EMIT textChanged();
    restart();
}

void QXFinder::setMarksMatches(bool marks)
{
    if (std::exchange(m_marksMatches, marks) != marks)
        Q_EMIT marksMatchesChanged();
}

QString QXFinder::outcome() const
{
    if (m_text.isEmpty())
        return {};
    const bool isKnown = isComplete();
    if (m_current < 0 && isKnown)
        return QCoreApplication::translate("Quorvix", "Not found");
    if (m_current < 0)
        return QStringLiteral("…");
    const QString outcome = QCoreApplication::translate("Quorvix", "%1 of %2")
                                .arg(QLocale().toString(m_current + 1), QLocale().toString(count()));
    return isKnown ? outcome : outcome + u'…';
}

void QXFinder::restart()
{
    m_task.cancel();
    m_current = -1;
    m_goal = m_text.isEmpty() ? Goal::None : Goal::AtCursor;
    begin();
    stepDone();
}

void QXFinder::stepDone()
{
    moveTo(m_goal);
    if (!isComplete())
        searchFurther();
}

void QXFinder::next()
{
    moveTo(Goal::Next);
}

void QXFinder::previous()
{
    moveTo(Goal::Previous);
}

void QXFinder::moveTo(Goal goal)
{
    const qsizetype match = goal == Goal::None ? -1 : matchFor(goal);
    m_goal = match < 0 && !isComplete() ? goal : Goal::None;
    if (match >= 0) {
        m_current = match;
        show(match);
    }
    Q_EMIT outcomeChanged();
}

/// Negative while the match is not known.
qsizetype QXFinder::matchFor(Goal goal) const
{
    const qsizetype known = count();
    const bool isShown = m_current >= 0 && m_current < known && isSelected(m_current);
    const qsizetype match = isShown ? m_current : matchAtCursor();
    if (goal == Goal::Previous && match > 0)
        return match - 1;
    if (goal == Goal::Previous)
        return isComplete() ? known - 1 : -1;
    const qsizetype wanted = goal == Goal::Next && isShown ? match + 1 : match;
    if (wanted < known)
        return wanted;
    return isComplete() && known > 0 ? 0 : -1;
}
