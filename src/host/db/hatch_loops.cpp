// The loops of a hatch: made from curves, and following them when the hatch is associative.

#include "db/hatch.h"

#include "db/database.h"
#include "db/plane.h"

namespace {

using Loop = KcDbHatch::Loop;

template <class T> const T* as(const KcDbEntity& entity)
{
    return entity.isKindOf(T::desc()) ? static_cast<const T*>(&entity) : nullptr;
}

/// The way from the plane of a curve to that of a hatch.
KcDbPlaneTransform planeTransform(const KcGeMatrix3d& toHatch, KcGeVector3d normal, double elevation)
{
    KcDbPlaneTransform plane;
    plane.toNewPlane
        = toHatch * KcGeMatrix3d::planeToWorld(normal) * KcGeMatrix3d::translation({ 0, 0, elevation });
    return plane;
}

KcDbHatch::SplineEdge splineEdge(const KcGeNurbsCurve3d& curve)
{
    KcDbHatch::SplineEdge edge;
    edge.degree = curve.degree;
    edge.rational = !curve.weights.empty();
    edge.knots = curve.knots;
    edge.weights = curve.weights;
    for (const KcGePoint3d p : curve.controlPoints)
        edge.controlPoints.push_back(p.plan());
    return edge;
}

void addVertices(Loop& loop, const std::vector<KcDbPolyline::Vertex>& vertices, bool closed)
{
    loop.type |= KcDbHatch::kPolyline;
    loop.closed = closed;
    for (const KcDbPolyline::Vertex& v : vertices) {
        loop.vertices.push_back({ v.x, v.y, v.bulge });
        loop.hasBulges = loop.hasBulges || v.bulge != 0.0; // exact: the file holds it
    }
    // A closing vertex that stands on the first one is the loop's end.
    const auto point = [&](size_t i) { return KcGePoint2d{ loop.vertices[i].x, loop.vertices[i].y }; };
    while (loop.vertices.size() > 2
           && point(0).distanceTo(point(loop.vertices.size() - 1)) <= KcGeContext::kClosingVertex) {
        loop.vertices.pop_back();
        loop.closed = true;
    }
}

/// A polyline loop as edges, so that it can be joined with others.
void makeEdges(Loop& loop)
{
    for (const KcGeSegment2d& piece : kcdbPiecesOf(loop)) {
        if (const auto* arc = piece.asArc()) {
            KcDbHatch::ArcEdge edge;
            edge.center = arc->center();
            edge.radius = arc->radius();
            edge.counterClockwise = !arc->isClockwise();
            // Angles of clockwise arcs are counted the other way round.
            edge.startAngle
                = normalizedAngle(edge.counterClockwise ? arc->startAngle() : -arc->startAngle());
            edge.endAngle = edge.startAngle + std::abs(arc->sweep());
            loop.edges.push_back(edge);
        } else if (piece.startPoint() != piece.endPoint()) {
            loop.edges.push_back(KcDbHatch::LineEdge{ piece.startPoint(), piece.endPoint() });
        }
    }
    loop.vertices.clear();
    loop.hasBulges = false;
    loop.type &= ~KcDbHatch::kPolyline;
}

std::vector<KcDbPolyline::Vertex> verticesOf(const KcDb2dPolyline& polyline)
{
    std::vector<KcDbPolyline::Vertex> vertices;
    for (const KcDbObjectId id : polyline.data().vertices)
        if (const KcDbRead<KcDbVertex> vertex(id); vertex && !(vertex->data().flags & 16))
            vertices.push_back({ vertex->data().position.x, vertex->data().position.y, vertex->data().bulge });
    return vertices;
}

/// One curve as a loop in the plane to which `toHatch` leads; nothing for what is no curve, or none in a plane.
std::optional<Loop> loopOf(const KcDbEntity& entity, const KcGeMatrix3d& toHatch)
{
    Loop loop;
    if (const auto* line = as<KcDbLine>(entity)) {
        loop.edges.push_back(KcDbHatch::LineEdge{ (toHatch * line->data().start).plan(),
                                                  (toHatch * line->data().end).plan() });
    } else if (const auto* circle = as<KcDbCircle>(entity)) {
        const auto& d = circle->data();
        loop.edges.push_back(KcDbHatch::ArcEdge{ d.center.plan(), d.radius, 0.0, kTwoPi, true });
        kcdbTransformLoop(loop, planeTransform(toHatch, d.normal, d.center.z));
    } else if (const auto* arc = as<KcDbArc>(entity)) {
        const auto& d = arc->data();
        loop.edges.push_back(
            KcDbHatch::ArcEdge{ d.center.plan(), d.radius, d.startAngle,
                                d.startAngle + sweepBetween(d.startAngle, d.endAngle), true });
        kcdbTransformLoop(loop, planeTransform(toHatch, d.normal, d.center.z));
    } else if (const auto* ellipse = as<KcDbEllipse>(entity)) {
        const auto& d = ellipse->data();
        KcGeEllipArc3d image{ d.center, d.majorAxis,
                              d.normal.normal().crossProduct(d.majorAxis) * d.radiusRatio, d.startParam,
                              sweepBetween(d.startParam, d.endParam) };
        image = image.transformed(toHatch);
        image.center.z = image.u.z = image.v.z = 0.0;
        loop.edges.push_back(kcdbEllipseEdge(image));
    } else if (const auto* spline = as<KcDbSpline>(entity)) {
        const KcGeNurbsCurve3d curve = spline->nurbs();
        if (!curve.isValid())
            return std::nullopt;
        loop.edges.push_back(splineEdge(curve.transformed(toHatch)));
    } else if (const auto* polyline = as<KcDbPolyline>(entity)) {
        const auto& d = polyline->data();
        addVertices(loop, d.vertices, polyline->isClosed());
        kcdbTransformLoop(loop, planeTransform(toHatch, d.normal, d.elevation));
    } else if (const auto* old = as<KcDb2dPolyline>(entity); old && !old->is3d() && !old->isMesh()) {
        addVertices(loop, verticesOf(*old), old->isClosed());
        kcdbTransformLoop(loop, planeTransform(toHatch, old->data().normal, old->data().elevation));
    } else {
        return std::nullopt;
    }
    return loop;
}

bool isClosed(const Loop& loop)
{
    return KcGeFillArea({ kcdbPiecesOf(loop) }).isSound();
}

/// True when two loops run along the same outline, however each is put together.
bool sameOutline(const Loop& a, const Loop& b)
{
    const std::vector<KcGeSegment2d> first = kcdbPiecesOf(a), second = kcdbPiecesOf(b);
    // What is too long to be compared piece by piece counts as changed.
    constexpr size_t kMostComparisons = 1'000'000;
    if (a == b || first.size() * second.size() > kMostComparisons)
        return a == b;
    const auto liesOn = [](const std::vector<KcGeSegment2d>& pieces, const std::vector<KcGeSegment2d>& outline) {
        const auto isOn = [&](KcGePoint2d p) {
            return std::any_of(outline.begin(), outline.end(), [&](const KcGeSegment2d& piece) {
                return piece.closest(p).distance <= KcGeContext::gTol.equalPoint;
            });
        };
        return std::all_of(pieces.begin(), pieces.end(), [&](const KcGeSegment2d& piece) {
            return isOn(piece.startPoint()) && isOn(piece.pointAt(1.0 / 3)) && isOn(piece.pointAt(2.0 / 3));
        });
    };
    return liesOn(first, second) && liesOn(second, first);
}

} // namespace

