// The meter's state and the terminal's bar.

#include "ed/status_bar.h"

#include <cstdio>
#include <unistd.h>

namespace {

class TerminalSink : public KcEdProgressSink {
public:
    void show(const QString& label, int percent) override
    {
        if (!isatty(STDERR_FILENO))
            return;
        const int filled = percent * kWidth / 100;
        const QString bar = QString(filled, QLatin1Char('#')) + QString(kWidth - filled, QLatin1Char('.'));
        // Back to the start of the row, and erase what stood in it.
        std::fprintf(stderr, "\r\033[K%s [%s] %d%%", qUtf8Printable(label), qUtf8Printable(bar), percent);
        std::fflush(stderr);
    }
    void clear() override
    {
        if (isatty(STDERR_FILENO)) {
            std::fprintf(stderr, "\r\033[K");
            std::fflush(stderr);
        }
    }

private:
    static constexpr int kWidth = 30;
};

struct Meter {
    KcEdProgressSink* sink = nullptr;
    QString label;
    int least = 0, most = 0;
    int percent = -1;
    bool running = false;
};

Meter& meter()
{
    static Meter instance;
    return instance;
}

KcEdProgressSink& sink()
{
    static TerminalSink terminal;
    return meter().sink ? *meter().sink : terminal;
}

} // namespace

void kcedSetStatusBarProgressMeter(const QString& label, int least, int most)
{
    KcEdProgressSink* const before = meter().sink;
    meter() = { before, label, least, std::max(least, most), -1, true };
    kcedSetStatusBarProgressMeterPos(least);
}

void kcedSetStatusBarProgressMeterPos(int position)
{
    Meter& m = meter();
    if (!m.running)
        return;
    const int64_t range = int64_t(m.most) - m.least;
    const int64_t done = int64_t(std::clamp(position, m.least, m.most)) - m.least;
    const int percent = range > 0 ? int(done * 100 / range) : 100;
    if (percent == m.percent)
        return;
    m.percent = percent;
    sink().show(m.label, percent);
}

void kcedRestoreStatusBar()
{
    if (std::exchange(meter().running, false))
        sink().clear();
}

bool kcedProgressCancelled()
{
    return meter().running && sink().isCancelled();
}

KcEdProgressSink* kcedSetProgressSink(KcEdProgressSink* other)
{
    return std::exchange(meter().sink, other);
}
