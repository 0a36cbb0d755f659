// Parallel curves: of chains of lines and arcs, with everything cut away that comes too near to the chain,
// and of ellipses and splines within a tolerance.
#pragma once

#include "ge/curve.h"

#include <span>

/// What fills the gap that opens on the outer side of a corner.
enum class KcGeOffsetCorner {
    Extended, ///< both pieces go on along their carriers until they meet; an arc where that would be too far
    Round, ///< an arc about the corner
};

struct KcGeOffsetOptions {
    KcGeOffsetCorner corners = KcGeOffsetCorner::Extended;
    /// How far the parallel of an ellipse or spline may be off, in drawing units; 0: a share of its size.
    double fitTolerance = 0.0;
};

/// A chain of lines and arcs, each starting where the one before it ends.
struct KcGeChain2d {
    std::vector<KcGeSegment2d> pieces;
    bool closed = false; ///< the last piece ends where the first one starts
};

/// The parallel of a chain at a signed distance in drawing units: positive to the right of its direction,
/// negative to the left, so that counter-clockwise arcs grow at positive distances.
///
/// No point of the result lies nearer to the chain than the distance; where the chain comes near to itself or
/// turns more sharply than the distance allows, the result falls into several chains, or there is none. Arcs
/// stay arcs, a closed chain gives closed ones, directions are kept. At distances below the point tolerance
/// the chain itself comes back. Pieces without length are passed over; ellipses and splines are replaced by
/// arcs within the fit tolerance. Nothing when a coordinate or the distance is no finite number.
///
/// Every raw parallel piece is cut where it meets another, and each cut piece is kept or dropped by the
/// distance of its middle from the chain (after X.-Z. Liu et al., An offset algorithm for polyline curves,
/// Computers in Industry 58, 2007). The time is nearly proportional to the number of pieces.
std::optional<std::vector<KcGeChain2d>> offsetChain(
    std::span<const KcGeSegment2d> chain, bool closed, double distance,
    const KcGeOffsetOptions& options = {});

/// The parallels of a whole curve in its plane, seen against its normal, as `offsetChain` has it: lines,
/// arcs and polylines as such, ellipses and splines as splines, lines without ends too. Nothing for curves of
/// no plane, and for values that are no numbers.
std::optional<std::vector<KcGeCurve3d>>
offsetCurve(const KcGeCurve3d& curve, double distance, const KcGeOffsetOptions& options = {});
