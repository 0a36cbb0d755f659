// Building paths.

#include "gi/sink/path.h"

namespace {

constexpr int kMostChords = 4096; // of one arc: finer than a wall of screens shows

} // namespace

void KcGiPath::arc(const KcGeEllipArc3d& arc)
{
    if (!hasRun())
        moveTo(arc.startPoint());
    m_elements.push_back(arc);
}

void KcGiPath::spline(const KcGeNurbsCurve3d& curve)
{
    if (!hasRun())
        moveTo(curve.pointAt(curve.startParam()));
    m_elements.push_back(std::make_shared<const KcGeNurbsCurve3d>(curve));
}

void KcGiPath::polyline(const std::vector<KcGePoint3d>& points, bool closed)
{
    if (points.empty())
        return;
    moveTo(points.front());
    for (size_t i = 1; i < points.size(); ++i)
        lineTo(points[i]);
    if (closed)
        close();
}

KcGiPath KcGiPath::transformed(const KcGeMatrix3d& matrix) const
{
    KcGiPath result;
    result.m_elements.reserve(m_elements.size());
    for (const Element& element : m_elements) {
        if (const auto* move = std::get_if<Move>(&element))
            result.m_elements.push_back(Move{ matrix * move->to });
        else if (const auto* line = std::get_if<Line>(&element))
            result.m_elements.push_back(Line{ matrix * line->to });
        else if (const auto* arc = std::get_if<KcGeEllipArc3d>(&element))
            result.m_elements.push_back(arc->transformed(matrix));
        else if (const auto* spline = std::get_if<Spline>(&element))
            result.m_elements.push_back(
                std::make_shared<const KcGeNurbsCurve3d>((*spline)->transformed(matrix)));
        else
            result.m_elements.push_back(Close{});
    }
    return result;
}

std::vector<KcGePoint3d> KcGiPath::beziers(const KcGeEllipArc3d& arc)
{
    const int pieces
        = std::max(1, int(std::ceil(std::abs(arc.sweep) / (kPi / 2.0) - KcGeContext::gTol.equalVector)));
    const double step = arc.sweep / pieces;
    // The handles of the cubic that touches a circle at both ends and in the middle.
    const double handle = 4.0 / 3.0 * std::tan(step / 4.0);
    std::vector<KcGePoint3d> points;
    points.reserve(size_t(pieces) * 3);
    for (int i = 0; i < pieces; ++i) {
        const double from = arc.start + step * i, to = arc.start + step * (i + 1);
        points.push_back(arc.pointAt(from) + arc.derivativeAt(from) * handle);
        points.push_back(arc.pointAt(to) - arc.derivativeAt(to) * handle);
        points.push_back(arc.pointAt(to));
    }
    return points;
}

double kcgiLargestScale(const KcGeMatrix3d& matrix)
{
    double squares = 0.0, longest = 0.0;
    for (int i = 0; i < 3; ++i) {
        squares += std::pow(matrix.axis(i).length(), 2);
        longest = std::max(longest, matrix.axis(i).length());
    }
    // The norm bounds it from above; for the usual even scale the longest axis is exact.
    return matrix.isUniform() ? longest : std::sqrt(squares);
}

int kcgiChords(double radius, double sweep, double sagitta)
{
    if (!(radius > 0.0) || !(sagitta > 0.0) || !std::isfinite(radius) || !std::isfinite(sweep))
        return 2;
    // The sagitta of a chord over the angle a is r·(1 − cos(a/2)).
    const double angle = 2.0 * std::acos(std::max(0.0, 1.0 - sagitta / radius));
    const double count = angle > 0.0 ? std::ceil(std::abs(sweep) / angle) : kMostChords;
    // Never coarser than a twelfth of a turn: small circles stay round.
    const double least = std::ceil(std::abs(sweep) / (kTwoPi / 12.0));
    return int(std::clamp(std::max(count, least), 2.0, double(kMostChords)));
}
