// Names and boxes of block references. A variant of a dynamic block is drawn by an anonymous definition; its
// record refers to the block that the user placed in extended data of the application AcDbBlockRepBTag, as
// seen in dynblock-visibility-r2018.dxf and dynblock-flip-r2018.dxf.

#include "core/block.h"

#include "core/coordinates.h"
#include "db/database.h"

namespace {

KcDbObjectId definitionTextOf(KcDbObjectId definition, const QString& tag)
{
    const KcDbRead<KcDbBlockTableRecord> record(definition);
    if (!record)
        return {};
    for (const KcDbObjectId id : *record)
        if (const KcDbRead<KcDbAttributeDefinition> text(id);
            text && text->attribute().tag.compare(tag, Qt::CaseInsensitive) == 0)
            return id;
    return {};
}

bool cornersOf(const KcGeExtents3d& box, KcGePoint3d& min, KcGePoint3d& max)
{
    if (box.isEmpty())
        return false;
    min = box.min;
    max = box.max;
    return true;
}

} // namespace

KcDbObjectId blockDefinitionOf(KcDbObjectId reference)
{
    const KcDbRead<KcDbBlockReference> opened(reference);
    return opened && opened->isA() == KcDbBlockReference::desc() ? opened->blockTableRecord()
                                                                 : KcDbObjectId();
}

KcDbObjectId namedBlockDefinition(KcDbObjectId definition)
{
    static const QString variantOf = QStringLiteral("AcDbBlockRepBTag");
    constexpr int kHandleCode = 1005;
    const KcDbRead<KcDbBlockTableRecord> record(definition);
    if (!record)
        return {};
    if (record->name().startsWith(u'*'))
        if (const KcDbValueList* values = record->xdataOf(variantOf))
            for (const KcDbTypedValue& value : *values)
                if (value.code == kHandleCode && KcDbRead<KcDbBlockTableRecord>(value.id()))
                    return value.id();
    return definition;
}

QString blockDefinitionName(KcDbObjectId definition)
{
    const KcDbRead<KcDbBlockTableRecord> record(namedBlockDefinition(definition));
    return record ? record->name() : QString();
}

bool CBlock::Initialize(KcDbObjectId id, const KcDbDatabase* database)
{
    const bool fits
        = id.isResident() && !blockDefinitionOf(id).isNull() && (!database || id.database() == database);
    m_id = fits ? id : KcDbObjectId();
    return fits;
}

bool CBlock::IsEmpty() const
{
    return KcDbBlockReference::definitionExtents(GetDefinitionObjectId()).isEmpty();
}

QString CBlock::GetName() const
{
    return blockDefinitionName(GetDefinitionObjectId());
}

KcDbObjectId CBlock::GetDefinitionObjectId() const
{
    return blockDefinitionOf(m_id);
}

bool CBlock::GetPosition(KcGePoint3d& point) const
{
    const KcDbRead<KcDbBlockReference> reference(m_id);
    if (reference)
        point = reference->position();
    return bool(reference);
}

bool CBlock::GetScale(KcGeVector3d& factors) const
{
    const KcDbRead<KcDbBlockReference> reference(m_id);
    if (reference)
        factors = reference->scaleFactors();
    return bool(reference);
}

double CBlock::GetRotation() const
{
    const KcDbRead<KcDbBlockReference> reference(m_id);
    return reference ? reference->rotation() : 0.0;
}

bool CBlock::GetObjectIdArray(std::vector<KcDbObjectId>& ids) const
{
    const KcDbRead<KcDbBlockTableRecord> record(GetDefinitionObjectId());
    ids = record ? record->entityIds() : std::vector<KcDbObjectId>();
    return !ids.empty();
}

bool CBlock::GetBoundaryBox(KcGePoint3d& min, KcGePoint3d& max) const
{
    const KcDbRead<KcDbBlockReference> reference(m_id);
    return reference && cornersOf(reference->geomExtents(), min, max);
}

