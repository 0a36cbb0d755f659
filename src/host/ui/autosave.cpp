// Watching for changes that no copy holds yet.

#include "ui/autosave.h"

#include "ed/activity.h"
#include "ed/console.h"
#include "ed/documents.h"

#include <QSettings>

namespace {

constexpr int kCheckMilliseconds = 2000;
constexpr int kDefaultMinutes = 5;
constexpr int kMostMinutes = 600;
const char kSetting[] = "autosave/minutes";

} // namespace

KcUiAutosave::KcUiAutosave(const QString& folder)
    : m_recovery(folder)
{
    m_timer.setInterval(kCheckMilliseconds);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { check(); });
    m_timer.start();
}

int KcUiAutosave::minutes()
{
    return std::clamp(QSettings().value(QLatin1String(kSetting), kDefaultMinutes).toInt(), 0, kMostMinutes);
}

void KcUiAutosave::setMinutes(int minutes)
{
    QSettings().setValue(QLatin1String(kSetting), minutes);
}

void KcUiAutosave::check(bool atOnce)
{
    if (const auto failure = m_recovery.finished(); failure && !failure->isEmpty())
        kcedSay(*failure);
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    if (!document || !document->isModified()) {
        if (std::exchange(m_hasCopy, false))
            m_recovery.discard();
        m_sinceChange.invalidate();
        return;
    }
    const uint64_t state = document->database().changeCount();
    if (m_hasCopy && state == m_copied)
        return m_sinceChange.invalidate();
    if (!m_sinceChange.isValid())
        m_sinceChange.start();
    const qint64 interval = qint64(minutes()) * 60'000;
    const bool isDue = atOnce || (interval > 0 && m_sinceChange.elapsed() >= interval);
    // In the midst of a command the drawing may be one that nobody would want back.
    if (!isDue || m_recovery.isWriting() || kcedActivity() != KcEdActivity::Idle)
        return;
    m_sinceChange.invalidate();
    m_copied = state;
    m_hasCopy = true;
    if (const platform::Status status = m_recovery.begin(document->database()); !status)
        kcedSay(QStringLiteral("No recovery copy could be written: %1").arg(status.error));
}
