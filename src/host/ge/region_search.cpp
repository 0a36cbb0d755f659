// The steps of the region search in their order.

#include "ge/region_search.h"

#include "ge/region_faces.h"
#include "ge/region_gaps.h"

using kcge::RegionEdge;
using kcge::RegionFaces;
using kcge::RegionMonitor;
using kcge::RegionNet;
using kcge::RegionPiece;
using kcge::RegionPieces;

namespace {

/// A point amid the curves: subtracted from all coordinates it leaves them small where drawings lie far out. The
/// median, so that a stray curve does not count.
KcGePoint2d originFor(std::span<const KcGeSegment2d> segments)
{
    std::vector<double> x, y;
    const size_t step = segments.size() / 1000 + 1; // a sample is enough
    for (size_t i = 0; i < segments.size(); i += step) {
        const KcGePoint2d p = segments[i].startPoint();
        if (std::isfinite(p.x) && std::isfinite(p.y)) {
            x.push_back(p.x);
            y.push_back(p.y);
        }
    }
    if (x.empty())
        return {};
    const auto middle = [](std::vector<double>& values) {
        std::nth_element(values.begin(), values.begin() + long(values.size() / 2), values.end());
        return values[values.size() / 2];
    };
    return { middle(x), middle(y) };
}

KcGeRegionTolerances tolerancesAt(KcGePoint2d origin, KcGeRegionTolerances tolerances)
{
    const double largest = std::max(std::abs(origin.x), std::abs(origin.y));
    const double spacing = std::nextafter(largest, std::numeric_limits<double>::max()) - largest;
    tolerances.onCurve = std::max(tolerances.onCurve, KcGeRegionTolerances::kSpacings * spacing);
    return tolerances;
}

/// Pieces and net of a set of segments.
struct Workshop {
    explicit Workshop(std::span<const KcGeSegment2d> segments, const KcGeRegionTolerances& wanted)
        : origin(originFor(segments))
        , tolerances(tolerancesAt(origin, wanted))
        , pieces(origin, tolerances.onCurve)
        , net(pieces, tolerances)
    {
        pieces.reserve(2 * segments.size());
        for (uint32_t i = 0; i < segments.size(); ++i)
            pieces.add(segments[i], i);
    }
    KcGePoint2d origin;
    KcGeRegionTolerances tolerances;
    RegionPieces pieces;
    RegionNet net;
};

// How the work is spread over the steps, about.
constexpr double kCutsFrom = 0.05, kFacesFrom = 0.7, kFacesTo = 1.0;

} // namespace

struct KcGeRegionSearch::State {
    State(std::span<const KcGeSegment2d> segments, const KcGeRegionOptions& options)
        : workshop(segments, options.tolerances)
    {
        RegionMonitor monitor(options.progress);
        RegionNet& net = workshop.net;
        monitor.stage(kCutsFrom, kFacesFrom);
        net.findCuts(monitor);
        cancelled = monitor.stopped();
        if (cancelled)
            return;
        net.build();
        if (options.bridge > 0.0) {
            bridges = kcge::bridgeGaps(net, options.bridge).size();
            net.build();
        }
        if (options.reportFreeEnds)
            findFreeEnds();
        net.forgetCuts();
        net.prune();
        monitor.stage(kFacesFrom, kFacesTo);
        faces = std::make_unique<RegionFaces>(net, monitor);
        cancelled = monitor.stopped();
    }

    void findFreeEnds()
    {
        for (const kcge::RegionFreeEnd& end : kcge::freeEnds(workshop.net)) {
            const RegionPiece& piece = workshop.pieces[end.piece];
            if (piece.source == RegionPiece::kNoSource)
                continue;
            FreeEnd found;
            const KcGePoint2d local = workshop.net.nodes()[end.node];
            found.point = local + (workshop.origin - KcGePoint2d());
            found.segment = piece.source;
            found.standsOut = end.crossesBefore;
            found.distance = workshop.net.distanceToNearest(
                local, [&](uint32_t other) { return workshop.pieces[other].source != piece.source; });
            freeEnds.push_back(found);
        }
        std::sort(freeEnds.begin(), freeEnds.end(),
            [](const FreeEnd& a, const FreeEnd& b) { return a.segment < b.segment; });
    }

