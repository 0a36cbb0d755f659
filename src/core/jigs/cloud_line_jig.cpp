// Equal arcs along a polygon, and asking for its corners.

#include "core/jigs/cloud_line_jig.h"

#include "core/coordinates.h"
#include "core/draw.h"
#include "core/prompts.h"
#include "ed/console.h"
#include "ed/documents.h"

namespace {

constexpr double kBulge
    = 0.5; // an arc of 106 degrees: round enough to be a crown, flat enough not to overlap

double signedArea(const std::vector<KcGePoint3d>& points)
{
    double twice = 0.0;
    const KcGePoint3d origin = points.front(); // far from the world's origin products would lose their digits
    for (size_t i = 0; i < points.size(); ++i) {
        const KcGePoint3d a = points[i], b = points[(i + 1) % points.size()];
        twice += (a.x - origin.x) * (b.y - origin.y) - (b.x - origin.x) * (a.y - origin.y);
    }
    return twice / 2.0;
}

double planDistance(KcGePoint3d a, KcGePoint3d b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

} // namespace

std::unique_ptr<KcDbPolyline> cloudOutline(std::vector<KcGePoint3d> points, double chord)
{
    if (points.size() < 3 || !(chord > 0.0))
        return nullptr;
    const double area = signedArea(points);
    double perimeter = 0.0;
    for (size_t i = 0; i < points.size(); ++i)
        perimeter += planDistance(points[i], points[(i + 1) % points.size()]);
    if (!std::isfinite(perimeter) || perimeter > chord * kMostCloudArcs
        || std::abs(area) <= perimeter * KcGeContext::gTol.equalPoint)
        return nullptr;
    if (area < 0.0)
        std::reverse(points.begin() + 1, points.end());

    auto outline = std::make_unique<KcDbPolyline>();
    outline->setClosed(true);
    outline->data().elevation = points.front().z;
    const int arcs = std::max(3, int(std::lround(perimeter / chord)));
    const double step = perimeter / arcs;
    double before = 0.0; // length of the edges before the current one
    size_t edge = 0;
    for (int i = 0; i < arcs; ++i) {
        const double along = i * step;
        double length = planDistance(points[edge], points[(edge + 1) % points.size()]);
        while (along > before + length && edge + 1 < points.size()) {
            before += length;
            ++edge;
            length = planDistance(points[edge], points[(edge + 1) % points.size()]);
        }
        const KcGePoint3d a = points[edge], b = points[(edge + 1) % points.size()];
        const double part = length > 0.0 ? std::min(1.0, (along - before) / length) : 0.0;
        outline->addVertex({ a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part }, kBulge);
    }
    return outline;
}

KcDbObjectId CCloudLineJig::CreateCloudLine()
{
    std::vector<KcGePoint3d> points;
    for (;;) {
        const bool canClose = points.size() >= 3;
        KcEdDrag drag;
        drag.prompt = points.empty() ? QStringLiteral("\n请指定云线起点: ")
            : canClose ? QStringLiteral("\n请指定下一点，回车闭合，或 [放弃(U)]: ")
                       : QStringLiteral("\n请指定下一点或 [放弃(U)]: ");
        if (!points.empty()) {
            drag.keywords = QStringLiteral("Undo");
            drag.base = SetWcsPointToUcs(points.back());
        }
        drag.preview = [&](KcGePoint3d cursor) {
            std::vector<KcGePoint3d> path = points;
            path.push_back(SetUcsPointToWcs(cursor));
            KcEdPreview preview;
            if (auto outline = cloudOutline(std::move(path), m_chord))
                preview.push_back(std::move(outline));
            return preview;
        };
        const KcEdDragged answer = kcedDrag(drag);
        bool closes = answer.status == KcEdDragged::Status::Enter;
        if (answer.status == KcEdDragged::Status::Cancel || (closes && points.empty()))
            return {};
        if (answer.status == KcEdDragged::Status::Keyword && !points.empty())
            points.pop_back();
        if (answer.status == KcEdDragged::Status::Normal) {
            const KcGePoint3d next = SetUcsPointToWcs(answer.point);
            closes = canClose && planDistance(next, points.front()) <= GetPickBoxWcs();
            if (!closes && (points.empty() || planDistance(next, points.back()) >= KcGeContext::kLabelVertex))
                points.push_back(next);
        }
        if (!closes)
            continue;
        auto outline = cloudOutline(points, m_chord);
        if (!outline) {
            kcedSay(
                points.size() < 3 ? QStringLiteral("云线至少需要三个点.")
                                  : QStringLiteral("由这些点不能生成云线: 没有面积, 或范围过大."));
            continue;
        }
        const KcApDocLock lock;
        if (!lock) {
            kcedSay(QStringLiteral("The drawing must not be changed now."));
            return {};
        }
        return AppendToModelSpace(std::move(outline));
    }
}
