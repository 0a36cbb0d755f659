// Roots along cubics by their Bernstein coefficients, and crossings of two cubics by halving.

#include "ge/region_cubic.h"

#include "ge/extents.h"
#include "ge/sign_changes.h"

#include <algorithm>

namespace kcge {

namespace {

/// A polynomial of a degree up to 6 by its powers.
struct Polynomial {
    static constexpr int kMostDegree = 6;
    int degree = 0;
    std::array<double, kMostDegree + 1> a {};

    KcGeSlope at(double t) const
    {
        double value = a[size_t(degree)], slope = 0.0;
        for (int i = degree - 1; i >= 0; --i) {
            slope = slope * t + value;
            value = value * t + a[size_t(i)];
        }
        return { value, slope };
    }
};

using Coefficients = std::array<double, Polynomial::kMostDegree + 1>;

/// The polynomial stays between the least and the greatest of these.
Coefficients bernstein(const Polynomial& p)
{
    Coefficients b {};
    for (int j = 0; j <= p.degree; ++j) {
        double chosen = 1.0; // binomial(j, i) / binomial(degree, i)
        for (int i = 0; i <= j; ++i) {
            b[size_t(j)] += chosen * p.a[size_t(i)];
            chosen *= double(j - i) / double(p.degree - i);
        }
    }
    return b;
}

class RootFinder {
public:
    RootFinder(const Polynomial& polynomial, double tolerance)
        : m_polynomial(polynomial)
        , m_tolerance(tolerance)
    {
    }
    std::vector<double> run()
    {
        search(bernstein(m_polynomial), 0.0, 1.0, 0);
        std::sort(m_roots.begin(), m_roots.end());
        // Roots between which the curve stays within the tolerance are one touch.
        std::vector<double> result;
        double from = 0.0;
        for (const double t : m_roots) {
            if (!result.empty() && std::abs(m_polynomial.at((result.back() + t) / 2.0).value) <= m_tolerance) {
                result.back() = (from + t) / 2.0;
                continue;
            }
            from = t;
            result.push_back(t);
        }
        return result;
    }

private:
    void search(const Coefficients& b, double low, double high, int depth)
    {
        const size_t n = size_t(m_polynomial.degree);
        const auto [least, most] = std::minmax_element(b.begin(), b.begin() + long(n) + 1);
        if (!(*least <= m_tolerance && *most >= -m_tolerance))
            return;
        bool rises = true, falls = true;
        for (size_t i = 0; i < n; ++i) {
            rises = rises && b[i] <= b[i + 1];
            falls = falls && b[i] >= b[i + 1];
        }
        constexpr int kDeepest = 40;
        if (rises || falls) {
            if ((b[0] < 0.0) != (b[n] < 0.0))
                m_roots.push_back(
                    bracketedRoot([&](double t) { return m_polynomial.at(t); }, low, high, b[0]));
            else if (std::abs(b[0]) <= m_tolerance || std::abs(b[n]) <= m_tolerance)
                m_roots.push_back(std::abs(b[0]) < std::abs(b[n]) ? low : high);
            return;
        }
        if ((*least >= -m_tolerance && *most <= m_tolerance) || depth == kDeepest) {
            m_roots.push_back((low + high) / 2.0);
            return;
        }
        // De Casteljau's halving.
        Coefficients left = b, right = b;
        for (size_t k = 0; k <= n; ++k) {
            left[k] = right[0];
            for (size_t i = 0; i + k < n; ++i)
                right[i] = (right[i] + right[i + 1]) / 2.0;
        }
        const double middle = (low + high) / 2.0;
        search(left, low, middle, depth + 1);
        search(right, middle, high, depth + 1);
    }

