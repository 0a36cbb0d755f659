// Walking a drawing: what is visible, in which order, and how it looks.

#include "gi/paint/scene.h"

#include "db/block_reference.h"
#include "db/draw_order.h"
#include "db/header.h"
#include "db/tables.h"
#include "db/text.h"
#include "db/viewport.h"
#include "gi/colour_table.h"

namespace {

constexpr size_t kMostVisits = 200'000'000; // entities drawn, those of blocks counted each time
constexpr size_t kVisitsBetweenLooks = 256;
constexpr int kDefaultLineWeight = 25; // hundredths of a millimetre
constexpr int kByLayerWeight = -1, kByBlockWeight = -2, kDefaultWeight = -3;
constexpr uint32_t kAlphaGiven = 0x02000000, kAlphaByBlock = 0x01000000;

bool isLight(QRgb color)
{
    return qGray(color) >= 128;
}

} // namespace

KcGiScene::KcGiScene(KcDbDatabase& database, KcGiDevice& device, const KcGiSceneOptions& options)
    : m_database(database)
    , m_device(device)
    , m_options(options)
{
    if (const KcDbRead<KcDbHeader> header(database.headerId()); header) {
        m_linetypeScale = header->real("$LTSCALE", 1.0);
        m_paperLinetypes = header->integer("$PSLTSCALE", 1) != 0;
    }
    if (!(m_linetypeScale > 0.0) || !std::isfinite(m_linetypeScale))
        m_linetypeScale = 1.0;
    m_byLayerLinetype = database.byLayerLinetype();
    m_byBlockLinetype = kcdbFindRecord(database.linetypeTable(), QStringLiteral("ByBlock"));
    m_context.blockColor = isLight(options.background) ? 0xff000000 : 0xffffffff;
    enter(options.toDevice);
}

KcGiScene::~KcGiScene() = default;

// The part of the plane that is seen and the size of a pixel, in the coordinates that a matrix leads from.
void KcGiScene::enter(const KcGeMatrix3d& toDevice)
{
    m_context.matrix = toDevice;
    // Seen along the Z axis only the upper left part matters.
    const double a = toDevice.entry(0, 0), b = toDevice.entry(0, 1), c = toDevice.entry(1, 0),
                 d = toDevice.entry(1, 1);
    const double determinant = a * d - b * c;
    const double scale = kcgiLargestScale(toDevice);
    m_context.pixel = m_options.area && scale > 0.0 && std::isfinite(scale) ? 1.0 / scale : 0.0;
    m_context.window.reset();
    if (!m_options.area || !std::isfinite(determinant) || determinant == 0.0)
        return;
    KcGeExtents2d window;
    const QRectF& area = *m_options.area;
    for (const QPointF corner : { area.topLeft(), area.topRight(), area.bottomLeft(), area.bottomRight() }) {
        const double x = corner.x() - toDevice.entry(0, 3), y = corner.y() - toDevice.entry(1, 3);
        window.addPoint({ (d * x - b * y) / determinant, (a * y - c * x) / determinant });
    }
    m_context.window = window;
}

// Properties.

const KcGiScene::Layer& KcGiScene::layer(KcDbObjectId id)
{
    const auto [at, isNew] = m_layers.try_emplace(id.stub());
    Layer& layer = at->second;
    if (!isNew)
        return layer;
    layer.id = id.stub();
    layer.isZero = id.isNull() || kcdbRecordName(id) == u"0";
    if (const KcDbRead<KcDbLayerTableRecord> record(id); record) {
        layer.color = { record->data().color.index, record->data().color.rgb };
        layer.linetype = record->linetypeObjectId();
        layer.lineWeight = record->data().lineWeight;
        layer.off = record->isOff();
        layer.frozen = record->isFrozen();
        layer.plottable = record->data().plottable;
        if (const KcDbValueList* values = record->xdataOf(QStringLiteral("AcCmTransparency")))
            for (const KcDbTypedValue& value : *values)
                if (const auto given = uint32_t(value.integer()); value.code == 1071 && (given & kAlphaGiven))
                    layer.alpha = int(given & 0xff);
    }
    layer.rgb = resolve(layer.color, layer);
    return layer;
}

