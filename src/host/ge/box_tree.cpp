// A hierarchy of boxes over items in a row.

#include "ge/box_tree.h"

KcGeBoxTree::KcGeBoxTree(std::vector<KcGeExtents3d> boxes)
{
    if (boxes.empty())
        return;
    m_levels.push_back(std::move(boxes));
    while (m_levels.back().size() > kFan) {
        const std::vector<KcGeExtents3d>& below = m_levels.back();
        std::vector<KcGeExtents3d> level((below.size() + kFan - 1) / kFan);
        for (size_t i = 0; i < below.size(); ++i)
            level[i / kFan].addExtents(below[i]);
        m_levels.push_back(std::move(level));
    }
}

KcGeExtents3d KcGeBoxTree::extents() const
{
    KcGeExtents3d all;
    if (!m_levels.empty())
        for (const KcGeExtents3d& box : m_levels.back())
            all.addExtents(box);
    return all;
}

double KcGeBoxTree::distance(const KcGeExtents3d& box, KcGePoint3d p)
{
    if (box.isEmpty())
        return std::numeric_limits<double>::infinity();
    const double dx = std::max({ box.min.x - p.x, 0.0, p.x - box.max.x });
    const double dy = std::max({ box.min.y - p.y, 0.0, p.y - box.max.y });
    const double dz = std::max({ box.min.z - p.z, 0.0, p.z - box.max.z });
    return std::sqrt(dx * dx + dy * dy + dz * dz);
}
