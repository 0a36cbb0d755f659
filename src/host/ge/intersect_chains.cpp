// Common points of chains of pieces: pairs whose boxes meet, and one report for what several pieces share.

#include "ge/box_tree.h"
#include "ge/intersect.h"

#include <map>

namespace {

KcGeExtents3d boxOf(const KcGeSegment2d& piece, double margin)
{
    KcGeExtents3d box;
    if (!piece.isFinite())
        return box;
    const KcGeExtents2d flat = piece.extents();
    if (flat.isEmpty())
        return box;
    box.addPoint({ flat.min.x - margin, flat.min.y - margin, 0.0 });
    box.addPoint({ flat.max.x + margin, flat.max.y + margin, 0.0 });
    return box;
}

KcGeBoxTree treeOf(std::span<const KcGeSegment2d> chain)
{
    std::vector<KcGeExtents3d> boxes;
    boxes.reserve(chain.size());
    for (const KcGeSegment2d& piece : chain)
        boxes.push_back(boxOf(piece, 0.0));
    return KcGeBoxTree(std::move(boxes));
}

bool isWholeChain(std::span<const KcGeSegment2d> chain, double tolerance)
{
    return !chain.empty()
        && chain.front().startPoint().isEqualTo(chain.back().endPoint(), { tolerance, tolerance });
}

/// One chain's part in a crossing.
struct Place {
    size_t piece = 0;
    double t = 0.0;
};

/// True when two places are one: neighbouring pieces share a vertex, and a piece may reach itself again.
bool isSamePlace(
    std::span<const KcGeSegment2d> chain, bool closed, const Place& x, const Place& y, double tolerance)
{
    const KcGePoint2d p = chain[x.piece].pointAt(x.t), q = chain[y.piece].pointAt(y.t);
    if (p.distanceTo(q) > 2.0 * tolerance)
        return false;
    if (x.piece == y.piece)
        return true;
    // Neighbours share the vertex only; pieces without length between them do not part neighbours.
    const auto isAt = [&](KcGePoint2d vertex) { return p.distanceTo(vertex) <= 4.0 * tolerance; };
    const auto [low, high] = std::minmax(x.piece, y.piece);
    const auto isSpeck = [&](size_t i) { return chain[i].isDegenerate(tolerance); };
    constexpr size_t kLooks = 64; // specks in a row
    const auto joined = [&](size_t from, size_t to) {
        size_t looks = 0;
        for (size_t i = from + 1; i < to; ++i)
            if (++looks > kLooks || !isSpeck(i))
                return false;
        return true;
    };
    if (isAt(chain[low].endPoint()) && joined(low, high))
        return true;
    if (!closed || !isAt(chain[high].endPoint()))
        return false;
    size_t looks = 0;
    for (size_t i = high + 1; i < chain.size(); ++i)
        if (++looks > kLooks || !isSpeck(i))
            return false;
    for (size_t i = 0; i < low; ++i)
        if (++looks > kLooks || !isSpeck(i))
            return false;
    return true;
}

class Collector {
public:
    Collector(
        std::span<const KcGeSegment2d> first, std::span<const KcGeSegment2d> second, bool firstClosed,
        bool secondClosed, double tolerance)
        : m_first(first)
        , m_second(second)
        , m_firstClosed(firstClosed)
        , m_secondClosed(secondClosed)
        , m_tolerance(tolerance)
    {
    }

    void add(size_t i, size_t j, const KcGeIntersections2d& found)
    {
        for (const KcGeCrossing2d& c : found.points)
            m_points.push_back({ c, i, j });
        for (const KcGeOverlap2d& o : found.overlaps)
            m_overlaps.push_back({ o, i, i, j, j });
    }