    Workshop workshop;
    std::unique_ptr<RegionFaces> faces;
    size_t bridges = 0;
    bool cancelled = false;
    std::vector<FreeEnd> freeEnds;
};

KcGeRegionSearch::KcGeRegionSearch(std::span<const KcGeSegment2d> segments, const KcGeRegionOptions& options)
    : m_state(std::make_unique<State>(segments, options))
{
}
KcGeRegionSearch::~KcGeRegionSearch() = default;
KcGeRegionSearch::KcGeRegionSearch(KcGeRegionSearch&&) noexcept = default;
KcGeRegionSearch& KcGeRegionSearch::operator=(KcGeRegionSearch&&) noexcept = default;

bool KcGeRegionSearch::wasCancelled() const
{
    return m_state->cancelled;
}

size_t KcGeRegionSearch::size() const
{
    return m_state->cancelled ? 0 : m_state->faces->regions().size();
}

double KcGeRegionSearch::area(size_t region) const
{
    return m_state->faces->regions()[region].area;
}

double KcGeRegionSearch::length(size_t region) const
{
    return m_state->faces->regions()[region].length;
}

uint32_t KcGeRegionSearch::parent(size_t region) const
{
    return m_state->faces->regions()[region].parent;
}

size_t KcGeRegionSearch::bridges() const
{
    return m_state->bridges;
}

const std::vector<KcGeRegionSearch::FreeEnd>& KcGeRegionSearch::freeEnds() const
{
    return m_state->freeEnds;
}

std::vector<std::vector<uint32_t>> KcGeRegionSearch::islands() const
{
    std::vector<std::vector<uint32_t>> result(size());
    for (uint32_t i = 0; i < result.size(); ++i)
        if (parent(i) != kNone)
            result[parent(i)].push_back(i);
    return result;
}

std::vector<uint32_t> KcGeRegionSearch::fullRegions() const
{
    std::vector<double> left(size()), border(size());
    std::vector<char> holds(size());
    for (uint32_t i = 0; i < left.size(); ++i) {
        left[i] += area(i);
        border[i] += length(i);
        if (parent(i) == kNone)
            continue;
        left[parent(i)] -= area(i);
        border[parent(i)] += length(i);
        holds[parent(i)] = 1;
    }
    std::vector<uint32_t> result;
    for (uint32_t i = 0; i < left.size(); ++i)
        if (holds[i] && left[i] <= m_state->workshop.tolerances.sliver() / 2.0 * border[i])
            result.push_back(i);
    return result;
}

std::vector<KcGeSegment2d> KcGeRegionSearch::outline(size_t number) const
{
    const RegionFaces::Region& region = m_state->faces->regions()[number];
    const RegionNet& net = m_state->workshop.net;
    const RegionPieces& pieces = net.pieces();
    const KcGeVector2d out = m_state->workshop.origin - KcGePoint2d();
    const auto halfEdge = [&](uint32_t i) {
        return m_state->faces->halfEdges()[region.first + (i % region.count)];
    };
    const auto edgeOf = [&](uint32_t i) -> const RegionEdge& { return net.edges()[halfEdge(i) / 2]; };
    // Parts of one piece in a row are one again: what met it there lies outside.
    const auto continues = [&](uint32_t i) {
        const RegionEdge& a = edgeOf(i);
        const RegionEdge& b = edgeOf(i + 1);
        const bool backwards = halfEdge(i) & 1;
        return region.count > 1 && a.piece == b.piece && backwards == bool(halfEdge(i + 1) & 1)
            && (backwards ? a.from == b.to : a.to == b.from); // exact: the same cut
    };
    uint32_t first = 0;
    while (first < region.count && continues(first + region.count - 1))
        ++first;
    std::vector<KcGeSegment2d> result;
    for (uint32_t i = first; i < first + region.count;) {
        uint32_t last = i;
        while (last + 1 < first + region.count && continues(last))
            ++last;
        const RegionEdge& a = edgeOf(i);
        const RegionEdge& b = edgeOf(last);
        const bool backwards = halfEdge(i) & 1;
        const KcGePoint2d start = net.nodes()[backwards ? a.end : a.start] + out;
        const KcGePoint2d end = net.nodes()[backwards ? b.start : b.end] + out;
        const double from = backwards ? a.to : a.from, to = backwards ? b.from : b.to;
        const RegionPiece& piece = pieces[a.piece];
        switch (piece.kind) {
        case RegionPiece::Kind::Line:
            result.push_back(KcGeSegment2d::line(start, end));
            break;
        case RegionPiece::Kind::Arc:
            result.push_back(KcGeSegment2d::bulge(start, end, std::tan(piece.sweep * (to - from) / 4.0)));
            break;
        case RegionPiece::Kind::Cubic:
        case RegionPiece::Kind::Smooth:
            result.push_back(pieces.segment(piece, from, to).translated(out));
            break;
        }
        i = last + 1;
    }
    return result;
}

