// Simple drawn entities: lines, circles, arcs, ellipses, splines, infinite lines, points, filled triangles and quads.
#pragma once

#include "db/curve.h"
#include "db/entity_macros.h"
#include "ge/spline.h"

class KcDbLine : public KcDbCurve {
    KCRX_DECLARE(KcDbLine)
public:
    struct Data {
        KcGePoint3d start, end; ///< world coordinates
        double thickness = 0.0;
        KcGeVector3d normal = KcGeVector3d::kZAxis;
        friend bool operator==(const Data&, const Data&) = default;
    };
    KCDB_ENTITY_DATA
    KCDB_CURVE(KcDbLine)
    Kcad::ErrorStatus reverseCurve() override;
    void worldDraw(KcGiWorldDraw& draw) const override;
    KcDbLine() = default;
    KcDbLine(KcGePoint3d start, KcGePoint3d end) { m_data.start = start, m_data.end = end; }
};

class KcDbCircle : public KcDbCurve {
    KCRX_DECLARE(KcDbCircle)
public:
    struct Data {
        KcGePoint3d center; ///< object coordinates
        double radius = 0.0;
        double thickness = 0.0;
        KcGeVector3d normal = KcGeVector3d::kZAxis;
        friend bool operator==(const Data&, const Data&) = default;
    };
    KCDB_ENTITY_DATA
    KCDB_CURVE(KcDbCircle)
    void worldDraw(KcGiWorldDraw& draw) const override;
    KcDbCircle() = default;
    KcDbCircle(KcGePoint3d center, double radius) { m_data.center = center, m_data.radius = radius; }
    /// World coordinates.
    KcGePoint3d center() const { return KcGeMatrix3d::planeToWorld(m_data.normal) * m_data.center; }
    double radius() const { return m_data.radius; }
};

class KcDbArc : public KcDbCurve {
    KCRX_DECLARE(KcDbArc)
public:
    struct Data {
        KcGePoint3d center; ///< object coordinates
        double radius = 0.0;
        double startAngle = 0.0, endAngle = 0.0; ///< radians, counter-clockwise from start to end about the normal
        double thickness = 0.0;
        KcGeVector3d normal = KcGeVector3d::kZAxis;
        friend bool operator==(const Data&, const Data&) = default;
    };
    KCDB_ENTITY_DATA
    KCDB_CURVE(KcDbArc)
    void worldDraw(KcGiWorldDraw& draw) const override;
    /// World coordinates.
    KcGePoint3d center() const { return KcGeMatrix3d::planeToWorld(m_data.normal) * m_data.center; }
    double radius() const { return m_data.radius; }
    void setCenter(KcGePoint3d world) { m_data.center = KcGeMatrix3d::worldToPlane(m_data.normal) * world; }
    void setRadius(double radius) { m_data.radius = radius; }
    void setStartAngle(double angle) { m_data.startAngle = angle; }
    void setEndAngle(double angle) { m_data.endAngle = angle; }
};

class KcDbEllipse : public KcDbCurve {
    KCRX_DECLARE(KcDbEllipse)
public:
    struct Data {
        KcGePoint3d center; ///< world coordinates
        KcGeVector3d majorAxis {1, 0, 0}; ///< half the longer axis
        double radiusRatio = 1.0; ///< shorter to longer
        double startParam = 0.0, endParam = kTwoPi; ///< eccentric anomalies, radians
        KcGeVector3d normal = KcGeVector3d::kZAxis;
        friend bool operator==(const Data&, const Data&) = default;
    };
    KCDB_ENTITY_DATA
    KCDB_CURVE(KcDbEllipse)
    Kcad::ErrorStatus reverseCurve() override;
    void worldDraw(KcGiWorldDraw& draw) const override;
};

class KcDbSpline : public KcDbCurve {
    KCRX_DECLARE(KcDbSpline)
public:
    struct Data {
        KcGeVector3d normal = KcGeVector3d::kZAxis;
        int flags = 8; ///< 1 closed, 2 periodic, 4 rational, 8 planar, 16 linear
        int degree = 3;
        double knotTolerance = 1e-7, controlTolerance = 1e-7, fitTolerance = 1e-10;
        bool hasStartTangent = false, hasEndTangent = false;
        KcGeVector3d startTangent, endTangent;
        std::vector<double> knots;
        std::vector<double> weights; ///< empty: all 1
        std::vector<KcGePoint3d> controlPoints; ///< world coordinates
        std::vector<KcGePoint3d> fitPoints;
        friend bool operator==(const Data&, const Data&) = default;
    };
    KCDB_ENTITY_DATA
    KCDB_CURVE(KcDbSpline)
    Kcad::ErrorStatus reverseCurve() override;
    void worldDraw(KcGiWorldDraw& draw) const override;
    /// The point of the curve at a knot value, by de Boor's algorithm; the first control or fit point when the curve
    /// is incomplete.
    KcGePoint3d pointAt(double knot) const;
    /// The curve in world coordinates: as given by control points, else through the fit points. Not valid
    /// (`isValid`) when neither make a curve.
    KcGeNurbsCurve3d nurbs() const;
};

/// A line without ends (XLINE).
class KcDbXline : public KcDbCurve {
    KCRX_DECLARE(KcDbXline)
public:
    struct Data {
        KcGePoint3d basePoint; ///< world coordinates
        KcGeVector3d unitDir {1, 0, 0};
        friend bool operator==(const Data&, const Data&) = default;
    };
    KCDB_ENTITY_DATA
    KCDB_CURVE(KcDbXline)
    Kcad::ErrorStatus reverseCurve() override;
    void worldDraw(KcGiWorldDraw& draw) const override;
    void setBasePoint(KcGePoint3d point) { m_data.basePoint = point; }
    void setUnitDir(KcGeVector3d direction) { m_data.unitDir = direction.normal(); }
};

/// A line with one end (RAY).
class KcDbRay : public KcDbCurve {
    KCRX_DECLARE(KcDbRay)
public:
    using Data = KcDbXline::Data;
    KCDB_ENTITY_DATA
    KCDB_CURVE(KcDbRay)
    void worldDraw(KcGiWorldDraw& draw) const override;
};

class KcDbPoint : public KcDbEntity {
    KCRX_DECLARE(KcDbPoint)
public:
    struct Data {
        KcGePoint3d position; ///< world coordinates
        double thickness = 0.0;
        KcGeVector3d normal = KcGeVector3d::kZAxis;
        double xAngle = 0.0; ///< radians
    };
    KCDB_ENTITY_DATA
    void worldDraw(KcGiWorldDraw& draw) const override;
};

/// A filled triangle or quadrilateral (SOLID, TRACE).
class KcDbSolid : public KcDbEntity {
    KCRX_DECLARE(KcDbSolid)
public:
    struct Data {
        KcGePoint3d corners[4]; ///< object coordinates; the third and fourth are exchanged, as the format has it
        double thickness = 0.0;
        KcGeVector3d normal = KcGeVector3d::kZAxis;
    };
    KCDB_ENTITY_DATA
    void worldDraw(KcGiWorldDraw& draw) const override;
};

class KcDbTrace : public KcDbSolid {
    KCRX_DECLARE(KcDbTrace)
};

/// A triangle or quadrilateral in space (3DFACE).
class KcDbFace : public KcDbEntity {
    KCRX_DECLARE(KcDbFace)
public:
    struct Data {
        KcGePoint3d corners[4]; ///< world coordinates, in order
        int hiddenEdges = 0; ///< a bit for each edge
    };
    KCDB_ENTITY_DATA
    void worldDraw(KcGiWorldDraw& draw) const override;
};
