#include "Quorvix/QXBreakpointStore.h"

#include <QtCore/QCollator>

#include <algorithm>

QXBreakpointStore::QXBreakpointStore() = default;

QXBreakpointStore &QXBreakpointStore::shared()
{
    static auto *const store = new QXBreakpointStore;
    return *store;
}

void QXBreakpointStore::setRules(const Rules &rules)
{
    Q_EMIT objectWillChange();
    m_rules = rules;
    Q_EMIT rulesChanged();
}

void QXBreakpointStore::insert(const QXBreakpointKey &key)
{
    Rules rules = m_rules;
    rules.insert(key);
    setRules(rules);
}

void QXBreakpointStore::remove(const QXBreakpointKey &key)
{
    Rules rules = m_rules;
    rules.remove(key);
    setRules(rules);
}

QList<QXBreakpointKey> QXBreakpointStore::sortedRules() const
{
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    QList<QXBreakpointKey> sorted = m_rules.values();
    // Texts that differ only in case need a fixed order too. Otherwise the list could change from call to
    // call.
    std::sort(sorted.begin(), sorted.end(), [&](const QXBreakpointKey &left, const QXBreakpointKey &right) {
        const QString leftText = left.displayText();
        const QString rightText = right.displayText();
        const int order = collator.compare(leftText, rightText);
        return order != 0 ? order < 0 : leftText < rightText;
    });
    return sorted;
}
