// The commands of the module, in the order in which they are registered.
#pragma once

#include <QString>

#include <cstdint>
#include <span>

/// The group that holds every command of the product.
inline const QString commandGroup = QStringLiteral("VDL_MAIN");

struct CommandRow {
    const char16_t* name;
    void (*handler)();
    int32_t flags; ///< 0, or 2: may take the selection made before the command was started
    const char* purpose; ///< one phrase for whoever lists the commands
};

/// Every command there is.
std::span<const CommandRow> commandTable();

/// Registers them with the host under `commandGroup`, with their purposes.
void registerCommands();
