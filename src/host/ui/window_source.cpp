// Waiting in a loop of its own until the user has done something.

#include "ui/window_source.h"

#include <QEventLoop>
#include <QScopedValueRollback>

void KcUiWindowSource::push(KcEdEvent event)
{
    // Of several moves that nobody has looked at, the last one counts.
    if (std::holds_alternative<KcEdMove>(event) && !m_events.empty()
        && std::holds_alternative<KcEdMove>(m_events.back()))
        m_events.pop_back();
    // Escape forgets what was typed ahead of it; what was granted stays.
    if (std::holds_alternative<KcEdEscape>(event))
        std::erase_if(
            m_events, [](const KcEdEvent& other) { return !std::holds_alternative<KcEdCall>(other); });
    m_events.push_back(std::move(event));
    if (m_loop)
        m_loop->quit();
}

void KcUiWindowSource::interrupt(KcEdEvent event)
{
    m_events.push_front(std::move(event));
    if (m_loop)
        m_loop->quit();
}

void KcUiWindowSource::finish()
{
    m_finished = true;
    m_events.clear();
    if (m_loop)
        m_loop->quit();
}

void KcUiWindowSource::refused(const KcEdLine&, const QString& reason)
{
    if (onRefused)
        onRefused(reason);
}

KcEdEvent KcUiWindowSource::read(const KcEdPrompt& prompt)
{
    if (m_events.empty() && !m_finished) {
        QEventLoop loop;
        const QScopedValueRollback<QEventLoop*> loopScope(m_loop, &loop);
        const QScopedValueRollback<const KcEdPrompt*> promptScope(m_waiting, &prompt);
        if (onWaiting)
            onWaiting(&prompt);
        while (!m_finished) {
            // What a drag shows follows the cursor without the prompt being answered. Outside the event loop,
            // since it may throw.
            const KcEdMove* move = prompt.drag && m_events.size() == 1 ? std::get_if<KcEdMove>(&m_events.front())
                                                                       : nullptr;
            if (move) {
                const KcGePoint3d point = move->point;
                m_events.clear();
                prompt.drag(point);
            } else if (!m_events.empty()) {
                break;
            } else if (loop.exec() == -1) {
                m_finished = true; // begun after the program was told to quit
            }
        }
    }
    if (onWaiting)
        onWaiting(nullptr);
    if (m_finished)
        return KcEdEnd();
    KcEdEvent event = std::move(m_events.front());
    m_events.pop_front();
    return event;
}
