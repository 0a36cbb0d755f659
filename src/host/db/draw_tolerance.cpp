// How tolerances are drawn: lines of framed cells from the point at their left.

#include "db/database.h"
#include "db/dim_variables.h"
#include "db/draw_raw.h"
#include "db/symbol_table.h"
#include "db/text.h"
#include "gi/sink/world_draw.h"

using Dim = KcDbDimVariables;

void kcdbDrawTolerance(KcGiWorldDraw& draw, const KcDbRawEntity& entity, const KcDbValueList& groups)
{
    constexpr double kCellHeight = 2.0; // in heights of the text
    const KcDbGroupValues g(groups);
    const KcDbObjectId style = kcdbFindRecord(entity.database()->dimStyleTable(), g.text(3));
    const Dim variables(entity, style);
    const double height = variables.length(Dim::kTextHeight, 0.18), pad = variables.length(Dim::kGap, 0.09);
    const KcGeVector3d normal = g.vector(210, KcGeVector3d::kZAxis);
    const KcGeVector3d right = g.vector(11, { 1, 0, 0 });
    if (!(height > 0.0) || !std::isfinite(height) || !(right.length() > 0.0) || !(normal.length() > 0.0))
        return draw.leftOut(QStringLiteral("a tolerance without a size"));
    const KcGeVector3d along = right.normal(), up = normal.crossProduct(right).normal();
    KcDbMText text;
    text.data().height = height;
    text.data().style = variables.id(Dim::kTextStyle);
    text.data().attachment = 5;
    text.data().normal = normal;
    text.data().hasDirection = true;
    text.data().direction = along;
    double y = 0.0;
    draw.setContinuous(true);
    for (const QString& row : g.text(1).replace(QStringLiteral("^J"), QStringLiteral("\n")).split(u'\n')) {
        double x = 0.0;
        // Cells are divided by "%%v"; empty ones at the end of a line are none.
        QStringList cells = row.split(QStringLiteral("%%v"));
        while (!cells.isEmpty() && cells.last().trimmed().isEmpty())
            cells.removeLast();
        for (const QString& cell : cells) {
            if (cell.isEmpty())
                continue;
            text.setContents(cell);
            const double width = std::max(text.actualWidth() + 2.0 * pad, kCellHeight * height);
            const KcGePoint3d corner = g.point(10) + along * x + up * (y - kCellHeight * height / 2.0);
            KcGiPath frame;
            const KcGeVector3d w = along * width, h = up * (kCellHeight * height);
            frame.polyline({ corner, corner + w, corner + w + h, corner + h }, true);
            draw.stroke(frame);
            text.data().location = corner + w * 0.5 + h * 0.5;
            text.worldDraw(draw);
            x += width;
        }
        if (!cells.isEmpty())
            y -= kCellHeight * height;
    }
}
