#pragma once

#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtQuick/QQuickItem>

#include <utility>
#include <vector>

/// Replaces what differs between runs in the texts that are visible below an item, until it is destroyed.
/// Main thread only.
class SteadyTexts final
{
public:
    explicit SteadyTexts(QQuickItem *root);
    ~SteadyTexts();
    SteadyTexts(const SteadyTexts &) = delete;
    SteadyTexts &operator=(const SteadyTexts &) = delete;

private:
    std::vector<std::pair<QPointer<QQuickItem>, QString>> m_replaced;
};