    const Polynomial& m_polynomial;
    double m_tolerance;
    std::vector<double> m_roots;
};

class Crossings {
public:
    Crossings(const Cubic& a, const Cubic& b, double tolerance)
        : m_a(a)
        , m_b(b)
        , m_tolerance(tolerance)
    {
    }
    std::vector<CubicCrossing> run()
    {
        search(Span(m_a, 0.0, 1.0), Span(m_b, 0.0, 1.0));
        return std::move(m_found);
    }

private:
    /// A stretch without turning points lies in the box of its ends, and near its chord.
    struct Span {
        Span(const Cubic& curve, double low, double high)
            : low(low)
            , high(high)
            , start(curve.at(low))
            , end(curve.at(high))
        {
            const double step = high - low;
            const double bend = std::max(curve.second(low).length(), curve.second(high).length());
            sagitta = bend * step * step / 8.0;
        }
        double low, high;
        KcGePoint2d start, end;
        double sagitta; ///< at most
    };

    void search(const Span& a, const Span& b)
    {
        constexpr int kMostSteps = 20000; // coinciding stretches would be followed all along
        if (++m_steps > kMostSteps)
            return;
        const double t = m_tolerance;
        if (std::min(a.start.x, a.end.x) > std::max(b.start.x, b.end.x) + t
            || std::min(b.start.x, b.end.x) > std::max(a.start.x, a.end.x) + t
            || std::min(a.start.y, a.end.y) > std::max(b.start.y, b.end.y) + t
            || std::min(b.start.y, b.end.y) > std::max(a.start.y, a.end.y) + t)
            return;
        const double flat = t / 8.0;
        if (a.sagitta <= flat && b.sagitta <= flat) {
            crossChords(a, b);
            return;
        }
        if (a.sagitta >= b.sagitta) {
            const double middle = (a.low + a.high) / 2.0;
            search(Span(m_a, a.low, middle), b);
            search(Span(m_a, middle, a.high), b);
        } else {
            const double middle = (b.low + b.high) / 2.0;
            search(a, Span(m_b, b.low, middle));
            search(a, Span(m_b, middle, b.high));
        }
    }

    void crossChords(const Span& a, const Span& b)
    {
        const KcGeVector2d u = a.end - a.start, v = b.end - b.start, w = b.start - a.start;
        const double det = u.crossProduct(v);
        // Chords that hardly leave each other belong to stretches that coincide; their ends are found elsewhere.
        const double la = u.length(), lb = v.length();
        if (!(std::abs(det) > 2.0 * m_tolerance * std::min(la, lb))) {
            if (la > 4.0 * m_tolerance && lb > 4.0 * m_tolerance && std::abs(w.crossProduct(u)) <= m_tolerance * la)
                return;
        }
        constexpr double kBeyond = 0.1; // what the chords miss, Newton's steps may still find
        double s = w.crossProduct(v) / det, r = w.crossProduct(u) / det;
        if (!(s >= -kBeyond && s <= 1.0 + kBeyond && r >= -kBeyond && r <= 1.0 + kBeyond))
            return;
        double ta = a.low + s * (a.high - a.low), tb = b.low + r * (b.high - b.low);
        constexpr int kSteps = 4;
        for (int i = 0; i < kSteps; ++i) {
            const KcGeVector2d off = m_b.at(tb) - m_a.at(ta);
            const KcGeVector2d da = m_a.derivative(ta), db = m_b.derivative(tb);
            const double d = da.crossProduct(db);
            if (d == 0.0) // exact: no step to take
                break;
            ta = std::clamp(ta + off.crossProduct(db) / d, 0.0, 1.0);
            tb = std::clamp(tb + off.crossProduct(da) / d, 0.0, 1.0);
        }
        if (m_a.at(ta).distanceTo(m_b.at(tb)) <= m_tolerance)
            m_found.push_back({ ta, tb });
    }

