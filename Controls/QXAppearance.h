#pragma once

#include "Controls/QXPalette.h"

#include <QtCore/QDateTime>
#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

#include <optional>

/// The platform's settings for colours, text size and fonts, updated while the application runs. Main thread
/// only.
class QXAppearance : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// Whether the palette is dark.
    Q_PROPERTY(bool isDark READ isDark NOTIFY changed)
    Q_PROPERTY(QXPalette palette READ palette NOTIFY changed)
    /// Whether the application reads from right to left.
    Q_PROPERTY(bool isMirrored READ isMirrored NOTIFY changed)
    /// The ratio of the application's text size to the usual size on the platform, from 0.85 to 2.
    Q_PROPERTY(qreal fontScale READ fontScale NOTIFY changed)
    /// Whether the user wants views to change at once rather than to move: QUORVIX_REDUCED_MOTION in the
    /// environment says so, or the settings of a desktop.
    Q_PROPERTY(bool isMotionReduced READ isMotionReduced NOTIFY changed)
    /// The family of the application's font.
    Q_PROPERTY(QString fontFamily READ fontFamily NOTIFY changed)
    /// The family of the system's fixed-pitch font.
    Q_PROPERTY(QString monospacedFamily READ monospacedFamily NOTIFY changed)

public:
    explicit QXAppearance(QObject *parent = nullptr);

    [[nodiscard]] bool isDark() const;
    [[nodiscard]] QXPalette palette() const { return isDark() ? QXPalette::dark() : QXPalette::light(); }
    [[nodiscard]] bool isMirrored() const;
    [[nodiscard]] qreal fontScale() const;
    [[nodiscard]] bool isMotionReduced() const;
    [[nodiscard]] QString fontFamily() const;
    [[nodiscard]] QString monospacedFamily() const;

    /// Looks whether desktops have written their settings, which nobody tells a program. It takes some tens
    /// of microseconds: call it before something that a user begins.
    Q_INVOKABLE void refresh();

    [[nodiscard]] bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void changed();

private:
    /// Absent until someone asks, because it takes a look at files.
    mutable std::optional<bool> m_isMotionReduced;
    mutable QList<QDateTime> m_settingsWritten;
};
