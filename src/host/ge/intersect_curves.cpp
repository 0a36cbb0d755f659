// Common points of pieces of which one is an ellipse or spline, and of a spline with itself: by halving what
// may meet until one Newton iteration settles it.

#include "ge/box_tree.h"
#include "ge/intersect_detail.h"

#include <array>

namespace kcge_detail {
namespace {

/// A stretch that rises or falls steadily in both coordinates, so that its ends span its box.
struct Stretch {
    double low = 0.0, high = 0.0;
    KcGePoint2d start, end;
    double deviation = 0.0; ///< from the chord, an upper estimate
    double turn = 0.0; ///< of the direction along it, an upper estimate, radians

    KcGeExtents2d box(double margin) const
    {
        KcGeExtents2d box;
        box.addPoint(start);
        box.addPoint(end);
        box.min = box.min - KcGeVector2d{ margin, margin };
        box.max = box.max + KcGeVector2d{ margin, margin };
        return box;
    }
    KcGeVector2d chord() const { return end - start; }
};

double angleBetween(KcGeVector2d a, KcGeVector2d b)
{
    return std::abs(std::atan2(a.crossProduct(b), a.dotProduct(b)));
}

Stretch stretch(const KcGeSegment2d& piece, double low, double high)
{
    Stretch s{ low, high, piece.pointAt(low), piece.pointAt(high), 0.0, 0.0 };
    if (piece.isLine())
        return s;
    // Samples in the inside, with a margin for what lies between them.
    constexpr double kMargin = 1.5;
    const KcGeVector2d chord = s.chord();
    const double length = chord.length();
    KcGeVector2d before = piece.directionAt(low);
    for (const double f : { 0.25, 0.5, 0.75, 1.0 }) {
        const double t = f == 1.0 ? high : low + (high - low) * f; // exact: the end itself
        const KcGeVector2d direction = piece.directionAt(t);
        s.turn += angleBetween(before, direction);
        before = direction;
        if (f < 1.0) {
            const KcGeVector2d offset = piece.pointAt(t) - s.start;
            s.deviation = std::max(
                s.deviation, length > 0.0 ? std::abs(offset.crossProduct(chord)) / length : offset.length());
        }
    }
    s.deviation *= kMargin;
    s.turn *= kMargin;
    return s;
}

std::vector<Stretch> steadyStretches(const KcGeSegment2d& piece)
{
    std::vector<double> params = piece.monotoneParams();
    params.push_back(1.0);
    std::vector<Stretch> result;
    double from = 0.0;
    for (const double to : params) {
        if (to > from)
            result.push_back(stretch(piece, from, to));
        from = to;
    }
    return result;
}

/// Nearest parameters, as fractions, of two straight stretches (Ericson, Real-Time Collision
/// Detection, 5.1.9).
std::array<double, 2> nearestFractions(KcGePoint2d p, KcGeVector2d d, KcGePoint2d q, KcGeVector2d e)
{
    const KcGeVector2d r = p - q;
    const double a = d.dotProduct(d), c = e.dotProduct(e), f = e.dotProduct(r), g = d.dotProduct(r);
    const double b = d.dotProduct(e), denominator = a * c - b * b;
    double s = a > 0.0 && denominator > 0.0 ? std::clamp((b * f - g * c) / denominator, 0.0, 1.0) : 0.5;
    double t = c > 0.0 ? (b * s + f) / c : 0.0;
    if (t < 0.0 || t > 1.0) {
        t = std::clamp(t, 0.0, 1.0);
        s = a > 0.0 ? std::clamp((b * t - g) / a, 0.0, 1.0) : 0.0;
    }
    return { s, t };
}

class Search {
public:
    Search(
        const KcGeSegment2d& a, const KcGeSegment2d& b, const std::vector<KcGeOverlap2d>& overlaps,
        double tolerance)
        : m_a(a)
        , m_b(b)
        , m_overlaps(overlaps)
        , m_tolerance(tolerance)
    {
    }

