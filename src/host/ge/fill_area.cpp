// Chains pieces to outlines, finds which lies in which, and sums their areas.

#include "ge/fill_area.h"

#include "ge/arc.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>

namespace {

constexpr int kChordsOfTurn = 128;
constexpr int kMostChordsOfTurn = 4096;

KcGePoint2d plan(KcGePoint3d p)
{
    return p.plan();
}

bool isFinite(KcGePoint2d p)
{
    return std::isfinite(p.x) && std::isfinite(p.y);
}

bool isUsable(const KcGeFillPiece& piece)
{
    if (const auto* line = std::get_if<KcGeFillLine>(&piece))
        return isFinite(line->start) && isFinite(line->end);
    if (const auto* arc = std::get_if<KcGeEllipArc3d>(&piece))
        return isFinite(arc->center.plan()) && std::isfinite(arc->u.x + arc->u.y + arc->v.x + arc->v.y)
            && std::isfinite(arc->start + arc->sweep) && std::abs(arc->sweep) <= 2.0 * kTwoPi;
    return std::get<KcGeNurbsCurve3d>(piece).isValid();
}

KcGeFillPiece moved(KcGeFillPiece piece, KcGeVector2d by)
{
    std::visit(
        [&](auto& p) {
            using P = std::decay_t<decltype(p)>;
            const KcGeVector3d shift{ by.x, by.y, 0 };
            if constexpr (std::is_same_v<P, KcGeFillLine>) {
                p.start = p.start + by;
                p.end = p.end + by;
            } else if constexpr (std::is_same_v<P, KcGeEllipArc3d>) {
                p.center = p.center + shift;
            } else {
                for (KcGePoint3d& q : p.controlPoints)
                    q = q + shift;
            }
        },
        piece);
    return piece;
}

std::vector<KcGePoint2d> arcChords(const KcGeEllipArc3d& arc, int n)
{
    std::vector<KcGePoint2d> points;
    points.reserve(size_t(n) + 1);
    for (int i = 0; i <= n; ++i)
        points.push_back(plan(arc.pointAt(arc.start + arc.sweep * i / n)));
    return points;
}

/// Half the integral of x·dy − y·dx along the piece about the origin.
double areaShare(const KcGeFillPiece& piece)
{
    const double chord = kcgeStart(piece).asVector().crossProduct(kcgeEnd(piece).asVector()) / 2.0;
    if (const auto* arc = std::get_if<KcGeEllipArc3d>(&piece)) {
        // The segment over the chord: half of |u × v|·(sweep − sin sweep).
        const double cross = arc->u.x * arc->v.y - arc->u.y * arc->v.x;
        return chord + cross / 2.0 * (arc->sweep - std::sin(arc->sweep));
    }
    if (const auto* spline = std::get_if<KcGeNurbsCurve3d>(&piece))
        return spline->planArea();
    return chord;
}

/// Chords that suffice to tell what lies inside what.
std::vector<KcGePoint2d> coarseChords(const KcGeFillPiece& piece)
{
    if (const auto* arc = std::get_if<KcGeEllipArc3d>(&piece))
        return arcChords(*arc, std::max(1, int(std::ceil(std::abs(arc->sweep) / kTwoPi * kChordsOfTurn))));
    if (const auto* spline = std::get_if<KcGeNurbsCurve3d>(&piece)) {
        const KcGeExtents3d box = spline->extents();
        return kcgeChords(piece, std::max(box.width(), box.height()) / (8.0 * kChordsOfTurn));
    }
    return { kcgeStart(piece), kcgeEnd(piece) };
}

bool joins(KcGePoint2d a, KcGePoint2d b)
{
    return a.distanceTo(b) <= KcGeContext::kJoinedEnds;
}

/// Finds pieces not used so far by a point near to one of their ends.
class Ends {
public:
    explicit Ends(const std::vector<KcGeFillPiece>& pieces)
        : m_pieces(pieces)
        , m_used(pieces.size(), false)
    {
    }

    bool isUsed(size_t i) const { return m_used[i]; }
    void use(size_t i) { m_used[i] = true; }
    bool touches(size_t i, KcGePoint2d p) const
    {
        return joins(kcgeStart(m_pieces[i]), p) || joins(kcgeEnd(m_pieces[i]), p);
    }

