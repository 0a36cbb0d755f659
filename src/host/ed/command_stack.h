// The commands that exist, by group, and running them: one undo step a command, nothing of an error escapes.
#pragma once

#include "db/rx_class.h"
#include "ed/selection_set.h"

#include <QString>

#include <functional>
#include <map>
#include <memory>
#include <vector>

/// Base of what the system registry holds.
class KcRxObject {
public:
    virtual ~KcRxObject() = default;
    static const KcRxClass* desc();
    virtual const KcRxClass* isA() const = 0;
};

struct KcEdCommand {
    enum Flag {
        kTransparent = 1, ///< may run while another command asks: it only looks at the drawing
        kUsePickFirst = 2, ///< may take the selection made before the command was started
        kNoUndoStep = 1 << 16, ///< works on the steps themselves and is none
    };
    QString group;
    QString globalName, localName;
    int flags = 0;
    std::function<void()> handler;
    QString purpose; ///< one phrase for `verdelis commands`
};

class KcEdCommandStack : public KcRxObject {
public:
    static const KcRxClass* desc();
    const KcRxClass* isA() const override { return desc(); }

    /// Adds a command; of several with one name the last added runs.
    void addCommand(
        const QString& group, const QString& globalName, const QString& localName, int flags,
        std::function<void()> handler);
    /// Another name for a command, used where no command bears it.
    void addAlias(const QString& alias, const QString& command);
    const std::map<QString, QString>& aliases() const { return m_aliases; }
    /// Says what a command is for; false when the group has no such command.
    bool setPurpose(const QString& group, const QString& command, const QString& purpose);
    /// Removes all commands of a group, however often it was added; false when there was none.
    bool removeGroup(const QString& group);

    /// The command of that global or local name, or alias, without regard to case; a leading "_", "." or "'"
    /// is left aside. Null when there is none.
    const KcEdCommand* lookup(const QString& name) const;
    const std::vector<std::unique_ptr<KcEdCommand>>& commands() const { return m_commands; }

    /// Runs a command to its end on the current drawing. Its changes are one undo step; inside another
    /// command they join that one's. An exception takes back what the command did since its last completed
    /// round and is told on the command line. False when it failed so.
    bool run(const KcEdCommand& command);

    /// The command that runs, innermost; null when none does.
    const KcEdCommand* active() const { return m_frames.empty() ? nullptr : m_frames.back().command; }
    size_t depth() const { return m_frames.size(); }

    /// Called by a command that works in rounds when one is complete: a later failure leaves it.
    void roundCompleted();
    /// Takes back what the running command did to the drawing since then.
    void takeBackRound();
    /// The selection made before the running command, once; empty when there is none or it was taken.
    KcEdSelectionSet takePickFirst();

private:
    struct Frame {
        const KcEdCommand* command;
        size_t undoMark;
        KcEdSelectionSet pickFirst;
    };
    std::vector<std::unique_ptr<KcEdCommand>> m_commands;
    std::map<QString, QString> m_aliases; ///< upper case
    // Commands that were removed while something ran; what runs must not vanish below itself.
    std::vector<std::unique_ptr<KcEdCommand>> m_removed;
    std::vector<Frame> m_frames;
};

/// The one command stack, also found in the system registry.
KcEdCommandStack& kcedCommandStack();
/// Marks a completed round of the running command.
void kcedRoundCompleted();
/// Takes back what the running command did to the drawing since its last completed round, or its beginning:
/// for work that the user stops and that is of no use unfinished.
void kcedTakeBackRound();
