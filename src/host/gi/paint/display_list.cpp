// Keeping what is drawn.

#include "gi/paint/display_list.h"

namespace {

constexpr size_t kMostPoints
    = 50'000; // larger definitions are drawn part by part, and only what is seen of them

} // namespace

bool KcGiDisplayList::takes(const Pen& pen)
{
    m_isWhole = m_isWhole && pen.width == 0.0 && m_points.size() < kMostPoints;
    return m_isWhole;
}

void KcGiDisplayList::addPoint(QPointF point)
{
    m_points.push_back(point);
    ++m_items.back().count;
}

void KcGiDisplayList::stroke(const QPainterPath& path, const Pen& pen)
{
    if (!takes(pen))
        return;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        if (element.isCurveTo()) {
            m_isWhole = false;
            return;
        }
        if (element.isMoveTo())
            beginRun(pen.color);
        addPoint(element);
    }
}

void KcGiDisplayList::strokeLines(const std::vector<QLineF>& lines, const Pen& pen)
{
    if (!takes(pen))
        return;
    for (const QLineF& line : lines) {
        beginRun(pen.color);
        addPoint(line.p1());
        addPoint(line.p2());
    }
}

void KcGiDisplayList::fill(const QPainterPath& path, QRgb color)
{
    m_items.push_back({ Kind::Area, color, uint32_t(m_areas.size()), 0 });
    m_areas.push_back(path);
}

void KcGiDisplayList::mask(const QPainterPath& path)
{
    m_items.push_back({ Kind::Mask, 0, uint32_t(m_areas.size()), 0 });
    m_areas.push_back(path);
}

void KcGiDisplayList::dot(QPointF at, QRgb color)
{
    strokeLines({ { at, at } }, { color, 0.0 });
}

void KcGiDisplayList::text(const KcGiTextRun& run, const QTransform& transform, QRgb color)
{
    m_items.push_back({ Kind::Text, color, uint32_t(m_texts.size()), 0 });
    m_texts.push_back({ run, transform });
}
