#include "Quorvix/QXBreakpointStore.h"

// The store forgets each rule at once: it stays empty and emits nothing.

QXBreakpointStore::QXBreakpointStore() = default;

QXBreakpointStore &QXBreakpointStore::shared()
{
    static auto *const store = new QXBreakpointStore;
    return *store;
}

void QXBreakpointStore::setRules(const Rules &) {}
void QXBreakpointStore::insert(const QXBreakpointKey &) {}
void QXBreakpointStore::remove(const QXBreakpointKey &) {}

QList<QXBreakpointKey> QXBreakpointStore::sortedRules() const
{
    return {};
}

bool QXBreakpointStore::matches(const QUrl &, const QString &)
{
    return false;
}

// In this object, so that only a program that uses the class contains it.
#include "Quorvix/moc_QXBreakpointStore.cpp" // NOLINT(bugprone-suspicious-include)
