#include "Examples/MonkeyWorld.h"

#include "Examples/MonkeyDiary.h"
#include "Examples/MonkeyRandom.h"

#include <Quorvix/QXRequestRecorder.h>
#include <Quorvix/QuorvixClient.h>

#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

namespace {

constexpr QSize phone(390, 844);
constexpr QSize usualSizes[] = {phone, {844, 390}, {1024, 768}, {320, 480}};

} // namespace

MonkeyWorld::MonkeyWorld(QQuickWindow &window, OpenWindow openWindow, MonkeyRandom &random)
    : m_window(&window), m_openWindow(std::move(openWindow)), m_random(random),
      m_usualFont(QGuiApplication::font())
{
    m_other.resize(100, 100);
}

MonkeyWorld::~MonkeyWorld() = default;

void MonkeyWorld::resize(QSize size)
{
    MonkeyDiary::note("resize", QStringLiteral("%1x%2").arg(size.width()).arg(size.height()));
    m_window->resize(size);
}

void MonkeyWorld::change()
{
    const auto side = [this] {
        return m_random.chance(30) ? m_random.between(1, 120) : m_random.between(120, 1400);
    };
    switch (m_random.below(16)) {
    case 0:
    case 1:
    case 2:
        return resize({side(), side()});
    case 3:
        MonkeyDiary::note("hide");
        return m_window->hide();
    case 4:
        MonkeyDiary::note("minimise");
        return m_window->showMinimized();
    case 5:
        MonkeyDiary::note("maximise");
        return m_window->showMaximized();
    case 6:
        MonkeyDiary::note("focus out");
        m_other.show();
        return m_other.requestActivate();
    case 7:
        return replaceWindow();
    case 8:
        MonkeyDiary::note("client hides");
        return QuorvixClient::shared().hide();
    case 9:
        MonkeyDiary::note("clear");
        return QXRequestRecorder::shared().clear();
    case 10:
        MonkeyDiary::note("client shows");
        return QuorvixClient::shared().show();
    default:
        return changeAppearance();
    }
}

void MonkeyWorld::changeAppearance()
{
    switch (m_random.below(4)) {
    case 0: {
        const bool isDark = m_random.chance(50);
        MonkeyDiary::note("palette", isDark ? QStringLiteral("dark") : QStringLiteral("light"));
        QPalette dark(QColor(0x2c, 0x2c, 0x2e), QColor(0x1c, 0x1c, 0x1e));
        return QGuiApplication::setPalette(isDark ? dark : QPalette());
    }
    case 1: {
        QFont font = m_usualFont;
        font.setPixelSize(m_random.chance(50) ? m_random.between(6, 40) : 13);
        MonkeyDiary::note("font", QString::number(font.pixelSize()));
        return QGuiApplication::setFont(font);
    }
    case 2: {
        const bool isMirrored = m_random.chance(50);
        MonkeyDiary::note("direction", isMirrored ? QStringLiteral("right to left") : QString());
        return QGuiApplication::setLayoutDirection(isMirrored ? Qt::RightToLeft : Qt::LeftToRight);
    }
    default:
        return resize(m_random.oneOf(usualSizes));
    }
}

void MonkeyWorld::replaceWindow()
{
    MonkeyDiary::note("window");
    QQuickWindow *const next = m_openWindow();
    if (!next)
        return;
    QQuickWindow *const last = std::exchange(m_window, next);
    last->close();
    if (m_random.chance(50))
        delete last;
    else
        last->deleteLater();
}

void MonkeyWorld::mend()
{
    const bool isShown = m_window->isVisible() && m_window->visibility() != QWindow::Minimized;
    if (!isShown && m_random.chance(20)) {
        MonkeyDiary::note("show");
        m_window->showNormal();
        m_window->requestActivate();
    } else if (QGuiApplication::focusWindow() != m_window && m_random.chance(10)) {
        MonkeyDiary::note("focus in");
        m_other.hide();
        m_window->requestActivate();
    } else if (!QuorvixClient::shared().overlayWindow() && m_random.chance(10)) {
        MonkeyDiary::note("client shows");
        QuorvixClient::shared().show();
    } else if ((m_window->width() < 300 || m_window->height() < 400) && m_random.chance(10)) {
        resize(m_random.oneOf(usualSizes));
    }
}

void MonkeyWorld::restore()
{
    m_other.hide();
    QGuiApplication::setFont(m_usualFont);
    QGuiApplication::setPalette(QPalette());
    QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    m_window->showNormal();
    m_window->requestActivate();
    m_window->resize(phone);
    QuorvixClient::shared().show();
}
