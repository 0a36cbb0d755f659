// Intersections: cases worked by hand, each also swapped, reversed, turned, mirrored and far away; random
// pieces of every kind against crossings of fine chords; chains against all pairs of their pieces.

#include "ge/intersect.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Segment = KcGeSegment2d;
constexpr double kTol = KcGeContext::gTol.equalPoint;

struct NamedTransform {
    const char* name;
    KcGeMatrix3d matrix;
    double noise; ///< of coordinates, for comparisons
};

const std::vector<NamedTransform>& transforms()
{
    static const std::vector<NamedTransform> all{
        { "as it is", {}, 1e-9 },
        { "turned", KcGeMatrix3d::rotation(0.7), 1e-9 },
        { "mirrored", KcGeMatrix3d::mirroring({ 1, 2, 0 }, { 3, 1, 0 }), 1e-9 },
        { "far away", KcGeMatrix3d::translation({ 5e8, -4e8, 0 }), 1e-6 },
        { "far away and turned", KcGeMatrix3d::translation({ 5e8, -4e8, 0 }) * KcGeMatrix3d::rotation(2.1),
          1e-6 },
    };
    return all;
}

KcGePoint2d apply(const KcGeMatrix3d& m, KcGePoint2d p)
{
    return (m * KcGePoint3d{ p.x, p.y, 0.0 }).plan();
}

Segment line(double x0, double y0, double x1, double y1)
{
    return Segment::line({ x0, y0 }, { x1, y1 });
}

/// Angles in degrees.
Segment arc(double x, double y, double radius, double start, double sweep)
{
    return Segment::arc({ { x, y }, radius, start * kPi / 180.0, sweep * kPi / 180.0 });
}

Segment ellipse(double x, double y, double rx, double ry)
{
    return Segment::ellipse({ x, y }, { rx, 0 }, { 0, ry }, 0.0, kTwoPi);
}

struct Case {
    const char* name;
    Segment first, second;
    std::vector<KcGePoint2d> points;
    int tangents = 0;
    std::vector<std::pair<KcGePoint2d, KcGePoint2d>> overlaps{};
    bool extendFirst = false, extendSecond = false;
};

bool holds(const std::vector<KcGeCrossing2d>& found, KcGePoint2d p, double tolerance)
{
    return std::any_of(found.begin(), found.end(), [&](const KcGeCrossing2d& c) {
        return c.point.distanceTo(p) <= tolerance;
    });
}

void expectCase(
    const Case& c, const Segment& a, const Segment& b, const NamedTransform& t, const std::string& how)
{
    SCOPED_TRACE(std::string(c.name) + ", " + t.name + how);
    const KcGeIntersections2d found = intersect(a, b, { c.extendFirst, c.extendSecond, kTol });
    EXPECT_EQ(found.points.size(), c.points.size());
    const double tolerance = kTol + t.noise;
    for (const KcGePoint2d p : c.points)
        EXPECT_TRUE(holds(found.points, apply(t.matrix, p), tolerance)) << p.x << ", " << p.y;
    int tangents = 0;
    for (const KcGeCrossing2d& x : found.points) {
        tangents += x.tangent;
        EXPECT_NEAR(a.pointAt(x.first).distanceTo(x.point), 0.0, tolerance);
        EXPECT_NEAR(b.pointAt(x.second).distanceTo(x.point), 0.0, tolerance);
    }
    EXPECT_EQ(tangents, c.tangents);
    ASSERT_EQ(found.overlaps.size(), c.overlaps.size());
    for (const auto& [from, to] : c.overlaps) {
        const KcGePoint2d p = apply(t.matrix, from), q = apply(t.matrix, to);
        const bool isThere
            = std::any_of(found.overlaps.begin(), found.overlaps.end(), [&](const KcGeOverlap2d& o) {
                  return std::min(
                             std::max(o.start.distanceTo(p), o.end.distanceTo(q)),
                             std::max(o.start.distanceTo(q), o.end.distanceTo(p)))
                      <= tolerance;
              });
        EXPECT_TRUE(isThere);
    }
    for (const KcGeOverlap2d& o : found.overlaps) {
        EXPECT_LT(o.firstFrom, o.firstTo);
        EXPECT_NEAR(a.pointAt(o.firstFrom).distanceTo(b.pointAt(o.secondFrom)), 0.0, tolerance);
        EXPECT_NEAR(a.pointAt(o.firstTo).distanceTo(b.pointAt(o.secondTo)), 0.0, tolerance);
        const double f = (o.firstFrom + o.firstTo) / 2.0, s = (o.secondFrom + o.secondTo) / 2.0;
        if (a.kind() == b.kind() && !a.carrier()) {
            EXPECT_NEAR(a.pointAt(f).distanceTo(b.pointAt(s)), 0.0, tolerance);
        }
    }
}

