// Searching outwards from a point for the region that holds it.

#include "ed/region_at.h"

#include "db/block_reference.h"
#include "db/spatial_index.h"
#include "ed/entity_curves.h"
#include "ge/region_search.h"

#include <array>

namespace {

constexpr size_t kMostPieces = 20000;
constexpr size_t kMostEntities = 20000;
constexpr size_t kFirstNeighbours = 8; // the first box reaches so many

struct Found {
    std::vector<KcGeSegment2d> pieces;
    KcGeExtents2d extents;
    bool tooMany = false;
};

Found piecesIn(const KcDbDatabase& database, const KcGeExtents2d& box)
{
    Found found;
    size_t visited = 0;
    kcedVisitSeen(database, database.currentSpace(), box, kMostEntities, [&](const KcEdSeenEntity& seen) {
        ++visited;
        if (!seen.entity.isKindOf(KcDbCurve::desc()))
            return true;
        const auto& curve = static_cast<const KcDbCurve&>(seen.entity);
        if (!curve.curve().isBounded())
            return true;
        for (KcGeSegment2d& piece : kcedSeenPieces(curve, seen.toWorld)) {
            if (!piece.isFinite() || piece.isDegenerate())
                continue;
            found.pieces.push_back(std::move(piece));
        }
        return found.pieces.size() <= kMostPieces;
    });
    found.tooMany = found.pieces.size() > kMostPieces || visited >= kMostEntities;
    return found;
}

/// The smallest region that holds a point; nothing when none does.
std::optional<uint32_t> smallestAround(const KcGeRegionSearch& search, KcGePoint2d point)
{
    std::optional<uint32_t> best;
    for (uint32_t region = 0; region < search.size(); ++region) {
        if (best && search.area(region) >= search.area(*best))
            continue;
        const std::vector<KcGeSegment2d> outline = search.outline(region);
        KcGeExtents2d box;
        for (const KcGeSegment2d& piece : outline)
            box.addExtents(piece.extents());
        if (box.contains(point) && relationToOutline(outline, point) == KcGePointRelation::Inside)
            best = region;
    }
    return best;
}

KcGeExtents2d boxOf(const std::vector<KcGeSegment2d>& outline)
{
    KcGeExtents2d box;
    for (const KcGeSegment2d& piece : outline)
        box.addExtents(piece.extents());
    return box;
}

/// Outlines of groups of regions that share sides: what two of them share is left out, the rest joined to
/// loops.
std::vector<std::vector<KcGeSegment2d>>
joined(const KcGeRegionSearch& search, const std::vector<uint32_t>& regions)
{
    // Neighbours come from one net: a shared side has the same ends and the same middle on both.
    using Key = std::array<double, 6>;
    const auto keyOf = [](const KcGeSegment2d& piece) {
        KcGePoint2d a = piece.startPoint(), b = piece.endPoint();
        const KcGePoint2d middle = piece.midPoint();
        if (std::pair(b.x, b.y) < std::pair(a.x, a.y))
            std::swap(a, b);
        const auto rounded = [](double v) { return std::round(v / (KcGeContext::gTol.equalPoint * 10.0)); };
        return Key{ rounded(a.x), rounded(a.y),      rounded(b.x),
                    rounded(b.y), rounded(middle.x), rounded(middle.y) };
    };
    std::map<Key, std::pair<KcGeSegment2d, int>> sides;
    std::vector<Key> order;
    for (const uint32_t region : regions)
        for (const KcGeSegment2d& piece : search.outline(region)) {
            const auto [at, isNew] = sides.try_emplace(keyOf(piece), piece, 0);
            if (isNew)
                order.push_back(at->first);
            ++at->second.second;
        }
    std::vector<KcGeSegment2d> rest;
    for (const Key& key : order)
        if (sides.at(key).second == 1)
            rest.push_back(sides.at(key).first);

    const double tolerance = KcGeContext::gTol.equalPoint * 10.0;
    std::multimap<double, size_t> starts;
    for (size_t i = 0; i < rest.size(); ++i)
        starts.emplace(rest[i].startPoint().x, i);
    std::vector<bool> used(rest.size());
    std::vector<std::vector<KcGeSegment2d>> loops;
    for (size_t first = 0; first < rest.size(); ++first) {
        if (used[first])
            continue;
        std::vector<KcGeSegment2d> loop;
        std::optional<size_t> next = first;
        while (next) {
            used[*next] = true;
            loop.push_back(rest[*next]);
            const KcGePoint2d end = loop.back().endPoint();
            next.reset();
            if (end.distanceTo(loop.front().startPoint()) <= tolerance)
                break;
            for (auto it = starts.lower_bound(end.x - tolerance);
                 it != starts.end() && it->first <= end.x + tolerance; ++it)
                if (!used[it->second] && rest[it->second].startPoint().distanceTo(end) <= tolerance) {
                    next = it->second;
                    break;
                }
        }
        // Holes between neighbours run clockwise: they belong to the region around.
        if (outlineArea(loop) > 0.0)
            loops.push_back(std::move(loop));
    }
    return loops;
}

} // namespace

KcEdRegionAt kcedRegionAt(const KcDbDatabase& database, KcGePoint2d point)
{
    KcEdRegionAt result;
    const KcDbObjectId space = database.currentSpace();
    const auto nearest = database.spatialIndex().nearest(space, point, kFirstNeighbours);
    if (nearest.empty()) {
        result.reason = QStringLiteral("Nothing encloses that point.");
        return result;
    }
    double reach = std::max(nearest.back().distance * 2.0, 1.0);
    const auto around = [&](double r) {
        return KcGeExtents2d{ { point.x - r, point.y - r }, { point.x + r, point.y + r } };
    };
    KcGeExtents2d box = around(reach);
    for (;;) {
        const Found found = piecesIn(database, box);
        if (found.tooMany) {
            result.reason = QStringLiteral("There is too much around that point to search.");
            return result;
        }
        const KcGeRegionSearch search(found.pieces);
        const auto region = smallestAround(search, point);
        if (region) {
            result.outline = search.outline(*region);
            const KcGeExtents2d outer = boxOf(result.outline);
            if (box.contains(outer)) {
                result.islands = joined(search, search.islands()[*region]);
                return result;
            }
            box.addExtents(outer); // what lies there may cut it
            continue;
        }
        // Everything there is has been looked at when a wider box would find no more.
        constexpr double kFarthest = 1e12;
        reach *= 4.0;
        const KcGeExtents3d whole = KcDbBlockReference::definitionExtents(space);
        if (reach > kFarthest || whole.isEmpty()
            || box.contains(KcGeExtents2d{ whole.min.plan(), whole.max.plan() })) {
            result.outline.clear();
            result.reason = QStringLiteral("Nothing encloses that point.");
            return result;
        }
        box.addExtents(around(reach));
    }
}

std::vector<KcGeBulgeVertex2d> kcedVerticesOf(const std::vector<KcGeSegment2d>& outline)
{
    std::vector<KcGeSegment2d> simple;
    for (const KcGeSegment2d& piece : outline) {
        constexpr double kShare = 1e-5;
        const auto parts
            = piece.simpleSegments(std::max(piece.length() * kShare, KcGeContext::gTol.equalPoint));
        simple.insert(simple.end(), parts.begin(), parts.end());
    }
    return verticesOfSegments(simple, true);
}
