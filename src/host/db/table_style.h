// Table styles: how the title, header and data rows of tables look that do not say otherwise.
#pragma once

#include "db/entity.h"

#include <array>

/// Kinds of rows; bits, so that a call can mean several.
enum KcDbRowType {
    kDataRow = 1,
    kTitleRow = 2,
    kHeaderRow = 4,
    kAllRows = kDataRow | kTitleRow | kHeaderRow,
};

/// Grid lines of the block of rows of one type; bits.
enum KcDbGridLine {
    kHorzTop = 1, ///< above the first row of the type
    kHorzInside = 2,
    kHorzBottom = 4,
    kVertLeft = 8, ///< the left border of the table
    kVertInside = 16,
    kVertRight = 32,
    kAllGridLines = 63,
};

/// How one grid line is drawn.
struct KcDbGridLook {
    KcCmColor color{ KcCmColor::kByBlock, -1 };
    int lineWeight = -2; ///< as of entities
    bool visible = true;
    friend bool operator==(const KcDbGridLook&, const KcDbGridLook&) = default;
};

class KcDbTableStyle : public KcDbObject {
    KCRX_DECLARE(KcDbTableStyle)
public:
    /// The look of the rows of one type.
    struct RowFormat {
        KcDbObjectId textStyle; ///< null: "Standard"
        double textHeight = 0.18; ///< drawing units
        int alignment = 2; ///< 1 top left, 2 top centre, … 5 middle centre, … 9 bottom right
        KcCmColor textColor{ KcCmColor::kByBlock, -1 };
        KcCmColor fillColor{ 7, -1 };
        bool filled = false;
        int dataType = 512, unitType = 0; ///< of values of other programs
        QString valueFormat;
        std::array<KcDbGridLook, 6> grid; ///< in the order of `KcDbGridLine`
    };
    struct Data {
        QString name; ///< the description that the style carries in the file
        bool upward = false; ///< rows follow one another upward
        int flags = 0;
        double horizontalMargin = 0.06,
               verticalMargin = 0.06; ///< between grid lines and content, drawing units
        bool titleSuppressed = false, headerSuppressed = false;
        std::array<RowFormat, 3> rows; ///< data, title, header: the order of the file
    };
    KcDbTableStyle();
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

    /// The place of a single row type in `Data::rows`.
    static int indexOf(KcDbRowType type) { return type == kTitleRow ? 1 : type == kHeaderRow ? 2 : 0; }
    const RowFormat& format(KcDbRowType type) const { return m_data.rows[indexOf(type)]; }

    // Row types and grid lines are sums of bits.
    void setTextStyle(KcDbObjectId style, int rowTypes = kAllRows);
    void setTextHeight(double height, int rowTypes = kAllRows);
    void setAlignment(int alignment, int rowTypes = kAllRows);
    void setColor(const KcCmColor& color, int rowTypes = kAllRows);
    /// Nothing takes the background away.
    void setBackgroundColor(std::optional<KcCmColor> color, int rowTypes = kAllRows);
    void setGridColor(const KcCmColor& color, int gridLines = kAllGridLines, int rowTypes = kAllRows);
    void setGridLineWeight(int weight, int gridLines = kAllGridLines, int rowTypes = kAllRows);
    void setGridVisibility(bool visible, int gridLines = kAllGridLines, int rowTypes = kAllRows);
    void setMargins(double horizontal, double vertical);

    /// The style of that name in the drawing's table style dictionary; null when there is none.
    static KcDbObjectId find(KcDbDatabase& database, const QString& name);
    /// The style of that name, made with the usual values when missing: margins and heights are those of
    /// metric drawings where the drawing says that it is one. Null for an empty name.
    static KcDbObjectId create(KcDbDatabase& database, const QString& name);

private:
    Data m_data;
};
