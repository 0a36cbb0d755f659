// Entities as lines and filled outlines.

#include "ed/pick_geometry.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/hatch.h"
#include "db/leader.h"
#include "db/polyline.h"
#include "db/raw_entity.h"
#include "db/tables.h"
#include "db/text.h"
#include "db/wipeout.h"

namespace {

constexpr int kMostChords = 1000;
// Chords of splines leave them by up to this share of their size, however small the tolerance.
constexpr double kFinestShare = 1e6;
// A line without ends is drawn this far, in drawing units: beyond any plan, and still exact to a ten
// thousandth.
constexpr double kEndless = 1e11;

template <class T> const T* as(const KcDbEntity& entity)
{
    return entity.isKindOf(T::desc()) ? static_cast<const T*>(&entity) : nullptr;
}

// Chords that a sweep of a circle needs: the sagitta of a chord over angle a is r(1 - cos(a/2)).
int chordCount(double radius, double sweep, double tolerance)
{
    if (radius <= tolerance)
        return 8;
    const double step = 2.0 * std::acos(1.0 - tolerance / radius);
    return int(std::clamp(std::ceil(std::abs(sweep) / step), 2.0, double(kMostChords)));
}

void appendArc(
    std::vector<KcGePoint2d>& points, KcGePoint2d center, KcGeVector2d major, KcGeVector2d minor,
    double start, double sweep, double tolerance)
{
    const int chords = chordCount(std::max(major.length(), minor.length()), sweep, tolerance);
    for (int i = 0; i <= chords; ++i) {
        const double angle = start + sweep * i / chords;
        points.push_back(center + major * std::cos(angle) + minor * std::sin(angle));
    }
}

// The arc of a bulge, its first point left out. Bulge: tangent of a quarter of the included angle.
void appendBulge(
    std::vector<KcGePoint2d>& points, KcGePoint2d from, KcGePoint2d to, double bulge, double tolerance)
{
    const KcGeVector2d chord = to - from;
    if (std::abs(bulge) > KcGeContext::gTol.equalVector && chord.length() > 0.0) {
        const double sweep = 4.0 * std::atan(bulge);
        const KcGePoint2d middle = from + chord * 0.5;
        const KcGePoint2d center = middle + chord.perpVector() * ((1.0 - bulge * bulge) / (4.0 * bulge));
        const KcGeVector2d radius = from - center;
        const int chords = chordCount(radius.length(), sweep, tolerance);
        for (int i = 1; i < chords; ++i)
            points.push_back(center + radius.rotateBy(sweep * i / chords));
    }
    points.push_back(to);
}

std::vector<KcGePoint2d>
outline(const std::vector<KcDbPolyline::Vertex>& vertices, bool closed, double tolerance)
{
    std::vector<KcGePoint2d> points;
    if (vertices.empty())
        return points;
    points.push_back({ vertices[0].x, vertices[0].y });
    const size_t segments = closed ? vertices.size() : vertices.size() - 1;
    for (size_t i = 0; i < segments; ++i) {
        const auto& from = vertices[i];
        const auto& to = vertices[(i + 1) % vertices.size()];
        appendBulge(points, { from.x, from.y }, { to.x, to.y }, from.bulge, tolerance);
    }
    return points;
}

std::vector<KcGePoint2d> toWorld(std::vector<KcGePoint2d> points, KcGeVector3d normal, double elevation)
{
    if (isWorldPlane(normal))
        return points;
    const KcGeMatrix3d plane = KcGeMatrix3d::planeToWorld(normal);
    for (KcGePoint2d& p : points)
        p = (plane * KcGePoint3d{ p.x, p.y, elevation }).plan();
    return points;
}

KcEdPickPiece rectangle(const KcGeMatrix3d& place, KcGePoint2d low, KcGePoint2d high)
{
    const auto corner = [&](double x, double y) { return (place * KcGePoint3d{ x, y, 0.0 }).plan(); };
    return { { corner(low.x, low.y), corner(high.x, low.y), corner(high.x, high.y), corner(low.x, high.y),
               corner(low.x, low.y) },
             true };
}

KcEdPickPiece boxOf(const KcGeExtents3d& box)
{
    KcEdPickPiece piece = rectangle({}, box.min.plan(), box.max.plan());
    piece.filled = false;
    return piece;
}

KcEdPickPiece textPiece(const KcDbText& text)
{
    const auto& d = text.data();
    const KcGeMatrix3d place = KcGeMatrix3d::planeToWorld(d.normal)
        * KcGeMatrix3d::translation(d.position.asVector()) * KcGeMatrix3d::rotation(d.rotation);
    const double width = text.textWidth() * (d.generation & 2 ? -1.0 : 1.0);
    const double height = d.height * (d.generation & 4 ? -1.0 : 1.0);
    return rectangle(place, { 0.0, 0.0 }, { width, height });
}

KcEdPickPiece textPiece(const KcDbMText& text)
{
    const auto& d = text.data();
    const double width = text.actualWidth(), height = text.actualHeight();
    const int column = (d.attachment - 1) % 3, row = (d.attachment - 1) / 3;
    const double left = -width * column / 2.0, top = height * row / 2.0;
    const KcGeMatrix3d plane = KcGeMatrix3d::planeToWorld(d.normal);
    const KcGeMatrix3d place
        = KcGeMatrix3d::translation(d.location.asVector()) * plane * KcGeMatrix3d::rotation(text.rotation());
    return rectangle(place, { left, top - height }, { left + width, top });
}

void appendEdge(std::vector<KcGePoint2d>& points, const KcDbHatch::Edge& edge, double tolerance)
{
    if (const auto* line = std::get_if<KcDbHatch::LineEdge>(&edge)) {
        points.push_back(line->start);
        points.push_back(line->end);
    } else if (const auto* arc = std::get_if<KcDbHatch::ArcEdge>(&edge)) {
        const double sign = arc->counterClockwise ? 1.0 : -1.0;
        appendArc(
            points, arc->center, { arc->radius, 0.0 }, { 0.0, arc->radius * sign }, arc->startAngle,
            arc->endAngle - arc->startAngle, tolerance);
    } else if (const auto* ellipse = std::get_if<KcDbHatch::EllipseEdge>(&edge)) {
        const double sign = ellipse->counterClockwise ? 1.0 : -1.0;
        appendArc(
            points, ellipse->center, ellipse->majorAxis,
            ellipse->majorAxis.perpVector() * (ellipse->radiusRatio * sign), ellipse->startAngle,
            ellipse->endAngle - ellipse->startAngle, tolerance);
    } else {
        const auto& spline = std::get<KcDbHatch::SplineEdge>(edge);
        KcDbSpline curve;
        curve.data().degree = spline.degree;
        curve.data().knots = spline.knots;
        curve.data().weights = spline.weights;
        for (const KcGePoint2d p : spline.controlPoints)
            curve.data().controlPoints.push_back({ p.x, p.y, 0.0 });
        for (const KcGePoint2d p : spline.fitPoints)
            curve.data().fitPoints.push_back({ p.x, p.y, 0.0 });
        for (const KcEdPickPiece& piece : KcEdPickGeometry(tolerance).pieces(curve))
            points.insert(points.end(), piece.points.begin(), piece.points.end());
    }
}

KcEdPickPieces hatchPieces(const KcDbHatch& hatch, double tolerance)
{
    KcEdPickPieces pieces;
    for (const KcDbHatch::Loop& loop : hatch.data().loops) {
        std::vector<KcGePoint2d> points;
        if (loop.isPolyline())
            points = outline(loop.vertices, true, tolerance);
        else
            for (const KcDbHatch::Edge& edge : loop.edges)
                appendEdge(points, edge, tolerance);
        if (points.empty())
            continue;
        points.push_back(points.front());
        pieces.push_back({ toWorld(std::move(points), hatch.data().normal, hatch.data().elevation), true });
    }
    return pieces;
}

KcEdPickPiece splinePiece(const KcDbSpline& spline, double tolerance)
{
    const auto& d = spline.data();
    const KcGeNurbsCurve3d curve = spline.nurbs();
    KcEdPickPiece piece;
    // Of an incomplete curve its points are what there is to pick.
    if (!curve.isValid()) {
        for (const KcGePoint3d p : d.controlPoints.empty() ? d.fitPoints : d.controlPoints)
            piece.points.push_back(p.plan());
        return piece;
    }
    const KcGeExtents3d box = curve.extents();
    const double size = std::max(box.width(), box.height());
    for (const KcGePoint3d p : curve.chords(std::max(tolerance, size / kFinestShare)))
        piece.points.push_back(p.plan());
    return piece;
}

KcEdPickPiece circlePiece(
    KcGePoint3d center, double radius, double start, double sweep, KcGeVector3d normal, double tolerance)
{
    std::vector<KcGePoint2d> points;
    appendArc(points, center.plan(), { radius, 0.0 }, { 0.0, radius }, start, sweep, tolerance);
    return { toWorld(std::move(points), normal, center.z), false };
}

KcEdPickPiece polylinePiece(const KcDb2dPolyline& polyline, double tolerance)
{
    std::vector<KcDbPolyline::Vertex> vertices;
    for (const KcDbObjectId id : polyline.data().vertices)
        if (const KcDbRead<KcDbVertex> vertex(id); vertex && !(vertex->data().flags & 16))
            vertices.push_back({ vertex->data().position.x, vertex->data().position.y,
                                 polyline.is3d() || polyline.isMesh() ? 0.0 : vertex->data().bulge });
    std::vector<KcGePoint2d> points = outline(vertices, polyline.isClosed(), tolerance);
    if (polyline.is3d() || polyline.isMesh())
        return { std::move(points), false };
    return { toWorld(std::move(points), polyline.data().normal, polyline.data().elevation), false };
}

// Corners of a solid stand in the order 1, 2, 4, 3.
KcEdPickPiece solidPiece(const KcDbSolid& solid)
{
    KcEdPickPiece piece{ {}, true };
    for (const int corner : { 0, 1, 3, 2, 0 })
        piece.points.push_back(solid.data().corners[corner].plan());
    piece.points = toWorld(std::move(piece.points), solid.data().normal, solid.data().corners[0].z);
    return piece;
}

} // namespace

