// Waiting in a loop of its own until the user has done something.

#include "ui/window_source.h"

#include <QEventLoop>
#include <QScopedValueRollback>

namespace {

template <class Kind, class Done> const Kind* eventAs(const Done& done)
{
    const auto* event = std::get_if<KcEdEvent>(&done);
    return event ? std::get_if<Kind>(event) : nullptr;
}

} // namespace

void KcUiWindowSource::push(KcEdEvent event)
{
    // Of several moves that nobody has looked at, the last one counts.
    if (std::holds_alternative<KcEdMove>(event) && lastMove())
        m_done.pop_back();
    // Escape forgets what was done ahead of it; what was granted stays.
    if (std::holds_alternative<KcEdEscape>(event))
        std::erase_if(m_done, [](const Done& other) { return !eventAs<KcEdCall>(other); });
    m_done.push_back(std::move(event));
    wake();
}

void KcUiWindowSource::pushWhenAsked(std::function<void()> act)
{
    m_done.push_back(std::move(act));
    wake();
}

void KcUiWindowSource::interrupt(KcEdEvent event)
{
    m_done.push_front(std::move(event));
    wake();
}

void KcUiWindowSource::finish()
{
    m_finished = true;
    m_done.clear();
    wake();
}

void KcUiWindowSource::wake()
{
    if (m_loop)
        m_loop->quit();
}

const KcEdMove* KcUiWindowSource::lastMove() const
{
    return m_done.empty() ? nullptr : eventAs<KcEdMove>(m_done.back());
}

bool KcUiWindowSource::isAnswered() const
{
    return m_waiting && !m_done.empty() && !(m_done.size() == 1 && lastMove());
}

void KcUiWindowSource::refused(const KcEdLine&, const QString& reason)
{
    if (onRefused)
        onRefused(reason);
}

// What it pushes comes before everything that was done after it.
void KcUiWindowSource::actFirst()
{
    std::deque<Done> later = std::exchange(m_done, {});
    const Act act = std::get<Act>(std::move(later.front()));
    later.pop_front();
    act();
    if (!m_finished)
        std::ranges::move(later, std::back_inserter(m_done));
}

KcEdEvent KcUiWindowSource::read(const KcEdPrompt& prompt)
{
    if (!isReady() && !m_finished) {
        QEventLoop loop;
        const QScopedValueRollback<QEventLoop*> loopScope(m_loop, &loop);
        const QScopedValueRollback<const KcEdPrompt*> promptScope(m_waiting, &prompt);
        if (onWaiting)
            onWaiting(&prompt);
        while (!m_finished) {
            // What a drag shows follows the cursor without the prompt being answered. Outside the event loop,
            // since it may throw.
            const KcEdMove* move = prompt.drag && m_done.size() == 1 ? lastMove() : nullptr;
            if (move) {
                const KcGePoint3d point = move->point;
                m_done.clear();
                prompt.drag(point);
            } else if (isReady()) {
                break;
            } else if (!m_done.empty()) {
                actFirst();
            } else if (loop.exec() == -1) {
                m_finished = true; // begun after the program was told to quit
            }
        }
    }
    if (onWaiting)
        onWaiting(nullptr);
    if (m_finished)
        return KcEdEnd();
    KcEdEvent event = std::get<KcEdEvent>(std::move(m_done.front()));
    m_done.pop_front();
    return event;
}
