// Common points of two pieces: closed forms for lines and arcs, and what is done alike for all kinds: ends
// that lie on the other piece, overlaps, and roots that are one touch.

#include "ge/intersect.h"

#include "ge/intersect_detail.h"

#include <array>

using kcge_detail::Meeting;
using kcge_detail::meetingsOfCurves;
using kcge_detail::staysNear;

namespace {

/// Directions that differ by less than this sine are called parallel where pieces meet.
constexpr double kTangentSine = 1e3 * KcGeContext::gTol.equalVector;

/// A piece as it takes part: as it is, as a full circle or ellipse, or as a line without ends.
class Operand {
public:
    Operand(const KcGeSegment2d& given, bool extended, const KcGeSegment2d& other, double tolerance)
        : m_piece(&given)
    {
        if (!extended)
            return;
        if (given.isLine()) {
            if (other.isSimple())
                m_endless = given.startPoint().distanceTo(given.endPoint()) > tolerance;
            else
                reachAcross(given, other.extents(), tolerance);
        } else if (const KcGeCircArc2d* arc = given.asArc()) {
            if (!arc->isFullCircle())
                own(KcGeSegment2d::arc({ arc->center(), arc->radius(),
                                         allRound(arc->startAngle(), arc->sweep()),
                                         std::copysign(kTwoPi, arc->sweep()) }));
        } else if (const auto ellipse = given.asEllipse(); ellipse && std::abs(ellipse->sweep) < kTwoPi) {
            const double start = allRound(ellipse->start, ellipse->sweep);
            own(KcGeSegment2d::ellipse(
                ellipse->center.plan(), { ellipse->u.x, ellipse->u.y }, { ellipse->v.x, ellipse->v.y }, start,
                std::copysign(kTwoPi, ellipse->sweep)));
        }
    }
    Operand(const Operand&) = delete;
    Operand& operator=(const Operand&) = delete;

    const KcGeSegment2d& piece() const { return *m_piece; }
    bool isEndless() const { return m_endless; }
    KcGeSegment2d::Nearest closest(KcGePoint2d p) const
    {
        return m_endless ? m_piece->closestExtended(p) : m_piece->closest(p);
    }
    bool covers(double t) const { return m_endless || (t >= 0.0 && t <= 1.0); }
    double givenParam(double t) const { return m_offset + m_scale * t; }

private:
    void own(KcGeSegment2d piece)
    {
        m_own = std::move(piece);
        m_piece = &m_own;
    }
    /// Start of a full turn that has the piece in its middle; sets how parameters lead back.
    double allRound(double start, double sweep)
    {
        const double rest = kTwoPi - std::abs(sweep);
        m_offset = -rest / 2.0 / std::abs(sweep);
        m_scale = kTwoPi / std::abs(sweep);
        return start - std::copysign(rest / 2.0, sweep);
    }
    /// A line that reaches over a box.
    void reachAcross(const KcGeSegment2d& line, const KcGeExtents2d& box, double tolerance)
    {
        const KcGePoint2d start = line.startPoint();
        const KcGeVector2d along = line.endPoint() - start;
        const double square = along.dotProduct(along);
        if (!(square > tolerance * tolerance) || box.isEmpty())
            return;
        double low = 0.0, high = 1.0;
        for (const double x : { box.min.x, box.max.x })
            for (const double y : { box.min.y, box.max.y }) {
                const double t = (KcGePoint2d{ x, y } - start).dotProduct(along) / square;
                low = std::min(low, t);
                high = std::max(high, t);
            }
        own(KcGeSegment2d::line(start + along * low, start + along * high));
        m_offset = low;
        m_scale = high - low;
    }

