// Parallels of chains: raw pieces and corners, cuts, and the stitching of what is far enough from the chain.

#include "ge/offset.h"

#include "ge/intersect.h"
#include "ge/polygon.h"

#include <map>
#include <unordered_map>

namespace {

constexpr double kPoint = KcGeContext::gTol.equalPoint;
/// Ends of cut pieces that lie nearer than this are one node.
constexpr double kNode = 3.0 * kPoint;
/// What is nearer to the chain than the distance by no more than this is taken for rounding.
constexpr double kNearer = 1e-2 * kPoint;
/// An extended corner reaches as far from the vertex as this many distances.
constexpr double kCornerReach = 10.0;
/// Turns below this, in radians, are trimmed corner by corner: what overlaps there is nearer to the chain by
/// less than can be told.
constexpr double kSlightTurn = 0.2;

KcGeExtents3d boxOf(const KcGeSegment2d& piece, double margin = 0.0)
{
    const KcGeExtents2d flat = piece.extents();
    KcGeExtents3d box;
    box.addPoint({ flat.min.x - margin, flat.min.y - margin, 0.0 });
    box.addPoint({ flat.max.x + margin, flat.max.y + margin, 0.0 });
    return box;
}

KcGeBoxTree treeOf(const std::vector<KcGeSegment2d>& pieces)
{
    std::vector<KcGeExtents3d> boxes;
    boxes.reserve(pieces.size());
    for (const KcGeSegment2d& piece : pieces)
        boxes.push_back(boxOf(piece));
    return KcGeBoxTree(std::move(boxes));
}

double turnBetween(KcGeVector2d from, KcGeVector2d to)
{
    return std::atan2(from.crossProduct(to), from.dotProduct(to));
}

/// The piece moved to its left; nothing when an arc's radius vanishes.
std::optional<KcGeSegment2d> rawOffset(const KcGeSegment2d& piece, double left)
{
    if (const KcGeCircArc2d* arc = piece.asArc()) {
        const double radius = arc->radius() + (arc->isClockwise() ? left : -left);
        if (!(radius > kPoint))
            return std::nullopt;
        return KcGeSegment2d::arc({ arc->center(), radius, arc->startAngle(), arc->sweep() });
    }
    const KcGeVector2d shift = piece.startDirection().perpVector() * left;
    return KcGeSegment2d::line(piece.startPoint() + shift, piece.endPoint() + shift);
}

/// The piece between two parameters, which may lie on its extension.
KcGeSegment2d stretchedTo(const KcGeSegment2d& piece, double from, double to)
{
    if (const KcGeCircArc2d* arc = piece.asArc())
        return KcGeSegment2d::arc({ arc->center(), arc->radius(), arc->startAngle() + from * arc->sweep(),
                                    (to - from) * arc->sweep() });
    return KcGeSegment2d::line(piece.pointAt(from), piece.pointAt(to));
}

/// A chain with its parallel under construction. Coordinates are about an origin near the chain.
class Offsetter {
public:
    Offsetter(std::vector<KcGeSegment2d> chain, bool closed, double left, KcGeOffsetCorner corners)
        : m_chain(std::move(chain))
        , m_closed(closed)
        , m_left(left)
        , m_distance(std::abs(left))
        , m_corners(corners)
        , m_tree(treeOf(m_chain))
        , m_simple(closed && selfIntersections(m_chain, true, kPoint).isEmpty())
    {
    }

    std::vector<KcGeChain2d> run()
    {
        std::vector<KcGeSegment2d> raws = rawPieces(m_left, m_corners);
        m_kiteTree = kiteTree();
        raws = withoutNearParts(raws);
        std::vector<KcGeSegment2d> cutters = raws;
        if (!m_simple) {
            // Parts of this side that reach over to the other one end where that one's parallel begins.
            const std::vector<KcGeSegment2d> others
                = withoutNearParts(rawPieces(-m_left, KcGeOffsetCorner::Round));
            cutters.insert(cutters.end(), others.begin(), others.end());
            if (!m_closed)
                for (const KcGePoint2d end : { m_chain.front().startPoint(), m_chain.back().endPoint() })
                    cutters.push_back(KcGeSegment2d::arc({ end, m_distance, 0.0, kTwoPi }));
        }
        cut(raws, cutters);
        dropDoubled();
        return stitched();
    }

private:
    size_t count() const { return m_chain.size(); }
    size_t corners() const { return m_closed ? count() : count() - 1; }

