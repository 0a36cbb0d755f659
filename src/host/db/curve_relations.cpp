// Curves of the drawing against each other, and their parallels.

#include "db/curves.h"
#include "ge/curve_intersect.h"
#include "ge/offset.h"

Kcad::ErrorStatus
KcDbEntity::intersectWith(const KcDbEntity& other, KcDbIntersect mode, std::vector<KcGePoint3d>& points) const
{
    if (!isKindOf(KcDbCurve::desc()) || !other.isKindOf(KcDbCurve::desc()))
        return Kcad::eNotApplicable;
    const KcGeCurve3d first = static_cast<const KcDbCurve&>(*this).curve();
    const KcGeCurve3d second = static_cast<const KcDbCurve&>(other).curve();
    if (first.isEmpty() || second.isEmpty())
        return Kcad::eDegenerateGeometry;
    KcGeIntersectOptions options;
    options.extendFirst = mode == KcDbIntersect::ExtendThis || mode == KcDbIntersect::ExtendBoth;
    options.extendSecond = mode == KcDbIntersect::ExtendArg || mode == KcDbIntersect::ExtendBoth;
    const std::vector<KcGePoint3d> found = intersectCurves(first, second, options);
    points.insert(points.end(), found.begin(), found.end());
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbCurve::getOffsetCurves(double distance, Curves& curves) const
{
    if (!std::isfinite(distance))
        return Kcad::eInvalidInput;
    const KcGeCurve3d shape = curve();
    if (shape.isEmpty())
        return Kcad::eDegenerateGeometry;
    const bool isLine
        = isKindOf(KcDbLine::desc()) || isKindOf(KcDbXline::desc()) || isKindOf(KcDbRay::desc());
    const auto parallels = offsetCurve(shape, isLine ? -distance : distance);
    if (!parallels)
        return Kcad::eNotApplicable;
    curves = entitiesOf(*parallels);
    return Kcad::eOk;
}