bool CBlock::GetBoundaryBestBox(KcGePoint3d& min, KcGePoint3d& max) const
{
    const KcDbRead<KcDbBlockReference> reference(m_id);
    return reference && cornersOf(reference->extentsWithoutAttributes(), min, max);
}

bool CBlock::GetCenterPointBoundaryBox(KcGePoint3d& point, bool transformed) const
{
    KcGePoint3d min, max;
    if (!GetBoundaryBestBox(min, max))
        return false;
    point = GetMidPoint(min, max);
    if (transformed)
        point = m_id.database()->ucsToWorld().inverse() * point;
    return true;
}

bool CBlock::GetBoundaryBoxRadius(double& radius) const
{
    KcGePoint3d min, max;
    if (!GetBoundaryBestBox(min, max))
        return false;
    radius = std::max(max.x - min.x, max.y - min.y) / 2.0;
    return true;
}

bool CBlock::GetTreeData(const QString& name, QString& value) const
{
    if (GetAttributeValue(name, value))
        return true;
    const KcDbObjectId definition = GetDefinitionObjectId();
    KcDbObjectId id = definitionTextOf(definition, name);
    if (id.isNull()) // a variant may lack what the block it was made from has
        id = definitionTextOf(namedBlockDefinition(definition), name);
    const KcDbRead<KcDbAttributeDefinition> text(id);
    if (text)
        value = text->plainText();
    return bool(text);
}

bool CBlock::GetAttributes(QStringList& tags) const
{
    tags.clear();
    if (const KcDbRead<KcDbBlockReference> reference(m_id); reference)
        for (const KcDbObjectId id : reference->attributes())
            if (const KcDbRead<KcDbAttribute> attribute(id); attribute)
                tags.push_back(attribute->attribute().tag);
    return !tags.isEmpty();
}

bool CBlock::GetAttributeValue(const QString& tag, QString& value) const
{
    value.clear();
    KcDbObjectId id;
    if (!GetAttribute(tag, id))
        return false;
    value = KcDbRead<KcDbAttribute>(id)->plainText();
    return true;
}

bool CBlock::GetAttribute(const QString& tag, KcDbObjectId& id) const
{
    id = {};
    if (const KcDbRead<KcDbBlockReference> reference(m_id); reference)
        for (const KcDbObjectId each : reference->attributes())
            if (const KcDbRead<KcDbAttribute> attribute(each);
                attribute && id.isNull() && attribute->attribute().tag.compare(tag, Qt::CaseInsensitive) == 0)
                id = each;
    return !id.isNull();
}

bool CBlock::ChangeOrigin(KcGePoint3d point)
{
    KcDbObjectId definition;
    KcGePoint3d origin;
    {
        const KcDbRead<KcDbBlockReference> reference(m_id);
        if (!reference)
            return false;
        const KcGeMatrix3d toWorld = reference->blockTransform();
        const double volume = toWorld.determinant();
        if (!std::isfinite(volume) || volume == 0.0) // exact: any other can be inverted
            return false;
        definition = reference->blockTableRecord();
        origin = toWorld.inverse() * point;
    }
    if (!std::isfinite(origin.asVector().length()))
        return false;

    // The images of the new base point, by the definition as it is now, are the new insertion points.
    std::vector<std::pair<KcDbObjectId, KcGePoint3d>> places;
    for (const KcDbObjectStub& stub : definition.database()->stubs()) {
        const KcDbObjectId id(const_cast<KcDbObjectStub*>(&stub));
        if (const KcDbRead<KcDbBlockReference> each(id); each && each->blockTableRecord() == definition)
            places.emplace_back(id, each->blockTransform() * origin);
    }
    KcDbWrite<KcDbBlockTableRecord>(definition)->data().origin = origin;
    for (const auto& [id, place] : places)
        KcDbWrite<KcDbBlockReference>(id)->setPosition(place);
    return true;
}
