// Polylines: lightweight ones, and the old-style 2D and 3D ones whose vertices are objects of their own.
#pragma once

#include "db/curves.h"

class KcDbPolyline : public KcDbCurve {
    KCRX_DECLARE(KcDbPolyline)
public:
    struct Vertex {
        double x = 0.0, y = 0.0; ///< object coordinates
        double bulge = 0.0; ///< tangent of a quarter of the included angle of the arc to the next vertex
        double startWidth = 0.0, endWidth = 0.0;
        friend bool operator==(const Vertex&, const Vertex&) = default;
    };
    struct Data {
        std::vector<Vertex> vertices;
        int flags = 0; ///< 1 closed, 128 line types run on
        double constantWidth = 0.0;
        double elevation = 0.0;
        double thickness = 0.0;
        KcGeVector3d normal = KcGeVector3d::kZAxis;
        friend bool operator==(const Data&, const Data&) = default;
    };
    KCDB_ENTITY_DATA
    KCDB_CURVE(KcDbPolyline)
    Kcad::ErrorStatus reverseCurve() override;
    void worldDraw(KcGiWorldDraw& draw) const override;

    size_t numVerts() const { return m_data.vertices.size(); }
    bool isClosed() const override { return m_data.flags & 1; }
    void setClosed(bool closed) { m_data.flags = closed ? m_data.flags | 1 : m_data.flags & ~1; }
    KcGePoint2d getPointAt(size_t index) const { return {m_data.vertices[index].x, m_data.vertices[index].y}; }
    /// The vertex in world coordinates.
    KcGePoint3d worldPointAt(size_t index) const;
    double getBulgeAt(size_t index) const { return m_data.vertices[index].bulge; }
    void setBulgeAt(size_t index, double bulge) { m_data.vertices[index].bulge = bulge; }
    void addVertex(KcGePoint2d point, double bulge = 0.0) { m_data.vertices.push_back({point.x, point.y, bulge}); }
    /// Signed area, counter-clockwise positive, an open outline closed by a line; arcs counted exactly.
    double area() const;
};

/// A vertex of an old-style polyline.
class KcDbVertex : public KcDbEntity {
    KCRX_DECLARE(KcDbVertex)
public:
    struct Data {
        KcGePoint3d position; ///< object coordinates in 2D polylines, world coordinates otherwise
        double startWidth = -1.0, endWidth = -1.0; ///< -1: the polyline's
        double bulge = 0.0;
        double tangent = 0.0; ///< radians
        int flags = 0; ///< 1 added by curve fitting, 2 tangent given, 8 spline, 16 frame control point, 32 3D, 64 mesh
    };
    KCDB_ENTITY_DATA
    void worldDraw(KcGiWorldDraw& draw) const override;
};

/// The mark after the last attribute or vertex.
class KcDbSequenceEnd : public KcDbEntity {
    KCRX_DECLARE(KcDbSequenceEnd)
public:
    KcGeExtents3d geomExtents() const override { return {}; }
    void worldDraw(KcGiWorldDraw& draw) const override;
    Kcad::ErrorStatus transformBy(const KcGeMatrix3d&) override { return Kcad::eOk; }
};

/// Old-style polyline: in a plane, in space, or a mesh, as its flags say.
class KcDb2dPolyline : public KcDbCurve {
    KCRX_DECLARE(KcDb2dPolyline)
public:
    struct Data {
        double elevation = 0.0;
        double thickness = 0.0;
        int flags = 0; ///< 1 closed, 2 curve fit, 4 spline fit, 8 3D, 16 mesh, 32 closed in N, 64 polyface mesh, 128
        double startWidth = 0.0, endWidth = 0.0;
        int countM = 0, countN = 0, densityM = 0, densityN = 0;
        int curveType = 0; ///< 0 none, 5 quadratic, 6 cubic, 8 Bézier
        KcGeVector3d normal = KcGeVector3d::kZAxis;
        std::vector<KcDbObjectId> vertices;
        KcDbObjectId sequenceEnd;
    };
    KCDB_ENTITY_DATA
    Kcad::ErrorStatus reverseCurve() override;
    void worldDraw(KcGiWorldDraw& draw) const override;
    std::vector<KcDbObjectId> subObjects() const override;
    bool is3d() const { return m_data.flags & 8; }
    bool isClosed() const override { return m_data.flags & 1; }
    bool isMesh() const { return m_data.flags & (16 | 64); }

    /// True for a vertex that has a place in the drawing: faces of meshes have none, and the control points of a
    /// fitted curve are not drawn.
    bool isDrawn(const KcDbVertex& vertex) const;
    std::vector<KcDbVertex::Data> drawnVertices() const;

protected:
    KcGeCurve3d makeCurve() const override;
};
