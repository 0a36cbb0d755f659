// Chains pieces to outlines, finds which lies in which, and sums their areas.

#include "ge/fill_area.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <unordered_map>

namespace {

/// Share of a piece's size by which its coarse chords may leave it.
constexpr double kCoarseSagitta = 1e-3;

/// Chords that suffice to tell what lies inside what.
std::vector<KcGePoint2d> coarseChords(const KcGeSegment2d& piece)
{
    if (piece.isLine())
        return { piece.startPoint(), piece.endPoint() };
    const KcGeExtents2d box = piece.extents();
    return piece.chords(
        std::max({ box.max.x - box.min.x, box.max.y - box.min.y, KcGeContext::gTol.equalPoint })
        * kCoarseSagitta);
}

bool joins(KcGePoint2d a, KcGePoint2d b)
{
    return a.distanceTo(b) <= KcGeContext::kJoinedEnds;
}

/// Finds pieces not used so far by a point near to one of their ends.
class Ends {
public:
    explicit Ends(const std::vector<KcGeSegment2d>& pieces)
        : m_pieces(pieces)
        , m_used(pieces.size(), false)
    {
    }

    bool isUsed(size_t i) const { return m_used[i]; }
    void use(size_t i) { m_used[i] = true; }
    bool touches(size_t i, KcGePoint2d p) const
    {
        return joins(m_pieces[i].startPoint(), p) || joins(m_pieces[i].endPoint(), p);
    }

    /// The piece of the lowest number that begins or ends at the point; the number of pieces when none does.
    size_t at(KcGePoint2d p)
    {
        if (m_cells.empty())
            for (size_t i = 0; i < m_pieces.size(); ++i) {
                m_cells[cell(m_pieces[i].startPoint(), 0, 0)].push_back(i);
                m_cells[cell(m_pieces[i].endPoint(), 0, 0)].push_back(i);
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

    const std::vector<KcGeSegment2d>& m_pieces;
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

KcGeFillArea::KcGeFillArea(const std::vector<std::vector<KcGeSegment2d>>& loops)
{
    for (const auto& loop : loops) {
        const auto usable = std::find_if(
            loop.begin(), loop.end(), [](const KcGeSegment2d& piece) { return piece.isFinite(); });
        if (usable == loop.end())
            continue;
        m_origin = usable->startPoint();
        break;
    }
    for (const auto& loop : loops)
        addLoop(loop);
    if (m_contours.empty())
        m_sound = false;
    nest();
}

void KcGeFillArea::addLoop(const std::vector<KcGeSegment2d>& loop)
{
    std::vector<KcGeSegment2d> pieces;
    for (const KcGeSegment2d& piece : loop) {
        if (!piece.isFinite()) {
            m_sound = false;
            continue;
        }
        if (!piece.isLine() || piece.startPoint() != piece.endPoint())
            pieces.push_back(piece.translated(-m_origin.asVector()));
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
        KcGeSegment2d first = pieces[next];
        ends.use(next++);
        // The first piece may stand the wrong way round: its follower tells.
        if (next < pieces.size() && !ends.isUsed(next) && !joins(first.startPoint(), first.endPoint())
            && !ends.touches(next, first.endPoint()) && ends.touches(next, first.startPoint()))
            first = first.reversed();
        const KcGePoint2d start = first.startPoint();
        KcGePoint2d end = start;
        double area = 0.0;
        const auto append = [&](KcGeSegment2d piece) {
            area += piece.areaAbout({});
            const std::vector<KcGePoint2d> chords = coarseChords(piece);
            contour.chords.insert(
                contour.chords.end(), chords.begin() + (contour.chords.empty() ? 0 : 1), chords.end());
            end = piece.endPoint();
            contour.pieces.push_back(std::move(piece));
        };
        const auto bridge = [&](KcGePoint2d to) {
            if (end != to) // exact: what differs at all would break the outline
                append(KcGeSegment2d::line(end, to));
        };
        append(std::move(first));
        while (!joins(end, start)) {
            while (next < pieces.size() && ends.isUsed(next))
                ++next;
            const bool follows = next < pieces.size() && !ends.isUsed(next) && ends.touches(next, end);
            const size_t found = follows ? next : ends.at(end);
            if (found >= pieces.size()) {
                contour.closed = false;
                m_sound = false;
                break;
            }
            ends.use(found);
            KcGeSegment2d piece = pieces[found];
            if (!joins(piece.startPoint(), end))
                piece = piece.reversed();
            bridge(piece.startPoint());
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
    // From left to right, only outlines that are not over yet can hold the next one or lie in it.
    std::vector<size_t> order(m_contours.size()), active;
    std::iota(order.begin(), order.end(), size_t(0));
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        return m_contours[a].box.min.x < m_contours[b].box.min.x;
    });
    for (const size_t i : order) {
        std::erase_if(active, [&](size_t j) { return m_contours[j].box.max.x < m_contours[i].box.min.x; });
        for (const size_t j : active) {
            Contour& inner = m_contours[std::max(i, j)];
            inner.depth += liesInside(inner, m_contours[std::min(i, j)]) ? 1 : 0;
        }
        active.push_back(i);
    }
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
