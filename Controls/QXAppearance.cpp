#include "Controls/QXAppearance.h"

#include <QtCore/QEvent>
#include <QtGui/QFontDatabase>
#include <QtGui/QFontInfo>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

#include <algorithm>
#include <cmath>

namespace {

constexpr qreal smallestScale = 0.85;
constexpr qreal largestScale = 2;
/// The usual text size differs by up to this share between platforms. A smaller difference does not mean
/// that the user chose another size.
constexpr qreal tolerance = 0.15;

/// The height of the text that the platform's own applications have by default, in pixels.
constexpr qreal usualPixelSize()
{
#if defined(Q_OS_IOS)
    return 17;
#elif defined(Q_OS_ANDROID)
    return 14;
#elif defined(Q_OS_MACOS)
    return 13;
#elif defined(Q_OS_WINDOWS)
    return 12;
#else
    return 13.3; // ten points at 96 dots per inch
#endif
}

} // namespace

QXAppearance::QXAppearance(QObject *parent) : QObject(parent)
{
    qGuiApp->installEventFilter(this);
    // The application reports this by a signal only; the event goes to the windows.
    connect(qGuiApp, &QGuiApplication::layoutDirectionChanged, this, &QXAppearance::changed);
}

bool QXAppearance::isDark() const
{
    return QGuiApplication::palette().color(QPalette::Active, QPalette::Window).lightnessF() < 0.5F;
}

bool QXAppearance::isMirrored() const
{
    return QGuiApplication::isRightToLeft();
}

qreal QXAppearance::fontScale() const
{
    const qreal scale = QFontInfo(QGuiApplication::font()).pixelSize() / usualPixelSize();
    return std::abs(scale - 1) <= tolerance ? 1 : std::clamp(scale, smallestScale, largestScale);
}

QString QXAppearance::fontFamily() const
{
    return QGuiApplication::font().family();
}

QString QXAppearance::monospacedFamily() const
{
    return QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
}

bool QXAppearance::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qGuiApp) {
        switch (event->type()) {
        case QEvent::ApplicationFontChange:
        case QEvent::ApplicationPaletteChange:
            Q_EMIT changed();
            break;
        default:
            break;
        }
    }
    return QObject::eventFilter(watched, event);
}