    /// Distance from the chain, as far as it is below `limit`.
    double distanceBelow(KcGePoint2d p, double limit) const
    {
        double best = limit;
        m_tree.nearest({ p.x, p.y, 0.0 }, 0, count(), best, [&](size_t i, double& least) {
            least = std::min(least, m_chain[i].closest(p).distance);
        });
        return best;
    }

    std::vector<KcGeSegment2d> rawPieces(double left, KcGeOffsetCorner style)
    {
        std::vector<std::optional<KcGeSegment2d>> moved(count());
        for (size_t i = 0; i < count(); ++i)
            moved[i] = rawOffset(m_chain[i], left);
        std::vector<double> from(count(), 0.0), to(count(), 1.0);
        std::vector<std::optional<KcGeSegment2d>> fillings(count());
        for (size_t i = 0; i < corners(); ++i) {
            const size_t next = (i + 1) % count();
            const KcGeVector2d in = m_chain[i].endDirection(), out = m_chain[next].startDirection();
            double turn = turnBetween(in, out);
            // Straight back: the parallel goes round the tip.
            if (kPi - std::abs(turn) < KcGeContext::gTol.equalVector * 1e3)
                turn = std::copysign(kPi, -left);
            const double gap = m_distance * std::abs(turn);
            if (gap <= kNearer)
                continue;
            const bool opens = turn * left < 0.0;
            const KcGePoint2d vertex = m_chain[next].startPoint();
            if (!opens) {
                if (std::abs(turn) < kSlightTurn && moved[i] && moved[next])
                    trimSlightTurn(*moved[i], *moved[next], to[i], from[next], gap);
                continue;
            }
            if (style == KcGeOffsetCorner::Extended && moved[i] && moved[next]
                && extendCorner(i, next, *moved[i], *moved[next], vertex, turn, to[i], from[next]))
                continue;
            const KcGeVector2d normal = in.perpVector() * left;
            fillings[i] = KcGeSegment2d::arc({ vertex, m_distance, normal.angle(), turn });
        }
        std::vector<KcGeSegment2d> raws;
        for (size_t i = 0; i < count(); ++i) {
            if (moved[i] && from[i] < to[i])
                raws.push_back(
                    from[i] == 0.0 && to[i] == 1.0 ? *moved[i] : stretchedTo(*moved[i], from[i], to[i]));
            if (fillings[i])
                raws.push_back(*fillings[i]);
        }
        return raws;
    }

    /// Cuts two neighbours at their crossing near the vertex.
    static void trimSlightTurn(
        const KcGeSegment2d& before, const KcGeSegment2d& after, double& to, double& from, double gap)
    {
        const KcGeIntersections2d found = intersect(before, after);
        for (const KcGeCrossing2d& c : found.points)
            if (c.point.distanceTo(before.endPoint()) <= 2.0 * gap && c.first > 0.0 && c.second < 1.0) {
                to = c.first;
                from = c.second;
                return;
            }
    }

    bool extendCorner(
        size_t i, size_t next, const KcGeSegment2d& before, const KcGeSegment2d& after, KcGePoint2d vertex,
        double turn, double& to, double& from)
    {
        if (i == next || std::abs(turn) > kPi * (1.0 - KcGeContext::gTol.equalPoint))
            return false;
        double best = kCornerReach * m_distance;
        std::optional<KcGeCrossing2d> tip;
        for (const KcGeCrossing2d& c : intersect(before, after, { true, true, kPoint }).points) {
            const double reach = c.point.distanceTo(vertex);
            const auto turns = [](const KcGeSegment2d& s, double part) {
                return s.asArc() ? std::abs(s.asArc()->sweep() * part) : 0.0;
            };
            const bool outside = c.first >= 1.0 && c.second <= 0.0;
            const bool near = turns(before, c.first - 1.0) < kPi / 2.0 && turns(after, c.second) < kPi / 2.0;
            if (outside && near && reach < best) {
                best = reach;
                tip = c;
            }
        }
        if (!tip)
            return false;
        const KcGeSegment2d out = stretchedTo(before, 1.0, tip->first),
                            back = stretchedTo(after, tip->second, 0.0);
        // A tip that reaches over another part of the chain may come out on its far side.
        KcGeExtents3d box = boxOf(out, kPoint);
        box.addExtents(boxOf(back, kPoint));
        box.addPoint({ vertex.x, vertex.y, 0.0 });
        bool blocked = false;
        m_tree.overlapping(box, [&](size_t j) {
            if (j != i && j != next)
                blocked = blocked || !intersect(m_chain[j], out).isEmpty()
                    || !intersect(m_chain[j], back).isEmpty();
        });
        if (blocked && !m_simple)
            return false;
        if (blocked)
            m_crossingTips.push_back(box);
        m_kites.push_back({ KcGeSegment2d::line(vertex, out.startPoint()), out, back,
                            KcGeSegment2d::line(back.endPoint(), vertex) });
        m_kiteBoxes.push_back(box);
        to = tip->first;
        from = tip->second;
        return true;
    }

