// Finding and drawing grips; tens of thousands of them must not hold up the cursor.

#include "ui/grip_layer.h"

#include "ed/grips.h"

#include <QPainter>

namespace {

constexpr int kGripPixels = 4; // to each side
constexpr size_t kMostEntities = 400; // of more only the marks are shown

QRectF boxAbout(QPointF at)
{
    return { at.x() - kGripPixels, at.y() - kGripPixels, 2.0 * kGripPixels, 2.0 * kGripPixels };
}

bool reaches(QPointF cursor, QPointF grip)
{
    const QPointF off = grip - cursor;
    return std::max(std::abs(off.x()), std::abs(off.y())) <= kcuiGripReach;
}

} // namespace

void KcUiGripLayer::setEntities(const std::vector<KcDbObjectId>& ids)
{
    if (ids != m_ids) {
        m_ids = ids;
        m_hot.clear();
        m_known = false;
    }
    if (std::exchange(m_known, true))
        return;
    m_coldIsStale = true;
    m_grips.clear();
    if (m_ids.size() > kMostEntities)
        return;
    for (const KcDbObjectId id : m_ids)
        if (const KcDbRead<KcDbEntity> entity(id); entity) {
            const std::vector<KcGePoint3d> points = kcedGripPoints(*entity);
            for (size_t i = 0; i < points.size(); ++i)
                m_grips.push_back({ { id, i }, points[i] });
        }
}

std::vector<KcEdGrip> KcUiGripLayer::under(QPointF pixel, const KcUiScreenMap& map, KcGePoint3d& at) const
{
    std::vector<KcEdGrip> grips;
    for (const Placed& placed : m_grips) {
        if (grips.empty() && reaches(pixel, map.toPixel({ placed.point.x, placed.point.y })))
            at = placed.point;
        else if (grips.empty() || !placed.point.isEqualTo(at))
            continue;
        grips.push_back(placed.grip);
    }
    return grips;
}

bool KcUiGripLayer::isHot(const KcEdGrip& grip) const
{
    return std::find(m_hot.begin(), m_hot.end(), grip) != m_hot.end();
}

void KcUiGripLayer::toggleHot(const std::vector<KcEdGrip>& grips)
{
    const bool takesOut = !grips.empty() && isHot(grips.front());
    for (const KcEdGrip& grip : grips)
        std::erase(m_hot, grip);
    if (!takesOut)
        m_hot.insert(m_hot.end(), grips.begin(), grips.end());
}

void KcUiGripLayer::renderCold(const KcUiScreenMap& map, const KcUiPalette& colors, double pixelRatio)
{
    m_cold = QPixmap((map.size * pixelRatio).toSize());
    m_cold.setDevicePixelRatio(pixelRatio);
    m_cold.fill(Qt::transparent);
    QPainter painter(&m_cold);
    painter.setPen(colors.background);
    painter.setBrush(colors.grip);
    // Of those that fall on the same pixel one is drawn.
    const int columns = int(std::ceil(map.size.width())) + 1;
    std::vector<bool> drawn(size_t(columns) * (size_t(std::ceil(map.size.height())) + 1));
    const QRectF seen(QPointF(0, 0), map.size);
    for (const Placed& placed : m_grips) {
        const QPointF at = map.toPixel({ placed.point.x, placed.point.y });
        if (!seen.contains(at))
            continue;
        const auto cell = drawn.begin() + std::ptrdiff_t(int(at.y()) * columns + int(at.x()));
        if (!*cell)
            painter.drawRect(boxAbout(at));
        *cell = true;
    }
    m_view = map.view;
    m_size = map.size;
    m_ratio = pixelRatio;
    m_colors = &colors;
    m_coldIsStale = false;
}

void KcUiGripLayer::draw(
    QPainter& painter, const KcUiScreenMap& map, const KcUiPalette& colors, double pixelRatio,
    std::optional<QPointF> cursor)
{
    if (m_grips.empty())
        return;
    if (m_coldIsStale || !(m_view == map.view) || m_size != map.size || m_ratio != pixelRatio // exact
        || m_colors != &colors)
        renderCold(map, colors, pixelRatio);
    painter.drawPixmap(0, 0, m_cold);

    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(colors.background);
    const auto drawOne = [&](KcGePoint3d point, const QColor& color) {
        painter.setBrush(color);
        painter.drawRect(boxAbout(map.toPixel({ point.x, point.y })));
    };
    KcGePoint3d reached;
    if (cursor && !under(*cursor, map, reached).empty())
        drawOne(reached, colors.reachedGrip);
    for (const KcEdGrip& grip : m_hot)
        if (const KcDbRead<KcDbEntity> entity(grip.entity); entity) {
            const std::vector<KcGePoint3d> points = kcedGripPoints(*entity);
            if (grip.index < points.size())
                drawOne(points[grip.index], colors.hotGrip);
        }
}
