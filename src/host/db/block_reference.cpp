// Block references: placement, boxes of definitions, attributes, transforms.

#include "db/block_reference.h"

#include "db/database.h"
#include "db/draw_raw.h"
#include "db/header.h"
#include "db/plane.h"
#include "db/polyline.h"
#include "db/spatial_filter.h"
#include "gi/sink/world_draw.h"

KCRX_DEFINE(KcDbBlockReference, KcDbEntity, "AcDbBlockReference")
KCRX_DEFINE(KcDbBlockBegin, KcDbEntity, "AcDbBlockBegin")
KCRX_DEFINE(KcDbBlockEnd, KcDbEntity, "AcDbBlockEnd")

KcDbBlockReference::Data::Data(const Data& other)
{
    *this = other;
}

KcDbBlockReference::Data& KcDbBlockReference::Data::operator=(const Data& other)
{
    block = other.block;
    position = other.position;
    scale = other.scale;
    rotation = other.rotation;
    normal = other.normal;
    array = other.array ? std::make_unique<Array>(*other.array) : nullptr;
    return *this;
}

KcDbBlockReference::Array& KcDbBlockReference::array()
{
    if (!m_data.array)
        m_data.array = std::make_unique<Array>();
    return *m_data.array;
}

namespace {

/// From the coordinates of the reference (unscaled, unturned) to the world: plane, place and rotation.
KcGeMatrix3d placement(const KcDbBlockReference::Data& data)
{
    const double c = std::cos(data.rotation), s = std::sin(data.rotation);
    return KcGeMatrix3d::planeToWorld(data.normal)
        * KcGeMatrix3d::fromAxes(data.position, { c, s, 0 }, { -s, c, 0 }, KcGeVector3d::kZAxis);
}

KcGeVector3d originOf(KcDbObjectId block)
{
    KcDbRead<KcDbBlockTableRecord> record(block);
    return record ? record->origin().asVector() : KcGeVector3d();
}

/// True when the transform leads every axis to an axis, so that the image of a box is the box of the image.
bool keepsBoxes(const KcGeMatrix3d& m)
{
    for (int column = 0; column < 3; ++column) {
        const KcGeVector3d a = m.axis(column);
        const double slack = KcGeContext::gTol.equalVector * a.length();
        const int used = (std::abs(a.x) > slack) + (std::abs(a.y) > slack) + (std::abs(a.z) > slack);
        if (used > 1)
            return false;
    }
    return true;
}

// Boxes of definitions.

/// Blocks whose boxes are being computed: one that contains itself adds nothing to its own box. Deeper
/// nesting than the limit is damage and counts as empty.
struct Walk {
    static constexpr size_t kDeepest = 64;
    std::vector<KcDbObjectId> open;
    /// How far up the stack the outermost block stands that an inner one ran into; results below it are
    /// incomplete.
    size_t cutAt = kNoCut;
    static constexpr size_t kNoCut = ~size_t(0);
    /// Blocks that contain each other in many ways are not followed along every one of them.
    size_t visitsAfterCut = 0;
    static constexpr size_t kMostVisits = 20000;
};

Walk& walk()
{
    static thread_local Walk instance;
    return instance;
}

/// Turned references are measured entity by entity as long as their definition (nested ones counted) has at
/// most this many; the image of the definition's box, which may be larger than need be, serves for others.
constexpr size_t kMostMeasured = 500;

/// Entities that a definition draws, nested ones counted; stops at the limit.
size_t countEntities(KcDbObjectId block, size_t limit, size_t depth = 0)
{
    KcDbRead<KcDbBlockTableRecord> record(block);
    size_t count = 0;
    if (!record || depth > Walk::kDeepest)
        return count;
    for (const KcDbObjectId id : *record) {
        ++count;
        if (KcDbRead<KcDbBlockReference> nested(id); nested)
            count += countEntities(nested->blockTableRecord(), limit - std::min(limit, count), depth + 1);
        if (count > limit)
            break;
    }
    return count;
}

bool isSmall(KcDbObjectId block)
{
    KcDbRead<KcDbBlockTableRecord> record(block);
    if (!record)
        return false;
    const KcDbBlockTableRecord::ExtentsCache& cache = record->extentsCache();
    if (cache.filled && cache.changeCount == block.database()->changeCount())
        return cache.entities <= kMostMeasured;
    return countEntities(block, kMostMeasured) <= kMostMeasured;
}

/// The box of what the definition draws under a transform.
KcGeExtents3d measured(KcDbObjectId block, const KcGeMatrix3d& matrix)
{
    Walk& w = walk();
    KcGeExtents3d box;
    KcDbRead<KcDbBlockTableRecord> record(block);
    if (!record)
        return box;
    if (const auto known = std::find(w.open.begin(), w.open.end(), block); known != w.open.end()) {
        w.cutAt = std::min(w.cutAt, size_t(known - w.open.begin()));
        return box;
    }
    if (w.open.size() >= Walk::kDeepest
        || (w.cutAt != Walk::kNoCut && ++w.visitsAfterCut > Walk::kMostVisits)) {
        w.cutAt = 0;
        return box;
    }
    w.open.push_back(block);
    for (const KcDbObjectId id : *record) {
        KcDbRead<KcDbEntity> entity(id);
        if (!entity || !entity->isVisible())
            continue;
        if (entity->isKindOf(KcDbAttributeDefinition::desc()))
            box.addExtents(static_cast<const KcDbAttributeDefinition&>(*entity).extentsInReference(matrix));
        else
            box.addExtents(entity->extentsUnder(matrix));
    }
    w.open.pop_back();
    if (w.open.empty()) {
        w.cutAt = Walk::kNoCut;
        w.visitsAfterCut = 0;
    }
    return box;
}

} // namespace

