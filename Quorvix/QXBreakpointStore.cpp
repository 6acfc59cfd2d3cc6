#include "Quorvix/QXBreakpointStore.h"

#include <QtCore/QCollator>

#include <algorithm>
#include <atomic>
#include <mutex>

namespace {

/// A copy of the shared store's rules, for all threads.
class PublishedRules
{
public:
    static PublishedRules &instance()
    {
        static auto *const rules = new PublishedRules;
        return *rules;
    }

    void publish(const QXBreakpointStore::Rules &rules)
    {
        const std::scoped_lock lock(m_mutex);
        m_rules = rules;
        m_hasAny = !rules.isEmpty();
    }

    bool matches(const QUrl &url, const QString &method)
    {
        // Nearly always there is no rule, and then a request costs no lock.
        if (!m_hasAny)
            return false;
        const auto key = QXBreakpointKey::make(url, method);
        const std::scoped_lock lock(m_mutex);
        return key && m_rules.contains(*key);
    }

private:
    std::atomic<bool> m_hasAny = false;
    std::mutex m_mutex;
    QXBreakpointStore::Rules m_rules;
};

} // namespace

QXBreakpointStore::QXBreakpointStore() = default;

QXBreakpointStore &QXBreakpointStore::shared()
{
    static auto *const store = [] {
        auto *const made = new QXBreakpointStore;
        connect(made, &QXBreakpointStore::rulesChanged, made,
                [made] { PublishedRules::instance().publish(made->rules()); });
        return made;
    }();
    return *store;
}

bool QXBreakpointStore::matches(const QUrl &url, const QString &method)
{
    return PublishedRules::instance().matches(url, method);
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