    KcGeSegment2d m_own;
    const KcGeSegment2d* m_piece;
    bool m_endless = false;
    double m_offset = 0.0, m_scale = 1.0;
};

/// Parameters of a direction on an arc; nothing when the arc does not reach there.
std::optional<double> paramOnArc(const KcGeCircArc2d& arc, KcGeVector2d fromCenter)
{
    const double angle = std::atan2(fromCenter.y, fromCenter.x);
    const double turned
        = normalizedAngle(arc.sweep() < 0.0 ? arc.startAngle() - angle : angle - arc.startAngle());
    const double t = turned / std::abs(arc.sweep());
    return t <= 1.0 ? std::optional(t) : std::nullopt;
}

using Meetings = std::vector<Meeting>;

void meetLines(const Operand& a, const Operand& b, double tolerance, Meetings& meetings)
{
    const KcGePoint2d p = a.piece().startPoint(), q = b.piece().startPoint();
    const KcGeVector2d r = a.piece().endPoint() - p, u = b.piece().endPoint() - q, w = q - p;
    const double denominator = r.crossProduct(u);
    // Parallel to within what doubles can tell; overlaps are found by the ends.
    if (std::abs(denominator) <= 1e-3 * KcGeContext::gTol.equalVector * r.length() * u.length())
        return;
    const double t = w.crossProduct(u) / denominator, s = w.crossProduct(r) / denominator;
    if (a.covers(t) && b.covers(s) && (p + r * t).distanceTo(q + u * s) <= tolerance)
        meetings.push_back({ t, s });
}

void meetLineAndArc(
    const Operand& line, const KcGeCircArc2d& arc, bool lineFirst, double tolerance, Meetings& meetings)
{
    const KcGePoint2d start = line.piece().startPoint();
    const KcGeVector2d along = line.piece().endPoint() - start, from = start - arc.center();
    const double length = along.length();
    if (!(length > 0.0))
        return;
    const double foot = -from.dotProduct(along) / (length * length);
    const double distance = std::abs(from.crossProduct(along)) / length, radius = arc.radius();
    const auto add = [&](double t) {
        if (!line.covers(t))
            return;
        if (const auto s = paramOnArc(arc, from + along * t))
            meetings.push_back(lineFirst ? Meeting{ t, *s } : Meeting{ *s, t });
    };
    if (std::abs(distance - radius) < tolerance) {
        add(foot);
    } else if (distance < radius) {
        const double half = std::sqrt((radius - distance) * (radius + distance)) / length;
        add(foot - half);
        add(foot + half);
    }
}

void meetArcs(const KcGeCircArc2d& a, const KcGeCircArc2d& b, double tolerance, Meetings& meetings)
{
    const KcGeVector2d between = b.center() - a.center();
    const double distance = between.length(), difference = std::abs(a.radius() - b.radius());
    if (distance <= tolerance && difference <= tolerance)
        return; // the same circle: what there is to find are overlaps and ends
    if (!(distance > 0.0))
        return;
    const KcGeVector2d along = between / distance;
    const auto add = [&](KcGeVector2d fromA) {
        const auto t = paramOnArc(a, fromA), s = paramOnArc(b, fromA - between);
        if (t && s)
            meetings.push_back({ *t, *s });
    };
    if (std::abs(distance - a.radius() - b.radius()) < tolerance) {
        add(along * a.radius());
    } else if (std::abs(distance - difference) < tolerance) {
        add(along * (a.radius() >= b.radius() ? a.radius() : -a.radius()));
    } else if (distance < a.radius() + b.radius() && distance > difference) {
        // Foot of the common chord on the line of the centres.
        const double foot
            = distance / 2.0 + (a.radius() - b.radius()) * (a.radius() + b.radius()) / (2.0 * distance);
        const double half = std::sqrt(std::max(0.0, (a.radius() - foot) * (a.radius() + foot)));
        add(along * foot + along.perpVector() * half);
        add(along * foot - along.perpVector() * half);
    }
}

/// Meetings at the ends of the pieces, as far as they lie on the other one.
Meetings contacts(const Operand& a, const Operand& b, double tolerance)
{
    Meetings result;
    const bool bothEndless = a.isEndless() && b.isEndless();
    for (const double end : { 0.0, 1.0 }) {
        if (!a.isEndless() || bothEndless) {
            const auto nearest = b.closest(a.piece().pointAt(end));
            if (nearest.distance <= tolerance)
                result.push_back({ end, nearest.t });
        }
        if (!b.isEndless() || bothEndless) {
            const auto nearest = a.closest(b.piece().pointAt(end));
            if (nearest.distance <= tolerance)
                result.push_back({ nearest.t, end });
        }
    }
    std::sort(
        result.begin(), result.end(), [](const Meeting& x, const Meeting& y) { return x.first < y.first; });
    return result;
}

bool near(const Operand& a, double from, double to, const Operand& b, double tolerance)
{
    constexpr std::array kFractions{ 0.25, 0.5, 0.75 };
    return std::all_of(kFractions.begin(), kFractions.end(), [&](double f) {
        return b.closest(a.piece().pointAt(from + (to - from) * f)).distance <= tolerance;
    });
}

/// Overlaps begin and end at ends of one of the pieces.
std::vector<KcGeOverlap2d>
findOverlaps(const Operand& a, const Operand& b, const Meetings& ends, double tolerance)
{
    std::vector<KcGeOverlap2d> overlaps;
    const bool straight = a.piece().isLine() && b.piece().isLine();
    for (size_t i = 0; i + 1 < ends.size(); ++i) {
        const Meeting &from = ends[i], &to = ends[i + 1];
        if (from.first == to.first) // exact: the same end found twice
            continue;
        const double half = (from.first + to.first) / 2.0;
        const KcGePoint2d start = a.piece().pointAt(from.first), end = a.piece().pointAt(to.first);
        const double reach
            = start.distanceTo(a.piece().pointAt(half)) + end.distanceTo(a.piece().pointAt(half));
        if (reach <= 2.0 * tolerance)
            continue;
        // Between two points within the tolerance a straight line stays within it of another straight line.
        if (!(straight ? near(a, half, half, b, tolerance) : near(a, from.first, to.first, b, tolerance)))
            continue;
        if (!straight && !staysNear(a.piece(), from.first, to.first, b.piece(), tolerance))
            continue;
        KcGeOverlap2d overlap{ from.first, to.first, from.second, to.second, start, end };
        if (b.piece().isClosed(tolerance)) {
            // At the seam of a closed piece the nearest parameter may be 0 or 1; the way between them tells.
            const auto at = [&](double f) {
                return b.closest(a.piece().pointAt(from.first + (to.first - from.first) * f)).t;
            };
            const bool with = at(0.6) > at(0.4);
            const auto atSeam = [](double s) { return s == 0.0 || s == 1.0; };
            const KcGePoint2d seam = b.piece().startPoint();
            if (atSeam(overlap.secondFrom) || seam.isEqualTo(start, { tolerance, tolerance }))
                overlap.secondFrom = with ? 0.0 : 1.0;
            if (atSeam(overlap.secondTo) || seam.isEqualTo(end, { tolerance, tolerance }))
                overlap.secondTo = with ? 1.0 : 0.0;
        }
        if (!overlaps.empty() && overlaps.back().firstTo == overlap.firstFrom
            && overlaps.back().secondTo == overlap.secondFrom) {
            overlaps.back().firstTo = overlap.firstTo;
            overlaps.back().secondTo = overlap.secondTo;
            overlaps.back().end = overlap.end;
        } else {
            overlaps.push_back(overlap);
        }
    }
    return overlaps;
}

struct Candidate {
    Meeting at;
    bool isEnd = false; ///< found as an end on the other piece, not as a root
};

bool isInOverlap(
    const Candidate& c, const std::vector<KcGeOverlap2d>& overlaps, const Operand& a, double tolerance)
{
    return std::any_of(overlaps.begin(), overlaps.end(), [&](const KcGeOverlap2d& o) {
        const KcGePoint2d p = a.piece().pointAt(c.at.first);
        const KcGeTol tol{ 2.0 * tolerance, tolerance };
        if (p.isEqualTo(o.start, tol) || p.isEqualTo(o.end, tol))
            return true;
        const auto [low, high] = std::minmax(o.secondFrom, o.secondTo);
        return c.at.first >= o.firstFrom && c.at.first <= o.firstTo && c.at.second >= low
            && c.at.second <= high;
    });
}

/// True when a piece does not leave the other between two of its parameters; of a closed one, on the shorter
/// way, which may lead over its start.
bool nearBetween(const Operand& a, double from, double to, const Operand& b, double tolerance)
{
    if (std::abs(from - to) <= 0.5 || !a.piece().isClosed(tolerance))
        return near(a, from, to, b, tolerance);
    const auto [low, high] = std::minmax(from, to);
    return near(a, high, 1.0, b, tolerance) && near(a, 0.0, low, b, tolerance);
}

/// True when two meetings are the same touch: neither piece leaves the other between them.
bool isSame(const Meeting& m, const Meeting& n, const Operand& a, const Operand& b, double tolerance)
{
    return nearBetween(a, m.first, n.first, b, tolerance) && nearBetween(b, m.second, n.second, a, tolerance);
}

double sineBetween(const Operand& a, double t, const Operand& b, double s)
{
    return a.piece().directionAt(t).crossProduct(b.piece().directionAt(s));
}

/// Where in a cluster of roots the pieces run parallel: the point of the touch.
Meeting touchPoint(const Meeting& from, const Meeting& to, const Operand& a, const Operand& b)
{
    double low = from.first, high = to.first;
    const auto sine = [&](double t) { return sineBetween(a, t, b, b.closest(a.piece().pointAt(t)).t); };
    double atLow = sine(low);
    if (atLow * sine(high) < 0.0) {
        constexpr int kHalvings = 40; // a millionth of a millionth of the cluster
        for (int i = 0; i < kHalvings; ++i) {
            const double middle = (low + high) / 2.0, at = sine(middle);
            (atLow * at <= 0.0 ? high : low) = middle;
            if (atLow * at > 0.0)
                atLow = at;
        }
    }
    const double t = (low + high) / 2.0;
    return { t, b.closest(a.piece().pointAt(t)).t };
}

KcGeCrossing2d crossingOf(const std::vector<Candidate>& cluster, const Operand& a, const Operand& b)
{
    std::vector<Meeting> roots;
    for (const Candidate& c : cluster)
        if (!c.isEnd)
            roots.push_back(c.at);
    KcGeCrossing2d crossing;
    Meeting at = roots.empty() ? cluster.front().at : roots.front();
    if (roots.size() > 1) {
        const auto end
            = std::find_if(cluster.begin(), cluster.end(), [](const Candidate& c) { return c.isEnd; });
        const bool overSeam = std::abs(roots.front().first - roots.back().first) > 0.5;
        at = overSeam && end != cluster.end() ? end->at : touchPoint(roots.front(), roots.back(), a, b);
    }
    // An end keeps its exact place: what meets in a vertex is to meet there for every pair of pieces.
    const auto isExactEnd = [](double t) { return t == 0.0 || t == 1.0; };
    const KcGePoint2d root = a.piece().pointAt(at.first);
    for (const Candidate& c : cluster) {
        const bool better = isExactEnd(c.at.first) && (isExactEnd(c.at.second) || !isExactEnd(at.first));
        if (c.isEnd && (better || !isExactEnd(at.first))
            && (roots.empty() || a.piece().pointAt(c.at.first).isEqualTo(root)))
            at = c.at;
    }
    crossing.first = at.first;
    crossing.second = at.second;
    crossing.point = !isExactEnd(at.first) && isExactEnd(at.second) ? b.piece().pointAt(at.second)
                                                                    : a.piece().pointAt(at.first);
    crossing.tangent = roots.size() > 1 || std::abs(sineBetween(a, at.first, b, at.second)) <= kTangentSine;
    return crossing;
}

void findMeetings(
    const Operand& a, const Operand& b, const std::vector<KcGeOverlap2d>& overlaps, double tolerance,
    Meetings& meetings)
{
    const KcGeCircArc2d *arcA = a.piece().asArc(), *arcB = b.piece().asArc();
    if (a.piece().isLine() && b.piece().isLine())
        meetLines(a, b, tolerance, meetings);
    else if (a.piece().isLine() && arcB)
        meetLineAndArc(a, *arcB, true, tolerance, meetings);
    else if (arcA && b.piece().isLine())
        meetLineAndArc(b, *arcA, false, tolerance, meetings);
    else if (arcA && arcB)
        meetArcs(*arcA, *arcB, tolerance, meetings);
    else
        meetings = meetingsOfCurves(a.piece(), b.piece(), overlaps, tolerance);
}

} // namespace

