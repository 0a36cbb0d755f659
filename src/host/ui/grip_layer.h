// The grips of the selection over the drawing: where they are, which are hot, and a picture of them that
// serves until the view or an entity changes.
#pragma once

#include "ed/commands/grip_drag.h"
#include "ui/palette.h"
#include "ui/screen_map.h"

#include <QPixmap>

class QPainter;

class KcUiGripLayer {
public:
    /// The entities have changed.
    void forget() { m_known = false; }
    /// Shows those of these entities; of more than some hundreds, none. What was hot is so no more when they
    /// are others than before.
    void setEntities(const std::vector<KcDbObjectId>& ids);

    /// Every grip that lies where the one does that the cursor reaches, corners that meet; `at` is the place,
    /// world coordinates.
    std::vector<KcEdGrip> under(QPointF pixel, const KcUiScreenMap& map, KcGePoint3d& at) const;

    /// Hot grips go together when one of them is dragged.
    const std::vector<KcEdGrip>& hot() const { return m_hot; }
    bool isHot(const KcEdGrip& grip) const;
    void setHot(std::vector<KcEdGrip> grips) { m_hot = std::move(grips); }
    /// Adds them to the hot ones, or takes them out when the first is one.
    void toggleHot(const std::vector<KcEdGrip>& grips);

    /// @param cursor the grip that it reaches is told apart; none: it reaches none
    void draw(
        QPainter& painter, const KcUiScreenMap& map, const KcUiPalette& colors, double pixelRatio,
        std::optional<QPointF> cursor);

private:
    struct Placed {
        KcEdGrip grip;
        KcGePoint3d point; ///< world coordinates
    };
    void renderCold(const KcUiScreenMap& map, const KcUiPalette& colors, double pixelRatio);

    std::vector<KcDbObjectId> m_ids;
    std::vector<Placed> m_grips;
    std::vector<KcEdGrip> m_hot;
    bool m_known = false;

    QPixmap m_cold; ///< all of them, as if none were hot
    bool m_coldIsStale = true;
    KcEdView m_view; ///< that it shows
    QSizeF m_size;
    double m_ratio = 0.0;
    const KcUiPalette* m_colors = nullptr;
};
