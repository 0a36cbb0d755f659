// Viewports of paper space layouts, and wipeouts.
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
    double width() const { return m_data.width; }
    double height() const { return m_data.height; }
    double viewHeight() const { return m_data.viewHeight; }
    KcGePoint2d viewCenter() const { return m_data.viewCenter; }
};

/// A polygon that masks what lies below it.
class KcDbWipeout : public KcDbEntity {
    KCRX_DECLARE(KcDbWipeout)
public:
    struct Data {
        int classVersion = 0;
        KcGePoint3d origin; ///< world coordinates of the lower left corner of the image square
        KcGeVector3d uVector {1, 0, 0}, vVector {0, 1, 0}; ///< one pixel
        KcGePoint2d imageSize {1, 1}; ///< pixels
        KcDbObjectId imageDefinition, imageReactor;
        int displayFlags = 7;
        int clipping = 1, brightness = 50, contrast = 50, fade = 0;
        int clipType = 2; ///< 1 rectangle, 2 polygon
        std::vector<KcGePoint2d> clip; ///< pixels, the centre of the first one at (0, 0)
    };
    KCDB_ENTITY_DATA
    /// The outline in world coordinates.
    std::vector<KcGePoint3d> outline() const;
    /// A wipeout over the polygon of the corners, which must lie in one horizontal plane.
    static std::unique_ptr<KcDbWipeout> fromCorners(const std::vector<KcGePoint3d>& corners);
};
