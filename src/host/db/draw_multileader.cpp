// How multileaders are drawn: from the context that the entity keeps of its contents and lines.

#include "db/arrow_heads.h"
#include "db/block_reference.h"
#include "db/database.h"
#include "db/draw_raw.h"
#include "db/symbol_table.h"
#include "db/text.h"
#include "ge/spline.h"
#include "gi/sink/world_draw.h"

namespace {

struct Leader {
    bool hasEnd = false, hasLanding = false;
    KcGePoint3d end;
    KcGeVector3d landing;
    double landingLength = 0.0;
    std::vector<std::vector<KcGePoint3d>> lines;
};

struct Multileader {
    KcDbValueList context; ///< groups of the contents, those of leaders left out
    KcDbValueList own; ///< groups behind the context
    std::vector<Leader> leaders;
};

/// Braces cut the groups into the context, leaders in it, and lines in these.
Multileader parsed(const KcDbValueList& groups)
{
    Multileader result;
    enum Place { kBefore, kContext, kLeader, kLine, kBehind } place = kBefore;
    for (const KcDbTypedValue& value : groups) {
        const auto opens = [&](int code, const char* name) {
            return value.code == code && value.text().trimmed() == QLatin1String(name);
        };
        const auto closes = [&](int code) { return value.code == code && value.text().trimmed() == u"}"; };
        const auto* p = std::get_if<KcGePoint3d>(&value.value);
        switch (place) {
        case kBefore:
            if (opens(300, "CONTEXT_DATA{"))
                place = kContext;
            break;
        case kContext:
            if (opens(302, "LEADER{")) {
                result.leaders.emplace_back();
                place = kLeader;
            } else if (closes(301)) {
                place = kBehind;
            } else {
                result.context.push_back(value);
            }
            break;
        case kLeader: {
            Leader& leader = result.leaders.back();
            if (opens(304, "LEADER_LINE{")) {
                leader.lines.emplace_back();
                place = kLine;
            } else if (closes(303)) {
                place = kContext;
            } else if (value.code == 290) {
                leader.hasEnd = value.integer() != 0;
            } else if (value.code == 291) {
                leader.hasLanding = value.integer() != 0;
            } else if (value.code == 10 && p) {
                leader.end = *p;
            } else if (value.code == 11 && p) {
                leader.landing = *p - KcGePoint3d();
            } else if (value.code == 40) {
                leader.landingLength = value.real();
            }
            break;
        }
        case kLine:
            if (closes(305))
                place = kLeader;
            else if (value.code == 10 && p)
                result.leaders.back().lines.back().push_back(*p);
            break;
        case kBehind:
            result.own.push_back(value);
            break;
        }
    }
    return result;
}

/// A colour as these entities pack it: what kind it is in the highest byte.
KcGiColor colorOf(int64_t packed, const KcGiColor& byBlock)
{
    switch ((packed >> 24) & 0xff) {
    case 0xc2:
        return { KcGiColor::kByLayer, int32_t(packed & 0xffffff) };
    case 0xc3:
        return { int(packed & 0xff), -1 };
    case 0xc0:
        return { KcGiColor::kByLayer, -1 };
    default:
        return byBlock;
    }
}

void drawText(KcGiWorldDraw& draw, const KcDbGroupValues& context, const KcGiColor& own, bool isFramed)
{
    constexpr double kBelow = 1.0 / 3.0; // room under the last base line, in heights of the text
    constexpr int kCentred = 2, kRight = 3;
    KcDbMText text;
    KcDbMText::Data& d = text.data();
    d.location = context.point(12);
    d.height = context.real(41, 0.18);
    d.width = context.real(43);
    const int64_t side = context.integer(171, 1);
    d.attachment = side == kCentred ? 2 : side == kRight ? 3 : 1;
    d.style = context.id(340);
    d.normal = context.vector(11, KcGeVector3d::kZAxis);
    d.hasDirection = true;
    d.direction = context.vector(13, { 1, 0, 0 });
    d.lineSpacingFactor = context.real(45, 1.0);
    d.lineSpacingStyle = int(context.integer(170, 1));
    if (context.integer(292) != 0) { // background
        d.fillMode = 2;
        d.fillFactor = context.real(141, 1.5);
    }
    text.setContents(context.text(304));
    text.drawIn(draw, colorOf(context.integer(90), own));
    draw.setColor(own);
    const KcDbMTextLayout set = text.layout();
    if (!isFramed || set.pieces.empty())
        return;
    const double gap = context.real(145), left = set.left - gap, right = set.right + gap,
                 bottom = set.bottom - kBelow * d.height - gap, top = set.top + gap;
    const KcGeMatrix3d toWorld = text.textTransform();
    KcGiPath frame;
    frame.polyline(
        { toWorld * KcGePoint3d{ left, bottom, 0 }, toWorld * KcGePoint3d{ right, bottom, 0 },
          toWorld * KcGePoint3d{ right, top, 0 }, toWorld * KcGePoint3d{ left, top, 0 } },
        true);
    draw.stroke(frame);
}

void drawBlock(KcGiWorldDraw& draw, const KcDbGroupValues& context, const KcDbValueList& groups)
{
    // The transform is given row by row; where it is not, place, scale and angle are.
    std::vector<double> entries;
    for (const KcDbTypedValue& value : groups)
        if (value.code == 47)
            entries.push_back(value.real());
    const KcDbObjectId block = context.id(341);
    const KcDbRead<KcDbBlockTableRecord> record(block);
    if (!record)
        return draw.leftOut(QStringLiteral("a multileader's block that the drawing does not have"));
    KcGeMatrix3d place = KcGeMatrix3d::translation(context.point(15) - KcGePoint3d())
        * KcGeMatrix3d::rotation(context.real(46)) * KcGeMatrix3d::scaling(context.vector(16, { 1, 1, 1 }));
    if (entries.size() == 16)
        place = KcGeMatrix3d::fromAxes(
            { entries[3], entries[7], entries[11] }, { entries[0], entries[4], entries[8] },
            { entries[1], entries[5], entries[9] }, { entries[2], entries[6], entries[10] });
    place = place * KcGeMatrix3d::translation(KcGePoint3d() - record->origin());
    draw.block(block, place);
    // Texts of its attributes stand behind the context, each with its definition.
    KcDbObjectId definition;
    for (const KcDbTypedValue& value : groups) {
        if (value.code == 330)
            definition = value.id();
        if (value.code != 302)
            continue;
        const KcDbRead<KcDbAttributeDefinition> from(definition);
        if (!from || from->isConstant() || from->isInvisible())
            continue;
        KcDbAttribute attribute;
        attribute.setPropertiesFrom(*from);
        static_cast<KcDbText&>(attribute).data() = from->data();
        attribute.setTextString(value.text());
        attribute.transformBy(place);
        draw.entity(attribute);
    }
}

} // namespace