KcGeExtents3d KcDbBlockReference::definitionExtents(KcDbObjectId block)
{
    KcDbRead<KcDbBlockTableRecord> record(block);
    if (!record)
        return {};
    const uint64_t now = block.database()->changeCount();
    KcDbBlockTableRecord::ExtentsCache& cache = record->extentsCache();
    if (cache.filled && cache.changeCount == now)
        return cache.box;
    Walk& w = walk();
    const size_t depth = w.open.size();
    const KcGeExtents3d box = measured(block, KcGeMatrix3d());
    // A box that lacks an outer block, which is still being computed, holds for that block's box only.
    if (w.cutAt >= depth) {
        cache = { true, now, box };
        w.cutAt = Walk::kNoCut;
    }
    return box;
}

KcGeMatrix3d KcDbBlockReference::blockTransform() const
{
    if (isWorldPlane(m_data.normal)) {
        // The product below, worked out: a drawing holds a million of these.
        const double c = std::cos(m_data.rotation), s = std::sin(m_data.rotation);
        const KcGeVector3d x{ c * m_data.scale.x, s * m_data.scale.x, 0.0 };
        const KcGeVector3d y{ -s * m_data.scale.y, c * m_data.scale.y, 0.0 };
        const KcGeVector3d z{ 0.0, 0.0, m_data.scale.z };
        const KcGeVector3d origin = originOf(m_data.block);
        return KcGeMatrix3d::fromAxes(m_data.position - x * origin.x - y * origin.y - z * origin.z, x, y, z);
    }
    return placement(m_data) * KcGeMatrix3d::scaling(m_data.scale)
        * KcGeMatrix3d::translation(-originOf(m_data.block));
}

KcDbBlockReference::MissingFile KcDbBlockReference::missingFile() const
{
    const KcDbRead<KcDbBlockTableRecord> record(m_data.block);
    if (!record || !record->isFromExternalReference() || !record->isEmpty())
        return {};
    QString name = record->data().xrefPath.section(u'\\', -1).section(u'/', -1);
    if (name.isEmpty())
        name = record->name();
    // Nothing tells how large the other drawing is: the frame has room for the name in texts of the usual
    // size.
    const KcDbRead<KcDbHeader> header(database() ? database()->headerId() : KcDbObjectId());
    const double given = header ? header->real("$TEXTSIZE", 0.0) : 0.0;
    const double height = given > 0.0 && std::isfinite(given) ? given : 2.5;
    const KcGeMatrix3d turn
        = KcGeMatrix3d::planeToWorld(m_data.normal) * KcGeMatrix3d::rotation(m_data.rotation);
    constexpr double kTall = 10.0; // heights of the text: the name fills a tenth of the frame
    const double width = std::max(2.0 * kTall * height, 1.5 * KcGi::textAdvance({}, name, height));
    return { name, turn * KcGeVector3d{ width, 0, 0 }, turn * KcGeVector3d{ 0, kTall * height, 0 } };
}

