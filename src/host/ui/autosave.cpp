// Watching for changes that no copy holds yet.

#include "ui/autosave.h"

#include "ed/activity.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "ed/system_variables.h"

#include <QSettings>

#include <chrono>

namespace {

constexpr int kCheckMilliseconds = 2000;
constexpr int kDefaultMinutes = 5;
constexpr qint64 kMinute = 60'000;
const char kSetting[] = "autosave/minutes";
const char kVariable[] = "SAVETIME";

int minutes()
{
    return kcedVarInt(QLatin1String(kVariable), kDefaultMinutes);
}

qint64 steadyMilliseconds()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

KcUiAutosave::KcUiAutosave(const QString& folder)
    : clock(steadyMilliseconds)
    , m_recovery(folder)
{
    const int64_t wanted = QSettings().value(QLatin1String(kSetting), kDefaultMinutes).toInt();
    kcedSetVar(QLatin1String(kVariable), wanted); // refused when somebody wrote nonsense into the settings
    m_remembered = minutes();
    m_timer.setInterval(kCheckMilliseconds);
    QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this] { check(); });
    m_timer.start();
}

void KcUiAutosave::remember()
{
    if (minutes() == m_remembered)
        return;
    m_remembered = minutes();
    QSettings().setValue(QLatin1String(kSetting), m_remembered);
}

void KcUiAutosave::check(bool atOnce)
{
    remember();
    if (const auto failure = m_recovery.finished(); failure && !failure->isEmpty()) {
        kcedSay(*failure);
        m_hasCopy = false; // a later attempt may find more room
    }
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    if (!document || !document->isModified()) {
        m_recovery.discard();
        m_hasCopy = false;
        m_waitsSince.reset();
        return;
    }
    const uint64_t state = document->database().changeCount();
    if (m_hasCopy && state == m_copied)
        return m_waitsSince.reset();
    if (!m_waitsSince)
        m_waitsSince = clock();
    const qint64 interval = minutes() * kMinute;
    const bool isDue = atOnce || (interval > 0 && clock() - *m_waitsSince >= interval);
    // In the midst of a command the drawing may be one that nobody would want back.
    if (!isDue || m_recovery.isWriting() || kcedActivity() != KcEdActivity::Idle)
        return;
    m_waitsSince.reset();
    m_copied = state;
    const platform::Status begun = m_recovery.begin(document->database());
    m_hasCopy = begun.ok();
    if (!begun)
        kcedSay(QStringLiteral("No recovery copy could be written: %1").arg(begun.error));
}
