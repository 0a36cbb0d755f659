// When copies of unsaved work are written: some minutes after a change, while no command runs.
#pragma once

#include "ui/recovery.h"

#include <QTimer>

#include <optional>

/// The minutes are the system variable SAVETIME; 0: no copies are written. The window remembers it.
class KcUiAutosave {
public:
    explicit KcUiAutosave(const QString& folder = {});

    KcUiRecovery& recovery() { return m_recovery; }
    /// Looks whether a copy is due. The timer calls it; `atOnce` does not wait for the interval.
    void check(bool atOnce = false);

    /// Milliseconds that never go back.
    std::function<qint64()> clock;

private:
    void remember();

    KcUiRecovery m_recovery;
    QTimer m_timer;
    std::optional<qint64>
        m_waitsSince; ///< the first change that no copy has, or the last attempt that failed
    uint64_t m_copied = 0; ///< state of the drawing that the copy holds
    bool m_hasCopy = false;
    int m_remembered = 0; ///< minutes, as the settings have them
};