    void run(const Stretch& a, const Stretch& b)
    {
        m_pairs.push_back({ a, b });
        while (!m_pairs.empty()) {
            const auto [x, y] = m_pairs.back();
            m_pairs.pop_back();
            step(x, y);
        }
    }
    std::vector<Meeting> take() { return std::move(m_meetings); }

private:
    void step(const Stretch& a, const Stretch& b)
    {
        if (!a.box(m_tolerance).overlaps(b.box(0.0)) || isCovered(a) || isBeside(a, b) || isBeside(b, a))
            return;
        ++m_steps;
        // A thousandth of the tolerance keeps touches from being taken for gaps.
        const double flat = m_tolerance / 8.0;
        constexpr double kCone = 0.5; // radians: beyond, chords say little of the curves
        const double turns = a.turn + b.turn;
        const double angle = angleBetween(a.chord(), b.chord());
        const bool transversal = turns < kCone && std::min(angle, kPi - angle) > turns;
        if (transversal) {
            if (newton(a, b))
                return;
        }
        constexpr size_t kMostSteps = 400'000; // for curves that run along each other beyond the tolerance
        const bool aFlat = a.deviation <= flat, bFlat = b.deviation <= flat;
        if ((aFlat && bFlat) || m_steps > kMostSteps || tooShort(a, b)) {
            meetChords(a, b);
            return;
        }
        const bool splitA = aFlat ? false : bFlat || a.chord().length() >= b.chord().length();
        const Stretch& s = splitA ? a : b;
        const KcGeSegment2d& piece = splitA ? m_a : m_b;
        const double middle = (s.low + s.high) / 2.0;
        for (const Stretch& half : { stretch(piece, s.low, middle), stretch(piece, middle, s.high) })
            m_pairs.push_back(splitA ? std::pair{ half, b } : std::pair{ a, half });
    }

    bool tooShort(const Stretch& a, const Stretch& b) const
    {
        const auto isShort = [&](const Stretch& s) {
            const double middle = (s.low + s.high) / 2.0;
            return s.chord().length() <= m_tolerance / 8.0 || !(middle > s.low && middle < s.high);
        };
        return isShort(a) && isShort(b);
    }
    bool isCovered(const Stretch& a) const
    {
        return std::any_of(m_overlaps.begin(), m_overlaps.end(), [&](const KcGeOverlap2d& o) {
            return a.low >= o.firstFrom && a.high <= o.firstTo;
        });
    }
    /// True when the second stretch lies wholly on one side of the first one, out of its reach.
    bool isBeside(const Stretch& a, const Stretch& b) const
    {
        const KcGeVector2d chord = a.chord();
        const double length = chord.length();
        if (!(length > 0.0))
            return false;
        const double start = chord.crossProduct(b.start - a.start) / length;
        const double end = chord.crossProduct(b.end - a.start) / length;
        const double reach = a.deviation + b.deviation + m_tolerance;
        return std::min(start, end) > reach || std::max(start, end) < -reach;
    }

    /// Two stretches that cannot meet twice. False when the iteration does not settle whether they do.
    bool newton(const Stretch& a, const Stretch& b)
    {
        double t = (a.low + a.high) / 2.0, s = (b.low + b.high) / 2.0;
        const double slackT = (a.high - a.low) / 16.0, slackS = (b.high - b.low) / 16.0;
        constexpr int kIterations = 12;
        for (int i = 0; i < kIterations; ++i) {
            const KcGePoint2d p = m_a.pointAt(t), q = m_b.pointAt(s);
            const KcGeVector2d gap = q - p, d = m_a.firstDeriv(t), e = m_b.firstDeriv(s);
            const double denominator = d.crossProduct(e);
            if (denominator == 0.0) // exact: nothing can be divided by it
                return false;
            const double nextT = t + gap.crossProduct(e) / denominator;
            const double nextS = s + gap.crossProduct(d) / denominator;
            if (!std::isfinite(nextT) || !std::isfinite(nextS))
                return false;
            // Steps beyond the stretches are cut: their curves bend by no more than the cone there.
            t = std::clamp(nextT, std::max(0.0, a.low - slackT), std::min(1.0, a.high + slackT));
            s = std::clamp(nextS, std::max(0.0, b.low - slackS), std::min(1.0, b.high + slackS));
            if (m_a.pointAt(t).distanceTo(m_b.pointAt(s)) <= m_tolerance * 1e-4 && i > 0) {
                if (t >= a.low - slackT && t <= a.high + slackT)
                    m_meetings.push_back({ t, s });
                return true;
            }
        }
        // Not met: at rest on a border of the stretches, they pass each other by.
        const double gap = m_a.pointAt(t).distanceTo(m_b.pointAt(s));
        if (gap > m_tolerance) {
            const bool border = t <= a.low || t >= a.high || s <= b.low || s >= b.high;
            return border && gap > a.deviation + b.deviation + m_tolerance;
        }
        m_meetings.push_back({ t, s });
        return true;
    }

    void meetChords(const Stretch& a, const Stretch& b)
    {
        const auto [f, g] = nearestFractions(a.start, a.chord(), b.start, b.chord());
        double t = a.low + (a.high - a.low) * f, s = b.low + (b.high - b.low) * g;
        // Parameters of chords and curves differ: once across, from each to the other.
        if (m_a.pointAt(t).distanceTo(m_b.pointAt(s)) > m_tolerance / 2.0) {
            s = m_b.closest(m_a.pointAt(t)).t;
            t = m_a.closest(m_b.pointAt(s)).t;
        }
        if (m_a.pointAt(t).distanceTo(m_b.pointAt(s)) <= m_tolerance)
            m_meetings.push_back({ t, s });
    }

