// PURGE: takes away definitions that nothing in the drawing uses.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/block_reference.h"
#include "db/header.h"
#include "db/symbol_table.h"
#include "dxf/references.h"

using namespace hand;

namespace {

enum Kind { kBlocks = 1, kLayers = 2, kLinetypes = 4, kStyles = 8, kDimStyles = 16, kAll = 31 };

struct Table {
    Kind kind;
    KcDbObjectId (KcDbDatabase::*table)() const;
    QLatin1String noun;
    std::vector<int> nameCodes; ///< under which other objects name a record
};
const std::vector<Table>& tables()
{
    static const std::vector<Table> all{
        { kBlocks, &KcDbDatabase::blockTable, QLatin1String("blocks"), { 1, 2, 3, 6, 7 } },
        { kDimStyles, &KcDbDatabase::dimStyleTable, QLatin1String("dimension styles"), { 3 } },
        { kLayers, &KcDbDatabase::layerTable, QLatin1String("layers"), { 8, 1003 } },
        { kStyles, &KcDbDatabase::textStyleTable, QLatin1String("text styles"), { 7 } },
        { kLinetypes, &KcDbDatabase::linetypeTable, QLatin1String("linetypes"), { 6 } },
    };
    return all;
}

/// Those that every drawing keeps.
bool isFixed(const KcDbSymbolTableRecord& record)
{
    static const QStringList names{ QStringLiteral("0"),          QStringLiteral("Defpoints"),
                                    QStringLiteral("ByLayer"),    QStringLiteral("ByBlock"),
                                    QStringLiteral("Continuous"), QStringLiteral("Standard") };
    const auto* block = as<KcDbBlockTableRecord>(record);
    return names.contains(record.name(), Qt::CaseInsensitive) || record.isXrefDependent()
        || record.name().isEmpty() || (block && (block->isLayout() || block->isFromExternalReference()));
}

/// What is used, by ids and by names.
class Usage {
public:
    explicit Usage(KcDbDatabase& database)
    {
        for (const KcDbObjectStub& stub : database.stubs()) {
            if (!stub.object || (stub.flags & KcDbObjectStub::kErased) || isOfErased(*stub.object))
                continue;
            if (stub.object->isKindOf(KcDbSymbolTable::desc())
                || stub.object->isKindOf(KcDbBlockBegin::desc())
                || stub.object->isKindOf(KcDbBlockEnd::desc()))
                continue;
            note(*stub.object);
        }
        const KcDbRead<KcDbHeader> header(database.headerId());
        for (const KcDbHeader::Variable& variable : header->variables())
            for (const KcDbTypedValue& value : variable.values) {
                m_everyName.insert(value.text().toCaseFolded());
                m_ids.insert(value.id());
            }
    }

    bool uses(const KcDbSymbolTableRecord& record, const Table& table) const
    {
        const QString name = record.name().toCaseFolded();
        if (m_ids.contains(record.objectId()) || m_everyName.contains(name))
            return true;
        for (const int code : table.nameCodes)
            if (const auto names = m_names.find(code); names != m_names.end() && names->second.contains(name))
                return true;
        return false;
    }

private:
    /// True when an object hangs on one that is erased: an entity of a purged block.
    static bool isOfErased(const KcDbObject& object)
    {
        KcDbObjectId owner = object.ownerId();
        for (int depth = 0; owner.isValid() && depth < 16; ++depth) {
            if (owner.isErased())
                return true;
            const KcDbRead<KcDbObject> above(owner);
            if (!above)
                return false;
            owner = above->ownerId();
        }
        return false;
    }
    static bool isInside(const KcDbObject& object, KcDbObjectId container)
    {
        KcDbObjectId owner = object.ownerId();
        for (int depth = 0; owner.isValid() && depth < 16; ++depth) {
            if (owner == container)
                return true;
            const KcDbRead<KcDbObject> above(owner);
            if (!above)
                return false;
            owner = above->ownerId();
        }
        return false;
    }
    void note(const KcDbObject& object)
    {
        const dxf::References references = dxf::referencesOf(object);
        for (const KcDbObjectId id : references.ids)
            if (!isInside(object, id)) // its own block does not make it used
                m_ids.insert(id);
        // A record's own name is none.
        const bool isRecord = object.isKindOf(KcDbSymbolTableRecord::desc());
        for (const auto& [code, name] : references.names)
            if (!isRecord || code != 2)
                m_names[code].insert(name.toCaseFolded());
    }

    std::unordered_set<KcDbObjectId> m_ids;
    std::unordered_map<int, QSet<QString>> m_names;
    QSet<QString> m_everyName;
};

void eraseRecord(KcDbObjectId id)
{
    if (const KcDbRead<KcDbBlockTableRecord> block(id); block) {
        std::vector<KcDbObjectId> content = block->entityIds();
        content.push_back(block->data().begin);
        content.push_back(block->data().end);
        for (const KcDbObjectId entity : content)
            if (KcDbWrite<KcDbObject> object(entity); object)
                object->erase();
    }
    KcDbWrite<KcDbObject>(id)->erase();
}

/// One pass; how many of each table went.
std::map<Kind, int> purgeOnce(int kinds)
{
    const Usage usage(database());
    std::map<Kind, int> counts;
    std::vector<KcDbObjectId> unused;
    for (const Table& table : tables()) {
        if (!(kinds & table.kind))
            continue;
        for (const KcDbObjectId id : KcDbRead<KcDbSymbolTable>((database().*table.table)())->records()) {
            const KcDbRead<KcDbSymbolTableRecord> record(id);
            if (!record || isFixed(*record) || usage.uses(*record, table))
                continue;
            unused.push_back(id);
            ++counts[table.kind];
        }
    }
    for (const KcDbObjectId id : unused)
        eraseRecord(id);
    return counts;
}

} // namespace

void hand::purge()
{
    kcedInitGet(
        0,
        QStringLiteral(
            "Blocks Dimstyles LAyers LTypes Styles All _ Blocks Dimstyles Layers Ltypes Styles All"));
    QString option;
    const KcEdStatus status = kcedGetKword(
        QStringLiteral("\nUnused objects to purge [Blocks/Dimstyles/LAyers/LTypes/Styles/All] <All>: "),
        option);
    if (status == kcedCancel)
        return;
    const int kinds = option == u"Blocks" ? kBlocks
        : option == u"Dimstyles"          ? kDimStyles
        : option == u"Layers"             ? kLayers
        : option == u"Ltypes"             ? kLinetypes
        : option == u"Styles"             ? kStyles
                                          : kAll;
    // What was used only by what went is unused now.
    std::map<Kind, int> total;
    for (;;) {
        const std::map<Kind, int> counts = purgeOnce(kinds);
        if (counts.empty())
            break;
        for (const auto& [kind, count] : counts)
            total[kind] += count;
    }
    for (const Table& table : tables())
        if (kinds & table.kind)
            kcedSay(QStringLiteral("%1 %2 purged").arg(total[table.kind]).arg(table.noun));
}
