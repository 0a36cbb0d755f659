// Rational B-spline curves, worked on as rational Bézier pieces: one for each span of knots that is not
// empty.

#include "ge/spline.h"

#include <array>

namespace {

using Weighted = KcGeWeightedPoint3d;

Weighted between(const Weighted& a, const Weighted& b, double t)
{
    const double s = 1.0 - t;
    return { s * a.x + t * b.x, s * a.y + t * b.y, s * a.z + t * b.z, s * a.w + t * b.w };
}

using Bezier = std::vector<Weighted>;

Weighted weighted(const KcGeNurbsCurve3d& curve, size_t i)
{
    const KcGePoint3d p = curve.controlPoints[i];
    const double w = curve.weights.empty() ? 1.0 : curve.weights[i];
    return { p.x * w, p.y * w, p.z * w, w };
}

/// The span [knots[k], knots[k + 1]) that holds the value; the last one that is not empty for the end.
size_t spanOf(const KcGeNurbsCurve3d& curve, double knot)
{
    const auto first = curve.knots.begin() + curve.degree;
    const auto last = curve.knots.begin() + long(curve.controlPoints.size());
    auto above = std::upper_bound(first, last, knot);
    if (above == last && !(knot < *last))
        above = std::lower_bound(first, last, *last);
    if (above == first)
        ++above;
    return size_t(above - curve.knots.begin()) - 1;
}

/// The polar form of the span's polynomial at `degree` arguments: de Boor's algorithm with one argument a
/// step. The span must not be empty, which keeps every denominator positive.
template <class Argument> Weighted polar(const KcGeNurbsCurve3d& curve, size_t span, Argument argument)
{
    const size_t p = size_t(curve.degree);
    std::array<Weighted, KcGeNurbsCurve3d::kMaxDegree + 1> d;
    for (size_t i = 0; i <= p; ++i)
        d[i] = weighted(curve, span - p + i);
    for (size_t r = 1; r <= p; ++r) {
        const double u = argument(r - 1);
        for (size_t i = p; i >= r; --i) {
            const double low = curve.knots[span - p + i], high = curve.knots[span + 1 + i - r];
            d[i] = between(d[i - 1], d[i], (u - low) / (high - low));
        }
    }
    return d[p];
}

/// The curve's piece over a span that is not empty.
Bezier pieceOf(const KcGeNurbsCurve3d& curve, size_t span)
{
    const size_t p = size_t(curve.degree);
    const double low = curve.knots[span], high = curve.knots[span + 1];
    Bezier piece(p + 1);
    for (size_t j = 0; j <= p; ++j)
        piece[j] = polar(curve, span, [&](size_t i) { return i < p - j ? low : high; });
    return piece;
}

/// De Casteljau's algorithm at the middle.
void halve(const Bezier& piece, Bezier& left, Bezier& right)
{
    right = piece;
    left.resize(piece.size());
    left[0] = piece[0];
    for (size_t r = 1; r < piece.size(); ++r) {
        for (size_t i = 0; i + r < piece.size(); ++i)
            right[i] = between(right[i], right[i + 1], 0.5);
        left[r] = right[0];
    }
}

KcGePoint3d pointOf(const Bezier& piece, double t)
{
    Bezier work = piece;
    for (size_t r = 1; r < work.size(); ++r)
        for (size_t i = 0; i + r < work.size(); ++i)
            work[i] = between(work[i], work[i + 1], t);
    return work[0].point();
}

template <class Visit> void forEachPiece(const KcGeNurbsCurve3d& curve, Visit visit)
{
    for (size_t span = size_t(curve.degree); span < curve.controlPoints.size(); ++span)
        if (curve.knots[span] < curve.knots[span + 1])
            visit(pieceOf(curve, span));
}

/// Halvings after which a piece is shorter than doubles can tell for any tolerance worth asking for.
constexpr int kDeepest = 48;
/// Below this share of the coordinates a tolerance cannot be met in doubles.
constexpr double kRelativeNoise = 1e-13;

double reachable(double tolerance, const Bezier& piece)
{
    double size = 0.0;
    for (const Weighted& w : piece) {
        const KcGePoint3d p = w.point();
        size = std::max({ size, std::abs(p.x), std::abs(p.y), std::abs(p.z) });
    }
    return std::max(tolerance, size * kRelativeNoise);
}

/// Grows the box by the piece: a part whose control points lie in the box (made larger by the tolerance) adds
/// nothing, any other is halved.
void growBox(KcGeExtents3d& box, const Bezier& piece, double tolerance, int depth)
{
    box.addPoint(piece.front().point());
    box.addPoint(piece.back().point());
    bool inside = true;
    for (const Weighted& w : piece) {
        const KcGePoint3d p = w.point();
        inside = inside && p.x >= box.min.x - tolerance && p.x <= box.max.x + tolerance
            && p.y >= box.min.y - tolerance && p.y <= box.max.y + tolerance && p.z >= box.min.z - tolerance
            && p.z <= box.max.z + tolerance;
    }
    if (inside || depth >= kDeepest)
        return;
    Bezier left, right;
    halve(piece, left, right);
    growBox(box, left, tolerance, depth + 1);
    growBox(box, right, tolerance, depth + 1);
}

double distanceFromChord(KcGePoint3d p, KcGePoint3d a, KcGePoint3d b)
{
    const KcGeVector3d chord = b - a, offset = p - a;
    const double square = chord.dotProduct(chord);
    const double t = square > 0.0 ? std::clamp(offset.dotProduct(chord) / square, 0.0, 1.0) : 0.0;
    return (offset - chord * t).length();
}

void addChords(std::vector<KcGePoint3d>& points, const Bezier& piece, double sagitta, int depth)
{
    const KcGePoint3d a = piece.front().point(), b = piece.back().point();
    bool flat = true;
    for (const Weighted& w : piece)
        flat = flat && distanceFromChord(w.point(), a, b) <= sagitta;
    constexpr int kDeepestChord = 16; // 65,536 chords a piece
    if (flat || depth >= kDeepestChord) {
        points.push_back(b);
        return;
    }
    Bezier left, right;
    halve(piece, left, right);
    addChords(points, left, sagitta, depth + 1);
    addChords(points, right, sagitta, depth + 1);
}

/// Half the integral of x·dy − y·dx over a piece whose control points are given about a near origin.
/// Polynomials are integrated exactly: the integrand's degree is 2p − 2, and the products of Bernstein
/// polynomials are known.
double polynomialArea(const Bezier& piece)
{
    const size_t p = piece.size() - 1;
    std::vector<double> choose(2 * p + 1, 1.0); // row 2p − 1 of Pascal's triangle
    std::vector<double> rowP(p + 1, 1.0), rowQ(p, 1.0);
    const auto fill = [](std::vector<double>& row, size_t n) {
        for (size_t k = 1; k <= n && k < row.size(); ++k)
            row[k] = row[k - 1] * double(n - k + 1) / double(k);
    };
    fill(choose, 2 * p - 1);
    fill(rowP, p);
    fill(rowQ, p - 1);
    // ∫ B(i,p)·B(j,p−1) dt = C(p,i)·C(p−1,j) / (C(2p−1,i+j)·2p); the derivative's control points are
    // p·(P(j+1) − P(j)).
    double sum = 0.0;
    for (size_t i = 0; i <= p; ++i)
        for (size_t j = 0; j < p; ++j) {
            const double dx = piece[j + 1].x - piece[j].x, dy = piece[j + 1].y - piece[j].y;
            sum += (piece[i].x * dy - piece[i].y * dx) * rowP[i] * rowQ[j] / choose[i + j];
        }
    return sum / 4.0;
}

/// The same for a rational piece: halved until its control polygon, as a polynomial, tells no more.
double rationalArea(const Bezier& piece, double tolerance, int depth)
{
    const auto cross
        = [](const KcGePoint3d& a, const KcGePoint3d& b) { return (a.x * b.y - a.y * b.x) / 2.0; };
    // Area between curve and chord by Simpson's rule on 2 and on 4 intervals, in five points of the curve.
    Bezier left, right;
    halve(piece, left, right);
    const KcGePoint3d p0 = piece.front().point(), p4 = piece.back().point(), p2 = left.back().point();
    const KcGePoint3d p1 = pointOf(left, 0.5), p3 = pointOf(right, 0.5);
    // The parabola through three equidistant points encloses 4/3 of their triangle (Archimedes).
    const auto parabola = [&](const KcGePoint3d& a, const KcGePoint3d& m, const KcGePoint3d& b) {
        const double triangle = cross(a, m) + cross(m, b) + cross(b, a);
        return cross(a, b) + triangle * 4.0 / 3.0;
    };
    const double coarse = parabola(p0, p2, p4);
    const double fine = parabola(p0, p1, p2) + parabola(p2, p3, p4);
    constexpr int kDeepestArea = 20, kShallowestArea = 2;
    // The error of the finer value is about a fifteenth of the difference, as for any rule of fourth order.
    if ((depth >= kShallowestArea && std::abs(fine - coarse) <= 15.0 * tolerance) || depth >= kDeepestArea)
        return fine + (fine - coarse) / 15.0;
    return rationalArea(left, tolerance / 2.0, depth + 1) + rationalArea(right, tolerance / 2.0, depth + 1);
}

bool isFinite(KcGePoint3d p)
{
    return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}

/// Solves a tridiagonal system with dominant diagonal by elimination (Thomas); `rhs` becomes the solution.
template <class Value>
void solveTridiagonal(
    const std::vector<double>& below, std::vector<double> diagonal, const std::vector<double>& above,
    std::vector<Value>& rhs)
{
    const size_t n = diagonal.size();
    for (size_t i = 1; i < n; ++i) {
        const double f = below[i] / diagonal[i - 1];
        diagonal[i] -= f * above[i - 1];
        rhs[i] = rhs[i] - rhs[i - 1] * f;
    }
    rhs[n - 1] = rhs[n - 1] / diagonal[n - 1];
    for (size_t i = n - 1; i-- > 0;)
        rhs[i] = (rhs[i] - rhs[i + 1] * above[i]) / diagonal[i];
}

} // namespace

