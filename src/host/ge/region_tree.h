// A static tree over boxes scattered in the plane, packed along a Hilbert curve: for a million of them half a second to
// build, 18 bytes each. Boxes are held in single precision, rounded outwards.
#pragma once

#include "ge/extents.h"

#include <cstdint>
#include <vector>

namespace kcge {

/// Built once over boxes 0 … n − 1, which need no order of their own (`KcGeBoxTree` is for rows).
class ScatteredBoxes {
public:
    ScatteredBoxes() = default;
    /// Empty boxes and boxes that are no numbers are never found.
    explicit ScatteredBoxes(const std::vector<KcGeExtents2d>& boxes) { build(boxes); }

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
    void build(const std::vector<KcGeExtents2d>& boxes);

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
        std::sort(entries, entries + count, [](const Entry& a, const Entry& b) { return a.distance < b.distance; });
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

/// The numbers of the points in the order in which a Hilbert curve over all of them passes by; points that are no
/// numbers are left out.
std::vector<uint32_t> orderAlongCurve(const std::vector<KcGePoint2d>& points);

} // namespace kcge
