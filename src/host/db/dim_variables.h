// The dimension variables that hold for a dimension or leader.
#pragma once

#include "db/group_values.h"
#include "db/object.h"

/// An entity's own overrides, else what its dimension style says, else the usual values. Variables are named
/// by the group codes under which styles hold them.
class KcDbDimVariables {
public:
    enum Code {
        kSuffix = 3, ///< text around the measured value, which stands as "<>"
        kArrowName = 5,
        kArrowName1 = 6,
        kArrowName2 = 7, ///< of blocks, in styles of old files
        kScale = 40,
        kArrowSize = 41,
        kExtensionOffset = 42,
        kExtensionBeyond = 44,
        kSuppressFirst = 75,
        kSuppressSecond = 76,
        kTextAbove = 77,
        kZeros = 78,
        kTextHeight = 140,
        kTickSize = 142,
        kLengthFactor = 144,
        kGap = 147,
        kTwoArrows = 173,
        kLineColor = 176,
        kExtensionColor = 177,
        kTextColor = 178,
        kDecimals = 271,
        kDecimalMark = 278,
        kTextStyle = 340,
        kLeaderArrow = 341,
        kArrow = 342,
        kArrow1 = 343,
        kArrow2 = 344,
    };

    /// A style that is null or gone gives the usual values.
    KcDbDimVariables(const KcDbObject& entity, KcDbObjectId style);

    double real(int code, double other) const;
    int64_t integer(int code, int64_t other) const;
    KcDbObjectId id(int code) const;
    QString text(int code) const;
    /// A length of the style in drawing units: times the overall scale.
    double length(int code, double other) const { return real(code, other) * scale(); }
    double scale() const;
    /// The name of the arrow block of a reference or, in old files, of a name; empty for the filled arrow.
    QString arrowName(int reference, int name) const;

private:
    KcDbValueList m_overrides, m_style;
};
