// Codecs of the entities with real classes, hatches apart.

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/leader.h"
#include "db/polyline.h"
#include "db/text.h"
#include "db/viewport.h"
#include "dxf/codec.h"

namespace dxf {

namespace {

constexpr KcGeVector3d kZ = KcGeVector3d::kZAxis;

template <class T, class... Args> void add(const char* name, Args&&... args)
{
    registerCodec(std::make_unique<FieldCodec<T>>(name, std::forward<Args>(args)...));
}

/// y or z of the point whose x was read last.
bool setComponent(KcGePoint3d& point, int component, const Group& group)
{
    (component == 1 ? point.y : point.z) = group.real();
    return true;
}

// Simple curves
// ----------------------------------------------------------------------------------------------------------

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

void registerFilled()
{
    const auto writeSolid = [](const KcDbSolid& solid, GroupList& out) {
        out.subclass("AcDbTrace");
        writeCorners(solid, out);
        out.real(39, solid.data().thickness, 0.0);
        out.point(210, solid.data().normal, solid.data().normal == kZ);
    };
    using D = KcDbSolid::Data;
    const std::vector<Field> fields{ field(39, &D::thickness), field(210, &D::normal) };
    // The table only reads: the corners stand before the other fields.
    class SolidCodec : public Codec {
    public:
        SolidCodec(
            const char* name, const KcRxClass* type, bool trace, FieldTable table,
            std::function<void(const KcDbSolid&, GroupList&)> write)
            : Codec(name, type)
            , m_trace(trace)
            , m_table(std::move(table))
            , m_write(std::move(write))
        {
        }
        std::unique_ptr<KcDbObject> create() const override
        {
            if (m_trace)
                return std::make_unique<KcDbTrace>();
            return std::make_unique<KcDbSolid>();
        }
        bool read(KcDbObject& object, const Group& group, ReadState& state) const override
        {
            auto& solid = static_cast<KcDbSolid&>(object);
            std::byte* const parts[1] = { reinterpret_cast<std::byte*>(&solid.data()) };
            return readCorners(solid, group, state) || m_table.read(parts, group, state.context);
        }
        void write(const KcDbObject& object, GroupList& out) const override
        {
            m_write(static_cast<const KcDbSolid&>(object), out);
        }

    private:
        bool m_trace;
        FieldTable m_table;
        std::function<void(const KcDbSolid&, GroupList&)> m_write;
    };
    registerCodec(
        std::make_unique<SolidCodec>("SOLID", KcDbSolid::desc(), false, FieldTable(fields), writeSolid));
    registerCodec(
        std::make_unique<SolidCodec>("TRACE", KcDbTrace::desc(), true, FieldTable(fields), writeSolid));

    using F = KcDbFace::Data;
    add<KcDbFace>(
        "3DFACE", std::vector<Field>{ subclass("AcDbFace"), field(70, &F::hiddenEdges).unless(0.0) },
        [](KcDbFace& face, const Group& group, ReadState& state) { return readCorners(face, group, state); },
        [](const KcDbFace& face, GroupList& out) { writeCorners(face, out); });
}

// Splines
// ----------------------------------------------------------------------------------------------------------------

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
    class SplineCodec : public FieldCodec<KcDbSpline> {
    public:
        using FieldCodec::FieldCodec;
        void write(const KcDbObject& object, GroupList& out) const override
        {
            writeSpline(static_cast<const KcDbSpline&>(object), out);
        }
    };
    registerCodec(std::make_unique<SplineCodec>(
        "SPLINE",
        std::vector<Field>{ field(210, &D::normal), field(70, &D::flags), field(71, &D::degree),
                            field(42, &D::knotTolerance), field(43, &D::controlTolerance),
                            field(44, &D::fitTolerance) },
        readSpline));
}

// Polylines
// --------------------------------------------------------------------------------------------------------------

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

void registerPolylines()
{
    {
        using D = KcDbPolyline::Data;
        class LightCodec : public FieldCodec<KcDbPolyline> {
        public:
            using FieldCodec::FieldCodec;
            void write(const KcDbObject& object, GroupList& out) const override
            {
                writeLightPolyline(static_cast<const KcDbPolyline&>(object), out);
            }
        };
        registerCodec(std::make_unique<LightCodec>(
            "LWPOLYLINE",
            std::vector<Field>{ field(70, &D::flags), field(43, &D::constantWidth), field(38, &D::elevation),
                                field(39, &D::thickness), field(210, &D::normal) },
            readLightPolyline));
    }
    {
        using D = KcDb2dPolyline::Data;
        class OldCodec : public FieldCodec<KcDb2dPolyline> {
        public:
            using FieldCodec::FieldCodec;
            void write(const KcDbObject& object, GroupList& out) const override
            {
                const auto& polyline = static_cast<const KcDb2dPolyline&>(object);
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
        };
        registerCodec(std::make_unique<OldCodec>(
            "POLYLINE",
            std::vector<Field>{ field(30, &D::elevation), field(39, &D::thickness), field(70, &D::flags),
                                field(40, &D::startWidth), field(41, &D::endWidth), field(71, &D::countM),
                                field(72, &D::countN), field(73, &D::densityM), field(74, &D::densityN),
                                field(75, &D::curveType), field(210, &D::normal) },
            [](KcDb2dPolyline&, const Group& group, ReadState&) {
                return group.code == 10 || group.code == 20 || group.code == 66; // always 0, 0, 1
            }));
    }
    {
        using D = KcDbVertex::Data;
        class VertexCodec : public FieldCodec<KcDbVertex> {
        public:
            using FieldCodec::FieldCodec;
            void write(const KcDbObject& object, GroupList& out) const override
            {
                const KcDbVertex::Data& d = static_cast<const KcDbVertex&>(object).data();
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
        };
        registerCodec(std::make_unique<VertexCodec>(
            "VERTEX",
            std::vector<Field>{ field(10, &D::position), field(40, &D::startWidth), field(41, &D::endWidth),
                                field(42, &D::bulge), field(70, &D::flags),
                                field(50, &D::tangent).angle() }));
    }
    registerCodec(std::make_unique<FieldCodec<KcDbSequenceEnd>>("SEQEND", std::vector<Field>{}));
}

// Texts
// ------------------------------------------------------------------------------------------------------------------

// The fields that texts, attributes and attribute definitions share, in the order in which programs write
// them.
std::vector<Field> textFields()
{
    using D = KcDbTextData;
    return { subclass("AcDbText"),
             field(39, &D::thickness).unless(0.0),
             field(10, &D::position),
             field(40, &D::height),
             field(1, &D::text),
             field(50, &D::rotation).angle().unless(0.0),
             field(41, &D::widthFactor).unless(1.0),
             field(51, &D::oblique).angle().unless(0.0),
             field(7, &D::style).name(NameOf::TextStyle).unlessText("Standard"),
             field(71, &D::generation).unless(0.0),
             field(72, &D::horizontal).unless(0.0) };
}

// The vertical justification stands behind another class mark, under a code that depends on the kind.
template <class T> bool readAlignment(T& text, const Group& group)
{
    KcGePoint3d& p = text.data().alignment;
    switch (group.code) {
    case 11:
        p.x = group.real();
        return true;
    case 21:
        p.y = group.real();
        return true;
    case 31:
        p.z = group.real();
        return true;
    default:
        return false;
    }
}

void writeAlignment(const KcDbTextData& d, GroupList& out)
{
    const bool isDefault = d.horizontal == 0 && d.vertical == 0 && d.alignment == KcGePoint3d{};
    out.point(11, d.alignment, isDefault);
    out.point(210, d.normal, d.normal == kZ);
}

template <class T> bool readOwn(T& attribute, const Group& group, ReadState& state)
{
    auto& own = attribute.attribute();
    switch (group.code) {
    case 2:
        own.tag = state.context.text(group);
        return true;
    case 70:
        own.flags = int(group.integer());
        return true;
    case 73:
        own.fieldLength = int(group.integer());
        return true;
    case 74:
        attribute.data().vertical = int(group.integer());
        return true;
    case 3:
        if constexpr (requires { own.prompt; }) {
            own.prompt = state.context.text(group);
            return true;
        }
        return false;
    default:
        return false;
    }
}
template <class Own> void writeOwn(const Own& own, GroupList& out)
{
    out.text(2, own.tag);
    out.integer(70, own.flags);
    out.integer(73, own.fieldLength, 0);
}

void registerTexts()
{
    using D = KcDbTextData;
    const std::vector<Field> text = textFields();
    std::vector<Field> readText = text;
    readText.push_back(field(73, &D::vertical));
    readText.push_back(field(210, &D::normal));

    class TextCodec : public Codec {
    public:
        TextCodec()
            : Codec("TEXT", KcDbText::desc())
            , m_write(textFields())
            , m_read([] {
                std::vector<Field> fields = textFields();
                fields.push_back(field(73, &D::vertical));
                fields.push_back(field(210, &D::normal));
                return fields;
            }())
        {
        }
        std::unique_ptr<KcDbObject> create() const override { return std::make_unique<KcDbText>(); }
        bool read(KcDbObject& object, const Group& group, ReadState& state) const override
        {
            auto& text = static_cast<KcDbText&>(object);
            std::byte* const parts[1] = { reinterpret_cast<std::byte*>(&text.data()) };
            return readAlignment(text, group) || m_read.read(parts, group, state.context);
        }
        void write(const KcDbObject& object, GroupList& out) const override
        {
            const auto& text = static_cast<const KcDbText&>(object);
            const std::byte* const parts[1] = { reinterpret_cast<const std::byte*>(&text.data()) };
            m_write.write(parts, out);
            writeAlignment(text.data(), out);
            out.subclass("AcDbText");
            out.integer(73, text.data().vertical, 0);
        }

    private:
        FieldTable m_write, m_read;
    };
    registerCodec(std::make_unique<TextCodec>());

    // Attributes and their definitions: a text, then the attribute's own groups.
    class AttributeCodec : public Codec {
    public:
        explicit AttributeCodec(bool definition)
            : Codec(
                definition ? "ATTDEF" : "ATTRIB",
                definition ? KcDbAttributeDefinition::desc() : KcDbAttribute::desc())
            , m_definition(definition)
            , m_text([] {
                std::vector<Field> fields = textFields();
                fields.push_back(field(210, &D::normal));
                return fields;
            }())
            , m_write(textFields())
        {
        }
        std::unique_ptr<KcDbObject> create() const override
        {
            if (m_definition)
                return std::make_unique<KcDbAttributeDefinition>();
            return std::make_unique<KcDbAttribute>();
        }
        bool read(KcDbObject& object, const Group& group, ReadState& state) const override
        {
            // A multiline attribute holds a whole multiline text behind its own groups: that stays as it is.
            if (state.subclass != "" && state.subclass != "AcDbText" && state.subclass != "AcDbAttribute"
                && state.subclass != "AcDbAttributeDefinition")
                return false;
            auto& text = static_cast<KcDbText&>(object);
            if (m_definition ? readOwn(static_cast<KcDbAttributeDefinition&>(object), group, state)
                             : readOwn(static_cast<KcDbAttribute&>(object), group, state))
                return true;
            std::byte* const parts[1] = { reinterpret_cast<std::byte*>(&text.data()) };
            return readAlignment(text, group) || m_text.read(parts, group, state.context);
        }
        void write(const KcDbObject& object, GroupList& out) const override
        {
            const auto& text = static_cast<const KcDbText&>(object);
            const std::byte* const parts[1] = { reinterpret_cast<const std::byte*>(&text.data()) };
            m_write.write(parts, out);
            writeAlignment(text.data(), out);
            if (m_definition) {
                const auto& own = static_cast<const KcDbAttributeDefinition&>(object).attribute();
                out.subclass("AcDbAttributeDefinition");
                out.text(3, own.prompt);
                writeOwn(own, out);
            } else {
                out.subclass("AcDbAttribute");
                writeOwn(static_cast<const KcDbAttribute&>(object).attribute(), out);
            }
            out.integer(74, text.data().vertical, 0);
        }

    private:
        bool m_definition;
        FieldTable m_text, m_write;
    };
    registerCodec(std::make_unique<AttributeCodec>(true));
    registerCodec(std::make_unique<AttributeCodec>(false));
}

bool readMText(KcDbMText& text, const Group& group, ReadState& state)
{
    KcDbMText::Data& d = text.data();
    switch (group.code) {
    case 3:
    case 1:
        d.contents += state.context.text(group);
        return true;
    case 11:
        d.hasDirection = true;
        d.direction.x = group.real();
        return true;
    case 21:
        d.direction.y = group.real();
        return true;
    case 31:
        d.direction.z = group.real();
        return true;
    case 50:
        // Of direction and rotation the later one holds.
        d.hasDirection = false;
        d.rotation = group.real() * (kPi / 180.0);
        return true;
    default:
        return false;
    }
}

void writeMText(const KcDbMText& text, GroupList& out)
{
    const KcDbMText::Data& d = text.data();
    out.subclass("AcDbMText");
    out.point(10, d.location);
    out.real(40, d.height);
    out.real(41, d.width);
    out.real(46, d.definedHeight, 0.0);
    out.integer(71, d.attachment);
    out.integer(72, d.flow);
    // Long contents are cut into pieces, none of them between the halves of a surrogate pair.
    constexpr qsizetype kPiece = 250;
    qsizetype at = 0;
    while (d.contents.size() - at > kPiece) {
        qsizetype length = kPiece;
        if (d.contents[at + length - 1].isHighSurrogate())
            --length;
        out.text(3, d.contents.mid(at, length));
        at += length;
    }
    out.text(1, d.contents.mid(at));
    const QString style = d.style.isNull() ? QStringLiteral("Standard") : kcdbRecordName(d.style);
    out.name(7, style, style.compare(QLatin1String("Standard"), Qt::CaseInsensitive) == 0);
    out.point(210, d.normal, d.normal == kZ);
    if (d.hasDirection)
        out.point(11, d.direction);
    out.real(42, d.actualWidth, 0.0);
    out.real(43, d.actualHeight, 0.0);
    if (!d.hasDirection)
        out.angle(50, d.rotation, 0.0);
    out.integer(73, d.lineSpacingStyle);
    out.real(44, d.lineSpacingFactor);
    if (out.version() >= KcDbVersion::V2004) {
        out.integer(90, d.fillMode, 0);
        if (d.fillMode != 0) {
            out.integer(63, d.fillColor);
            out.real(45, d.fillFactor);
        }
    }
}

void registerMText()
{
    using D = KcDbMText::Data;
    class MTextCodec : public FieldCodec<KcDbMText> {
    public:
        using FieldCodec::FieldCodec;
        bool read(KcDbObject& object, const Group& group, ReadState& state) const override
        {
            // Columns and other later classes stand in data behind marks of their own.
            return (state.subclass == "" || state.subclass == "AcDbMText")
                && FieldCodec::read(object, group, state);
        }
        void write(const KcDbObject& object, GroupList& out) const override
        {
            writeMText(static_cast<const KcDbMText&>(object), out);
        }
    };
    registerCodec(std::make_unique<MTextCodec>(
        "MTEXT",
        std::vector<Field>{ field(10, &D::location), field(40, &D::height), field(41, &D::width),
                            field(46, &D::definedHeight), field(71, &D::attachment), field(72, &D::flow),
                            field(7, &D::style).name(NameOf::TextStyle), field(210, &D::normal),
                            field(42, &D::actualWidth), field(43, &D::actualHeight),
                            field(73, &D::lineSpacingStyle), field(44, &D::lineSpacingFactor),
                            field(90, &D::fillMode), field(63, &D::fillColor), field(45, &D::fillFactor) },
        readMText));
}

// Block references
// -------------------------------------------------------------------------------------------------------

bool readInsert(KcDbBlockReference& reference, const Group& group, ReadState&)
{
    const auto array = [&]() -> KcDbBlockReference::Array& {
        std::unique_ptr<KcDbBlockReference::Array>& a = reference.data().array;
        if (!a)
            a = std::make_unique<KcDbBlockReference::Array>();
        return *a;
    };
    switch (group.code) {
    case 66:
        return true; // the attributes that follow tell
    case 70:
        array().columns = int(group.integer());
        return true;
    case 71:
        array().rows = int(group.integer());
        return true;
    case 44:
        array().columnSpacing = group.real();
        return true;
    case 45:
        array().rowSpacing = group.real();
        return true;
    default:
        return false;
    }
}

void writeInsert(const KcDbBlockReference& reference, GroupList& out)
{
    const KcDbBlockReference::Data& d = reference.data();
    const bool arrayed = d.array && (d.array->columns > 1 || d.array->rows > 1);
    out.subclass(arrayed ? "AcDbMInsertBlock" : "AcDbBlockReference");
    const bool hasAttributes = !reference.attributes().empty();
    out.integer(66, hasAttributes, 0);
    out.name(2, kcdbRecordName(d.block));
    out.point(10, d.position);
    out.real(41, d.scale.x, 1.0);
    out.real(42, d.scale.y, 1.0);
    out.real(43, d.scale.z, 1.0);
    out.angle(50, d.rotation, 0.0);
    const KcDbBlockReference::Array none;
    const KcDbBlockReference::Array& a = d.array ? *d.array : none;
    out.integer(70, a.columns, 1);
    out.integer(71, a.rows, 1);
    out.real(44, a.columnSpacing, 0.0);
    out.real(45, a.rowSpacing, 0.0);
    out.point(210, d.normal, d.normal == kZ);
}

void registerInsert()
{
    using D = KcDbBlockReference::Data;
    class InsertCodec : public Codec {
    public:
        InsertCodec()
            : Codec("INSERT", KcDbBlockReference::desc())
            , m_table({ field(2, &D::block).name(NameOf::Block), field(10, &D::position),
                        field(50, &D::rotation).angle(), field(210, &D::normal) })
        {
        }
        std::unique_ptr<KcDbObject> create() const override { return std::make_unique<KcDbBlockReference>(); }
        bool read(KcDbObject& object, const Group& group, ReadState& state) const override
        {
            auto& reference = static_cast<KcDbBlockReference&>(object);
            switch (group.code) {
            case 41:
                reference.data().scale.x = group.real();
                return true;
            case 42:
                reference.data().scale.y = group.real();
                return true;
            case 43:
                reference.data().scale.z = group.real();
                return true;
            default:
                break;
            }
            std::byte* const parts[1] = { reinterpret_cast<std::byte*>(&reference.data()) };
            return m_table.read(parts, group, state.context) || readInsert(reference, group, state);
        }
        void write(const KcDbObject& object, GroupList& out) const override
        {
            writeInsert(static_cast<const KcDbBlockReference&>(object), out);
        }

    private:
        FieldTable m_table;
    };
    registerCodec(std::make_unique<InsertCodec>());

    using B = KcDbBlockBegin::Data;
    class BlockCodec : public FieldCodec<KcDbBlockBegin> {
    public:
        using FieldCodec::FieldCodec;
        void write(const KcDbObject& object, GroupList& out) const override
        {
            const KcDbBlockBegin::Data& d = static_cast<const KcDbBlockBegin&>(object).data();
            out.subclass("AcDbBlockBegin");
            out.text(2, d.name);
            out.integer(70, d.flags);
            out.point(10, d.origin);
            out.text(3, d.name);
            out.text(1, d.xrefPath);
            out.text(4, d.description, {});
        }
    };
    registerCodec(std::make_unique<BlockCodec>(
        "BLOCK",
        std::vector<Field>{ field(2, &B::name), field(70, &B::flags), field(10, &B::origin),
                            field(1, &B::xrefPath), field(4, &B::description) },
        [](KcDbBlockBegin&, const Group& group, ReadState&) { return group.code == 3; }));
    registerCodec(
        std::make_unique<FieldCodec<KcDbBlockEnd>>("ENDBLK", std::vector<Field>{ subclass("AcDbBlockEnd") }));
}

// Leaders, viewports, wipeouts
// -------------------------------------------------------------------------------------------

void registerLeader()
{
    using D = KcDbLeader::Data;
    class LeaderCodec : public FieldCodec<KcDbLeader> {
    public:
        using FieldCodec::FieldCodec;
        void write(const KcDbObject& object, GroupList& out) const override
        {
            const KcDbLeader::Data& d = static_cast<const KcDbLeader&>(object).data();
            out.subclass("AcDbLeader");
            out.name(3, d.dimStyle.isNull() ? QStringLiteral("Standard") : kcdbRecordName(d.dimStyle));
            out.integer(71, d.hasArrowHead);
            out.integer(72, d.isSplined);
            out.integer(73, d.annotationType);
            out.integer(74, d.hookLineDirection);
            out.integer(75, d.hasHookLine);
            out.real(40, d.textHeight);
            out.real(41, d.textWidth);
            out.integer(76, int64_t(d.vertices.size()));
            for (const KcGePoint3d& p : d.vertices)
                out.point(10, p);
            out.integer(77, d.color, 256);
            out.handle(340, d.annotation, d.annotation.isNull());
            out.point(210, d.normal, d.normal == kZ);
            out.point(211, d.horizontal);
            out.point(212, d.blockOffset);
            out.point(213, d.annotationOffset);
        }
    };
    registerCodec(std::make_unique<LeaderCodec>(
        "LEADER",
        std::vector<Field>{ field(3, &D::dimStyle).name(NameOf::DimStyle), field(71, &D::hasArrowHead),
                            field(72, &D::isSplined), field(73, &D::annotationType),
                            field(74, &D::hookLineDirection), field(75, &D::hasHookLine),
                            field(40, &D::textHeight), field(41, &D::textWidth), field(77, &D::color),
                            field(340, &D::annotation), field(210, &D::normal), field(211, &D::horizontal),
                            field(212, &D::blockOffset), field(213, &D::annotationOffset) },
        [](KcDbLeader& leader, const Group& group, ReadState&) {
            std::vector<KcGePoint3d>& vertices = leader.data().vertices;
            if (group.code == 76)
                return true;
            if (group.code == 10) {
                vertices.push_back({ group.real(), 0, 0 });
                return true;
            }
            return (group.code == 20 || group.code == 30) && !vertices.empty()
                && setComponent(vertices.back(), group.code / 10 - 1, group);
        }));
}

void registerViewport()
{
    using D = KcDbViewport::Data;
    add<KcDbViewport>(
        "VIEWPORT",
        std::vector<Field>{ subclass("AcDbViewport"), field(10, &D::center), field(40, &D::width),
                            field(41, &D::height), field(68, &D::status), field(69, &D::number),
                            field(12, &D::viewCenter), field(16, &D::viewDirection),
                            field(17, &D::viewTarget), field(45, &D::viewHeight),
                            field(51, &D::viewTwist).angle(), field(90, &D::viewFlags) });
}

void registerWipeout()
{
    using D = KcDbWipeout::Data;
    class WipeoutCodec : public FieldCodec<KcDbWipeout> {
    public:
        using FieldCodec::FieldCodec;
        void write(const KcDbObject& object, GroupList& out) const override
        {
            const KcDbWipeout::Data& d = static_cast<const KcDbWipeout&>(object).data();
            out.subclass("AcDbWipeout");
            out.integer(90, d.classVersion);
            out.point(10, d.origin);
            out.point(11, d.uVector);
            out.point(12, d.vVector);
            out.point(13, d.imageSize);
            out.handle(340, d.imageDefinition);
            out.integer(70, d.displayFlags);
            out.integer(280, d.clipping);
            out.integer(281, d.brightness);
            out.integer(282, d.contrast);
            out.integer(283, d.fade);
            out.handle(360, d.imageReactor, d.imageReactor.isNull());
            out.integer(71, d.clipType);
            out.integer(91, int64_t(d.clip.size()));
            for (const KcGePoint2d& p : d.clip)
                out.point(14, p);
        }
    };
    registerCodec(std::make_unique<WipeoutCodec>(
        "WIPEOUT",
        std::vector<Field>{ field(90, &D::classVersion), field(10, &D::origin), field(11, &D::uVector),
                            field(12, &D::vVector), field(13, &D::imageSize), field(340, &D::imageDefinition),
                            field(70, &D::displayFlags), field(280, &D::clipping), field(281, &D::brightness),
                            field(282, &D::contrast), field(283, &D::fade), field(360, &D::imageReactor),
                            field(71, &D::clipType) },
        [](KcDbWipeout& wipeout, const Group& group, ReadState&) {
            std::vector<KcGePoint2d>& clip = wipeout.data().clip;
            switch (group.code) {
            case 91:
                return true;
            case 14:
                clip.push_back({ group.real(), 0 });
                return true;
            case 24:
                if (!clip.empty())
                    clip.back().y = group.real();
                return !clip.empty();
            default:
                return false;
            }
        }));
}

} // namespace

void registerEntityCodecs()
{
    registerCurves();
    registerFilled();
    registerSpline();
    registerPolylines();
    registerTexts();
    registerMText();
    registerInsert();
    registerLeader();
    registerViewport();
    registerWipeout();
}

} // namespace dxf
