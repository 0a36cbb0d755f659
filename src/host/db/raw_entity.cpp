// Entities that are kept as they are.

#include "db/raw_entity.h"

#include "db/block_reference.h"
#include "db/database.h"
#include "db/drawn_extents.h"

KCRX_DEFINE(KcDbRawEntity, KcDbEntity, "AcDbProxyEntity")

std::vector<KcDbObjectId> KcDbRawEntity::ownedObjects() const
{
    std::vector<KcDbObjectId> result = KcDbEntity::ownedObjects();
    result.insert(result.end(), m_data.owned.begin(), m_data.owned.end());
    return result;
}

KcGeExtents3d KcDbRawEntity::geomExtents() const
{
    if (m_data.block.isResident())
        if (const KcGeExtents3d box = KcDbBlockReference::definitionExtents(m_data.block); !box.isEmpty())
            return box;
    const uint64_t now = database() ? database()->changeCount() : 0;
    if (m_drawn.isEmpty() || m_drawnAt != now) {
        m_drawn = kcdbDrawnExtents(*this);
        m_drawnAt = now;
    }
    return m_drawn.isEmpty() ? m_data.points : m_drawn;
}
