// Where pieces of a plane meet: crossings, touches, and stretches that they share; and the same of whole
// chains of pieces.
#pragma once

#include "ge/segment.h"

#include <span>

/// A point that two pieces have in common: it lies within the tolerance of both.
struct KcGeCrossing2d {
    KcGePoint2d point;
    /// Parameters in the first and the second piece; outside [0, 1] on an extension.
    double first = 0.0, second = 0.0;
    /// True when the pieces touch there without crossing, as far as the tolerance tells; also where both
    /// begin or end in the same direction.
    bool tangent = false;
};

/// A stretch along which two pieces stay within the tolerance of each other.
struct KcGeOverlap2d {
    double firstFrom = 0.0, firstTo = 0.0; ///< ascending
    double secondFrom = 0.0, secondTo = 0.0; ///< of the same two points; descending where the pieces oppose
    KcGePoint2d start, end;
};

struct KcGeIntersections2d {
    std::vector<KcGeCrossing2d> points; ///< ascending along the first piece
    std::vector<KcGeOverlap2d> overlaps; ///< ascending; no point lies within one of them

    bool isEmpty() const { return points.empty() && overlaps.empty(); }
};

struct KcGeIntersectOptions {
    /// The piece goes on beyond its ends: a line straight, an arc all round its circle, an ellipse all round;
    /// splines do not. Of a chain the first piece goes on before its start and the last behind its end.
    bool extendFirst = false, extendSecond = false;
    double tolerance = KcGeContext::gTol.equalPoint;
};

/// The common points of two pieces of any kind. Roots that lie so near to each other that the pieces stay
/// within the tolerance between them are one touch. An end that lies within the tolerance of the other piece
/// counts as a point of it. Pieces with coordinates that are no numbers have nothing in common with anything;
/// of two lines that coincide and are both extended, the stretch from the first to the last of the four ends
/// is reported.
KcGeIntersections2d
intersect(const KcGeSegment2d& first, const KcGeSegment2d& second, const KcGeIntersectOptions& options = {});

/// Where a spline crosses or touches itself, `first` below `second`; where a closed one meets its start does
/// not count. Empty for other kinds.
std::vector<KcGeCrossing2d>
selfIntersections(const KcGeSegment2d& piece, double tolerance = KcGeContext::gTol.equalPoint);

/// A common point of two chains of pieces, or of a chain with itself.
struct KcGeChainCrossing2d : KcGeCrossing2d {
    size_t firstPiece = 0, secondPiece = 0; ///< the parameters are those in these pieces
};
struct KcGeChainOverlap2d : KcGeOverlap2d {
    /// The pieces in which `firstFrom`, `firstTo`, `secondFrom` and `secondTo` are parameters.
    size_t firstFromPiece = 0, firstToPiece = 0, secondFromPiece = 0, secondToPiece = 0;
};
struct KcGeChainIntersections2d {
    std::vector<KcGeChainCrossing2d> points;
    std::vector<KcGeChainOverlap2d> overlaps;

    bool isEmpty() const { return points.empty() && overlaps.empty(); }
};

/// The common points of two chains, along the first one. A crossing at a vertex, which several pieces know
/// of, is reported once, and overlaps that go on over vertices are one. The time grows with the number of
/// pieces times its logarithm, and with what is found.
KcGeChainIntersections2d intersectChains(
    std::span<const KcGeSegment2d> first, std::span<const KcGeSegment2d> second,
    const KcGeIntersectOptions& options = {});

/// Where a chain crosses, touches or covers itself. Vertices at which one piece goes over into the next, and
/// of a closed chain the last into the first, do not count.
KcGeChainIntersections2d selfIntersections(
    std::span<const KcGeSegment2d> chain, bool closed, double tolerance = KcGeContext::gTol.equalPoint);
