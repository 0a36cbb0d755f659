// Filling and masking: each command a short procedure.

#include "ed/hatch_commands.h"

#include "db/block_table_record.h"
#include "db/database.h"
#include "db/hatch.h"
#include "db/hatch_patterns.h"
#include "db/header.h"
#include "db/polyline.h"
#include "db/wipeout.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "ed/input.h"
#include "ed/jig.h"
#include "ed/region_at.h"
#include "ed/selection.h"

namespace {

/// What the next hatch is offered, until the program ends.
struct HatchDefaults {
    QString pattern = QStringLiteral("ANSI31");
    double scale = 1.0;
    double degrees = 0.0;
};

HatchDefaults& defaults()
{
    static HatchDefaults values;
    return values;
}

KcDbDatabase& database()
{
    return kcDocManagerPtr()->curDocument()->database();
}

KcDbHatchPatterns::Units units()
{
    return KcDbRead<KcDbHeader>(database().headerId())->integer(QStringLiteral("$MEASUREMENT"), 0) == 0
        ? KcDbHatchPatterns::Units::Inches
        : KcDbHatchPatterns::Units::Millimetres;
}

/// False when the user gave up.
bool askPattern(HatchDefaults& values)
{
    KcDbHatchPatterns& patterns = KcDbHatchPatterns::instance();
    patterns.reread();
    for (;;) {
        QString name;
        const KcEdStatus status
            = kcedGetString(false, QStringLiteral("\nPattern name or ? <%1>: ").arg(values.pattern), name);
        if (status == kcedCancel)
            return false;
        if (status == kcedNone || name.isEmpty())
            return true;
        if (name == QLatin1String("?")) {
            kcedSay(patterns.names(units()).join(QStringLiteral(" ")));
            for (const KcDbPatternFinding& finding : patterns.findings())
                kcedSay(finding.text);
        } else if (patterns.find(name, units())) {
            values.pattern = name.toUpper();
            return true;
        } else {
            kcedSay(QStringLiteral("No pattern file defines %1.").arg(name));
        }
    }
}

bool askScaleAndAngle(HatchDefaults& values)
{
    kcedInitGet(KcEdPrompt::kNoZero | KcEdPrompt::kNoNegative);
    if (kcedGetReal(QStringLiteral("\nPattern scale <%1>: ").arg(values.scale), values.scale) == kcedCancel)
        return false;
    return kcedGetReal(QStringLiteral("\nPattern angle <%1>: ").arg(values.degrees), values.degrees)
        != kcedCancel;
}

/// Adds a loop for each curve that is closed, and one along all the others. How many loops there are.
size_t appendLoops(KcDbHatch& hatch, const std::vector<KcDbObjectId>& ids)
{
    std::vector<KcDbObjectId> open;
    for (const KcDbObjectId id : ids)
        if (hatch.appendLoop(KcDbHatch::kExternal, { id }) == Kcad::eInvalidInput)
            open.push_back(id);
    if (!open.empty() && hatch.appendLoop(KcDbHatch::kExternal, open) != Kcad::eOk)
        kcedSay(QStringLiteral("%1 curves do not close an outline").arg(open.size()));
    return hatch.numLoops();
}

void appendOutline(KcDbHatch& hatch, int type, const std::vector<KcGeSegment2d>& outline)
{
    std::vector<KcGePoint2d> points;
    std::vector<double> bulges;
    for (const KcGeBulgeVertex2d& vertex : kcedVerticesOf(outline)) {
        points.push_back(vertex.point);
        bulges.push_back(vertex.bulge);
    }
    hatch.appendLoop(type, points, bulges);
}

void appendRegion(KcDbHatch& hatch, const KcEdRegionAt& region)
{
    appendOutline(hatch, KcDbHatch::kExternal, region.outline);
    for (const auto& island : region.islands)
        appendOutline(hatch, KcDbHatch::kOutermost, island);
}

/// A hatch of these regions, not evaluated yet.
std::unique_ptr<KcDbHatch> makeHatch(const HatchDefaults& values, const std::vector<KcEdRegionAt>& regions)
{
    auto hatch = std::make_unique<KcDbHatch>();
    hatch->setAssociative(regions.empty()); // there are no curves of their own to follow
    hatch->setPattern(KcDbHatch::kPreDefined, values.pattern);
    hatch->setPatternScale(values.scale);
    hatch->setPatternAngle(values.degrees * kPi / 180.0);
    for (const KcEdRegionAt& region : regions)
        appendRegion(*hatch, region);
    return hatch;
}

/// The regions around the points that the user gives; none when he gave up.
std::vector<KcEdRegionAt> askRegions(const HatchDefaults& values)
{
    std::vector<KcEdRegionAt> regions;
    std::unique_ptr<KcDbHatch> shown; // what is chosen so far
    for (;;) {
        KcGePoint3d point;
        kcedInitPreview([&](KcGePoint3d) {
            KcEdPreview preview;
            if (shown)
                preview.emplace_back(static_cast<KcDbEntity*>(shown->copy().release()));
            return preview;
        });
        const KcEdStatus status = kcedGetPoint(nullptr, QStringLiteral("\nInternal point: "), point);
        if (status == kcedCancel)
            return {};
        if (status != kcedNormal)
            return regions;
        KcEdRegionAt region = kcedRegionAt(database(), (database().ucsToWorld() * point).plan());
        if (!region.reason.isEmpty()) {
            kcedSay(region.reason);
            continue;
        }
        regions.push_back(std::move(region));
        shown = makeHatch(values, regions);
        shown->setDatabaseDefaults(database());
        if (shown->evaluateHatch(&database()) != Kcad::eOk)
            shown.reset(); // said when all are chosen
    }
}

KcDbObjectId append(std::unique_ptr<KcDbEntity> entity)
{
    entity->setDatabaseDefaults(database());
    return KcDbRead<KcDbBlockTableRecord>(database().currentSpace())->appendEntity(std::move(entity));
}

void askFrames()
{
    kcedInitGet(0, QStringLiteral("ON OFF _ ON OFF"));
    QString keyword;
    if (kcedGetKword(QStringLiteral("\nFrames of wipeouts [ON/OFF]: "), keyword) == kcedNormal)
        kcdbSetWipeoutFrame(database(), keyword == QLatin1String("ON") ? 1 : 0);
}

/// The vertices of a closed polyline of straight pieces; empty, and a line that says why, for anything else.
std::vector<KcGePoint3d> askPolyline()
{
    KcDbObjectId id;
    KcGePoint3d at;
    if (kcedEntSel(QStringLiteral("\nSelect a closed polyline: "), id, at) != kcedNormal)
        return {};
    const KcDbRead<KcDbPolyline> polyline(id);
    std::vector<KcGePoint3d> points;
    bool straight = polyline && polyline->isClosed();
    for (size_t i = 0; straight && i < polyline->numVerts(); ++i) {
        straight = polyline->getBulgeAt(i) == 0.0; // exact: any arc is one
        points.push_back(polyline->worldPointAt(i));
    }
    if (straight)
        return points;
    kcedSay(QStringLiteral("A wipeout needs a closed polyline of straight pieces."));
    return {};
}

std::vector<KcGePoint3d> askPoints(KcGePoint3d first)
{
    const KcGeMatrix3d toWorld = database().ucsToWorld();
    std::vector<KcGePoint3d> points{ toWorld * first };
    KcGePoint3d last = first, next;
    for (;;) {
        kcedInitPreview([&](KcGePoint3d cursor) {
            auto outline = std::make_unique<KcDbPolyline>();
            for (const KcGePoint3d point : points)
                outline->addVertex(point.plan());
            outline->addVertex((toWorld * cursor).plan());
            outline->setClosed(true);
            outline->setDatabaseDefaults(database());
            KcEdPreview preview;
            preview.push_back(std::move(outline));
            return preview;
        });
        const KcEdStatus status = kcedGetPoint(&last, QStringLiteral("\nNext point: "), next);
        if (status == kcedCancel)
            return {};
        if (status != kcedNormal)
            return points;
        points.push_back(toWorld * next);
        last = next;
    }
}

} // namespace

