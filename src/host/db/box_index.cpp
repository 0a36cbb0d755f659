// The R-tree over boxes: bulk loading, changes, queries.

#include "db/box_index.h"

#include <boost/geometry.hpp>
#include <boost/geometry/index/rtree.hpp>

#include <algorithm>
#include <cstring>
#include <cmath>
#include <limits>

namespace {

namespace bg = boost::geometry;
namespace bgi = boost::geometry::index;

using Point = bg::model::point<float, 2, bg::cs::cartesian>;
using Box = bg::model::box<Point>;
struct Value {
    Box box;
    uint32_t number;
    bool operator==(const Value& other) const { return number == other.number; }
};
struct BoxOf {
    using result_type = const Box&;
    result_type operator()(const Value& value) const { return value.box; }
};
constexpr size_t kNodeSize = 16;
using RTree = bgi::rtree<Value, bgi::quadratic<kNodeSize>, BoxOf>;

constexpr float kHighest = std::numeric_limits<float>::max();

float roundedDown(double value)
{
    if (value <= -double(kHighest))
        return -kHighest;
    const float f = value >= double(kHighest) ? kHighest : float(value);
    return double(f) > value ? std::nextafter(f, -kHighest) : f;
}

float roundedUp(double value)
{
    return -roundedDown(-value);
}

bool isUnbounded(const KcGeExtents2d& box)
{
    return !std::isfinite(box.min.x) || !std::isfinite(box.min.y) || !std::isfinite(box.max.x)
        || !std::isfinite(box.max.y);
}

bool isNoBox(const KcGeExtents2d& box)
{
    return box.min.x > box.max.x || box.min.y > box.max.y; // false for what is no number: that is unbounded
}

} // namespace

struct KcDbBoxIndex::Tree {
    // What a number stands for now: removing from the tree needs the box it was put in with.
    struct Place {
        float minX = 0, minY = 0, maxX = -1, maxY = -1;
        bool isInTree() const { return minX <= maxX; }
    };

    RTree tree;
    std::vector<Place> places;
    std::vector<uint32_t> unbounded; ///< ascending
    KcGePoint2d origin;
    bool hasOrigin = false;

    Box toBox(const KcGeExtents2d& box) const
    {
        return { { roundedDown(box.min.x - origin.x), roundedDown(box.min.y - origin.y) },
                 { roundedUp(box.max.x - origin.x), roundedUp(box.max.y - origin.y) } };
    }
    static Box toBox(const Place& place) { return { { place.minX, place.minY }, { place.maxX, place.maxY } }; }
    static Place toPlace(const Box& box)
    {
        return { box.min_corner().get<0>(), box.min_corner().get<1>(), box.max_corner().get<0>(),
                 box.max_corner().get<1>() };
    }
    void takeOrigin(const KcGeExtents2d& box)
    {
        if (hasOrigin)
            return;
        origin = box.min;
        hasOrigin = true;
    }

    template <class Predicate> std::vector<uint32_t> query(const Predicate& predicate, bool withUnbounded) const
    {
        std::vector<uint32_t> numbers;
        for (auto it = tree.qbegin(predicate); it != tree.qend(); ++it)
            numbers.push_back(it->number);
        if (withUnbounded)
            numbers.insert(numbers.end(), unbounded.begin(), unbounded.end());
        std::sort(numbers.begin(), numbers.end());
        return numbers;
    }
};

KcDbBoxIndex::KcDbBoxIndex()
    : m_tree(std::make_unique<Tree>())
{
}
KcDbBoxIndex::~KcDbBoxIndex() = default;
KcDbBoxIndex::KcDbBoxIndex(KcDbBoxIndex&&) noexcept = default;
KcDbBoxIndex& KcDbBoxIndex::operator=(KcDbBoxIndex&&) noexcept = default;

size_t KcDbBoxIndex::size() const
{
    return m_tree->places.size();
}

void KcDbBoxIndex::build(const std::vector<KcGeExtents2d>& boxes)
{
    *m_tree = Tree();
    Tree& tree = *m_tree;
    tree.places.resize(boxes.size());
    std::vector<Value> values;
    values.reserve(boxes.size());
    for (uint32_t i = 0; i < boxes.size(); ++i) {
        if (isNoBox(boxes[i]))
            continue;
        if (isUnbounded(boxes[i])) {
            tree.unbounded.push_back(i);
            continue;
        }
        tree.takeOrigin(boxes[i]);
        const Box box = tree.toBox(boxes[i]);
        tree.places[i] = Tree::toPlace(box);
        values.push_back({ box, i });
    }
    tree.tree = RTree(values);
}

