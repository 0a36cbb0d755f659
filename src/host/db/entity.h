// The base of everything that is drawn: layer, colour, line type, visibility, extents, transformation.
#pragma once

#include "db/open.h"
#include "ge/matrix.h"

/// A colour as an entity or layer carries it: an index colour, and the true colour that overrides it where there is one.
struct KcCmColor {
    static constexpr int kByBlock = 0;
    static constexpr int kByLayer = 256;

    int16_t index = kByLayer;
    int32_t rgb = -1; ///< 0xRRGGBB; -1: none

    friend bool operator==(const KcCmColor&, const KcCmColor&) = default;
};

class KcGiWorldDraw;

/// Which of two curves go on beyond their ends when their common points are looked for.
enum class KcDbIntersect { OnBothOperands, ExtendThis, ExtendArg, ExtendBoth };

class KcDbEntity : public KcDbObject {
public:
    static const KcRxClass* desc();

    KcDbObjectId layerId() const { return m_layer; }
    /// The layer's name; "0" when the entity has none.
    QString layer() const;
    void setLayer(KcDbObjectId layer) { m_layer = layer; }
    /// eKeyNotFound when the drawing has no such layer.
    Kcad::ErrorStatus setLayer(const QString& name, KcDbDatabase* database = nullptr);

    const KcCmColor& color() const { return m_color; }
    void setColor(const KcCmColor& color) { m_color = color; }
    int colorIndex() const { return m_color.index; }
    /// 256 ByLayer, 0 ByBlock; takes away a true colour.
    void setColorIndex(int index) { m_color = {int16_t(index), -1}; }

    /// Null stands for ByLayer.
    KcDbObjectId linetypeId() const { return m_linetype; }
    void setLinetypeId(KcDbObjectId linetype) { m_linetype = linetype; }
    double linetypeScale() const { return m_linetypeScale; }
    void setLinetypeScale(double scale) { m_linetypeScale = scale; }
    /// Hundredths of a millimetre; -1 ByLayer, -2 ByBlock, -3 default.
    int lineWeight() const { return m_lineWeight; }
    void setLineWeight(int weight) { m_lineWeight = int16_t(weight); }
    bool isVisible() const { return m_visible; }
    void setVisible(bool visible) { m_visible = visible; }
    /// As the file holds it: 0 none given, 0x01000000 ByBlock, 0x020000AA an alpha of AA.
    uint32_t transparency() const { return m_transparency; }
    void setTransparency(uint32_t value) { m_transparency = value; }
    /// True for entities of paper space (the mark that entities of the entities section carry).
    bool isInPaperSpace() const { return m_paperSpace; }
    void setInPaperSpace(bool paper) { m_paperSpace = paper; }

    /// Sets layer, colour and line type to the drawing's current ones.
    void setDatabaseDefaults(KcDbDatabase& database);
    /// Takes layer, colour, line type, scale, weight and visibility from another entity.
    void setPropertiesFrom(const KcDbEntity& other);

    /// The box of what the entity draws, in world coordinates; empty when it draws nothing.
    virtual KcGeExtents3d geomExtents() const = 0;
    /// The box of the entity's image under an affine transform, uneven scaling included: what a block reference needs
    /// of the entities that it draws. Entities that cannot tell give the image of their own box.
    virtual KcGeExtents3d extentsUnder(const KcGeMatrix3d& matrix) const { return matrix.transformed(geomExtents()); }
    /// Draws the entity: for the screen, plots and hit tests alike. Kinds that cannot be drawn say so to the sink.
    virtual void worldDraw(KcGiWorldDraw& draw) const;
    /// Moves, turns, scales or mirrors the entity.
    virtual Kcad::ErrorStatus transformBy(const KcGeMatrix3d& matrix) = 0;

    /// The points that two curves have in common, in world coordinates and on this one, each once, appended to
    /// `points`; of a stretch that both share, its ends. Curves in parallel planes are looked at along the
    /// planes' normal, others must really meet (`intersectCurves`). eNotApplicable when one of the entities is
    /// no curve, eDegenerateGeometry when its values make none.
    Kcad::ErrorStatus
    intersectWith(const KcDbEntity& other, KcDbIntersect mode, std::vector<KcGePoint3d>& points) const;

protected:
    KcDbEntity() = default;
    KcDbEntity(const KcDbEntity&) = default;

private:
    KcDbObjectId m_layer;
    KcDbObjectId m_linetype;
    double m_linetypeScale = 1.0;
    KcCmColor m_color;
    uint32_t m_transparency = 0;
    int16_t m_lineWeight = -1;
    bool m_visible = true;
    bool m_paperSpace = false;
};
