// Viewports of paper space layouts.
#pragma once

#include "db/entity.h"
#include "db/entity_macros.h"

class KcDbViewport : public KcDbEntity {
    KCRX_DECLARE(KcDbViewport)
public:
    struct Data {
        KcGePoint3d center; ///< paper units
        double width = 1.0, height = 1.0; ///< paper units
        int status = 1; ///< 0 off; else the order in which it is drawn
        int number = 0; ///< 1: the sheet itself
        KcGePoint2d viewCenter; ///< model units, display coordinates of the view
        KcGeVector3d viewDirection {0, 0, 1};
        KcGePoint3d viewTarget;
        double viewHeight = 1.0; ///< model units
        double viewTwist = 0.0; ///< radians
        int viewFlags = 0;
    };
    KCDB_ENTITY_DATA
    void worldDraw(KcGiWorldDraw& draw) const override;
    double width() const { return m_data.width; }
    double height() const { return m_data.height; }
    double viewHeight() const { return m_data.viewHeight; }
    KcGePoint2d viewCenter() const { return m_data.viewCenter; }
};
