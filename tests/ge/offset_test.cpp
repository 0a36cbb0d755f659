// Parallels: cases worked by hand under symmetries, fields of distances over random outlines, and there and
// back again.

#include "ge/intersect.h"
#include "ge/offset.h"
#include "ge/polygon.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using Vertices = std::vector<KcGeBulgeVertex2d>;
using Chains = std::vector<KcGeChain2d>;
constexpr KcGeOffsetOptions kRound{ KcGeOffsetCorner::Round, 0.0 };

double totalArea(const Chains& chains)
{
    double sum = 0.0;
    for (const KcGeChain2d& c : chains)
        sum += outlineArea(c.pieces);
    return sum;
}

double totalLength(const Chains& chains)
{
    double sum = 0.0;
    for (const KcGeChain2d& c : chains)
        for (const KcGeSegment2d& s : c.pieces)
            sum += s.length();
    return sum;
}

size_t totalPieces(const Chains& chains)
{
    size_t sum = 0;
    for (const KcGeChain2d& c : chains)
        sum += c.pieces.size();
    return sum;
}

struct Case {
    const char* name;
    Vertices vertices;
    bool closed;
    double distance;
    size_t chains, pieces;
    double measure; ///< area of closed results, length of open ones
    KcGeOffsetCorner corners = KcGeOffsetCorner::Extended;
};

void expectCase(
    const Case& c, const std::vector<KcGeSegment2d>& chain, double distance, double sign, double tolerance,
    const std::string& how)
{
    SCOPED_TRACE(std::string(c.name) + how);
    const auto result = offsetChain(chain, c.closed, distance, { c.corners, 0.0 });
    ASSERT_TRUE(result);
    EXPECT_EQ(result->size(), c.chains);
    EXPECT_EQ(totalPieces(*result), c.pieces);
    EXPECT_NEAR(c.closed ? sign * totalArea(*result) : totalLength(*result), c.measure, tolerance);
    for (const KcGeChain2d& part : *result) {
        EXPECT_EQ(part.closed, c.closed);
        for (size_t i = 0; i + 1 < part.pieces.size(); ++i)
            EXPECT_LE(part.pieces[i].endPoint().distanceTo(part.pieces[i + 1].startPoint()), 1e-5);
    }
}

} // namespace