std::optional<Loop>
KcDbHatch::loopAlong(const std::vector<KcDbObjectId>& curves, Kcad::ErrorStatus& status) const
{
    const KcGeMatrix3d toHatch = KcGeMatrix3d::worldToPlane(m_data.normal);
    Loop whole;
    for (const KcDbObjectId id : curves) {
        const KcDbRead<KcDbEntity> entity(id);
        if (!entity) {
            status = entity.status();
            return std::nullopt;
        }
        auto loop = loopOf(*entity, toHatch);
        if (!loop) {
            status = Kcad::eNotThatKindOfClass;
            return std::nullopt;
        }
        if (curves.size() == 1) {
            whole = std::move(*loop);
            break;
        }
        if (loop->isPolyline())
            makeEdges(*loop);
        whole.edges.insert(whole.edges.end(), loop->edges.begin(), loop->edges.end());
    }
    status = isClosed(whole) ? Kcad::eOk : Kcad::eInvalidInput;
    if (status != Kcad::eOk)
        return std::nullopt;
    whole.sources = curves;
    return whole;
}

Kcad::ErrorStatus KcDbHatch::appendLoop(int type, const std::vector<KcDbObjectId>& curves)
{
    if (curves.empty())
        return Kcad::eInvalidInput;
    Kcad::ErrorStatus status = Kcad::eOk;
    auto loop = loopAlong(curves, status);
    if (!loop)
        return status;
    loop->type |= type & ~kPolyline;
    if (!m_data.associative)
        loop->sources.clear();
    m_data.loops.push_back(std::move(*loop));
    if (m_data.associative && database())
        watchSources();
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbHatch::appendLoop(
    int type, const std::vector<KcGePoint2d>& points, const std::vector<double>& bulges)
{
    std::vector<KcDbPolyline::Vertex> vertices;
    for (size_t i = 0; i < points.size(); ++i)
        vertices.push_back({ points[i].x, points[i].y, i < bulges.size() ? bulges[i] : 0.0 });
    Loop loop;
    loop.type = type & ~kPolyline;
    addVertices(loop, vertices, true);
    return appendLoop(std::move(loop));
}

Kcad::ErrorStatus KcDbHatch::appendLoop(Loop loop)
{
    if (!isClosed(loop))
        return Kcad::eInvalidInput;
    m_data.loops.push_back(std::move(loop));
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbHatch::setHatchStyle(int style)
{
    if (style < 0 || style > 2)
        return Kcad::eInvalidInput;
    m_data.style = style;
    return Kcad::eOk;
}

std::vector<KcDbObjectId> KcDbHatch::getAssocObjIds() const
{
    std::vector<KcDbObjectId> result;
    for (const Loop& loop : m_data.loops)
        for (const KcDbObjectId id : loop.sources)
            if (!id.isNull() && std::find(result.begin(), result.end(), id) == result.end())
                result.push_back(id);
    return result;
}

void KcDbHatch::setAssociative(bool associative)
{
    if (!associative) {
        const std::vector<KcDbObjectId> sources = getAssocObjIds();
        for (Loop& loop : m_data.loops)
            loop.sources.clear();
        if (database())
            for (const KcDbObjectId id : sources)
                if (KcDbWrite<KcDbObject> source(id); source)
                    source->removePersistentReactor(objectId());
    }
    m_data.associative = associative;
    if (associative && database())
        watchSources();
}

void KcDbHatch::watchSources()
{
    for (const KcDbObjectId id : getAssocObjIds()) {
        if (const KcDbRead<KcDbObject> source(id); !source
            || std::find(source->reactors().begin(), source->reactors().end(), objectId())
                != source->reactors().end())
            continue;
        if (KcDbWrite<KcDbObject> source(id); source)
            source->addPersistentReactor(objectId());
    }
}

bool KcDbHatch::followsAny(KcDbObjectId curve) const
{
    return m_data.associative
        && std::any_of(m_data.loops.begin(), m_data.loops.end(), [&](const Loop& loop) {
               return std::find(loop.sources.begin(), loop.sources.end(), curve) != loop.sources.end();
           });
}

bool KcDbHatch::followsChangedCurve() const
{
    if (!m_data.associative || !database())
        return false;
    const std::vector<KcDbObjectId> sources = getAssocObjIds();
    return std::any_of(sources.begin(), sources.end(), [&](KcDbObjectId id) {
        return id.isResident() && database()->undo().hasChanged(*id.stub());
    });
}

void KcDbHatch::subjectModified(const KcDbObject& subject)
{
    if (isErased() || subject.isErased() || !followsAny(subject.objectId()))
        return;
    // Loops that are open at the moment (one of several curves has moved, the others will) stay as they are.
    std::vector<std::pair<size_t, Loop>> changed;
    for (size_t i = 0; i < m_data.loops.size(); ++i) {
        const Loop& loop = m_data.loops[i];
        if (std::find(loop.sources.begin(), loop.sources.end(), subject.objectId()) == loop.sources.end())
            continue;
        Kcad::ErrorStatus status = Kcad::eOk;
        if (auto next = loopAlong(loop.sources, status)) {
            next->type |= loop.type & ~kPolyline;
            if (!sameOutline(*next, loop))
                changed.emplace_back(i, std::move(*next));
        }
    }
    if (changed.empty())
        return;
    // Opened as any change is, so that undo takes it back together with the curve's.
    KcDbWrite<KcDbHatch> self(objectId());
    if (!self)
        return;
    for (auto& [index, loop] : changed)
        self->m_data.loops[index] = std::move(loop);
}

void KcDbHatch::subjectErased(const KcDbObject& subject, bool erased)
{
    if (!erased || isErased() || !followsAny(subject.objectId()))
        return;
    // The loop stays where it was and follows nothing any more.
    KcDbWrite<KcDbHatch> self(objectId());
    if (!self)
        return;
    bool follows = false;
    for (Loop& loop : self->m_data.loops) {
        if (std::find(loop.sources.begin(), loop.sources.end(), subject.objectId()) != loop.sources.end())
            loop.sources.clear();
        follows = follows || !loop.sources.empty();
    }
    self->m_data.associative = follows;
}
