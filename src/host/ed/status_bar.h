// The progress meter of the status bar. Without a window it is drawn on standard error when that is a
// terminal.
#pragma once

#include <QString>

/// Begins a meter with a label that runs from `least` to `most`. One that runs is replaced.
void kcedSetStatusBarProgressMeter(const QString& label, int least, int most);
/// Moves the meter; values outside its range count as its ends.
void kcedSetStatusBarProgressMeterPos(int position);
/// Ends the meter.
void kcedRestoreStatusBar();

/// Where a meter is drawn.
class KcEdProgressSink {
public:
    virtual ~KcEdProgressSink() = default;
    /// `percent` from 0 to 100; called only when it changes.
    virtual void show(const QString& label, int percent) = 0;
    virtual void clear() = 0;
    /// True once the user has asked to stop the long work.
    virtual bool isCancelled() { return false; }
};
/// True when the user wants the work of the meter that runs stopped. Ask it at the end of each step that can
/// stand alone.
bool kcedProgressCancelled();
/// Installs another sink, which must outlive its use, and returns the one before; null is the terminal.
KcEdProgressSink* kcedSetProgressSink(KcEdProgressSink* sink);

/// A meter for the length of a scope.
class KcEdProgress {
public:
    KcEdProgress(const QString& label, int most) { kcedSetStatusBarProgressMeter(label, 0, most); }
    ~KcEdProgress() { kcedRestoreStatusBar(); }
    KcEdProgress(const KcEdProgress&) = delete;
    KcEdProgress& operator=(const KcEdProgress&) = delete;
    void setPosition(int position) { kcedSetStatusBarProgressMeterPos(position); }
};
