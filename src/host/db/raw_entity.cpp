// Entities that are kept as they are.

#include "db/raw_entity.h"

#include "db/block_reference.h"

KCRX_DEFINE(KcDbRawEntity, KcDbEntity, "AcDbProxyEntity")

KcGeExtents3d KcDbRawEntity::geomExtents() const
{
    if (m_data.block.isResident())
        if (const KcGeExtents3d box = KcDbBlockReference::definitionExtents(m_data.block); !box.isEmpty())
            return box;
    return m_data.points;
}