    KcGeBoxTree kiteTree() const { return KcGeBoxTree(m_kiteBoxes); }

    bool isInCorner(KcGePoint2d p) const
    {
        bool inside = false;
        KcGeExtents3d at;
        at.addPoint({ p.x, p.y, 0.0 });
        m_kiteTree.overlapping(at, [&](size_t k) {
            inside = inside || relationToOutline(m_kites[k], p) == KcGePointRelation::Inside;
        });
        return inside;
    }

    /// True when a point near a tip that reaches over the chain lies on the side that the parallel is on.
    bool isOnFarSide(KcGePoint2d p) const
    {
        const bool nearTip
            = std::any_of(m_crossingTips.begin(), m_crossingTips.end(), [p](const KcGeExtents3d& box) {
                  return box.containsInPlan(KcGePoint3d{ p.x, p.y, 0.0 });
              });
        if (!nearTip)
            return false;
        const bool leftIsInside = outlineArea(m_chain) > 0.0;
        return (relationToOutline(m_chain, p) == KcGePointRelation::Inside)
            != (leftIsInside == (m_left > 0.0));
    }

    /// Takes out what cannot be far enough from the chain: a point's distance changes by no more than the
    /// way to the next point.
    std::vector<KcGeSegment2d> withoutNearParts(const std::vector<KcGeSegment2d>& raws) const
    {
        std::vector<KcGeSegment2d> result;
        for (const KcGeSegment2d& raw : raws) {
            std::vector<std::pair<double, double>> open;
            collectOpen(raw, raw.length(), 0.0, 1.0, open);
            for (const auto& [from, to] : open)
                result.push_back(from == 0.0 && to == 1.0 ? raw : raw.between(from, to));
        }
        return result;
    }
    void collectOpen(
        const KcGeSegment2d& raw, double length, double from, double to,
        std::vector<std::pair<double, double>>& open) const
    {
        const double middle = (from + to) / 2.0, half = length * (to - from) / 2.0;
        const double distance = distanceBelow(raw.pointAt(middle), m_distance);
        if (distance + half < m_distance - kNearer)
            return;
        constexpr double kFinest = 1.0 / 8.0; // of the distance: finer parts cost more than they save
        if (distance >= m_distance - kNearer || half <= m_distance * kFinest) {
            if (!open.empty() && open.back().second == from) // exact: the same halving
                open.back().second = to;
            else
                open.push_back({ from, to });
            return;
        }
        collectOpen(raw, length, from, middle, open);
        collectOpen(raw, length, middle, to, open);
    }

    struct Slice {
        KcGeSegment2d piece;
        size_t raw = 0;
        double from = 0.0, to = 1.0; ///< in the raw piece
        bool used = false;
    };

