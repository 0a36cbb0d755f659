// Lengths and nearest points of smooth curves, by a table of stretches over which quadrature of a fixed order
// is as good as doubles allow.

#include "ge/carrier.h"

#include "ge/sign_changes.h"

namespace {

/// Nodes and weights of the Gauss-Legendre rule of 8 points on [-1, 1], one half: exact for polynomials of
/// degree 15.
constexpr double kNodes[]
    = { 0.18343464249564980494, 0.52553240991632898582, 0.79666647741362673959, 0.96028985649753623168 };
constexpr double kWeights[]
    = { 0.36268378337836198297, 0.31370664587788728734, 0.22238103445337447054, 0.10122853629037625915 };

/// A stretch is not halved further when its halves agree with it to this share of its own length …
constexpr double kLeafAccuracy = 1e-12;
/// … or of the length of everything between two breaks, which ends the search at cusps.
constexpr double kStretchAccuracy = 1e-14;
constexpr int kDeepest = 40;
/// Samples in which the nearest point is looked for in a stretch, which is half of one that turns by a fraction of
/// a circle.
constexpr int kSamples = 2;

bool isFinite(KcGeVector3d v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

} // namespace

double KcGeCarrier3d::quadrature(double low, double high) const
{
    const double middle = low + (high - low) / 2.0, half = (high - low) / 2.0;
    double params[kRulePoints], speeds[kRulePoints];
    for (int i = 0; i < kRulePoints / 2; ++i) {
        params[2 * i] = middle - half * kNodes[i];
        params[2 * i + 1] = middle + half * kNodes[i];
    }
    speedsAt(params, speeds);
    double sum = 0.0;
    for (int i = 0; i < kRulePoints; ++i)
        sum += kWeights[i / 2] * speeds[i];
    return sum * half;
}

void KcGeCarrier3d::speedsAt(const double (&params)[kRulePoints], double (&speeds)[kRulePoints]) const
{
    for (int i = 0; i < kRulePoints; ++i)
        speeds[i] = firstAt(params[i]).length();
}

void KcGeCarrier3d::addLeaves(
    Table& table, double low, double high, double length, double accuracy, int depth) const
{
    const double middle = low + (high - low) / 2.0;
    const double left = quadrature(low, middle), right = quadrature(middle, high);
    const double error = std::abs(left + right - length);
    if (!(error > kLeafAccuracy * (left + right) + accuracy) || depth >= kDeepest || !(low < middle)) {
        // The halves are known as well as the whole, and in them the first guess of an inverse is 16 times nearer.
        const auto add = [&](double from, double to, double way) {
            if (table.leaves.empty())
                table.leaves.push_back({ from, 0.0, 0.0, 0.0 });
            Leaf& leaf = table.leaves.back();
            leaf.startSpeed = firstAt(from).length();
            leaf.endSpeed = firstAt(to).length();
            table.leaves.push_back({ to, leaf.length + way, 0.0, 0.0 });
        };
        if (low < middle && middle < high) {
            add(low, middle, left);
            add(middle, high, right);
        } else {
            add(low, high, left + right);
        }
        return;
    }
    addLeaves(table, low, middle, left, accuracy, depth + 1);
    addLeaves(table, middle, high, right, accuracy, depth + 1);
}

const KcGeCarrier3d::Table& KcGeCarrier3d::table() const
{
    std::call_once(m_once, [this] {
        auto table = std::make_unique<Table>();
        for (size_t i = 0; i + 1 < m_breaks.size(); ++i) {
            const double length = quadrature(m_breaks[i], m_breaks[i + 1]);
            addLeaves(*table, m_breaks[i], m_breaks[i + 1], length, kStretchAccuracy * length, 0);
        }
        // A stretch of length L from A to B lies within the ellipsoid |XA| + |XB| = L.
        std::vector<KcGeExtents3d> boxes;
        boxes.reserve(table->leaves.size());
        for (size_t i = 0; i + 1 < table->leaves.size(); ++i) {
            const KcGePoint3d a = pointAt(table->leaves[i].param), b = pointAt(table->leaves[i + 1].param);
            const KcGeVector3d d = b - a;
            const double length
                = (table->leaves[i + 1].length - table->leaves[i].length) * (1.0 + 1e3 * kLeafAccuracy);
            const double across = std::max(0.0, length * length - d.dotProduct(d)) / 4.0;
            const auto half = [&](double along) { return std::sqrt(across + along * along / 4.0); };
            const KcGePoint3d middle = a + d * 0.5;
            const KcGeVector3d reach{ half(d.x), half(d.y), half(d.z) };
            KcGeExtents3d box;
            box.addPoint(middle - reach);
            box.addPoint(middle + reach);
            boxes.push_back(box);
        }
        table->boxes = KcGeBoxTree(std::move(boxes));
        m_table = std::move(table);
    });
    return *m_table;
}

KcGeCarrier3d::Place KcGeCarrier3d::placeOf(double u) const
{
    const std::vector<Leaf>& leaves = table().leaves;
    Place place;
    if (u == m_breaks.front()) { // exact: what most questions are counted from
        place.param = u;
        return place;
    }
    if (period() > 0.0) {
        place.turns = std::floor((u - m_breaks.front()) / period());
        u -= place.turns * period();
    }
    place.param = std::clamp(u, m_breaks.front(), m_breaks.back());
    const auto above
        = std::upper_bound(leaves.begin() + 1, leaves.end() - 1, place.param, [](double v, const Leaf& leaf) {
              return v < leaf.param;
          });
    place.leaf = size_t(above - leaves.begin()) - 1;
    return place;
}

double KcGeCarrier3d::lengthBetween(double from, double to) const
{
    if (to < from)
        return -lengthBetween(to, from);
    const std::vector<Leaf>& leaves = table().leaves;
    const Place a = placeOf(from), b = placeOf(to);
    // Short ways are not taken from differences of long ones.
    if (a.turns == b.turns && a.leaf == b.leaf)
        return a.param == b.param ? 0.0 : quadrature(a.param, b.param); // exact: nothing between
    const double toEnd = lengthInLeaf(a.leaf, a.param, leaves[a.leaf + 1].param);
    const double fromStart = lengthInLeaf(b.leaf, leaves[b.leaf].param, b.param);
    const double whole = (b.turns - a.turns) * leaves.back().length;
    return toEnd + (whole + (leaves[b.leaf].length - leaves[a.leaf + 1].length)) + fromStart;
}

double KcGeCarrier3d::lengthInLeaf(size_t index, double from, double to) const
{
    const Leaf &leaf = table().leaves[index], &next = table().leaves[index + 1];
    if (from == to)
        return 0.0;
    if (from == leaf.param && to == next.param) // exact: what the table holds
        return next.length - leaf.length;
    return quadrature(from, to);
}

double KcGeCarrier3d::paramAtLength(double from, double length) const
{
    const std::vector<Leaf>& leaves = table().leaves;
    const Place a = placeOf(from);
    const Leaf &here = leaves[a.leaf], &behind = leaves[a.leaf + 1];
    const double base = a.turns * period();
    if (!(std::abs(length) > 0.0))
        return base + a.param;
    const double before = lengthInLeaf(a.leaf, here.param, a.param);
    const double after = lengthInLeaf(a.leaf, a.param, behind.param);
    if (length > 0.0 && length <= after)
        return base + paramInLeaf(a.leaf, a.param, behind.param, after, length);
    if (length < 0.0 && -length <= before)
        return base + paramInLeaf(a.leaf, here.param, a.param, before, before + length);

    // Out of this stretch: counted from the first break.
    double rest = length > 0.0 ? behind.length + (length - after) : here.length + (length + before);
    const double whole = leaves.back().length;
    double turn = base;
    if (period() > 0.0 && whole > 0.0) {
        const double turns = std::floor(rest / whole);
        rest -= turns * whole;
        turn += turns * period();
    }
    if (!(rest > 0.0))
        return turn + m_breaks.front();
    if (!(rest < whole))
        return turn + m_breaks.back();
    const auto above
        = std::upper_bound(leaves.begin() + 1, leaves.end() - 1, rest, [](double v, const Leaf& leaf) {
              return v < leaf.length;
          });
    const size_t leaf = size_t(above - leaves.begin()) - 1;
    return turn
        + paramInLeaf(
               leaf, leaves[leaf].param, above->param, above->length - leaves[leaf].length,
               rest - leaves[leaf].length);
}

double KcGeCarrier3d::paramInLeaf(size_t index, double low, double high, double span, double wanted) const
{
    if (!(wanted > 0.0))
        return low;
    if (!(wanted < span))
        return high;
    const Leaf &leaf = table().leaves[index], &next = table().leaves[index + 1];
    // First the cubic that has the inverse function's values and slopes at both ends, then Newton's steps.
    const double s = wanted / span;
    double u = low + s * (high - low);
    const double startSpeed = low == leaf.param ? leaf.startSpeed : firstAt(low).length();
    const double endSpeed = high == next.param ? leaf.endSpeed : firstAt(high).length();
    if (startSpeed > 0.0 && endSpeed > 0.0) {
        const double mean = span / (high - low), r = 1.0 - s;
        const double cubic
            = s * s * (3.0 - 2.0 * s) + mean / startSpeed * s * r * r - mean / endSpeed * s * s * r;
        if (cubic > 0.0 && cubic < 1.0)
            u = low + cubic * (high - low);
    }
    double below = low, beyond = high;
    constexpr int kMostSteps = 100; // halvings alone come to an end sooner
    for (int i = 0; i < kMostSteps; ++i) {
        const double error = quadrature(low, u) - wanted;
        // Halley's step: of third order, for the derivative of the speed costs next to nothing.
        const Jet jet = at(u);
        const double speed = jet.first.length();
        const double step = -error / speed;
        const double bend = jet.first.dotProduct(jet.second) / (speed * speed);
        const double newton = u + step / (1.0 + bend * step / 2.0);
        // What the last step leaves is its cube.
        constexpr double kNearlyThere = 1e-4;
        if (std::abs(error) <= kNearlyThere * span)
            return newton >= low && newton <= high ? newton : u;
        (error < 0.0 ? below : beyond) = u;
        const double halved = below + (beyond - below) / 2.0;
        if (!(below < halved && halved < beyond))
            break;
        u = newton > below && newton < beyond ? newton : halved;
    }
    return u;
}

void KcGeCarrier3d::closestInLeaf(
    KcGePoint3d point, double low, double high, double& best, double& param) const
{
    const auto consider = [&](double u) {
        const double distance = pointAt(u).distanceTo(point);
        if (distance < best) {
            best = distance;
            param = u;
        }
    };
    consider(low);
    consider(high);
    // The distance is least where its square's derivative passes zero.
    const auto slope = [&](double u) {
        const Jet jet = at(u);
        const KcGeVector3d off = jet.point - point;
        return KcGeSlope{ off.dotProduct(jet.first),
                          jet.first.dotProduct(jet.first) + off.dotProduct(jet.second) };
    };
    kcge::forEachSignChange(slope, low, high, kSamples, consider);
}

double KcGeCarrier3d::closest(KcGePoint3d point, double low, double high) const
{
    const Table& all = table();
    double best = std::numeric_limits<double>::infinity(), param = low;
    const auto search = [&](double from, double to, double shift) {
        const auto begin = all.leaves.begin(), end = all.leaves.end() - 1;
        const auto byParam = [](double v, const Leaf& leaf) { return v < leaf.param; };
        const size_t first = size_t(std::upper_bound(begin + 1, end, from, byParam) - begin) - 1;
        const size_t last = size_t(std::upper_bound(begin + 1, end, to, byParam) - begin);
        all.boxes.nearest(point, first, last, best, [&](size_t i, double& nearest) {
            const double before = nearest;
            double found = 0.0;
            closestInLeaf(
                point, std::max(from, all.leaves[i].param), std::min(to, all.leaves[i + 1].param), nearest,
                found);
            if (nearest < before)
                param = found + shift;
        });
    };
    if (period() == 0.0) { // exact: the mark of a curve without one
        search(std::max(low, m_breaks.front()), std::min(high, m_breaks.back()), 0.0);
        return param;
    }
    const double first = std::floor((low - m_breaks.front()) / period());
    const double last = std::floor((high - m_breaks.front()) / period());
    for (double turn = first; turn <= last && turn <= first + 2.0; ++turn) {
        const double shift = turn * period();
        const double from = std::max(low - shift, m_breaks.front());
        const double to = std::min(high - shift, m_breaks.back());
        if (from <= to)
            search(from, to, shift);
    }
    return std::clamp(param, low, high);
}

std::vector<double> KcGeCarrier3d::turningParams(KcGeVector3d direction, double low, double high) const
{
    std::vector<double> params;
    const auto slope = [&](double u) {
        const Jet jet = at(u);
        return KcGeSlope{ jet.first.dotProduct(direction), jet.second.dotProduct(direction) };
    };
    const std::vector<Leaf>& leaves = table().leaves;
    for (size_t i = 0; i + 1 < leaves.size(); ++i) {
        const double from = std::max(low, leaves[i].param), to = std::min(high, leaves[i + 1].param);
        if (from < to)
            kcge::forEachSignChange(slope, from, to, kSamples, [&](double u) { params.push_back(u); });
    }
    return params;
}

// Ellipses.

namespace {

class Ellipse final : public KcGeCarrier3d {
public:
    explicit Ellipse(const KcGeEllipArc3d& arc)
        : m_arc(arc)
    {
        m_arc.start = 0.0;
        m_arc.sweep = kTwoPi;
        m_breaks = { 0.0, kPi / 2.0, kPi, 1.5 * kPi, kTwoPi };
    }
    Jet at(double u) const override
    {
        const double c = std::cos(u), s = std::sin(u);
        const KcGeVector3d radius = m_arc.u * c + m_arc.v * s;
        return { m_arc.center + radius, m_arc.v * c - m_arc.u * s, -radius };
    }
    KcGePoint3d pointAt(double u) const override { return m_arc.pointAt(u); }
    KcGeVector3d firstAt(double u) const override { return m_arc.derivativeAt(u); }
    const KcGeEllipArc3d* asEllipse() const override { return &m_arc; }
    double period() const override { return kTwoPi; }
    KcGeExtents3d extents(double low, double high) const override { return part(low, high - low).extents(); }
    std::vector<KcGePoint3d> chords(double from, double to, double sagitta) const override
    {
        // The ellipse is a circle of the longer radius, made shorter one way: no chord leaves it by more.
        const double radius = std::hypot(m_arc.u.length(), m_arc.v.length());
        const double step
            = 4.0 * std::asin(std::min(1.0, std::sqrt(std::max(0.0, sagitta) / (2.0 * radius))));
        constexpr double kMostChords = 65536.0;
        const int count = int(std::clamp(std::ceil(std::abs(to - from) / step), 1.0, kMostChords));
        std::vector<KcGePoint3d> points;
        for (int i = 0; i <= count; ++i)
            points.push_back(pointAt(i == count ? to : from + (to - from) * i / count));
        return points;
    }
    std::shared_ptr<const KcGeCarrier3d> transformed(const KcGeMatrix3d& matrix) const override
    {
        return ellipse(m_arc.transformed(matrix));
    }

private:
    KcGeEllipArc3d part(double start, double sweep) const
    {
        return { m_arc.center, m_arc.u, m_arc.v, start, sweep };
    }
    KcGeEllipArc3d m_arc;
};

/// Evaluated from its Bézier points, which are taken from a near origin so that plans far out keep their
/// digits.
class Spline final : public KcGeCarrier3d {
public:
    explicit Spline(KcGeNurbsCurve3d curve)
        : m_curve(std::move(curve))
        , m_origin(m_curve.controlPoints.front())
        , m_rational(!m_curve.weights.empty())
    {
        m_breaks = m_curve.breaks();
        KcGeNurbsCurve3d near = m_curve;
        for (KcGePoint3d& p : near.controlPoints)
            p = { p.x - m_origin.x, p.y - m_origin.y, p.z - m_origin.z };
        m_points = near.bezierPoints();
    }
    Jet at(double u) const override
    {
        Weighted d[kMost];
        double t, width;
        const int p = reduce(u, d, std::min(2, m_curve.degree), t, width);
        // Left are the control points of a parabola, or of a line.
        const double f = 1.0 / width;
        Weighted a, b, at, second;
        if (m_curve.degree >= 2) {
            a = between(d[0], d[1], t);
            b = between(d[1], d[2], t);
            const double g = double(p) * (p - 1) * f * f;
            second = { (d[2].x - 2 * d[1].x + d[0].x) * g, (d[2].y - 2 * d[1].y + d[0].y) * g,
                       (d[2].z - 2 * d[1].z + d[0].z) * g, (d[2].w - 2 * d[1].w + d[0].w) * g };
        } else {
            a = d[0];
            b = d[1];
            second = { 0.0, 0.0, 0.0, 0.0 };
        }
        at = between(a, b, t);
        const double g = p * f;
        KcGeVector3d point{ at.x, at.y, at.z };
        KcGeVector3d first{ (b.x - a.x) * g, (b.y - a.y) * g, (b.z - a.z) * g };
        KcGeVector3d curving{ second.x, second.y, second.z };
        if (m_rational) {
            const double dw = (b.w - a.w) * g;
            point = point / at.w;
            first = (first - point * dw) / at.w;
            curving = (curving - first * (2.0 * dw) - point * second.w) / at.w;
        }
        return { m_origin + point, first, curving };
    }
    KcGePoint3d pointAt(double u) const override
    {
        Weighted d[kMost];
        double t, width;
        reduce(u, d, 1, t, width);
        const KcGePoint3d p = between(d[0], d[1], t).point();
        return m_origin + p.asVector();
    }
    KcGeVector3d firstAt(double u) const override
    {
        Weighted d[kMost];
        double t, width;
        const double g = reduce(u, d, 1, t, width) / width;
        return slope(d, t, g);
    }
    /// All in one span, which is looked up once.
    void speedsAt(const double (&params)[kRulePoints], double (&speeds)[kRulePoints]) const override
    {
        const int p = m_curve.degree;
        const size_t span = spanOf(params[0]);
        const double low = m_breaks[span], width = m_breaks[span + 1] - low, factor = p / width;
        const Weighted* points = m_points.data() + span * size_t(p + 1);
        if (m_rational) {
            for (int k = 0; k < kRulePoints; ++k) {
                Weighted d[kMost];
                std::copy_n(points, p + 1, d);
                const double t = (params[k] - low) / width;
                for (int r = p; r > 1; --r)
                    for (int i = 0; i < r; ++i)
                        d[i] = between(d[i], d[i + 1], t);
                speeds[k] = slope(d, t, factor).length();
            }
            return;
        }
        KcGeVector3d slopes[kMost];
        for (int i = 0; i < p; ++i)
            slopes[i] = { points[i + 1].x - points[i].x, points[i + 1].y - points[i].y,
                          points[i + 1].z - points[i].z };
        for (int k = 0; k < kRulePoints; ++k) {
            const double t = (params[k] - low) / width;
            KcGeVector3d d[kMost];
            std::copy_n(slopes, p, d);
            for (int r = p - 1; r > 0; --r)
                for (int i = 0; i < r; ++i)
                    d[i] = d[i] + (d[i + 1] - d[i]) * t;
            speeds[k] = std::sqrt(d[0].dotProduct(d[0])) * factor;
        }
    }
    const KcGeNurbsCurve3d* asSpline() const override { return &m_curve; }
    KcGeExtents3d extents(double low, double high) const override
    {
        if (low < high)
            return m_curve.between(low, high).extents();
        KcGeExtents3d box;
        box.addPoint(pointAt(low));
        return box;
    }
    std::vector<KcGePoint3d> chords(double from, double to, double sagitta) const override
    {
        const double low = std::min(from, to), high = std::max(from, to);
        if (!(low < high))
            return { pointAt(from), pointAt(to) };
        std::vector<KcGePoint3d> points = m_curve.between(low, high).chords(sagitta);
        if (to < from)
            std::reverse(points.begin(), points.end());
        return points;
    }
    std::shared_ptr<const KcGeCarrier3d> transformed(const KcGeMatrix3d& matrix) const override
    {
        return spline(m_curve.transformed(matrix));
    }

private:
    using Weighted = KcGeWeightedPoint3d;
    static constexpr int kMost = KcGeNurbsCurve3d::kMaxDegree + 1;

