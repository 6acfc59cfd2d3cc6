#include "Soak/SoakBreakpoints.h"

#include "Quorvix/QXBreakpointCenter.h"
#include "Quorvix/QXBreakpointStore.h"

#include <QtCore/QUrlQuery>

#include <array>

namespace {

constexpr int interval = 50; // ms

quint64 numberOf(const Quorvix::URLRequest &request)
{
    return QUrlQuery(request.url.value_or(QUrl())).queryItemValue(QStringLiteral("number")).toULongLong();
}

} // namespace

SoakBreakpoints::SoakBreakpoints(SoakLedger &ledger, quint64 seed) : m_ledger(ledger), m_random(seed)
{
    startTimer(interval);
}

void SoakBreakpoints::setActive(bool active)
{
    m_isActive = active;
    if (!active)
        QXBreakpointStore::shared().setRules({});
}

std::optional<SoakEdit> SoakBreakpoints::takeEdit(quint64 number)
{
    const std::scoped_lock lock(m_mutex);
    const auto found = m_edits.constFind(number);
    if (found == m_edits.cend())
        return std::nullopt;
    std::optional<SoakEdit> edit = *found;
    m_edits.erase(found);
    return edit;
}

void SoakBreakpoints::forgetEdits()
{
    const std::scoped_lock lock(m_mutex);
    m_edits.clear();
}

void SoakBreakpoints::timerEvent(QTimerEvent * /*event*/)
{
    if (m_isActive && m_random.chance(10))
        changeRules();
    // A late release leaves others waiting meanwhile.
    if (!m_isActive || m_random.chance(15))
        release();
}

void SoakBreakpoints::changeRules()
{
    auto &store = QXBreakpointStore::shared();
    if (m_random.chance(40))
        return store.setRules({});
    SoakPlan plan;
    plan.fault = m_random.oneOf(SoakPlan::faults());
    plan.isJson = m_random.chance(60);
    const QString method = QLatin1StringView(m_random.oneOf(std::array{"GET", "GET", "POST", "PUT", "HEAD"}));
    if (const auto key = QXBreakpointKey::make(plan.url(1), method))
        store.insert(*key);
}

void SoakBreakpoints::release()
{
    auto &center = QXBreakpointCenter::shared();
    if (!center.activeBreakpoint())
        return;
    ++m_released;
    if (m_random.chance(50))
        return center.continueActive();
    ++m_edited;
    const quint64 number = numberOf(center.activeBreakpoint()->request);
    // Numbers that no server of the soak sends.
    const int status = m_random.between(250, 290);
    const QString body = QStringLiteral("{\"edited\":%1,\"text\":\"%2\"}")
                             .arg(number)
                             .arg(QString(m_random.below(3000), u'\u00e4'));
    {
        const std::scoped_lock lock(m_mutex);
        m_edits.insert(number, {status, body.toUtf8()});
    }
    center.apply(QString::number(status), body);
}