    void cut(const std::vector<KcGeSegment2d>& raws, const std::vector<KcGeSegment2d>& cutters)
    {
        const KcGeBoxTree tree = treeOf(cutters);
        std::vector<std::vector<double>> cuts(raws.size());
        const auto addCut = [&](size_t raw, double t) {
            if (raw < raws.size())
                cuts[raw].push_back(t);
        };
        for (size_t k = 0; k < raws.size(); ++k)
            tree.overlapping(boxOf(raws[k], kPoint), [&](size_t j) {
                if (j <= k) // each pair of raws once
                    return;
                const KcGeIntersections2d found = intersect(raws[k], cutters[j]);
                for (const KcGeCrossing2d& c : found.points) {
                    addCut(k, c.first);
                    addCut(j, c.second);
                }
                for (const KcGeOverlap2d& o : found.overlaps) {
                    addCut(k, o.firstFrom);
                    addCut(k, o.firstTo);
                    addCut(j, o.secondFrom);
                    addCut(j, o.secondTo);
                }
            });
        for (size_t k = 0; k < raws.size(); ++k) {
            const KcGeSegment2d& raw = raws[k];
            const double length = raw.length(), least = length > 0.0 ? kPoint / length : 1.0;
            std::sort(cuts[k].begin(), cuts[k].end());
            double from = 0.0;
            const auto add = [&](double to) {
                const KcGePoint2d middle = raw.pointAt((from + to) / 2.0);
                if (distanceBelow(middle, m_distance) >= m_distance - kNearer && !isInCorner(middle)
                    && !isOnFarSide(middle))
                    m_slices.push_back(
                        { from == 0.0 && to == 1.0 ? raw : raw.between(from, to), k, from, to, false });
            };
            for (const double t : cuts[k]) {
                if (t - from <= least || 1.0 - t <= least)
                    continue;
                add(t);
                from = t;
            }
            add(1.0);
        }
    }

    using Cell = std::pair<long long, long long>;
    static Cell cellOf(KcGePoint2d p, double size)
    {
        // Beyond that doubles cannot tell cells apart, and integers would overflow.
        static constexpr double kFarthest = 1e15;
        const auto cell
            = [size](double x) { return std::llround(std::clamp(x / size, -kFarthest, kFarthest)); };
        return { cell(p.x), cell(p.y) };
    }
    struct CellHash {
        size_t operator()(const Cell& c) const
        {
            return size_t(c.first) * 73856093u ^ size_t(c.second) * 19349663u;
        }
    };
    using Grid = std::unordered_multimap<Cell, size_t, CellHash>;
    template <class Visit> static void forNear(const Grid& grid, KcGePoint2d p, double size, Visit visit)
    {
        const Cell cell = cellOf(p, size);
        for (long long dx = -1; dx <= 1; ++dx)
            for (long long dy = -1; dy <= 1; ++dy) {
                const auto [from, to] = grid.equal_range({ cell.first + dx, cell.second + dy });
                for (auto it = from; it != to; ++it)
                    visit(it->second);
            }
    }

    /// Of pieces that cover each other in the same direction one stays; in opposite directions they bound
    /// nothing.
    void dropDoubled()
    {
        Grid grid;
        std::vector<char> gone(m_slices.size(), 0);
        for (size_t k = 0; k < m_slices.size(); ++k) {
            const KcGeSegment2d& s = m_slices[k].piece;
            const KcGePoint2d middle = s.midPoint();
            forNear(grid, middle, 2.0 * kNode, [&](size_t j) {
                const KcGeSegment2d& o = m_slices[j].piece;
                if (gone[j] || gone[k] || m_slices[j].raw == m_slices[k].raw
                    || o.midPoint().distanceTo(middle) > kNode)
                    return;
                const auto same = [](KcGePoint2d p, KcGePoint2d q) { return p.distanceTo(q) <= kNode; };
                if (same(o.startPoint(), s.startPoint()) && same(o.endPoint(), s.endPoint()))
                    gone[k] = 1;
                else if (same(o.startPoint(), s.endPoint()) && same(o.endPoint(), s.startPoint()))
                    gone[k] = gone[j] = 1;
            });
            if (!gone[k])
                grid.emplace(cellOf(middle, 2.0 * kNode), k);
        }
        size_t kept = 0;
        for (size_t k = 0; k < m_slices.size(); ++k)
            if (!gone[k])
                m_slices[kept++] = m_slices[k];
        m_slices.resize(kept);
    }

