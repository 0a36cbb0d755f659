// A static tree over boxes scattered in the plane, packed along a Hilbert curve: for a million of them half a second to
// build, 18 bytes each. Boxes are held in single precision, rounded outwards.
#pragma once

#include "ge/extents.h"

#include <cstdint>
#include <vector>

namespace kcge {

/// The position of a point on a Hilbert curve over a box, which must hold it.
uint32_t positionAlongCurve(KcGePoint2d point, const KcGeExtents2d& all);

/// The numbers 0 … count − 1 in the order in which a Hilbert curve over all points passes by what `pointOf(number)`
/// gives; points that are no numbers are left out.
template <class PointOf> std::vector<uint32_t> orderAlongCurve(size_t count, PointOf pointOf)
{
    const auto isFinite = [](KcGePoint2d p) { return std::isfinite(p.x) && std::isfinite(p.y); };
    KcGeExtents2d all;
    for (uint32_t i = 0; i < count; ++i)
        if (const KcGePoint2d p = pointOf(i); isFinite(p))
            all.addPoint(p);
    std::vector<uint64_t> keys;
    keys.reserve(count);
    for (uint32_t i = 0; i < count; ++i)
        if (const KcGePoint2d p = pointOf(i); isFinite(p))
            keys.push_back(uint64_t(positionAlongCurve(p, all)) << 32 | i);
    std::sort(keys.begin(), keys.end());
    return std::vector<uint32_t>(keys.begin(), keys.end()); // the lower halves
}

/// Built once over boxes 0 … n − 1, which need no order of their own (`KcGeBoxTree` is for rows).
class ScatteredBoxes {
public:
    ScatteredBoxes() = default;
    /// The boxes that `boxOf(index)` gives, which is asked twice for each, so that nobody has to hold them. Empty boxes
    /// and boxes that are no numbers are never found.
    template <class BoxOf> ScatteredBoxes(size_t count, BoxOf boxOf)
    {
        m_order = orderAlongCurve(count, [&](uint32_t i) {
            const KcGeExtents2d box = boxOf(i); // the middle of an empty one is no number
            return KcGePoint2d((box.min.x + box.max.x) / 2.0, (box.min.y + box.max.y) / 2.0);
        });
        if (m_order.empty())
            return;
        m_levels.emplace_back(m_order.size());
        for (size_t i = 0; i < m_order.size(); ++i)
            m_levels[0][i] = rounded(boxOf(m_order[i]));
        makeLevels();
    }
    explicit ScatteredBoxes(const std::vector<KcGeExtents2d>& boxes)
        : ScatteredBoxes(boxes.size(), [&](uint32_t i) { return boxes[i]; })
    {
    }

    /// Calls `visit(index)` for the boxes that share a point with the box, possibly also for ones that lie off by
    /// the rounding.
    template <class Visit> void overlapping(const KcGeExtents2d& box, Visit visit) const
    {
        const Box wanted = rounded(box);
        walk([&](const Box& b) {
            return b.minX <= wanted.maxX && wanted.minX <= b.maxX && b.minY <= wanted.maxY && wanted.minY <= b.maxY;
        }, visit);
    }
    /// Calls `visit(index, best)` for the boxes nearer to the point than `best`, a distance that `visit` lowers where
    /// it finds something nearer; promising ones first.
    template <class Visit> void nearest(KcGePoint2d point, double& best, Visit visit) const
    {
        search([&](const Box& b) {
            const double dx = std::max({b.minX - point.x, 0.0, point.x - b.maxX});
            const double dy = std::max({b.minY - point.y, 0.0, point.y - b.maxY});
            return std::hypot(dx, dy);
        }, best, visit);
    }
    /// The same for boxes on the way from the point to the left, by the distance walked.
    template <class Visit> void leftOf(KcGePoint2d point, double& best, Visit visit) const
    {
        search([&](const Box& b) {
            if (b.minY > point.y || b.maxY < point.y || b.minX > point.x)
                return std::numeric_limits<double>::infinity();
            return std::max(0.0, point.x - double(b.maxX));
        }, best, visit);
    }

private:
    struct Box {
        float minX, minY, maxX, maxY;
    };
    static constexpr size_t kFan = 8;

    static Box rounded(const KcGeExtents2d& box);
    void makeLevels();

    template <class Meets, class Visit> void walk(Meets meets, Visit& visit) const
    {
        struct Place {
            size_t level, index;
        };
        if (m_levels.empty())
            return;
        Place stack[kMostLevels * kFan];
        size_t height = 0;
        for (size_t i = m_levels.back().size(); i > 0; --i)
            stack[height++] = {m_levels.size() - 1, i - 1};
        while (height > 0) {
            const Place at = stack[--height];
            if (!meets(m_levels[at.level][at.index]))
                continue;
            if (at.level == 0) {
                visit(m_order[at.index]);
                continue;
            }
            const size_t first = at.index * kFan;
            for (size_t i = std::min(first + kFan, m_levels[at.level - 1].size()); i > first; --i)
                stack[height++] = {at.level - 1, i - 1};
        }
    }
    template <class Distance, class Visit> void search(Distance distance, double& best, Visit& visit) const
    {
        if (!m_levels.empty())
            searchUnder(m_levels.size() - 1, 0, m_levels.back().size(), distance, best, visit);
    }
    template <class Distance, class Visit>
    void searchUnder(size_t level, size_t first, size_t last, Distance& distance, double& best, Visit& visit) const
    {
        struct Entry {
            size_t index;
            double distance;
        } entries[kFan];
        size_t count = 0;
        for (size_t i = first; i < last; ++i)
            if (const double d = distance(m_levels[level][i]); d < best)
                entries[count++] = {i, d};
        for (size_t i = 1; i < count; ++i) // of so few, by putting each in its place
            for (size_t k = i; k > 0 && entries[k].distance < entries[k - 1].distance; --k)
                std::swap(entries[k], entries[k - 1]);
        for (size_t i = 0; i < count && entries[i].distance < best; ++i) {
            const size_t child = entries[i].index * kFan;
            if (level == 0)
                visit(m_order[entries[i].index], best);
            else
                searchUnder(
                    level - 1, child, std::min(child + kFan, m_levels[level - 1].size()), distance, best, visit);
        }
    }

    static constexpr size_t kMostLevels = 12; // 8^12 boxes
    std::vector<uint32_t> m_order; ///< along the curve
    std::vector<std::vector<Box>> m_levels; ///< the boxes first; the last level has at most kFan
};

} // namespace kcge
