// Codecs of symbol table records. The name and the flags of every record are read and written by the frame.

#include "db/block_table_record.h"
#include "db/tables.h"
#include "dxf/codec.h"

namespace dxf {

namespace {

void registerLayer()
{
    using D = KcDbLayerTableRecord::Data;
    registerCodec(std::make_unique<FieldCodec<KcDbLayerTableRecord>>(
        "LAYER",
        std::vector<Field>{ field(6, &D::linetype).name(NameOf::Linetype),
                            field(290, &D::plottable).unless(1.0).sinceVersion(KcDbVersion::V2000),
                            field(370, &D::lineWeight).unless(-3.0).sinceVersion(KcDbVersion::V2000) },
        [](KcDbLayerTableRecord& layer, const Group& group, ReadState&) {
            // A layer that is off carries its colour with a minus sign.
            if (group.code == 62) {
                const int64_t index = group.integer();
                layer.data().off = index < 0;
                layer.data().color.index = int16_t(std::abs(index));
                return true;
            }
            if (group.code == 420) {
                layer.data().color.rgb = int32_t(group.integer());
                return true;
            }
            return false;
        },
        [](const KcDbLayerTableRecord& layer, GroupList& out) {
            const KcDbLayerTableRecord::Data& d = layer.data();
            out.integer(62, d.off ? -d.color.index : d.color.index);
            if (d.color.rgb >= 0 && out.version() >= KcDbVersion::V2004)
                out.integer(420, d.color.rgb);
        }));
}

bool readLinetype(KcDbLinetypeTableRecord& type, const Group& group, ReadState& state)
{
    std::vector<KcDbLinetypeTableRecord::Dash>& dashes = type.data().dashes;
    if (group.code == 49) {
        dashes.push_back({ group.real() });
        return true;
    }
    if (group.code == 72 || group.code == 73)
        return true; // always 65; the number of dashes
    if (dashes.empty())
        return false;
    KcDbLinetypeTableRecord::Dash& dash = dashes.back();
    switch (group.code) {
    case 74:
        dash.flags = int(group.integer());
        return true;
    case 75:
        dash.shapeNumber = int(group.integer());
        return true;
    case 340:
        dash.style = state.context.handle(group);
        return true;
    case 46:
        dash.scale = group.real();
        return true;
    case 50:
        dash.rotation = group.real() * (kPi / 180.0);
        return true;
    case 44:
        dash.offsetX = group.real();
        return true;
    case 45:
        dash.offsetY = group.real();
        return true;
    case 9:
        dash.text = state.context.text(group);
        return true;
    default:
        return false;
    }
}

void writeLinetype(const KcDbLinetypeTableRecord& type, GroupList& out)
{
    const KcDbLinetypeTableRecord::Data& d = type.data();
    out.integer(72, 65);
    out.integer(73, int64_t(d.dashes.size()));
    out.real(40, d.patternLength);
    for (const KcDbLinetypeTableRecord::Dash& dash : d.dashes) {
        out.real(49, dash.length);
        if (out.isR12())
            continue;
        out.integer(74, dash.flags);
        if (dash.flags == 0)
            continue;
        out.integer(75, dash.shapeNumber);
        out.handle(340, dash.style);
        out.real(46, dash.scale);
        out.angle(50, dash.rotation);
        out.real(44, dash.offsetX);
        out.real(45, dash.offsetY);
        if (dash.flags & 2)
            out.text(9, dash.text);
    }
}

void registerOthers()
{
    {
        using D = KcDbLinetypeTableRecord::Data;
        registerCodec(std::make_unique<FieldCodec<KcDbLinetypeTableRecord>>(
            "LTYPE", std::vector<Field>{ field(3, &D::description) },
            [](KcDbLinetypeTableRecord& type, const Group& group, ReadState& state) {
                if (group.code == 40) {
                    type.data().patternLength = group.real();
                    return true;
                }
                return readLinetype(type, group, state);
            },
            writeLinetype));
    }
    {
        using D = KcDbTextStyleTableRecord::Data;
        registerCodec(std::make_unique<FieldCodec<KcDbTextStyleTableRecord>>(
            "STYLE",
            std::vector<Field>{ field(40, &D::fixedHeight), field(41, &D::widthFactor),
                                field(50, &D::obliqueAngle).angle(), field(71, &D::generation),
                                field(42, &D::lastHeight), field(3, &D::font), field(4, &D::bigFont) }));
    }
    {
        using D = KcDbDimStyleTableRecord::Data;
        registerCodec(std::make_unique<FieldCodec<KcDbDimStyleTableRecord>>(
            "DIMSTYLE",
            std::vector<Field>{ field(40, &D::overallScale).unless(1.0),
                                field(41, &D::arrowSize).unless(0.18),
                                field(140, &D::textHeight).unless(0.18), field(147, &D::gap).unless(0.09),
                                field(340, &D::textStyle).unless(0.0).sinceVersion(KcDbVersion::R13) }));
    }
    registerCodec(std::make_unique<FieldCodec<KcDbRegAppTableRecord>>("APPID", std::vector<Field>{}));
    {
        using D = KcDbUCSTableRecord::Data;
        registerCodec(std::make_unique<FieldCodec<KcDbUCSTableRecord>>(
            "UCS", std::vector<Field>{ field(10, &D::origin), field(11, &D::xAxis), field(12, &D::yAxis) }));
    }
    registerCodec(std::make_unique<FieldCodec<KcDbViewTableRecord>>("VIEW", std::vector<Field>{}));
    {
        using D = KcDbViewportTableRecord::Data;
        registerCodec(std::make_unique<FieldCodec<KcDbViewportTableRecord>>(
            "VPORT",
            std::vector<Field>{ field(12, &D::viewCenter), field(40, &D::viewHeight),
                                field(41, &D::aspectRatio) },
            FieldCodec<KcDbViewportTableRecord>::Read(), [](const KcDbViewportTableRecord&, GroupList& out) {
                // The rest of a plain view from above; groups of a file that was read stay as they are.
                out.point(10, KcGePoint2d{ 0, 0 }, true);
                out.point(11, KcGePoint2d{ 1, 1 }, true);
            }));
    }
    {
        using D = KcDbBlockTableRecord::Data;
        registerCodec(std::make_unique<FieldCodec<KcDbBlockTableRecord>>(
            "BLOCK_RECORD",
            std::vector<Field>{
                field(340, &D::layout), field(70, &D::insertUnits).sinceVersion(KcDbVersion::V2007),
                field(280, &D::explodable).unless(1.0).sinceVersion(KcDbVersion::V2007),
                field(281, &D::scaleUniformly).unless(0.0).sinceVersion(KcDbVersion::V2007) }));
    }
}

} // namespace

void registerTableRecordCodecs()
{
    registerLayer();
    registerOthers();
}

} // namespace dxf
