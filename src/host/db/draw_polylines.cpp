// How polylines are drawn: lines and arcs, or filled bands where they have widths.

#include "db/database.h"
#include "db/polyline.h"
#include "ge/arc.h"
#include "gi/sink/world_draw.h"

namespace {

constexpr int kLineTypeRunsOn = 128; // bit of a polyline's flags
constexpr double kBandSagitta = 1e-4; // of the radius: wide arcs look round at any size

struct Piece {
    KcGePoint2d start, end;
    double bulge = 0.0;
    double startWidth = 0.0, endWidth = 0.0;
    bool isWide() const { return startWidth > 0.0 || endWidth > 0.0; }
};

/// From the polyline's plane at its elevation to world coordinates.
KcGeMatrix3d planeAt(KcGeVector3d normal, double elevation)
{
    return KcGeMatrix3d::planeToWorld(normal) * KcGeMatrix3d::translation({ 0, 0, elevation });
}

KcGeEllipArc3d inSpace(const KcGeCircArc2d& arc, const KcGeMatrix3d& plane)
{
    return { plane * KcGePoint3d{ arc.center().x, arc.center().y, 0.0 }, plane.axis(0) * arc.radius(),
             plane.axis(1) * arc.radius(), arc.startAngle(), arc.sweep() };
}

KcGePoint3d inSpace(KcGePoint2d p, const KcGeMatrix3d& plane)
{
    return plane * KcGePoint3d{ p.x, p.y, 0.0 };
}

// A band of even or tapering width along one piece.
void fillBand(KcGiWorldDraw& draw, const Piece& piece, const KcGeMatrix3d& plane)
{
    KcGiPath path;
    const auto arc = KcGeCircArc2d::fromBulge(piece.start, piece.end, piece.bulge);
    if (!arc) {
        const KcGeVector2d along = piece.end - piece.start;
        if (!(along.length() > 0.0))
            return;
        const KcGeVector2d across{ -along.y / along.length(), along.x / along.length() };
        path.polyline(
            { inSpace(piece.start + across * (piece.startWidth / 2), plane),
              inSpace(piece.end + across * (piece.endWidth / 2), plane),
              inSpace(piece.end - across * (piece.endWidth / 2), plane),
              inSpace(piece.start - across * (piece.startWidth / 2), plane) },
            true);
        return draw.fill(path);
    }
    const auto pointAt = [&](double fraction, double side) {
        const double width = piece.startWidth + (piece.endWidth - piece.startWidth) * fraction;
        const double angle = arc->startAngle() + arc->sweep() * fraction;
        const double radius = arc->radius() + side * width / 2;
        return inSpace(
            arc->center() + KcGeVector2d{ std::cos(angle) * radius, std::sin(angle) * radius }, plane);
    };
    const int steps = kcgiChords(
        arc->radius() + std::max(piece.startWidth, piece.endWidth) / 2, arc->sweep(),
        std::max(draw.pixel() / 4, arc->radius() * kBandSagitta));
    std::vector<KcGePoint3d> outline;
    for (int i = 0; i <= steps; ++i)
        outline.push_back(pointAt(double(i) / steps, 1.0));
    for (int i = steps; i >= 0; --i)
        outline.push_back(pointAt(double(i) / steps, -1.0));
    path.polyline(outline, true);
    draw.fill(path);
}

// Runs of thin pieces are stroked as one, so that line types go on; wide ones are filled.
void drawPieces(
    KcGiWorldDraw& draw, const std::vector<Piece>& pieces, const KcGeMatrix3d& plane, bool closed,
    bool throughVertices)
{
    KcGiPath path;
    const bool allThin
        = std::none_of(pieces.begin(), pieces.end(), [](const Piece& p) { return p.isWide(); });
    bool open = false;
    for (const Piece& piece : pieces) {
        if (piece.isWide()) {
            fillBand(draw, piece, plane);
            open = false;
            continue;
        }
        if (!std::exchange(open, true))
            path.moveTo(inSpace(piece.start, plane));
        if (const auto arc = KcGeCircArc2d::fromBulge(piece.start, piece.end, piece.bulge))
            path.arc(inSpace(*arc, plane));
        else
            path.lineTo(inSpace(piece.end, plane));
    }
    if (closed && allThin && open)
        path.close();
    if (!path.isEmpty())
        draw.stroke(path, { throughVertices });
}

// The edges of a polyface mesh. Its faces are vertices without a place; the numbers of their corners, counted
// from 1 and negative where the edge that follows is hidden, stay as the file holds them.
void drawFaces(KcGiWorldDraw& draw, const std::vector<KcDbObjectId>& vertices)
{
    constexpr int kPlaced = 64, kFirstCorner = 71, kCorners = 4;
    std::vector<KcGePoint3d> places;
    for (const KcDbObjectId id : vertices) {
        const KcDbRead<KcDbVertex> vertex(id);
        if (!vertex)
            continue;
        if (vertex->data().flags & kPlaced) {
            places.push_back(vertex->data().position);
            continue;
        }
        std::vector<int64_t> corners;
        if (const KcDbDatabase* database = vertex->database(); database && database->file())
            for (const KcDbTypedValue& value : database->file()->values(*vertex))
                if (value.code >= kFirstCorner && value.code < kFirstCorner + kCorners
                    && value.integer() != 0)
                    corners.push_back(value.integer());
        for (size_t i = 0; i < corners.size(); ++i) {
            const auto from = size_t(std::abs(corners[i])),
                       to = size_t(std::abs(corners[(i + 1) % corners.size()]));
            if (corners[i] > 0 && from <= places.size() && to <= places.size())
                draw.line(places[from - 1], places[to - 1]);
        }
    }
}

} // namespace

