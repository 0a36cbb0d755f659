// The window as a source of answers: what the user types, clicks and drags, in the order in which it
// happened.
#pragma once

#include "ed/input_source.h"

class QEventLoop;

class KcUiWindowSource : public KcEdInputSource {
public:
    /// Told when a prompt begins to wait, and with null when it has its answer.
    std::function<void(const KcEdPrompt*)> onWaiting;
    /// Told why a line was not taken.
    std::function<void(const QString&)> onRefused;
    /// Where the cursor stands at a prompt.
    std::function<std::optional<KcGePoint3d>(const KcEdPrompt&)> onCursorAsked;

    /// Something the user did. Escape forgets what was done before it and not taken yet.
    void push(KcEdEvent event);
    void pushLine(const QString& text) { push(KcEdLine{ text, {}, 0 }); }
    /// Something the user did that has a meaning only for the prompt that waits for it: `act` is called when
    /// that one asks, and pushes the answer.
    void pushWhenAsked(std::function<void()> act);
    /// True when the prompt that waits has its answer and will take it in a moment: what the user does now is
    /// for the next one.
    bool isAnswered() const;
    /// No more answers, ever: the window closes. What waits gets its end, and everything that asks later too.
    void finish();
    bool isFinished() const { return m_finished; }

    /// What waits for an answer; null while a command computes.
    const KcEdPrompt* waiting() const { return m_waiting; }

    void refused(const KcEdLine& line, const QString& reason) override;
    void interrupt(KcEdEvent event) override;
    bool drivesDialogs() const override { return false; }
    std::optional<KcGePoint3d> cursor(const KcEdPrompt& prompt) const override
    {
        return onCursorAsked ? onCursorAsked(prompt) : std::nullopt;
    }

protected:
    KcEdEvent read(const KcEdPrompt& prompt) override;

private:
    using Act = std::function<void()>;
    using Done = std::variant<KcEdEvent, Act>;

    bool isReady() const { return !m_done.empty() && std::holds_alternative<KcEdEvent>(m_done.front()); }
    const KcEdMove* lastMove() const;
    void wake();
    void actFirst();

    std::deque<Done> m_done; ///< by the user, and not taken yet
    const KcEdPrompt* m_waiting = nullptr;
    QEventLoop* m_loop = nullptr;
    bool m_finished = false;
};
