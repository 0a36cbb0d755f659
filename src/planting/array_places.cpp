// Steps along a curve.

#include "planting/array_places.h"

#include "planting/point_set.h"

double arrayStep(double length, const ArrayDivision& division)
{
    if (division.byDistance)
        return division.spacing;
    return division.count > 1 ? length / (division.count - 1) : 0.0;
}

std::vector<ArrayPlace> arrayPlaces(const KcGeCurve3d& path, const ArrayDivision& division)
{
    const std::optional<double> length = path.length();
    if (!length || !std::isfinite(*length))
        return {};
    // The last step of a division may end a little behind the path by rounding.
    constexpr double kBeyond = 1.00001;
    const double slack = division.byDistance ? KcGeContext::gTol.equalPoint : *length * (kBeyond - 1.0);
    const double step = arrayStep(*length, division);
    const bool fromEnd = division.byDistance && division.fromEnd;

    std::vector<ArrayPlace> places;
    PointSet used;
    for (size_t i = 0; division.byDistance || i < size_t(division.count); ++i) {
        double walked = step * double(i);
        if (walked > *length && walked <= *length + slack)
            walked = *length;
        if (!(walked <= *length))
            break;
        const double distance = fromEnd ? *length - walked : walked;
        const std::optional<double> param = path.paramAtDist(distance);
        const std::optional<KcGePoint3d> point = param ? path.pointAtParam(*param) : std::nullopt;
        if (!point || used.contains(*point))
            break;
        used.add(*point);
        const KcGeVector3d tangent = path.firstDeriv(*param).value_or(KcGeVector3d::kXAxis);
        places.push_back({ *point, KcGeVector2d{ tangent.x, tangent.y }.angle() });
    }
    return places;
}
