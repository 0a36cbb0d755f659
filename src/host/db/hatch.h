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
        friend bool operator==(const Loop&, const Loop&) = default;
    };
    /// One family of parallel pattern lines, in the scale and direction in which it is drawn; object coordinates.
    using PatternLine = KcGeHatchFamily;
    /// What fills a hatch with colours that run into each other.
    struct Gradient {
        struct Stop {
            double at = 0.0; ///< 0 at one end, 1 at the other
            int index = 0; ///< index colour; 0: none given
            int32_t rgb = -1; ///< 0xRRGGBB; -1: none given
            friend bool operator==(const Stop&, const Stop&) = default;
        };
        bool present = false; ///< the file has its groups, used or not
        bool filled = false; ///< used instead of a solid fill
        int reserved = 0;
        double angle = 0.0; ///< radians
        double shift = 0.0; ///< 0 centred, 1 moved to the upper left
        bool oneColor = false; ///< the second one is a tint of the first
        double tint = 0.0; ///< 0 black to 1 white
        std::vector<Stop> stops;
        QString name; ///< LINEAR, CYLINDER, INVCYLINDER, SPHERICAL, …
        friend bool operator==(const Gradient&, const Gradient&) = default;
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
        Gradient gradient;
        std::optional<KcGePoint2d> origin; ///< set since it was read; see `originPoint`
    };
    KCDB_ENTITY_DATA
    /// Fill, gradient or pattern lines on the background colour. Lines closer than can be seen become an even
    /// tone; a pattern of too many dashes is drawn in part, and the sink told.
    void worldDraw(KcGiWorldDraw& draw) const override;

    enum PatternType { kUserDefined = 0, kPreDefined = 1, kCustomDefined = 2 };
    enum LoopType { kDefault = 0, kExternal = 1, kPolyline = 2, kDerived = 4, kTextbox = 8, kOutermost = 16 };

    // The pattern. Where pattern lines exist, setters of scale, angle and origin change them along, so that a
    // hatch whose pattern no file defines can be adjusted, too.

    const QString& patternName() const { return m_data.patternName; }
    PatternType patternType() const { return PatternType(m_data.patternType); }
    bool isSolidFill() const { return m_data.solid; }
    bool isGradient() const { return m_data.gradient.filled; }
    /// Takes a new pattern (type 0 user-defined, 1 predefined, 2 custom-defined) and lets go of the old one's
    /// lines; `evaluateHatch` makes the new ones. "SOLID" fills. eInvalidInput for another type or no name.
    Kcad::ErrorStatus setPattern(int type, const QString& name);
    double patternScale() const { return m_data.patternScale; }
    /// eInvalidInput unless positive.
    Kcad::ErrorStatus setPatternScale(double scale);
    /// Radians, in the plane of the hatch.
    double patternAngle() const { return m_data.patternAngle; }
    Kcad::ErrorStatus setPatternAngle(double angle);
    /// The point in which the pattern is anchored, in object coordinates; kept as extended data.
    KcGePoint2d originPoint() const;
    /// A hatch that is in no drawing yet needs the database to keep the point, not to move the lines.
    Kcad::ErrorStatus setOriginPoint(KcGePoint2d origin, KcDbDatabase* database = nullptr);
    /// Makes the pattern lines from the pattern's definition; lines that exist stay. A pattern that no file
    /// defines gives eKeyNotFound and leaves all as it is. Predefined patterns have the size that the drawing's
    /// units ask for; `database` is the drawing of a hatch that is in none yet.
    Kcad::ErrorStatus evaluateHatch(const KcDbDatabase* database = nullptr);
    /// The lines that are drawn: its own, or those of the definition where a file brought none.
    std::vector<PatternLine> drawnLines() const;
    std::optional<KcCmColor> backgroundColor() const;

    // Loops.

    int hatchStyle() const { return m_data.style; }
    /// 0 every second ring, 1 the outermost, 2 everything.
    Kcad::ErrorStatus setHatchStyle(int style);
    double elevation() const { return m_data.elevation; }
    void setElevation(double elevation) { m_data.elevation = elevation; }
    KcGeVector3d normal() const { return m_data.normal; }
    void setNormal(KcGeVector3d normal) { m_data.normal = normal; }
    size_t numLoops() const { return m_data.loops.size(); }
    /// A loop along curves of a drawing, seen in the plane of the hatch; an associative hatch goes on following
    /// them. eNotThatKindOfClass for what is no curve, eInvalidInput when they do not close; nothing is added
    /// then.
    Kcad::ErrorStatus appendLoop(int type, const std::vector<KcDbObjectId>& curves);
    /// A polyline loop; object coordinates. Bulges may be fewer than points.
    Kcad::ErrorStatus
    appendLoop(int type, const std::vector<KcGePoint2d>& points, const std::vector<double>& bulges = {});
    /// eInvalidInput when it does not close.
    Kcad::ErrorStatus appendLoop(Loop loop);

    bool associative() const { return m_data.associative; }
    /// An associative hatch in a drawing watches its curves; one that is no longer lets go of them.
    void setAssociative(bool associative);
    /// Makes the hatch, which must be in a drawing, a persistent reactor of the curves that its loops follow.
    void watchSources();
    void subjectModified(const KcDbObject& subject) override;
    void subjectErased(const KcDbObject& subject, bool erased) override;
    /// The loops in the plane of the hatch, ready to be filled or measured.
    KcGeFillArea fillArea() const;
    KcGeHatchStyle fillStyle() const;
    /// Area of what is filled, islands taken away as the style says, in square drawing units; nothing when a loop is
    /// open or has no area.
    std::optional<double> getArea() const;
    std::vector<KcDbObjectId> getAssocObjIds() const;
    /// The outlines as curves that are in no drawing: a circle for each full one, a closed polyline for every
    /// other, arcs kept as arcs, ellipses and splines as fine runs of arcs. Larger ones first; loops that are open are
    /// closed by a line.
    std::vector<std::unique_ptr<KcDbCurve>> boundaryCurves() const;

private:
    std::optional<Loop> loopAlong(const std::vector<KcDbObjectId>& curves, Kcad::ErrorStatus& status) const;
    bool followsAny(KcDbObjectId curve) const;
    bool followsChangedCurve() const;
    void moveOrigin(KcGePoint2d origin);
};

/// A loop's image under the way from its plane to another; arcs become elliptic where it scales unevenly.
void kcdbTransformLoop(KcDbHatch::Loop& loop, const struct KcDbPlaneTransform& plane);
/// The pieces of a loop in the plane of the hatch.
std::vector<KcGeSegment2d> kcdbPiecesOf(const KcDbHatch::Loop& loop);
/// An arc of an ellipse in the plane Z = 0 as an edge.
KcDbHatch::EllipseEdge kcdbEllipseEdge(const KcGeEllipArc3d& arc);
