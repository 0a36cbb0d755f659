// Closed outlines in a plane: area, sense, which points lie inside, and the nodes that say nothing.
#pragma once

#include "ge/segment.h"

#include <span>

/// A vertex of a polyline, and the bulge of the piece that leads to the next one.
struct KcGeBulgeVertex2d {
    KcGePoint2d point;
    double bulge = 0.0;
    friend bool operator==(const KcGeBulgeVertex2d&, const KcGeBulgeVertex2d&) = default;
};

/// Where a point lies against a closed outline.
enum class KcGePointRelation {
    Outside,
    OnVertex, ///< within the tolerance of a vertex
    OnOutline, ///< within the tolerance of a piece
    Inside, ///< of an outline that crosses itself: an odd number of times round the point
    Unknown, ///< a coordinate is no number, or the outline has no area
};

/// Where a point lies against a closed outline of pieces of any kind, each starting where the one before it
/// ends; gaps are closed by lines. Exact for lines and arcs, and for other pieces as far as their box or the
/// curve itself can tell.
KcGePointRelation relationToOutline(
    std::span<const KcGeSegment2d> outline, KcGePoint2d point,
    double tolerance = KcGeContext::gTol.equalPoint);

/// The lines and arcs between vertices; pieces without length are left out. A closed chain includes the way
/// back to the first vertex.
std::vector<KcGeSegment2d> segmentsOfVertices(std::span<const KcGeBulgeVertex2d> vertices, bool closed);
/// The vertices of a chain of lines and arcs; a full circle becomes two halves. Of an open chain the last
/// vertex is the last piece's end. Pieces of other kinds count as lines.
std::vector<KcGeBulgeVertex2d> verticesOfSegments(std::span<const KcGeSegment2d> chain, bool closed);

/// A closed outline of lines and arcs; the last vertex leads back to the first.
class KcGePolygon2d {
public:
    KcGePolygon2d() = default;
    explicit KcGePolygon2d(std::vector<KcGeBulgeVertex2d> vertices)
        : m_vertices(std::move(vertices))
    {
    }

    const std::vector<KcGeBulgeVertex2d>& vertices() const { return m_vertices; }
    size_t size() const { return m_vertices.size(); }
    bool isEmpty() const { return m_vertices.empty(); }
    void append(KcGePoint2d point, double bulge = 0.0) { m_vertices.push_back({ point, bulge }); }

    std::vector<KcGeSegment2d> segments() const { return segmentsOfVertices(m_vertices, true); }
    /// Signed: positive when counter-clockwise. Square drawing units.
    double area() const;
    bool isCounterClockwise() const { return area() > 0.0; }
    double perimeter() const;
    KcGeExtents2d extents() const;
    /// The same outline walked the other way, from the same vertex.
    KcGePolygon2d reversed() const;

    KcGePointRelation relation(KcGePoint2d point, double tolerance = KcGeContext::gTol.equalPoint) const;

    /// Takes out vertices that repeat the one before them, and those between two straight pieces that the
    /// way from the vertex before to the vertex after does without: no vertex taken out lies further from
    /// the new outline than the tolerance. The ends of spikes stay. An outline that shrinks to a point keeps
    /// one vertex.
    void compress(double tolerance = KcGeContext::gTol.equalPoint);

private:
    std::vector<KcGeBulgeVertex2d> m_vertices;
};