    static Weighted between(const Weighted& a, const Weighted& b, double t)
    {
        return { a.x + t * (b.x - a.x), a.y + t * (b.y - a.y), a.z + t * (b.z - a.z), a.w + t * (b.w - a.w) };
    }
    /// The derivative, from the line that de Casteljau's algorithm leaves and that it follows `factor` times as fast.
    KcGeVector3d slope(const Weighted* d, double t, double factor) const
    {
        const KcGeVector3d first{ (d[1].x - d[0].x) * factor, (d[1].y - d[0].y) * factor,
                                  (d[1].z - d[0].z) * factor };
        if (!m_rational)
            return first;
        const Weighted at = between(d[0], d[1], t);
        return (first - at.point().asVector() * ((d[1].w - d[0].w) * factor)) / at.w;
    }
    size_t spanOf(double u) const
    {
        return size_t(std::upper_bound(m_breaks.begin() + 1, m_breaks.end() - 1, u) - m_breaks.begin()) - 1;
    }
    /// De Casteljau's algorithm down to a polynomial of degree `left`. Gives the curve's degree, and the
    /// place in its span.
    int reduce(double u, Weighted* d, int left, double& t, double& width) const
    {
        const size_t span = spanOf(u);
        width = m_breaks[span + 1] - m_breaks[span];
        t = std::clamp((u - m_breaks[span]) / width, 0.0, 1.0);
        const int p = m_curve.degree;
        std::copy_n(m_points.begin() + long(span) * (p + 1), p + 1, d);
        for (int r = p; r > left; --r)
            for (int i = 0; i < r; ++i)
                d[i] = between(d[i], d[i + 1], t);
        return p;
    }

    KcGeNurbsCurve3d m_curve;
    KcGePoint3d m_origin;
    bool m_rational;
    std::vector<Weighted> m_points;
};

} // namespace

std::shared_ptr<const KcGeCarrier3d> KcGeCarrier3d::ellipse(const KcGeEllipArc3d& arc)
{
    if (!isFinite(arc.center.asVector()) || !isFinite(arc.u) || !isFinite(arc.v))
        return nullptr;
    return std::make_shared<Ellipse>(arc);
}

std::shared_ptr<const KcGeCarrier3d> KcGeCarrier3d::spline(KcGeNurbsCurve3d curve)
{
    return curve.isValid() ? std::make_shared<Spline>(std::move(curve)) : nullptr;
}
