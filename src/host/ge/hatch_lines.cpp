// Sweeps the lines of a family over the outlines' pieces, which are cut to parts that rise or fall throughout:
// each of these is met at most once by a line. A line that runs through the end of two parts counts the one
// above it only, and since neighbours share their ends exactly, the number of crossings is always even.

#include "ge/hatch_lines.h"

#include <algorithm>
#include <limits>

namespace {

/// Splines are followed by chords that leave them by this share of their size.
constexpr double kSplineSagitta = 1e-6;
/// Crossings closer than this share of the area's size are one: touching outlines leave no slivers.
constexpr double kSameCrossing = 1e-12;
/// A line count beyond this has no whole numbers any more.
constexpr double kMostLines = 1e15;

/// A part of an outline between two heights, in the frame whose X axis runs along the lines.
struct Part {
    double low = 0.0, high = 0.0; ///< heights; met by lines with low ≤ y < high
    KcGePoint2d at, to; ///< ends, the lower first
    bool straight = true;
    // Of arcs: center + u·cos t + v·sin t; the height is center.y + rise·cos(t − top).
    KcGePoint2d center;
    KcGeVector2d u, v;
    double rise = 0.0, top = 0.0;
    double from = 0.0, till = 0.0; ///< anomalies, ascending
    bool falling = false; ///< the height falls as the anomaly grows

    double crossing(double y) const
    {
        if (straight) {
            const double x = at.x + (to.x - at.x) * ((y - at.y) / (to.y - at.y));
            return std::clamp(x, std::min(at.x, to.x), std::max(at.x, to.x));
        }
        // Heights fall for half a turn after the top and rise for the next half.
        const double down = std::acos(std::clamp((y - center.y) / rise, -1.0, 1.0));
        const double middle = (from + till) / 2.0 - top;
        const double turns = std::floor(middle / kTwoPi) * kTwoPi;
        const double t = std::clamp(top + turns + (falling ? down : kTwoPi - down), from, till);
        return center.x + u.x * std::cos(t) + v.x * std::sin(t);
    }
};

class Frame {
public:
    explicit Frame(double angle)
        : m_along{ std::cos(angle), std::sin(angle) }
        , m_across{ -std::sin(angle), std::cos(angle) }
    {
    }

    KcGeVector2d in(KcGeVector2d v) const { return { v.dotProduct(m_along), v.dotProduct(m_across) }; }
    KcGePoint2d in(KcGePoint2d p) const
    {
        const KcGeVector2d v = in(p.asVector());
        return { v.x, v.y };
    }
    KcGePoint2d out(double x, double y) const
    {
        const KcGeVector2d v = m_along * x + m_across * y;
        return { v.x, v.y };
    }
    KcGeVector2d in(KcGeVector3d v) const { return in(KcGeVector2d{ v.x, v.y }); }

private:
    KcGeVector2d m_along, m_across;
};

class Parts {
public:
    explicit Parts(const Frame& frame)
        : m_frame(frame)
    {
    }

    void add(const KcGeFillArea::Contour& contour)
    {
        // The ends of pieces, as one point each for the pieces that meet there.
        const size_t n = contour.pieces.size();
        m_parts.reserve(m_parts.size() + 2 * n);
        std::vector<KcGePoint2d> nodes(n);
        for (size_t i = 0; i < n; ++i)
            nodes[i] = m_frame.in(contour.pieces[i].startPoint());
        for (size_t i = 0; i < n; ++i) {
            const KcGeSegment2d& piece = contour.pieces[i];
            const KcGePoint2d end = nodes[(i + 1) % n];
            if (const auto* arc = piece.asArc())
                addArc(
                    { { arc->center().x, arc->center().y, 0 }, { arc->radius(), 0, 0 }, { 0, arc->radius(), 0 },
                      arc->startAngle(), arc->sweep() },
                    nodes[i], end);
            else if (const auto ellipse = piece.asEllipse())
                addArc(*ellipse, nodes[i], end);
            else if (piece.isLine())
                addLine(nodes[i], end);
            else
                addSpline(piece, nodes[i], end);
        }
    }

