#include "Controls/QXAppearance.h"

#include <QtCore/QEvent>
#include <QtCore/QFileInfo>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtGui/QFontDatabase>
#include <QtGui/QFontInfo>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>

#include <algorithm>
#include <cmath>
#include <iterator>

using namespace Qt::StringLiterals;

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

/// A value of a file of settings of the user's desktops, which is a number or a truth value.
struct Setting
{
    QLatin1StringView file;
    QLatin1StringView key;
};

/// Qt does not tell in public whether the system's animations are on. The desktops that have a switch for all
/// toolkits, and those that have one for theirs, write these files. Zero switches animations off.
constexpr Setting animationSettings[] = {
    {"kdeglobals"_L1, "KDE/AnimationDurationFactor"_L1},
    {"gtk-4.0/settings.ini"_L1, "Settings/gtk-enable-animations"_L1},
    {"gtk-3.0/settings.ini"_L1, "Settings/gtk-enable-animations"_L1},
};

QString pathOf(const Setting &setting)
{
    return QStandardPaths::locate(QStandardPaths::GenericConfigLocation, setting.file);
}

bool isZero(const Setting &setting)
{
    const QString path = pathOf(setting);
    if (path.isEmpty())
        return false;
    const QVariant value = QSettings(path, QSettings::IniFormat).value(setting.key);
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    return value.isValid() && (isNumber ? number == 0 : !value.toBool());
}

/// Differs after a desktop has written one of its files.
QList<QDateTime> writingTimes()
{
    QList<QDateTime> times;
    for (const Setting &setting : animationSettings) {
        const QString path = pathOf(setting);
        times.append(path.isEmpty() ? QDateTime() : QFileInfo(path).lastModified());
    }
    return times;
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

bool QXAppearance::isMotionReduced() const
{
    if (!m_isMotionReduced) {
        const QByteArray wanted = qgetenv("QUORVIX_REDUCED_MOTION");
        m_settingsWritten = writingTimes();
        m_isMotionReduced =
            wanted.isEmpty() ? std::any_of(std::begin(animationSettings), std::end(animationSettings), isZero)
                             : wanted != "0";
    }
    return *m_isMotionReduced;
}

void QXAppearance::refresh()
{
    if (!m_isMotionReduced || writingTimes() == m_settingsWritten)
        return;
    const bool wasReduced = *m_isMotionReduced;
    m_isMotionReduced.reset();
    if (isMotionReduced() != wasReduced)
        Q_EMIT changed();
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
            m_isMotionReduced.reset();
            Q_EMIT changed();
            break;
        default:
            break;
        }
    }
    return QObject::eventFilter(watched, event);
}