TEST(Offset, HandComputed)
{
    const Vertices square{ { { 0, 0 } }, { { 10, 0 } }, { { 10, 10 } }, { { 0, 10 } } };
    // Two rooms of 10 × 10, a corridor of 2 × 10 between them.
    const Vertices rooms{ { { 0, 0 } },  { { 10, 0 } }, { { 10, 4 } },  { { 20, 4 } },
                          { { 20, 0 } }, { { 30, 0 } }, { { 30, 10 } }, { { 20, 10 } },
                          { { 20, 6 } }, { { 10, 6 } }, { { 10, 10 } }, { { 0, 10 } } };
    // A block of 20 × 20 with a chamber of 10 × 10 that opens upwards through a gap of 2.
    const Vertices jar{ { { 0, 0 } },   { { 20, 0 } },  { { 20, 20 } }, { { 11, 20 } },
                        { { 11, 15 } }, { { 15, 15 } }, { { 15, 5 } },  { { 5, 5 } },
                        { { 5, 15 } },  { { 9, 15 } },  { { 9, 20 } },  { { 0, 20 } } };
    const Vertices capsule{ { { 0, 0 } }, { { 10, 0 }, 1.0 }, { { 10, 4 } }, { { 0, 4 }, 1.0 } };
    const Vertices circle{ { { -5, 0 }, 1.0 }, { { 5, 0 }, 1.0 } };
    const Vertices notch{ { { 0, 0 } }, { { 10, 0 } }, { { 10, 10 } }, { { 6, 10 } },
                          { { 6, 5 } }, { { 4, 5 } },  { { 4, 10 } },  { { 0, 10 } } };
    const Vertices elbow{ { { 0, 0 } }, { { 10, 0 } }, { { 10, 10 } } };
    const Vertices hairpin{ { { 0, 0 } }, { { 20, 0 } }, { { 20, 2 } }, { { 0, 2 } } };
    const Vertices dome{ { { 0, 0 } }, { { 10, 0 }, 1.0 }, { { 0, 0 } } };
    const Vertices doubled{ { { 0, 0 }, 0.7 }, { { 0, 0 } },  { { 10, 0 }, 1e9 }, { { 10, 0 } },
                            { { 10, 10 } },    { { 0, 10 } }, { { 0, 0 } } };
    const Case cases[]{
        { "square outwards", square, true, 1, 1, 4, 144 },
        { "square inwards", square, true, -1, 1, 4, 64 },
        { "square outwards, round", square, true, 1, 1, 8, 140 + kPi, KcGeOffsetCorner::Round },
        { "square vanishes", square, true, -6, 0, 0, 0 },
        { "square to nothing exactly", square, true, -5, 0, 0, 0 },
        { "not moved", square, true, 0, 1, 4, 100 },
        { "rooms joined", rooms, true, -0.5, 1, 12, 81 + 81 + 11 },
        { "rooms part", rooms, true, -1.5, 2, 8, 49 + 49 },
        { "jar stays open", jar, true, 0.5, 1, 12, 441 - 81 - 6 },
        { "jar closes", jar, true, 2, 2, 8, 576 - 36 },
        { "jar fills up", jar, true, 6, 1, 4, 1024 },
        { "capsule outwards", capsule, true, 1, 1, 4, 60 + 9 * kPi },
        { "capsule inwards", capsule, true, -1, 1, 4, 20 + kPi },
        { "capsule vanishes", capsule, true, -2.5, 0, 0, 0 },
        { "circle outwards", circle, true, 1, 1, 2, 36 * kPi },
        { "circle vanishes", circle, true, -6, 0, 0, 0 },
        { "notch closes straight", notch, true, 1.5, 1, 4, 169 },
        { "doubled vertices", doubled, true, -1, 1, 4, 64 },
        { "elbow, outer side", elbow, false, 1, 1, 2, 22 },
        { "elbow, inner side", elbow, false, -1, 1, 2, 18 },
        { "elbow, outer side, round", elbow, false, 1, 1, 3, 20 + kPi / 2, KcGeOffsetCorner::Round },
        { "hairpin, outer side", hairpin, false, 1, 1, 3, 21 + 4 + 21 },
        { "hairpin, inner side", hairpin, false, -0.5, 1, 3, 19.5 + 1 + 19.5 },
        { "hairpin's inner side has no room", hairpin, false, -3, 0, 0, 0 },
        { "half disc inwards", dome, true, -1, 1, 2,
          // Disc of radius 4 cut one unit from its middle.
          16 * std::acos(0.25) - std::sqrt(15.0) },
    };
    for (const Case& c : cases) {
        const size_t starts = c.closed ? c.vertices.size() : 1;
        for (size_t first = 0; first < starts; ++first) {
            Vertices turned = c.vertices;
            std::rotate(turned.begin(), turned.begin() + long(first), turned.end());
            const auto chain = segmentsOfVertices(turned, c.closed);
            const std::string how = ", from vertex " + std::to_string(first);
            expectCase(c, chain, c.distance, 1.0, 1e-6, how);
            std::vector<KcGeSegment2d> back;
            for (auto it = chain.rbegin(); it != chain.rend(); ++it)
                back.push_back(it->reversed());
            expectCase(c, back, -c.distance, -1.0, 1e-6, how + ", reversed");
            const auto transformed = [&](const KcGeMatrix3d& m) {
                std::vector<KcGeSegment2d> image;
                for (const KcGeSegment2d& s : chain)
                    image.push_back(s.transformed(m));
                return image;
            };
            expectCase(c, transformed(KcGeMatrix3d::rotation(0.83)), c.distance, 1.0, 1e-6, how + ", turned");
            expectCase(
                c, transformed(KcGeMatrix3d::mirroring({ 0, 1, 0 }, { 2, 1, 0 })), -c.distance, -1.0, 1e-6,
                how + ", mirrored");
            expectCase(
                c, transformed(KcGeMatrix3d::translation({ 5e8, -3e8, 0 }) * KcGeMatrix3d::rotation(2.2)),
                c.distance, 1.0, 1e-3, how + ", far away");
        }
    }
}

