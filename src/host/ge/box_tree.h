// A hierarchy of boxes over items in a row, such as the pieces of a curve: neighbours in the row lie near
// each other, so that the row itself serves as the order of the tree.
#pragma once

#include "ge/extents.h"

#include <algorithm>
#include <vector>

/// Built once over the boxes of items 0 … n − 1; answers nearest and overlap queries in logarithmic time for
/// curves that do not crowd.
class KcGeBoxTree {
public:
    KcGeBoxTree() = default;
    explicit KcGeBoxTree(std::vector<KcGeExtents3d> boxes);

    size_t size() const { return m_levels.empty() ? 0 : m_levels.front().size(); }
    /// The box of everything.
    KcGeExtents3d extents() const;

    /// Calls `visit(item, best)` for the items of [first, last) whose boxes lie nearer to the point than
    /// `best`, the promising ones first. `visit` lowers `best`, a distance, where its item is nearer.
    template <class Visit>
    void nearest(KcGePoint3d point, size_t first, size_t last, double& best, Visit visit) const
    {
        if (first < last && !m_levels.empty())
            nearestUnder(m_levels.size() - 1, 0, m_levels.back().size(), { point, first, last }, best, visit);
    }
    /// Calls `visit(item)` for the items whose boxes share a point with the box, seen along the Z axis, in
    /// their order.
    template <class Visit> void overlapping(const KcGeExtents3d& box, Visit visit) const
    {
        if (!m_levels.empty())
            overlappingUnder(m_levels.size() - 1, 0, m_levels.back().size(), box, visit);
    }

    /// Distance from a point to a box; 0 inside, infinite for an empty box.
    static double distance(const KcGeExtents3d& box, KcGePoint3d point);

private:
    static constexpr size_t kFan = 8;
    struct Query {
        KcGePoint3d point;
        size_t first, last;
    };

    template <class Visit>
    void
    nearestUnder(size_t level, size_t begin, size_t end, const Query& query, double& best, Visit& visit) const
    {
        struct Entry {
            size_t index;
            double distance;
        } entries[kFan];
        size_t count = 0;
        size_t span = 1;
        for (size_t i = 0; i < level; ++i)
            span *= kFan;
        for (size_t i = begin; i < end; ++i) {
            if (!(i * span < query.last && (i + 1) * span > query.first))
                continue;
            const Entry entry{ i, distance(m_levels[level][i], query.point) };
            size_t at = count++;
            for (; at > 0 && entry.distance < entries[at - 1].distance; --at)
                entries[at] = entries[at - 1];
            entries[at] = entry;
        }
        for (size_t i = 0; i < count && entries[i].distance < best; ++i) {
            if (level == 0)
                visit(entries[i].index, best);
            else
                nearestUnder(
                    level - 1, entries[i].index * kFan,
                    std::min((entries[i].index + 1) * kFan, m_levels[level - 1].size()), query, best, visit);
        }
    }
    template <class Visit>
    void
    overlappingUnder(size_t level, size_t begin, size_t end, const KcGeExtents3d& box, Visit& visit) const
    {
        for (size_t i = begin; i < end; ++i) {
            if (m_levels[level][i].isEmpty() || !m_levels[level][i].overlapsInPlan(box))
                continue;
            if (level == 0)
                visit(i);
            else
                overlappingUnder(
                    level - 1, i * kFan, std::min((i + 1) * kFan, m_levels[level - 1].size()), box, visit);
        }
    }

    std::vector<std::vector<KcGeExtents3d>>
        m_levels; ///< the items' boxes first; the last level has at most kFan
};
