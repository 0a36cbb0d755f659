// Hatches: loops of edges filled with a colour, a gradient or families of pattern lines.
#pragma once

#include "db/entity.h"
#include "db/entity_macros.h"
#include "db/polyline.h"

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
    /// One family of parallel pattern lines, in the scale and direction in which it is drawn.
    struct PatternLine {
        double angle = 0.0; ///< radians
        KcGePoint2d base;
        KcGeVector2d offset;
        std::vector<double> dashes;
        friend bool operator==(const PatternLine&, const PatternLine&) = default;
    };
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
    /// Area of the loops, islands taken away by the even-odd rule, in square drawing units; nothing when a loop is
    /// open or has no area.
    std::optional<double> getArea() const;
    std::vector<KcDbObjectId> getAssocObjIds() const;
};
