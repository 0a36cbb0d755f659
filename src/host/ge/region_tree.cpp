// Packing scattered boxes.

#include "ge/region_tree.h"

#include <limits>

namespace kcge {

namespace {

/// Position of a cell of a grid of 2^16 × 2^16 on the curve: the classic walk from the coarsest quadrant to the finest
/// (D. Hilbert, 1891), turning the frame on the way.
uint32_t hilbertPosition(uint32_t x, uint32_t y)
{
    uint32_t position = 0;
    for (uint32_t side = 1u << 15; side > 0; side >>= 1) {
        const uint32_t right = (x & side) ? 1 : 0, upper = (y & side) ? 1 : 0;
        position = (position << 2) | ((3 * right) ^ upper);
        if (upper)
            continue;
        if (right) {
            x = ~x;
            y = ~y;
        }
        std::swap(x, y);
    }
    return position;
}

} // namespace

uint32_t positionAlongCurve(KcGePoint2d point, const KcGeExtents2d& all)
{
    constexpr double kCells = 65535.0;
    const double width = std::max(all.max.x - all.min.x, std::numeric_limits<double>::min());
    const double height = std::max(all.max.y - all.min.y, std::numeric_limits<double>::min());
    return hilbertPosition(
        uint32_t((point.x - all.min.x) / width * kCells), uint32_t((point.y - all.min.y) / height * kCells));
}

ScatteredBoxes::Box ScatteredBoxes::rounded(const KcGeExtents2d& box)
{
    constexpr float kHighest = std::numeric_limits<float>::max();
    const auto down = [](double value) {
        if (value <= -double(kHighest))
            return -kHighest;
        const float f = value >= double(kHighest) ? kHighest : float(value);
        return double(f) > value ? std::nextafter(f, -kHighest) : f;
    };
    return {down(box.min.x), down(box.min.y), -down(-box.max.x), -down(-box.max.y)};
}

void ScatteredBoxes::makeLevels()
{
    while (m_levels.back().size() > kFan) {
        const std::vector<Box>& below = m_levels.back();
        std::vector<Box> level((below.size() + kFan - 1) / kFan);
        for (size_t i = 0; i < level.size(); ++i) {
            Box box = below[i * kFan];
            for (size_t k = i * kFan + 1; k < std::min((i + 1) * kFan, below.size()); ++k)
                box = {std::min(box.minX, below[k].minX), std::min(box.minY, below[k].minY),
                    std::max(box.maxX, below[k].maxX), std::max(box.maxY, below[k].maxY)};
            level[i] = box;
        }
        m_levels.push_back(std::move(level));
    }
}

} // namespace kcge
