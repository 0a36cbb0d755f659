// Closed regions from loose curves: every bounded face of the net that lines, arcs, ellipses and splines form.
#pragma once

#include "ge/region_tolerances.h"
#include "ge/segment.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

struct KcGeRegionOptions {
    KcGeRegionTolerances tolerances;
    /// Gaps up to this are bridged, in drawing units, each end going on along its own curve (splines straight ahead);
    /// 0: none. Free ends meet each other before they go on to a curve further off. An end that stands out over a curve
    /// by no more than this stays as it is.
    double bridge = 0.0;
    /// Also find the free ends that are left (`freeEnds`).
    bool reportFreeEnds = false;
    /// Told now and then which part of the work is done, 0 to 1; false cancels.
    std::function<bool(double)> progress;
};

/// The regions of one set of segments. Cuts the segments where they meet, drops copies and what overlaps, bridges gaps,
/// and traces the faces; slivers, narrower on average than a few tolerances, are left out. Outlines keep arcs as arcs,
/// ellipses and splines as what they are. Segments with coordinates that are no numbers are passed over. The tolerance
/// grows with the spacing of numbers where coordinates are so large that it must.
/// Time and memory grow with the number of segments, times its logarithm, and with the number of crossings.
class KcGeRegionSearch {
public:
    explicit KcGeRegionSearch(std::span<const KcGeSegment2d> segments, const KcGeRegionOptions& options = {});
    ~KcGeRegionSearch();
    KcGeRegionSearch(KcGeRegionSearch&&) noexcept;
    KcGeRegionSearch& operator=(KcGeRegionSearch&&) noexcept;

    static constexpr uint32_t kNone = ~uint32_t(0);

    /// True when the callback stopped the search; there are no regions then.
    bool wasCancelled() const;
    /// Regions are numbered 0 … size − 1.
    size_t size() const;
    /// Counter-clockwise, pieces in order, each beginning where the one before it ends (splines and ellipses within the
    /// tolerance of nodes). Never crosses itself; two parts of it may share points.
    std::vector<KcGeSegment2d> outline(size_t region) const;
    /// What the outline holds, islands included; square drawing units.
    double area(size_t region) const;
    /// Of the outline; ellipses and splines by chords, which is near enough to tell slivers.
    double length(size_t region) const;
    /// The region in which this one lies directly; `kNone` when there is none.
    uint32_t parent(size_t region) const;
    /// For each region those that lie directly in it, neighbours of each other included; ascending.
    std::vector<std::vector<uint32_t>> islands() const;
    /// Regions that are wholly made up of the regions in them: nothing is left of them but a sliver.
    std::vector<uint32_t> fullRegions() const;
    /// How many pieces were put in to bridge gaps.
    size_t bridges() const;

    struct FreeEnd {
        KcGePoint2d point;
        uint32_t segment = 0; ///< number of the segment that ends here
        double distance = 0.0; ///< to the nearest other curve; infinite when there is none
        bool standsOut = false; ///< its curve crosses or touches another one before it ends here
    };
    /// Ends that met nothing, gaps bridged before; empty unless asked for.
    const std::vector<FreeEnd>& freeEnds() const;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

/// Drops segments that are copies of earlier ones, or lie on one of them from end to end. Keeps the order.
void removeCopies(std::vector<KcGeSegment2d>& segments, const KcGeRegionTolerances& tolerances = {});
/// Cuts segments where they cross, touch or overlap themselves or each other: those from number `first` on against all.
/// The parts take their segment's place.
void splitAtMeetings(
    std::vector<KcGeSegment2d>& segments, size_t first = 0, const KcGeRegionTolerances& tolerances = {});
/// Appends what bridges gaps of up to a distance, as `KcGeRegionOptions::bridge` says; how many were appended. The
/// segments need not be cut before.
size_t
bridgeFreeEnds(std::vector<KcGeSegment2d>& segments, double distance, const KcGeRegionTolerances& tolerances = {});