void KcDbPolyline::worldDraw(KcGiWorldDraw& draw) const
{
    std::vector<Piece> pieces;
    const size_t count = m_data.vertices.size(),
                 last = isClosed() ? count : count - std::min<size_t>(count, 1);
    pieces.reserve(last);
    for (size_t i = 0; i < last; ++i) {
        const Vertex& a = m_data.vertices[i];
        const Vertex& b = m_data.vertices[(i + 1) % count];
        const bool even = m_data.constantWidth > 0.0;
        pieces.push_back({ { a.x, a.y },
                           { b.x, b.y },
                           a.bulge,
                           even ? m_data.constantWidth : a.startWidth,
                           even ? m_data.constantWidth : a.endWidth });
    }
    drawPieces(
        draw, pieces, planeAt(m_data.normal, m_data.elevation), isClosed(), m_data.flags & kLineTypeRunsOn);
}

void KcDbVertex::worldDraw(KcGiWorldDraw&) const
{
    // The polyline draws.
}

void KcDbSequenceEnd::worldDraw(KcGiWorldDraw&) const
{
    // A mark without a shape.
}

void KcDb2dPolyline::worldDraw(KcGiWorldDraw& draw) const
{
    constexpr int kControlPoint = 16, kFaceRecord = 128, kSplineFit = 4;
    // A fitted mesh shows its surface, not the net of control points.
    const bool isFitted = m_data.flags & kSplineFit;
    const int countM = isFitted ? m_data.densityM : m_data.countM,
              countN = isFitted ? m_data.densityN : m_data.countN;
    std::vector<KcDbVertex::Data> vertices;
    std::vector<KcGePoint3d> mesh;
    for (const KcDbObjectId id : m_data.vertices) {
        const KcDbRead<KcDbVertex> vertex(id);
        if (!vertex)
            continue;
        if (isMesh() && !(isFitted && (vertex->data().flags & kControlPoint)))
            mesh.push_back(vertex->data().position);
        else if (!(vertex->data().flags & kControlPoint) || (vertex->data().flags & kFaceRecord))
            vertices.push_back(vertex->data());
    }
    if (isMesh()) {
        const bool grid = (m_data.flags & 16) && countM > 0 && countN > 0
            && size_t(countM) * size_t(countN) <= mesh.size();
        if (!grid)
            return drawFaces(draw, m_data.vertices);
        const auto at = [&](int m, int n) { return mesh[size_t(m) * countN + n]; };
        for (int m = 0; m < countM; ++m) {
            KcGiPath row;
            for (int n = 0; n < countN; ++n)
                n ? row.lineTo(at(m, n)) : row.moveTo(at(m, n));
            if (m_data.flags & 32)
                row.close();
            draw.stroke(row);
        }
        for (int n = 0; n < countN; ++n) {
            KcGiPath column;
            for (int m = 0; m < countM; ++m)
                m ? column.lineTo(at(m, n)) : column.moveTo(at(m, n));
            if (m_data.flags & 1)
                column.close();
            draw.stroke(column);
        }
        return;
    }
    const size_t count = vertices.size();
    if (is3d()) {
        KcGiPath path;
        std::vector<KcGePoint3d> points;
        for (const auto& vertex : vertices)
            points.push_back(vertex.position);
        path.polyline(points, isClosed());
        return draw.stroke(path, { bool(m_data.flags & kLineTypeRunsOn) });
    }
    std::vector<Piece> pieces;
    const size_t last = isClosed() ? count : count - std::min<size_t>(count, 1);
    for (size_t i = 0; i < last; ++i) {
        const KcDbVertex::Data& a = vertices[i];
        const KcDbVertex::Data& b = vertices[(i + 1) % count];
        pieces.push_back({ { a.position.x, a.position.y },
                           { b.position.x, b.position.y },
                           a.bulge,
                           a.startWidth >= 0.0 ? a.startWidth : m_data.startWidth,
                           a.endWidth >= 0.0 ? a.endWidth : m_data.endWidth });
    }
    drawPieces(
        draw, pieces, planeAt(m_data.normal, m_data.elevation), isClosed(), m_data.flags & kLineTypeRunsOn);
}
