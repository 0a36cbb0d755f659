// -BOUNDARY: closed polylines around internal points, from what is visible there.

#include "ed/commands/commands.h"
#include "ed/commands/tools.h"

#include "db/polyline.h"
#include "ed/region_at.h"

using namespace hand;

namespace {

std::unique_ptr<KcDbPolyline> polylineOf(const std::vector<KcGeSegment2d>& outline)
{
    auto polyline = std::make_unique<KcDbPolyline>();
    for (const KcGeBulgeVertex2d& vertex : kcedVerticesOf(outline))
        polyline->addVertex(vertex.point, vertex.bulge);
    polyline->setClosed(true);
    return polyline;
}

} // namespace

void hand::boundary()
{
    std::vector<std::vector<KcGeSegment2d>> outlines;
    for (;;) {
        KcGePoint3d point;
        const KcEdStatus status = kcedGetPoint(nullptr, QStringLiteral("\nInternal point: "), point);
        if (status == kcedCancel)
            return;
        if (status != kcedNormal)
            break;
        const KcEdRegionAt found = kcedRegionAt(database(), (database().ucsToWorld() * point).plan());
        if (!found.reason.isEmpty()) {
            kcedSay(found.reason);
            continue;
        }
        outlines.push_back(found.outline);
        outlines.insert(outlines.end(), found.islands.begin(), found.islands.end());
    }
    for (const auto& outline : outlines) {
        auto polyline = polylineOf(outline);
        polyline->setDatabaseDefaults(database());
        appendAsItIs(std::move(polyline));
    }
    if (!outlines.empty())
        kcedSay(QStringLiteral("%1 closed polylines made").arg(outlines.size()));
}