void kcedHatch()
{
    HatchDefaults values = defaults();
    if (!askPattern(values) || !askScaleAndAngle(values))
        return;
    kcedInitGet(0, QStringLiteral("Internal _ Internal"));
    KcEdSelectionRequest request;
    request.prompt = kcedPreparedPrompt(
        KcEdPrompt::Kind::Selection, QStringLiteral("\nSelect objects or [Internal point]: "));
    const KcEdSelectionAnswer selected = kcedSelect(request);
    std::vector<KcEdRegionAt> regions;
    if (selected.status == kcedKeyword)
        regions = askRegions(values);
    if (selected.status != kcedNormal && regions.empty())
        return;
    defaults() = values;

    auto hatch = makeHatch(values, regions);
    if (regions.empty() && appendLoops(*hatch, selected.set.ids()) == 0)
        return kcedSay(QStringLiteral("Nothing selected encloses an area."));
    if (const auto status = hatch->evaluateHatch(&database()); status != Kcad::eOk)
        return kcedSay(Kcad::errorStatusText(status));
    const KcDbObjectId id = append(std::move(hatch));
    if (regions.empty())
        KcDbWrite<KcDbHatch>(id)->watchSources();
}

void kcedWipeout()
{
    kcedInitGet(KcEdPrompt::kNoEmpty, QStringLiteral("Frames Polyline _ Frames Polyline"));
    KcGePoint3d first;
    const KcEdStatus status
        = kcedGetPoint(nullptr, QStringLiteral("\nFirst point or [Frames/Polyline]: "), first);
    if (status == kcedKeyword && kcedGetInput() == QLatin1String("Frames"))
        return askFrames();
    if (status != kcedNormal && status != kcedKeyword)
        return;
    const std::vector<KcGePoint3d> corners = status == kcedKeyword ? askPolyline() : askPoints(first);
    if (corners.empty())
        return;
    auto wipeout = KcDbWipeout::fromCorners(corners);
    if (!wipeout)
        return kcedSay(QStringLiteral("A wipeout needs at least three points of a level plane."));
    append(std::move(wipeout));
}
