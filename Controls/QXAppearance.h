#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtQml/qqmlregistration.h>

/// How the platform wants the application to look, followed while it runs. Main thread only.
class QXAppearance : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    /// Whether the palette is a dark one.
    Q_PROPERTY(bool isDark READ isDark NOTIFY changed)
    /// Whether the application reads from right to left.
    Q_PROPERTY(bool isMirrored READ isMirrored NOTIFY changed)
    /// The application's text size against what is usual on the platform, from 0.85 to 2.
    Q_PROPERTY(qreal fontScale READ fontScale NOTIFY changed)
    /// The family of the application's font.
    Q_PROPERTY(QString fontFamily READ fontFamily NOTIFY changed)
    /// The family of the system's fixed-pitch font.
    Q_PROPERTY(QString monospacedFamily READ monospacedFamily NOTIFY changed)

public:
    explicit QXAppearance(QObject *parent = nullptr);

    [[nodiscard]] bool isDark() const;
    [[nodiscard]] bool isMirrored() const;
    [[nodiscard]] qreal fontScale() const;
    [[nodiscard]] QString fontFamily() const;
    [[nodiscard]] QString monospacedFamily() const;

    [[nodiscard]] bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void changed();
};
