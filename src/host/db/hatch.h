// Hatches: loops of edges filled with a colour, a gradient or families of pattern lines.
#pragma once

#include "db/entity.h"
#include "db/entity_macros.h"
#include "db/polyline.h"
#include "ge/hatch_lines.h"

class KcDbHatch : public KcDbEntity {
    KCRX_DECLARE(KcDbHatch)
public:
    struct LineEdge {
        KcGePoint2d start, end;
        friend bool operator==(const LineEdge&, const LineEdge&) = default;
    };
    struct ArcEdge {
        KcGePoint2d center;
        double radius = 0.0;
        double startAngle = 0.0, endAngle = 0.0; ///< radians; measured clockwise when `counterClockwise` is false
        bool counterClockwise = true;
        friend bool operator==(const ArcEdge&, const ArcEdge&) = default;
    };
    struct EllipseEdge {
        KcGePoint2d center;
        KcGeVector2d majorAxis {1, 0};
        double radiusRatio = 1.0;
        double startAngle = 0.0, endAngle = 0.0; ///< radians; measured clockwise when `counterClockwise` is false
        bool counterClockwise = true;
        friend bool operator==(const EllipseEdge&, const EllipseEdge&) = default;
    };
    struct SplineEdge {
        int degree = 3;
        bool rational = false, periodic = false;
        std::vector<double> knots;
        std::vector<KcGePoint2d> controlPoints;
        std::vector<double> weights;
        std::vector<KcGePoint2d> fitPoints;
        bool hasTangents = false;
        KcGeVector2d startTangent, endTangent;
        friend bool operator==(const SplineEdge&, const SplineEdge&) = default;
    };
    using Edge = std::variant<LineEdge, ArcEdge, EllipseEdge, SplineEdge>;

    struct Loop {
        int type = 0; ///< 1 external, 2 polyline, 4 derived, 8 text box, 16 outermost
        bool hasBulges = false, closed = true; ///< of a polyline loop
        std::vector<KcDbPolyline::Vertex> vertices; ///< of a polyline loop; object coordinates
        std::vector<Edge> edges; ///< of any other loop
        std::vector<KcDbObjectId> sources; ///< the curves that an associative hatch follows
        bool isPolyline() const { return type & 2; }
    };
    /// One family of parallel pattern lines, in the scale and direction in which it is drawn; object coordinates.
    using PatternLine = KcGeHatchFamily;
    struct Data {
        double elevation = 0.0;
        KcGeVector3d normal = KcGeVector3d::kZAxis;
        QString patternName;
        bool solid = false;
        bool associative = false;
        std::vector<Loop> loops;
        int style = 0; ///< 0 odd parity, 1 outermost only, 2 everything
        int patternType = 1; ///< 0 user-defined, 1 predefined, 2 custom
        double patternAngle = 0.0; ///< radians
        double patternScale = 1.0;
        bool doubled = false;
        std::vector<PatternLine> lines;
        double pixelSize = 0.0;
        std::vector<KcGePoint2d> seeds; ///< object coordinates
    };
    KCDB_ENTITY_DATA

    const QString& patternName() const { return m_data.patternName; }
    /// The loops in the plane of the hatch, ready to be filled or measured.
    KcGeFillArea fillArea() const;
    KcGeHatchStyle fillStyle() const;
    /// Area of what is filled, islands taken away as the style says, in square drawing units; nothing when a loop is
    /// open or has no area.
    std::optional<double> getArea() const;
    std::vector<KcDbObjectId> getAssocObjIds() const;
};
