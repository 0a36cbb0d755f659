// Codecs of lines, curves, polylines and filled shapes.

#include "db/curves.h"
#include "db/polyline.h"
#include "dxf/codec_tools.h"

namespace dxf {

namespace {

// Simple curves.

void registerCurves()
{
    {
        using D = KcDbLine::Data;
        add<KcDbLine>(
            "LINE",
            std::vector<Field>{ subclass("AcDbLine"), field(39, &D::thickness).unless(0.0),
                                field(10, &D::start), field(11, &D::end),
                                field(210, &D::normal).unless(kZ) });
    }
    {
        using D = KcDbCircle::Data;
        add<KcDbCircle>(
            "CIRCLE",
            std::vector<Field>{ subclass("AcDbCircle"), field(39, &D::thickness).unless(0.0),
                                field(10, &D::center), field(40, &D::radius),
                                field(210, &D::normal).unless(kZ) });
    }
    {
        using D = KcDbArc::Data;
        add<KcDbArc>(
            "ARC",
            std::vector<Field>{ subclass("AcDbCircle"), field(39, &D::thickness).unless(0.0),
                                field(10, &D::center), field(40, &D::radius),
                                field(210, &D::normal).unless(kZ), subclass("AcDbArc"),
                                field(50, &D::startAngle).angle(), field(51, &D::endAngle).angle() });
    }
    {
        using D = KcDbEllipse::Data;
        add<KcDbEllipse>(
            "ELLIPSE",
            std::vector<Field>{ subclass("AcDbEllipse"), field(10, &D::center), field(11, &D::majorAxis),
                                field(210, &D::normal).unless(kZ), field(40, &D::radiusRatio),
                                field(41, &D::startParam), field(42, &D::endParam) });
    }
    {
        using D = KcDbXline::Data;
        add<KcDbXline>(
            "XLINE",
            std::vector<Field>{ subclass("AcDbXline"), field(10, &D::basePoint), field(11, &D::unitDir) });
        add<KcDbRay>(
            "RAY",
            std::vector<Field>{ subclass("AcDbRay"), field(10, &D::basePoint), field(11, &D::unitDir) });
    }
    {
        using D = KcDbPoint::Data;
        add<KcDbPoint>(
            "POINT",
            std::vector<Field>{ subclass("AcDbPoint"), field(10, &D::position),
                                field(39, &D::thickness).unless(0.0), field(210, &D::normal).unless(kZ),
                                field(50, &D::xAngle).angle().unless(0.0) });
    }
}

template <class T> bool readCorners(T& entity, const Group& group, ReadState&)
{
    const int row = group.code / 10, corner = group.code % 10;
    if (row < 1 || row > 3 || corner > 3)
        return false;
    KcGePoint3d& p = entity.data().corners[corner];
    (row == 1 ? p.x : row == 2 ? p.y : p.z) = group.real();
    return true;
}

template <class T> void writeCorners(const T& entity, GroupList& out)
{
    for (int i = 0; i < 4; ++i)
        out.point(10 + i, entity.data().corners[i]);
}

/// Solids and traces hold the same groups.
template <class T> void addSolid(const char* name)
{
    using D = KcDbSolid::Data;
    add<T>(
        name, std::vector<Field>{ field(39, &D::thickness), field(210, &D::normal) },
        [](T& solid, const Group& group, ReadState& state) { return readCorners(solid, group, state); },
        [](const T& solid, GroupList& out) {
            out.subclass("AcDbTrace");
            writeCorners(solid, out);
            out.real(39, solid.data().thickness, 0.0);
            out.point(210, solid.data().normal, solid.data().normal == kZ);
        },
        FieldCodec<T>::Writes::kInsteadOfTable);
}

void registerFilled()
{
    addSolid<KcDbSolid>("SOLID");
    addSolid<KcDbTrace>("TRACE");

    using F = KcDbFace::Data;
    add<KcDbFace>(
        "3DFACE", std::vector<Field>{ subclass("AcDbFace"), field(70, &F::hiddenEdges).unless(0.0) },
        [](KcDbFace& face, const Group& group, ReadState& state) { return readCorners(face, group, state); },
        [](const KcDbFace& face, GroupList& out) { writeCorners(face, out); });
}

// Splines.

bool readSpline(KcDbSpline& spline, const Group& group, ReadState&)
{
    KcDbSpline::Data& d = spline.data();
    switch (group.code) {
    case 12:
    case 22:
    case 32:
        d.hasStartTangent = true;
        (group.code == 12       ? d.startTangent.x
             : group.code == 22 ? d.startTangent.y
                                : d.startTangent.z)
            = group.real();
        return true;
    case 13:
    case 23:
    case 33:
        d.hasEndTangent = true;
        (group.code == 13       ? d.endTangent.x
             : group.code == 23 ? d.endTangent.y
                                : d.endTangent.z)
            = group.real();
        return true;
    case 40:
        d.knots.push_back(group.real());
        return true;
    case 41:
        d.weights.push_back(group.real());
        return true;
    case 72:
    case 73:
    case 74:
        return true; // counts: the lists tell
    case 10:
        d.controlPoints.push_back({ group.real(), 0, 0 });
        return true;
    case 20:
    case 30:
        return !d.controlPoints.empty() && setComponent(d.controlPoints.back(), group.code / 10 - 1, group);
    case 11:
        d.fitPoints.push_back({ group.real(), 0, 0 });
        return true;
    case 21:
    case 31:
        return !d.fitPoints.empty() && setComponent(d.fitPoints.back(), group.code / 10 - 1, group);
    default:
        return false;
    }
}

void writeSpline(const KcDbSpline& spline, GroupList& out)
{
    const KcDbSpline::Data& d = spline.data();
    out.subclass("AcDbSpline");
    out.point(210, d.normal, d.normal == kZ);
    out.integer(70, d.flags);
    out.integer(71, d.degree);
    out.integer(72, int64_t(d.knots.size()));
    out.integer(73, int64_t(d.controlPoints.size()));
    out.integer(74, int64_t(d.fitPoints.size()));
    out.real(42, d.knotTolerance, 1e-7);
    out.real(43, d.controlTolerance, 1e-7);
    out.real(44, d.fitTolerance, 1e-10);
    if (d.hasStartTangent)
        out.point(12, d.startTangent);
    if (d.hasEndTangent)
        out.point(13, d.endTangent);
    for (const double knot : d.knots)
        out.real(40, knot);
    for (const double weight : d.weights)
        out.real(41, weight);
    for (const KcGePoint3d& p : d.controlPoints)
        out.point(10, p);
    for (const KcGePoint3d& p : d.fitPoints)
        out.point(11, p);
}

void registerSpline()
{
    using D = KcDbSpline::Data;
    registerCodec(std::make_unique<FieldCodec<KcDbSpline>>(
        "SPLINE",
        std::vector<Field>{ field(210, &D::normal), field(70, &D::flags), field(71, &D::degree),
                            field(42, &D::knotTolerance), field(43, &D::controlTolerance),
                            field(44, &D::fitTolerance) },
        readSpline, writeSpline, FieldCodec<KcDbSpline>::Writes::kInsteadOfTable));
}

// Polylines.

bool readLightPolyline(KcDbPolyline& polyline, const Group& group, ReadState&)
{
    std::vector<KcDbPolyline::Vertex>& vertices = polyline.data().vertices;
    switch (group.code) {
    case 10:
        vertices.push_back({ group.real(), 0.0 });
        return true;
    case 20:
        if (!vertices.empty())
            vertices.back().y = group.real();
        return !vertices.empty();
    case 40:
        if (!vertices.empty())
            vertices.back().startWidth = group.real();
        return !vertices.empty();
    case 41:
        if (!vertices.empty())
            vertices.back().endWidth = group.real();
        return !vertices.empty();
    case 42:
        if (!vertices.empty())
            vertices.back().bulge = group.real();
        return !vertices.empty();
    case 90: {
        // Only a hint: a damaged file may announce any number.
        const int64_t count = group.integer();
        if (count > 0 && count < 100000)
            vertices.reserve(size_t(count));
        return true;
    }
    default:
        return false;
    }
}

void writeLightPolyline(const KcDbPolyline& polyline, GroupList& out)
{
    const KcDbPolyline::Data& d = polyline.data();
    out.subclass("AcDbPolyline");
    out.integer(90, int64_t(d.vertices.size()));
    out.integer(70, d.flags);
    out.real(43, d.constantWidth, 0.0);
    out.real(38, d.elevation, 0.0);
    out.real(39, d.thickness, 0.0);
    for (const KcDbPolyline::Vertex& v : d.vertices) {
        out.point(10, KcGePoint2d{ v.x, v.y });
        out.real(40, v.startWidth, 0.0);
        out.real(41, v.endWidth, 0.0);
        out.real(42, v.bulge, 0.0);
    }
    out.point(210, d.normal, d.normal == kZ);
}

void writeOld(const KcDb2dPolyline& object, GroupList& out)
{
    const auto& polyline = object;
    const KcDb2dPolyline::Data& d = polyline.data();
    out.subclass(
        d.flags & 64       ? "AcDbPolyFaceMesh"
            : d.flags & 16 ? "AcDbPolygonMesh"
            : d.flags & 8  ? "AcDb3dPolyline"
                           : "AcDb2dPolyline");
    if (out.isR12())
        out.integer(66, 1);
    out.point(10, KcGePoint3d{ 0, 0, d.elevation });
    out.real(39, d.thickness, 0.0);
    out.integer(70, d.flags, 0);
    out.real(40, d.startWidth, 0.0);
    out.real(41, d.endWidth, 0.0);
    out.integer(71, d.countM, 0);
    out.integer(72, d.countN, 0);
    out.integer(73, d.densityM, 0);
    out.integer(74, d.densityN, 0);
    out.integer(75, d.curveType, 0);
    out.point(210, d.normal, d.normal == kZ);
}

void writeVertex(const KcDbVertex& object, GroupList& out)
{
    const KcDbVertex::Data& d = object.data();
    out.subclass("AcDbVertex");
    out.subclass(
        d.flags & 64       ? "AcDbPolyFaceMeshVertex"
            : d.flags & 32 ? "AcDb3dPolylineVertex"
                           : "AcDb2dVertex");
    out.point(10, d.position);
    out.real(40, d.startWidth, -1.0);
    out.real(41, d.endWidth, -1.0);
    out.real(42, d.bulge, 0.0);
    out.integer(70, d.flags, 0);
    out.angle(50, d.tangent, 0.0);
}

void registerPolylines()
{
    {
        using D = KcDbPolyline::Data;
        registerCodec(std::make_unique<FieldCodec<KcDbPolyline>>(
            "LWPOLYLINE",
            std::vector<Field>{ field(70, &D::flags), field(43, &D::constantWidth), field(38, &D::elevation),
                                field(39, &D::thickness), field(210, &D::normal) },
            readLightPolyline, writeLightPolyline, FieldCodec<KcDbPolyline>::Writes::kInsteadOfTable));
    }
    {
        using D = KcDb2dPolyline::Data;
        registerCodec(std::make_unique<FieldCodec<KcDb2dPolyline>>(
            "POLYLINE",
            std::vector<Field>{ field(30, &D::elevation), field(39, &D::thickness), field(70, &D::flags),
                                field(40, &D::startWidth), field(41, &D::endWidth), field(71, &D::countM),
                                field(72, &D::countN), field(73, &D::densityM), field(74, &D::densityN),
                                field(75, &D::curveType), field(210, &D::normal) },
            [](KcDb2dPolyline&, const Group& group, ReadState&) {
                return group.code == 10 || group.code == 20 || group.code == 66; // always 0, 0, 1
            },
            writeOld, FieldCodec<KcDb2dPolyline>::Writes::kInsteadOfTable));
    }
    {
        using D = KcDbVertex::Data;
        registerCodec(std::make_unique<FieldCodec<KcDbVertex>>(
            "VERTEX",
            std::vector<Field>{ field(10, &D::position), field(40, &D::startWidth), field(41, &D::endWidth),
                                field(42, &D::bulge), field(70, &D::flags), field(50, &D::tangent).angle() },
            FieldCodec<KcDbVertex>::Read(), writeVertex, FieldCodec<KcDbVertex>::Writes::kInsteadOfTable));
    }
    registerCodec(std::make_unique<FieldCodec<KcDbSequenceEnd>>("SEQEND", std::vector<Field>{}));
}

} // namespace

void registerCurveCodecs()
{
    registerCurves();
    registerFilled();
    registerSpline();
    registerPolylines();
}

} // namespace dxf
