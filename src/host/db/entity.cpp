// Common properties of entities.

#include "db/entity.h"

#include "db/database.h"
#include "db/header.h"
#include "db/tables.h"
#include "gi/sink/world_draw.h"

const KcRxClass* KcDbEntity::desc()
{
    static const KcRxClass description("AcDbEntity", KcDbObject::desc());
    return &description;
}

QString KcDbEntity::layer() const
{
    return m_layer.isNull() ? QStringLiteral("0") : kcdbRecordName(m_layer);
}

Kcad::ErrorStatus KcDbEntity::setLayer(const QString& name, KcDbDatabase* database)
{
    if (!database)
        database = this->database();
    if (!database)
        return Kcad::eNotInDatabase;
    const KcDbObjectId id = kcdbFindRecord(database->layerTable(), name);
    if (id.isNull())
        return Kcad::eKeyNotFound;
    m_layer = id;
    return Kcad::eOk;
}

void KcDbEntity::setDatabaseDefaults(KcDbDatabase& database)
{
    const KcDbRead<KcDbHeader> header(database.headerId());
    m_layer = database.currentLayer();
    m_linetype = database.currentLinetype();
    if (m_linetype == database.byLayerLinetype())
        m_linetype = {};
    m_color = { int16_t(header->integer("$CECOLOR", KcCmColor::kByLayer)), -1 };
    m_linetypeScale = header->real("$CELTSCALE", 1.0);
    m_lineWeight = int16_t(header->integer("$CELWEIGHT", -1));
}

void KcDbEntity::setPropertiesFrom(const KcDbEntity& other)
{
    m_layer = other.m_layer;
    m_linetype = other.m_linetype;
    m_linetypeScale = other.m_linetypeScale;
    m_color = other.m_color;
    m_transparency = other.m_transparency;
    m_lineWeight = other.m_lineWeight;
    m_visible = other.m_visible;
}

void KcDbEntity::worldDraw(KcGiWorldDraw& draw) const
{
    draw.leftOut(QStringLiteral("an entity of the kind %1").arg(QString::fromLatin1(isA()->name())));
}
