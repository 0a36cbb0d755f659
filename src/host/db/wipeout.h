// Wipeouts: polygons that mask what lies below them, and whether a drawing shows their frames.
#pragma once

#include "db/entity.h"
#include "db/entity_macros.h"

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
    /// Hides what lies below the outline, and draws the outline where the drawing wants frames.
    void worldDraw(KcGiWorldDraw& draw) const override;
    /// The outline in world coordinates.
    std::vector<KcGePoint3d> outline() const;
    /// A wipeout over the polygon of the corners, which must lie in one horizontal plane.
    static std::unique_ptr<KcDbWipeout> fromCorners(const std::vector<KcGePoint3d>& corners);
};

/// What a drawing says about all its wipeouts.
class KcDbWipeoutVariables : public KcDbObject {
    KCRX_DECLARE(KcDbWipeoutVariables)
public:
    struct Data {
        int frame = 1; ///< 0 none, 1 shown and plotted, 2 shown only
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

private:
    Data m_data;
};

/// How a drawing shows the frames of its wipeouts: 0 not, 1 on screen and plots, 2 on the screen only. 1 when it does
/// not say.
int kcdbWipeoutFrame(const KcDbDatabase& database);
void kcdbSetWipeoutFrame(KcDbDatabase& database, int frame);
