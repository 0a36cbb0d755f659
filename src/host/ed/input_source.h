// Where answers come from: a script, the terminal, a list of texts, a window. Prompts and the command line
// ask the active source and cannot tell which it is.
#pragma once

#include "ed/prompt.h"

#include <QStringList>

#include <deque>
#include <iosfwd>

/// One line as it was typed.
struct KcEdLine {
    QString text;
    QString origin; ///< name of the script; empty for what no script holds
    int number = 0; ///< in its script, from 1; 0: none
};
/// A click in a window, user coordinates.
struct KcEdClick {
    KcGePoint3d point;
};
/// An answer that needs no words: a rectangle drawn in a window, an entity under its cursor.
struct KcEdGiven {
    KcEdAnswer answer;
};
/// Something to be done when no command runs; a prompt that meets it is cancelled.
struct KcEdCall {
    std::function<void()> body;
};
/// Nothing more will come.
struct KcEdEnd { };

using KcEdEvent = std::variant<KcEdLine, KcEdClick, KcEdMove, KcEdGiven, KcEdEscape, KcEdCall, KcEdEnd>;

class KcEdInputSource {
public:
    virtual ~KcEdInputSource() = default;

    /// What comes next; `prompt` is what waits for it. Its text has been printed already.
    KcEdEvent next(const KcEdPrompt& prompt);
    /// Gives an event back: it is the next one. Of several the last given back comes first.
    void giveBack(KcEdEvent event) { m_waiting.push_front(std::move(event)); }
    /// An event that comes before everything else the source has; a source that waits for the user wakes up.
    virtual void interrupt(KcEdEvent event) { giveBack(std::move(event)); }
    /// Takes the calls that nobody has met yet, for the source below when this one is no longer asked.
    std::vector<KcEdCall> takeCalls();
    /// Lines that come before everything else the source has.
    void insert(const QStringList& lines);

    /// Called for a line that nothing took, with the reason.
    virtual void refused(const KcEdLine& line, const QString& reason) = 0;
    /// Where the cursor stands at a prompt, drawn to snaps and axes, user coordinates; nothing where there is
    /// none. What is typed as a distance goes towards it.
    virtual std::optional<KcGePoint3d> cursor(const KcEdPrompt&) const { return {}; }
    /// True when what was typed is not seen on the command line by itself.
    virtual bool needsEcho() const { return true; }
    /// True when lines answer dialogs; false when the user does so with mouse and keys.
    virtual bool drivesDialogs() const { return true; }

protected:
    virtual KcEdEvent read(const KcEdPrompt& prompt) = 0;

private:
    std::deque<KcEdEvent> m_waiting;
};

/// The lines of scripts, one after the other.
class KcEdScriptSource : public KcEdInputSource {
public:
    /// Appends a text of lines. `origin` names it in messages, `firstNumber` is that of the
    /// first line.
    void append(const QString& text, const QString& origin, int firstNumber = 1);
    void refused(const KcEdLine& line, const QString& reason) override;
    /// How many lines nothing took.
    int refusals() const { return m_refusals; }

protected:
    KcEdEvent read(const KcEdPrompt& prompt) override;

private:
    std::vector<KcEdLine> m_lines;
    size_t m_next = 0;
    int m_refusals = 0;
};

/// Lines of a stream, usually of a terminal at which somebody types.
class KcEdStreamSource : public KcEdInputSource {
public:
    KcEdStreamSource(std::istream& stream, bool echoes)
        : m_stream(stream)
        , m_echoes(echoes)
    {
    }
    void refused(const KcEdLine& line, const QString& reason) override;
    bool needsEcho() const override { return !m_echoes; }

protected:
    KcEdEvent read(const KcEdPrompt& prompt) override;

private:
    std::istream& m_stream;
    bool m_echoes; ///< the terminal shows what is typed
};

/// A few answers for one command.
class KcEdListSource : public KcEdInputSource {
public:
    explicit KcEdListSource(const QStringList& lines) { insert(lines); }
    void refused(const KcEdLine& line, const QString& reason) override;
    /// Why the first line that nothing took was refused; empty when all were taken.
    const QString& refusal() const { return m_refusal; }

protected:
    KcEdEvent read(const KcEdPrompt&) override { return KcEdEnd(); }

private:
    QString m_refusal;
};
