// Passes command tables to the command stack.

#include "core/commands.h"

#include "ed/command_stack.h"

void AddCommand(const QString& group, const ArxCommandTable* table, int rows, int)
{
    for (int i = 0; i < rows; ++i) {
        const QString name = QString::fromUtf16(table[i].name);
        kcedCommandStack().addCommand(group, name, name, table[i].flags, table[i].handler);
    }
}