    /// Sorted by the height at which they begin.
    std::vector<Part> take()
    {
        std::sort(m_parts.begin(), m_parts.end(), [](const Part& a, const Part& b) { return a.low < b.low; });
        return std::move(m_parts);
    }

private:
    void addLine(KcGePoint2d a, KcGePoint2d b)
    {
        if (a.y == b.y) // exact: any height at all can be crossed
            return;
        if (a.y > b.y)
            std::swap(a, b);
        Part part;
        part.low = a.y;
        part.high = b.y;
        part.at = a;
        part.to = b;
        m_parts.push_back(part);
    }

    void addArc(const KcGeEllipArc3d& arc, KcGePoint2d start, KcGePoint2d end)
    {
        Part part;
        part.straight = false;
        part.center = m_frame.in(arc.center.plan());
        part.u = m_frame.in(arc.u);
        part.v = m_frame.in(arc.v);
        part.rise = std::hypot(part.u.y, part.v.y);
        if (!(part.rise > 0.0) || arc.sweep == 0.0)
            return addLine(start, end);
        part.top = std::atan2(part.v.y, part.u.y);
        double t = std::fmod(arc.start, kTwoPi);
        const double last = t + arc.sweep;
        const double step = arc.sweep > 0.0 ? 1.0 : -1.0;
        KcGePoint2d p = start;
        while (t != last) {
            // The next anomaly at which the height turns.
            double half = (t - part.top) / kPi;
            half = step > 0.0 ? std::floor(half) + 1.0 : std::ceil(half) - 1.0;
            double next = part.top + half * kPi;
            if ((next - t) * step <= 0.0) // rounding stood in the way
                next = part.top + (half + step) * kPi;
            const bool ends = (next - last) * step >= 0.0;
            if (ends)
                next = last;
            const KcGePoint2d q = ends ? end : part.center + part.u * std::cos(next) + part.v * std::sin(next);
            part.from = std::min(t, next);
            part.till = std::max(t, next);
            const double middle = normalizedAngle((part.from + part.till) / 2.0 - part.top);
            part.falling = middle < kPi;
            part.low = std::min(p.y, q.y);
            part.high = std::max(p.y, q.y);
            if (part.low < part.high)
                m_parts.push_back(part);
            t = next;
            p = q;
        }
    }

    void addSpline(const KcGeSegment2d& spline, KcGePoint2d start, KcGePoint2d end)
    {
        const KcGeExtents2d box = spline.extents();
        const auto chords
            = spline.chords(std::max(box.max.x - box.min.x, box.max.y - box.min.y) * kSplineSagitta);
        KcGePoint2d p = start;
        for (size_t i = 1; i < chords.size(); ++i) {
            const KcGePoint2d q = i + 1 == chords.size() ? end : m_frame.in(chords[i]);
            addLine(p, q);
            p = q;
        }
    }

    const Frame& m_frame;
    std::vector<Part> m_parts;
};

/// The dashes of one family, prepared to be laid along lines.
class Dashes {
public:
    Dashes(const std::vector<double>& dashes, double period)
        : m_dashes(dashes)
        , m_period(period)
    {
    }

    /// Calls `draw(from, to)` for what of [begin, end] the pen draws when a period starts at `phase`.
    template <class Draw> void lay(double begin, double end, double phase, const Draw& draw) const
    {
        double x = phase + std::floor((begin - phase) / m_period) * m_period;
        for (int64_t turn = 0; x < end; ++turn) {
            double at = x;
            for (const double dash : m_dashes) {
                const double to = at + std::abs(dash);
                if (dash == 0.0) { // exact: a dot
                    if (at >= begin && at < end)
                        draw(at, at);
                } else if (dash > 0.0 && to > begin && at < end) {
                    draw(std::max(at, begin), std::min(to, end));
                }
                at = to;
            }
            const double next = x + m_period;
            if (!(next > x)) // the period is lost in the digits of the coordinate
                return;
            x = next;
        }
    }

private:
    const std::vector<double>& m_dashes;
    double m_period;
};

/// The part of a line at a height that lies in a window, in the frame of the lines.
class Window {
public:
    Window(const KcGeExtents2d& box, const Frame& frame)
    {
        for (const KcGePoint2d corner :
             { box.min, KcGePoint2d{ box.max.x, box.min.y }, box.max, KcGePoint2d{ box.min.x, box.max.y } })
            m_corners.push_back(frame.in(corner));
        for (const KcGePoint2d p : m_corners)
            m_box.addPoint(p);
    }

