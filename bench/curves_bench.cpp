// Measures what commands ask of one curve again and again: the point at a distance and the nearest point, on
// a polyline of arcs and on a spline. Prints one line per workload.
//   curves_bench [--quick]

#include "best_of_three.h"
#include "db/polyline.h"

#include <cstdio>
#include <cstring>
#include <random>

namespace {

constexpr int kPieces = 1000;
/// A spline may cost this many times what a polyline of as many arcs costs.
constexpr double kAimedRatio = 5.0;

std::mt19937& generator()
{
    static std::mt19937 engine(11);
    return engine;
}

double random(double low, double high)
{
    return std::uniform_real_distribution(low, high)(generator());
}

/// A winding path from left to right.
KcGePoint2d onPath(int i)
{
    return { i * 1000.0, 8000.0 * std::sin(i * 0.11) + 3000.0 * std::sin(i * 0.47) };
}

KcGeCurve3d polylineOf(int arcs)
{
    std::vector<KcGeSegment2d> pieces;
    for (int i = 0; i < arcs; ++i)
        pieces.push_back(KcGeSegment2d::bulge(onPath(i), onPath(i + 1), i % 2 ? 0.3 : -0.4));
    return KcGeCurve3d::chain({}, std::move(pieces), false);
}

KcGeCurve3d splineOf(int spans, bool rational)
{
    KcGeNurbsCurve3d curve;
    for (int i = 0; i < spans + 3; ++i) {
        const KcGePoint2d p = onPath(i);
        curve.controlPoints.push_back({ p.x, p.y, 0.0 });
        if (rational)
            curve.weights.push_back(1.0 + i % 3);
    }
    curve.knots.assign(3, 0.0);
    for (int i = 0; i <= spans; ++i)
        curve.knots.push_back(i);
    curve.knots.insert(curve.knots.end(), 3, spans);
    return KcGeCurve3d::spline(std::move(curve));
}

/// For one of `count` calls.
template <class Work> double secondsEach(int count, Work work)
{
    return seconds([&] {
               for (int i = 0; i < count; ++i)
                   work();
           })
        / count;
}

double checksum = 0.0;

double pointAtDistance(const KcGeCurve3d& curve, int count)
{
    const double length = *curve.length();
    return secondsEach(count, [&] { checksum += curve.pointAtDist(random(0.0, length))->x; });
}

double nearestPoint(const KcGeCurve3d& curve, int count)
{
    return secondsEach(count, [&] {
        checksum += curve.closest({ random(0.0, kPieces * 1000.0), random(-15000, 15000), 0.0 })->param;
    });
}

void report(const char* workload, double seconds, double peer)
{
    std::printf("%-58s %10.3f µs", workload, seconds * 1e6);
    if (peer > 0.0)
        std::printf("   %.1f times the polyline (aim %.0f)", seconds / peer, kAimedRatio);
    std::printf("\n");
}

} // namespace

int main(int argc, char** argv)
{
    const int scale = argc > 1 && !std::strcmp(argv[1], "--quick") ? 10 : 1;
    const KcGeCurve3d arcs = polylineOf(kPieces), spline = splineOf(kPieces, false),
                      rational = splineOf(kPieces, true);
    report(
        "first length, spline of 1,000 spans",
        secondsEach(1, [] { checksum += *splineOf(kPieces, false).length(); }), 0);
    const double along = pointAtDistance(arcs, 1000000 / scale);
    report("point at distance, polyline of 1,000 arcs", along, 0);
    report("point at distance, spline of 1,000 spans", pointAtDistance(spline, 1000000 / scale), along);
    report(
        "point at distance, rational spline of 1,000 spans", pointAtDistance(rational, 1000000 / scale),
        along);
    const double near = nearestPoint(arcs, 100000 / scale);
    report("nearest point, polyline of 1,000 arcs", near, 0);
    report("nearest point, spline of 1,000 spans", nearestPoint(spline, 100000 / scale), near);
    report("nearest point, rational spline of 1,000 spans", nearestPoint(rational, 100000 / scale), near);

    const KcGeCurve3d longest = polylineOf(1000000 / scale);
    report(
        "first length, polyline of 1,000,000 arcs",
        secondsEach(1, [&] { checksum += *polylineOf(1000000 / scale).length(); }), 0);
    report("point at distance, polyline of 1,000,000 arcs", pointAtDistance(longest, 1000000 / scale), 0);

    KcDbPolyline entity;
    for (int i = 0; i <= kPieces; ++i)
        entity.addVertex(onPath(i), i % 2 ? 0.3 : -0.4);
    const double length = *entity.curve().length();
    report(
        "the same through the entity, 1,000 arcs",
        secondsEach(
            100000 / scale,
            [&] {
                KcGePoint3d point;
                entity.getPointAtDist(random(0.0, length), point);
                checksum += point.x;
            }),
        0);
    return std::isfinite(checksum) ? 0 : 1;
}
