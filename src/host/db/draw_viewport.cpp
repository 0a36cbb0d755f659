// How viewports are drawn: their frame. What is seen through them belongs to those who draw whole layouts.

#include "db/viewport.h"
#include "gi/sink/world_draw.h"

void KcDbViewport::worldDraw(KcGiWorldDraw& draw) const
{
    constexpr int kSheet = 1;
    if (m_data.number == kSheet)
        return;
    const KcGeVector3d right{ m_data.width, 0, 0 }, up{ 0, m_data.height, 0 };
    const KcGePoint3d corner = m_data.center - right * 0.5 - up * 0.5;
    KcGiPath frame;
    frame.polyline({ corner, corner + right, corner + right + up, corner + up }, true);
    draw.stroke(frame);
}
