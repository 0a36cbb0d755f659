// The usual arrow heads, and those of the user's blocks.

#include "db/arrow_heads.h"

#include "db/block_reference.h"
#include "db/database.h"
#include "db/symbol_table.h"
#include "gi/sink/world_draw.h"

namespace {

// Shapes for size 1: the tip at the origin, the line along negative x.
constexpr double kHalfWidth = 1.0 / 6.0;
constexpr double kSmallDot = 0.25, kDot = 0.5;
constexpr double kTickWidth = 0.15;
const double kSlim = std::tan(kPi / 12.0); // of an arrow of thirty degrees

KcGiPath outline(const KcGeMatrix3d& place, std::initializer_list<KcGePoint2d> points, bool closed)
{
    std::vector<KcGePoint3d> corners;
    for (const KcGePoint2d p : points)
        corners.push_back(place * KcGePoint3d{ p.x, p.y, 0.0 });
    KcGiPath path;
    path.polyline(corners, closed);
    return path;
}

KcGiPath circle(const KcGeMatrix3d& place, double radius)
{
    KcGiPath path;
    path.arc({ place * KcGePoint3d(), place.axis(0) * radius, place.axis(1) * radius, 0.0, kTwoPi });
    path.close();
    return path;
}

KcGiPath triangle(const KcGeMatrix3d& place)
{
    return outline(place, { { 0, 0 }, { -1, kHalfWidth }, { -1, -kHalfWidth } }, true);
}

} // namespace

double kcdbDrawArrowHead(
    KcGiWorldDraw& draw, KcDbDatabase* database, const KcDbArrowHead& head, KcGePoint3d tip,
    KcGeVector3d direction, KcGeVector3d normal)
{
    if (!(head.size > 0.0) || !std::isfinite(head.size) || !(direction.length() > 0.0))
        return 0.0;
    const KcGeVector3d x = direction.normal() * head.size;
    KcGeVector3d y = normal.crossProduct(direction);
    if (!(y.length() > 0.0))
        return 0.0;
    y = y.normal() * head.size;
    const KcGeMatrix3d place = KcGeMatrix3d::fromAxes(tip, x, y, normal.normal() * head.size);
    const QString name = (head.name.startsWith(u'_') ? head.name.mid(1) : head.name).toUpper();
    const auto is = [&](const char* usual) { return name == QLatin1String(usual); };
    const bool hidesLine
        = is("CLOSED") || is("CLOSEDBLANK") || is("DATUMBLANK") || is("DATUMFILLED") || name.isEmpty();
    const double covered = hidesLine ? head.size
        : is("DOTBLANK")             ? head.size * kDot
        : is("SMALL")                ? head.size * kSmallDot
                                     : 0.0;

    draw.setContinuous(true);
    if (!head.name.isEmpty() && database) {
        const KcDbObjectId id = kcdbFindRecord(database->blockTable(), head.name);
        const KcDbRead<KcDbBlockTableRecord> block(id);
        if (block && !block->isEmpty()) {
            draw.block(id, place * KcGeMatrix3d::translation(KcGePoint3d() - block->origin()));
            return covered;
        }
    }
    if (is("NONE"))
        return 0.0;
    if (is("DOT") || is("DOTSMALL")) {
        draw.fill(circle(place, is("DOT") ? kDot : kSmallDot / 2.0));
    } else if (is("DOTBLANK") || is("SMALL") || is("ORIGIN") || is("ORIGIN2")) {
        draw.stroke(circle(place, is("SMALL") ? kSmallDot : kDot));
    } else if (is("OBLIQUE")) {
        draw.stroke(outline(place, { { -0.5, -0.5 }, { 0.5, 0.5 } }, false));
    } else if (is("ARCHTICK")) {
        const double w = kTickWidth / 2.0 / std::sqrt(2.0);
        draw.fill(outline(
            place,
            { { -0.5 - w, -0.5 + w }, { -0.5 + w, -0.5 - w }, { 0.5 + w, 0.5 - w }, { 0.5 - w, 0.5 + w } },
            true));
    } else if (is("OPEN")) {
        draw.stroke(outline(place, { { -1, kHalfWidth }, { 0, 0 }, { -1, -kHalfWidth } }, false));
    } else if (is("OPEN30")) {
        draw.stroke(outline(place, { { -1, kSlim }, { 0, 0 }, { -1, -kSlim } }, false));
    } else if (is("OPEN90")) {
        draw.stroke(outline(place, { { -0.5, 0.5 }, { 0, 0 }, { -0.5, -0.5 } }, false));
    } else if (is("CLOSED") || is("CLOSEDBLANK")) {
        draw.stroke(triangle(place));
    } else if (is("BOXFILLED") || is("BOXBLANK")) {
        const KcGiPath box
            = outline(place, { { -0.5, -0.5 }, { 0.5, -0.5 }, { 0.5, 0.5 }, { -0.5, 0.5 } }, true);
        is("BOXFILLED") ? draw.fill(box) : draw.stroke(box);
    } else if (is("DATUMFILLED") || is("DATUMBLANK")) {
        const KcGiPath base
            = outline(place, { { -1, 0 }, { 0, std::tan(kPi / 6.0) }, { 0, -std::tan(kPi / 6.0) } }, true);
        is("DATUMFILLED") ? draw.fill(base) : draw.stroke(base);
    } else {
        draw.fill(triangle(place));
        return head.size;
    }
    return covered;
}
