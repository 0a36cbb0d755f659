// Codec of hatches: loops of edges, pattern lines and seeds are sequences whose meaning depends on what came
// before.

#include "db/hatch.h"
#include "dxf/codec.h"

namespace dxf {

namespace {

constexpr double kDegree = kPi / 180.0;

// Where the reader stands: the last edge, and whether pattern lines or seeds have begun.
struct HatchState {
    enum class Stage { Head, Loops, Pattern, Seeds } stage = Stage::Head;
    int edgeType = 0; ///< 0: none of this loop yet
};

// Angles of clockwise arcs are held mirrored in the file, as published; kept so in memory.
bool readEdge(KcDbHatch::Loop& loop, HatchState& state, const Group& g)
{
    if (g.code == 72) {
        state.edgeType = int(g.integer());
        switch (state.edgeType) {
        case 1:
            loop.edges.emplace_back(KcDbHatch::LineEdge{});
            return true;
        case 2:
            loop.edges.emplace_back(KcDbHatch::ArcEdge{});
            return true;
        case 3:
            loop.edges.emplace_back(KcDbHatch::EllipseEdge{});
            return true;
        case 4:
            loop.edges.emplace_back(KcDbHatch::SplineEdge{});
            return true;
        default:
            return false;
        }
    }
    if (loop.edges.empty())
        return g.code == 93;
    KcDbHatch::Edge& edge = loop.edges.back();
    if (auto* line = std::get_if<KcDbHatch::LineEdge>(&edge)) {
        switch (g.code) {
        case 10:
            line->start.x = g.real();
            return true;
        case 20:
            line->start.y = g.real();
            return true;
        case 11:
            line->end.x = g.real();
            return true;
        case 21:
            line->end.y = g.real();
            return true;
        }
    } else if (auto* arc = std::get_if<KcDbHatch::ArcEdge>(&edge)) {
        switch (g.code) {
        case 10:
            arc->center.x = g.real();
            return true;
        case 20:
            arc->center.y = g.real();
            return true;
        case 40:
            arc->radius = g.real();
            return true;
        case 50:
            arc->startAngle = g.real() * kDegree;
            return true;
        case 51:
            arc->endAngle = g.real() * kDegree;
            return true;
        case 73:
            arc->counterClockwise = g.integer() != 0;
            return true;
        }
    } else if (auto* ellipse = std::get_if<KcDbHatch::EllipseEdge>(&edge)) {
        switch (g.code) {
        case 10:
            ellipse->center.x = g.real();
            return true;
        case 20:
            ellipse->center.y = g.real();
            return true;
        case 11:
            ellipse->majorAxis.x = g.real();
            return true;
        case 21:
            ellipse->majorAxis.y = g.real();
            return true;
        case 40:
            ellipse->radiusRatio = g.real();
            return true;
        case 50:
            ellipse->startAngle = g.real() * kDegree;
            return true;
        case 51:
            ellipse->endAngle = g.real() * kDegree;
            return true;
        case 73:
            ellipse->counterClockwise = g.integer() != 0;
            return true;
        }
    } else if (auto* spline = std::get_if<KcDbHatch::SplineEdge>(&edge)) {
        switch (g.code) {
        case 94:
            spline->degree = int(g.integer());
            return true;
        case 73:
            spline->rational = g.integer() != 0;
            return true;
        case 74:
            spline->periodic = g.integer() != 0;
            return true;
        case 95:
        case 96:
        case 97:
            return true;
        case 40:
            spline->knots.push_back(g.real());
            return true;
        case 10:
            spline->controlPoints.push_back({ g.real(), 0 });
            return true;
        case 20:
            if (!spline->controlPoints.empty())
                spline->controlPoints.back().y = g.real();
            return true;
        case 42:
            spline->weights.push_back(g.real());
            return true;
        case 11:
            spline->fitPoints.push_back({ g.real(), 0 });
            return true;
        case 21:
            if (!spline->fitPoints.empty())
                spline->fitPoints.back().y = g.real();
            return true;
        case 12:
            spline->hasTangents = true;
            spline->startTangent.x = g.real();
            return true;
        case 22:
            spline->startTangent.y = g.real();
            return true;
        case 13:
            spline->endTangent.x = g.real();
            return true;
        case 23:
            spline->endTangent.y = g.real();
            return true;
        }
    }
    return false;
}

bool readPolylineLoop(KcDbHatch::Loop& loop, const Group& g)
{
    switch (g.code) {
    case 72:
        loop.hasBulges = g.integer() != 0;
        return true;
    case 73:
        loop.closed = g.integer() != 0;
        return true;
    case 93:
        return true;
    case 10:
        loop.vertices.push_back({ g.real(), 0 });
        return true;
    case 20:
        if (!loop.vertices.empty())
            loop.vertices.back().y = g.real();
        return true;
    case 42:
        if (!loop.vertices.empty())
            loop.vertices.back().bulge = g.real();
        return true;
    default:
        return false;
    }
}

bool readPattern(KcDbHatch::Data& d, const Group& g)
{
    if (g.code == 53) {
        d.lines.emplace_back().angle = g.real() * kDegree;
        return true;
    }
    if (d.lines.empty())
        return false;
    KcDbHatch::PatternLine& line = d.lines.back();
    switch (g.code) {
    case 43:
        line.base.x = g.real();
        return true;
    case 44:
        line.base.y = g.real();
        return true;
    case 45:
        line.offset.x = g.real();
        return true;
    case 46:
        line.offset.y = g.real();
        return true;
    case 79:
        return true;
    case 49:
        line.dashes.push_back(g.real());
        return true;
    default:
        return false;
    }
}

bool readGradient(KcDbHatch::Gradient& gradient, const Group& g, ReadContext& context)
{
    switch (g.code) {
    case 450:
        gradient.present = true;
        gradient.filled = g.integer() != 0;
        return true;
    case 451:
        gradient.reserved = int(g.integer());
        return true;
    case 452:
        gradient.oneColor = g.integer() != 0;
        return true;
    case 453:
        return true;
    case 460:
        gradient.angle = g.real();
        return true;
    case 461:
        gradient.shift = g.real();
        return true;
    case 462:
        gradient.tint = g.real();
        return true;
    case 463:
        gradient.stops.emplace_back().at = g.real();
        return true;
    case 470:
        gradient.name = context.text(g);
        return true;
    }
    if (gradient.stops.empty())
        return false;
    if (g.code == 63)
        gradient.stops.back().index = int(g.integer());
    else if (g.code == 421)
        gradient.stops.back().rgb = int32_t(g.integer());
    return g.code == 63 || g.code == 421;
}

bool readHatch(KcDbHatch& hatch, const Group& g, ReadState& state)
{
    if (!state.own.has_value())
        state.own = HatchState{};
    HatchState& at = *std::any_cast<HatchState>(&state.own);
    KcDbHatch::Data& d = hatch.data();
    switch (g.code) {
    case 91:
        at.stage = HatchState::Stage::Loops;
        return true;
    case 92:
        if (at.stage != HatchState::Stage::Loops)
            return false; // a proxy graphics length of the common part
        d.loops.emplace_back().type = int(g.integer());
        at.edgeType = 0;
        return true;
    case 75:
        at.stage = HatchState::Stage::Pattern;
        d.style = int(g.integer());
        return true;
    case 76:
        d.patternType = int(g.integer());
        return true;
    case 78:
        at.stage = HatchState::Stage::Pattern;
        return true;
    case 98:
        at.stage = HatchState::Stage::Seeds;
        return true;
    }
    if (readGradient(d.gradient, g, state.context))
        return true;
    switch (at.stage) {
    case HatchState::Stage::Head:
        // Elevation point: x and y are always 0.
        if (g.code == 10 || g.code == 20)
            return true;
        if (g.code == 30) {
            d.elevation = g.real();
            return true;
        }
        return false;
    case HatchState::Stage::Loops:
        if (d.loops.empty())
            return false;
        if (g.code == 330) {
            d.loops.back().sources.push_back(state.context.handle(g));
            return true;
        }
        // 97 counts the source curves, or the fit points of a spline edge.
        if (g.code == 97)
            return true;
        return d.loops.back().isPolyline() ? readPolylineLoop(d.loops.back(), g)
                                           : readEdge(d.loops.back(), at, g);
    case HatchState::Stage::Pattern:
        return readPattern(d, g);
    case HatchState::Stage::Seeds:
        if (g.code == 10) {
            d.seeds.push_back({ g.real(), 0 });
            return true;
        }
        if (g.code == 20 && !d.seeds.empty()) {
            d.seeds.back().y = g.real();
            return true;
        }
        return false;
    }
    return false;
}

void writeEdge(const KcDbHatch::Edge& edge, GroupList& out)
{
    std::visit(
        [&](const auto& e) {
            using T = std::decay_t<decltype(e)>;
            if constexpr (std::is_same_v<T, KcDbHatch::LineEdge>) {
                out.integer(72, 1);
                out.point(10, e.start);
                out.point(11, e.end);
            } else if constexpr (std::is_same_v<T, KcDbHatch::ArcEdge>) {
                out.integer(72, 2);
                out.point(10, e.center);
                out.real(40, e.radius);
                out.angle(50, e.startAngle);
                out.angle(51, e.endAngle);
                out.integer(73, e.counterClockwise);
            } else if constexpr (std::is_same_v<T, KcDbHatch::EllipseEdge>) {
                out.integer(72, 3);
                out.point(10, e.center);
                out.point(11, KcGePoint2d{ e.majorAxis.x, e.majorAxis.y });
                out.real(40, e.radiusRatio);
                out.angle(50, e.startAngle);
                out.angle(51, e.endAngle);
                out.integer(73, e.counterClockwise);
            } else {
                out.integer(72, 4);
                out.integer(94, e.degree);
                out.integer(73, e.rational);
                out.integer(74, e.periodic);
                out.integer(95, int64_t(e.knots.size()));
                out.integer(96, int64_t(e.controlPoints.size()));
                for (const double knot : e.knots)
                    out.real(40, knot);
                for (size_t i = 0; i < e.controlPoints.size(); ++i) {
                    out.point(10, e.controlPoints[i]);
                    if (i < e.weights.size())
                        out.real(42, e.weights[i]);
                }
                if (out.version() >= KcDbVersion::V2010) {
                    out.integer(97, int64_t(e.fitPoints.size()));
                    for (const KcGePoint2d& p : e.fitPoints)
                        out.point(11, p);
                    if (e.hasTangents) {
                        out.point(12, KcGePoint2d{ e.startTangent.x, e.startTangent.y });
                        out.point(13, KcGePoint2d{ e.endTangent.x, e.endTangent.y });
                    }
                }
            }
        },
        edge);
}

void writeGradient(const KcDbHatch::Gradient& gradient, GroupList& out)
{
    out.integer(450, gradient.filled);
    out.integer(451, gradient.reserved);
    out.real(460, gradient.angle);
    out.real(461, gradient.shift);
    out.integer(452, gradient.oneColor);
    out.real(462, gradient.tint);
    out.integer(453, int64_t(gradient.stops.size()));
    for (const KcDbHatch::Gradient::Stop& stop : gradient.stops) {
        out.real(463, stop.at);
        if (stop.index != 0)
            out.integer(63, stop.index);
        if (stop.rgb >= 0)
            out.integer(421, stop.rgb);
    }
    out.text(470, gradient.name);
}

void writeHatch(const KcDbHatch& hatch, GroupList& out)
{
    const KcDbHatch::Data& d = hatch.data();
    out.subclass("AcDbHatch");
    out.point(10, KcGePoint3d{ 0, 0, d.elevation });
    out.point(210, d.normal);
    out.text(2, d.patternName);
    out.integer(70, d.solid);
    out.integer(71, d.associative);
    out.integer(91, int64_t(d.loops.size()));
    for (const KcDbHatch::Loop& loop : d.loops) {
        out.integer(92, loop.type);
        if (loop.isPolyline()) {
            out.integer(72, loop.hasBulges);
            out.integer(73, loop.closed);
            out.integer(93, int64_t(loop.vertices.size()));
            for (const KcDbPolyline::Vertex& v : loop.vertices) {
                out.point(10, KcGePoint2d{ v.x, v.y });
                if (loop.hasBulges)
                    out.real(42, v.bulge);
            }
        } else {
            out.integer(93, int64_t(loop.edges.size()));
            for (const KcDbHatch::Edge& edge : loop.edges)
                writeEdge(edge, out);
        }
        out.integer(97, int64_t(loop.sources.size()));
        for (KcDbObjectId id : loop.sources)
            out.handle(330, id);
    }
    out.integer(75, d.style);
    out.integer(76, d.patternType);
    if (!d.solid) {
        out.angle(52, d.patternAngle);
        out.real(41, d.patternScale);
        out.integer(77, d.doubled);
        out.integer(78, int64_t(d.lines.size()));
        for (const KcDbHatch::PatternLine& line : d.lines) {
            out.angle(53, line.angle);
            out.real(43, line.base.x);
            out.real(44, line.base.y);
            out.real(45, line.offset.x);
            out.real(46, line.offset.y);
            out.integer(79, int64_t(line.dashes.size()));
            for (const double dash : line.dashes)
                out.real(49, dash);
        }
    }
    out.real(47, d.pixelSize, 0.0);
    out.integer(98, int64_t(d.seeds.size()));
    for (const KcGePoint2d& p : d.seeds)
        out.point(10, p);
    if (d.gradient.present && out.version() >= KcDbVersion::V2004)
        writeGradient(d.gradient, out);
}

} // namespace

void registerHatchCodec()
{
    using D = KcDbHatch::Data;
    registerCodec(std::make_unique<FieldCodec<KcDbHatch>>(
        "HATCH",
        std::vector<Field>{ field(210, &D::normal), field(2, &D::patternName), field(70, &D::solid),
                            field(71, &D::associative), field(52, &D::patternAngle).angle(),
                            field(41, &D::patternScale), field(77, &D::doubled), field(47, &D::pixelSize) },
        readHatch, writeHatch, FieldCodec<KcDbHatch>::Writes::kInsteadOfTable));
}

} // namespace dxf