KcGeExtents3d KcDbBlockReference::extentsUnder(const KcGeMatrix3d& matrix) const
{
    if (const MissingFile file = missingFile(); !file.name.isEmpty()) {
        KcGeExtents3d frame;
        for (const KcGeVector3d corner : { KcGeVector3d(), file.right, file.up, file.right + file.up })
            kcdbAddPoint(frame, matrix * (position() + corner));
        return frame;
    }
    KcGeExtents3d box = definitionUnder(matrix);
    for (const KcDbObjectId id : attributes())
        if (KcDbRead<KcDbAttribute> attribute(id); attribute && attribute->isVisible())
            box.addExtents(attribute->extentsUnder(matrix));
    return box;
}

KcGeExtents3d KcDbBlockReference::definitionUnder(const KcGeMatrix3d& matrix) const
{
    const KcGeMatrix3d toWorld = matrix * blockTransform();
    const KcGeExtents3d definition = definitionExtents(m_data.block);
    KcGeExtents3d box;
    if (definition.isEmpty())
        return box;
    KcGeExtents3d cell = toWorld.transformed(definition);
    if (!keepsBoxes(toWorld) && isSmall(m_data.block))
        cell = measured(m_data.block, toWorld);
    if (cell.isEmpty() || !std::isfinite((cell.max - cell.min).length()))
        return box;
    box.addExtents(cell);
    if (m_data.array) {
        const Array& array = *m_data.array;
        const KcGeMatrix3d place = matrix * placement(m_data);
        const double columns = std::max(1, array.columns) - 1, rows = std::max(1, array.rows) - 1;
        for (const double x : { 0.0, columns * array.columnSpacing })
            for (const double y : { 0.0, rows * array.rowSpacing }) {
                const KcGeVector3d shift = place * KcGeVector3d{ x, y, 0.0 };
                kcdbAddPoint(box, cell.min + shift);
                kcdbAddPoint(box, cell.max + shift);
            }
    }
    if (const auto clip = kcdbClipOf(*this)) {
        KcGeExtents3d shown;
        for (const KcGiPath::Element& element : clip->elements()) {
            if (const auto* move = std::get_if<KcGiPath::Move>(&element))
                kcdbAddPoint(shown, toWorld * move->to);
            else if (const auto* line = std::get_if<KcGiPath::Line>(&element))
                kcdbAddPoint(shown, toWorld * line->to);
        }
        if (shown.isEmpty() || !shown.overlapsInPlan(box))
            return {};
        box.min = { std::max(box.min.x, shown.min.x), std::max(box.min.y, shown.min.y), box.min.z };
        box.max = { std::min(box.max.x, shown.max.x), std::min(box.max.y, shown.max.y), box.max.z };
    }
    return box;
}

KcGeExtents3d KcDbBlockReference::extentsWithoutAttributes() const
{
    return definitionUnder(KcGeMatrix3d());
}

// Attributes.

const std::vector<KcDbObjectId>& KcDbBlockReference::attributes() const
{
    static const std::vector<KcDbObjectId> none;
    return m_data.array ? m_data.array->attributes : none;
}

std::optional<QString> KcDbBlockReference::attributeValue(const QString& tag) const
{
    for (const KcDbObjectId id : attributes())
        if (KcDbRead<KcDbAttribute> attribute(id);
            attribute && attribute->attribute().tag.compare(tag, Qt::CaseInsensitive) == 0)
            return attribute->textString();
    return std::nullopt;
}

KcDbObjectId KcDbBlockReference::appendAttribute(std::unique_ptr<KcDbAttribute> attribute)
{
    KcDbDatabase* db = database();
    if (!db || !attribute)
        return {};
    Array& list = array();
    if (list.sequenceEnd.isNull())
        list.sequenceEnd = db->addObject(std::make_unique<KcDbSequenceEnd>(), objectId());
    attribute->setInPaperSpace(isInPaperSpace());
    const KcDbObjectId id = db->addObject(std::move(attribute), objectId());
    list.attributes.push_back(id);
    return id;
}

