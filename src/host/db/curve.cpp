// Curve operations: each asks the geometry and says in a status why there is no answer.

#include "db/curve.h"

#include "db/curves.h"
#include "db/polyline.h"

KCRX_DEFINE(KcDbCurve, KcDbEntity, "AcDbCurve")

namespace {

/// The conversion of the curve that was asked last, while it keeps its values. A curve that is asked once
/// leaves only its address: the copy to compare with is made when it is asked again.
struct LastAsked {
    const KcDbCurve* asked = nullptr;
    std::unique_ptr<KcDbObject> values;
    KcGeCurve3d curve;
};

} // namespace

KcGeCurve3d KcDbCurve::curve() const
{
    thread_local LastAsked last;
    const bool again = last.asked == this;
    if (again && last.values && last.values->isA() == isA()
        && hasValuesOf(static_cast<const KcDbCurve&>(*last.values)))
        return last.curve;
    KcGeCurve3d result = makeCurve();
    last.asked = this;
    last.values = again && hasValuesOf(*this) ? copy() : nullptr;
    last.curve = last.values ? result : KcGeCurve3d();
    return result;
}

/// Sets the value to what the curve answers, if it does.
template <class Value, class Answer> Kcad::ErrorStatus KcDbCurve::answer(Value& value, Answer ask) const
{
    const KcGeCurve3d shape = curve();
    if (shape.isEmpty())
        return Kcad::eDegenerateGeometry;
    const std::optional<Value> found = ask(shape);
    if (!found)
        return Kcad::eInvalidInput;
    value = *found;
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbCurve::getStartParam(double& param) const
{
    const auto status = answer(param, [](const KcGeCurve3d& c) { return c.startParam(); });
    return status == Kcad::eInvalidInput ? Kcad::eNotApplicable : status;
}

Kcad::ErrorStatus KcDbCurve::getEndParam(double& param) const
{
    const auto status = answer(param, [](const KcGeCurve3d& c) { return c.endParam(); });
    return status == Kcad::eInvalidInput ? Kcad::eNotApplicable : status;
}

Kcad::ErrorStatus KcDbCurve::getStartPoint(KcGePoint3d& point) const
{
    const auto status = answer(point, [](const KcGeCurve3d& c) { return c.startPoint(); });
    return status == Kcad::eInvalidInput ? Kcad::eNotApplicable : status;
}

Kcad::ErrorStatus KcDbCurve::getEndPoint(KcGePoint3d& point) const
{
    const auto status = answer(point, [](const KcGeCurve3d& c) { return c.endPoint(); });
    return status == Kcad::eInvalidInput ? Kcad::eNotApplicable : status;
}

Kcad::ErrorStatus KcDbCurve::getPointAtParam(double param, KcGePoint3d& point) const
{
    return answer(point, [&](const KcGeCurve3d& c) { return c.pointAtParam(param); });
}

Kcad::ErrorStatus KcDbCurve::getPointAtDist(double distance, KcGePoint3d& point) const
{
    return answer(point, [&](const KcGeCurve3d& c) { return c.pointAtDist(distance); });
}

Kcad::ErrorStatus KcDbCurve::getParamAtDist(double distance, double& param) const
{
    return answer(param, [&](const KcGeCurve3d& c) { return c.paramAtDist(distance); });
}

Kcad::ErrorStatus KcDbCurve::getDistAtParam(double param, double& distance) const
{
    return answer(distance, [&](const KcGeCurve3d& c) { return c.distAtParam(param); });
}

Kcad::ErrorStatus KcDbCurve::getParamAtPoint(KcGePoint3d point, double& param) const
{
    return answer(param, [&](const KcGeCurve3d& c) { return c.paramAtPoint(point); });
}

Kcad::ErrorStatus KcDbCurve::getDistAtPoint(KcGePoint3d point, double& distance) const
{
    return answer(distance, [&](const KcGeCurve3d& c) { return c.distAtPoint(point); });
}

Kcad::ErrorStatus KcDbCurve::getFirstDeriv(double param, KcGeVector3d& derivative) const
{
    return answer(derivative, [&](const KcGeCurve3d& c) { return c.firstDeriv(param); });
}

Kcad::ErrorStatus KcDbCurve::getFirstDeriv(KcGePoint3d point, KcGeVector3d& derivative) const
{
    return answer(derivative, [&](const KcGeCurve3d& c) {
        const auto param = c.paramAtPoint(point);
        return param ? c.firstDeriv(*param) : std::nullopt;
    });
}

Kcad::ErrorStatus KcDbCurve::getSecondDeriv(double param, KcGeVector3d& derivative) const
{
    return answer(derivative, [&](const KcGeCurve3d& c) { return c.secondDeriv(param); });
}

Kcad::ErrorStatus KcDbCurve::getSecondDeriv(KcGePoint3d point, KcGeVector3d& derivative) const
{
    return answer(derivative, [&](const KcGeCurve3d& c) {
        const auto param = c.paramAtPoint(point);
        return param ? c.secondDeriv(*param) : std::nullopt;
    });
}

Kcad::ErrorStatus KcDbCurve::getClosestPointTo(KcGePoint3d point, KcGePoint3d& onCurve, bool extend) const
{
    return answer(onCurve, [&](const KcGeCurve3d& c) {
        const auto found = extend ? c.closestExtended(point) : c.closest(point);
        return found ? std::optional(found->point) : std::nullopt;
    });
}

Kcad::ErrorStatus KcDbCurve::getArea(double& area) const
{
    const auto status = answer(area, [](const KcGeCurve3d& c) {
        const auto signedArea = c.area();
        return signedArea ? std::optional(std::abs(*signedArea)) : std::nullopt;
    });
    return status == Kcad::eInvalidInput ? Kcad::eNotApplicable : status;
}

// New curves.

KcDbCurve::Curves KcDbCurve::entitiesOf(const std::vector<KcGeCurve3d>& curves) const
{
    Curves entities;
    for (const KcGeCurve3d& curve : curves) {
        auto entity = kcdbCurveFrom(curve);
        if (!entity)
            continue;
        entity->setPropertiesFrom(*this);
        if (isKindOf(KcDbPolyline::desc()) && entity->isKindOf(KcDbPolyline::desc())) {
            const auto& from = static_cast<const KcDbPolyline&>(*this).data();
            auto& to = static_cast<KcDbPolyline&>(*entity).data();
            to.constantWidth = from.constantWidth;
            to.thickness = from.thickness;
            to.flags |= from.flags & ~1;
        }
        entities.push_back(std::move(entity));
    }
    return entities;
}

Kcad::ErrorStatus KcDbCurve::getSplitCurves(const std::vector<double>& params, Curves& parts) const
{
    const KcGeCurve3d shape = curve();
    if (shape.isEmpty())
        return Kcad::eDegenerateGeometry;
    if (!shape.isBounded())
        return Kcad::eNotApplicable;
    for (const double param : params)
        if (!shape.pointAtParam(param))
            return Kcad::eInvalidInput;
    parts = entitiesOf(shape.split(params));
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbCurve::getSplitCurves(const std::vector<KcGePoint3d>& points, Curves& parts) const
{
    const KcGeCurve3d shape = curve();
    if (shape.isEmpty())
        return Kcad::eDegenerateGeometry;
    if (!shape.isBounded())
        return Kcad::eNotApplicable;
    std::vector<double> params;
    for (const KcGePoint3d point : points) {
        const auto param = shape.paramAtPoint(point);
        if (!param)
            return Kcad::eInvalidInput;
        params.push_back(*param);
    }
    parts = entitiesOf(shape.split(std::move(params)));
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbCurve::explode(Curves& pieces) const
{
    if (!isKindOf(KcDbPolyline::desc()) && !isKindOf(KcDb2dPolyline::desc()))
        return Kcad::eNotApplicable;
    const KcGeCurve3d shape = curve();
    if (shape.isEmpty())
        return Kcad::eDegenerateGeometry;
    pieces = entitiesOf(shape.exploded());
    return Kcad::eOk;
}
