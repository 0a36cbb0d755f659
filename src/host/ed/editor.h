// The conversation: asks the active source until a prompt is answered, and reads commands when none runs.
#pragma once

#include "ed/input_source.h"

class KcEdEditor {
public:
    static KcEdEditor& instance();

    /// Asks until the prompt is answered. A line that does not fit is refused, and the prompt asks again.
    /// Without a source, and at its end, the answer is Escape.
    KcEdAnswer ask(const KcEdPrompt& prompt);

    /// Reads and executes lines until the active source ends.
    void run();
    /// Makes `run` end when the command that runs has ended, whatever its source still has.
    void quit() { m_quits = true; }

    /// Tells the source that nothing took a line, and why.
    void refuse(const KcEdLine& line, const QString& reason);

    KcEdInputSource* source() const { return m_sources.empty() ? nullptr : m_sources.back(); }

private:
    friend class KcEdSourceScope;

    void executeLine(const KcEdLine& line);
    void executeGiven(const KcEdGiven& given);
    std::optional<KcEdAnswer> answerFrom(const KcEdPrompt& prompt, const KcEdLine& line);

    std::vector<KcEdInputSource*> m_sources;
    bool m_quits = false;
};

/// Makes a source the active one for the length of a scope.
class KcEdSourceScope {
public:
    explicit KcEdSourceScope(KcEdInputSource& source);
    ~KcEdSourceScope();
    KcEdSourceScope(const KcEdSourceScope&) = delete;
    KcEdSourceScope& operator=(const KcEdSourceScope&) = delete;
};
