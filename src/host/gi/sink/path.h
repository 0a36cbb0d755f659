// Outlines and lines as entities hand them to a sink: straight pieces, arcs of ellipses and splines,
// unbroken, so that every sink can cut them up as finely as it needs.
#pragma once

#include "ge/ellipse.h"
#include "ge/spline.h"

#include <memory>
#include <variant>
#include <vector>

/// Runs of pieces in space, in the coordinates of whoever draws. Each piece begins where the one before it
/// ended; where it begins elsewhere (an arc's own start differs in the last bits), the difference is not
/// seen.
class KcGiPath {
public:
    struct Move {
        KcGePoint3d to;
    };
    struct Line {
        KcGePoint3d to;
    };
    struct Close { };
    using Spline = std::shared_ptr<const KcGeNurbsCurve3d>;
    using Element = std::variant<Move, Line, KcGeEllipArc3d, Spline, Close>;

    /// Begins another run.
    void moveTo(KcGePoint3d p) { m_elements.push_back(Move{ p }); }
    void lineTo(KcGePoint3d p) { m_elements.push_back(Line{ p }); }
    /// An arc of an ellipse or circle from its start to its end; begins a run where there is none.
    void arc(const KcGeEllipArc3d& arc);
    /// A valid spline; begins a run where there is none.
    void spline(const KcGeNurbsCurve3d& curve);
    /// Back to where the run began.
    void close() { m_elements.push_back(Close{}); }

    /// A run through points.
    void polyline(const std::vector<KcGePoint3d>& points, bool closed);

    const std::vector<Element>& elements() const { return m_elements; }
    bool isEmpty() const { return m_elements.empty(); }
    void clear() { m_elements.clear(); }

    /// The image under an affine transform.
    KcGiPath transformed(const KcGeMatrix3d& matrix) const;

    /// Every run under a transform, in chords that stay within `sagitta` of it: `point` gets each point and
    /// whether it begins a run, `end` whether the run that ends is closed. What is not finite, or absurdly
    /// far away, breaks the run that it belongs to.
    template <class Point, class End>
    void flatten(const KcGeMatrix3d& matrix, double sagitta, Point point, End end) const;

    /// Cubic Bézier pieces of an arc: from its start, three points each (two handles, the end). The error is
    /// below 3e-4 of the radius for pieces of a quarter turn.
    static std::vector<KcGePoint3d> beziers(const KcGeEllipArc3d& arc);

private:
    bool hasRun() const { return !m_elements.empty() && !std::holds_alternative<Close>(m_elements.back()); }
    std::vector<Element> m_elements;
};

/// Coordinates further from the origin than this are damage, not drawings.
inline constexpr double kcgiFarthest = 1e15;
inline bool kcgiIsDrawable(KcGePoint3d p)
{
    return std::abs(p.x) < kcgiFarthest && std::abs(p.y) < kcgiFarthest && std::abs(p.z) < kcgiFarthest;
}
/// The factor by which a transform lengthens at most, or a little more.
double kcgiLargestScale(const KcGeMatrix3d& matrix);
/// How many chords an arc with half axes of at most `radius` needs to stay within `sagitta`; at least 2, at
/// most some thousands.
int kcgiChords(double radius, double sweep, double sagitta);

template <class Point, class End>
void KcGiPath::flatten(const KcGeMatrix3d& matrix, double sagitta, Point point, End end) const
{
    bool open = false;
    const auto put = [&](KcGePoint3d p) {
        const KcGePoint3d seen = matrix * p;
        if (kcgiIsDrawable(seen)) {
            point(seen, !open);
            open = true;
        } else if (open) {
            end(false);
            open = false;
        }
    };
    const auto finish = [&](bool closed) {
        if (open)
            end(closed);
        open = false;
    };
    for (const Element& element : m_elements) {
        if (const auto* move = std::get_if<Move>(&element)) {
            finish(false);
            put(move->to);
        } else if (const auto* line = std::get_if<Line>(&element)) {
            put(line->to);
        } else if (const auto* arc = std::get_if<KcGeEllipArc3d>(&element)) {
            const double radius = std::max((matrix * arc->u).length(), (matrix * arc->v).length());
            const int chords = kcgiChords(radius, arc->sweep, sagitta);
            for (int i = open ? 1 : 0; i <= chords; ++i)
                put(arc->pointAt(arc->start + arc->sweep * i / chords));
        } else if (const auto* spline = std::get_if<Spline>(&element)) {
            const double scale = kcgiLargestScale(matrix);
            bool first = !open;
            for (const KcGePoint3d& p : (*spline)->chords(scale > 0.0 ? sagitta / scale : sagitta))
                if (std::exchange(first, true))
                    put(p);
        } else {
            finish(true);
        }
    }
    finish(false);
}