bool KcGeNurbsCurve3d::isValid() const
{
    if (degree < 1 || degree > kMaxDegree || controlPoints.size() <= size_t(degree)
        || knots.size() != controlPoints.size() + size_t(degree) + 1)
        return false;
    if (!weights.empty() && weights.size() != controlPoints.size())
        return false;
    for (size_t i = 0; i < knots.size(); ++i)
        if (!std::isfinite(knots[i]) || (i > 0 && knots[i] < knots[i - 1]))
            return false;
    if (!std::all_of(controlPoints.begin(), controlPoints.end(), isFinite))
        return false;
    for (const double w : weights)
        if (!(w > 0.0) || !std::isfinite(w))
            return false;
    return startParam() < endParam() && std::isfinite(endParam() - startParam());
}

KcGePoint3d KcGeNurbsCurve3d::pointAt(double knot) const
{
    if (!(knot > startParam())) // a value that is no number included
        knot = startParam();
    knot = std::min(knot, endParam());
    return polar(*this, spanOf(*this, knot), [knot](size_t) { return knot; }).point();
}

KcGeVector3d KcGeNurbsCurve3d::derivativeAt(double knot) const
{
    if (!(knot > startParam()))
        knot = startParam();
    knot = std::min(knot, endParam());
    const size_t span = spanOf(*this, knot);
    const double low = knots[span], high = knots[span + 1];
    // The derivative of the polar form in one argument is the difference over the span, times the degree.
    const size_t last = size_t(degree) - 1;
    const Weighted a = polar(*this, span, [&](size_t i) { return i == last ? low : knot; });
    const Weighted b = polar(*this, span, [&](size_t i) { return i == last ? high : knot; });
    const Weighted at = polar(*this, span, [&](size_t) { return knot; });
    const double f = degree / (high - low);
    const KcGePoint3d p = at.point();
    const double dw = (b.w - a.w) * f;
    return { ((b.x - a.x) * f - p.x * dw) / at.w, ((b.y - a.y) * f - p.y * dw) / at.w,
             ((b.z - a.z) * f - p.z * dw) / at.w };
}

