// The model as the viewports of a layout show it.

#include "gi/paint/scene.h"

#include "db/block_table_record.h"
#include "db/draw_order.h"
#include "db/open.h"
#include "db/viewport.h"

namespace {

constexpr int kSheet = 1; // number of the viewport that is the sheet itself
constexpr int kPerspective = 1, kCutToShape = 0x10000, kOff = 0x20000; // bits of a viewport's flags
constexpr int kFrozenLayer = 331, kFrozenLayerOld = 341, kShape = 340; // group codes

// The lines that an entity draws, as one path.
class Outline : public KcGiWorldDraw {
public:
    explicit Outline(const KcDbEntity& entity) { entity.worldDraw(*this); }

    std::optional<KcGeExtents2d> window() const override { return {}; }
    double pixel() const override { return 0.0; }
    void setColor(const KcGiColor&) override { }
    KcGiColor entityColor() const override { return {}; }
    void setLineWeight(int) override { }
    void setContinuous(bool) override { }
    void stroke(const KcGiPath& drawn, Stroke) override { path = drawn; }
    void fill(const KcGiPath& drawn) override { path = drawn; }
    void fill(const KcGiPath&, const KcGiGradient&) override { }
    void mask(const KcGiPath&) override { }
    void infiniteLine(KcGePoint3d, KcGeVector3d, bool) override { }
    void point(KcGePoint3d, double) override { }
    void text(const KcGiTextRun&) override { }
    void entity(const KcDbEntity&) override { }
    void block(KcDbObjectId, const KcGeMatrix3d&) override { }
    void pushClip(const KcGiPath&, bool) override { }
    void popClip() override { }
    void leftOut(const QString&) override { }

    KcGiPath path;
};

// From the model to the sheet: the plane through the target across the direction of view, turned by the
// twist, laid so that the middle of the view is the middle of the viewport.
KcGeMatrix3d modelToSheet(const KcDbViewport::Data& v)
{
    return KcGeMatrix3d::translation(v.center - KcGePoint3d())
        * KcGeMatrix3d::scaling(v.height / v.viewHeight)
        * KcGeMatrix3d::translation({ -v.viewCenter.x, -v.viewCenter.y, 0.0 })
        * KcGeMatrix3d::rotation(v.viewTwist) * KcGeMatrix3d::worldToPlane(v.viewDirection)
        * KcGeMatrix3d::translation(KcGePoint3d() - v.viewTarget);
}

} // namespace

void KcGiScene::drawModel(const KcDbViewport& viewport)
{
    const KcDbViewport::Data& v = viewport.data();
    if (v.number == kSheet || v.status == 0 || (v.viewFlags & kOff) || !m_definitions.empty()
        || m_options.oneColor)
        return;
    if (!(v.width > 0.0) || !(v.height > 0.0) || !(v.viewHeight > 0.0)
        || !std::isfinite(v.height / v.viewHeight))
        return leftOut(QStringLiteral("a viewport without a size"));
    const KcGeExtents3d frame = viewport.geomExtents();
    if (!wants(frame))
        return;
    if (v.viewFlags & kPerspective)
        leftOut(QStringLiteral("the perspective of a viewport, drawn in parallel"));

    KcGiPath shape;
    std::set<const Layer*> frozen;
    if (m_database.file())
        for (const KcDbTypedValue& value : m_database.file()->values(viewport)) {
            if (value.code == kFrozenLayer || value.code == kFrozenLayerOld)
                frozen.insert(&layer(value.id()));
            else if (value.code == kShape && (v.viewFlags & kCutToShape))
                if (const KcDbRead<KcDbEntity> entity(value.id()); entity)
                    shape = Outline(*entity).path;
        }
    if (shape.isEmpty())
        shape.polyline(
            { frame.min, { frame.max.x, frame.min.y, 0 }, frame.max, { frame.min.x, frame.max.y, 0 } }, true);

    const Context before = m_context;
    const Traits traitsBefore = m_traits;
    const std::optional<QRectF> areaBefore = m_options.area;
    const KcDbEntity* entityBefore = std::exchange(m_entity, nullptr);
    const Layer* layerBefore = std::exchange(m_layer, nullptr);
    pushClip(shape, false);
    const KcGeExtents3d seen = m_context.matrix.transformed(frame);
    const QRectF onDevice(seen.min.x, seen.min.y, seen.width(), seen.height());
    m_options.area = areaBefore ? areaBefore->intersected(onDevice) : onDevice;
    m_context.frozenLayers = &frozen;
    if (m_paperLinetypes)
        m_context.patternFactor = v.viewHeight / v.height;
    enter(m_context.matrix * modelToSheet(v));
    const KcDbRead<KcDbBlockTableRecord> model(m_database.modelSpace());
    for (const KcDbObjectId id : kcdbInDrawingOrder(*model)) {
        if (isStopped())
            break;
        if (const KcDbRead<KcDbEntity> entity(id); entity)
            drawOne(*entity);
    }
    popClip();
    m_options.area = areaBefore;
    m_context = before;
    m_traits = traitsBefore;
    m_entity = entityBefore;
    m_layer = layerBefore;
}
