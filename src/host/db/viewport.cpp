// Viewports: their boxes and moves.

#include "db/viewport.h"

#include "db/plane.h"

KCRX_DEFINE(KcDbViewport, KcDbEntity, "AcDbViewport")

KcGeExtents3d KcDbViewport::extentsUnder(const KcGeMatrix3d& matrix) const
{
    KcGeExtents3d box;
    if (m_data.number == 1) // the sheet itself has no frame
        return box;
    for (const double x : { -0.5, 0.5 })
        for (const double y : { -0.5, 0.5 })
            kcdbAddPoint(
                box, matrix * (m_data.center + KcGeVector3d{ x * m_data.width, y * m_data.height, 0.0 }));
    return box;
}

Kcad::ErrorStatus KcDbViewport::transformBy(const KcGeMatrix3d& matrix)
{
    // A viewport stays parallel to the sheet: it moves and grows, but does not turn.
    const auto plane = KcDbPlaneTransform::of(matrix, KcGeVector3d::kZAxis);
    if (!plane)
        return Kcad::eInvalidInput;
    if (!plane->isUniform())
        return Kcad::eCannotScaleNonUniformly;
    m_data.center = matrix * m_data.center;
    m_data.width *= plane->scale();
    m_data.height *= plane->scale();
    return Kcad::eOk;
}
