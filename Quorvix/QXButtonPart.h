#pragma once

#include "Controls/QXPalette.h"

#include <QtCore/QString>
#include <QtGui/QFont>
#include <QtQuick/QQuickPaintedItem>

#include <functional>
#include <utility>

/// Something that is painted on the floating button. Main thread only; paint() runs while that waits.
class QXButtonPart : public QQuickPaintedItem
{
public:
    using Paint = std::function<void(QPainter &)>;

    /// Makes a part that @p frame surrounds, in the coordinates of @p parent.
    QXButtonPart(QQuickItem &parent, const QRectF &frame, Paint paint);

    void paint(QPainter *painter) override;

private:
    const Paint m_paint;
};

/// The number of exchanges, at the corner of the floating button. Hidden while the text is empty.
class QXButtonBadge final : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text NOTIFY changed)

public:
    explicit QXButtonBadge(QQuickItem &parent);

    [[nodiscard]] const QString &text() const noexcept { return m_text; }
    void setText(const QString &text);
    /// Sets the colours, the font, and whether the mask of the window cuts the round corners.
    void setLook(const QXPalette &palette, const QString &fontFamily, bool isCutOut);

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void changed();

private:
    void fit();

    QString m_text;
    QFont m_font;
    QXPalette m_palette;
    bool m_isCutOut = false;
};
