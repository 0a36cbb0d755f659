// Registry of the named memory blocks of this process.

#include "platform/shared_memory.h"

#include <cstring>
#include <map>
#include <mutex>
#include <new>
#include <unistd.h>

namespace platform {

namespace {

struct Registry {
    std::mutex mutex;
    std::map<QString, FileMapping> blocks;
};

Registry& registry()
{
    // Never destroyed: modules may look at a block while the process ends.
    static auto* const instance = new Registry;
    return *instance;
}

} // namespace

FileMapping CreateFileMappingW(const QString& name, size_t size)
{
    if (name.isEmpty())
        return {};
    Registry& all = registry();
    const std::lock_guard lock(all.mutex);
    if (const auto found = all.blocks.find(name); found != all.blocks.end()) {
        FileMapping mapping = found->second;
        mapping.existed = true;
        return mapping;
    }
    if (size == 0)
        return {};
    void* memory = ::operator new(size, std::nothrow);
    if (!memory)
        return {};
    std::memset(memory, 0, size);
    return all.blocks.emplace(name, FileMapping{ memory, size, false }).first->second;
}

void* MapViewOfFile(const FileMapping& mapping, size_t bytes)
{
    return bytes <= mapping.size ? mapping.memory : nullptr;
}

int GetProcessId()
{
    return int(getpid());
}

} // namespace platform
