// How benchmarks of the geometry and the drawing take their times.
#pragma once

#include <algorithm>
#include <chrono>

/// Best of three, in seconds.
template <class Work> double seconds(Work work)
{
    double best = 1e300;
    for (int round = 0; round < 3; ++round) {
        const auto start = std::chrono::steady_clock::now();
        work();
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}
