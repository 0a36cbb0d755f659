// When copies of unsaved work are written: some minutes after a change, while no command runs.
#pragma once

#include "ui/recovery.h"

#include <QElapsedTimer>
#include <QTimer>

class KcUiAutosave {
public:
    explicit KcUiAutosave(const QString& folder = {});

    /// Minutes between copies, kept for the next start; 0: none are written.
    static int minutes();
    void setMinutes(int minutes);

    KcUiRecovery& recovery() { return m_recovery; }
    /// Looks whether a copy is due. The timer calls it; `atOnce` does not wait for the interval.
    void check(bool atOnce = false);

private:
    KcUiRecovery m_recovery;
    QTimer m_timer;
    QElapsedTimer m_sinceChange; ///< since the first change that no copy has
    uint64_t m_copied = 0; ///< state of the drawing that the copy holds
    bool m_hasCopy = false;
};
