// Line types: dashes, gaps and dots along the chords of a path.

#include "gi/paint/cut_line.h"
#include "gi/paint/scene.h"

namespace {

constexpr size_t kMostDashes = 200'000; // of one path

// Walks along a run of chords by the elements of a pattern, in device units.
class Dasher {
public:
    Dasher(
        const std::vector<double>& pattern, double factor, double period, const std::optional<QRectF>& area)
        : m_pattern(pattern)
        , m_factor(factor)
        , m_period(period)
        , m_area(area)
    {
    }

    // A run begins and ends with equal dashes, at least half of the pattern's first: what the whole periods
    // leave over is shared by both ends. A run shorter than a period has no gaps.
    void run(const std::vector<QPointF>& points)
    {
        double length = 0.0;
        for (size_t i = 0; i + 1 < points.size(); ++i)
            length += distance(points[i], points[i + 1]);
        const double first = std::max(m_pattern[0], 0.0) * m_factor;
        const double periods = std::floor(length / m_period);
        if (!(periods >= 1.0)) {
            for (size_t i = 0; i + 1 < points.size(); ++i)
                draw(points[i], points[i + 1]);
            return;
        }
        m_at = 0;
        m_walked = 0.0;
        m_periods = first > 0.0 ? periods : INFINITY;
        // Patterns that begin with a gap or a dot are not moved.
        m_left
            = first > 0.0 ? (length - periods * m_period + first) / 2.0 : std::abs(m_pattern[0]) * m_factor;
        if (m_pattern[0] == 0.0)
            draw(points[0], points[0]);
        for (size_t i = 0; i + 1 < points.size(); ++i)
            walk(points[i], points[i + 1]);
    }

    std::vector<QLineF> pieces;
    bool overflow = false;

private:
    static double distance(QPointF a, QPointF b) { return std::hypot(b.x() - a.x(), b.y() - a.y()); }

    void draw(QPointF a, QPointF b)
    {
        if (pieces.size() >= kMostDashes)
            overflow = true;
        else if (!m_area || kcgiCutLine(a, b, *m_area))
            pieces.push_back({ a, b });
    }

    void walk(QPointF a, QPointF b)
    {
        const double length = distance(a, b);
        if (!(length > 0.0))
            return;
        double from = 0.0, to = length;
        if (m_area) { // what cannot be seen is passed over by whole periods
            QPointF p = a, q = b;
            if (kcgiCutLine(p, q, *m_area)) {
                from = distance(a, p);
                to = distance(a, q);
            } else {
                from = to = length;
            }
        }
        const QPointF unit = (b - a) / length;
        double s = 0.0;
        const auto advance = [&](double until, bool visible) {
            if (!visible) {
                const double skipped = std::clamp(
                    std::floor((until - s) / m_period), 0.0, std::max(0.0, m_periods - m_walked - 1.0));
                s += skipped * m_period;
                m_walked += skipped;
            }
            while (s < until && !overflow) {
                const double step = std::min(m_left, until - s);
                if (visible && m_pattern[m_at] > 0.0)
                    draw(a + unit * s, a + unit * (s + step));
                s += step;
                m_left -= step;
                if (m_left > 0.0)
                    continue;
                m_at = (m_at + 1) % m_pattern.size();
                m_walked += m_at == 0;
                m_left = m_walked >= m_periods ? INFINITY : std::abs(m_pattern[m_at]) * m_factor;
                if (m_pattern[m_at] == 0.0 && visible) // a dot
                    draw(a + unit * s, a + unit * s);
            }
        };
        advance(from, false);
        advance(to, true);
        advance(length, false);
    }

    const std::vector<double>& m_pattern;
    const double m_factor, m_period;
    const std::optional<QRectF> m_area;
    size_t m_at = 0; // the element of the pattern
    double m_left = 0.0; // of that element
    double m_periods = 0.0, m_walked = 0.0; // behind so many whole periods comes the last dash
};

// Each piece of a path as a path of its own.
std::vector<KcGiPath> pieces(const KcGiPath& path)
{
    std::vector<KcGiPath> result;
    KcGePoint3d begin, last;
    const auto straight = [&](KcGePoint3d to) {
        KcGiPath piece;
        piece.moveTo(last);
        piece.lineTo(to);
        result.push_back(std::move(piece));
        last = to;
    };
    for (const KcGiPath::Element& element : path.elements()) {
        if (const auto* move = std::get_if<KcGiPath::Move>(&element)) {
            begin = last = move->to;
        } else if (const auto* line = std::get_if<KcGiPath::Line>(&element)) {
            straight(line->to);
        } else if (const auto* arc = std::get_if<KcGeEllipArc3d>(&element)) {
            result.emplace_back().arc(*arc);
            last = arc->pointAt(arc->start + arc->sweep);
        } else if (const auto* spline = std::get_if<KcGiPath::Spline>(&element)) {
            result.emplace_back().spline(**spline);
            last = (*spline)->pointAt((*spline)->endParam());
        } else if (!(last == begin)) {
            straight(begin);
        }
    }
    return result;
}

} // namespace

void KcGiScene::dash(const KcGiPath& path, Stroke options)
{
    const double factor = m_traits.patternScale * kcgiLargestScale(m_context.matrix);
    const KcGiDevice::Pen pen{ m_traits.color, m_traits.width };
    std::optional<QRectF> area;
    if (m_options.area)
        area = m_options.area->adjusted(-pen.width - 2, -pen.width - 2, pen.width + 2, pen.width + 2);
    Dasher dasher(m_traits.pattern->dashes, factor, m_traits.pattern->length * factor, area);

    const auto dashAlong = [&](const KcGiPath& runs) {
        std::vector<QPointF> points;
        runs.flatten(
            m_context.matrix, m_device.sagitta(),
            [&](KcGePoint3d p, bool begins) {
                if (begins)
                    points.clear();
                points.emplace_back(p.x, p.y);
            },
            [&](bool closed) {
                if (closed && points.front() != points.back())
                    points.push_back(points.front());
                dasher.run(points);
            });
    };
    if (options.throughVertices)
        dashAlong(path);
    else
        for (const KcGiPath& piece : pieces(path))
            dashAlong(piece);
    if (dasher.overflow)
        leftOut(QStringLiteral("dashes beyond the first %1 of a line").arg(kMostDashes));
    m_device.strokeLines(dasher.pieces, pen);
}
