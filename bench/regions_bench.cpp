// Measures the search for closed regions on linework with known truth:
//
//     regions_bench [--bridge DISTANCE] [--wrong] NAME...
//
// reads NAME.crv and NAME.truth (bench/make_linework.py) and prints one line for each; with --wrong also the zones that
// were missed and the regions that are none.

#include "linework.h"

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

} // namespace

int main(int argc, char** argv)
{
    KcGeRegionOptions options;
    bool showWrong = false;
    std::vector<std::string> names;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--bridge") == 0 && i + 1 < argc)
            options.bridge = std::atof(argv[++i]);
        else if (std::strcmp(argv[i], "--wrong") == 0)
            showWrong = true;
        else
            names.emplace_back(argv[i]);
    }
    for (const std::string& name : names) {
        const std::vector<KcGeSegment2d> segments = linework::readLinework(name + ".crv");
        if (segments.empty()) {
            std::fprintf(stderr, "%s.crv holds no curves\n", name.c_str());
            return 1;
        }
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
