// Codecs of block references and marks, leaders, viewports and wipeouts.

#include "db/block_reference.h"
#include "db/leader.h"
#include "db/viewport.h"
#include "db/wipeout.h"
#include "dxf/codec_tools.h"

namespace dxf {

namespace {

// Block references.

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

void writeBlock(const KcDbBlockBegin& object, GroupList& out)
{
    const KcDbBlockBegin::Data& d = object.data();
    out.subclass("AcDbBlockBegin");
    out.text(2, d.name);
    out.integer(70, d.flags);
    out.point(10, d.origin);
    out.text(3, d.name);
    out.text(1, d.xrefPath);
    out.text(4, d.description, {});
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
    registerCodec(std::make_unique<FieldCodec<KcDbBlockBegin>>(
        "BLOCK",
        std::vector<Field>{ field(2, &B::name), field(70, &B::flags), field(10, &B::origin),
                            field(1, &B::xrefPath), field(4, &B::description) },
        [](KcDbBlockBegin&, const Group& group, ReadState&) { return group.code == 3; }, writeBlock,
        FieldCodec<KcDbBlockBegin>::Writes::kInsteadOfTable));
    registerCodec(
        std::make_unique<FieldCodec<KcDbBlockEnd>>("ENDBLK", std::vector<Field>{ subclass("AcDbBlockEnd") }));
}

// Leaders, viewports, wipeouts.

void writeLeader(const KcDbLeader& object, GroupList& out)
{
    const KcDbLeader::Data& d = object.data();
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

void registerLeader()
{
    using D = KcDbLeader::Data;
    registerCodec(std::make_unique<FieldCodec<KcDbLeader>>(
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
        },
        writeLeader, FieldCodec<KcDbLeader>::Writes::kInsteadOfTable));
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

void writeWipeout(const KcDbWipeout& object, GroupList& out)
{
    const KcDbWipeout::Data& d = object.data();
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

void registerWipeout()
{
    using D = KcDbWipeout::Data;
    registerCodec(std::make_unique<FieldCodec<KcDbWipeout>>(
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
        },
        writeWipeout, FieldCodec<KcDbWipeout>::Writes::kInsteadOfTable));
}

} // namespace

void registerReferenceCodecs()
{
    registerInsert();
    registerLeader();
    registerViewport();
    registerWipeout();
}

} // namespace dxf
