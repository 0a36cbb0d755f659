// Linework files, and the comparison of regions with the zones that were drawn.

#include "linework.h"

#include <fstream>
#include <sstream>
#include <unordered_map>

namespace linework {

namespace {

void addPolyline(std::istream& in, std::vector<KcGeSegment2d>& segments)
{
    struct Vertex {
        KcGePoint2d point;
        double bulge = 0.0;
    };
    bool closed = false;
    size_t count = 0;
    in >> closed >> count;
    std::vector<Vertex> vertices(count);
    for (Vertex& v : vertices)
        in >> v.point.x >> v.point.y >> v.bulge;
    for (size_t i = 0; i + (closed ? 0 : 1) < count; ++i)
        segments.push_back(
            KcGeSegment2d::bulge(vertices[i].point, vertices[(i + 1) % count].point, vertices[i].bulge));
}

void addSpline(std::istream& in, std::vector<KcGeSegment2d>& segments)
{
    // "N degree count knots… points…", or "S" with the four points of one cubic span.
    KcGeNurbsCurve3d curve;
    size_t count = 0;
    in >> curve.degree >> count;
    curve.knots.resize(count + size_t(curve.degree) + 1);
    curve.controlPoints.resize(count);
    for (double& knot : curve.knots)
        in >> knot;
    for (KcGePoint3d& p : curve.controlPoints)
        in >> p.x >> p.y;
    if (const auto segment = KcGeSegment2d::spline(curve))
        segments.push_back(*segment);
}

} // namespace

std::vector<KcGeSegment2d> readLinework(const std::string& path)
{
    std::ifstream file(path);
    std::vector<KcGeSegment2d> segments;
    std::string line, kind;
    while (std::getline(file, line)) {
        std::istringstream in(line);
        in >> kind;
        if (kind == "L") {
            KcGePoint2d a, b;
            in >> a.x >> a.y >> b.x >> b.y;
            segments.push_back(KcGeSegment2d::line(a, b));
        } else if (kind == "A" || kind == "C") {
            KcGePoint2d center;
            double radius = 0.0, from = 0.0, to = kTwoPi;
            in >> center.x >> center.y >> radius;
            if (kind == "A")
                in >> from >> to;
            segments.push_back(KcGeSegment2d::arc({ center, radius, from, to - from }));
        } else if (kind == "E") {
            KcGePoint2d center;
            KcGeVector2d u, v;
            double start = 0.0, sweep = 0.0;
            in >> center.x >> center.y >> u.x >> u.y >> v.x >> v.y >> start >> sweep;
            segments.push_back(KcGeSegment2d::ellipse(center, u, v, start, sweep));
        } else if (kind == "S") {
            std::istringstream spline("3 4 0 0 0 0 1 1 1 1 " + line.substr(1));
            addSpline(spline, segments);
        } else if (kind == "N") {
            addSpline(in, segments);
        } else if (kind == "P") {
            addPolyline(in, segments);
        }
    }
    return segments;
}

std::vector<TrueZone> readTruth(const std::string& path)
{
    // "gross islands x y", one zone a line.
    std::ifstream file(path);
    std::vector<TrueZone> zones;
    TrueZone zone;
    while (file >> zone.gross >> zone.islands >> zone.center.x >> zone.center.y)
        zones.push_back(zone);
    return zones;
}

KcGePoint2d centroid(const std::vector<KcGeSegment2d>& outline, double area)
{
    // First moments by Green's theorem, x²/2·dy and y²/2·dx, over fine chords: good enough to tell zones apart.
    constexpr int kChords = 16;
    const KcGePoint2d about = outline.front().startPoint();
    double mx = 0.0, my = 0.0;
    for (const KcGeSegment2d& segment : outline) {
        const int count = segment.isLine() ? 1 : kChords;
        KcGeVector2d a = segment.startPoint() - about;
        for (int i = 1; i <= count; ++i) {
            const KcGeVector2d b = segment.pointAt(double(i) / count) - about;
            mx += (b.y - a.y) * (a.x * a.x + a.x * b.x + b.x * b.x) / 6.0;
            my -= (b.x - a.x) * (a.y * a.y + a.y * b.y + b.y * b.y) / 6.0;
            a = b;
        }
    }
    return { about.x + mx / area, about.y + my / area };
}

Score compare(const KcGeRegionSearch& found, const std::vector<TrueZone>& truth, double areaTolerance)
{
    constexpr double kCell = 0.5, kNearCenter = 0.05;
    std::vector<size_t> islands(found.size());
    for (size_t i = 0; i < found.size(); ++i)
        if (found.parent(i) != KcGeRegionSearch::kNone)
            ++islands[found.parent(i)];
    const auto cellOf = [](double v) { return int64_t(std::floor(v / kCell)); };
    std::unordered_multimap<int64_t, size_t> cells;
    const auto key = [](int64_t x, int64_t y) { return x * 0x100000001ll + y; };
    std::vector<KcGePoint2d> centers(found.size());
    for (size_t i = 0; i < found.size(); ++i) {
        centers[i] = centroid(found.outline(i), found.area(i));
        cells.emplace(key(cellOf(centers[i].x), cellOf(centers[i].y)), i);
    }
    Score score;
    score.zones = truth.size();
    std::vector<char> used(found.size());
    size_t matched = 0;
    for (const TrueZone& zone : truth) {
        size_t best = found.size();
        double bestOff = areaTolerance;
        for (int64_t x = cellOf(zone.center.x) - 1; x <= cellOf(zone.center.x) + 1; ++x)
            for (int64_t y = cellOf(zone.center.y) - 1; y <= cellOf(zone.center.y) + 1; ++y) {
                const auto [first, last] = cells.equal_range(key(x, y));
                for (auto it = first; it != last; ++it) {
                    const double off = std::abs(found.area(it->second) - zone.gross);
                    if (!used[it->second] && off <= bestOff
                        && centers[it->second].distanceTo(zone.center) < kNearCenter) {
                        best = it->second;
                        bestOff = off;
                    }
                }
            }
        if (best == found.size()) {
            score.missed.push_back(zone);
            continue;
        }
        used[best] = 1;
        ++matched;
        score.worstArea = std::max(score.worstArea, bestOff);
        if (islands[best] == zone.islands)
            ++score.right;
    }
    score.extra = found.size() - matched;
    for (size_t i = 0; i < found.size(); ++i)
        if (!used[i])
            score.surplus.push_back(i);
    return score;
}

} // namespace linework
