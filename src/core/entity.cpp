// The entity wrapper: every operation opens the entity for as long as it needs.

#include "core/entity.h"

#include "core/entity_tags.h"
#include "db/block_table_record.h"
#include "db/hatch.h"
#include "db/leader.h"
#include "db/polyline.h"
#include "ed/copy_entity.h"
#include "ed/documents.h"

namespace {

template <class T> const T* as(const KcDbEntity& entity)
{
    return entity.isKindOf(T::desc()) ? static_cast<const T*>(&entity) : nullptr;
}

/// The curve of an entity that has two ends: any but a circle. Empty for other entities.
KcGeCurve3d curveWithEnds(const KcDbEntity& entity)
{
    const auto* curve = as<KcDbCurve>(entity);
    return curve && !as<KcDbCircle>(entity) ? curve->curve() : KcGeCurve3d();
}

template <class Value> bool give(Value& value, const std::optional<Value>& found)
{
    if (found)
        value = *found;
    return found.has_value();
}

} // namespace

bool CEntity::Initialize(KcDbObjectId id, const KcDbDatabase* database)
{
    const bool fits = KcDbRead<KcDbEntity>(id) && (!database || id.database() == database);
    m_id = fits ? id : KcDbObjectId();
    return fits;
}

QString CEntity::GetType() const
{
    const KcDbRead<KcDbEntity> entity(m_id);
    return entity ? QString::fromLatin1(entity->isA()->name()) : QString();
}

QString CEntity::GetLayer() const
{
    const KcDbRead<KcDbEntity> entity(m_id);
    return entity ? entity->layer() : QString();
}

bool CEntity::SetLayer(const QString& name)
{
    const KcDbObjectId layer
        = m_id.isResident() ? kcdbFindRecord(m_id.database()->layerTable(), name) : KcDbObjectId();
    if (layer.isNull())
        return false;
    KcDbWrite<KcDbEntity>(m_id)->setLayer(layer);
    return true;
}

int CEntity::GetColor() const
{
    const KcDbRead<KcDbEntity> entity(m_id);
    return entity ? entity->colorIndex() : KcCmColor::kByLayer;
}

bool CEntity::SetColor(int index)
{
    if (index < KcCmColor::kByBlock || index > KcCmColor::kByLayer || !m_id.isResident())
        return false;
    KcDbWrite<KcDbEntity>(m_id)->setColorIndex(index);
    return true;
}

QString CEntity::GetLineType() const
{
    const KcDbRead<KcDbEntity> entity(m_id);
    if (!entity)
        return {};
    const QString name = kcdbRecordName(entity->linetypeId());
    return name.isEmpty() ? QStringLiteral("ByLayer") : name;
}

bool CEntity::SetLineType(const QString& name)
{
    if (!m_id.isResident())
        return false;
    KcDbDatabase& database = *m_id.database();
    const bool byLayer = name.compare(QLatin1String("ByLayer"), Qt::CaseInsensitive) == 0;
    const KcDbObjectId lineType = byLayer ? KcDbObjectId() : kcdbFindRecord(database.linetypeTable(), name);
    if (lineType.isNull() && !byLayer)
        return false;
    KcDbWrite<KcDbEntity>(m_id)->setLinetypeId(lineType);
    return true;
}

bool CEntity::GetStartPoint(KcGePoint3d& point) const
{
    const KcDbRead<KcDbEntity> entity(m_id);
    return entity && give(point, curveWithEnds(*entity).startPoint());
}

bool CEntity::GetEndPoint(KcGePoint3d& point) const
{
    const KcDbRead<KcDbEntity> entity(m_id);
    return entity && give(point, curveWithEnds(*entity).endPoint());
}

bool CEntity::GetLength(double& length) const
{
    const KcDbRead<KcDbCurve> curve(m_id);
    return curve && give(length, curve->curve().length());
}

bool CEntity::GetClosestPoint(KcGePoint3d point, KcGePoint3d& onCurve) const
{
    const KcDbRead<KcDbCurve> curve(m_id);
    const auto found = curve ? curve->curve().closest(point) : std::nullopt;
    if (found)
        onCurve = found->point;
    return found.has_value();
}

bool CEntity::GetCenter(KcGePoint3d& point) const
{
    const KcDbRead<KcDbEntity> entity(m_id);
    if (!entity)
        return false;
    if (const auto* circle = as<KcDbCircle>(*entity))
        point = circle->center();
    else if (const auto* arc = as<KcDbArc>(*entity))
        point = arc->center();
    else if (const auto* ellipse = as<KcDbEllipse>(*entity))
        point = ellipse->data().center;
    else
        return false;
    return true;
}