void expectUnderSymmetries(const Case& c)
{
    for (const NamedTransform& t : transforms()) {
        const Segment a = c.first.transformed(t.matrix), b = c.second.transformed(t.matrix);
        expectCase(c, a, b, t, "");
        expectCase(c, a.reversed(), b, t, ", first reversed");
        expectCase(c, a, b.reversed(), t, ", second reversed");
        Case swapped = c;
        std::swap(swapped.extendFirst, swapped.extendSecond);
        expectCase(swapped, b, a, t, ", swapped");
    }
}

} // namespace

TEST(Intersect, LinesAndArcs)
{
    const double h = std::sqrt(3.0) / 2.0;
    const Segment circle = arc(0, 0, 1, 0, 360);
    const Case cases[]{
        { "lines cross", line(0, 0, 2, 2), line(0, 2, 2, 0), { { 1, 1 } } },
        { "lines miss", line(0, 0, 1, 1), line(0, 2, 0.9, 1.1), {} },
        { "lines share an end", line(0, 0, 1, 1), line(1, 1, 2, 0), { { 1, 1 } } },
        { "an end a millionth short of the line", line(0, 0, 2, 0), line(1, 1e-6, 1, 5), { { 1, 0 } } },
        { "an end a thousandth short of the line", line(0, 0, 2, 0), line(1, 1e-3, 1, 5), {} },
        { "parallel lines", line(0, 0, 2, 0), line(0, 1, 2, 1), {} },
        { "one goes on where the other ends", line(0, 0, 1, 0), line(1, 0, 3, 0), { { 1, 0 } }, 1 },
        { "lines overlap", line(0, 0, 3, 0), line(2, 0, 5, 0), {}, 0, { { { 2, 0 }, { 3, 0 } } } },
        { "one lies in the other", line(0, 0, 9, 0), line(2, 0, 5, 0), {}, 0, { { { 2, 0 }, { 5, 0 } } } },
        { "the same line", line(0, 0, 3, 1), line(0, 0, 3, 1), {}, 0, { { { 0, 0 }, { 3, 1 } } } },
        { "a shallow crossing", line(-100, -1e-3, 100, 1e-3), line(-100, 0, 100, 0), { { 0, 0 } } },
        { "a line through a circle", line(-2, 0.5, 2, 0.5), circle, { { -h, 0.5 }, { h, 0.5 } } },
        { "a line from within a circle", line(0, 0, 2, 0), circle, { { 1, 0 } } },
        { "a line touches a circle", line(-2, 1, 2, 1), circle, { { 0, 1 } }, 1 },
        { "a line a millionth inside a circle", line(-2, 1 - 1e-6, 2, 1 - 1e-6), circle, { { 0, 1 } }, 1 },
        { "a line a millionth outside", line(-2, 1 + 1e-6, 2, 1 + 1e-6), circle, { { 0, 1 } }, 1 },
        { "a line a thousandth outside", line(-2, 1.001, 2, 1.001), circle, {} },
        { "a rounded corner", line(-2, 1, 0, 1), arc(0, 0, 1, 90, -90), { { 0, 1 } }, 1 },
        { "an arc that does not reach the line", line(-2, -0.5, 2, -0.5), arc(0, 0, 1, 0, 180), {} },
        { "an arc over its start angle", line(0.5, 0, 2, 0), arc(0, 0, 1, -30, 60), { { 1, 0 } } },
        { "circles cross", circle, arc(1, 0, 1, 0, 360), { { 0.5, h }, { 0.5, -h } } },
        { "circles touch outside", circle, arc(3, 0, 2, 0, 360), { { 1, 0 } }, 1 },
        { "circles touch inside", circle, arc(-1, 0, 2, 0, 360), { { 1, 0 } }, 1 },
        { "circles inside each other", circle, arc(0.1, 0, 3, 0, 360), {} },
        { "the same circle", circle, arc(0, 0, 1, 0, 360), {}, 0, { { { 1, 0 }, { 1, 0 } } } },
        { "arcs overlap", arc(0, 0, 1, 0, 90), arc(0, 0, 1, 30, 90), {}, 0, { { { h, 0.5 }, { 0, 1 } } } },
        { "arcs overlap at both ends",
          arc(0, 0, 1, 0, 270),
          arc(0, 0, 1, 180, 270),
          {},
          0,
          { { { 1, 0 }, { 0, 1 } }, { { -1, 0 }, { 0, -1 } } } },
        { "lines extended", line(0, 0, 1, 0), line(5, 5, 5, 4), { { 5, 0 } }, 0, {}, true, true },
        { "only the first extended", line(0, 0, 1, 0), line(5, 5, 5, 4), {}, 0, {}, true, false },
        { "a row over a circle", line(0, 0.5, 0.1, 0.5), circle, { { -h, 0.5 }, { h, 0.5 } }, 0, {}, true },
        { "an arc extended",
          arc(0, 0, 1, 0, 90),
          line(-2, -0.5, 2, -0.5),
          { { -h, -0.5 }, { h, -0.5 } },
          0,
          {},
          true },
        { "on one line, extended",
          line(0, 0, 1, 0),
          line(3, 0, 5, 0),
          {},
          0,
          { { { 3, 0 }, { 5, 0 } } },
          true },
        { "both extended on one line",
          line(0, 0, 1, 0),
          line(3, 0, 5, 0),
          {},
          0,
          { { { 0, 0 }, { 5, 0 } } },
          true,
          true },
    };
    for (const Case& c : cases)
        expectUnderSymmetries(c);
}

