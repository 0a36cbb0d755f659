// What of an entity can be picked: lines and filled outlines, seen along the Z axis, in world coordinates.
#pragma once

#include "db/entity.h"
#include "ge/segment.h"

/// One run of lines, or one curve that is not straight. A filled piece is a closed run, and what lies inside it belongs
/// to it.
struct KcEdPickPiece {
    std::vector<KcGePoint2d> points; ///< none of a curve
    bool filled = false;
    std::optional<KcGeSegment2d> curve = std::nullopt;
};
/// Filled pieces of one entity fill by the even-odd rule together.
using KcEdPickPieces = std::vector<KcEdPickPiece>;

/// Turns entities into pieces. Keeps the pieces of block definitions, so that many references cost little;
/// use one for one selection and drop it when the drawing changes.
class KcEdPickGeometry {
public:
    /// Curves stay what they are, but for those around filled areas: chords replace them that leave them by no more than
    /// `tolerance`, in drawing units, or a millionth of their size.
    explicit KcEdPickGeometry(double tolerance)
        : m_tolerance(tolerance)
    {
    }

    KcEdPickPieces pieces(const KcDbEntity& entity);
    /// True for lines without ends, which have no box.
    static bool isEndless(const KcDbEntity& entity);
    /// False when the entity's layer is off or frozen, or the entity itself is hidden.
    bool isVisible(const KcDbEntity& entity);
    bool isOnLockedLayer(const KcDbEntity& entity);
    bool isOnFrozenLayer(const KcDbEntity& entity);

private:
    struct Layer {
        bool off = false, frozen = false, locked = false;
    };
    const Layer& layerOf(const KcDbEntity& entity);
    const KcEdPickPieces& definition(KcDbObjectId block);

    double m_tolerance;
    std::unordered_map<const void*, Layer> m_layers;
    const void* m_lastLayer = nullptr;
    const Layer* m_lastState = nullptr;
    std::unordered_map<const void*, KcEdPickPieces> m_definitions;
};
