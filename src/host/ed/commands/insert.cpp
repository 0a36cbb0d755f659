// INSERT: a reference to a block of the drawing, with its attributes asked for before it is made.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/block_reference.h"

using namespace hand;

namespace {

/// The block that was inserted last, offered for the next time.
QString& lastBlock()
{
    static QString name;
    return name;
}

/// Null when the user gave up. A name that no block bears is told, and asked for again.
KcDbObjectId askBlock()
{
    const KcDbRead<KcDbSymbolTable> blocks(database().blockTable());
    for (;;) {
        const QString last = blocks->has(lastBlock()) ? lastBlock() : QString();
        QString name;
        const KcEdStatus status
            = kcedGetString(true, QStringLiteral("\nBlock name or [?]%1: ").arg(offered(last)), name);
        if (status == kcedCancel || (status == kcedNone && last.isEmpty()))
            return {};
        if (status == kcedNone)
            name = last;
        if (name == u"?") {
            QStringList names;
            for (const KcDbObjectId id : blocks->records())
                if (const KcDbRead<KcDbBlockTableRecord> block(id);
                    block && !block->isLayout() && !block->isAnonymous())
                    names += block->name();
            names.sort();
            kcedSay(
                names.isEmpty() ? QStringLiteral("The drawing has no blocks.")
                                : names.join(QLatin1Char('\n')));
            continue;
        }
        const KcDbObjectId id = blocks->getAt(name);
        const KcDbRead<KcDbBlockTableRecord> block(id);
        if (block && !block->isLayout())
            return id;
        kcedSay(QStringLiteral("The drawing has no block \"%1\".").arg(name));
    }
}

/// True when a block draws itself in the end, over whichever way.
bool contains(KcDbObjectId block, KcDbObjectId searched, int depth = 0)
{
    constexpr int kDeepest = 64;
    if (block == searched || depth > kDeepest)
        return true;
    const KcDbRead<KcDbBlockTableRecord> record(block);
    for (const KcDbObjectId id : record->entityIds())
        if (const KcDbRead<KcDbBlockReference> reference(id);
            reference && contains(reference->blockTableRecord(), searched, depth + 1))
            return true;
    return false;
}

struct Value {
    KcDbObjectId definition;
    QString text;
};

/// The values that the attributes of a block begin with, those that never change left out.
std::vector<Value> offeredValues(KcDbObjectId block)
{
    std::vector<Value> values;
    const KcDbRead<KcDbBlockTableRecord> record(block);
    for (const KcDbObjectId id : record->entityIds())
        if (const KcDbRead<KcDbAttributeDefinition> definition(id); definition && !definition->isConstant())
            values.push_back({ id, definition->textString() });
    return values;
}

/// The values of a block's attributes; nothing when the user gave up.
std::optional<std::vector<Value>> askAttributes(KcDbObjectId block)
{
    constexpr int kPreset = 8;
    std::vector<Value> values = offeredValues(block);
    for (Value& value : values) {
        const KcDbRead<KcDbAttributeDefinition> definition(value.definition);
        const auto& attribute = definition->attribute();
        const QString question = attribute.prompt.isEmpty() ? attribute.tag : attribute.prompt;
        if (!(attribute.flags & kPreset)
            && kcedGetString(true, QStringLiteral("\n%1%2: ").arg(question, offered(value.text)), value.text)
                == kcedCancel)
            return {};
    }
    return values;
}

std::unique_ptr<KcDbAttribute> attributeOf(const Value& value, const KcGeMatrix3d& place)
{
    const KcDbRead<KcDbAttributeDefinition> definition(value.definition);
    auto attribute = std::make_unique<KcDbAttribute>();
    attribute->setPropertiesFrom(*definition);
    attribute->data() = definition->data();
    attribute->attribute().tag = definition->attribute().tag;
    attribute->attribute().flags = definition->attribute().flags;
    attribute->attribute().fieldLength = definition->attribute().fieldLength;
    attribute->transformBy(place);
    return attribute;
}

std::unique_ptr<KcDbBlockReference>
makeReference(KcDbObjectId block, KcGePoint3d at, KcGeVector3d scale, double rotation)
{
    auto reference = std::make_unique<KcDbBlockReference>(at, block);
    reference->setScaleFactors(scale);
    reference->setRotation(rotation);
    return reference;
}

/// The reference with the values that its attributes are offered.
KcEdPreview sketchReference(KcDbObjectId block, KcGePoint3d at, KcGeVector3d scale, double rotation)
{
    auto reference = makeReference(block, at, scale, rotation);
    const KcGeMatrix3d place = database().ucsToWorld() * reference->blockTransform();
    KcEdPreview preview = sketch(std::move(reference));
    for (const Value& value : offeredValues(block)) {
        auto attribute = attributeOf(value, place);
        attribute->setTextString(value.text);
        preview.push_back(std::move(attribute));
    }
    return preview;
}

} // namespace