    std::vector<KcGeChain2d> stitched()
    {
        Grid starts, ends;
        for (size_t k = 0; k < m_slices.size(); ++k) {
            starts.emplace(cellOf(m_slices[k].piece.startPoint(), kNode), k);
            ends.emplace(cellOf(m_slices[k].piece.endPoint(), kNode), k);
        }
        const auto hasBefore = [&](size_t k) {
            bool found = false;
            const KcGePoint2d start = m_slices[k].piece.startPoint();
            forNear(ends, start, kNode, [&](size_t j) {
                found = found || m_slices[j].piece.endPoint().distanceTo(start) <= kNode;
            });
            return found;
        };
        std::vector<KcGeChain2d> result;
        // First what begins somewhere, then what goes round.
        for (const bool round : { false, true })
            for (size_t k = 0; k < m_slices.size(); ++k)
                if (!m_slices[k].used && (round || !hasBefore(k)))
                    addChain(k, starts, result);
        return result;
    }

    /// The piece that goes on from the end of another: where several do, the one that keeps what is free of
    /// the chain on its side.
    std::optional<size_t> following(size_t k, const Grid& starts) const
    {
        const KcGeSegment2d& from = m_slices[k].piece;
        const KcGePoint2d end = from.endPoint();
        std::optional<size_t> best;
        double bestTurn = 0.0;
        constexpr double kSampled = 30.0 * kNode; // nearer, rounding has moved things
        const KcGeVector2d in = -from.sampledDirection(true, kSampled);
        forNear(starts, end, kNode, [&](size_t j) {
            if (m_slices[j].used || m_slices[j].piece.startPoint().distanceTo(end) > kNode)
                return;
            const double turn = turnBetween(in, m_slices[j].piece.sampledDirection(false, kSampled))
                * (m_left > 0 ? 1 : -1);
            if (!best || turn > bestTurn) {
                best = j;
                bestTurn = turn;
            }
        });
        return best;
    }

    void addChain(size_t first, const Grid& starts, std::vector<KcGeChain2d>& result)
    {
        std::vector<size_t> order;
        bool closed = false;
        const KcGePoint2d start = m_slices[first].piece.startPoint();
        for (std::optional<size_t> k = first; k;) {
            m_slices[*k].used = true;
            order.push_back(*k);
            const KcGePoint2d end = m_slices[*k].piece.endPoint();
            const std::optional<size_t> next = following(*k, starts);
            // Back at the start: the loop is whole, unless another way keeps closer to the free side.
            if (end.distanceTo(start) <= kNode && (!next || isBetterClosed(*k, first, *next))) {
                closed = true;
                break;
            }
            k = next;
        }
        KcGeChain2d chain;
        chain.closed = closed;
        // Cuts at which nothing was cut away disappear again.
        struct Run {
            size_t raw;
            double from, to;
            KcGeSegment2d piece;
        };
        std::vector<Run> runs;
        for (const size_t k : order) {
            const Slice& s = m_slices[k];
            if (!runs.empty() && runs.back().raw == s.raw
                && runs.back().to == s.from) { // exact: the same cut
                runs.back().piece = joined(runs.back().piece, s.piece);
                runs.back().to = s.to;
            } else {
                runs.push_back({ s.raw, s.from, s.to, s.piece });
            }
        }
        if (closed && runs.size() > 1 && runs.front().raw == runs.back().raw
            && runs.back().to == runs.front().from) {
            runs.front().piece = joined(runs.back().piece, runs.front().piece);
            runs.pop_back();
        }
        for (Run& run : runs)
            addPiece(chain, std::move(run.piece));
        if (closed && chain.pieces.size() > 2) {
            // The seam may lie within a piece.
            KcGeSegment2d first = std::move(chain.pieces.front());
            chain.pieces.erase(chain.pieces.begin());
            addPiece(chain, std::move(first));
        }
        if (isWorthKeeping(chain))
            result.push_back(std::move(chain));
    }

    bool isBetterClosed(size_t last, size_t first, size_t other) const
    {
        const double side = m_left > 0 ? 1 : -1;
        constexpr double kSampled = 30.0 * kNode;
        const KcGeVector2d in = -m_slices[last].piece.sampledDirection(true, kSampled);
        const auto turn = [&](size_t k) {
            return turnBetween(in, m_slices[k].piece.sampledDirection(false, kSampled)) * side;
        };
        return turn(first) >= turn(other);
    }

    static KcGeSegment2d joined(const KcGeSegment2d& a, const KcGeSegment2d& b)
    {
        if (const KcGeCircArc2d* x = a.asArc(), *y = b.asArc(); x && y)
            return KcGeSegment2d::arc({ x->center(), x->radius(), x->startAngle(), x->sweep() + y->sweep() });
        return KcGeSegment2d::line(a.startPoint(), b.endPoint());
    }

