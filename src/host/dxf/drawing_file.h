// Opening and saving drawings: text and binary exchange files of R12 to 2018.
#pragma once

#include "db/database.h"

#include <QStringList>

#include <functional>

namespace dxf {

struct Result {
    bool ok = false;
    bool stopped = false; ///< given up because the one who watches wished it; `error` says so, too
    QString error; ///< one sentence for the user, with the line where a file is damaged
    QStringList notes; ///< what the user should know of a success, such as a change of version
};

/// The file to read for a drawing's name, found without regard to letter case: for a name ending in .dwg the
/// exchange file (.dxf) of that stem beside it, where there is one, since the other format cannot be read.
QString findDrawing(const QString& path);

/// Told how much of a drawing has been read, in per cent, about once for each; false stops the reading.
using ReadProgress = std::function<bool(int percent)>;

/// Reads a drawing into an empty database (`KcDbDatabase::Content::kEmpty`). What is odd but readable becomes
/// findings of the database. After a failure, and after a stop, the database is good for nothing but to be
/// thrown away.
Result readDrawing(const QString& path, KcDbDatabase& database, const ReadProgress& progress = {});
/// The same from bytes in memory.
Result readDrawing(std::string_view bytes, KcDbDatabase& database, const ReadProgress& progress = {});

/// Writes a drawing to a file, whole or not at all: what nobody changed as it was read, everything else anew.
Result saveDrawing(KcDbDatabase& database, const QString& path);
/// The same into memory.
Result saveDrawing(KcDbDatabase& database, std::string& bytes);

} // namespace dxf
