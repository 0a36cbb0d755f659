// Making block definitions.

#include "db/new_block.h"

#include "db/block_reference.h"
#include "db/database.h"

namespace {

int freeNumber(const KcDbDatabase& drawing, const QString& prefix)
{
    int number = 1;
    for (const KcDbObjectStub& stub : drawing.stubs()) {
        if (!stub.object || stub.object->isA() != KcDbBlockTableRecord::desc())
            continue;
        const QString& name = static_cast<const KcDbBlockTableRecord*>(stub.object)->name();
        if (name.startsWith(prefix, Qt::CaseInsensitive))
            number = std::max(number, name.mid(prefix.size()).toInt() + 1);
    }
    return number;
}

} // namespace

KcDbObjectId kcdbNewBlock(KcDbDatabase& drawing, const QString& name)
{
    if (name.isEmpty() || !kcdbFindRecord(drawing.blockTable(), name).isNull())
        return {};
    const bool isAnonymous = name.startsWith(u'*');
    auto made = std::make_unique<KcDbBlockTableRecord>();
    made->initName(isAnonymous ? name + QString::number(freeNumber(drawing, name)) : name);
    made->data().blockFlags = isAnonymous ? 1 : 0;
    KcDbObjectId id;
    {
        KcDbWrite<KcDbSymbolTable> blocks(drawing.blockTable());
        id = blocks->add(std::move(made));
    }
    KcDbWrite<KcDbBlockTableRecord> block(id);
    block->data().begin = drawing.addObject(std::make_unique<KcDbBlockBegin>(), id);
    block->data().end = drawing.addObject(std::make_unique<KcDbBlockEnd>(), id);
    for (const KcDbObjectId mark : { block->data().begin, block->data().end })
        if (KcDbWrite<KcDbEntity> entity(mark); entity)
            entity->setLayer(kcdbFindRecord(drawing.layerTable(), QStringLiteral("0")));
    return id;
}