TEST(Intersect, EllipsesAndSplines)
{
    const Segment wide = ellipse(0, 0, 4, 1), tall = ellipse(0, 0, 1, 4);
    // The four common points of x²/16 + y² = 1 and x² + y²/16 = 1: x² = y² = 16/17.
    const double d = std::sqrt(16.0 / 17.0);
    // y = x²/4 for x from −2 to 2, as a quadratic.
    KcGeNurbsCurve3d parabola;
    parabola.degree = 2;
    parabola.knots = { 0, 0, 0, 1, 1, 1 };
    parabola.controlPoints = { { -2, 1, 0 }, { 0, -1, 0 }, { 2, 1, 0 } };
    const Segment bow = *Segment::spline(parabola);
    const double h = std::sqrt(3.0) / 2.0;
    const Case cases[]{
        { "ellipses cross in four points", wide, tall, { { d, d }, { -d, d }, { d, -d }, { -d, -d } } },
        { "ellipse and its circle of curvature's like",
          wide,
          arc(0, 0, 4, 0, 360),
          { { 4, 0 }, { -4, 0 } },
          2 },
        { "a line touches an ellipse", wide, line(-3, 1, 3, 1), { { 0, 1 } }, 1 },
        { "a line just inside an ellipse", wide, line(-3, 1 - 1e-6, 3, 1 - 1e-6), { { 0, 1 } }, 1 },
        { "a line through an ellipse", wide, line(-9, 0.5, 9, 0.5), { { -4 * h, 0.5 }, { 4 * h, 0.5 } } },
        { "a line and a parabola", bow, line(-9, 0.25, 9, 0.25), { { -1, 0.25 }, { 1, 0.25 } } },
        { "a row over a parabola",
          bow,
          line(0, 0.25, 0.1, 0.25),
          { { -1, 0.25 }, { 1, 0.25 } },
          0,
          {},
          false,
          true },
        { "a parabola is not extended", bow, line(-9, 4, 9, 4), {}, 0, {}, true },
        { "a line touches a parabola", bow, line(-9, 0, 9, 0), { { 0, 0 } }, 1 },
        { "a piece of a parabola", bow, bow.between(0.25, 0.5), {}, 0, { { { -1, 0.25 }, { 0, 0 } } } },
        { "the same ellipse", wide, ellipse(0, 0, 4, 1), {}, 0, { { { 4, 0 }, { 4, 0 } } } },
    };
    for (const Case& c : cases)
        expectUnderSymmetries(c);
}

