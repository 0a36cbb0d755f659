// Selections of many entities: one look at each, references grouped by their definitions.

#include "core/selection.h"

#include "core/block.h"
#include "core/layers.h"
#include "db/new_block.h"
#include "db/text.h"
#include "ed/documents.h"

#include <QSet>

namespace {

template <class Passes>
bool collect(const std::vector<KcDbObjectId>& from, std::vector<KcDbObjectId>& to, Passes passes)
{
    std::vector<KcDbObjectId> found; // `to` may be `from`
    for (const KcDbObjectId id : from)
        if (id.isResident() && passes(id))
            found.push_back(id);
    to = std::move(found);
    return !to.empty();
}

// Remembers the answer for each definition: selections hold many references of few blocks.
template <class Answer> class ByDefinition {
public:
    explicit ByDefinition(std::function<Answer(KcDbObjectId)> ask)
        : m_ask(std::move(ask))
    {
    }
    const Answer& of(KcDbObjectId definition)
    {
        const auto [entry, isNew] = m_answers.try_emplace(definition);
        if (isNew)
            entry->second = m_ask(definition);
        return entry->second;
    }

private:
    std::function<Answer(KcDbObjectId)> m_ask;
    std::unordered_map<KcDbObjectId, Answer> m_answers;
};

QSet<QString> foldedSet(const QStringList& names)
{
    QSet<QString> set;
    for (const QString& name : names)
        set.insert(name.toCaseFolded());
    return set;
}

} // namespace

bool CSs::GetEntitiesOfType(const QString& type, std::vector<KcDbObjectId>& ids) const
{
    const QByteArray name = type.toLatin1();
    return collect(m_ids, ids, [&](KcDbObjectId id) { return name == id.stub()->object->isA()->name(); });
}

bool CSs::GetTexts(std::vector<KcDbObjectId>& ids) const
{
    return collect(m_ids, ids, [](KcDbObjectId id) {
        const KcRxClass* type = id.stub()->object->isA();
        return type == KcDbText::desc() || type == KcDbMText::desc();
    });
}

bool CSs::GetBlocks(const QStringList& names, std::vector<KcDbObjectId>& ids) const
{
    const QSet<QString> wanted = foldedSet(names);
    ByDefinition<bool> isWanted([&](KcDbObjectId definition) {
        return wanted.contains(blockDefinitionName(definition).toCaseFolded());
    });
    return collect(m_ids, ids, [&](KcDbObjectId id) {
        const KcDbObjectId definition = blockDefinitionOf(id);
        return !definition.isNull() && isWanted.of(definition);
    });
}

bool CSs::GetBlockNames(QStringList& names) const
{
    QStringList found;
    QSet<QString> listed;
    std::unordered_map<KcDbObjectId, bool> seen;
    for (const KcDbObjectId id : m_ids) {
        const KcDbObjectId definition = blockDefinitionOf(id);
        if (definition.isNull() || !seen.emplace(definition, true).second)
            continue;
        const QString name = blockDefinitionName(definition);
        if (name.isEmpty() || name.startsWith(u'*') || listed.contains(name.toCaseFolded()))
            continue;
        listed.insert(name.toCaseFolded());
        found.push_back(name);
    }
    names = found;
    return !names.isEmpty();
}

bool CSs::GetBlock(const QString& name, KcDbObjectId& id) const
{
    std::vector<KcDbObjectId> found;
    if (!GetBlocks({ name }, found))
        return false;
    id = found.front();
    return true;
}

void CSs::RemoveExternalReference()
{
    ByDefinition<bool> isExternal([](KcDbObjectId definition) {
        const KcDbRead<KcDbBlockTableRecord> record(definition);
        return record && record->isFromExternalReference();
    });
    std::erase_if(m_ids, [&](KcDbObjectId id) {
        const KcDbObjectId definition = blockDefinitionOf(id);
        return !definition.isNull() && isExternal.of(definition);
    });
}

void CSs::RemoveEntitiesOnLayers(const QStringList& names)
{
    const QSet<QString> hidden = foldedSet(names);
    ByDefinition<bool> isHidden(
        [&](KcDbObjectId layer) { return hidden.contains(kcdbRecordName(layer).toCaseFolded()); });
    std::erase_if(m_ids, [&](KcDbObjectId id) {
        const KcDbRead<KcDbEntity> entity(id);
        return entity && isHidden.of(entity->layerId());
    });
}

bool CSs::GetBoundaryBox(KcGePoint3d& min, KcGePoint3d& max) const
{
    KcGeExtents3d box;
    for (const KcDbObjectId id : m_ids)
        if (const KcDbRead<KcDbEntity> entity(id); entity)
            box.addExtents(entity->geomExtents());
    if (box.isEmpty())
        return false;
    min = box.min;
    max = box.max;
    return true;
}

int CSs::Delete()
{
    int erased = 0;
    for (const KcDbObjectId id : m_ids)
        if (KcDbWrite<KcDbEntity> entity(id); entity && entity->erase() == Kcad::eOk)
            ++erased;
    m_ids.clear();
    return erased;
}

KcDbObjectId CSs::CreateBlock(const QString& name)
{
    std::vector<KcDbObjectId> members;
    KcDbObjectId space;
    for (const KcDbObjectId id : m_ids)
        if (const KcDbRead<KcDbEntity> entity(id); entity && (space.isNull() || entity->ownerId() == space)) {
            space = entity->ownerId();
            members.push_back(id);
        }
    if (members.empty())
        return {};
    KcDbDatabase& drawing = *space.database();
    const KcDbObjectId block = kcdbNewBlock(drawing, name);
    const KcDbRead<KcDbBlockTableRecord> record(block);
    const KcDbRead<KcDbBlockTableRecord> holder(space);
    if (!record || !holder)
        return {};
    for (const KcDbObjectId id : members)
        record->adopt(*KcDbWrite<KcDbEntity>(id));
    auto reference = std::make_unique<KcDbBlockReference>(KcGePoint3d(), block);
    reference->setDatabaseDefaults(drawing);
    m_ids = { holder->appendEntity(std::move(reference)) };
    return m_ids.front();
}

bool CSs::SetLayer(const QString& name, KcDbDatabase* database, int colour)
{
    if (!database)
        database = kcedCurrentDatabase();
    if (!database)
        return false;
    KcDbObjectId layer = kcdbFindRecord(database->layerTable(), name);
    if (layer.isNull())
        layer = colour > 0 ? CreateLayer(name, colour, database) : InitStdLayer(name, database);
    if (layer.isNull())
        return false;
    for (const KcDbObjectId id : m_ids)
        if (id.database() == database)
            SetEntityLayer(id, layer);
    return true;
}