namespace {

struct Random {
    std::mt19937 engine;
    double operator()(double low, double high) { return std::uniform_real_distribution(low, high)(engine); }
};

/// A simple outline round the origin, about 100 units wide; counter-clockwise.
std::vector<KcGeSegment2d> randomOutline(Random& random)
{
    for (;;) {
        const int count = 3 + int(random(0, 25));
        const double wave = random(0.05, 0.8), bow = random(0.0, 1.4);
        Vertices outline;
        const bool waist = random(0, 1) < 0.4;
        for (int i = 0; i < count; ++i) {
            const double angle = (i + random(-0.4, 0.4)) * kTwoPi / count;
            KcGeVector2d v = KcGeVector2d{ 50 * (1 - wave * random(0, 1)), 0 }.rotateBy(angle);
            if (waist)
                v.y *= 0.1 + std::abs(v.x) / 50;
            outline.push_back({ { v.x, v.y }, random(0, 1) < 0.6 ? random(-bow, bow) : 0.0 });
        }
        const auto chain = segmentsOfVertices(outline, true);
        if (outlineArea(chain) > 0.0 && selfIntersections(chain, true).isEmpty())
            return chain;
    }
}

Chains parallels(const std::vector<KcGeSegment2d>& outline, double distance)
{
    return offsetChain(outline, true, distance, kRound).value_or(Chains{});
}

double distanceFrom(const std::vector<KcGeSegment2d>& chain, KcGePoint2d p)
{
    double nearest = 1e300;
    for (const KcGeSegment2d& s : chain)
        nearest = std::min(nearest, s.closest(p).distance);
    return nearest;
}

} // namespace

TEST(Offset, AreasAreThoseOfTheFieldOfDistances)
{
    Random random{ std::mt19937(2024) };
    int points = 0, parted = 0;
    for (int round = 0; round < 150; ++round) {
        const auto chain = randomOutline(random);
        const double distance = round % 2 ? random(0.1, 25) : -random(0.1, 15);
        const auto result = offsetChain(chain, true, distance, kRound);
        ASSERT_TRUE(result);
        SCOPED_TRACE("round " + std::to_string(round));
        parted += result->size() > 1;
        for (const KcGeChain2d& c : *result) {
            EXPECT_TRUE(c.closed);
            EXPECT_TRUE(selfIntersections(c.pieces, true, 1e-6).points.empty());
            for (const KcGeSegment2d& s : c.pieces)
                for (const double t : { 0.01, 0.3, 0.5, 0.8 })
                    EXPECT_NEAR(distanceFrom(chain, s.pointAt(t)), std::abs(distance), 1e-5);
        }
        for (int k = 0; k < 200; ++k) {
            const KcGePoint2d p{ random(-80, 80), random(-80, 80) };
            const double away = distanceFrom(chain, p);
            if (std::abs(away - std::abs(distance)) < 1e-3)
                continue;
            const bool inside = relationToOutline(chain, p, 1e-9) == KcGePointRelation::Inside;
            const bool expected = distance < 0 ? inside && away > -distance : inside || away < distance;
            bool got = false;
            for (const KcGeChain2d& c : *result)
                got ^= relationToOutline(c.pieces, p, 1e-9) == KcGePointRelation::Inside;
            EXPECT_EQ(got, expected) << p.x << ", " << p.y << " at " << distance;
            ++points;
        }
    }
    EXPECT_GT(points, 25000);
    EXPECT_GT(parted, 10);
}

