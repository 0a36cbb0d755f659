// Registering a module's commands.
#pragma once

#include <QString>

#include <cstdint>

/// One command of a module's table.
struct ArxCommandTable {
    const char16_t* name;
    void (*handler)();
    int32_t flags; ///< 0, or 2: may take the selection made before the command was started
};

/// Registers every row of a table with the host's command stack, under its name as global and local name. The
/// last argument is always 0.
void AddCommand(const QString& group, const ArxCommandTable* table, int rows, int reserved);