bool CEntity::GetRadius(double& radius) const
{
    const KcDbRead<KcDbEntity> entity(m_id);
    if (!entity)
        return false;
    if (const auto* circle = as<KcDbCircle>(*entity))
        radius = circle->radius();
    else if (const auto* arc = as<KcDbArc>(*entity))
        radius = arc->radius();
    else
        return false;
    return true;
}

bool CEntity::GetArea(double& area) const
{
    const KcDbRead<KcDbEntity> entity(m_id);
    if (!entity)
        return false;
    if (const auto* polyline = as<KcDbPolyline>(*entity)) {
        area = std::abs(polyline->area());
        return true;
    }
    const auto* hatch = as<KcDbHatch>(*entity);
    const std::optional<double> known = hatch ? hatch->getArea() : std::nullopt;
    if (known)
        area = *known;
    return known.has_value();
}

KcDbObjectId CEntity::Copy() const
{
    return m_id.isResident() ? kcedCopyEntity(m_id, KcGeMatrix3d()) : KcDbObjectId();
}

bool CEntity::Delete()
{
    KcDbWrite<KcDbEntity> entity(m_id);
    return entity && entity->erase() == Kcad::eOk;
}

// Tags and records --------------------------------------------------------------------------------

bool CEntity::GetXData(const QString& name, QString& value) const
{
    value = entityTag(m_id, name);
    return !value.isEmpty();
}

bool CEntity::GetXData(const KcDbObject& object, const QString& name, QString& value)
{
    value = entityTag(object, name);
    return !value.isEmpty();
}

bool CEntity::SetXData(KcDbObjectId object, const QString& name, const QString& value)
{
    KcDbWrite<KcDbObject> opened(object);
    return opened && SetXData(*opened, name, value);
}

bool CEntity::SetXData(KcDbObject& object, const QString& name, const QString& value, KcDbDatabase* database)
{
    if (object.database())
        database = object.database();
    else if (!database)
        database = kcedCurrentDatabase();
    if (!database || name.isEmpty())
        return false;
    setEntityTag(object, name, value, database);
    return true;
}

KcDbObjectId CEntity::GetXRecord(const QString& key) const
{
    const KcDbRead<KcDbObject> object(m_id);
    const KcDbRead<KcDbDictionary> extension(object ? object->extensionDictionary() : KcDbObjectId());
    const KcDbObjectId id = extension ? extension->getAt(key) : KcDbObjectId();
    return KcDbRead<KcDbXrecord>(id) ? id : KcDbObjectId();
}

bool CEntity::SetXRecord(
    KcDbObjectId object, std::unique_ptr<KcDbXrecord> record, const QString& key, KcDbObjectId& id)
{
    id = {};
    KcDbObjectId extension;
    if (KcDbRead<KcDbObject> opened(object); opened && record && !key.isEmpty())
        extension = opened->extensionDictionary();
    else
        return false;
    if (!extension.isResident())
        extension = KcDbWrite<KcDbObject>(object)->createExtensionDictionary();
    if (KcDbWrite<KcDbDictionary> dictionary(extension); dictionary)
        id = dictionary->setAt(key, std::move(record));
    return !id.isNull();
}

bool CEntity::DeleteXRecord(const QString& key)
{
    if (GetXRecord(key).isNull())
        return false;
    const KcDbObjectId extension = KcDbRead<KcDbObject>(m_id)->extensionDictionary();
    return KcDbWrite<KcDbDictionary>(extension)->remove(key) == Kcad::eOk;
}

namespace {
constexpr int kSoftPointer = 330;
}

std::unique_ptr<KcDbXrecord> InitializeXRecord(const std::vector<KcDbObjectId>& ids)
{
    KcDbValueList values;
    for (const KcDbObjectId id : ids)
        values.push_back({ kSoftPointer, id });
    auto record = std::make_unique<KcDbXrecord>();
    record->setValues(std::move(values));
    return record;
}

std::vector<KcDbObjectId> GetObjectIdArrayFromXRecord(KcDbObjectId record)
{
    std::vector<KcDbObjectId> ids;
    if (const KcDbRead<KcDbXrecord> opened(record); opened)
        for (const KcDbTypedValue& value : opened->values())
            if (value.code == kSoftPointer && value.id().isResident())
                ids.push_back(value.id());
    return ids;
}