    /// The piece of the lowest number that begins or ends at the point; the number of pieces when none does.
    size_t at(KcGePoint2d p)
    {
        if (m_cells.empty())
            for (size_t i = 0; i < m_pieces.size(); ++i) {
                m_cells[cell(kcgeStart(m_pieces[i]), 0, 0)].push_back(i);
                m_cells[cell(kcgeEnd(m_pieces[i]), 0, 0)].push_back(i);
            }
        size_t best = m_pieces.size();
        for (int dx = -1; dx <= 1; ++dx)
            for (int dy = -1; dy <= 1; ++dy)
                if (const auto found = m_cells.find(cell(p, dx, dy)); found != m_cells.end()) {
                    // What was used is dropped, so that many pieces at one point are not looked through again.
                    std::erase_if(found->second, [&](size_t i) { return m_used[i]; });
                    for (const size_t i : found->second)
                        if (i < best && touches(i, p))
                            best = i;
                }
        return best;
    }

private:
    static uint64_t cell(KcGePoint2d p, int dx, int dy)
    {
        // Cells so far out that they have no number of their own share one; `touches` decides.
        const auto number = [](double v) {
            return int64_t(std::floor(std::clamp(v / KcGeContext::kJoinedEnds, -9e15, 9e15)));
        };
        return uint64_t(number(p.x) + dx) * 0x9E3779B97F4A7C15ull ^ uint64_t(number(p.y) + dy);
    }

    const std::vector<KcGeFillPiece>& m_pieces;
    std::vector<bool> m_used;
    std::unordered_map<uint64_t, std::vector<size_t>> m_cells;
};

/// Even-odd test against the chords of an outline.
bool isInside(KcGePoint2d p, const std::vector<KcGePoint2d>& outline)
{
    bool inside = false;
    for (size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
        const KcGePoint2d a = outline[i], b = outline[j];
        if ((a.y > p.y) != (b.y > p.y) && p.x < a.x + (b.x - a.x) * ((p.y - a.y) / (b.y - a.y)))
            inside = !inside;
    }
    return inside;
}

/// True when most of an outline lies inside another: outlines of one hatch may touch, and chords cut corners.
bool liesInside(const KcGeFillArea::Contour& inner, const KcGeFillArea::Contour& outer)
{
    if (!outer.box.overlaps(inner.box))
        return false;
    constexpr size_t kProbes = 32;
    const size_t step = std::max<size_t>(1, inner.chords.size() / kProbes);
    int votes = 0;
    for (size_t i = 0; i + 1 < inner.chords.size(); i += step) {
        const KcGePoint2d middle = inner.chords[i] + (inner.chords[i + 1] - inner.chords[i]) * 0.5;
        votes += isInside(middle, outer.chords) ? 1 : -1;
    }
    return votes > 0;
}

} // namespace

KcGePoint2d kcgeStart(const KcGeFillPiece& piece)
{
    if (const auto* line = std::get_if<KcGeFillLine>(&piece))
        return line->start;
    if (const auto* arc = std::get_if<KcGeEllipArc3d>(&piece))
        return plan(arc->startPoint());
    const auto& spline = std::get<KcGeNurbsCurve3d>(piece);
    return plan(spline.pointAt(spline.startParam()));
}

KcGePoint2d kcgeEnd(const KcGeFillPiece& piece)
{
    if (const auto* line = std::get_if<KcGeFillLine>(&piece))
        return line->end;
    if (const auto* arc = std::get_if<KcGeEllipArc3d>(&piece))
        return plan(arc->endPoint());
    const auto& spline = std::get<KcGeNurbsCurve3d>(piece);
    return plan(spline.pointAt(spline.endParam()));
}

KcGeFillPiece kcgeReversed(KcGeFillPiece piece)
{
    if (auto* line = std::get_if<KcGeFillLine>(&piece)) {
        std::swap(line->start, line->end);
    } else if (auto* arc = std::get_if<KcGeEllipArc3d>(&piece)) {
        arc->start += arc->sweep;
        arc->sweep = -arc->sweep;
    } else {
        auto& spline = std::get<KcGeNurbsCurve3d>(piece);
        std::reverse(spline.controlPoints.begin(), spline.controlPoints.end());
        std::reverse(spline.weights.begin(), spline.weights.end());
        std::reverse(spline.knots.begin(), spline.knots.end());
        for (double& knot : spline.knots)
            knot = -knot;
    }
    return piece;
}

std::vector<KcGePoint2d> kcgeChords(const KcGeFillPiece& piece, double sagitta)
{
    if (const auto* arc = std::get_if<KcGeEllipArc3d>(&piece)) {
        // A chord over the angle a leaves the circle of the longer axis by r·(1 − cos(a/2)).
        const double r = std::hypot(arc->u.length(), arc->v.length());
        const double ratio = r > 0.0 ? std::clamp(sagitta / r, 1e-8, 0.5) : 0.5;
        const double n = std::abs(arc->sweep) / (2.0 * std::acos(1.0 - ratio));
        return arcChords(*arc, int(std::clamp(std::ceil(n), 1.0, double(kMostChordsOfTurn))));
    }
    if (const auto* spline = std::get_if<KcGeNurbsCurve3d>(&piece)) {
        std::vector<KcGePoint2d> points;
        for (const KcGePoint3d p : spline->chords(sagitta))
            points.push_back(plan(p));
        return points;
    }
    return { kcgeStart(piece), kcgeEnd(piece) };
}

