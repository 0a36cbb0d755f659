// Grips of each kind of entity: where they are and what they change, side by side.

#include "ed/grips.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/hatch.h"
#include "db/leader.h"
#include "db/polyline.h"
#include "db/text.h"
#include "db/wipeout.h"

#include <array>
#include <functional>

namespace {

constexpr size_t kMostVertices = 500;

template <class T> T* as(KcDbEntity& entity)
{
    return entity.isKindOf(T::desc()) ? static_cast<T*>(&entity) : nullptr;
}

/// A grip, and what dragging it to a point of the world does. False when the entity cannot be so.
struct Grip {
    KcGePoint3d point;
    std::function<bool(KcGePoint3d)> move;
    std::optional<KcGePoint3d> base = std::nullopt; ///< none: the point itself
};
using Grips = std::vector<Grip>;

bool moveWhole(KcDbEntity& entity, KcGePoint3d from, KcGePoint3d to)
{
    return entity.transformBy(KcGeMatrix3d::translation(to - from)) == Kcad::eOk;
}

Grip wholeGrip(KcDbEntity& entity, KcGePoint3d at)
{
    return { at, [&entity, at](KcGePoint3d to) { return moveWhole(entity, at, to); } };
}

Grip pointGrip(KcGePoint3d& point)
{
    return { point, [&point](KcGePoint3d to) {
                point = to;
                return true;
            } };
}

Grips gripsOf(KcDbLine& line)
{
    auto& d = line.data();
    return { pointGrip(d.start), wholeGrip(line, d.start + (d.end - d.start) * 0.5), pointGrip(d.end) };
}

/// In the plane of a circle or arc.
KcGePoint2d inPlane(KcGeVector3d normal, KcGePoint3d world)
{
    return (KcGeMatrix3d::worldToPlane(normal) * world).plan();
}

bool setRadius(double& radius, KcGePoint2d center, KcGePoint2d to)
{
    if (!(to.distanceTo(center) > KcGeContext::gTol.equalPoint))
        return false;
    radius = to.distanceTo(center);
    return true;
}

Grips gripsOf(KcDbCircle& circle)
{
    const KcGeMatrix3d plane = KcGeMatrix3d::planeToWorld(circle.data().normal);
    Grips grips{ wholeGrip(circle, circle.center()) };
    for (int quarter = 0; quarter < 4; ++quarter) {
        const KcGeVector3d axis = quarter % 2 ? plane.axis(1) : plane.axis(0);
        grips.push_back({ circle.center() + axis * (quarter < 2 ? circle.radius() : -circle.radius()),
                          [&circle](KcGePoint3d to) {
                              auto& d = circle.data();
                              return setRadius(d.radius, d.center.plan(), inPlane(d.normal, to));
                          },
                          circle.center() });
    }
    return grips;
}

/// The arc through three points of its plane, start and end changing places where it would run clockwise.
bool setThrough(KcDbArc& arc, KcGePoint2d start, KcGePoint2d between, KcGePoint2d end)
{
    const auto through = KcGeCircArc2d::throughPoints(start, between, end);
    if (!through)
        return false;
    auto& d = arc.data();
    d.center = { through->center().x, through->center().y, d.center.z };
    d.radius = through->radius();
    d.startAngle = normalizedAngle(through->isClockwise() ? through->endAngle() : through->startAngle());
    d.endAngle = normalizedAngle(through->isClockwise() ? through->startAngle() : through->endAngle());
    return true;
}

Grips gripsOf(KcDbArc& arc)
{
    const auto& d = arc.data();
    const KcGeMatrix3d plane = KcGeMatrix3d::planeToWorld(d.normal);
    const auto shape = KcGeCircArc2d::betweenAngles(d.center.plan(), d.radius, d.startAngle, d.endAngle);
    const std::array<KcGePoint2d, 3> points{ shape.startPoint(), shape.pointAt(0.5), shape.endPoint() };
    Grips grips{ wholeGrip(arc, arc.center()) };
    for (size_t i = 0; i < points.size(); ++i)
        grips.push_back(
            { plane * KcGePoint3d{ points[i].x, points[i].y, d.center.z }, [&arc, points, i](KcGePoint3d to) {
                 std::array<KcGePoint2d, 3> changed = points;
                 changed[i] = inPlane(arc.data().normal, to);
                 return setThrough(arc, changed[0], changed[1], changed[2]);
             } });
    return grips;
}

Grips gripsOf(KcDbEllipse& ellipse)
{
    auto& d = ellipse.data();
    const KcGeVector3d minor = d.normal.normal().crossProduct(d.majorAxis) * d.radiusRatio;
    Grips grips{ wholeGrip(ellipse, d.center) };
    for (const double sign : { 1.0, -1.0 }) {
        grips.push_back({ d.center + d.majorAxis * sign,
                          [&d, minor, sign](KcGePoint3d to) {
                              // The other axis keeps its length, unless it would become the longer one.
                              const KcGeVector3d axis = (to - d.center) * sign;
                              if (!(axis.length() > KcGeContext::gTol.equalPoint))
                                  return false;
                              d.majorAxis = axis;
                              d.radiusRatio = std::min(minor.length() / axis.length(), 1.0);
                              return true;
                          },
                          d.center });
        grips.push_back({ d.center + minor * sign,
                          [&d](KcGePoint3d to) {
                              const double length = (to - d.center).length();
                              if (!(length > KcGeContext::gTol.equalPoint))
                                  return false;
                              d.radiusRatio = std::min(length / d.majorAxis.length(), 1.0);
                              return true;
                          },
                          d.center });
    }
    return grips;
}

Grips gripsOf(KcDbPolyline& polyline)
{
    auto& d = polyline.data();
    Grips grips;
    const size_t count = std::min(d.vertices.size(), kMostVertices);
    for (size_t i = 0; i < count; ++i)
        grips.push_back({ polyline.worldPointAt(i), [&d, i](KcGePoint3d to) {
                             const KcGePoint2d p = inPlane(d.normal, to);
                             d.vertices[i].x = p.x;
                             d.vertices[i].y = p.y;
                             return true;
                         } });
    // Middles of the pieces, behind all vertices.
    const KcGeMatrix3d plane = KcGeMatrix3d::planeToWorld(d.normal);
    const size_t pieces = polyline.isClosed() ? d.vertices.size()
                                              : d.vertices.size() - std::min<size_t>(d.vertices.size(), 1);
    for (size_t i = 0; i < std::min(pieces, kMostVertices); ++i) {
        const size_t next = (i + 1) % d.vertices.size();
        const KcGePoint2d from{ d.vertices[i].x, d.vertices[i].y },
            end{ d.vertices[next].x, d.vertices[next].y };
        const KcGePoint2d middle = KcGeSegment2d::bulge(from, end, d.vertices[i].bulge).midPoint();
        grips.push_back({ plane * KcGePoint3d{ middle.x, middle.y, d.elevation },
                          [&d, i, next, from, end, middle](KcGePoint3d to) {
                              const KcGePoint2d p = inPlane(d.normal, to);
                              if (d.vertices[i].bulge != 0.0) { // exact: any arc is one
                                  const auto arc = KcGeCircArc2d::throughPoints(from, p, end);
                                  d.vertices[i].bulge = arc ? std::tan(arc->sweep() / 4.0) : 0.0;
                                  return true;
                              }
                              for (const size_t v : { i, next }) {
                                  d.vertices[v].x += p.x - middle.x;
                                  d.vertices[v].y += p.y - middle.y;
                              }
                              return true;
                          } });
    }
    return grips;
}

/// The vertices are objects of their own, opened when they are dragged.
Grips gripsOf(KcDb2dPolyline& polyline)
{
    Grips grips;
    const bool spatial = polyline.is3d() || polyline.isMesh();
    const KcGeVector3d normal = spatial ? KcGeVector3d::kZAxis : polyline.data().normal;
    for (const KcDbObjectId id : polyline.data().vertices) {
        const KcDbRead<KcDbVertex> vertex(id);
        if (!vertex || !polyline.isDrawn(*vertex) || grips.size() >= kMostVertices)
            continue;
        grips.push_back(
            { KcGeMatrix3d::planeToWorld(normal) * vertex->data().position, [id, normal](KcGePoint3d to) {
                 KcDbWrite<KcDbVertex> moved(id);
                 if (!moved)
                     return false;
                 const double z = moved->data().position.z;
                 moved->data().position = KcGeMatrix3d::worldToPlane(normal) * to;
                 if (!isWorldPlane(normal))
                     moved->data().position.z = z;
                 return true;
             } });
    }
    return grips;
}

Grips gripsOf(KcDbSpline& spline)
{
    auto& d = spline.data();
    Grips grips;
    // Fit points count where the curve is given by nothing else.
    auto& points = d.controlPoints.empty() ? d.fitPoints : d.controlPoints;
    for (size_t i = 0; i < std::min(points.size(), kMostVertices); ++i)
        grips.push_back({ points[i], [&d, &points, i](KcGePoint3d to) {
                             points[i] = to;
                             if (&points == &d.controlPoints)
                                 d.fitPoints.clear(); // the curve does not pass them any more
                             return true;
                         } });
    return grips;
}

Grips gripsOf(KcDbEntity& entity)
{
    if (auto* line = as<KcDbLine>(entity))
        return gripsOf(*line);
    if (auto* circle = as<KcDbCircle>(entity))
        return gripsOf(*circle);
    if (auto* arc = as<KcDbArc>(entity))
        return gripsOf(*arc);
    if (auto* ellipse = as<KcDbEllipse>(entity))
        return gripsOf(*ellipse);
    if (auto* polyline = as<KcDbPolyline>(entity))
        return gripsOf(*polyline);
    if (auto* polyline = as<KcDb2dPolyline>(entity))
        return gripsOf(*polyline);
    if (auto* spline = as<KcDbSpline>(entity))
        return gripsOf(*spline);
    if (auto* xline = as<KcDbXline>(entity))
        return { wholeGrip(entity, xline->data().basePoint) };
    if (auto* ray = as<KcDbRay>(entity))
        return { wholeGrip(entity, ray->data().basePoint) };
    if (auto* point = as<KcDbPoint>(entity))
        return { wholeGrip(entity, point->data().position) };
    if (auto* leader = as<KcDbLeader>(entity)) {
        Grips grips;
        for (KcGePoint3d& vertex : leader->data().vertices)
            grips.push_back(pointGrip(vertex));
        return grips;
    }
    if (auto* reference = as<KcDbBlockReference>(entity))
        return { wholeGrip(entity, reference->position()) };
    if (auto* text = as<KcDbText>(entity))
        return { wholeGrip(entity, text->anchor()) };
    if (auto* text = as<KcDbMText>(entity))
        return { wholeGrip(entity, text->data().location) };
    if (as<KcDbHatch>(entity) || as<KcDbWipeout>(entity))
        if (const KcGeExtents3d box = entity.geomExtents(); !box.isEmpty())
            return { wholeGrip(entity, box.center()) };
    return {};
}

} // namespace

std::vector<KcGePoint3d> kcedGripPoints(const KcDbEntity& entity)
{
    std::vector<KcGePoint3d> points;
    // Looking at the grips changes nothing: only what they would do is bound to the entity.
    for (const Grip& grip : gripsOf(const_cast<KcDbEntity&>(entity)))
        points.push_back(grip.point);
    return points;
}

std::optional<KcGePoint3d> kcedGripBase(const KcDbEntity& entity, size_t index)
{
    const Grips grips = gripsOf(const_cast<KcDbEntity&>(entity));
    return index < grips.size() ? std::optional(grips[index].base.value_or(grips[index].point))
                                : std::nullopt;
}

Kcad::ErrorStatus kcedMoveGrip(KcDbEntity& entity, size_t index, KcGePoint3d to)
{
    if (!std::isfinite(to.x) || !std::isfinite(to.y) || !std::isfinite(to.z))
        return Kcad::eInvalidInput;
    const Grips grips = gripsOf(entity);
    return index < grips.size() && grips[index].move(to) ? Kcad::eOk : Kcad::eInvalidInput;
}