    /// Parts of one raw piece that was looked at in several parts are one again; specks go.
    static void addPiece(KcGeChain2d& chain, KcGeSegment2d piece)
    {
        if (piece.isDegenerate(kPoint))
            return;
        if (!chain.pieces.empty()) {
            KcGeSegment2d& before = chain.pieces.back();
            const KcGeCircArc2d *x = before.asArc(), *y = piece.asArc();
            const bool sameCircle = x && y && x->center() == y->center() && x->radius() == y->radius()
                && x->isClockwise() == y->isClockwise()
                && std::abs(x->sweep() + y->sweep()) < kTwoPi - KcGeContext::gTol.equalPoint;
            const bool sameLine = before.isLine() && piece.isLine()
                && KcGeSegment2d::line(before.startPoint(), piece.endPoint())
                        .closest(piece.startPoint())
                        .distance
                    <= kNearer
                && before.endDirection().dotProduct(piece.startDirection()) > 0.0;
            if (sameCircle || sameLine) {
                before = joined(before, piece);
                return;
            }
        }
        chain.pieces.push_back(std::move(piece));
    }

    bool isWorthKeeping(const KcGeChain2d& chain) const
    {
        if (chain.pieces.empty())
            return false;
        double length = 0.0;
        for (const KcGeSegment2d& s : chain.pieces)
            length += s.length();
        if (chain.closed)
            return std::abs(outlineArea(chain.pieces)) > 2.0 * kPoint * length;
        return length > kNode * 10.0;
    }

    std::vector<KcGeSegment2d> m_chain;
    bool m_closed;
    double m_left, m_distance;
    KcGeOffsetCorner m_corners;
    KcGeBoxTree m_tree;
    bool m_simple; ///< closed and nowhere in touch with itself: it has an inside
    std::vector<std::vector<KcGeSegment2d>> m_kites; ///< what extended corners add to the neighbourhood
    std::vector<KcGeExtents3d> m_kiteBoxes;
    std::vector<KcGeExtents3d> m_crossingTips; ///< boxes of those that reach over the chain
    KcGeBoxTree m_kiteTree;
    std::vector<Slice> m_slices;
};

double fitTolerance(const KcGeExtents2d& box, const KcGeOffsetOptions& options)
{
    constexpr double kShare = 1e-6; // of the curve's size: invisible on any plan
    const double size = (box.max - box.min).length();
    return options.fitTolerance > 0.0 ? options.fitTolerance : std::max(size * kShare, kPoint);
}

} // namespace

std::optional<std::vector<KcGeChain2d>> offsetChain(
    std::span<const KcGeSegment2d> chain, bool closed, double distance, const KcGeOffsetOptions& options)
{
    if (!std::isfinite(distance))
        return std::nullopt;
    KcGeExtents2d box;
    for (const KcGeSegment2d& piece : chain) {
        if (!piece.isFinite())
            return std::nullopt;
        box.addExtents(piece.extents());
    }
    if (chain.empty())
        return std::vector<KcGeChain2d>{};
    const KcGeVector2d origin = (box.min + (box.max - box.min) * 0.5).asVector();
    std::vector<KcGeSegment2d> near;
    for (const KcGeSegment2d& piece : chain) {
        if (piece.isDegenerate(kPoint))
            continue;
        if (piece.isSimple())
            near.push_back(piece.translated(-origin));
        else
            for (const KcGeSegment2d& simple : piece.simpleSegments(fitTolerance(box, options)))
                near.push_back(simple.translated(-origin));
    }
    if (near.empty())
        return std::vector<KcGeChain2d>{};
    if (const KcGePoint2d end = near.back().endPoint(), start = near.front().startPoint();
        closed && !end.isEqualTo(start))
        near.push_back(KcGeSegment2d::line(end, start));
    std::vector<KcGeChain2d> result;
    if (std::abs(distance) <= kPoint)
        result.push_back({ std::move(near), closed });
    else
        result = Offsetter(std::move(near), closed, -distance, options.corners).run();
    for (KcGeChain2d& part : result)
        for (KcGeSegment2d& piece : part.pieces)
            piece = piece.translated(origin);
    return result;
}
