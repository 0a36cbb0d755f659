// The status bar's meter of long work, with a button that stops it.
#pragma once

#include "ed/status_bar.h"

#include <QObject>

class QProgressBar;
class QStatusBar;
class QToolButton;

/// While it shows, the window stays alive: it repaints, keeps what is typed for afterwards, and listens to
/// the button and to Escape once the work has asked whether it shall stop (some does not, and the button is
/// grey then). What would run a command is refused by what the session does then (ed/activity.h); dialogs,
/// which call their work themselves, hear nothing of keys and clicks until the work is done.
class KcUiProgressMeter : public QObject, public KcEdProgressSink {
public:
    ~KcUiProgressMeter() override;

    void addTo(QStatusBar& bar);

    /// Stops what is being done, if it asks; false when nothing is.
    bool stop();

    // KcEdProgressSink
    void show(const QString& label, int percent) override;
    void clear() override;
    bool isCancelled() override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QProgressBar* m_bar = nullptr;
    QToolButton* m_stop = nullptr;
    bool m_shown = false;
    bool m_stoppable = false; ///< the work asks
    bool m_stopped = false; ///< the user has answered
};
