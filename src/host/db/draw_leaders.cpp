// How leaders are drawn: the line, its hook under the text, and the arrow head of the dimension style.

#include "db/arrow_heads.h"
#include "db/dim_variables.h"
#include "db/leader.h"
#include "ge/spline.h"
#include "gi/sink/world_draw.h"

using Dim = KcDbDimVariables;

std::optional<KcGePoint3d> KcDbLeader::hookLineEnd() const
{
    constexpr int kText = 0;
    const Dim variables(*this, m_data.dimStyle);
    if (m_data.vertices.empty() || !m_data.hasHookLine || m_data.annotationType != kText
        || variables.integer(Dim::kTextAbove, 0) == 0 || !(m_data.textWidth > 0.0)
        || !std::isfinite(m_data.textWidth))
        return {};
    const KcGeVector3d along = m_data.hookLineDirection == 1 ? -m_data.horizontal : m_data.horizontal;
    return m_data.vertices.back() + along * (variables.length(Dim::kGap, 0.09) + m_data.textWidth);
}

void KcDbLeader::worldDraw(KcGiWorldDraw& draw) const
{
    std::vector<KcGePoint3d> points = m_data.vertices;
    points.erase(std::unique(points.begin(), points.end()), points.end());
    if (points.size() < 2)
        return draw.leftOut(QStringLiteral("a leader with less than two points"));
    const Dim variables(*this, m_data.dimStyle);

    if (const auto end = hookLineEnd())
        points.push_back(*end);
    if (const int color = int(variables.integer(Dim::kLineColor, 0)); color != KcGiColor::kByBlock)
        draw.setColor({ color, -1 });

    std::optional<KcGeNurbsCurve3d> spline;
    if (m_data.isSplined)
        spline = KcGeNurbsCurve3d::throughPoints(points, {});
    double covered = 0.0;
    const KcDbArrowHead head{ variables.arrowName(Dim::kLeaderArrow, Dim::kArrowName),
                              variables.length(Dim::kArrowSize, 0.18) };
    // An arrow longer than the line it ends would point past the text.
    if (m_data.hasArrowHead && points[0].distanceTo(points[1]) > head.size) {
        covered = kcdbDrawArrowHead(draw, database(), head, points[0], points[0] - points[1], m_data.normal);
        draw.setContinuous(false);
    }
    KcGiPath path;
    if (spline) {
        path.spline(*spline);
    } else {
        const KcGeVector3d first = points[1] - points[0];
        points[0] = points[0] + first.normal() * std::min(covered, first.length());
        path.polyline(points, false);
    }
    draw.stroke(path);
}