    KcGeChainIntersections2d take()
    {
        KcGeChainIntersections2d result;
        std::sort(m_points.begin(), m_points.end(), [](const auto& x, const auto& y) {
            return std::pair(x.firstPiece, x.first) < std::pair(y.firstPiece, y.first);
        });
        std::sort(m_overlaps.begin(), m_overlaps.end(), [](const auto& x, const auto& y) {
            return std::pair(x.firstFromPiece, x.firstFrom) < std::pair(y.firstFromPiece, y.firstFrom);
        });
        joinOverlaps(result.overlaps);
        for (const KcGeChainCrossing2d& c : m_points)
            if (!isKnown(c, result))
                keep(c, result.points);
        return result;
    }

private:
    using Cell = std::pair<long long, long long>;
    Cell cellOf(KcGePoint2d p) const
    {
        // Beyond the farthest, doubles cannot tell cells apart, and integers would overflow.
        static constexpr double kFarthest = 1e15;
        const double size = 4.0 * m_tolerance;
        const auto cell
            = [size](double x) { return std::llround(std::clamp(x / size, -kFarthest, kFarthest)); };
        return { cell(p.x), cell(p.y) };
    }
    template <class Visit>
    bool anyNear(const std::multimap<Cell, size_t>& grid, KcGePoint2d p, Visit visit) const
    {
        const Cell cell = cellOf(p);
        for (long long dx = -1; dx <= 1; ++dx)
            for (long long dy = -1; dy <= 1; ++dy) {
                const auto [from, to] = grid.equal_range({ cell.first + dx, cell.second + dy });
                for (auto it = from; it != to; ++it)
                    if (visit(it->second))
                        return true;
            }
        return false;
    }
    bool isSame(const KcGeChainCrossing2d& c, const Place& first, const Place& second) const
    {
        return isSamePlace(m_first, m_firstClosed, { c.firstPiece, c.first }, first, m_tolerance)
            && isSamePlace(m_second, m_secondClosed, { c.secondPiece, c.second }, second, m_tolerance);
    }

    bool isKnown(const KcGeChainCrossing2d& c, const KcGeChainIntersections2d& result)
    {
        const bool inGrid = anyNear(m_kept, c.point, [&](size_t k) {
            const KcGeChainCrossing2d& o = result.points[k];
            return isSame(c, { o.firstPiece, o.first }, { o.secondPiece, o.second });
        });
        return inGrid || anyNear(m_overlapEnds, c.point, [&](size_t k) {
                   const KcGeChainOverlap2d& o = m_overlaps[k];
                   return isSame(c, { o.firstFromPiece, o.firstFrom }, { o.secondFromPiece, o.secondFrom })
                       || isSame(c, { o.firstToPiece, o.firstTo }, { o.secondToPiece, o.secondTo });
               });
    }
    void keep(const KcGeChainCrossing2d& c, std::vector<KcGeChainCrossing2d>& points)
    {
        m_kept.emplace(cellOf(c.point), points.size());
        points.push_back(c);
    }

    void joinOverlaps(std::vector<KcGeChainOverlap2d>& joined)
    {
        for (size_t k = 0; k < m_overlaps.size(); ++k) {
            m_overlapEnds.emplace(cellOf(m_overlaps[k].start), k);
            m_overlapEnds.emplace(cellOf(m_overlaps[k].end), k);
        }
        const auto continues = [&](const KcGeChainOverlap2d& before, const KcGeChainOverlap2d& after) {
            return isSamePlace(
                       m_first, m_firstClosed, { before.firstToPiece, before.firstTo },
                       { after.firstFromPiece, after.firstFrom }, m_tolerance)
                && isSamePlace(
                       m_second, m_secondClosed, { before.secondToPiece, before.secondTo },
                       { after.secondFromPiece, after.secondFrom }, m_tolerance);
        };
        std::multimap<Cell, size_t> openEnds;
        for (const KcGeChainOverlap2d& o : m_overlaps) {
            size_t into = joined.size();
            anyNear(openEnds, o.start, [&](size_t k) {
                if (!continues(joined[k], o))
                    return false;
                into = k;
                return true;
            });
            if (into == joined.size()) {
                joined.push_back(o);
            } else {
                KcGeChainOverlap2d& whole = joined[into];
                whole.firstToPiece = o.firstToPiece;
                whole.firstTo = o.firstTo;
                whole.secondToPiece = o.secondToPiece;
                whole.secondTo = o.secondTo;
                whole.end = o.end;
            }
            openEnds.emplace(cellOf(o.end), into);
        }
    }

