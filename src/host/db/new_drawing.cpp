// What an empty drawing holds: the records and dictionaries without which other programs refuse it.

#include "db/block_reference.h"
#include "db/database.h"
#include "db/dictionary.h"
#include "db/header.h"
#include "db/tables.h"

namespace {

template <class Record> KcDbObjectId addRecord(KcDbObjectId table, const char* name, Record record = {})
{
    record.initName(QLatin1String(name));
    KcDbWrite<KcDbSymbolTable> open(table);
    return open->add(std::make_unique<Record>(std::move(record)));
}

} // namespace

void KcDbDatabase::makeNewDrawing()
{
    for (KcDbObjectStub& stub : m_stubs)
        if (stub.handle == 0 && stub.object->objectId() != m_header)
            giveHandle(KcDbObjectId(&stub), 0);
    completeFrame();
    {
        KcDbWrite<KcDbHeader> header(m_header);
        header->set("$ACADVER", { 1, QStringLiteral("AC1024") });
        header->set("$DWGCODEPAGE", { 3, QStringLiteral("ANSI_936") });
        header->set("$INSUNITS", { 70, int64_t(4) });
        header->set("$MEASUREMENT", { 70, int64_t(1) });
        header->set("$LTSCALE", { 40, 1.0 });
        header->set("$CLAYER", { 8, QStringLiteral("0") });
    }
    KcDbViewportTableRecord active;
    active.data().viewHeight = 1000.0;
    active.data().aspectRatio = 1.5;
    addRecord(m_viewportTable, "*Active", active);
    m_undo.clear();
}

void KcDbDatabase::completeFrame()
{
    // Entering what is implied into a dictionary that was read does not change the drawing.
    std::vector<std::pair<KcDbObjectStub*, bool>> changedBefore;
    const auto remember = [&](KcDbObjectId id) {
        if (id.isValid())
            changedBefore.emplace_back(id.stub(), id.stub()->object->sourcePlace().changed);
    };
    remember(m_namedObjects);
    if (KcDbRead<KcDbDictionary> root(m_namedObjects); root)
        remember(root->getAt(QStringLiteral("ACAD_LAYOUT")));
    const auto missing = [](KcDbObjectId table, const char* name) {
        return kcdbFindRecord(table, QLatin1String(name)).isNull();
    };
    for (const char* name : { "ByBlock", "ByLayer", "Continuous" })
        if (missing(m_linetypeTable, name))
            markImplicit(addRecord<KcDbLinetypeTableRecord>(m_linetypeTable, name));
    const KcDbObjectId continuous = kcdbFindRecord(m_linetypeTable, QStringLiteral("Continuous"));
    if (missing(m_layerTable, "0")) {
        KcDbLayerTableRecord zero;
        zero.data().linetype = continuous;
        markImplicit(addRecord(m_layerTable, "0", zero));
    }
    if (missing(m_textStyleTable, "Standard")) {
        KcDbTextStyleTableRecord standard;
        standard.data().font = QStringLiteral("txt");
        markImplicit(addRecord(m_textStyleTable, "Standard", standard));
    }
    if (missing(m_regAppTable, "ACAD"))
        markImplicit(addRecord<KcDbRegAppTableRecord>(m_regAppTable, "ACAD"));
    if (missing(m_dimStyleTable, "Standard"))
        markImplicit(addRecord<KcDbDimStyleTableRecord>(m_dimStyleTable, "Standard"));

    if (m_namedObjects.isNull()) {
        m_namedObjects = addObject(std::make_unique<KcDbDictionary>(), {});
        markImplicit(m_namedObjects);
    }
    for (const char* name : { "ACAD_GROUP", "ACAD_LAYOUT" }) {
        KcDbRead<KcDbDictionary> root(m_namedObjects);
        if (root && root->getAt(QLatin1String(name)).isNull())
            markImplicit(KcDbDictionary::subDictionary(m_namedObjects, QLatin1String(name)));
    }
    const struct {
        const char *block, *layout;
        bool paper;
    } spaces[] = { { "*Model_Space", "Model", false }, { "*Paper_Space", "Layout1", true } };
    for (const auto& space : spaces) {
        if (!(space.paper ? paperSpace() : modelSpace()).isNull())
            continue;
        const KcDbObjectId block = addRecord<KcDbBlockTableRecord>(m_blockTable, space.block);
        markImplicit(block);
        KcDbWrite<KcDbBlockTableRecord> record(block);
        record->data().begin = addObject(std::make_unique<KcDbBlockBegin>(), block);
        record->data().end = addObject(std::make_unique<KcDbBlockEnd>(), block);
        for (KcDbObjectId mark : { record->data().begin, record->data().end })
            if (KcDbWrite<KcDbEntity> entity(mark); entity) {
                entity->setLayer(kcdbFindRecord(m_layerTable, QStringLiteral("0")));
                entity->setInPaperSpace(space.paper);
            }
        markImplicit(record->data().begin);
        markImplicit(record->data().end);
        auto layout = std::make_unique<KcDbLayout>();
        layout->data().name = QLatin1String(space.layout);
        layout->data().tabOrder = space.paper;
        layout->data().plotFlags = space.paper ? 688 : 1712;
        layout->data().block = block;
        KcDbWrite<KcDbDictionary> layouts(
            KcDbDictionary::subDictionary(m_namedObjects, QStringLiteral("ACAD_LAYOUT")));
        record->data().layout = layouts->setAt(QLatin1String(space.layout), std::move(layout));
        markImplicit(record->data().layout);
    }
    for (const auto& [stub, changed] : changedBefore)
        stub->object->m_place.changed = changed;
    for (KcDbObjectId id :
         { m_namedObjects, KcDbDictionary::subDictionary(m_namedObjects, QStringLiteral("ACAD_LAYOUT")) })
        if (id.stub()->flags & KcDbObjectStub::kImplicit)
            markImplicit(id);
    for (KcDbObjectId id : { modelSpace(), paperSpace() })
        if (id.stub()->flags & KcDbObjectStub::kImplicit)
            markImplicit(id);
}

void KcDbDatabase::markImplicit(KcDbObjectId id)
{
    id.stub()->flags |= KcDbObjectStub::kImplicit;
    KcDbSourcePlace place = id.stub()->object->sourcePlace();
    place.changed = false;
    id.stub()->object->setSourcePlace(place);
}