namespace kcge_detail {

bool staysNear(
    const KcGeSegment2d& first, double from, double to, const KcGeSegment2d& second, double tolerance)
{
    const int samples = first.isSimple() && second.isSimple() ? 4 : 16;
    for (int i = 1; i < samples; ++i) {
        const double t = from + (to - from) * i / samples;
        const KcGePoint2d p = first.pointAt(t);
        const double distance
            = second.isLine() ? second.closestExtended(p).distance : second.closest(p).distance;
        if (!(distance <= tolerance))
            return false;
    }
    return true;
}

} // namespace kcge_detail

KcGeIntersections2d
intersect(const KcGeSegment2d& first, const KcGeSegment2d& second, const KcGeIntersectOptions& options)
{
    KcGeIntersections2d result;
    const double tolerance = options.tolerance;
    if (!first.isFinite() || !second.isFinite() || !(tolerance > 0.0))
        return result;
    const Operand a(first, options.extendFirst, second, tolerance);
    const Operand b(second, options.extendSecond, first, tolerance);

    const Meetings ends = contacts(a, b, tolerance);
    if (ends.size() > 1)
        result.overlaps = findOverlaps(a, b, ends, tolerance);
    Meetings roots;
    findMeetings(a, b, result.overlaps, tolerance, roots);

    std::vector<Candidate> candidates;
    for (const Meeting& m : roots)
        candidates.push_back({ m, false });
    for (const Meeting& m : ends)
        candidates.push_back({ m, true });
    if (!result.overlaps.empty())
        std::erase_if(
            candidates, [&](const Candidate& c) { return isInOverlap(c, result.overlaps, a, tolerance); });
    std::sort(candidates.begin(), candidates.end(), [](const Candidate& x, const Candidate& y) {
        return x.at.first < y.at.first;
    });

    // Meetings in the order of the first piece; strands of the second that pass the same place are told
    // apart.
    constexpr size_t kStrands = 8; // more strands of one piece do not pass one place of another
    std::vector<std::vector<Candidate>> clusters;
    for (const Candidate& c : candidates) {
        const auto isOne = [&](const std::vector<Candidate>& cluster) {
            return isSame(cluster.back().at, c.at, a, b, tolerance)
                || isSame(cluster.front().at, c.at, a, b, tolerance);
        };
        const auto oldest = clusters.rbegin() + long(std::min(clusters.size(), kStrands));
        auto same = std::find_if(clusters.rbegin(), oldest, isOne);
        if (same == oldest)
            same
                = !clusters.empty() && isOne(clusters.front()) ? std::prev(clusters.rend()) : clusters.rend();
        if (same != clusters.rend())
            same->push_back(c);
        else
            clusters.push_back({ c });
    }
    for (const auto& cluster : clusters) {
        KcGeCrossing2d crossing = crossingOf(cluster, a, b);
        crossing.first = a.givenParam(crossing.first);
        crossing.second = b.givenParam(crossing.second);
        result.points.push_back(crossing);
    }
    for (KcGeOverlap2d& o : result.overlaps) {
        o.firstFrom = a.givenParam(o.firstFrom);
        o.firstTo = a.givenParam(o.firstTo);
        o.secondFrom = b.givenParam(o.secondFrom);
        o.secondTo = b.givenParam(o.secondTo);
    }
    std::sort(result.points.begin(), result.points.end(), [](const auto& x, const auto& y) {
        return x.first < y.first;
    });
    return result;
}
