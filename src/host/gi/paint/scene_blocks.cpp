// Block references: definitions under transforms, placed by the device where it can.

#include "gi/paint/scene.h"

#include "db/block_reference.h"
#include "db/curves.h"
#include "db/draw_order.h"
#include "db/open.h"

namespace {

constexpr size_t kDeepest = 64; // blocks in blocks
constexpr int kDefaultWeight = -3;

// Attribute definitions stand for the attributes of the reference; constant ones are drawn with the
// definition.
bool isReplaced(const KcDbEntity& entity)
{
    return entity.isKindOf(KcDbAttributeDefinition::desc())
        && (!static_cast<const KcDbAttributeDefinition&>(entity).isConstant()
            || static_cast<const KcDbAttributeDefinition&>(entity).isInvisible());
}

} // namespace

// What a definition draws, found out and sorted once.
const KcGiScene::Contents& KcGiScene::contents(const KcDbBlockTableRecord& definition)
{
    const auto [at, isNew] = m_contents.try_emplace(definition.objectId().stub());
    Contents& contents = at->second;
    if (!isNew)
        return contents;
    for (const KcDbObjectId id : kcdbInDrawingOrder(definition)) {
        const KcDbRead<KcDbEntity> entity(id);
        if (!entity || isReplaced(*entity))
            continue;
        contents.ids.push_back(id);
        if (entity->isKindOf(KcDbXline::desc()) || entity->isKindOf(KcDbRay::desc()))
            contents.hasNoEnds = true;
        else if (entity->isKindOf(KcDbBlockReference::desc()))
            if (const KcDbRead<KcDbBlockTableRecord> inner(
                    static_cast<const KcDbBlockReference&>(*entity).blockTableRecord());
                inner)
                contents.hasNoEnds = contents.hasNoEnds || this->contents(*inner).hasNoEnds;
    }
    return contents;
}

void KcGiScene::block(KcDbObjectId definition, const KcGeMatrix3d& toCurrent)
{
    const KcDbRead<KcDbBlockTableRecord> record(definition);
    if (!record || m_stopped)
        return;
    if (std::find(m_definitions.begin(), m_definitions.end(), definition) != m_definitions.end())
        return leftOut(QStringLiteral("the block %1 inside itself").arg(record->name()));
    if (m_definitions.size() >= kDeepest)
        return leftOut(QStringLiteral("blocks nested more than %1 deep").arg(kDeepest));
    const KcGeMatrix3d matrix = m_context.matrix * toCurrent;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 4; ++column)
            if (!(std::abs(matrix.entry(row, column)) < kcgiFarthest))
                return leftOut(QStringLiteral("a block at no place that could be drawn"));

    const Contents& inside = contents(*record);
    const KcGeExtents3d box = KcDbBlockReference::definitionExtents(definition);
    if (box.isEmpty() || inside.hasNoEnds)
        return drawDefinition(definition, inside, matrix);
    const KcGeExtents3d seen = matrix.transformed(box);
    bool allSeen = false;
    if (m_options.area) {
        const QRectF& area = *m_options.area;
        if (seen.max.x < area.left() || seen.min.x > area.right() || seen.max.y < area.top()
            || seen.min.y > area.bottom())
            return;
        allSeen = seen.min.x >= area.left() && seen.max.x <= area.right() && seen.min.y >= area.top()
            && seen.max.y <= area.bottom();
    }
    if (!placed(definition, matrix, box, seen))
        drawDefinition(definition, inside, matrix, allSeen);
}

// True when the device has something quicker than drawing all of a definition.
bool KcGiScene::placed(
    KcDbObjectId definition, const KcGeMatrix3d& matrix, const KcGeExtents3d& box, const KcGeExtents3d& seen)
{
    if (std::max(seen.width(), seen.height()) < m_device.smallest()) {
        const KcGePoint3d center = seen.center();
        m_device.dot({ center.x, center.y }, m_traits.color);
        return true;
    }
    if (m_options.oneColor || !m_options.area || m_context.frozenLayers)
        return false;
    KcGiDevice::Placement placement;
    placement.definition = definition.stub();
    placement.layer = m_layer ? m_layer->id : nullptr;
    placement.color = m_traits.color;
    placement.linetype = m_traits.pattern;
    placement.lineWeight = inheritedWeight();
    placement.thinLines = !(m_options.unitsPerMillimetre > 0.0);
    placement.box = QRectF(box.min.x, box.min.y, box.width(), box.height());
    placement.linear = QTransform(
        matrix.entry(0, 0), matrix.entry(1, 0), matrix.entry(0, 1), matrix.entry(1, 1), 0.0, 0.0);
    placement.origin = { matrix.entry(0, 3), matrix.entry(1, 3) };
    const auto draw = [&](KcGiDevice& device, const QTransform& to) {
        KcGiSceneOptions options = m_options;
        options.progress = {};
        const KcGeMatrix3d toDevice = KcGeMatrix3d::fromAxes(
            { to.dx(), to.dy(), 0 }, { to.m11(), to.m12(), 0 }, { to.m21(), to.m22(), 0 }, { 0, 0, 1 });
        const KcGeExtents3d drawn = toDevice.transformed(box);
        const double margin = std::max(drawn.width(), drawn.height());
        options.area = QRectF(drawn.min.x, drawn.min.y, drawn.width(), drawn.height())
                           .adjusted(-margin, -margin, margin, margin);
        KcGiScene inner(m_database, device, options);
        inner.m_definitions = m_definitions;
        inner.m_entity = m_entity;
        inner.m_layer = m_layer;
        inner.m_traits = m_traits;
        const KcDbRead<KcDbBlockTableRecord> record(definition);
        inner.drawDefinition(definition, inner.contents(*record), toDevice);
        for (const auto& [what, count] : inner.m_leftOut)
            m_leftOut[what] += count;
        m_stopped = m_stopped || inner.m_stopped;
    };
    // By reference: a function of this size would be put on the heap for each of a million references.
    return m_device.place(placement, std::cref(draw));
}

int KcGiScene::inheritedWeight() const
{
    return m_entity && m_layer ? lineWeightOf(m_entity->lineWeight(), *m_layer) : kDefaultWeight;
}

void KcGiScene::drawDefinition(
    KcDbObjectId definition, const Contents& inside, const KcGeMatrix3d& matrix, bool allSeen)
{
    const Context before = m_context;
    const Traits traitsBefore = m_traits;
    m_context.blockColor = m_traits.color | 0xff000000u;
    m_context.blockPattern = m_traits.pattern;
    m_context.blockLineWeight = inheritedWeight();
    m_context.blockAlpha = qAlpha(m_traits.color);
    m_context.blockLayer = m_layer;
    enter(matrix);
    m_context.allSeen = allSeen;
    m_definitions.push_back(definition);
    for (const KcDbObjectId id : inside.ids) {
        if (isStopped())
            break;
        if (const KcDbRead<KcDbEntity> entity(id); entity)
            drawOne(*entity);
    }
    m_definitions.pop_back();
    m_context = before;
    m_traits = traitsBefore;
}
