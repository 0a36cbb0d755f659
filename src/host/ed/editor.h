// The conversation: asks the active source until a prompt is answered, and reads commands when none runs.
#pragma once

#include "ed/input_source.h"
#include "platform/message_box.h"

class KcEdEditor {
public:
    static KcEdEditor& instance();

    /// Asks until the prompt is answered. A line that does not fit is refused, and the prompt asks again.
    /// Without a source, and at its end, the answer is Escape.
    KcEdAnswer ask(const KcEdPrompt& prompt);

    /// Reads and executes lines until the active source ends.
    void run();

    /// Answers a message box as a script or the terminal does: prints it, and reads a line when it asks.
    platform::MessageBoxAnswer answerMessageBox(const platform::MessageBoxRequest& request);

    KcEdInputSource* source() const { return m_sources.empty() ? nullptr : m_sources.back(); }
    /// True while a prompt waits for its answer.
    bool isAsking() const { return m_asking > 0; }

private:
    friend class KcEdSourceScope;

    void executeLine(const KcEdLine& line);
    void executeGiven(const KcEdGiven& given);
    void refuse(const KcEdLine& line, const QString& reason);
    std::optional<KcEdAnswer> answerFrom(const KcEdPrompt& prompt, const KcEdLine& line);

    std::vector<KcEdInputSource*> m_sources;
    int m_asking = 0;
};

/// Makes a source the active one for the length of a scope.
class KcEdSourceScope {
public:
    explicit KcEdSourceScope(KcEdInputSource& source) { KcEdEditor::instance().m_sources.push_back(&source); }
    ~KcEdSourceScope() { KcEdEditor::instance().m_sources.pop_back(); }
    KcEdSourceScope(const KcEdSourceScope&) = delete;
    KcEdSourceScope& operator=(const KcEdSourceScope&) = delete;
};
