// Named blocks of memory that the modules loaded into one process find by name. The names in use hold the
// process id, so blocks are kept in the process itself and go with it.
#pragma once

#include <QString>

#include <cstddef>

namespace platform {

/// A named block. A null memory pointer means that it could not be made.
struct FileMapping {
    void* memory = nullptr;
    size_t size = 0; ///< bytes, as asked for by whoever made the block first
    bool existed = false; ///< the block was there before this call
};

/// Finds the block of a name, or makes one of `size` zeroed bytes. Names differ by letter case. Fails (null
/// memory) for an empty name or for size 0 when there is no such block yet.
FileMapping CreateFileMappingW(const QString& name, size_t size);

/// Address of the first `bytes` bytes of the block, aligned for any type and valid until the process ends;
/// null when the block is smaller or was not made. 0 bytes stand for the whole block.
void* MapViewOfFile(const FileMapping& mapping, size_t bytes = 0);

/// Id of this process.
int GetProcessId();

} // namespace platform