namespace {

struct Random {
    std::mt19937 engine;
    double operator()(double low, double high) { return std::uniform_real_distribution(low, high)(engine); }

    Segment piece(int kind)
    {
        Random& r = *this;
        const KcGePoint2d p{ r(-10, 10), r(-10, 10) };
        switch (kind) {
        case 0:
            return Segment::line(p, { r(-10, 10), r(-10, 10) });
        case 1:
            return Segment::arc({ p, r(1, 12), r(0, kTwoPi), r(0.3, kTwoPi) * (r(0, 1) < 0.5 ? -1 : 1) });
        case 2: {
            const KcGeVector2d u = KcGeVector2d{ r(2, 12), 0 }.rotateBy(r(0, kTwoPi));
            return Segment::ellipse(p, u, u.perpVector() * r(0.1, 0.9), r(0, kTwoPi), r(0.5, kTwoPi));
        }
        default: {
            KcGeNurbsCurve3d curve;
            curve.degree = 3;
            const int points = 4 + int(r(0, 5));
            for (int i = 0; i < points; ++i) {
                curve.controlPoints.push_back({ r(-10, 10), r(-10, 10), 0 });
                if (kind == 4)
                    curve.weights.push_back(r(0.5, 3));
            }
            for (int i = 0; i < points + 4; ++i)
                curve.knots.push_back(std::clamp(i - 3, 0, points - 3));
            return *Segment::spline(curve);
        }
        }
    }
};

/// Crossings of fine chords; the smallest sine between crossing chords.
struct Sampled {
    std::vector<KcGePoint2d> points;
    double smallestSine = 1.0;
};

Sampled crossingsOfChords(const Segment& a, const Segment& b)
{
    constexpr int kChords = 600;
    std::vector<KcGePoint2d> p, q;
    for (int i = 0; i <= kChords; ++i) {
        p.push_back(a.pointAt(double(i) / kChords));
        q.push_back(b.pointAt(double(i) / kChords));
    }
    Sampled result;
    for (int i = 0; i < kChords; ++i)
        for (int j = 0; j < kChords; ++j) {
            const KcGeVector2d r = p[i + 1] - p[i], u = q[j + 1] - q[j], w = q[j] - p[i];
            const double d = r.crossProduct(u);
            const double t = w.crossProduct(u) / d, s = w.crossProduct(r) / d;
            if (t >= 0 && t < 1 && s >= 0 && s < 1) {
                result.points.push_back(p[i] + r * t);
                result.smallestSine = std::min(result.smallestSine, std::abs(d) / r.length() / u.length());
            }
        }
    return result;
}

} // namespace