TEST(Offset, OutAndBack)
{
    Random random{ std::mt19937(5) };
    for (int round = 0; round < 100; ++round) {
        const auto chain = randomOutline(random);
        // Outwards and back fills bays that are too narrow, and nothing else; inwards and back rounds
        // corners.
        const double distance = random(0.5, 10);
        const double area = outlineArea(chain);
        const Chains out = parallels(chain, distance);
        double filled = 0.0;
        for (const KcGeChain2d& c : out)
            for (const KcGeChain2d& b : parallels(c.pieces, -distance))
                filled += outlineArea(b.pieces);
        EXPECT_GE(filled, area * (1 - 1e-6)) << "round " << round;
        double opened = 0.0;
        for (const KcGeChain2d& c : parallels(chain, -distance))
            for (const KcGeChain2d& b : parallels(c.pieces, distance))
                opened += outlineArea(b.pieces);
        EXPECT_LE(opened, area * (1 + 1e-6)) << "round " << round;
        EXPECT_LE(opened, filled);
    }
    // Where nothing is cut away, nothing is lost.
    const auto bed = segmentsOfVertices(
        Vertices{ { { 0, 0 }, 0.3 }, { { 30, 5 }, -0.2 }, { { 40, 40 } }, { { 10, 35 }, 0.4 } }, true);
    const auto out = offsetChain(bed, true, 1.0, kRound);
    ASSERT_EQ(out->size(), 1u);
    const auto back = offsetChain(out->front().pieces, true, -1.0, kRound);
    ASSERT_EQ(back->size(), 1u);
    EXPECT_NEAR(outlineArea(back->front().pieces), outlineArea(bed), 1e-6);
    EXPECT_EQ(back->front().pieces.size(), bed.size());
}

TEST(Offset, OpenChainsKeepTheirDistance)
{
    Random random{ std::mt19937(8) };
    int results = 0;
    for (int round = 0; round < 100; ++round) {
        Vertices vertices; // crosses itself, as it comes
        for (int i = 0; i < 12; ++i)
            vertices.push_back({ { random(0, 100), random(0, 100) }, i % 3 ? 0.0 : random(-1, 1) });
        const bool closed = round % 3 == 0;
        const auto chain = segmentsOfVertices(vertices, closed);
        const double distance = random(0.2, 12) * (round % 2 ? 1 : -1);
        const auto result = offsetChain(chain, closed, distance, kRound);
        for (const KcGeChain2d& c : *result) {
            ++results;
            for (size_t i = 0; i < c.pieces.size(); ++i) {
                for (const double t : { 0.01, 0.5, 0.99 })
                    EXPECT_NEAR(distanceFrom(chain, c.pieces[i].pointAt(t)), std::abs(distance), 1e-4)
                        << round;
                const KcGePoint2d before = i > 0 ? c.pieces[i - 1].endPoint() : c.pieces[0].startPoint();
                EXPECT_LE(before.distanceTo(c.pieces[i].startPoint()), 1e-4);
            }
        }
    }
    EXPECT_GT(results, 200);
}

TEST(Offset, DegenerateInput)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const auto line = [](double x0, double y0, double x1, double y1) {
        return KcGeSegment2d::line({ x0, y0 }, { x1, y1 });
    };
    EXPECT_FALSE(offsetChain(std::vector{ line(0, 0, nan, 1) }, false, 1.0));
    EXPECT_FALSE(offsetChain(std::vector{ line(0, 0, 1, 1) }, false, nan));
    EXPECT_TRUE(offsetChain({}, false, 1.0)->empty());
    EXPECT_TRUE(offsetChain(std::vector{ line(1, 1, 1, 1) }, false, 1.0)->empty());
    // There and back: the parallel goes round the tip.
    const auto tip = offsetChain(std::vector{ line(0, 0, 10, 0), line(10, 0, 0, 0) }, false, 1.0);
    ASSERT_EQ(tip->size(), 1u);
    EXPECT_NEAR(totalLength(*tip), 20 + kPi, 1e-6);
    EXPECT_TRUE(offsetChain(std::vector{ line(0, 0, 10, 0) }, false, 1e30)->size() <= 1);
    // Nearly a full circle by its bulge.
    const auto huge
        = offsetChain(std::vector{ KcGeSegment2d::bulge({ 0, 0 }, { 1e-3, 0 }, 1e5) }, false, 1.0);
    ASSERT_TRUE(huge);
    for (const KcGeChain2d& c : *huge)
        for (const KcGeSegment2d& s : c.pieces)
            EXPECT_TRUE(s.isFinite());
}