const KcGiScene::Pattern* KcGiScene::pattern(KcDbObjectId linetype)
{
    if (linetype.isNull())
        return nullptr;
    const auto [at, isNew] = m_patterns.try_emplace(linetype.stub());
    Pattern& pattern = at->second;
    if (isNew)
        if (const KcDbRead<KcDbLinetypeTableRecord> record(linetype); record) {
            // Shapes and texts stand in gaps; they are left as gaps.
            for (const auto& dash : record->data().dashes) {
                pattern.dashes.push_back(dash.length);
                pattern.length += std::abs(dash.length);
            }
            const bool hasGap = std::any_of(
                pattern.dashes.begin(), pattern.dashes.end(), [](double length) { return length < 0.0; });
            if (!hasGap || !std::isfinite(pattern.length))
                pattern = {};
        }
    return pattern.length > 0.0 ? &pattern : nullptr;
}

QRgb KcGiScene::resolve(const KcGiColor& color, const Layer& layer) const
{
    if (m_options.oneColor)
        return *m_options.oneColor;
    // White beside index 7 is the colour of the foreground, written twice.
    const bool isForeground = color.index == 7 && color.rgb == 0xffffff;
    if (color.rgb >= 0 && !isForeground)
        return 0xff000000u | QRgb(color.rgb);
    if (color.index == KcGiColor::kByLayer)
        return layer.rgb;
    if (color.index == KcGiColor::kByBlock)
        return m_context.blockColor;
    if (color.index == 7 || color.index == 255) {
        const QRgb white = kcgiIndexColor(color.index);
        return isLight(m_options.background) ? QRgb(0xff000000) : white;
    }
    return kcgiIndexColor(color.index);
}

int KcGiScene::lineWeightOf(int hundredths, const Layer& layer) const
{
    if (hundredths == kByLayerWeight)
        hundredths = layer.lineWeight;
    else if (hundredths == kByBlockWeight)
        hundredths = m_context.blockLineWeight;
    return hundredths < 0 ? kDefaultWeight : hundredths;
}

double KcGiScene::penWidth(int hundredths, const Layer& layer) const
{
    const int weight = lineWeightOf(hundredths, layer);
    return (weight == kDefaultWeight ? kDefaultLineWeight : weight) / 100.0 * m_options.unitsPerMillimetre;
}

int KcGiScene::alphaOf(const KcDbEntity& entity, const Layer& layer) const
{
    const uint32_t value = entity.transparency();
    if (value & kAlphaGiven)
        return int(value & 0xff);
    return value & kAlphaByBlock ? m_context.blockAlpha : layer.alpha;
}

KcGiColor KcGiScene::entityColor() const
{
    return m_entity ? KcGiColor{ m_entity->color().index, m_entity->color().rgb } : KcGiColor();
}

void KcGiScene::setColor(const KcGiColor& color)
{
    if (!m_entity || !m_layer)
        return;
    // ByLayer and ByBlock of a part mean the entity's own colour where that is another one.
    const bool own
        = color.rgb < 0 && (color.index == KcGiColor::kByLayer || color.index == KcGiColor::kByBlock);
    const int alpha = qAlpha(m_traits.color);
    const QRgb rgb = resolve(own ? entityColor() : color, *m_layer);
    m_traits.color = qRgba(qRed(rgb), qGreen(rgb), qBlue(rgb), alpha);
}

void KcGiScene::setLineWeight(int hundredths)
{
    if (m_layer)
        m_traits.width = penWidth(hundredths, *m_layer);
}

// Walking.

