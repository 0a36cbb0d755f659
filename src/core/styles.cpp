// Style names out of the drawing's tables.

#include "core/styles.h"

#include "db/header.h"
#include "db/tables.h"
#include "ed/documents.h"

namespace {

KcDbDatabase* orCurrent(KcDbDatabase* database)
{
    return database ? database : kcedCurrentDatabase();
}

bool namesOf(KcDbObjectId table, QStringList& names)
{
    names.clear();
    if (const KcDbRead<KcDbSymbolTable> opened(table); opened)
        names = opened->names();
    names.removeAll(QString()); // shape files have no name
    return !names.isEmpty();
}

} // namespace

bool GetTextStyles(QStringList& names, KcDbDatabase* database)
{
    database = orCurrent(database);
    return namesOf(database ? database->textStyleTable() : KcDbObjectId(), names);
}

bool GetTextStyleId(const QString& name, KcDbObjectId& id, KcDbDatabase* database)
{
    database = orCurrent(database);
    id = database && !name.isEmpty() ? kcdbFindRecord(database->textStyleTable(), name) : KcDbObjectId();
    return !id.isNull();
}

bool GetDimStyles(QStringList& names, KcDbDatabase* database)
{
    database = orCurrent(database);
    return namesOf(database ? database->dimStyleTable() : KcDbObjectId(), names);
}

bool GetCurrentDimSytle(QString& name, KcDbDatabase* database)
{
    database = orCurrent(database);
    if (!database)
        return false;
    const KcDbRead<KcDbHeader> header(database->headerId());
    KcDbObjectId style = kcdbFindRecord(database->dimStyleTable(), header->text(QStringLiteral("$DIMSTYLE")));
    if (style.isNull())
        style = kcdbFindRecord(database->dimStyleTable(), QStringLiteral("Standard"));
    if (!style.isNull())
        name = kcdbRecordName(style);
    return !style.isNull();
}