TEST(Intersect, RandomPiecesAgreeWithChords)
{
    constexpr unsigned kSeed = 4711;
    Random random{ std::mt19937(kSeed) };
    int compared = 0, roots = 0;
    for (int round = 0; round < 400; ++round) {
        const int ka = round % 5, kb = round / 5 % 5;
        const Segment a = random.piece(ka), b = random.piece(kb);
        const KcGeIntersections2d found = intersect(a, b);
        SCOPED_TRACE("round " + std::to_string(round) + " of seed " + std::to_string(kSeed));
        for (const KcGeCrossing2d& c : found.points) {
            EXPECT_LE(a.closest(c.point).distance, kTol);
            EXPECT_LE(b.closest(c.point).distance, kTol);
            EXPECT_LE(a.pointAt(c.first).distanceTo(b.pointAt(c.second)), kTol);
        }
        EXPECT_EQ(intersect(b, a).points.size(), found.points.size());
        const Sampled sampled = crossingsOfChords(a, b);
        if (sampled.smallestSine < 0.02) // chords may miss or double such a crossing
            continue;
        ++compared;
        roots += int(sampled.points.size());
        EXPECT_TRUE(found.overlaps.empty());
        EXPECT_EQ(found.points.size(), sampled.points.size());
        for (const KcGePoint2d p : sampled.points)
            EXPECT_TRUE(holds(found.points, p, 0.1)) << p.x << ", " << p.y;
    }
    EXPECT_GT(compared, 300);
    EXPECT_GT(roots, 300);
}

TEST(Intersect, SplineCrossesItself)
{
    const auto through = [](std::vector<KcGePoint3d> points, bool closed) {
        KcGeNurbsCurve3d::EndConditions ends;
        ends.closed = closed;
        return *Segment::spline(*KcGeNurbsCurve3d::throughPoints(points, ends));
    };
    const auto loop = selfIntersections(
        through({ { -5, 0, 0 }, { 3, 3, 0 }, { 0, 7, 0 }, { -3, 3, 0 }, { 5, 0, 0 } }, false));
    ASSERT_EQ(loop.size(), 1u);
    EXPECT_NEAR(loop[0].point.x, 0.0, kTol); // the loop is symmetric
    EXPECT_LT(loop[0].first, loop[0].second);
    const auto eight = selfIntersections(through(
        { { 0, 0, 0 },
          { 3, 2, 0 },
          { 6, 0, 0 },
          { 3, -2, 0 },
          { 0, 0, 0 },
          { -3, 2, 0 },
          { -6, 0, 0 },
          { -3, -2, 0 } },
        true));
    ASSERT_EQ(eight.size(), 1u);
    EXPECT_NEAR(eight[0].point.distanceTo({ 0, 0 }), 0.0, 1e-4);
    EXPECT_TRUE(
        selfIntersections(through({ { 0, 0, 0 }, { 3, 2, 0 }, { 6, 0, 0 }, { 3, -2, 0 } }, true)).empty());
    EXPECT_TRUE(selfIntersections(line(0, 0, 1, 1)).empty());
}

TEST(Intersect, ChainsAgreeWithAllPairs)
{
    const auto chain = [](unsigned seed, int count) {
        Random random{ std::mt19937(seed) };
        std::vector<Segment> result;
        KcGePoint2d at{ random(-5, 5), random(-5, 5) };
        for (int i = 0; i < count; ++i) {
            const KcGePoint2d next{ random(-20, 20), random(-20, 20) };
            result.push_back(Segment::bulge(at, next, i % 2 ? random(-1.5, 1.5) : 0.0));
            at = next;
        }
        return result;
    };
    const auto a = chain(1, 60), b = chain(2, 60);
    size_t pairs = 0;
    for (const Segment& x : a)
        for (const Segment& y : b)
            pairs += intersect(x, y).points.size();
    const auto found = intersectChains(a, b);
    EXPECT_EQ(found.points.size(), pairs); // random chains meet in no vertex
    EXPECT_GT(pairs, 500u);
    for (const auto& c : found.points)
        EXPECT_LE(a[c.firstPiece].pointAt(c.first).distanceTo(b[c.secondPiece].pointAt(c.second)), kTol);
    size_t own = 0;
    for (size_t i = 0; i < a.size(); ++i)
        for (size_t j = i + 1; j < a.size(); ++j)
            for (const auto& c : intersect(a[i], a[j]).points)
                own += !(j == i + 1 && c.point.distanceTo(a[i].endPoint()) < 1e-4);
    EXPECT_EQ(selfIntersections(a, false).points.size(), own);
}

