// Points that were used already, found again within a tolerance without comparing all of them.
#pragma once

#include "ge/point.h"

#include <unordered_map>
#include <vector>

/// Answers exactly as a comparison with every point by `KcGePoint3d::isEqualTo` would, in time that does not
/// grow with their number as long as they do not crowd within one tolerance.
class PointSet {
public:
    explicit PointSet(const KcGeTol& tolerance = KcGeContext::gTol)
        : m_tolerance(tolerance)
    {
    }
    bool contains(KcGePoint3d point) const;
    void add(KcGePoint3d point) { m_cells[cellOf(point)].push_back(point); }

private:
    // Columns of squares two tolerances wide: equal points lie in one or in neighbouring ones, whatever is
    // lost by rounding. Numbers of cells are kept as reals, for coordinates beyond what integers hold.
    struct Cell {
        double x, y;
        friend bool operator==(const Cell&, const Cell&) = default;
    };
    struct Hash {
        size_t operator()(const Cell& cell) const
        {
            const size_t x = std::hash<double>()(cell.x), y = std::hash<double>()(cell.y);
            return x ^ (y + 0x9e3779b97f4a7c15ULL + (x << 6) + (x >> 2));
        }
    };
    Cell cellOf(KcGePoint3d point) const
    {
        const double side = 2.0 * m_tolerance.equalPoint;
        return { std::floor(point.x / side), std::floor(point.y / side) };
    }

    KcGeTol m_tolerance;
    std::unordered_map<Cell, std::vector<KcGePoint3d>, Hash> m_cells;
};

inline bool PointSet::contains(KcGePoint3d point) const
{
    const Cell home = cellOf(point);
    for (const double x : { home.x - 1.0, home.x, home.x + 1.0 })
        for (const double y : { home.y - 1.0, home.y, home.y + 1.0 })
            if (const auto cell = m_cells.find({ x, y }); cell != m_cells.end())
                for (const KcGePoint3d used : cell->second)
                    if (point.isEqualTo(used, m_tolerance))
                        return true;
    return false;
}
