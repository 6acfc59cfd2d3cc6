#pragma once

#include "Soak/SoakJudge.h"

#include "Examples/MonkeyRandom.h"

#include <QtCore/QHash>
#include <QtCore/QObject>

#include <mutex>

/// Switches rules on and off, and releases what they hold, early and late, edited and as it came. Main thread
/// only, except takeEdit().
class SoakBreakpoints final : public QObject
{
    Q_OBJECT

public:
    SoakBreakpoints(SoakLedger &ledger, quint64 seed);

    /// Whether new rules appear. Without them, all that is held is released soon.
    void setActive(bool active);
    /// The edit of an exchange, once; absent if it was not edited. Any thread.
    [[nodiscard]] std::optional<SoakEdit> takeEdit(quint64 number);
    /// Forgets the edits of exchanges that ended otherwise.
    void forgetEdits();
    [[nodiscard]] quint64 released() const { return m_released; }
    [[nodiscard]] quint64 edited() const { return m_edited; }

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void changeRules();
    void release();

    SoakLedger &m_ledger;
    MonkeyRandom m_random;
    bool m_isActive = false;
    quint64 m_released = 0;
    quint64 m_edited = 0;
    std::mutex m_mutex;
    QHash<quint64, SoakEdit> m_edits;
};
