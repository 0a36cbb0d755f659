// The pieces that the region search works on: lines and arcs up to half a turn held flat, and stretches of ellipses and
// splines that rise or fall steadily in x and in y, so that none crosses itself.
#pragma once

#include "ge/region_cubic.h"
#include "ge/region_tolerances.h"
#include "ge/segment.h"

#include <cstdint>
#include <vector>

namespace kcge {

/// One piece; its parameter runs from 0 to 1 (along the angle of arcs, along the segment's own parameter of others).
struct RegionPiece {
    enum class Kind : uint8_t { Line, Arc, Cubic, Smooth };
    bool isSmooth() const { return kind >= Kind::Cubic; }
    static constexpr uint32_t kNoSource = ~uint32_t(0);

    KcGePoint2d start, end;
    KcGePoint2d center; ///< of an arc; of a smooth piece the parameters in its source at which it starts and ends
    double radius = 0.0;
    double startAngle = 0.0, sweep = 0.0; ///< of an arc, counter-clockwise: the sweep lies in (0, π]
    uint32_t source = kNoSource; ///< number of the segment it was cut from
    uint32_t smooth = 0; ///< of a smooth piece: its place among those of its kind in its collection
    Kind kind = Kind::Line;
};

/// The pieces of all curves, in coordinates about an origin of their own.
class RegionPieces {
public:
    RegionPieces(KcGePoint2d origin, double tolerance)
        : m_origin(origin)
        , m_tolerance(tolerance)
    {
    }

    /// Takes a segment in, cut as needed. Specks are left out.
    void add(const KcGeSegment2d& segment, uint32_t source);
    /// Adds a piece given in coordinates about the origin.
    void addLocal(const KcGeSegment2d& segment, uint32_t source);
    /// The same uncut: an arc up to half a turn, or a stretch of an ellipse up to a quarter.
    void addWhole(const KcGeSegment2d& segment, uint32_t source);
    /// Puts the pieces into the order of a curve that fills the plane.
    void sortAlongCurve();

    /// Room that is not used costs address space only.
    void reserve(size_t pieces) { m_pieces.reserve(pieces); }
    size_t size() const { return m_pieces.size(); }
    const RegionPiece& operator[](size_t i) const { return m_pieces[i]; }
    KcGePoint2d origin() const { return m_origin; }
    double tolerance() const { return m_tolerance; }

    KcGePoint2d at(const RegionPiece& piece, double t) const;
    KcGeVector2d derivative(const RegionPiece& piece, double t) const;
    KcGeExtents2d extents(const RegionPiece& piece, double from = 0.0, double to = 1.0) const;
    double length(const RegionPiece& piece, double from, double to) const;
    /// Half the integral of x·dy − y·dx from one parameter to another, about a point.
    double areaAbout(const RegionPiece& piece, double from, double to, KcGePoint2d about) const;
    /// The parameter between two where the straight distance from the first reaches `distance`; the second when it does
    /// not.
    double paramAtDistance(const RegionPiece& piece, double from, double to, double distance) const;
    /// The nearest point's parameter.
    double closest(const RegionPiece& piece, KcGePoint2d point, double& distance) const;
    /// The piece, or a stretch of it, about the origin.
    KcGeSegment2d segment(const RegionPiece& piece, double from = 0.0, double to = 1.0) const;

    struct Common {
        double first, second; ///< parameters
    };
    /// Appends where a piece and one of the same or another collection cross or touch; an end that lies on the other
    /// piece counts, two ends that meet need not.
    void common(
        const RegionPiece& a, const RegionPiece& b, const RegionPieces& ofB, std::vector<Common>& result) const;

private:
    void addArc(const KcGeCircArc2d& arc, KcGePoint2d start, KcGePoint2d end, uint32_t source);
    void addSmooth(const KcGeSegment2d& segment, uint32_t source);
    void appendSmooth(KcGeSegment2d part, double from, double to, uint32_t source);
    bool isOnArc(const RegionPiece& arc, KcGePoint2d point, double& t) const;
    void endsOn(const RegionPiece& a, const RegionPiece& b, const RegionPieces& ofB, bool swapped,
        std::vector<Common>& result) const;
    void lineLine(const RegionPiece& a, const RegionPiece& b, std::vector<Common>& result) const;
    void lineArc(const RegionPiece& line, const RegionPiece& arc, bool swapped, std::vector<Common>& result) const;
    void arcArc(const RegionPiece& a, const RegionPiece& b, std::vector<Common>& result) const;
    void cubicLine(const RegionPiece& cubic, const RegionPiece& line, const RegionPieces& ofCubic, bool swapped,
        std::vector<Common>& result) const;
    void cubicArc(const RegionPiece& cubic, const RegionPiece& arc, const RegionPieces& ofCubic, bool swapped,
        std::vector<Common>& result) const;
    void cubicCubic(
        const RegionPiece& a, const RegionPiece& b, const RegionPieces& ofB, std::vector<Common>& result) const;
    void general(
        const RegionPiece& a, const RegionPiece& b, const RegionPieces& ofB, std::vector<Common>& result) const;

    KcGePoint2d m_origin;
    double m_tolerance;
    std::vector<RegionPiece> m_pieces;
    std::vector<KcGeSegment2d> m_smooth; ///< the smooth ones that are no cubics
    std::vector<Cubic> m_cubics;
};

} // namespace kcge