std::vector<KcDbObjectId> KcDbBlockReference::subObjects() const
{
    if (!m_data.array)
        return {};
    std::vector<KcDbObjectId> result = m_data.array->attributes;
    if (!m_data.array->sequenceEnd.isNull())
        result.push_back(m_data.array->sequenceEnd);
    return result;
}

// Transforms.

Kcad::ErrorStatus KcDbBlockReference::transformBy(const KcGeMatrix3d& matrix)
{
    const auto plane = KcDbPlaneTransform::of(matrix, m_data.normal);
    if (!plane)
        return Kcad::eInvalidInput;
    const KcGeMatrix3d image = matrix * placement(m_data);
    const KcGeVector3d x = image.axis(0), y = image.axis(1), z = image.axis(2);
    const double lx = x.length(), ly = y.length(), lz = z.length();
    const double slack = KcGeContext::gTol.equalVector;
    // Scale factors stand along the axes of the definition; they cannot say that these became oblique.
    if (std::abs(x.dotProduct(y)) > slack * lx * ly || std::abs(x.dotProduct(z)) > slack * lx * lz
        || std::abs(y.dotProduct(z)) > slack * ly * lz)
        return Kcad::eCannotScaleNonUniformly;
    // A mirrored reference has a negative X scale, turned so that its Y axis is right.
    const double side = plane->mirrors() ? -1.0 : 1.0;
    const KcGeVector3d inPlane = KcGeMatrix3d::worldToPlane(plane->normal) * (x * side);
    m_data.rotation = KcGeVector2d{ inPlane.x, inPlane.y }.angle();
    m_data.position = plane->point(m_data.position);
    m_data.scale = { m_data.scale.x * lx * side, m_data.scale.y * ly, m_data.scale.z * lz };
    m_data.normal = plane->normal;
    if (m_data.array) {
        m_data.array->columnSpacing *= lx * side;
        m_data.array->rowSpacing *= ly;
    }
    for (const KcDbObjectId id : attributes())
        if (KcDbWrite<KcDbAttribute> attribute(id); attribute)
            attribute->transformBy(matrix);
    return Kcad::eOk;
}

// Drawing.

constexpr int kMostCells = 250'000; // of an array: more are a slip of the hand

void KcDbBlockReference::worldDraw(KcGiWorldDraw& draw) const
{
    const KcGeMatrix3d first = blockTransform();
    if (const MissingFile file = missingFile(); !file.name.isEmpty()) {
        draw.leftOut(QStringLiteral("the drawing %1 that is referred to, shown by its name").arg(file.name));
        return kcdbDrawFrame(draw, position(), file.right, file.up, file.name);
    }
    const auto clip = kcdbClipOf(*this);
    if (!m_data.array && !clip)
        return draw.block(m_data.block, first);
    const Array cell, &cells = m_data.array ? *m_data.array : cell;
    const KcGeMatrix3d plane
        = KcGeMatrix3d::planeToWorld(m_data.normal) * KcGeMatrix3d::rotation(m_data.rotation);
    const int columns = std::clamp(cells.columns, 1, kMostCells),
              rows = std::clamp(cells.rows, 1, kMostCells);
    if (int64_t(columns) * rows > kMostCells)
        return draw.leftOut(QStringLiteral("a block array of more than %1 cells").arg(kMostCells));
    if (clip)
        draw.pushClip(clip->transformed(first), false);
    for (int row = 0; row < rows; ++row)
        for (int column = 0; column < columns; ++column)
            draw.block(
                m_data.block,
                KcGeMatrix3d::translation(
                    plane * KcGeVector3d{ column * cells.columnSpacing, row * cells.rowSpacing, 0.0 })
                    * first);
    if (clip)
        draw.popClip();
    for (const KcDbObjectId id : attributes())
        if (const KcDbRead<KcDbAttribute> attribute(id); attribute)
            draw.entity(*attribute);
}

void KcDbBlockBegin::worldDraw(KcGiWorldDraw&) const
{
    // A mark without a shape.
}

void KcDbBlockEnd::worldDraw(KcGiWorldDraw&) const
{
    // A mark without a shape.
}
