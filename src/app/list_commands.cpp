// verdelis commands: every command that exists, with its purpose.

#include "program.h"

#include "ed/command_stack.h"
#include "ed/console.h"

namespace program {

int listCommands(const Arguments& arguments)
{
    if (!arguments.isEmpty())
        return wrongUsage(QStringLiteral("commands takes nothing more."));
    if (!prepareCommands())
        return kFileError;
    // By group in the order of loading, within a group in the order of the table; of several with one name
    // the one that runs.
    qsizetype width = 0;
    for (const auto& command : kcedCommandStack().commands())
        width = std::max(width, command->globalName.size());
    QString group;
    for (const auto& command : kcedCommandStack().commands()) {
        if (kcedCommandStack().lookup(command->globalName) != command.get())
            continue;
        if (command->group != group)
            kcedSay(command->group);
        group = command->group;
        kcedSay(QStringLiteral("  %1  %2").arg(command->globalName.leftJustified(width), command->purpose));
    }
    return kDone;
}

} // namespace program
