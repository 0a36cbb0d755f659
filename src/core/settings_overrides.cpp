// Finds the list of overridden settings in shared memory, or puts an empty one there.

#include "core/settings_overrides.h"

#include "platform/numbers.h"
#include "platform/shared_memory.h"

#include <new>

SettingsOverrides& settingsOverrides()
{
    const QString name = platform::formatC(
        "VDL_%d_%d_%d_%s_%s", 1, 1, platform::GetProcessId(), "1", "MIniOverrideManager_settingVector");
    const platform::FileMapping block = platform::CreateFileMappingW(name, sizeof(SettingsOverrides));
    void* const memory = platform::MapViewOfFile(block, sizeof(SettingsOverrides));
    if (!memory)
        throw std::bad_alloc();
    return block.existed ? *std::launder(static_cast<SettingsOverrides*>(memory))
                         : *new (memory) SettingsOverrides;
}

std::optional<QString> findSettingsOverride(const QString& section, const QString& key)
{
    const QString name = section + key;
    for (const SettingsOverride& pair : std::as_const(settingsOverrides()))
        if (pair.name == name)
            return pair.value;
    return std::nullopt;
}
