// Symbol tables and the classes of their records.

#include "db/symbol_table.h"

#include "db/block_table_record.h"
#include "db/database.h"
#include "db/open.h"
#include "db/spatial_index.h"
#include "db/tables.h"

#include <cassert>

const KcRxClass* KcDbSymbolTableRecord::desc()
{
    static const KcRxClass description("AcDbSymbolTableRecord", KcDbObject::desc());
    return &description;
}

KCRX_DEFINE(KcDbSymbolTable, KcDbObject, "AcDbSymbolTable")
KCRX_DEFINE(KcDbLayerTableRecord, KcDbSymbolTableRecord, "AcDbLayerTableRecord")
KCRX_DEFINE(KcDbLinetypeTableRecord, KcDbSymbolTableRecord, "AcDbLinetypeTableRecord")
KCRX_DEFINE(KcDbTextStyleTableRecord, KcDbSymbolTableRecord, "AcDbTextStyleTableRecord")
KCRX_DEFINE(KcDbDimStyleTableRecord, KcDbSymbolTableRecord, "AcDbDimStyleTableRecord")
KCRX_DEFINE(KcDbRegAppTableRecord, KcDbSymbolTableRecord, "AcDbRegAppTableRecord")
KCRX_DEFINE(KcDbUCSTableRecord, KcDbSymbolTableRecord, "AcDbUCSTableRecord")
KCRX_DEFINE(KcDbViewTableRecord, KcDbSymbolTableRecord, "AcDbViewTableRecord")
KCRX_DEFINE(KcDbViewportTableRecord, KcDbSymbolTableRecord, "AcDbViewportTableRecord")
KCRX_DEFINE(KcDbBlockTableRecord, KcDbSymbolTableRecord, "AcDbBlockTableRecord")

namespace {

std::u16string folded(const QString& name)
{
    return name.toCaseFolded().toStdU16String();
}

bool isListed(KcDbObjectId id)
{
    return id.isResident();
}

} // namespace

KcDbObjectId KcDbSymbolTable::getAt(const QString& name) const
{
    const auto found = m_index.find(folded(name));
    return found != m_index.end() && isListed(found->second) ? found->second : KcDbObjectId();
}

std::vector<KcDbObjectId> KcDbSymbolTable::records() const
{
    std::vector<KcDbObjectId> result;
    result.reserve(m_records.size());
    std::copy_if(m_records.begin(), m_records.end(), std::back_inserter(result), isListed);
    return result;
}

QStringList KcDbSymbolTable::names() const
{
    QStringList result;
    for (KcDbObjectId id : records())
        result.push_back(kcdbRecordName(id));
    return result;
}

KcDbObjectId KcDbSymbolTable::add(std::unique_ptr<KcDbSymbolTableRecord> record)
{
    assert(database());
    const QString name = record->name();
    if (const KcDbObjectId there = getAt(name); !there.isNull())
        return there;
    const KcDbObjectId id = database()->addObject(std::move(record), objectId());
    m_records.push_back(id);
    m_index[folded(name)] = id;
    return id;
}

Kcad::ErrorStatus KcDbSymbolTable::rename(KcDbObjectId record, const QString& name)
{
    if (name.isEmpty())
        return Kcad::eInvalidInput;
    const KcDbObjectId there = getAt(name);
    if (!there.isNull() && there != record)
        return Kcad::eDuplicateKey;
    KcDbWrite<KcDbSymbolTableRecord> open(record);
    if (!open)
        return open.status();
    if (const auto old = m_index.find(folded(open->m_name)); old != m_index.end() && old->second == record)
        m_index.erase(old);
    open->m_name = name;
    m_index[folded(name)] = record;
    return Kcad::eOk;
}

void KcDbSymbolTable::list(KcDbObjectId record, const QString& name)
{
    m_records.push_back(record);
    m_index.emplace(folded(name), record);
}

KcDbObjectId kcdbFindRecord(KcDbObjectId table, const QString& name)
{
    const KcDbRead<KcDbSymbolTable> open(table);
    return open ? open->getAt(name) : KcDbObjectId();
}

QString kcdbRecordName(KcDbObjectId record)
{
    const KcDbRead<KcDbSymbolTableRecord> open(record, true);
    return open ? open->name() : QString();
}

QString KcDbTextStyleTableRecord::typeface() const
{
    const KcDbValueList* values = xdataOf(QStringLiteral("ACAD"));
    if (!values)
        return {};
    for (const KcDbTypedValue& value : *values)
        if (value.code == 1000)
            return value.text();
    return {};
}

bool KcDbBlockTableRecord::isModelSpace() const
{
    return name().compare("*Model_Space", Qt::CaseInsensitive) == 0
        || name().compare("$MODEL_SPACE", Qt::CaseInsensitive) == 0;
}

bool KcDbBlockTableRecord::isLayout() const
{
    return isModelSpace() || name().startsWith("*Paper_Space", Qt::CaseInsensitive)
        || name().compare("$PAPER_SPACE", Qt::CaseInsensitive) == 0;
}

bool KcDbBlockTableRecord::isAnonymous() const
{
    return name().startsWith('*') && !isLayout();
}

KcDbObjectId KcDbBlockTableRecord::appendEntity(std::unique_ptr<KcDbEntity> entity) const
{
    assert(database() && entity);
    entity->setInPaperSpace(isLayout() && !isModelSpace());
    const KcDbObjectId id = database()->addObject(std::move(entity), objectId());
    m_entities->push_back(id);
    return id;
}

void KcDbBlockTableRecord::adopt(KcDbEntity& entity) const
{
    KcDbObjectStub& stub = *entity.objectId().stub();
    // An entity that comes back to a block it was in is in the block's list already; only its old place is
    // given up.
    if ((stub.flags & KcDbObjectStub::kRelisted) && std::erase(*m_entities, entity.objectId()) > 0)
        database()->spatialIndex().forget(objectId());
    stub.flags |= KcDbObjectStub::kRelisted;
    entity.setOwnerId(objectId());
    entity.setInPaperSpace(isLayout() && !isModelSpace());
    m_entities->push_back(entity.objectId());
}
