// Texts: single-line, attributes and their definitions, multiline.
#pragma once

#include "db/entity.h"
#include "db/entity_macros.h"
#include "db/mtext_format.h"
#include "gi/text_metrics.h"

/// What a text style says about its font; null stands for the style "Standard" of the drawing. Without a drawing, the
/// font of a drawing that names none.
KcGi::TextStyle kcdbFontOfStyle(KcDbObjectId style, const KcDbDatabase* database);

struct KcGiColor;

struct KcDbTextData {
    KcGePoint3d position; ///< object coordinates; the left end of the base line
    KcGePoint3d alignment; ///< object coordinates; the point that other justifications refer to
    double height = 0.2;
    QString text;
    double rotation = 0.0; ///< radians
    double widthFactor = 1.0;
    double oblique = 0.0; ///< radians
    KcDbObjectId style; ///< null: "Standard"
    int generation = 0; ///< 2 backwards, 4 upside down
    int horizontal = 0; ///< 0 left, 1 centre, 2 right, 3 aligned, 4 middle, 5 fit
    int vertical = 0; ///< 0 base line, 1 bottom, 2 middle, 3 top
    double thickness = 0.0;
    KcGeVector3d normal = KcGeVector3d::kZAxis;
};

class KcDbText : public KcDbEntity {
    KCRX_DECLARE(KcDbText)
public:
    using Data = KcDbTextData;
    KCDB_ENTITY_DATA
    void worldDraw(KcGiWorldDraw& draw) const override;

    /// A part of a text between two changes of the lines that run under, over and through it.
    struct Run {
        QString text;
        bool underlined = false, overlined = false, struck = false;
    };
    /// Control codes resolved: %%u, %%o and %%k as the runs' marks, all others as characters.
    static std::vector<Run> runsOf(const QString& text);
    /// The characters alone.
    static QString resolved(const QString& text);
    /// The character that "\\U+XXXX" or "\\M+nXXXX" at the start of a text stands for; `length` becomes the length of the
    /// escape, 0 when there is none.
    static QString escapedCharacter(QStringView text, qsizetype& length);

    const QString& textString() const { return m_data.text; }
    /// Control codes (%%d, %%c, %%p, %%u, %%o, %%nnn) resolved.
    QString plainText() const;
    /// Sets the text and puts a text that is not left-justified where its alignment point wants it.
    void setTextString(const QString& text);
    void setHeight(double height);
    double height() const { return m_data.height; }
    /// World coordinates of the point that the justification refers to.
    KcGePoint3d anchor() const;
    /// Computes `position` from the alignment point; needed after changes to height, text, style or justification.
    void adjustAlignment();
    /// Advance width of the text in drawing units.
    double textWidth() const;
    /// From the coordinates in which the text is set (its start at the origin, x along the base line, upright) to world
    /// coordinates: slant, generation flags, rotation and plane of the text.
    KcGeMatrix3d textTransform() const;

    /// The values with which the text is drawn: its start, and what fits it between two points, from the alignment and
    /// the font that is there, whatever the file holds. Of the given text instead of its own where given.
    Data placed(const QString* other = nullptr) const;

protected:
    static KcGeMatrix3d transformOf(const Data& placed);
    /// The box of the text as drawn, under a transform.
    KcGeExtents3d boxUnder(const KcGeMatrix3d& matrix, const QString* other = nullptr) const;
    /// Draws the text, or the given one in its place.
    void drawText(KcGiWorldDraw& draw, const QString* other = nullptr) const;
};

/// A text of a block reference, filled in from its definition.
class KcDbAttribute : public KcDbText {
    KCRX_DECLARE(KcDbAttribute)
public:
    struct AttributeData {
        QString tag;
        int flags = 0; ///< 1 invisible, 2 constant, 4 verify, 8 preset
        int fieldLength = 0;
    };
    const AttributeData& attribute() const { return m_attribute; }
    AttributeData& attribute() { return m_attribute; }
    bool isInvisible() const { return m_attribute.flags & 1; }
    void worldDraw(KcGiWorldDraw& draw) const override;
    /// Nothing when the attribute is invisible.
    KcGeExtents3d extentsUnder(const KcGeMatrix3d& matrix) const override;

private:
    AttributeData m_attribute;
};

