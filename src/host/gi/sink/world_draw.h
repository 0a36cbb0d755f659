// What an entity draws into. One function per entity class (`worldDraw`) serves the screen, plots, extents
// and hit tests: they differ in who stands behind this interface.
#pragma once

#include "gi/sink/path.h"
#include "gi/text_metrics.h"

class KcDbEntity;
class KcDbObjectId;

/// A colour as drawings give it: an index colour (0 ByBlock, 256 ByLayer), or a true colour.
struct KcGiColor {
    static constexpr int kByBlock = 0, kByLayer = 256;
    int index = kByLayer;
    int32_t rgb = -1; ///< 0xRRGGBB wins over the index; -1: none
    friend bool operator==(const KcGiColor&, const KcGiColor&) = default;
};

/// One line of text in one font.
struct KcGiTextRun {
    QString text; ///< no line breaks, no codes
    KcGi::TextStyle style;
    double height = 1.0; ///< of capital letters
    KcGePoint3d origin; ///< where the base line begins
    /// One unit along the base line and one unit up, with what width factor, obliquing and mirroring make of
    /// them: glyph coordinates (x, y) are drawn at origin + along·x + up·y.
    KcGeVector3d along{ 1, 0, 0 }, up{ 0, 1, 0 };
};

/// Two colours that run into one another.
struct KcGiGradient {
    enum class Shape { Linear, Cylinder, Spherical, Hemispherical, Curved };
    Shape shape = Shape::Linear;
    bool inverted = false;
    uint32_t from = 0, to = 0xffffff; ///< 0xRRGGBB
    double angle = 0.0; ///< radians
    double shift = 0.0; ///< 0: centred; 1: moved to the side
};

/// Coordinates are those of the entity that draws: world coordinates, or a block's where a definition is
/// drawn. Lengths in drawing units, angles in radians. The entity's own colour, line type, line weight and
/// visibility hold already when its `worldDraw` is called; what it sets itself holds until it returns.
class KcGiWorldDraw {
public:
    virtual ~KcGiWorldDraw() = default;

    // What is asked for, so that nobody draws what cannot be seen.

    /// What part of the plane is wanted, in the current coordinates; nothing when everything is (extents).
    virtual std::optional<KcGeExtents2d> window() const = 0;
    /// The smallest length that can be told apart, in the current coordinates; 0 when everything counts.
    virtual double pixel() const = 0;
    /// True on paper: what is shown on the screen only stays away.
    virtual bool isPlotting() const { return false; }
    /// False when nothing of a box would be seen.
    bool wants(const KcGeExtents3d& box) const
    {
        const auto seen = window();
        return !seen
            || (!box.isEmpty() && seen->overlaps({ { box.min.x, box.min.y }, { box.max.x, box.max.y } }));
    }

    // Traits.

    /// ByLayer and ByBlock mean those of the entity.
    virtual void setColor(const KcGiColor& color) = 0;
    /// The entity's own colour, as it holds when drawing begins.
    virtual KcGiColor entityColor() const = 0;
    /// Hundredths of a millimetre; -1 ByLayer, -2 ByBlock, -3 default.
    virtual void setLineWeight(int hundredths) = 0;
    /// Lines without gaps whatever the entity's line type (arrows, frames of texts).
    virtual void setContinuous(bool on) = 0;

    // Lines and areas.

    struct Stroke {
        bool throughVertices = true; ///< the line type goes on across vertices; false: begins anew at each
    };
    /// Lines of the current weight and line type.
    virtual void stroke(const KcGiPath& path, Stroke options) = 0;
    void stroke(const KcGiPath& path) { stroke(path, Stroke()); }
    /// Areas by the even-odd rule.
    virtual void fill(const KcGiPath& path) = 0;
    virtual void fill(const KcGiPath& path, const KcGiGradient& gradient) = 0;
    /// Hides what was drawn before below an area.
    virtual void mask(const KcGiPath& path) = 0;
    /// A line without ends, or with one end.
    virtual void infiniteLine(KcGePoint3d base, KcGeVector3d direction, bool bothWays) = 0;
    /// A point by the drawing's point mode; `turn` is the angle of its X axis.
    virtual void point(KcGePoint3d position, double turn) = 0;
    virtual void text(const KcGiTextRun& run) = 0;

    void line(KcGePoint3d a, KcGePoint3d b)
    {
        KcGiPath path;
        path.moveTo(a);
        path.lineTo(b);
        stroke(path);
    }

    // Others.

    /// Another entity, with its own properties (an attribute, a part of a dimension that owns it).
    virtual void entity(const KcDbEntity& entity) = 0;
    /// The contents of a block definition under a transform; ByBlock in it means this entity's properties.
    /// The layer "0" in it means this entity's layer. Definitions that contain themselves are drawn once and
    /// told.
    virtual void block(KcDbObjectId definition, const KcGeMatrix3d& toCurrent) = 0;
    /// From here to the matching `popClip` only what lies inside the area is drawn, or outside when inverted.
    virtual void pushClip(const KcGiPath& area, bool inverted) = 0;
    virtual void popClip() = 0;

    /// One sentence about what could not be drawn, or only roughly. Equal sentences are told once, with their
    /// number.
    virtual void leftOut(const QString& what) = 0;
};
