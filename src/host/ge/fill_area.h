// Areas that are filled: closed outlines of lines, arcs, ellipses and splines, and which of them bound the
// filling when they lie one in another.
#pragma once

#include "ge/segment.h"

#include <vector>

/// How outlines inside others are treated: every second ring filled, the outermost ring only, or everything
/// inside the outermost outlines.
enum class KcGeHatchStyle { Normal, Outer, Ignore };

/// A set of closed outlines, sorted by size. Coordinates are kept about an origin near to the outlines, so
/// that the digits of plans far from the drawing's origin are not lost.
class KcGeFillArea {
public:
    /// A closed outline, walked in one direction. Each piece starts where the one before it ended.
    struct Contour {
        double area = 0.0; ///< square drawing units, positive
        KcGeExtents2d box; ///< about the area's origin
        std::vector<KcGeSegment2d> pieces; ///< about the area's origin
        std::vector<KcGePoint2d> chords; ///< points along it, the first one again at the end; for estimates
        int depth = 0; ///< number of outlines that it lies in
        bool closed = true; ///< false: a straight piece was added to close it
    };

    KcGeFillArea() = default;
    /// Chains the pieces of each loop, given in any order and direction, to outlines. Ends that lie within
    /// `KcGeContext::kJoinedEnds` are joined by a straight piece; what stays open is closed by one and marked.
    /// Pieces with values that are not finite are left out, which makes the area unsound.
    explicit KcGeFillArea(const std::vector<std::vector<KcGeSegment2d>>& loops);

    KcGePoint2d origin() const { return m_origin; }
    /// Larger ones first.
    const std::vector<Contour>& contours() const { return m_contours; }
    /// The contours that bound the filling in a style; a point is filled when an odd number of them is round
    /// it.
    std::vector<const Contour*> bounding(KcGeHatchStyle style) const;
    /// The box of all outlines, in drawing coordinates; empty when there are none.
    KcGeExtents2d extents() const;
    /// True when every piece could be used and every loop gave outlines that are closed and have an area.
    bool isSound() const { return m_sound; }
    /// Area of the filling in square drawing units: exact for lines and arcs. 0 when there is none.
    double area(KcGeHatchStyle style) const;

private:
    void addLoop(const std::vector<KcGeSegment2d>& loop);
    void nest();

    KcGePoint2d m_origin;
    std::vector<Contour> m_contours;
    bool m_sound = true;
};