void KcDbBoxIndex::set(uint32_t number, const KcGeExtents2d& box)
{
    Tree& tree = *m_tree;
    if (number >= tree.places.size())
        tree.places.resize(size_t(number) + 1);
    Tree::Place& place = tree.places[number];
    const bool bounded = !isNoBox(box) && !isUnbounded(box);
    Tree::Place next;
    if (bounded) {
        tree.takeOrigin(box);
        next = Tree::toPlace(tree.toBox(box));
    }
    const auto listed = std::lower_bound(tree.unbounded.begin(), tree.unbounded.end(), number);
    const bool wasUnbounded = listed != tree.unbounded.end() && *listed == number;
    const bool becomesUnbounded = !isNoBox(box) && !bounded;
    if (wasUnbounded && !becomesUnbounded)
        tree.unbounded.erase(listed);
    else if (!wasUnbounded && becomesUnbounded)
        tree.unbounded.insert(listed, number);

    if (std::memcmp(&place, &next, sizeof place) == 0)
        return;
    if (place.isInTree())
        tree.tree.remove(Value { Tree::toBox(place), number });
    place = next;
    if (place.isInTree())
        tree.tree.insert(Value { Tree::toBox(place), number });
}

std::vector<uint32_t> KcDbBoxIndex::crossing(const KcGeExtents2d& box) const
{
    if (isNoBox(box))
        return {};
    return m_tree->query(bgi::intersects(m_tree->toBox(box)), true);
}

std::vector<uint32_t> KcDbBoxIndex::within(const KcGeExtents2d& box) const
{
    if (isNoBox(box))
        return {};
    // Rounding is monotonous, so a box inside stays inside.
    return m_tree->query(bgi::covered_by(m_tree->toBox(box)), false);
}

std::vector<uint32_t> KcDbBoxIndex::fence(const std::vector<KcGePoint2d>& points) const
{
    std::vector<uint32_t> numbers;
    for (size_t i = 0; i + 1 < points.size() || (i == 0 && points.size() == 1); ++i) {
        const KcGeVector2d a = points[i] - m_tree->origin;
        const KcGeVector2d b = points[std::min(i + 1, points.size() - 1)] - m_tree->origin;
        KcGeExtents2d box;
        box.addPoint(points[i]);
        box.addPoint(points[std::min(i + 1, points.size() - 1)]);
        const KcGeVector2d along = b - a;
        // A box is met when the line's box overlaps it and its corners do not all lie on one side of the line.
        const double slack = std::numeric_limits<float>::epsilon()
            * (std::abs(a.x) + std::abs(a.y) + std::abs(b.x) + std::abs(b.y)) * along.length();
        const auto meets = [&](const Value& value) {
            double low = std::numeric_limits<double>::infinity(), high = -low;
            for (const double x : { value.box.min_corner().get<0>(), value.box.max_corner().get<0>() })
                for (const double y : { value.box.min_corner().get<1>(), value.box.max_corner().get<1>() }) {
                    const double side = along.crossProduct(KcGeVector2d { x, y } - a);
                    low = std::min(low, side);
                    high = std::max(high, side);
                }
            return low <= slack && high >= -slack;
        };
        const std::vector<uint32_t> found
            = m_tree->query(bgi::intersects(m_tree->toBox(box)) && bgi::satisfies(meets), false);
        numbers.insert(numbers.end(), found.begin(), found.end());
    }
    numbers.insert(numbers.end(), m_tree->unbounded.begin(), m_tree->unbounded.end());
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

std::vector<KcDbBoxIndex::Near> KcDbBoxIndex::nearest(KcGePoint2d point, size_t count) const
{
    std::vector<Near> result;
    const KcGeVector2d p = point - m_tree->origin;
    if (count == 0 || !std::isfinite(p.x) || !std::isfinite(p.y))
        return result;
    const Point target(float(p.x), float(p.y));
    for (auto it = m_tree->tree.qbegin(bgi::nearest(target, unsigned(count))); it != m_tree->tree.qend(); ++it) {
        const Box& box = it->box;
        const double dx
            = std::max({ double(box.min_corner().get<0>()) - p.x, 0.0, p.x - double(box.max_corner().get<0>()) });
        const double dy
            = std::max({ double(box.min_corner().get<1>()) - p.y, 0.0, p.y - double(box.max_corner().get<1>()) });
        result.push_back({ it->number, std::hypot(dx, dy) });
    }
    std::sort(result.begin(), result.end(), [](const Near& a, const Near& b) {
        return a.distance != b.distance ? a.distance < b.distance : a.number < b.number;
    });
    return result;
}
