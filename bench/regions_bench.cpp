// Measures the search for closed regions on linework with known truth:
//
//     regions_bench NAME... [--bridge DISTANCE]
//
// reads NAME.crv and NAME.truth (bench/make_linework.py) and prints one line for each.

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
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--bridge") == 0 && i + 1 < argc) {
            options.bridge = std::atof(argv[++i]);
            continue;
        }
        const std::string name = argv[i];
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
    }
    return 0;
}
