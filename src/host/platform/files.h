// Files by names that another desktop system wrote, and writing that either replaces a file whole or not at
// all.
#pragma once

#include "platform/result.h"

#include <QByteArray>

#include <string_view>
#include <vector>

namespace platform {

/// A path with "\" turned into "/" and doubled separators made single. Relative paths stay relative.
QString normalisedPath(const QString& path);

/// Finds a file or folder without regard to letter case, "\" and "/" alike. An exact match comes first; among
/// several others the first in code point order. Where nothing matches, the rest of the path is returned as
/// it was written, below the folders that were found, so that the result can be created.
QString findPath(const QString& path);

/// The whole content of a file, found as by findPath(), or a sentence saying why it cannot be read.
Result<QByteArray> readWholeFile(const QString& path);

/// Writes a file of exactly this name (a person's "Plan.dxf" must not land on "plan.dxf"), so that after a
/// failure the old content is still there: to a temporary file in the same folder, flushed to the disk and
/// renamed. The permissions of the old file are kept; a symbolic link stays one and its target is replaced; a
/// write-protected file is refused; a device or pipe is written to directly. Does not make folders.
Status writeFileAtomically(const QString& path, const QByteArray& bytes);
/// The same with the content in pieces.
Status writeFileAtomically(const QString& path, const std::vector<std::string_view>& pieces);

/// Copies a file, whole or not at all; both are found as by findPath(). With failIfExists an existing target
/// is left alone and the result is false. Says through the diagnostics why it failed.
bool CopyFileW(const QString& from, const QString& to, bool failIfExists);

} // namespace platform
