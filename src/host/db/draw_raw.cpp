// Which function draws which kind of the entities that are kept as they are; frames of what lies in other
// files.

#include "db/draw_raw.h"

#include "db/block_table_record.h"
#include "db/database.h"
#include "db/text.h"
#include "db/wipeout.h"
#include "gi/sink/world_draw.h"

namespace {

bool isDimension(const QByteArray& kind)
{
    return kind.endsWith("DIMENSION");
}

bool isUnderlay(const QByteArray& kind)
{
    return kind.endsWith("UNDERLAY");
}

KcDbValueList groupsOf(const KcDbObject& object)
{
    const KcDbDatabase* database = object.database();
    return database && database->file() ? database->file()->values(object) : KcDbValueList();
}

/// The file that a definition refers to, without its folders.
QString fileOf(KcDbObjectId definition)
{
    const KcDbRead<KcDbObject> object(definition);
    if (!object)
        return {};
    const KcDbValueList groups = groupsOf(*object);
    return KcDbGroupValues(groups).text(1).section(u'\\', -1).section(u'/', -1);
}

} // namespace

void KcDbRawEntity::worldDraw(KcGiWorldDraw& draw) const
{
    if (m_data.block.isResident())
        if (const KcDbRead<KcDbBlockTableRecord> block(m_data.block); block && !block->isEmpty())
            return draw.block(m_data.block, KcGeMatrix3d::translation(KcGePoint3d() - block->origin()));
    struct Kind {
        const char* name;
        void (*draw)(KcGiWorldDraw&, const KcDbRawEntity&, const KcDbValueList&);
    };
    static constexpr Kind kKinds[] = {
        { "MULTILEADER", kcdbDrawMultileader }, { "MLEADER", kcdbDrawMultileader },
        { "MLINE", kcdbDrawMultiline },         { "TOLERANCE", kcdbDrawTolerance },
        { "IMAGE", kcdbDrawPicture },           { "OLE2FRAME", kcdbDrawPicture },
    };
    auto* drawer = isDimension(m_fileName) ? kcdbDrawDimension
        : isUnderlay(m_fileName)           ? kcdbDrawPicture
                                           : nullptr;
    for (const Kind& kind : kKinds)
        if (m_fileName == kind.name)
            drawer = kind.draw;
    const KcDbValueList groups = drawer ? groupsOf(*this) : KcDbValueList();
    if (groups.empty())
        return draw.leftOut(QStringLiteral("an entity of the kind %1").arg(QString::fromLatin1(m_fileName)));
    drawer(draw, *this, groups);
}

static void
drawName(KcGiWorldDraw& draw, KcGePoint3d origin, KcGeVector3d right, KcGeVector3d up, const QString& name)
{
    // The name fills at most this share of the frame's width and height.
    constexpr double kShare = 0.8, kTall = 0.1;
    const double width = right.length(), height = up.length();
    if (name.isEmpty() || !(width > 0.0) || !(height > 0.0))
        return;
    const KcGi::TextStyle font;
    const double wide = KcGi::textAdvance(font, name, 1.0);
    if (!(wide > 0.0))
        return;
    const double size = std::min(height * kTall, width * kShare / wide);
    KcGiTextRun run{ name, font, size, {}, right / width, up / height };
    run.origin = origin + right * 0.5 + up * 0.5 - run.along * (wide * size / 2.0) - run.up * (size / 2.0);
    draw.text(run);
}

void kcdbDrawFrame(
    KcGiWorldDraw& draw, KcGePoint3d origin, KcGeVector3d right, KcGeVector3d up, const QString& name)
{
    KcGiPath frame;
    frame.polyline({ origin, origin + right, origin + right + up, origin + up }, true);
    draw.setContinuous(true);
    draw.stroke(frame);
    drawName(draw, origin, right, up, name);
}

void kcdbDrawPicture(KcGiWorldDraw& draw, const KcDbRawEntity& entity, const KcDbValueList& groups)
{
    const KcDbGroupValues g(groups);
    QString name = fileOf(g.id(340));
    if (entity.fileName() == "OLE2FRAME") {
        const KcGePoint3d upperLeft = g.point(10), lowerRight = g.point(11);
        kcdbDrawFrame(
            draw, { upperLeft.x, lowerRight.y, upperLeft.z }, { lowerRight.x - upperLeft.x, 0, 0 },
            { 0, upperLeft.y - lowerRight.y, 0 }, QStringLiteral("OLE"));
        return draw.leftOut(QStringLiteral("an embedded document, shown by its frame"));
    }
    if (isUnderlay(entity.fileName())) {
        KcGeExtents2d clip; // in the underlay's own units
        for (const KcDbTypedValue& value : groups)
            if (const auto* p = std::get_if<KcGePoint3d>(&value.value); p && value.code == 11)
                clip.addPoint({ p->x, p->y });
        draw.leftOut(QStringLiteral("an underlay (%1), shown by its frame").arg(name));
        if (clip.isEmpty())
            return;
        const KcGeMatrix3d place = KcGeMatrix3d::planeToWorld(g.vector(210, KcGeVector3d::kZAxis))
            * KcGeMatrix3d::translation(g.point(10) - KcGePoint3d())
            * KcGeMatrix3d::rotation(g.real(50) * kPi / 180.0)
            * KcGeMatrix3d::scaling({ g.real(41, 1.0), g.real(42, 1.0), g.real(43, 1.0) });
        return kcdbDrawFrame(
            draw, place * KcGePoint3d{ clip.min.x, clip.min.y, 0 },
            place * KcGeVector3d{ clip.max.x - clip.min.x, 0, 0 },
            place * KcGeVector3d{ 0, clip.max.y - clip.min.y, 0 }, name);
    }
    // Pictures are cut like wipeouts, which are pictures without a content.
    KcDbWipeout cut;
    KcDbWipeout::Data& data = cut.data();
    const KcGePoint3d pixels = g.point(13);
    data.origin = g.point(10);
    data.uVector = g.vector(11, { 1, 0, 0 });
    data.vVector = g.vector(12, { 0, 1, 0 });
    data.imageSize = { pixels.x, pixels.y };
    data.clipping = int(g.integer(280));
    data.clipType = int(g.integer(71, 1));
    for (const KcDbTypedValue& value : groups)
        if (const auto* p = std::get_if<KcGePoint3d>(&value.value); p && value.code == 14)
            data.clip.push_back({ p->x, p->y });
    const std::vector<KcGePoint3d> outline = cut.outline();
    KcGiPath frame;
    frame.polyline(outline, true);
    draw.setContinuous(true);
    draw.stroke(frame);
    // The name stands in the middle of what is shown, along the picture's rows.
    const KcGeVector3d u = data.uVector.normal(), v = data.vVector.normal();
    KcGeExtents2d box;
    for (const KcGePoint3d corner : outline)
        box.addPoint({ (corner - data.origin).dotProduct(u), (corner - data.origin).dotProduct(v) });
    drawName(
        draw, data.origin + u * box.min.x + v * box.min.y, u * (box.max.x - box.min.x),
        v * (box.max.y - box.min.y), name);
    draw.leftOut(QStringLiteral("a picture (%1), shown by its frame").arg(name));
}
