// Saving a drawing: which way it is written, and putting the bytes on the disk.

#include "db/dictionary.h"
#include "db/open.h"
#include "dxf/drawing_file.h"
#include "dxf/record.h"
#include "dxf/source_file.h"
#include "dxf/writer.h"
#include "dxf/written.h"
#include "platform/files.h"

namespace dxf {

namespace {

struct Since {
    std::string_view fileName;
    KcDbVersion version;
};

// Kinds of objects that older versions cannot hold. Those of R12 are the ones that came with R13.
constexpr Since kSince[] = { { "LWPOLYLINE", KcDbVersion::R14 },   { "HATCH", KcDbVersion::R14 },
                             { "MTEXT", KcDbVersion::R13 },        { "ELLIPSE", KcDbVersion::R13 },
                             { "SPLINE", KcDbVersion::R13 },       { "LEADER", KcDbVersion::R13 },
                             { "XLINE", KcDbVersion::R13 },        { "RAY", KcDbVersion::R13 },
                             { "WIPEOUT", KcDbVersion::V2000 },    { "ACAD_TABLE", KcDbVersion::V2000 },
                             { "TABLESTYLE", KcDbVersion::V2000 }, { "LAYOUT", KcDbVersion::V2000 },
                             { "DICTIONARY", KcDbVersion::R13 },   { "XRECORD", KcDbVersion::R13 },
                             { "GROUP", KcDbVersion::R13 },        { "WIPEOUTVARIABLES", KcDbVersion::V2000 },
                             { "SORTENTSTABLE", KcDbVersion::R14 } };

Result write(KcDbDatabase& database, Pieces& pieces)
{
    Result result;
    if (const auto* read = dynamic_cast<SourceFile*>(database.file());
        read && read->changeCount == database.changeCount()) {
        pieces.add(read->all()); // nothing was touched since
        result.ok = true;
        return result;
    }
    updateBlockMarks(database);
    completeSequences(database);
    auto* file = dynamic_cast<SourceFile*>(database.file());
    try {
        if (file) {
            const QString obstacle = obstacleTo(database, file->version);
            if (obstacle.isEmpty()) {
                patchFile(database, *file, pieces);
                result.ok = true;
                return result;
            }
            result.notes.push_back(
                QStringLiteral("The drawing is saved in version 2010, because version %1 cannot hold %2.")
                    .arg(versionText(file->version), obstacle));
        }
        writeAnew(database, KcDbVersion::V2010, pieces, result.notes);
        result.ok = true;
    } catch (const FileError& error) {
        result.error = QString::fromStdString(error.what());
    } catch (const std::bad_alloc&) {
        result.error = QStringLiteral("there is not enough memory to save the drawing");
    }
    return result;
}

} // namespace

QString obstacleTo(KcDbDatabase& database, KcDbVersion version)
{
    if (version >= KcDbVersion::V2000)
        return {};
    // What is drawn tells the user more than what stands behind it.
    QString behind;
    for (const KcDbObjectStub& stub : database.stubs()) {
        if (!stub.object || (stub.flags & KcDbObjectStub::kLoaded) || !isWritten(stub))
            continue;
        const std::string name = fileNameOf(*stub.object);
        const auto since = std::find_if(
            std::begin(kSince), std::end(kSince), [&](const Since& row) { return row.fileName == name; });
        if (since != std::end(kSince) && version < since->version) {
            const QString text = QStringLiteral("an object of the kind %1").arg(QString::fromStdString(name));
            if (stub.object->isKindOf(KcDbEntity::desc()))
                return text;
            behind = text;
        } else if (version == KcDbVersion::R12 && !stub.object->extensionDictionary().isNull()) {
            behind = QStringLiteral("extension dictionaries");
        }
    }
    return behind;
}

Result saveDrawing(KcDbDatabase& database, std::string& bytes)
{
    Pieces pieces;
    Result result = write(database, pieces);
    bytes.clear();
    if (result.ok)
        for (const std::string_view view : pieces.views)
            bytes += view;
    return result;
}

Result saveDrawing(KcDbDatabase& database, const QString& path)
{
    Pieces pieces;
    Result result = write(database, pieces);
    if (!result.ok) {
        result.error = QStringLiteral("%1 was not saved: %2").arg(path, result.error);
        return result;
    }
    if (const platform::Status status = platform::writeFileAtomically(path, pieces.views); !status) {
        result.ok = false;
        result.error = status.error;
    }
    return result;
}

} // namespace dxf
