// Measures the search for closed regions on linework with known truth:
//
//     regions_bench [--bridge DISTANCE] [--wrong] [--peer | --peer-alone] NAME...
//
// reads NAME.crv and NAME.truth (bench/make_linework.py) and prints one line for each; with --wrong also the zones that
// were missed and the regions that are none; with --peer also how long GEOS takes to unite and polygonise the same
// curves as chords, and with --peer-alone only that (for its memory).

#include "linework.h"

#ifdef VERDELIS_GEOS
#include <geos_c.h>
#endif

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <sys/resource.h>

namespace {

double secondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double peakMegabytes()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024.0; // kilobytes on Linux
}

#ifdef VERDELIS_GEOS

// How far chords may stay off their curves, drawing units: the areas of beds some tens of units around are then right
// to about the 1e-3 to which zones are compared.
constexpr double kSagitta = 1e-4;

GEOSGeometry* chordsOf(const KcGeSegment2d& segment)
{
    const std::vector<KcGePoint2d> points = segment.chords(kSagitta);
    GEOSCoordSequence* const sequence = GEOSCoordSeq_create(unsigned(points.size()), 2);
    for (unsigned i = 0; i < points.size(); ++i)
        GEOSCoordSeq_setXY(sequence, i, points[i].x, points[i].y);
    return GEOSGeom_createLineString(sequence);
}

void measurePeer(const std::string& name, const std::vector<KcGeSegment2d>& segments)
{
    initGEOS(nullptr, nullptr);
    std::vector<GEOSGeometry*> lines;
    for (const KcGeSegment2d& segment : segments)
        lines.push_back(chordsOf(segment));
    GEOSGeometry* const all
        = GEOSGeom_createCollection(GEOS_MULTILINESTRING, lines.data(), unsigned(lines.size()));
    const auto start = std::chrono::steady_clock::now();
    GEOSGeometry* const united = GEOSUnaryUnion(all);
    const GEOSGeometry* const noded[] = { united };
    GEOSGeometry* const polygons = united ? GEOSPolygonize(noded, 1) : nullptr;
    const double seconds = secondsSince(start);
    std::printf("%-24s %8zu segments %8.3f s %7.0f MB %8d polygons by GEOS %s\n", name.c_str(), segments.size(),
        seconds, peakMegabytes(), polygons ? GEOSGetNumGeometries(polygons) : 0, GEOSversion());
    for (GEOSGeometry* geometry : { polygons, united, all })
        if (geometry)
            GEOSGeom_destroy(geometry);
    finishGEOS();
}

#else

void measurePeer(const std::string& name, const std::vector<KcGeSegment2d>&)
{
    std::printf("%-24s GEOS is not installed\n", name.c_str());
}

#endif

} // namespace

int main(int argc, char** argv)
{
    KcGeRegionOptions options;
    bool showWrong = false, withPeer = false, withOurs = true;
    std::vector<std::string> names;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--bridge") == 0 && i + 1 < argc)
            options.bridge = std::atof(argv[++i]);
        else if (std::strcmp(argv[i], "--wrong") == 0)
            showWrong = true;
        else if (std::strcmp(argv[i], "--peer") == 0)
            withPeer = true;
        else if (std::strcmp(argv[i], "--peer-alone") == 0)
            withPeer = true, withOurs = false;
        else
            names.emplace_back(argv[i]);
    }
    for (const std::string& name : names) {
        const std::vector<KcGeSegment2d> segments = linework::readLinework(name + ".crv");
        if (segments.empty()) {
            std::fprintf(stderr, "%s.crv holds no curves\n", name.c_str());
            return 1;
        }
        if (withPeer)
            measurePeer(name, segments);
        if (!withOurs)
            continue;
        const auto start = std::chrono::steady_clock::now();
        const KcGeRegionSearch found(segments, options);
        const double seconds = secondsSince(start);
        const double peak = peakMegabytes();
        const linework::Score score = linework::compare(found, linework::readTruth(name + ".truth"), 1e-3);
        std::printf("%-24s %8zu segments %8.3f s %7.0f MB %8zu zones, %zu right, %zu too many, areas within %.1e\n",
            name.c_str(), segments.size(), seconds, peak, score.zones, score.right, score.extra, score.worstArea);
        if (!showWrong)
            continue;
        for (const linework::TrueZone& zone : score.missed)
            std::printf("    missed  %.6f at %.6f, %.6f\n", zone.gross, zone.center.x, zone.center.y);
        for (const size_t region : score.surplus) {
            std::printf("    surplus %.6g, outline %.6g:", found.area(region), found.length(region));
            for (const KcGeSegment2d& piece : found.outline(region))
                std::printf(" %s %.6f, %.6f", piece.isLine() ? "line" : piece.asArc() ? "arc" : "curve",
                    piece.startPoint().x, piece.startPoint().y);
            std::printf("\n");
        }
    }
    return 0;
}
