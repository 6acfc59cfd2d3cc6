#include "Examples/SteadyTexts.h"

#include "Examples/VisibleItems.h"

#include <QtCore/QRegularExpression>

namespace {

/// Durations, and pictures, which Qt loads in any order.
QString steady(QString text)
{
    static const QRegularExpression seconds(QStringLiteral("^\\d+\\.\\d{3} seconds$"));
    static const QRegularExpression milliseconds(QStringLiteral("\\b\\d+ ms\\b"));
    static const QRegularExpression picture(QStringLiteral("^GET /images/[a-z-]+\\.png$"));
    return text.replace(seconds, QStringLiteral("0.012 seconds"))
        .replace(milliseconds, QStringLiteral("12 ms"))
        .replace(picture, QStringLiteral("GET /images/lamp.png"));
}

} // namespace

SteadyTexts::SteadyTexts(QQuickItem *root)
{
    visitVisible(root, [this](QQuickItem *item) {
        const QString text = item->property("text").toString();
        const QString steadyText = steady(text);
        if (steadyText == text)
            return;
        m_replaced.emplace_back(item, text);
        item->setProperty("text", steadyText);
    });
}

SteadyTexts::~SteadyTexts()
{
    for (const auto &[item, text] : m_replaced) {
        if (item)
            item->setProperty("text", text);
    }
}
