// Entities as lines, curves and filled outlines.

#include "ed/pick_geometry.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/hatch.h"
#include "db/polyline.h"
#include "db/raw_entity.h"
#include "db/tables.h"
#include "db/text.h"
#include "db/wipeout.h"

namespace {

// Cells of an array that are looked at, each way.
constexpr int kMostCells = 1000;
// Chords around filled areas leave their curves by up to this share of their size, however small the tolerance.
constexpr double kFinestShare = 1e6;
// A line without ends is drawn this far, in drawing units: beyond any plan, and still exact to a ten
// thousandth.
constexpr double kEndless = 1e11;

template <class T> const T* as(const KcDbEntity& entity)
{
    return entity.isKindOf(T::desc()) ? static_cast<const T*>(&entity) : nullptr;
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

KcEdPickPieces hatchPieces(const KcDbHatch& hatch, double tolerance)
{
    KcEdPickPieces pieces;
    for (const KcDbHatch::Loop& loop : hatch.data().loops) {
        std::vector<KcGePoint2d> points;
        for (const KcGeSegment2d& piece : kcdbPiecesOf(loop)) {
            if (!piece.isFinite())
                continue;
            const KcGeExtents2d box = piece.extents();
            const double size = std::max(box.max.x - box.min.x, box.max.y - box.min.y);
            const std::vector<KcGePoint2d> chords = piece.chords(std::max(tolerance, size / kFinestShare));
            points.insert(points.end(), chords.begin(), chords.end());
        }
        if (points.empty())
            continue;
        points.push_back(points.front());
        pieces.push_back({ toWorld(std::move(points), hatch.data().normal, hatch.data().elevation), true });
    }
    return pieces;
}

/// Runs of lines, and the other pieces one by one.
KcEdPickPieces curvePieces(const KcDbCurve& entity)
{
    KcEdPickPieces pieces;
    bool inRun = false;
    for (const KcGeSegment2d& segment : entity.curve().plan()) {
        if (!segment.isLine()) {
            pieces.push_back({ {}, false, segment });
            inRun = false;
            continue;
        }
        if (!std::exchange(inRun, true))
            pieces.push_back({ { segment.startPoint() }, false });
        pieces.back().points.push_back(segment.endPoint());
    }
    if (!pieces.empty())
        return pieces;
    // Of meshes and of incomplete splines their points are what there is to pick.
    KcEdPickPiece run;
    if (const auto* mesh = as<KcDb2dPolyline>(entity))
        for (const KcDbVertex::Data& vertex : mesh->drawnVertices())
            run.points.push_back(vertex.position.plan());
    if (const auto* spline = as<KcDbSpline>(entity)) {
        const auto& d = spline->data();
        for (const KcGePoint3d p : d.controlPoints.empty() ? d.fitPoints : d.controlPoints)
            run.points.push_back(p.plan());
    }
    return run.points.empty() ? KcEdPickPieces() : KcEdPickPieces{ run };
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
    if (const auto* curve = as<KcDbCurve>(entity))
        return curvePieces(*curve);
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
        const int columns = array ? std::clamp(array->columns, 1, kMostCells) : 1;
        const int rows = array ? std::clamp(array->rows, 1, kMostCells) : 1;
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
                    if (piece.curve)
                        placed.back().curve = piece.curve->transformed(place);
                    if (piece.curve && !placed.back().curve->isFinite())
                        placed.pop_back();
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
