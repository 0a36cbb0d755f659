// Orders of points: from left to right, from neighbour to neighbour, along a path.

#include "core/point_order.h"

#include "ge/curve.h"

#include <algorithm>

void SortPointByX(const std::vector<KcGePoint3d>& points, std::vector<KcGePoint3d>& sorted)
{
    std::vector<KcGePoint3d> result = points;
    std::stable_sort(result.begin(), result.end(), [](KcGePoint3d a, KcGePoint3d b) {
        return a.x != b.x ? a.x < b.x : a.y < b.y; // exact: an order must not depend on a tolerance
    });
    sorted = std::move(result);
}

void Prim(KcGePoint3d start, const std::vector<KcGePoint3d>& points, std::vector<KcGePoint3d>& path)
{
    std::vector<KcGePoint3d> rest = points, chain;
    chain.reserve(rest.size());
    for (KcGePoint2d from = start.plan(); !rest.empty(); from = chain.back().plan()) {
        const auto nearest = std::min_element(rest.begin(), rest.end(), [&](KcGePoint3d a, KcGePoint3d b) {
            return from.distanceTo(a.plan()) < from.distanceTo(b.plan());
        });
        chain.push_back(*nearest);
        rest.erase(nearest);
    }
    path = std::move(chain);
}

void GetArrangePnts(const std::vector<KcGePoint3d>& path, std::vector<KcGePoint3d>& centers)
{
    // Points that repeat the one before them give no direction.
    std::vector<KcGePoint3d> way;
    for (const KcGePoint3d p : path)
        if (way.empty() || way.back().plan().distanceTo(p.plan()) > KcGeContext::gTol.equalPoint)
            way.push_back({ p.x, p.y, 0.0 });
    if (way.empty())
        return;
    const KcGeCurve3d curve = KcGeCurve3d::polyline(way, false);
    const auto beyond = [](KcGePoint3d end, KcGePoint3d before, KcGePoint3d center) {
        return (center - end).dotProduct((end - before).normal());
    };
    struct Place {
        double along = 0.0, beyond = 0.0; ///< beyond: what orders the centres of one end
        KcGePoint3d center;
    };
    std::vector<Place> places;
    for (const KcGePoint3d center : centers) {
        const KcGePoint3d foot{ center.x, center.y, 0.0 };
        Place place{ 0.0, 0.0, center };
        if (way.size() == 1) {
            place.along = foot.distanceTo(way[0]);
        } else if (const auto nearest = curve.closest(foot)) {
            place.along = nearest->param;
            if (nearest->param <= *curve.startParam())
                place.beyond = -beyond(way[0], way[1], foot);
            else if (nearest->param >= *curve.endParam())
                place.beyond = beyond(way.back(), way[way.size() - 2], foot);
        }
        places.push_back(place);
    }
    std::stable_sort(places.begin(), places.end(), [](const Place& a, const Place& b) {
        return a.along != b.along ? a.along < b.along : a.beyond < b.beyond; // exact, as above
    });
    for (size_t i = 0; i < places.size(); ++i)
        centers[i] = places[i].center;
}
