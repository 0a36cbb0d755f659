// The progress meter of work that is usually short.
#pragma once

#include "ed/status_bar.h"

#include <optional>

/// Shows the status bar's meter while it lives, when there are more than so many things to do.
class LongWork {
public:
    /// `label` holds %1 for the number of things.
    LongWork(const QString& label, size_t things, size_t withoutMeter)
    {
        if (things > withoutMeter)
            m_meter.emplace(label.arg(things), int(things));
    }
    /// One more is done. False once the user wants the work stopped.
    bool advance()
    {
        if (!m_meter)
            return true;
        m_meter->setPosition(++m_done);
        return !kcedProgressCancelled();
    }

private:
    std::optional<KcEdProgress> m_meter;
    int m_done = 0;
};
