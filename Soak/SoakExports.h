#pragma once

#include "Soak/SoakLedger.h"

#include "Examples/MonkeyRandom.h"
#include "Platform/NSNotificationCenter.h"

#include <QtCore/QObject>

/// Exports what is recorded in all formats, and clears the recorder, while exchanges run. Main thread only.
class SoakExports final : public QObject
{
    Q_OBJECT

public:
    SoakExports(SoakLedger &ledger, quint64 seed);

    void setActive(bool active) { m_isActive = active; }
    /// Clears the recorder.
    void clear();
    [[nodiscard]] quint64 exports() const { return m_exports; }

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    void exportOne();
    void exportAll();
    void take(const QUrl &file);

    SoakLedger &m_ledger;
    MonkeyRandom m_random;
    bool m_isActive = false;
    quint64 m_exports = 0;
    qint64 m_receivedAtClear = 0;
    Quorvix::NSNotificationObserver m_observer;
};
