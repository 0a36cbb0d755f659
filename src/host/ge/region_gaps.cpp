// Which free ends meet what.

#include "ge/region_gaps.h"

namespace kcge {

namespace {

constexpr double kFar = std::numeric_limits<double>::infinity();
constexpr uint32_t kNobody = ~uint32_t(0);

/// The way on from an end along its curve: an arc of its circle, of its ellipse, else straight ahead.
KcGeSegment2d wayOn(const RegionNet& net, const RegionFreeEnd& end, double distance)
{
    const RegionPieces& pieces = net.pieces();
    const RegionPiece& piece = pieces[end.piece];
    const KcGePoint2d from = end.atEnd ? piece.end : piece.start;
    if (piece.kind == RegionPiece::Kind::Arc) {
        // Not further round than half a turn, nor to where the piece itself is again.
        const double angle
            = std::min({ distance / piece.radius, kPi, kTwoPi - piece.sweep - KcGeContext::gTol.equalVector });
        const double start = end.atEnd ? piece.startAngle + piece.sweep : piece.startAngle;
        return KcGeSegment2d::arc({ piece.center, piece.radius, start, end.atEnd ? angle : -angle });
    }
    const KcGeSegment2d segment = pieces.segment(piece);
    if (const auto ellipse = segment.asEllipse()) {
        const double anomaly = end.atEnd ? ellipse->start + ellipse->sweep : ellipse->start;
        const double speed = ellipse->derivativeAt(anomaly).length();
        const double side = (ellipse->sweep > 0.0) == end.atEnd ? 1.0 : -1.0;
        if (speed > 0.0)
            return KcGeSegment2d::ellipse(
                ellipse->center.plan(), { ellipse->u.x, ellipse->u.y }, { ellipse->v.x, ellipse->v.y }, anomaly,
                side * std::min(distance / speed, kPi / 2.0));
    }
    const KcGeVector2d ahead = end.atEnd ? segment.endDirection() : -segment.startDirection();
    return KcGeSegment2d::line(from, from + ahead * distance);
}

class GapBridge {
public:
    GapBridge(RegionNet& net, double distance)
        : m_net(net)
        , m_distance(distance)
        , m_slack(net.tolerances().onCurve)
    {
    }

    std::vector<KcGeSegment2d> run()
    {
        for (const RegionFreeEnd& end : freeEnds(m_net))
            if (!end.crossesBefore || end.edgeLength > m_distance)
                m_ends.push_back(end);
        if (m_ends.empty())
            return {};
        makeWays();
        joinEndsOnTheirWays();
        goToCurves();
        joinStraight();
        return std::move(m_bridges);
    }

private:
    struct Hit {
        double t = kFar; ///< on the way
        uint32_t piece = 0;
    };
    struct Meeting {
        uint32_t first, second; ///< ends
        double onFirst, onSecond; ///< parameters of their ways
        double length;
    };

    KcGePoint2d place(uint32_t end) const { return m_net.nodes()[m_ends[end].node]; }
    double lengthTo(uint32_t end, double t) const { return m_segments[end].lengthBetween(0.0, t); }

    void makeWays()
    {
        m_hits.resize(m_ends.size());
        m_done.assign(m_ends.size(), 0);
        m_walked.assign(m_ends.size(), 0.0);
        for (uint32_t e = 0; e < m_ends.size(); ++e) {
            // A bridge of exactly the distance is one.
            m_segments.push_back(wayOn(m_net, m_ends[e], m_distance + m_slack));
            m_ways.addWhole(m_segments.back(), e);
            m_boxes.push_back(m_segments.back().extents());
            m_net.piecesNear(grown(m_boxes[e]), [&](uint32_t p) {
                m_common.clear();
                m_ways.common(m_ways[e], m_net.pieces()[p], m_net.pieces(), m_common);
                for (const RegionPieces::Common& c : m_common)
                    if (const double t = onWay(e, c.first); t < m_hits[e].t && lengthTo(e, t) > m_slack)
                        m_hits[e] = { t, p };
            });
        }
    }
    /// The parameter of a way for that of its piece: pieces turn counter-clockwise, ways lead away from their end.
    double onWay(uint32_t end, double t) const
    {
        const KcGeCircArc2d* arc = m_segments[end].asArc();
        return arc && arc->isClockwise() ? 1.0 - t : t;
    }
    KcGeExtents2d grown(KcGeExtents2d box) const
    {
        box.min = box.min - KcGeVector2d{ m_slack, m_slack };
        box.max = box.max + KcGeVector2d{ m_slack, m_slack };
        return box;
    }

