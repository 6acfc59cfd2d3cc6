#include "Controls/QXSafeArea.h"

#include <QtGui/QScreen>
#include <QtGui/QWindow>

#include <algorithm>

namespace {

QMarginsF marginsOf(const QWindow &window)
{
    // Only a window that fills the screen lies beneath the bars; the platform places other windows beside
    // them.
    const QScreen *const screen = window.screen();
    if (!screen || window.size() != screen->size())
        return {};
    const QRect whole = screen->geometry();
    const QRect available = screen->availableGeometry();
    return {std::max(0.0, qreal(available.left() - whole.left())),
            std::max(0.0, qreal(available.top() - whole.top())),
            std::max(0.0, qreal(whole.right() - available.right())),
            std::max(0.0, qreal(whole.bottom() - available.bottom()))};
}

} // namespace

QXSafeArea::QXSafeArea(QObject *parent) : QObject(parent) {}

void QXSafeArea::setMargins(const QMarginsF &margins)
{
    if (m_margins == margins)
        return;
    m_margins = margins;
    Q_EMIT marginsChanged();
}

void QXSafeArea::measure(const QWindow &window)
{
    setMargins(marginsOf(window));
}
