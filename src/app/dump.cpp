// verdelis dump DRAWING [--type T] [--layer L] [HANDLE...]: entities as JSON lines.

#include "program.h"

#include "db/block_table_record.h"
#include "ed/console.h"
#include "ed/entity_dump.h"
#include "ed/selection_filter.h"

#include <QJsonDocument>

namespace program {

namespace {

void printEntity(const KcDbEntity& entity)
{
    kcedPrint(
        QString::fromUtf8(QJsonDocument(kcedDumpEntity(entity)).toJson(QJsonDocument::Compact))
        + QLatin1Char('\n'));
}

// Entities of every layout in drawing order; the file's own order of blocks keeps the output the same every
// time.
void printLayouts(KcDbDatabase& database, const KcEdCompiledFilter& filter)
{
    const KcDbRead<KcDbSymbolTable> blocks(database.blockTable());
    for (const KcDbObjectId block : blocks->records()) {
        const KcDbRead<KcDbBlockTableRecord> record(block);
        if (!record || !record->isLayout())
            continue;
        for (const KcDbObjectId id : *record)
            if (const KcDbRead<KcDbEntity> entity(id); entity && filter.passes(*entity))
                printEntity(*entity);
    }
}

int printHandles(KcDbDatabase& database, const KcEdCompiledFilter& filter, const Arguments& handles)
{
    int status = kDone;
    for (QString handle : handles) {
        if (handle.startsWith(QLatin1Char('#')))
            handle.remove(0, 1);
        const KcDbRead<KcDbEntity> entity(database.findHandle(handle));
        if (!entity) {
            kcedSayError(QStringLiteral("The drawing has no entity %1.").arg(handle));
            status = kUsageError;
        } else if (filter.passes(*entity)) {
            printEntity(*entity);
        }
    }
    return status;
}

} // namespace

int dump(const Arguments& given)
{
    Arguments arguments = given;
    const auto type = takeOption(arguments, QStringLiteral("--type"));
    const auto layer = takeOption(arguments, QStringLiteral("--layer"));
    if (const QString option = strayOption(arguments); !option.isEmpty())
        return wrongUsage(
            QStringLiteral("dump does not know the option %1, or its value is missing.").arg(option));
    if (arguments.isEmpty())
        return wrongUsage(QStringLiteral("dump takes a drawing."));
    KcApDocument* document = openDrawing(arguments.takeFirst());
    if (!document)
        return kFileError;

    KcEdFilter filter;
    if (type)
        filter.push_back({ 0, *type });
    if (layer)
        filter.push_back({ 8, *layer });
    const KcEdCompiledFilter compiled(filter);
    if (!arguments.isEmpty())
        return printHandles(document->database(), compiled, arguments);
    printLayouts(document->database(), compiled);
    return kDone;
}

} // namespace program