void kcdbDrawMultileader(KcGiWorldDraw& draw, const KcDbRawEntity& entity, const KcDbValueList& groups)
{
    constexpr int kInvisible = 0, kSpline = 2; // kinds of lines
    const Multileader content = parsed(groups);
    const KcDbGroupValues context(content.context), own(content.own);
    const KcGiColor color = draw.entityColor();
    const KcGeVector3d normal = context.vector(11, KcGeVector3d::kZAxis);
    const int kind = int(own.integer(170, 1));
    const bool landings = own.integer(291, 1) != 0;
    const KcDbArrowHead head{ kcdbRecordName(own.id(342)), context.real(140, own.real(42, 0.18)) };
    for (const Leader& leader : content.leaders) {
        if (kind == kInvisible)
            break;
        draw.setColor(colorOf(own.integer(91), color));
        const KcGeVector3d landing = leader.landing * leader.landingLength;
        if (leader.hasEnd && leader.hasLanding && landings && landing.length() > 0.0)
            draw.line(leader.end, leader.end + landing);
        for (std::vector<KcGePoint3d> points : leader.lines) {
            if (leader.hasEnd)
                points.push_back(leader.end);
            points.erase(std::unique(points.begin(), points.end()), points.end());
            if (points.size() < 2)
                continue;
            double covered
                = kcdbDrawArrowHead(draw, entity.database(), head, points[0], points[0] - points[1], normal);
            draw.setContinuous(false);
            KcGiPath path;
            if (const auto spline
                = kind == kSpline ? KcGeNurbsCurve3d::throughPoints(points, {}) : std::nullopt) {
                path.spline(*spline);
            } else {
                const KcGeVector3d first = points[1] - points[0];
                points[0] = points[0] + first.normal() * std::min(covered, first.length());
                path.polyline(points, false);
            }
            draw.stroke(path);
        }
    }
    draw.setColor(color);
    if (context.integer(290) != 0)
        drawText(draw, context, color, own.integer(292) != 0);
    else if (context.integer(296) != 0)
        drawBlock(draw, context, groups);
    else if (content.leaders.empty())
        draw.leftOut(QStringLiteral("a multileader without contents"));
}