    /// Where the ways of two ends meet with no curve before that point.
    void findMeetings()
    {
        const ScatteredBoxes tree(m_boxes);
        for (uint32_t e = 0; e < m_ends.size(); ++e)
            tree.overlapping(grown(m_boxes[e]), [&](uint32_t f) {
                if (f <= e || m_ends[e].node == m_ends[f].node)
                    return;
                m_common.clear();
                m_ways.common(m_ways[e], m_ways[f], m_ways, m_common);
                Meeting best{ e, f, 0.0, 0.0, kFar };
                for (const RegionPieces::Common& c : m_common) {
                    const double t = onWay(e, c.first), s = onWay(f, c.second);
                    if (const double length = lengthTo(e, t) + lengthTo(f, s); length < best.length)
                        best = { e, f, t, s, length };
                }
                if (best.length < kFar)
                    m_meetings.push_back(best);
            });
        std::sort(m_meetings.begin(), m_meetings.end(),
            [](const Meeting& a, const Meeting& b) { return a.length < b.length; });
    }
    bool isFreeUpTo(uint32_t end, double t) const
    {
        return m_hits[end].t == kFar || lengthTo(end, t) <= lengthTo(end, m_hits[end].t) + m_slack;
    }
    void walk(uint32_t end, double t)
    {
        m_done[end] = 1;
        m_walked[end] = lengthTo(end, t);
        if (m_walked[end] <= m_slack)
            return;
        KcGeSegment2d way = m_segments[end].between(0.0, t);
        m_bridges.push_back(way);
        m_net.pieces().addLocal(way, kBridge);
    }

    void joinEndsOnTheirWays()
    {
        findMeetings();
        for (const Meeting& m : m_meetings) {
            if (m_done[m.first] || m_done[m.second] || !isFreeUpTo(m.first, m.onFirst)
                || !isFreeUpTo(m.second, m.onSecond))
                continue;
            walk(m.first, m.onFirst);
            walk(m.second, m.onSecond);
        }
    }

    void goToCurves()
    {
        // Another end's bridge is as good as a curve.
        for (const Meeting& m : m_meetings)
            for (const auto& [end, other, t, otherT] :
                { std::tuple(m.first, m.second, m.onFirst, m.onSecond), std::tuple(m.second, m.first, m.onSecond, m.onFirst) })
                if (!m_done[end] && m_done[other] && lengthTo(other, otherT) <= m_walked[other] + m_slack
                    && t < m_hits[end].t)
                    m_hits[end] = { t, kNobody };
        std::vector<uint32_t> order;
        for (uint32_t e = 0; e < m_ends.size(); ++e)
            if (!m_done[e] && m_hits[e].t < kFar)
                order.push_back(e);
        std::sort(order.begin(), order.end(),
            [&](uint32_t a, uint32_t b) { return lengthTo(a, m_hits[a].t) < lengthTo(b, m_hits[b].t); });
        for (const uint32_t e : order) {
            if (m_done[e])
                continue;
            walk(e, m_hits[e].t);
            if (m_hits[e].piece == kNobody)
                continue;
            // A curve that is met at its free end need not go on itself.
            if (const uint32_t other = endNear(m_segments[e].pointAt(m_hits[e].t)); other != kNobody)
                m_done[other] = 1;
        }
    }
    uint32_t endNear(KcGePoint2d point)
    {
        if (!m_endTreeMade) {
            std::vector<KcGeExtents2d> boxes(m_ends.size());
            for (uint32_t e = 0; e < m_ends.size(); ++e)
                boxes[e].addPoint(place(e));
            m_endTree = ScatteredBoxes(boxes);
            m_endTreeMade = true;
        }
        uint32_t found = kNobody;
        double best = m_net.tolerances().node();
        m_endTree.nearest(point, best, [&](uint32_t e, double& nearest) {
            if (const double d = place(e).distanceTo(point); d < nearest) {
                nearest = d;
                found = e;
            }
        });
        return found;
    }