std::vector<double> KcGeNurbsCurve3d::breaks() const
{
    std::vector<double> result(knots.begin() + degree, knots.begin() + long(controlPoints.size()) + 1);
    result.erase(std::unique(result.begin(), result.end()), result.end());
    return result;
}

KcGeExtents3d KcGeNurbsCurve3d::extents(double tolerance) const
{
    KcGeExtents3d box;
    forEachPiece(*this, [&](const Bezier& piece) { growBox(box, piece, reachable(tolerance, piece), 0); });
    return box;
}

std::vector<KcGePoint3d> KcGeNurbsCurve3d::chords(double sagitta) const
{
    std::vector<KcGePoint3d> points;
    forEachPiece(*this, [&](const Bezier& piece) {
        if (points.empty())
            points.push_back(piece.front().point());
        addChords(points, piece, reachable(sagitta, piece), 0);
    });
    return points;
}

double KcGeNurbsCurve3d::planArea() const
{
    double area = 0.0;
    const bool rational = !weights.empty();
    forEachPiece(*this, [&](Bezier piece) {
        const KcGePoint3d origin = piece.front().point(), end = piece.back().point();
        double size = 0.0;
        for (Weighted& w : piece) {
            w.x -= origin.x * w.w;
            w.y -= origin.y * w.w;
            size = std::max({ size, std::abs(w.x / w.w), std::abs(w.y / w.w) });
        }
        constexpr double kRelativeArea = 1e-12;
        area += rational ? rationalArea(piece, size * size * kRelativeArea, 0) : polynomialArea(piece);
        // Back to the true origin.
        area += (origin.x * (end.y - origin.y) - origin.y * (end.x - origin.x)) / 2.0;
    });
    return area;
}