void removeCopies(std::vector<KcGeSegment2d>& segments, const KcGeRegionTolerances& tolerances)
{
    Workshop workshop(segments, tolerances);
    RegionMonitor monitor;
    workshop.net.findCuts(monitor);
    workshop.net.build();
    // What all edges of a segment were dropped from lies on earlier ones.
    std::vector<char> stays(segments.size());
    for (const RegionEdge& edge : workshop.net.edges())
        stays[workshop.pieces[edge.piece].source] = 1;
    size_t kept = 0;
    for (size_t i = 0; i < segments.size(); ++i)
        if (stays[i]) {
            if (kept != i)
                segments[kept] = std::move(segments[i]);
            ++kept;
        }
    segments.resize(kept);
}

void splitAtMeetings(
    std::vector<KcGeSegment2d>& segments, size_t first, const KcGeRegionTolerances& tolerances)
{
    if (first >= segments.size())
        return;
    Workshop workshop(segments, tolerances);
    RegionMonitor monitor;
    // Pieces that were cut before meet at their ends only, which cuts nothing more.
    workshop.net.findCuts(monitor);
    const std::vector<std::vector<double>> cuts = workshop.net.cutsByPiece();
    std::vector<std::vector<uint32_t>> piecesOf(segments.size());
    for (uint32_t p = 0; p < workshop.pieces.size(); ++p)
        piecesOf[workshop.pieces[p].source].push_back(p);
    const KcGeVector2d out = workshop.origin - KcGePoint2d();
    std::vector<KcGeSegment2d> result;
    for (size_t i = 0; i < segments.size(); ++i) {
        const bool uncut = std::all_of(
            piecesOf[i].begin(), piecesOf[i].end(), [&](uint32_t p) { return cuts[p].empty(); });
        if (piecesOf[i].empty())
            continue;
        if (uncut && !segments[i].isClosed()) {
            result.push_back(segments[i]);
            continue;
        }
        for (const uint32_t p : piecesOf[i]) {
            const RegionPiece& piece = workshop.pieces[p];
            double from = 0.0;
            for (size_t k = 0; k <= cuts[p].size(); ++k) {
                const double to = k < cuts[p].size() ? cuts[p][k] : 1.0;
                if (workshop.pieces.length(piece, from, to) <= workshop.tolerances.node() && to < 1.0)
                    continue;
                KcGeSegment2d part = workshop.pieces.segment(piece, from, to).translated(out);
                if (!part.isDegenerate(workshop.tolerances.onCurve))
                    result.push_back(std::move(part));
                from = to;
            }
        }
    }
    segments = std::move(result);
}

size_t bridgeFreeEnds(
    std::vector<KcGeSegment2d>& segments, double distance, const KcGeRegionTolerances& tolerances)
{
    if (!(distance > 0.0))
        return 0;
    Workshop workshop(segments, tolerances);
    RegionMonitor monitor;
    workshop.net.findCuts(monitor);
    workshop.net.build();
    const std::vector<KcGeSegment2d> bridges = kcge::bridgeGaps(workshop.net, distance);
    for (const KcGeSegment2d& bridge : bridges)
        segments.push_back(bridge.translated(workshop.origin - KcGePoint2d()));
    return bridges.size();
}