class KcDbAttributeDefinition : public KcDbText {
    KCRX_DECLARE(KcDbAttributeDefinition)
public:
    struct AttributeData {
        QString prompt;
        QString tag;
        int flags = 0; ///< as for attributes
        int fieldLength = 0;
    };
    const AttributeData& attribute() const { return m_attribute; }
    AttributeData& attribute() { return m_attribute; }
    bool isInvisible() const { return m_attribute.flags & 1; }
    bool isConstant() const { return m_attribute.flags & 2; }
    /// A definition shows its tag.
    void worldDraw(KcGiWorldDraw& draw) const override;
    KcGeExtents3d extentsUnder(const KcGeMatrix3d& matrix) const override;
    /// What a reference draws of a constant attribute: its value. Empty for any other, and for invisible ones.
    KcGeExtents3d extentsInReference(const KcGeMatrix3d& matrix) const;
    /// Draws what a reference shows of it: the value of a constant one.
    void drawInReference(KcGiWorldDraw& draw) const;

private:
    AttributeData m_attribute;
};

class KcDbMText : public KcDbEntity {
    KCRX_DECLARE(KcDbMText)
public:
    struct Data {
        KcGePoint3d location; ///< world coordinates; the point that the attachment refers to
        double height = 0.2;
        double width = 0.0; ///< reference width at which lines break; 0: they do not
        double definedHeight = 0.0;
        int attachment = 1; ///< 1 top left, 2 top centre, … 9 bottom right
        int flow = 1; ///< 1 left to right, 3 top to bottom, 5 by style
        QString contents; ///< with format codes
        KcDbObjectId style;
        KcGeVector3d normal = KcGeVector3d::kZAxis;
        bool hasDirection = false;
        KcGeVector3d direction {1, 0, 0}; ///< of the X axis, world coordinates; used when `hasDirection`
        double rotation = 0.0; ///< radians; used otherwise
        int lineSpacingStyle = 1;
        double lineSpacingFactor = 1.0;
        int fillMode = 0; ///< 0 none, 1 colour, 2 window background
        double fillFactor = 1.5;
        int fillColor = 256;
        double actualWidth = 0.0, actualHeight = 0.0; ///< as last computed by the program that wrote the file; 0: unknown
        /// Lines break here instead of at `width` where the text is one of several columns, which files before 2018
        /// hold as texts of their own; 0: it is none.
        double columnWidth = 0.0;
        std::shared_ptr<const KcDbMTextColumns> columns; ///< of a text that holds those of its contents itself; or null
    };
    KCDB_ENTITY_DATA
    void worldDraw(KcGiWorldDraw& draw) const override;

    /// Draws the text in a colour that stands for the entity's own.
    void drawIn(KcGiWorldDraw& draw, const KcGiColor& own) const;
    const QString& contents() const { return m_data.contents; }
    void setContents(const QString& contents);
    /// The text without format codes; paragraphs are separated by line feeds.
    QString plainText() const;
    /// The lines as they are drawn, broken at the reference width, without format codes.
    QStringList lines() const;
    /// Size of the text as drawn, from the advances of its font, in drawing units.
    double actualWidth() const;
    double actualHeight() const;
    /// Angle of the X axis of the text in its plane, radians.
    double rotation() const;
    /// The runs of the contents in the looks of the text's style.
    std::vector<KcDbMTextRun> runs() const;
    /// The text set into lines; `textTransform` leads from its coordinates to world coordinates.
    KcDbMTextLayout layout() const;
    /// In files before 2018 the text of the first column tells the width of all, and names the texts of the others.
    struct ColumnNote {
        double width = 0.0; ///< 0: the text says nothing of columns
        std::vector<KcDbObjectId> others;
    };
    ColumnNote columnNote() const;
    /// Takes away what the text says of other columns in its file; lines break where they did.
    void forgetOtherColumns();
    /// The area behind the text that is filled or masked, in the coordinates of the layout; empty when there is none.
    KcGeExtents3d backgroundOf(const KcDbMTextLayout& set) const;
    KcGeMatrix3d textTransform() const;

private:
    void scaleColumns(double along, double up);
};