std::vector<KcGeWeightedPoint3d> KcGeNurbsCurve3d::bezierPoints() const
{
    std::vector<Weighted> points;
    forEachPiece(
        *this, [&](const Bezier& piece) { points.insert(points.end(), piece.begin(), piece.end()); });
    return points;
}

KcGeNurbsCurve3d KcGeNurbsCurve3d::between(double low, double high) const
{
    const size_t p = size_t(degree);
    KcGeNurbsCurve3d part;
    part.degree = degree;
    part.knots.assign(p + 1, low);
    for (const double knot : knots)
        if (knot > low && knot < high)
            part.knots.push_back(knot);
    part.knots.insert(part.knots.end(), p + 1, high);
    // A control point is the polar form of any polynomial in its reach, at the knots inside that reach.
    for (size_t i = 0; i + p + 1 < part.knots.size(); ++i) {
        size_t j = i;
        while (!(part.knots[j] < part.knots[j + 1]))
            ++j;
        const double inside = part.knots[j] + (part.knots[j + 1] - part.knots[j]) / 2.0;
        const Weighted w
            = polar(*this, spanOf(*this, inside), [&](size_t k) { return part.knots[i + 1 + k]; });
        part.controlPoints.push_back(w.point());
        if (!weights.empty())
            part.weights.push_back(w.w);
    }
    return part;
}

KcGeNurbsCurve3d KcGeNurbsCurve3d::reversed() const
{
    KcGeNurbsCurve3d result = *this;
    std::reverse(result.controlPoints.begin(), result.controlPoints.end());
    std::reverse(result.weights.begin(), result.weights.end());
    std::reverse(result.knots.begin(), result.knots.end());
    const double first = startParam(), last = endParam();
    for (double& knot : result.knots)
        knot = knot == first ? last : knot == last ? first : first + (last - knot); // exact at the ends
    // Rounding must not put knots out of order.
    for (size_t i = 1; i < result.knots.size(); ++i)
        result.knots[i] = std::max(result.knots[i], result.knots[i - 1]);
    return result;
}

KcGeNurbsCurve3d KcGeNurbsCurve3d::joinedWith(const KcGeNurbsCurve3d& next) const
{
    KcGeNurbsCurve3d result = *this;
    const double shift = endParam() - next.startParam();
    result.knots.resize(result.knots.size() - 1); // the joint has the degree as its multiplicity
    for (size_t i = size_t(next.degree) + 1; i < next.knots.size(); ++i)
        result.knots.push_back(next.knots[i] + shift);
    result.controlPoints.insert(
        result.controlPoints.end(), next.controlPoints.begin() + 1, next.controlPoints.end());
    if (!weights.empty() || !next.weights.empty()) {
        result.weights.resize(controlPoints.size(), 1.0);
        // Weights are defined up to a factor; the joint's must be one.
        const double factor = result.weights.back() / (next.weights.empty() ? 1.0 : next.weights.front());
        for (size_t i = 1; i < next.controlPoints.size(); ++i)
            result.weights.push_back((next.weights.empty() ? 1.0 : next.weights[i]) * factor);
    }
    return result;
}

KcGeNurbsCurve3d KcGeNurbsCurve3d::transformed(const KcGeMatrix3d& matrix) const
{
    KcGeNurbsCurve3d result = *this;
    for (KcGePoint3d& p : result.controlPoints)
        p = matrix * p;
    return result;
}