bool KcEdPickGeometry::isEndless(const KcDbEntity& entity)
{
    return entity.isKindOf(KcDbXline::desc()) || entity.isKindOf(KcDbRay::desc());
}

const KcEdPickGeometry::Layer& KcEdPickGeometry::layerOf(const KcDbEntity& entity)
{
    const void* key = entity.layerId().stub();
    if (m_lastState && key == m_lastLayer)
        return *m_lastState;
    auto known = m_layers.find(key);
    if (known == m_layers.end()) {
        Layer layer;
        if (const KcDbRead<KcDbLayerTableRecord> record(entity.layerId()); record)
            layer = { record->isOff(), record->isFrozen(), record->isLocked() };
        known = m_layers.emplace(key, layer).first;
    }
    m_lastLayer = key;
    m_lastState = &known->second;
    return known->second;
}

bool KcEdPickGeometry::isVisible(const KcDbEntity& entity)
{
    const Layer& layer = layerOf(entity);
    return entity.isVisible() && !layer.off && !layer.frozen;
}

bool KcEdPickGeometry::isOnLockedLayer(const KcDbEntity& entity)
{
    return layerOf(entity).locked;
}

bool KcEdPickGeometry::isOnFrozenLayer(const KcDbEntity& entity)
{
    return layerOf(entity).frozen;
}

