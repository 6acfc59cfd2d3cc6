#pragma once

#include <QtCore/QMarginsF>
#include <QtCore/QObject>
#include <QtQml/qqmlregistration.h>

class QWindow;

/// The margins that bars and notches cover at the edges of a window, in points. Main thread only.
class QXSafeArea : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("a layer has it")
    Q_PROPERTY(qreal top READ top NOTIFY marginsChanged)
    Q_PROPERTY(qreal left READ left NOTIFY marginsChanged)
    Q_PROPERTY(qreal right READ right NOTIFY marginsChanged)
    Q_PROPERTY(qreal bottom READ bottom NOTIFY marginsChanged)

public:
    explicit QXSafeArea(QObject *parent);

    [[nodiscard]] const QMarginsF &margins() const noexcept { return m_margins; }
    void setMargins(const QMarginsF &margins);
    /// Updates the margins to those of @p window.
    void measure(const QWindow &window);

    [[nodiscard]] qreal top() const noexcept { return m_margins.top(); }
    [[nodiscard]] qreal left() const noexcept { return m_margins.left(); }
    [[nodiscard]] qreal right() const noexcept { return m_margins.right(); }
    [[nodiscard]] qreal bottom() const noexcept { return m_margins.bottom(); }

Q_SIGNALS:
    void marginsChanged();

private:
    QMarginsF m_margins;
};