void hand::insert()
{
    const KcDbObjectId block = askBlock();
    if (block.isNull())
        return;
    if (contains(block, database().currentSpace()))
        return kcedSay(QStringLiteral("That block cannot be placed in itself."));
    const bool uniform = KcDbRead<KcDbBlockTableRecord>(block)->data().scaleUniformly;
    KcGeVector3d scale{ 1, 1, 1 };
    double rotation = 0.0;
    bool asksScale = true, asksRotation = true;
    KcGePoint3d at;
    for (;;) {
        kcedInitGet(KcEdPrompt::kNoEmpty, QStringLiteral("Scale Rotate _ Scale Rotate"));
        kcedInitPreview([&](KcGePoint3d cursor) { return sketchReference(block, cursor, scale, rotation); });
        const KcEdStatus status
            = kcedGetPoint(nullptr, QStringLiteral("\nInsertion point or [Scale/Rotate]: "), at);
        if (status == kcedNormal)
            break;
        if (status != kcedKeyword)
            return;
        if (kcedGetInput() == u"Scale") {
            kcedInitGet(KcEdPrompt::kNoZero);
            if (kcedGetReal(QStringLiteral("\nScale factor <1>: "), scale.x) == kcedCancel)
                return;
            scale = { scale.x, scale.x, scale.x };
            asksScale = false;
        } else {
            if (kcedGetAngle(nullptr, QStringLiteral("\nRotation angle <0>: "), rotation) == kcedCancel)
                return;
            asksRotation = false;
        }
    }
    if (asksScale) {
        kcedInitGet(KcEdPrompt::kNoZero);
        if (kcedGetReal(QStringLiteral("\nX scale factor <1>: "), scale.x) == kcedCancel)
            return;
        scale.y = scale.x;
        kcedInitGet(KcEdPrompt::kNoZero);
        if (!uniform
            && kcedGetReal(QStringLiteral("\nY scale factor <use X scale factor>: "), scale.y) == kcedCancel)
            return;
        scale.z = scale.x;
    }
    if (asksRotation)
        kcedInitPreview([&](KcGePoint3d cursor) {
            return sketchReference(block, at, scale, (cursor.plan() - at.plan()).angle());
        });
    if (asksRotation && kcedGetAngle(&at, QStringLiteral("\nRotation angle <0>: "), rotation) == kcedCancel)
        return;
    const auto values = askAttributes(block);
    if (!values)
        return;
    lastBlock() = kcdbRecordName(block);

    const KcDbObjectId id = append(makeReference(block, at, scale, rotation));
    KcDbWrite<KcDbBlockReference> reference(id);
    for (const Value& value : *values) {
        const KcDbObjectId attribute
            = reference->appendAttribute(attributeOf(value, reference->blockTransform()));
        KcDbWrite<KcDbAttribute>(attribute)->setTextString(value.text);
    }
}
