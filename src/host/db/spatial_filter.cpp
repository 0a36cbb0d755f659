// The cut of a reference is kept as the file holds it: an object SPATIAL in the dictionary ACAD_FILTER of the
// reference's extensions. Its points lie in a plane of their own; two transforms lead from there to the
// definition, whatever was done to the reference since. As published for the file format; proved on a drawing
// with cuts that were moved, turned and inverted.

#include "db/spatial_filter.h"

#include "db/block_reference.h"
#include "db/database.h"
#include "db/dictionary.h"
#include "db/open.h"

namespace {

KcGeMatrix3d matrixOf(const double* rows)
{
    return KcGeMatrix3d::fromAxes(
        { rows[3], rows[7], rows[11] }, { rows[0], rows[4], rows[8] }, { rows[1], rows[5], rows[9] },
        { rows[2], rows[6], rows[10] });
}

} // namespace

std::optional<KcGiPath> kcdbClipOf(const KcDbBlockReference& reference)
{
    if (reference.extensionDictionary().isNull())
        return {};
    const KcDbRead<KcDbDictionary> extensions(reference.extensionDictionary());
    const KcDbRead<KcDbDictionary> filters(
        extensions ? extensions->getAt(QStringLiteral("ACAD_FILTER")) : KcDbObjectId());
    const KcDbRead<KcDbObject> filter(filters ? filters->getAt(QStringLiteral("SPATIAL")) : KcDbObjectId());
    if (!filter || !reference.database()->file())
        return {};

    constexpr int kPoint = 10, kShown = 71, kReal = 40;
    constexpr size_t kMatrix = 12;
    std::vector<KcGePoint3d> corners;
    std::vector<double> reals; // a front distance may come before the two matrices, a back one too
    bool shown = true;
    for (const KcDbTypedValue& value : reference.database()->file()->values(*filter)) {
        if (const auto* point = std::get_if<KcGePoint3d>(&value.value); point && value.code == kPoint)
            corners.push_back(*point);
        else if (value.code == kShown)
            shown = value.integer(1) != 0;
        else if (value.code == kReal)
            reals.push_back(value.real());
    }
    if (!shown || corners.size() < 2 || reals.size() < 2 * kMatrix)
        return {};
    const double* matrices = reals.data() + (reals.size() - 2 * kMatrix);
    const KcGeMatrix3d toDefinition = matrixOf(matrices), toClip = matrixOf(matrices + kMatrix);
    if (toClip.determinant() == 0.0) // exact: any other has an inverse
        return {};
    if (corners.size() == 2)
        corners = {
            corners[0], { corners[1].x, corners[0].y, 0.0 }, corners[1], { corners[0].x, corners[1].y, 0.0 }
        };
    const KcGeMatrix3d place = toDefinition * toClip.inverse();
    for (KcGePoint3d& corner : corners)
        corner = place * corner;
    KcGiPath outline;
    outline.polyline(corners, true);
    return outline;
}