    void joinStraight()
    {
        endNear({});
        struct Link {
            uint32_t first, second;
            double length;
        };
        std::vector<Link> links;
        for (uint32_t e = 0; e < m_ends.size(); ++e) {
            if (m_done[e])
                continue;
            uint32_t found = kNobody;
            double best = m_distance + m_slack;
            m_endTree.nearest(place(e), best, [&](uint32_t f, double& nearest) {
                if (f == e || m_done[f] || m_ends[f].piece == m_ends[e].piece)
                    return;
                if (const double d = place(e).distanceTo(place(f)); d < nearest) {
                    nearest = d;
                    found = f;
                }
            });
            if (found != kNobody)
                links.push_back({ e, found, best });
        }
        std::sort(links.begin(), links.end(), [](const Link& a, const Link& b) { return a.length < b.length; });
        for (const Link& link : links) {
            if (m_done[link.first] || m_done[link.second])
                continue;
            const KcGeSegment2d line = KcGeSegment2d::line(place(link.first), place(link.second));
            if (isCrossed(line))
                continue;
            m_done[link.first] = m_done[link.second] = 1;
            m_bridges.push_back(line);
            m_net.pieces().addLocal(line, kBridge);
        }
    }
    bool isCrossed(const KcGeSegment2d& line)
    {
        RegionPieces one(m_ways.origin(), m_ways.tolerance());
        one.addWhole(line, 0);
        bool crossed = false;
        m_net.piecesNear(grown(line.extents()), [&](uint32_t p) {
            m_common.clear();
            one.common(one[0], m_net.pieces()[p], m_net.pieces(), m_common);
            for (const RegionPieces::Common& c : m_common) {
                const double length = line.length();
                crossed = crossed
                    || (c.first * length > m_net.tolerances().node()
                        && (1.0 - c.first) * length > m_net.tolerances().node());
            }
        });
        return crossed;
    }

    static constexpr uint32_t kBridge = RegionPiece::kNoSource;
    RegionNet& m_net;
    double m_distance, m_slack;
    std::vector<RegionFreeEnd> m_ends;
    std::vector<KcGeSegment2d> m_segments;
    RegionPieces m_ways{ m_net.pieces().origin(), m_net.pieces().tolerance() };
    std::vector<RegionPieces::Common> m_common; ///< of the pair at hand
    std::vector<KcGeExtents2d> m_boxes;
    std::vector<Hit> m_hits;
    std::vector<Meeting> m_meetings;
    std::vector<char> m_done;
    std::vector<double> m_walked;
    std::vector<KcGeSegment2d> m_bridges;
    ScatteredBoxes m_endTree;
    bool m_endTreeMade = false;
};

} // namespace

std::vector<RegionFreeEnd> freeEnds(const RegionNet& net)
{
    const std::vector<uint32_t> degree = net.degrees();
    const RegionPieces& pieces = net.pieces();
    std::vector<RegionFreeEnd> result;
    for (const RegionEdge& edge : net.edges())
        for (const bool atEnd : { false, true }) {
            const uint32_t node = atEnd ? edge.end : edge.start;
            if (degree[node] != 1)
                continue;
            RegionFreeEnd end;
            end.node = node;
            end.piece = edge.piece;
            end.atEnd = atEnd;
            // A copy that ends on the curve cuts it too; only where more than two edges meet something is crossed.
            const bool cut = atEnd ? edge.from > 0.0 : edge.to < 1.0;
            end.crossesBefore = cut && degree[atEnd ? edge.start : edge.end] > 2;
            end.edgeLength = pieces.length(pieces[edge.piece], edge.from, edge.to);
            result.push_back(end);
        }
    return result;
}

std::vector<KcGeSegment2d> bridgeGaps(RegionNet& net, double distance)
{
    const size_t known = net.pieces().size();
    std::vector<KcGeSegment2d> bridges = GapBridge(net, distance).run();
    net.findCutsOfNew(known);
    return bridges;
}

} // namespace kcge
