// Records of the symbol tables other than blocks: layers, line types, text and dimension styles, applications, user
// coordinate systems, views, viewport configurations.
#pragma once

#include "db/entity.h"
#include "db/symbol_table.h"

class KcDbLayerTableRecord : public KcDbSymbolTableRecord {
    KCRX_DECLARE(KcDbLayerTableRecord)
public:
    struct Data {
        KcCmColor color {7, -1};
        bool off = false;
        KcDbObjectId linetype;
        bool plottable = true;
        int16_t lineWeight = -3;
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

    int colorIndex() const { return m_data.color.index; }
    void setColor(int index) { m_data.color = {int16_t(index), -1}; }
    KcDbObjectId linetypeObjectId() const { return m_data.linetype; }
    void setLinetypeObjectId(KcDbObjectId id) { m_data.linetype = id; }
    bool isOff() const { return m_data.off; }
    void setIsOff(bool off) { m_data.off = off; }
    bool isFrozen() const { return flags() & 1; }
    void setIsFrozen(bool frozen) { setFlags(frozen ? flags() | 1 : flags() & ~1); }
    bool isLocked() const { return flags() & 4; }
    void setIsLocked(bool locked) { setFlags(locked ? flags() | 4 : flags() & ~4); }

private:
    Data m_data;
};

class KcDbLinetypeTableRecord : public KcDbSymbolTableRecord {
    KCRX_DECLARE(KcDbLinetypeTableRecord)
public:
    /// One element of the pattern: a dash (positive), a gap (negative) or a dot (0), in drawing units at scale 1, with
    /// a text or shape drawn in it where `flags` say so.
    struct Dash {
        double length = 0.0;
        int flags = 0; ///< 1 absolute rotation, 2 text, 4 shape
        int shapeNumber = 0;
        KcDbObjectId style;
        double scale = 1.0;
        double rotation = 0.0; ///< radians
        double offsetX = 0.0, offsetY = 0.0;
        QString text;
    };
    struct Data {
        QString description;
        double patternLength = 0.0;
        std::vector<Dash> dashes;
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

private:
    Data m_data;
};

class KcDbTextStyleTableRecord : public KcDbSymbolTableRecord {
    KCRX_DECLARE(KcDbTextStyleTableRecord)
public:
    struct Data {
        double fixedHeight = 0.0; ///< 0: given by each text
        double widthFactor = 1.0;
        double obliqueAngle = 0.0; ///< radians
        int generation = 0; ///< 2 backwards, 4 upside down
        double lastHeight = 2.5;
        QString font; ///< font file
        QString bigFont; ///< shape font for Chinese and other wide characters
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }
    /// Outline font family kept in the record's extended data; empty when the style names only files.
    QString typeface() const;

private:
    Data m_data;
};

class KcDbDimStyleTableRecord : public KcDbSymbolTableRecord {
    KCRX_DECLARE(KcDbDimStyleTableRecord)
public:
    struct Data {
        double overallScale = 1.0;
        double arrowSize = 0.18;
        double textHeight = 0.18;
        double gap = 0.09;
        KcDbObjectId textStyle;
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

private:
    Data m_data;
};

class KcDbRegAppTableRecord : public KcDbSymbolTableRecord {
    KCRX_DECLARE(KcDbRegAppTableRecord)
};

class KcDbUCSTableRecord : public KcDbSymbolTableRecord {
    KCRX_DECLARE(KcDbUCSTableRecord)
public:
    struct Data {
        KcGePoint3d origin;
        KcGePoint3d xAxis {1, 0, 0}, yAxis {0, 1, 0};
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

private:
    Data m_data;
};

/// A named view. Its values stay as the file holds them.
class KcDbViewTableRecord : public KcDbSymbolTableRecord {
    KCRX_DECLARE(KcDbViewTableRecord)
};

/// A viewport configuration; "*Active" is the view of the model window.
class KcDbViewportTableRecord : public KcDbSymbolTableRecord {
    KCRX_DECLARE(KcDbViewportTableRecord)
public:
    struct Data {
        KcGePoint2d viewCenter;
        double viewHeight = 1.0;
        double aspectRatio = 1.0;
    };
    const Data& data() const { return m_data; }
    Data& data() { return m_data; }

private:
    Data m_data;
};
