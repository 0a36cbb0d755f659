// Opening and saving drawings: text and binary exchange files of R12 to 2018.
#pragma once

#include "db/database.h"

#include <QStringList>

namespace dxf {

struct Result {
    bool ok = false;
    QString error; ///< one sentence for the user, with the line where a file is damaged
    QStringList notes; ///< what the user should know of a success, such as a change of version
};

/// The file to read for a drawing's name, found without regard to letter case: for a name ending in .dwg the exchange
/// file (.dxf) of that stem beside it, where there is one, since the other format cannot be read.
QString findDrawing(const QString& path);

/// Reads a drawing into an empty database (`KcDbDatabase::Content::kEmpty`). What is odd but readable becomes
/// findings of the database.
Result readDrawing(const QString& path, KcDbDatabase& database);
/// The same from bytes in memory.
Result readDrawing(std::string_view bytes, KcDbDatabase& database);

/// Writes a drawing to a file, whole or not at all: what nobody changed as it was read, everything else anew.
Result saveDrawing(KcDbDatabase& database, const QString& path);
/// The same into memory.
Result saveDrawing(KcDbDatabase& database, std::string& bytes);

} // namespace dxf
