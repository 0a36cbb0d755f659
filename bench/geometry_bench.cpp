// Measures the geometry of curves: intersections and parallels of long polylines with arcs; and compares the
// areas of parallels with those of Clipper where it is installed. Prints one line per workload.
//   geometry_bench [--quick]

#include "best_of_three.h"
#include "ge/intersect.h"
#include "ge/offset.h"
#include "ge/polygon.h"

#include <cstdio>
#include <cstring>
#include <random>

#ifdef VERDELIS_CLIPPER
#include <polyclipping/clipper.hpp>
#endif

namespace {

using Chain = std::vector<KcGeSegment2d>;

void report(const char* workload, double time, const char* rest = "")
{
    std::printf("%-58s %9.4f s  %s\n", workload, time, rest);
}

struct Random {
    std::mt19937 engine;
    double operator()(double low, double high) { return std::uniform_real_distribution(low, high)(engine); }
};

/// A closed outline like a planting bed's: round a centre with a wavy radius, every third piece an arc.
Chain bed(int vertices, KcGePoint2d centre, double radius, unsigned seed)
{
    Random random{ std::mt19937(seed) };
    std::vector<KcGeBulgeVertex2d> result;
    const double step = kTwoPi / vertices;
    for (int i = 0; i < vertices; ++i) {
        const double angle = i * step;
        const double r = radius
            * (1.0 + 0.2 * std::sin(7.0 * angle) + 0.05 * std::sin(61.0 * angle)
               + 0.3 * step * random(-1, 1));
        result.push_back({ centre + KcGeVector2d{ r, 0 }.rotateBy(angle), i % 3 ? 0.0 : random(-0.6, 0.6) });
    }
    return segmentsOfVertices(result, true);
}

void benchIntersections()
{
    const Chain a = bed(10000, { 0, 0 }, 50000, 1), b = bed(10000, { 9000, 4000 }, 52000, 2);
    // A zigzag through the bed meets it often.
    Chain zigzag;
    Random random{ std::mt19937(3) };
    KcGePoint2d at{ -60000, 0 };
    for (int i = 0; i < 10000; ++i) {
        const KcGePoint2d next{ -60000 + 12.0 * i, (i % 2 ? 1 : -1) * random(40000, 60000) };
        zigzag.push_back(KcGeSegment2d::bulge(at, next, i % 3 ? 0.0 : random(-0.1, 0.1)));
        at = next;
    }
    size_t found = 0;
    char text[80];
    double time = seconds([&] { found = intersectChains(a, b).points.size(); });
    std::snprintf(text, sizeof text, "%zu points; aim: well under 1 s", found);
    report("two outlines of 10,000 segments with arcs meet", time, text);
    time = seconds([&] { found = intersectChains(a, zigzag).points.size(); });
    std::snprintf(text, sizeof text, "%zu points", found);
    report("an outline and a zigzag across, 10,000 each", time, text);
}

void benchOffsets()
{
    for (const int vertices : { 2500, 5000, 10000 }) {
        const Chain chain = bed(vertices, { 0, 0 }, 10.0 * vertices, 5);
        for (const double distance : { 20.0, -200.0 }) {
            size_t pieces = 0, chains = 0;
            const double time = seconds([&] {
                const auto result = offsetChain(chain, true, distance);
                chains = result->size();
                pieces = 0;
                for (const KcGeChain2d& c : *result)
                    pieces += c.pieces.size();
            });
            char name[80], text[80];
            std::snprintf(name, sizeof name, "parallel of %d vertices with arcs at %g", vertices, distance);
            std::snprintf(text, sizeof text, "%zu chains, %zu pieces", chains, pieces);
            report(name, time, text);
        }
    }
}

#ifdef VERDELIS_CLIPPER

double clipperArea(const Chain& chain, double distance, int& count)
{
    using namespace ClipperLib;
    constexpr double kScale = 1e6; // outlines are about 100 units wide
    Path path;
    for (const KcGeSegment2d& piece : chain) {
        const auto points = piece.chords(2e-4);
        for (size_t i = 0; i + 1 < points.size(); ++i)
            path.push_back(
                { cInt(std::llround(points[i].x * kScale)), cInt(std::llround(points[i].y * kScale)) });
    }
    ClipperOffset offset(2.0, 2e-4 * kScale);
    offset.AddPath(path, jtRound, etClosedPolygon);
    Paths result;
    offset.Execute(result, distance * kScale);
    double area = 0.0;
    count = 0;
    for (const Path& p : result) {
        area += Area(p) / kScale / kScale;
        count += std::abs(Area(p)) / kScale / kScale > 1e-2;
    }
    return area;
}

/// Random simple outlines, spiky and round, and distances that leave anything from nothing to everything.
void checkAgainstClipper(int wanted)
{
    Random random{ std::mt19937(77) };
    int agreeing = 0, sameCount = 0, tried = 0;
    double ours = 0.0, theirs = 0.0;
    while (tried < wanted) {
        const int vertices = 3 + int(random(0, 30));
        std::vector<KcGeBulgeVertex2d> outline;
        const double wave = random(0.05, 0.8), bow = random(0.0, 1.4);
        const bool waist = random(0, 1) < 0.4;
        for (int i = 0; i < vertices; ++i) {
            const double radius = 50.0 * (1.0 - wave * random(0, 1));
            KcGeVector2d v = KcGeVector2d{ radius, 0 }.rotateBy((i + random(-0.4, 0.4)) * kTwoPi / vertices);
            if (waist) // a narrow middle, at which the parallel falls apart
                v.y *= 0.1 + std::abs(v.x) / 50.0;
            outline.push_back({ { v.x, v.y }, random(0, 1) < 0.6 ? random(-bow, bow) : 0.0 });
        }
        const Chain chain = segmentsOfVertices(outline, true);
        if (!selfIntersections(chain, true).isEmpty() || outlineArea(chain) <= 0.0)
            continue;
        const double distance = random(0, 1) < 0.5 ? random(0.05, 25) : -random(0.05, 15);
        ++tried;
        const auto start = std::chrono::steady_clock::now();
        const auto result = offsetChain(chain, true, distance, { KcGeOffsetCorner::Round, 0.0 });
        const auto middle = std::chrono::steady_clock::now();
        double area = 0.0;
        int count = 0;
        bool open = false;
        for (const KcGeChain2d& c : *result) {
            area += outlineArea(c.pieces);
            count += std::abs(outlineArea(c.pieces)) > 1e-2;
            open = open || !c.closed;
        }
        int expectedCount = 0;
        const double expected = clipperArea(chain, distance, expectedCount);
        ours += std::chrono::duration<double>(middle - start).count();
        theirs += std::chrono::duration<double>(std::chrono::steady_clock::now() - middle).count();
        // Beside nothing the chords' own error would count as disagreement.
        const double scale = std::max(expected, 1e-3 * outlineArea(chain));
        const bool agrees = !open && std::abs(area - expected) <= 1e-3 * scale;
        agreeing += agrees;
        sameCount += count == expectedCount;
        if (!agrees || count != expectedCount) {
            std::printf(
                "  outline %d at %.17g: area %g, Clipper %g; %d chains, Clipper %d%s\n", tried, distance,
                area, expected, count, expectedCount, open ? "; open" : "");
            if (std::getenv("VERDELIS_BENCH_VERBOSE"))
                for (const KcGeBulgeVertex2d& v : outline)
                    std::printf("    { { %.17g, %.17g }, %.17g },\n", v.point.x, v.point.y, v.bulge);
        }
    }
    std::printf(
        "%-58s %d of %d areas to 1e-3, %d counts; %.3f s, Clipper %.3f s\n",
        "parallels of random outlines agree with Clipper", agreeing, tried, sameCount, ours, theirs);
}

#else

void checkAgainstClipper(int)
{
    std::printf("%-58s not installed\n", "parallels of random outlines agree with Clipper");
}

#endif

} // namespace

int main(int argc, char** argv)
{
    const bool quick = argc > 1 && !std::strcmp(argv[1], "--quick");
    benchIntersections();
    benchOffsets();
    checkAgainstClipper(quick ? 100 : 1000);
    return 0;
}