bool KcGiScene::isStopped()
{
    if (m_stopped)
        return true;
    if (++m_visits > kMostVisits) {
        leftOut(QStringLiteral("everything behind the first %1 parts").arg(kMostVisits));
        return m_stopped = true;
    }
    if (m_visits % kVisitsBetweenLooks == 0 && m_options.cancelled && m_options.cancelled())
        m_stopped = true;
    return m_stopped;
}

bool KcGiScene::drawSpace(KcDbObjectId block)
{
    const KcDbRead<KcDbBlockTableRecord> record(block);
    return !record || drawAll(kcdbInDrawingOrder(*record));
}

bool KcGiScene::draw(std::vector<KcDbObjectId> ids)
{
    if (!ids.empty())
        if (const KcDbRead<KcDbEntity> first(ids.front()); first)
            kcdbSortForDrawing(first->ownerId(), ids);
    return drawAll(ids);
}

bool KcGiScene::drawAll(const std::vector<KcDbObjectId>& ids)
{
    size_t done = 0;
    for (const KcDbObjectId id : ids) {
        if (isStopped())
            return false;
        if (const KcDbRead<KcDbEntity> entity(id); entity)
            drawOne(*entity);
        if (m_options.progress && m_definitions.empty())
            m_options.progress(++done, ids.size());
    }
    return !m_stopped;
}

void KcGiScene::draw(const KcDbEntity& entity)
{
    drawOne(entity);
}

void KcGiScene::entity(const KcDbEntity& entity)
{
    drawOne(entity);
}

void KcGiScene::drawOne(const KcDbEntity& entity)
{
    if (!entity.isVisible())
        return;
    // A viewport shows the model even where its frame is hidden.
    if (entity.isKindOf(KcDbViewport::desc()))
        drawModel(static_cast<const KcDbViewport&>(entity));
    const Layer* own = &layer(entity.layerId());
    // What lies on the layer "0" of a definition takes the layer of the reference.
    if (m_context.blockLayer && own->isZero)
        own = m_context.blockLayer;
    if (own->frozen || (m_options.plotting && !own->plottable))
        return;
    if (m_context.frozenLayers && m_context.frozenLayers->contains(own))
        return;
    const bool isReference = entity.isKindOf(KcDbBlockReference::desc());
    if (own->off && !isReference)
        return;
    if (m_context.window && !isReference && !m_context.allSeen)
        if (const KcGeExtents3d box = entity.geomExtents(); !box.isEmpty() && !wants(box))
            return;

    const Traits traitsBefore = m_traits;
    const KcDbEntity* entityBefore = std::exchange(m_entity, &entity);
    const Layer* layerBefore = std::exchange(m_layer, own);

    const QRgb rgb = resolve(entityColor(), *own);
    m_traits = {};
    m_traits.color = qRgba(qRed(rgb), qGreen(rgb), qBlue(rgb), alphaOf(entity, *own));
    const KcDbObjectId linetype = entity.linetypeId();
    if (linetype.isNull() || linetype == m_byLayerLinetype)
        m_traits.pattern = pattern(own->linetype);
    else if (linetype == m_byBlockLinetype)
        m_traits.pattern = m_context.blockPattern;
    else
        m_traits.pattern = pattern(linetype);
    m_traits.patternScale = m_linetypeScale * m_context.patternFactor
        * (entity.linetypeScale() > 0.0 ? entity.linetypeScale() : 1.0);
    m_traits.width = penWidth(entity.lineWeight(), *own);

    // Of the attribute definitions only constant ones are drawn inside a reference: by their value, not their
    // tag.
    if (!m_definitions.empty() && entity.isKindOf(KcDbAttributeDefinition::desc()))
        static_cast<const KcDbAttributeDefinition&>(entity).drawInReference(*this);
    else
        entity.worldDraw(*this);

    m_traits = traitsBefore;
    m_entity = entityBefore;
    m_layer = layerBefore;
}