KcGeFillArea::KcGeFillArea(const std::vector<std::vector<KcGeFillPiece>>& loops)
{
    for (const auto& loop : loops) {
        const auto usable = std::find_if(loop.begin(), loop.end(), isUsable);
        if (usable == loop.end())
            continue;
        m_origin = kcgeStart(*usable);
        break;
    }
    for (const auto& loop : loops)
        addLoop(loop);
    if (m_contours.empty())
        m_sound = false;
    nest();
}

void KcGeFillArea::addLoop(const std::vector<KcGeFillPiece>& loop)
{
    std::vector<KcGeFillPiece> pieces;
    for (const KcGeFillPiece& piece : loop) {
        if (!isUsable(piece)) {
            m_sound = false;
            continue;
        }
        const auto* line = std::get_if<KcGeFillLine>(&piece);
        if (!line || line->start != line->end)
            pieces.push_back(moved(piece, -m_origin.asVector()));
    }
    if (pieces.empty())
        m_sound = false;
    Ends ends(pieces);
    size_t next = 0;
    while (next < pieces.size()) {
        if (ends.isUsed(next)) {
            ++next;
            continue;
        }
        Contour contour;
        KcGeFillPiece first = pieces[next];
        ends.use(next++);
        // The first piece may stand the wrong way round: its follower tells.
        if (next < pieces.size() && !ends.isUsed(next) && !joins(kcgeStart(first), kcgeEnd(first))
            && !ends.touches(next, kcgeEnd(first)) && ends.touches(next, kcgeStart(first)))
            first = kcgeReversed(std::move(first));
        const KcGePoint2d start = kcgeStart(first);
        KcGePoint2d end = start;
        double area = 0.0;
        const auto append = [&](KcGeFillPiece piece) {
            area += areaShare(piece);
            const std::vector<KcGePoint2d> chords = coarseChords(piece);
            contour.chords.insert(
                contour.chords.end(), chords.begin() + (contour.chords.empty() ? 0 : 1), chords.end());
            end = kcgeEnd(piece);
            contour.pieces.push_back(std::move(piece));
        };
        const auto bridge = [&](KcGePoint2d to) {
            if (end != to) // exact: what differs at all would break the outline
                append(KcGeFillLine{ end, to });
        };
        append(std::move(first));
        while (!joins(end, start)) {
            const bool follows = next < pieces.size() && !ends.isUsed(next) && ends.touches(next, end);
            const size_t found = follows ? next : ends.at(end);
            if (found >= pieces.size()) {
                contour.closed = false;
                m_sound = false;
                break;
            }
            ends.use(found);
            KcGeFillPiece piece = pieces[found];
            if (!joins(kcgeStart(piece), end))
                piece = kcgeReversed(std::move(piece));
            bridge(kcgeStart(piece));
            append(std::move(piece));
        }
        bridge(start);
        contour.area = std::abs(area);
        if (!std::isfinite(contour.area)) {
            m_sound = false;
            continue;
        }
        m_sound = m_sound && contour.area > 0.0;
        for (const KcGePoint2d p : contour.chords)
            contour.box.addPoint(p);
        m_contours.push_back(std::move(contour));
    }
}

void KcGeFillArea::nest()
{
    // Larger ones first: an outline can only lie in one that stands before it.
    std::stable_sort(m_contours.begin(), m_contours.end(), [](const Contour& a, const Contour& b) {
        return a.area > b.area;
    });
    for (size_t i = 0; i < m_contours.size(); ++i)
        for (size_t j = 0; j < i; ++j)
            m_contours[i].depth += liesInside(m_contours[i], m_contours[j]) ? 1 : 0;
}

std::vector<const KcGeFillArea::Contour*> KcGeFillArea::bounding(KcGeHatchStyle style) const
{
    const int deepest = style == KcGeHatchStyle::Normal ? std::numeric_limits<int>::max()
        : style == KcGeHatchStyle::Outer                ? 1
                                                        : 0;
    std::vector<const Contour*> result;
    for (const Contour& contour : m_contours)
        if (contour.depth <= deepest)
            result.push_back(&contour);
    return result;
}

KcGeExtents2d KcGeFillArea::extents() const
{
    KcGeExtents2d box;
    for (const Contour& contour : m_contours) {
        box.addPoint(contour.box.min + m_origin.asVector());
        box.addPoint(contour.box.max + m_origin.asVector());
    }
    return box;
}

double KcGeFillArea::area(KcGeHatchStyle style) const
{
    double area = 0.0;
    for (const Contour* contour : bounding(style))
        area += contour->depth % 2 ? -contour->area : contour->area;
    return area > 0.0 && std::isfinite(area) ? area : 0.0;
}