TEST(Intersect, ChainsMeetOnceInVerticesAndOverlapOnce)
{
    const std::vector<Segment> square{ line(0, 0, 10, 0), line(10, 0, 10, 10), line(10, 10, 0, 10),
                                       line(0, 10, 0, 0) };
    const std::vector<Segment> diagonal{ line(-5, -5, 5, 5), line(5, 5, 15, 15) };
    EXPECT_EQ(intersectChains(square, diagonal).points.size(), 2u); // both corners, each once
    const auto same = intersectChains(square, square);
    EXPECT_TRUE(same.points.empty());
    EXPECT_EQ(same.overlaps.size(), 1u);
    EXPECT_TRUE(selfIntersections(square, true).isEmpty());
    const std::vector<Segment> beside{ line(2, 0, 10, 0), line(10, 0, 10, 5), line(10, 5, 20, 5) };
    const auto partly = intersectChains(square, beside);
    EXPECT_TRUE(partly.points.empty());
    ASSERT_EQ(partly.overlaps.size(), 1u);
    EXPECT_EQ(partly.overlaps[0].start, (KcGePoint2d{ 2, 0 }));
    EXPECT_EQ(partly.overlaps[0].end, (KcGePoint2d{ 10, 5 }));
    const std::vector<Segment> row{ line(1, 5, 2, 5) };
    EXPECT_EQ(intersectChains(row, square, { true, false, kTol }).points.size(), 2u);
    EXPECT_TRUE(intersectChains(row, square).isEmpty());
    const std::vector<Segment> spike{ line(0, 0, 5, 0), line(5, 0, 2, 0) };
    EXPECT_EQ(selfIntersections(spike, false).overlaps.size(), 1u);
}

TEST(Intersect, DegenerateInputIsAnsweredAndEnds)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const Segment speck = line(1, 1, 1, 1), through = line(0, 0, 2, 2), broken = line(0, nan, 1, 1);
    EXPECT_EQ(intersect(speck, through).points.size(), 1u);
    EXPECT_EQ(intersect(speck, speck).points.size(), 1u);
    EXPECT_TRUE(intersect(speck, line(0, 1, 0.5, 1)).isEmpty());
    EXPECT_TRUE(intersect(broken, through).isEmpty());
    EXPECT_TRUE(intersect(through, line(0, 0, 1e300, 1e300 * 2), { true, true, kTol }).points.size() <= 1);
    // A spline drawn twice over the same points, and one with repeated knots: answers, in time.
    KcGeNurbsCurve3d knots;
    knots.degree = 3;
    knots.knots = { 0, 0, 0, 0, 1, 1, 1, 2, 2, 2, 2 };
    knots.controlPoints
        = { { 0, 0, 0 }, { 1, 4, 0 }, { 2, 4, 0 }, { 3, 0, 0 }, { 3, 0, 0 }, { 5, -4, 0 }, { 6, 0, 0 } };
    const Segment kinked = *Segment::spline(knots);
    EXPECT_EQ(intersect(kinked, line(-1, 1, 7, 1)).points.size(), 2u);
    EXPECT_EQ(intersect(kinked, kinked.reversed()).overlaps.size(), 1u);
    // Nearly a full circle by a huge bulge.
    const Segment huge = Segment::bulge({ 0, 0 }, { 1, 0 }, 1e9);
    EXPECT_TRUE(huge.isFinite());
    for (const auto& c : intersect(huge, line(0.5, -1, 0.5, 1e12)).points)
        EXPECT_TRUE(std::isfinite(c.point.x) && std::isfinite(c.first) && std::isfinite(c.second));
}
