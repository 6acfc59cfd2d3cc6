#pragma once

#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickItem>

/// A part of a window of which assistive technologies learn nothing while another part covers it. Main thread
/// only.
///
/// Qt tells them of all visible items, covered or not. While this item is covered, it has to be accessible:
/// then it stands for everything in it, and says that it is invisible. Otherwise its items speak for
/// themselves. QXCurtain does that.
class QXCoverable : public QQuickItem
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit QXCoverable(QQuickItem *parent = nullptr);
};
