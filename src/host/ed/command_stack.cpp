// Running commands as undo steps.

#include "ed/command_stack.h"

#include "ed/console.h"
#include "ed/documents.h"

#include <exception>

const KcRxClass* KcRxObject::desc()
{
    static const KcRxClass description("KcRxObject", nullptr);
    return &description;
}

const KcRxClass* KcEdCommandStack::desc()
{
    static const KcRxClass description("KcEdCommandStack", KcRxObject::desc());
    return &description;
}

KcEdCommandStack& kcedCommandStack()
{
    static KcEdCommandStack stack;
    return stack;
}

void kcedRoundCompleted()
{
    kcedCommandStack().roundCompleted();
}

void kcedTakeBackRound()
{
    kcedCommandStack().takeBackRound();
}

void KcEdCommandStack::addCommand(
    const QString& group, const QString& globalName, const QString& localName, int flags,
    std::function<void()> handler)
{
    m_commands.push_back(std::make_unique<KcEdCommand>(
        KcEdCommand{ group, globalName, localName, flags, std::move(handler), {} }));
}

bool KcEdCommandStack::setPurpose(const QString& group, const QString& command, const QString& purpose)
{
    bool found = false;
    for (const auto& row : m_commands) {
        if (row->group.compare(group, Qt::CaseInsensitive)
            || row->globalName.compare(command, Qt::CaseInsensitive))
            continue;
        row->purpose = purpose;
        found = true;
    }
    return found;
}

bool KcEdCommandStack::removeGroup(const QString& group)
{
    const auto kept = std::stable_partition(m_commands.begin(), m_commands.end(), [&](const auto& command) {
        return command->group.compare(group, Qt::CaseInsensitive) != 0;
    });
    const bool found = kept != m_commands.end();
    if (!m_frames.empty())
        std::move(kept, m_commands.end(), std::back_inserter(m_removed));
    m_commands.erase(kept, m_commands.end());
    return found;
}

const KcEdCommand* KcEdCommandStack::lookup(const QString& name) const
{
    qsizetype start = 0;
    while (start < name.size() && QStringLiteral("_.'").contains(name[start]))
        ++start;
    const QString plain = name.mid(start);
    for (auto command = m_commands.rbegin(); command != m_commands.rend(); ++command)
        if ((*command)->globalName.compare(plain, Qt::CaseInsensitive) == 0
            || (*command)->localName.compare(plain, Qt::CaseInsensitive) == 0)
            return command->get();
    const auto alias = m_aliases.find(plain.toUpper());
    return alias == m_aliases.end() ? nullptr : lookup(alias->second);
}

void KcEdCommandStack::addAlias(const QString& alias, const QString& command)
{
    m_aliases[alias.toUpper()] = command.toUpper();
}

bool KcEdCommandStack::run(const KcEdCommand& command)
{
    KcApDocument* document = kcDocManagerPtr()->curDocument();
    if (!document) {
        kcedSay(QStringLiteral("No drawing is open."));
        return false;
    }

    KcEdSelectionSet pickFirst;
    if (m_frames.empty()) {
        if (command.flags & KcEdCommand::kUsePickFirst)
            pickFirst = document->pickFirst;
        document->pickFirst.clear();
    }
    std::optional<KcApUndoStep> step;
    if (!(command.flags & KcEdCommand::kNoUndoStep))
        step.emplace(document->database(), command.globalName);
    m_frames.push_back({ &command, document->database().undo().mark(), std::move(pickFirst) });
    QString failure;
    try {
        command.handler();
    } catch (const std::exception& error) {
        failure = QString::fromUtf8(error.what());
        if (failure.isEmpty())
            failure = QStringLiteral("unknown error");
    } catch (...) {
        failure = QStringLiteral("unknown error");
    }
    if (!failure.isEmpty()) {
        if (step)
            document->database().undo().rollBackTo(m_frames.back().undoMark);
        kcedSay(QStringLiteral("%1 failed: %2. What it had not completed was taken back.")
                    .arg(command.globalName, failure));
    }
    m_frames.pop_back();
    if (m_frames.empty())
        m_removed.clear();
    return failure.isEmpty();
}

void KcEdCommandStack::roundCompleted()
{
    KcDbDatabase* database = kcedCurrentDatabase();
    if (database && !m_frames.empty())
        m_frames.back().undoMark = database->undo().mark();
}

void KcEdCommandStack::takeBackRound()
{
    KcDbDatabase* database = kcedCurrentDatabase();
    if (database && database->undo().isRecording() && !m_frames.empty())
        database->undo().rollBackTo(m_frames.back().undoMark);
}

KcEdSelectionSet KcEdCommandStack::takePickFirst()
{
    return m_frames.empty() ? KcEdSelectionSet() : std::exchange(m_frames.back().pickFirst, {});
}