const KcEdPickPieces& KcEdPickGeometry::definition(KcDbObjectId block)
{
    // The empty entry made first ends the recursion of a block that contains itself.
    const auto [entry, isNew] = m_definitions.try_emplace(block.stub());
    if (!isNew)
        return entry->second;
    KcEdPickPieces all;
    if (const KcDbRead<KcDbBlockTableRecord> record(block); record)
        for (const KcDbObjectId id : *record) {
            const KcDbRead<KcDbEntity> member(id);
            if (!member || !isVisible(*member))
                continue;
            const auto* attribute = as<KcDbAttributeDefinition>(*member);
            if (attribute && (!attribute->isConstant() || attribute->isInvisible()))
                continue;
            for (KcEdPickPiece& piece : pieces(*member))
                all.push_back(std::move(piece));
        }
    return m_definitions[block.stub()] = std::move(all);
}

KcEdPickPieces KcEdPickGeometry::pieces(const KcDbEntity& entity)
{
    if (const auto* line = as<KcDbLine>(entity))
        return { { { line->data().start.plan(), line->data().end.plan() }, false } };
    if (const auto* circle = as<KcDbCircle>(entity))
        return { circlePiece(
            circle->data().center, circle->data().radius, 0.0, kTwoPi, circle->data().normal, m_tolerance) };
    if (const auto* arc = as<KcDbArc>(entity))
        return { circlePiece(
            arc->data().center, arc->data().radius, arc->data().startAngle,
            sweepBetween(arc->data().startAngle, arc->data().endAngle), arc->data().normal, m_tolerance) };
    if (const auto* ellipse = as<KcDbEllipse>(entity)) {
        const auto& d = ellipse->data();
        const KcGeVector3d minor = d.normal.normal().crossProduct(d.majorAxis) * d.radiusRatio;
        KcEdPickPiece piece;
        appendArc(
            piece.points, d.center.plan(), { d.majorAxis.x, d.majorAxis.y }, { minor.x, minor.y },
            d.startParam, sweepBetween(d.startParam, d.endParam), m_tolerance);
        return { piece };
    }
    if (const auto* spline = as<KcDbSpline>(entity))
        return { splinePiece(*spline, m_tolerance) };
    if (const auto* xline = as<KcDbXline>(entity))
        return { { { (xline->data().basePoint - xline->data().unitDir * kEndless).plan(),
                     (xline->data().basePoint + xline->data().unitDir * kEndless).plan() },
                   false } };
    if (const auto* ray = as<KcDbRay>(entity))
        return { { { ray->data().basePoint.plan(),
                     (ray->data().basePoint + ray->data().unitDir * kEndless).plan() },
                   false } };
    if (const auto* point = as<KcDbPoint>(entity))
        return { { { point->data().position.plan() }, false } };
    if (const auto* polyline = as<KcDbPolyline>(entity))
        return { { toWorld(
                       outline(polyline->data().vertices, polyline->isClosed(), m_tolerance),
                       polyline->data().normal, polyline->data().elevation),
                   false } };
    if (const auto* polyline = as<KcDb2dPolyline>(entity))
        return { polylinePiece(*polyline, m_tolerance) };
    if (const auto* text = as<KcDbText>(entity))
        return { textPiece(*text) };
    if (const auto* text = as<KcDbMText>(entity))
        return { textPiece(*text) };
    if (const auto* hatch = as<KcDbHatch>(entity))
        return hatchPieces(*hatch, m_tolerance);
    if (const auto* solid = as<KcDbSolid>(entity))
        return { solidPiece(*solid) };
    if (const auto* face = as<KcDbFace>(entity)) {
        KcEdPickPiece piece{ {}, true };
        for (const int corner : { 0, 1, 2, 3, 0 })
            piece.points.push_back(face->data().corners[corner].plan());
        return { piece };
    }
    if (const auto* leader = as<KcDbLeader>(entity)) {
        KcEdPickPiece piece;
        for (const KcGePoint3d p : leader->data().vertices)
            piece.points.push_back(p.plan());
        return { piece };
    }
    if (const auto* wipeout = as<KcDbWipeout>(entity)) {
        KcEdPickPiece piece;
        for (const KcGePoint3d p : wipeout->outline())
            piece.points.push_back(p.plan());
        if (!piece.points.empty())
            piece.points.push_back(piece.points.front());
        return { piece };
    }
    if (const auto* reference = as<KcDbBlockReference>(entity)) {
        const KcEdPickPieces& shape = definition(reference->blockTableRecord());
        KcEdPickPieces placed;
        const auto* array = reference->data().array.get();
        const int columns = array ? std::clamp(array->columns, 1, kMostChords) : 1;
        const int rows = array ? std::clamp(array->rows, 1, kMostChords) : 1;
        // Cells of an array are spaced along the axes of the turned reference, whatever its scale.
        const KcGeMatrix3d turn = KcGeMatrix3d::planeToWorld(reference->data().normal)
            * KcGeMatrix3d::rotation(reference->rotation());
        for (int row = 0; row < rows; ++row)
            for (int column = 0; column < columns; ++column) {
                const KcGeVector3d shift = array
                    ? turn * KcGeVector3d{ column * array->columnSpacing, row * array->rowSpacing, 0.0 }
                    : KcGeVector3d();
                const KcGeMatrix3d place = KcGeMatrix3d::translation(shift) * reference->blockTransform();
                for (const KcEdPickPiece& piece : shape) {
                    placed.push_back(piece);
                    for (KcGePoint2d& p : placed.back().points)
                        p = (place * KcGePoint3d{ p.x, p.y, 0.0 }).plan();
                }
            }
        for (const KcDbObjectId id : reference->attributes())
            if (const KcDbRead<KcDbAttribute> attribute(id); attribute && !attribute->isInvisible())
                placed.push_back(textPiece(*attribute));
        return placed;
    }
    if (const auto* raw = as<KcDbRawEntity>(entity); raw && !raw->data().block.isNull())
        return definition(raw->data().block);
    const KcGeExtents3d box = entity.geomExtents();
    return box.isEmpty() ? KcEdPickPieces() : KcEdPickPieces{ boxOf(box) };
}