    std::span<const KcGeSegment2d> m_first, m_second;
    bool m_firstClosed, m_secondClosed;
    double m_tolerance;
    std::vector<KcGeChainCrossing2d> m_points;
    std::vector<KcGeChainOverlap2d> m_overlaps;
    std::multimap<Cell, size_t> m_kept, m_overlapEnds;
};

/// A chain's free ends go on as far as the piece's carrier does, but only outwards.
bool isOutward(std::span<const KcGeSegment2d> chain, size_t piece, double t)
{
    if (t >= 0.0 && t <= 1.0)
        return true;
    return (t < 0.0 && piece == 0) || (t > 1.0 && piece + 1 == chain.size());
}

} // namespace

KcGeChainIntersections2d intersectChains(
    std::span<const KcGeSegment2d> first, std::span<const KcGeSegment2d> second,
    const KcGeIntersectOptions& options)
{
    const double tolerance = options.tolerance;
    if (first.empty() || second.empty() || !(tolerance > 0.0))
        return {};
    const bool firstClosed = isWholeChain(first, tolerance), secondClosed = isWholeChain(second, tolerance);
    const bool extendFirst = options.extendFirst && !firstClosed;
    const bool extendSecond = options.extendSecond && !secondClosed;
    Collector collector(first, second, firstClosed, secondClosed, tolerance);
    const KcGeBoxTree tree = treeOf(second);
    const auto isEnd = [](size_t i, size_t count) { return i == 0 || i + 1 == count; };

    const auto meet = [&](size_t i, size_t j) {
        const KcGeIntersectOptions pair{ extendFirst && isEnd(i, first.size()),
                                         extendSecond && isEnd(j, second.size()), tolerance };
        KcGeIntersections2d found = intersect(first[i], second[j], pair);
        std::erase_if(found.points, [&](const KcGeCrossing2d& c) {
            return !isOutward(first, i, c.first) || !isOutward(second, j, c.second);
        });
        std::erase_if(found.overlaps, [&](const KcGeOverlap2d& o) {
            return !isOutward(first, i, o.firstFrom) || !isOutward(first, i, o.firstTo)
                || !isOutward(second, j, o.secondFrom) || !isOutward(second, j, o.secondTo);
        });
        collector.add(i, j, found);
    };
    for (size_t i = 0; i < first.size(); ++i) {
        if (extendFirst && isEnd(i, first.size())) {
            for (size_t j = 0; j < second.size(); ++j)
                meet(i, j);
            continue;
        }
        const KcGeExtents3d box = boxOf(first[i], tolerance);
        if (box.isEmpty())
            continue;
        tree.overlapping(box, [&](size_t j) {
            if (!extendSecond || !isEnd(j, second.size()))
                meet(i, j);
        });
        if (extendSecond) {
            meet(i, 0);
            if (second.size() > 1)
                meet(i, second.size() - 1);
        }
    }
    return collector.take();
}

KcGeChainIntersections2d
selfIntersections(std::span<const KcGeSegment2d> chain, bool closed, double tolerance)
{
    if (chain.empty() || !(tolerance > 0.0))
        return {};
    Collector collector(chain, chain, closed, closed, tolerance);
    const KcGeBoxTree tree = treeOf(chain);
    for (size_t i = 0; i < chain.size(); ++i) {
        if (!chain[i].isFinite() || chain[i].isDegenerate(tolerance))
            continue;
        KcGeIntersections2d own;
        own.points = selfIntersections(chain[i], tolerance);
        collector.add(i, i, own);
        const KcGeExtents3d box = boxOf(chain[i], tolerance);
        tree.overlapping(box, [&](size_t j) {
            if (j <= i || !chain[j].isFinite() || chain[j].isDegenerate(tolerance))
                return;
            KcGeIntersections2d found = intersect(chain[i], chain[j], { false, false, tolerance });
            // The vertex between neighbours, which both end in.
            std::erase_if(found.points, [&](const KcGeCrossing2d& c) {
                return isSamePlace(chain, closed, { i, c.first }, { j, c.second }, tolerance);
            });
            collector.add(i, j, found);
        });
    }
    return collector.take();
}
