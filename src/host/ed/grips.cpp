// Grip points of each kind of entity.

#include "ed/grips.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/leader.h"
#include "db/polyline.h"
#include "db/text.h"

namespace {

constexpr size_t kMostVertices = 500;

template <class T> const T* as(const KcDbEntity& entity)
{
    return entity.isKindOf(T::desc()) ? static_cast<const T*>(&entity) : nullptr;
}

} // namespace

std::vector<KcGePoint3d> kcedGripPoints(const KcDbEntity& entity)
{
    if (const auto* line = as<KcDbLine>(entity)) {
        const auto& d = line->data();
        return { d.start, d.start + (d.end - d.start) * 0.5, d.end };
    }
    if (const auto* circle = as<KcDbCircle>(entity)) {
        const KcGeMatrix3d plane = KcGeMatrix3d::planeToWorld(circle->data().normal);
        const KcGePoint3d center = circle->center();
        const KcGeVector3d x = plane.axis(0) * circle->radius(), y = plane.axis(1) * circle->radius();
        return { center, center + x, center + y, center - x, center - y };
    }
    if (const auto* polyline = as<KcDbPolyline>(entity)) {
        std::vector<KcGePoint3d> points;
        for (size_t i = 0; i < std::min(polyline->numVerts(), kMostVertices); ++i)
            points.push_back(polyline->worldPointAt(i));
        return points;
    }
    if (const auto* leader = as<KcDbLeader>(entity))
        return leader->data().vertices;
    if (const auto* reference = as<KcDbBlockReference>(entity))
        return { reference->position() };
    if (const auto* text = as<KcDbText>(entity))
        return { KcGeMatrix3d::planeToWorld(text->data().normal) * text->data().position };
    if (const auto* text = as<KcDbMText>(entity))
        return { text->data().location };
    return {};
}