    const Cubic& m_a;
    const Cubic& m_b;
    double m_tolerance;
    int m_steps = 0;
    std::vector<CubicCrossing> m_found;
};

} // namespace

std::array<KcGePoint2d, 4> Cubic::controlPoints(double from, double to) const
{
    // The symmetric function of three parameters whose value at (t, t, t) is the point at t.
    const auto polar = [&](double r, double s, double t) {
        return KcGePoint2d() + c[0] + c[1] * ((r + s + t) / 3.0) + c[2] * ((r * s + s * t + t * r) / 3.0)
            + c[3] * (r * s * t);
    };
    return { polar(from, from, from), polar(from, from, to), polar(from, to, to), polar(to, to, to) };
}

Cubic Cubic::through(KcGePoint2d p0, KcGePoint2d p1, KcGePoint2d p2, KcGePoint2d p3)
{
    // Newton's interpolation at thirds, written out; differences keep far coordinates exact.
    const KcGeVector2d a = p1 - p0, b = p2 - p0, d = p3 - p0;
    return { { p0.asVector(), a * 9.0 - b * 4.5 + d, a * -22.5 + b * 18.0 - d * 4.5, a * 13.5 - b * 13.5 + d * 4.5 } };
}

double Cubic::closest(KcGePoint2d point) const
{
    constexpr int kSamples = 8, kSteps = 6;
    double best = 0.0, bestSquare = std::numeric_limits<double>::infinity();
    for (int i = 0; i <= kSamples; ++i) {
        const KcGeVector2d off = at(double(i) / kSamples) - point;
        if (const double square = off.dotProduct(off); square < bestSquare) {
            bestSquare = square;
            best = double(i) / kSamples;
        }
    }
    for (int i = 0; i < kSteps; ++i) {
        const KcGeVector2d off = at(best) - point, d = derivative(best);
        const double slope = off.dotProduct(d);
        double curve = d.dotProduct(d) + off.dotProduct(second(best));
        if (!(curve > 0.0))
            curve = d.dotProduct(d);
        if (!(curve > 0.0))
            break;
        const double next = std::clamp(best - slope / curve, 0.0, 1.0);
        if (next == best) // exact: it stands
            break;
        best = next;
    }
    return best;
}

double Cubic::areaAbout(double from, double to, KcGePoint2d about) const
{
    // Gauss-Legendre with three points, exact up to degree five.
    static const double kNode = std::sqrt(0.6);
    const double half = (to - from) / 2.0, middle = (from + to) / 2.0;
    double area = 0.0;
    for (const auto& [x, weight] : { std::pair(-kNode, 5.0 / 9.0), std::pair(0.0, 8.0 / 9.0), std::pair(kNode, 5.0 / 9.0) }) {
        const double t = middle + half * x;
        area += weight * (at(t) - about).crossProduct(derivative(t));
    }
    return area * half / 2.0;
}

std::vector<double> onLine(const Cubic& curve, KcGePoint2d point, KcGeVector2d unit, double tolerance)
{
    Polynomial p { 3 };
    p.a[0] = unit.crossProduct(curve.c[0] - point.asVector());
    for (size_t i = 1; i <= 3; ++i)
        p.a[i] = unit.crossProduct(curve.c[i]);
    return RootFinder(p, tolerance).run();
}

std::vector<double> onCircle(const Cubic& curve, KcGePoint2d center, double radius, double tolerance)
{
    // (distance² − radius²) / (2 · radius): near the circle this is the distance from it.
    Polynomial p { 6 };
    std::array<KcGeVector2d, 4> c = curve.c;
    c[0] = c[0] - center.asVector();
    for (size_t i = 0; i <= 3; ++i)
        for (size_t k = 0; k <= 3; ++k)
            p.a[i + k] += c[i].dotProduct(c[k]) / (2.0 * radius);
    p.a[0] -= radius / 2.0;
    return RootFinder(p, tolerance).run();
}

std::vector<CubicCrossing> crossings(const Cubic& a, const Cubic& b, double tolerance)
{
    return Crossings(a, b, tolerance).run();
}

} // namespace kcge