std::optional<KcGeNurbsCurve3d>
KcGeNurbsCurve3d::throughPoints(const std::vector<KcGePoint3d>& given, const EndConditions& ends)
{
    std::vector<KcGePoint3d> points;
    for (const KcGePoint3d p : given)
        if (isFinite(p) && (points.empty() || !p.isEqualTo(points.back())))
            points.push_back(p);
    if (ends.closed && points.size() > 2) {
        if (points.front().isEqualTo(points.back()))
            points.pop_back();
        points.push_back(points.front());
    }
    const size_t n = points.size();
    if (n < 2)
        return std::nullopt;

    std::vector<double> step(n - 1), at(n, 0.0);
    std::vector<KcGeVector3d> slope(n - 1);
    for (size_t i = 0; i + 1 < n; ++i) {
        const KcGeVector3d chord = points[i + 1] - points[i];
        step[i] = chord.length();
        slope[i] = chord / step[i];
        at[i + 1] = at[i] + step[i];
    }
    // Derivatives m at the points from the continuity of the second ones:
    // m(i−1)/h(i−1) + 2·m(i)·(1/h(i−1) + 1/h(i)) + m(i+1)/h(i) = 3·(s(i−1)/h(i−1) + s(i)/h(i)).
    std::vector<double> below(n, 0.0), diagonal(n, 1.0), above(n, 0.0);
    std::vector<KcGeVector3d> m(n);
    for (size_t i = 1; i + 1 < n; ++i) {
        below[i] = 1.0 / step[i - 1];
        above[i] = 1.0 / step[i];
        diagonal[i] = 2.0 * (below[i] + above[i]);
        m[i] = (slope[i - 1] * below[i] + slope[i] * above[i]) * 3.0;
    }
    const bool smooth = ends.closed && n > 3;
    if (smooth) {
        // The last point is the first one again, which makes the system cyclic; Sherman and Morrison's
        // formula brings it back to two systems without corners.
        const size_t c = n - 1;
        below.resize(c);
        above.resize(c);
        diagonal.resize(c);
        m.resize(c);
        const double before = 1.0 / step[c - 1], after = 1.0 / step[0];
        above[0] = after;
        diagonal[0] = 2.0 * (before + after);
        m[0] = (slope[c - 1] * before + slope[0] * after) * 3.0;
        const double corner = before, gamma = -diagonal[0];
        std::vector<double> reduced = diagonal, y(c, 0.0);
        reduced[0] -= gamma;
        reduced[c - 1] -= corner * corner / gamma;
        y[0] = gamma;
        y[c - 1] = corner;
        solveTridiagonal(below, reduced, above, m);
        solveTridiagonal(below, reduced, above, y);
        const KcGeVector3d f
            = (m[0] + m[c - 1] * (corner / gamma)) / (1.0 + y[0] + y[c - 1] * corner / gamma);
        for (size_t i = 0; i < c; ++i)
            m[i] = m[i] - f * y[i];
        m.push_back(m.front());
    } else {
        const auto usable = [](const std::optional<KcGeVector3d>& t) {
            return t && std::isfinite(t->length()) && t->length() > 0.0;
        };
        if (usable(ends.startTangent)) {
            m[0] = ends.startTangent->normal();
        } else {
            diagonal[0] = 2.0;
            above[0] = 1.0;
            m[0] = slope[0] * 3.0;
        }
        if (usable(ends.endTangent)) {
            m[n - 1] = ends.endTangent->normal();
        } else {
            diagonal[n - 1] = 2.0;
            below[n - 1] = 1.0;
            m[n - 1] = slope[n - 2] * 3.0;
        }
        solveTridiagonal(below, diagonal, above, m);
    }

    KcGeNurbsCurve3d curve;
    curve.knots.push_back(at[0]);
    curve.controlPoints.push_back(points[0]);
    for (size_t i = 0; i + 1 < n; ++i) {
        curve.knots.insert(curve.knots.end(), 3, at[i]);
        curve.controlPoints.push_back(points[i] + m[i] * (step[i] / 3.0));
        curve.controlPoints.push_back(points[i + 1] - m[i + 1] * (step[i] / 3.0));
        curve.controlPoints.push_back(points[i + 1]);
    }
    curve.knots.insert(curve.knots.end(), 4, at[n - 1]);
    if (!curve.isValid())
        return std::nullopt;
    return curve;
}
