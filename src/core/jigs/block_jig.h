// Placing a plant symbol with the cursor, beside a dialog that chooses symbol, scale and layer.
#pragma once

#include "db/block_reference.h"
#include "ed/jig.h"

/// A reference whose box has its centre at a point, both in world coordinates, evenly scaled and turned with
/// the user coordinate system. Null for a definition that draws nothing, and a scale that is not positive.
std::unique_ptr<KcDbBlockReference>
symbolCentredAt(KcDbObjectId definition, double scale, KcGePoint3d centre);

class CBlockJig {
public:
    enum class Result { Cancel, Placed, Restart };

    void SetModelessScale(double scale) { m_scale = scale; }
    /// The layer of what is placed, made when it is missing; empty: the current one.
    void SetLayer(const QString& name) { m_layer = name; }

    /// Drags the symbol and places it where the user clicks. `Restart`: the dialog has changed something
    /// (`kcedRestartDrag`), or there is no symbol to place yet; set the values anew and call again.
    Result DoIt(KcDbObjectId definition);
    /// The reference placed last; null before.
    KcDbObjectId placed() const { return m_placed; }

private:
    double m_scale = 1.0;
    QString m_layer;
    KcDbObjectId m_placed;
};