    const KcGeSegment2d& m_a;
    const KcGeSegment2d& m_b;
    const std::vector<KcGeOverlap2d>& m_overlaps;
    double m_tolerance;
    size_t m_steps = 0;
    std::vector<std::pair<Stretch, Stretch>> m_pairs;
    std::vector<Meeting> m_meetings;
};

KcGeExtents3d boxOf(const Stretch& s, double margin)
{
    const KcGeExtents2d flat = s.box(margin);
    KcGeExtents3d box;
    box.addPoint({ flat.min.x, flat.min.y, 0.0 });
    box.addPoint({ flat.max.x, flat.max.y, 0.0 });
    return box;
}

KcGeBoxTree treeOf(const std::vector<Stretch>& stretches)
{
    std::vector<KcGeExtents3d> boxes;
    for (const Stretch& s : stretches)
        boxes.push_back(boxOf(s, 0.0));
    return KcGeBoxTree(std::move(boxes));
}

} // namespace

std::vector<Meeting> meetingsOfCurves(
    const KcGeSegment2d& first, const KcGeSegment2d& second, const std::vector<KcGeOverlap2d>& overlaps,
    double tolerance)
{
    const std::vector<Stretch> as = steadyStretches(first), bs = steadyStretches(second);
    const KcGeBoxTree tree = treeOf(bs);
    Search search(first, second, overlaps, tolerance);
    for (const Stretch& a : as)
        tree.overlapping(boxOf(a, tolerance), [&](size_t j) { search.run(a, bs[j]); });
    // Neighbouring stretches find the same root once more.
    std::vector<Meeting> meetings = search.take(), result;
    std::sort(meetings.begin(), meetings.end(), [](const Meeting& x, const Meeting& y) {
        return x.first < y.first;
    });
    for (const Meeting& m : meetings) {
        const auto isSame = [&](const Meeting& n) {
            return first.pointAt(m.first).distanceTo(first.pointAt(n.first)) <= tolerance / 2.0
                && std::abs(m.second - n.second) < 0.5
                && second.pointAt((m.second + n.second) / 2.0).distanceTo(first.pointAt(m.first))
                <= tolerance;
        };
        constexpr size_t kBack = 8;
        const auto oldest = result.rbegin() + long(std::min(result.size(), kBack));
        if (std::find_if(result.rbegin(), oldest, isSame) == oldest)
            result.push_back(m);
    }
    return result;
}

} // namespace kcge_detail

std::vector<KcGeCrossing2d> selfIntersections(const KcGeSegment2d& piece, double tolerance)
{
    using namespace kcge_detail;
    std::vector<KcGeCrossing2d> result;
    if (piece.kind() != KcGeSegment2d::Kind::Spline || !piece.isFinite() || !(tolerance > 0.0))
        return result;
    const std::vector<Stretch> stretches = steadyStretches(piece);
    const KcGeBoxTree tree = treeOf(stretches);
    const bool closed = piece.isClosed(tolerance);
    std::vector<Meeting> meetings;
    const std::vector<KcGeOverlap2d> none;
    Search search(piece, piece, none, tolerance);
    for (size_t i = 0; i < stretches.size(); ++i)
        tree.overlapping(boxOf(stretches[i], tolerance), [&](size_t j) {
            if (j > i + 1)
                search.run(stretches[i], stretches[j]);
        });
    // What lies along the curve within the tolerance of the place where two stretches join is no meeting.
    for (const Meeting& m : search.take()) {
        const double apart = m.second - m.first;
        const KcGePoint2d p = piece.pointAt(m.first);
        const bool seam
            = closed && apart > 0.5 && p.isEqualTo(piece.startPoint(), { 2.0 * tolerance, tolerance });
        const bool along = p.distanceTo(piece.pointAt((m.first + m.second) / 2.0)) <= tolerance
            && p.distanceTo(piece.pointAt(m.first + apart / 4.0)) <= tolerance;
        if (!seam && !along && apart > 0.0)
            meetings.push_back(m);
    }
    std::sort(meetings.begin(), meetings.end(), [](const Meeting& x, const Meeting& y) {
        return x.first < y.first;
    });
    for (const Meeting& m : meetings) {
        const KcGePoint2d p = piece.pointAt(m.first);
        const bool known = std::any_of(result.begin(), result.end(), [&](const KcGeCrossing2d& c) {
            const KcGePoint2d q = piece.pointAt((c.second + m.second) / 2.0);
            return std::abs(c.second - m.second) < 0.5 && staysNear(piece, c.first, m.first, piece, tolerance)
                && p.distanceTo(c.point) <= 1e2 * tolerance && q.distanceTo(p) <= 1e2 * tolerance;
        });
        if (known)
            continue;
        const double sine = piece.directionAt(m.first).crossProduct(piece.directionAt(m.second));
        result.push_back({ p, m.first, m.second, std::abs(sine) <= 1e3 * KcGeContext::gTol.equalVector });
    }
    return result;
}