    const KcGeExtents2d& box() const { return m_box; }
    /// False when the line passes by.
    bool cut(double y, double& from, double& to) const
    {
        from = std::numeric_limits<double>::infinity();
        to = -from;
        for (size_t i = 0; i < 4; ++i) {
            const KcGePoint2d a = m_corners[i], b = m_corners[(i + 1) % 4];
            if (std::min(a.y, b.y) > y || std::max(a.y, b.y) < y)
                continue;
            const double xs[2] = { a.y == b.y ? a.x : a.x + (b.x - a.x) * ((y - a.y) / (b.y - a.y)),
                                   a.y == b.y ? b.x : a.x + (b.x - a.x) * ((y - a.y) / (b.y - a.y)) };
            for (const double x : xs) {
                from = std::min(from, x);
                to = std::max(to, x);
            }
        }
        return from <= to;
    }

private:
    std::vector<KcGePoint2d> m_corners;
    KcGeExtents2d m_box;
};

} // namespace

double KcGeHatchFamily::spacing() const
{
    const double s = std::abs(offset.dotProduct({ -std::sin(angle), std::cos(angle) }));
    // What is left of an offset along the lines by rounding is no distance.
    return s > KcGeContext::gTol.equalVector * offset.length() ? s : 0.0;
}

double KcGeHatchFamily::period() const
{
    double length = 0.0;
    bool gaps = false;
    for (const double dash : dashes) {
        length += std::abs(dash);
        gaps = gaps || dash <= 0.0;
    }
    return gaps ? length : 0.0;
}

KcGeHatchFamily KcGeHatchFamily::placed(double scale, double turn, KcGeVector2d shift) const
{
    KcGeHatchFamily result = *this;
    result.angle = angle + turn;
    result.base = KcGePoint2d{} + base.asVector().rotateBy(turn) * scale + shift;
    result.offset = offset.rotateBy(turn) * scale;
    for (double& dash : result.dashes)
        dash *= scale;
    return result;
}

double kcgeHatchCoverage(const KcGeHatchFamily& family, double width)
{
    const double spacing = family.spacing(), period = family.period();
    if (!(spacing > 0.0))
        return 0.0;
    double share = 1.0;
    if (period > 0.0) {
        double drawn = 0.0;
        for (const double dash : family.dashes)
            drawn += dash > 0.0 ? dash : dash == 0.0 ? width : 0.0;
        share = std::min(1.0, drawn / period);
    }
    return std::clamp(share * width / spacing, 0.0, 1.0);
}

