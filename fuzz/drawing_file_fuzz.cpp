// Drawing files: whatever the bytes, reading ends; a drawing that could be read can be measured, checked,
// changed and saved; and what was saved can be read again with no entity less.

#include "db/audit.h"
#include "db/block_table_record.h"
#include "db/tables.h"
#include "db/text.h"
#include "dxf/drawing_file.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

void require(bool holds, const char* what, const QString& why = {})
{
    if (holds)
        return;
    std::fprintf(stderr, "%s %s\n", what, qPrintable(why));
    std::abort();
}

size_t countEntities(const KcDbDatabase& drawing)
{
    size_t count = 0;
    for (const KcDbObjectId block : KcDbRead<KcDbSymbolTable>(drawing.blockTable())->records())
        if (const KcDbRead<KcDbBlockTableRecord> record(block); record)
            count += record->entityIds().size();
    return count;
}

// Marks of blocks, attributes and vertices come and go with what they belong to.
bool isListed(const KcDbEntity& entity)
{
    const KcDbRead<KcDbBlockTableRecord> block(entity.ownerId());
    if (!block)
        return false;
    const std::vector<KcDbObjectId> ids = block->entityIds();
    return std::find(ids.begin(), ids.end(), entity.objectId()) != ids.end();
}

// Every third object is changed in a way that its kind allows; which third depends on the input.
void change(KcDbDatabase& drawing, size_t from)
{
    for (size_t i = from % 3; i < drawing.stubs().size(); i += 3) {
        const KcDbObjectId id(&drawing.stubs()[i]);
        if (KcDbWrite<KcDbLayerTableRecord> layer(id); layer)
            layer->setColor(3);
        else if (KcDbWrite<KcDbText> text(id); text)
            text->setTextString(QStringLiteral("银杏 \\U+6A1F"));
        else if (KcDbWrite<KcDbEntity> entity(id); entity && i % 2)
            entity->setColorIndex(1);
        else if (entity && i % 5 == 0 && isListed(*entity))
            entity->erase();
        else if (entity)
            entity->transformBy(KcGeMatrix3d::translation({ 10.0, 0.5, 0.0 }));
        else
            KcDbWrite<KcDbObject> touched(id);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size > 65536) // more only repeats
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    KcDbDatabase drawing(KcDbDatabase::Content::kEmpty);
    const dxf::Result read = dxf::readDrawing(bytes, drawing);
    if (!read.ok) {
        require(!read.error.isEmpty(), "refused without a word");
        return 0;
    }
    std::string saved;
    const dxf::Result unchanged = dxf::saveDrawing(drawing, saved);
    // Damaged drawings may be completed.
    require(
        unchanged.ok && (saved == bytes || !drawing.findings().empty()),
        "what nobody changed is not saved as it was", unchanged.error);

    for (size_t i = 0; i < drawing.stubs().size(); ++i)
        if (const KcDbRead<KcDbEntity> entity(KcDbObjectId(&drawing.stubs()[i])); entity)
            entity->geomExtents();
    kcdbAudit(drawing);

    drawing.undo().beginStep(QStringLiteral("change"));
    change(drawing, size);
    drawing.undo().endStep();
    const dxf::Result result = dxf::saveDrawing(drawing, saved);
    if (!result.ok) {
        require(!result.error.isEmpty(), "not saved without a word");
        return 0;
    }
    KcDbDatabase again(KcDbDatabase::Content::kEmpty);
    const dxf::Result reread = dxf::readDrawing(std::string_view(saved), again);
    require(reread.ok, "what was saved cannot be read:", reread.error);
    require(countEntities(again) >= countEntities(drawing), "entities were lost by saving");
    drawing.undo().undo();
    return 0;
}
