// Spikes along arcs.

#include "planting/forest_edge.h"

namespace {

void addArc(const KcGeCircArc2d& run, std::vector<KcGePoint2d>& corners)
{
    constexpr double kStep = 0.1, kSpike = 0.2, kLongSpike = 0.4; // of the radius
    constexpr int kEveryLong = 4;
    const bool isAgainst = run.isClockwise();
    const KcGeCircArc2d arc = isAgainst ? run.reversed() : run;
    const double radius = arc.radius(), step = kStep * radius, length = arc.length();
    const auto pointAt = [&](double distance) { return arc.pointAt(distance / length); };

    const int steps = int(length / step);
    const int first = isAgainst ? steps : 0, end = isAgainst ? -1 : steps;
    for (int k = first; k != end; k += isAgainst ? -1 : 1) {
        const KcGePoint2d foot = pointAt(k * step);
        const double half = (k + 0.5) * step;
        const KcGePoint2d middle = half <= length ? pointAt(half) : foot;
        const bool isLong = k != 0 && k % kEveryLong == 0;
        corners.push_back(foot);
        corners.push_back(
            middle + (middle - arc.center()).normal() * ((isLong ? kLongSpike : kSpike) * radius));
    }
}

} // namespace

std::vector<KcGePoint2d> forestEdge(const CloudOutline& outline)
{
    constexpr size_t kMostOfAnArc = 2 * 64; // a full turn has 62 steps
    std::vector<KcGePoint2d> corners;
    for (const KcGeCircArc2d& arc : outline.arcs(true)) {
        if (corners.size() + kMostOfAnArc > kMostForestCorners)
            return {};
        addArc(arc, corners);
    }
    return corners;
}
