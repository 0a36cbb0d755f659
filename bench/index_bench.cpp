// Measures the index of boxes that a drawing keeps: building it over a million boxes, small windows, changes
// of single boxes, the nearest ones, and its memory. The R-tree of Boost does the same where it is installed.
//   index_bench [--quick]

#include "best_of_three.h"
#include "db/box_index.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>

#ifdef VERDELIS_BOOST
#include <boost/geometry.hpp>
#include <boost/geometry/index/rtree.hpp>
#endif

#include <unistd.h>

namespace {

constexpr double kSide = 1e6; // of the plan, drawing units
constexpr double kBox = 100.0, kWindow = 2000.0; // about four boxes lie in a window

size_t residentBytes()
{
    size_t pages = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> pages >> resident;
    return resident * size_t(sysconf(_SC_PAGESIZE));
}

std::vector<KcGeExtents2d> boxesOf(size_t count, double side, double extent, unsigned seed)
{
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> place(0.0, side), size(extent / 10.0, extent);
    std::vector<KcGeExtents2d> boxes(count);
    for (KcGeExtents2d& box : boxes) {
        const KcGePoint2d low{ place(engine), place(engine) };
        box.addPoint(low);
        box.addPoint(low + KcGeVector2d{ size(engine), size(engine) });
    }
    return boxes;
}

struct Aim {
    const char* workload;
    double aim; ///< seconds; 0: none
};

void report(const char* who, Aim what, double seconds)
{
    const bool isLong = seconds > 1e-2;
    std::printf(
        "%-10s %-32s %9.3f %s", who, what.workload, isLong ? seconds : seconds * 1e6, isLong ? "s " : "µs");
    if (what.aim > 0.0)
        std::printf(
            "   (aim %g %s)", what.aim > 1e-2 ? what.aim : what.aim * 1e6, what.aim > 1e-2 ? "s" : "µs");
    std::printf("\n");
}

constexpr Aim kBuild{ "build", 0.5 }, kQuery{ "small window", 50e-6 }, kInsert{ "insert one", 5e-6 },
    kRemove{ "remove one", 5e-6 }, kNearest{ "nearest ten", 0.0 };

size_t found = 0;

void measureOurs(const std::vector<KcGeExtents2d>& boxes, const std::vector<KcGeExtents2d>& windows)
{
    const size_t before = residentBytes();
    KcDbBoxIndex index;
    report("index", kBuild, seconds([&] { index.build(boxes); }));
    std::printf(
        "%-10s %-32s %9.1f bytes a box\n", "index", "memory",
        double(residentBytes() - before) / double(boxes.size()));
    report(
        "index", kQuery,
        seconds([&] {
            for (const KcGeExtents2d& window : windows)
                found += index.crossing(window).size();
        }) / double(windows.size()));
    report(
        "index", kNearest,
        seconds([&] {
            for (const KcGeExtents2d& window : windows)
                found += index.nearest(window.min, 10).size();
        }) / double(windows.size()));
    // Each round has boxes of its own: what is there already, or gone, would cost nothing.
    uint32_t next = uint32_t(boxes.size()), last = next;
    report(
        "index", kInsert,
        seconds([&] {
            for (const KcGeExtents2d& window : windows)
                index.set(next++, window);
        }) / double(windows.size()));
    report(
        "index", kRemove,
        seconds([&] {
            for (size_t i = 0; i < windows.size(); ++i)
                index.set(last++, KcGeExtents2d());
        }) / double(windows.size()));
}

#ifdef VERDELIS_BOOST

void measurePeer(const std::vector<KcGeExtents2d>& boxes, const std::vector<KcGeExtents2d>& windows)
{
    namespace bg = boost::geometry;
    using Point = bg::model::d2::point_xy<double>;
    using Box = bg::model::box<Point>;
    using Value = std::pair<Box, uint32_t>;
    const auto boxOf = [](const KcGeExtents2d& box) {
        return Box(Point(box.min.x, box.min.y), Point(box.max.x, box.max.y));
    };
    const char* const who = "Boost";
    const size_t before = residentBytes();
    std::unique_ptr<bg::index::rtree<Value, bg::index::rstar<16>>> tree;
    report(who, { "build", 0.0 }, seconds([&] {
               std::vector<Value> values;
               values.reserve(boxes.size());
               for (uint32_t i = 0; i < boxes.size(); ++i)
                   values.emplace_back(boxOf(boxes[i]), i);
               tree = std::make_unique<bg::index::rtree<Value, bg::index::rstar<16>>>(values);
           }));
    std::printf(
        "%-10s %-32s %9.1f bytes a box\n", who, "memory",
        double(residentBytes() - before) / double(boxes.size()));
    report(
        who, { "small window", 0.0 },
        seconds([&] {
            for (const KcGeExtents2d& window : windows) {
                std::vector<Value> values;
                tree->query(bg::index::intersects(boxOf(window)), std::back_inserter(values));
                found += values.size();
            }
        }) / double(windows.size()));
    report(
        who, { "nearest ten", 0.0 },
        seconds([&] {
            for (const KcGeExtents2d& window : windows) {
                std::vector<Value> values;
                tree->query(
                    bg::index::nearest(Point(window.min.x, window.min.y), 10), std::back_inserter(values));
                found += values.size();
            }
        }) / double(windows.size()));
    uint32_t next = uint32_t(boxes.size()), last = next;
    report(
        who, { "insert one", 0.0 },
        seconds([&] {
            for (const KcGeExtents2d& window : windows)
                tree->insert(Value(boxOf(window), next++));
        }) / double(windows.size()));
    report(
        who, { "remove one", 0.0 },
        seconds([&] {
            for (const KcGeExtents2d& window : windows)
                tree->remove(Value(boxOf(window), last++));
        }) / double(windows.size()));
}

#else

void measurePeer(const std::vector<KcGeExtents2d>&, const std::vector<KcGeExtents2d>&)
{
    std::printf("Boost.Geometry is not installed\n");
}

#endif

} // namespace

int main(int argc, char** argv)
{
    const size_t scale = argc > 1 && !std::strcmp(argv[1], "--quick") ? 10 : 1;
    const std::vector<KcGeExtents2d> boxes = boxesOf(1000000 / scale, kSide, kBox, 3);
    const std::vector<KcGeExtents2d> windows = boxesOf(100000 / scale, kSide, kWindow, 4);
    measureOurs(boxes, windows);
    measurePeer(boxes, windows);
    return found > 0 ? 0 : 1;
}