KcGeHatchDrawn kcgeHatchLines(
    const KcGeFillArea& area, KcGeHatchStyle style, const KcGeHatchFamily& family,
    const KcGeHatchLimits& limits, const KcGeHatchSpan& span)
{
    const double spacing = family.spacing();
    if (!(spacing > 0.0) || !std::isfinite(spacing) || !std::isfinite(family.angle)
        || !std::isfinite(family.base.x + family.base.y))
        return KcGeHatchDrawn::Nothing;
    if (spacing < limits.smallest)
        return KcGeHatchDrawn::Solid;
    const Frame frame(family.angle);
    const KcGeVector2d origin = area.origin().asVector();

    Parts outlines(frame);
    KcGeExtents2d box;
    double covered = 0.0;
    for (const KcGeFillArea::Contour* contour : area.bounding(style)) {
        outlines.add(*contour);
        box.addExtents(contour->box);
        covered += contour->area;
    }
    const std::vector<Part> parts = outlines.take();
    if (parts.empty())
        return KcGeHatchDrawn::Whole;
    double low = parts.front().low, high = low;
    for (const Part& part : parts)
        high = std::max(high, part.high);
    std::optional<Window> window;
    if (limits.window) {
        if (limits.window->isEmpty())
            return KcGeHatchDrawn::Whole;
        window.emplace(KcGeExtents2d{ limits.window->min - origin, limits.window->max - origin }, frame);
        low = std::max(low, window->box().min.y);
        high = std::min(high, window->box().max.y);
        const double seen = (limits.window->max.x - limits.window->min.x)
            * (limits.window->max.y - limits.window->min.y);
        covered = std::min(covered, seen);
        if (low > high)
            return KcGeHatchDrawn::Whole;
    }

    // Line 0 is the one nearest to the area's origin: its number counts no digits away.
    KcGeVector2d step = frame.in(family.offset);
    if (step.y < 0.0)
        step = -step;
    KcGeVector2d base = frame.in(family.base - area.origin());
    const double toOrigin = std::round(-base.y / step.y);
    if (!(std::abs(toOrigin) < kMostLines))
        return KcGeHatchDrawn::Nothing;
    base = base + step * toOrigin;
    const double first = std::ceil((low - base.y) / step.y), last = std::floor((high - base.y) / step.y);
    if (!(last - first < kMostLines) || !(std::abs(first) < kMostLines))
        return KcGeHatchDrawn::Nothing;

    // Bounds: the lengths of all lines together make up the area.
    double period = family.period();
    KcGeHatchDrawn drawn = KcGeHatchDrawn::Whole;
    double every = 1.0;
    const double most = double(std::max<size_t>(1, limits.mostSpans));
    if (const double lines = last - first + 1.0; lines > most / 2.0) {
        every = std::ceil(lines / (most / 2.0));
        drawn = KcGeHatchDrawn::Thinned;
    }
    if (period > 0.0
        && (period < limits.smallest
            || covered / (spacing * every) / period * double(family.dashes.size()) > most)) {
        period = 0.0;
        if (drawn == KcGeHatchDrawn::Whole)
            drawn = KcGeHatchDrawn::NoGaps;
    }

    const double same = kSameCrossing * std::hypot(box.max.x - box.min.x, box.max.y - box.min.y)
        + 4.0 * std::numeric_limits<double>::epsilon() * std::hypot(origin.x, origin.y);
    const Dashes dashes(family.dashes, period);
    std::vector<size_t> active;
    std::vector<double> crossings;
    size_t next = 0;
    for (double k = std::ceil(first / every) * every; k <= last; k += every) {
        const double y = base.y + k * step.y;
        std::erase_if(active, [&](size_t i) { return !(parts[i].high > y); });
        for (; next < parts.size() && parts[next].low <= y; ++next)
            if (parts[next].high > y)
                active.push_back(next);
        double from = -std::numeric_limits<double>::infinity(), to = -from;
        if (active.empty() || (window && !window->cut(y, from, to)))
            continue;
        crossings.clear();
        for (const size_t i : active)
            crossings.push_back(parts[i].crossing(y));
        std::sort(crossings.begin(), crossings.end());
        const double phase = base.x + k * step.x;
        const auto draw = [&](double a, double b) {
            span(frame.out(a, y) + origin, frame.out(b, y) + origin);
        };
        for (size_t i = 0; i + 1 < crossings.size(); i += 2) {
            const double begin = crossings[i];
            // Outlines side by side are one filling.
            while (i + 3 < crossings.size() && crossings[i + 2] - crossings[i + 1] <= same)
                i += 2;
            const double a = std::max(begin, from), b = std::min(crossings[i + 1], to);
            if (b - a <= same)
                continue;
            if (period > 0.0)
                dashes.lay(a, b, phase, draw);
            else
                draw(a, b);
        }
    }
    return drawn;
}
