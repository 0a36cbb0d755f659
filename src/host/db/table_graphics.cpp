// How a table is drawn: row heights from its content, then backgrounds, contents and grid lines in its own
// block.

#include "db/curves.h"
#include "db/database.h"
#include "db/new_block.h"
#include "db/table.h"
#include "db/tables.h"
#include "gi/sink/world_draw.h"

namespace {

// Multiline texts take a third of their height below the last base line and above the first, together.
constexpr double kLeading = 1.0 / 3.0;

void prepare(KcDbEntity& entity, KcDbObjectId layer, const KcCmColor& color = { KcCmColor::kByBlock, -1 })
{
    entity.setLayer(layer);
    entity.setColor(color);
}

bool isQuarterTurned(double rotation)
{
    return std::abs(std::sin(rotation)) > std::abs(std::cos(rotation));
}

// The box of a turned box.
KcGeExtents3d turned(const KcGeExtents3d& box, double rotation)
{
    return KcGeMatrix3d::rotation(rotation).transformed(box);
}

} // namespace

double KcDbTable::neededHeight(int row, int column, double width) const
{
    const KcDbTableCell& held = cell(row, column);
    const double margins = 2.0 * verticalMargin();
    if (held.type == KcDbTableCell::kBlock) {
        if (held.autoFit)
            return 0.0;
        const KcGeExtents3d box = definitionExtents(held.block);
        return box.isEmpty() ? 0.0 : turned(box, held.rotation).height() * held.blockScale + margins;
    }
    if (held.text.isEmpty())
        return 0.0;
    KcDbMText text;
    text.data().contents = held.text;
    text.data().height = textHeight(row, column);
    text.data().style = textStyle(row, column);
    if (isQuarterTurned(held.rotation))
        return text.actualWidth() + margins;
    text.data().width = std::max(0.0, width - 2.0 * horizontalMargin());
    return text.actualHeight() + text.data().height * kLeading + margins;
}

void KcDbTable::computeHeights()
{
    for (KcDbTableData::Row& row : m_table.rows)
        row.drawnHeight = 0.0;
    struct Tall {
        KcDbCellRange range;
        double height;
    };
    std::vector<Tall> tall; // contents that several rows share
    for (int row = 0; row < numRows(); ++row)
        for (int column = 0; column < numColumns(); ++column) {
            const KcDbTableCell& held = cell(row, column);
            if (held.type == KcDbTableCell::kText && held.text.isEmpty())
                continue;
            const KcDbCellRange range
                = mergeAt(row, column).value_or(KcDbCellRange{ row, row, column, column });
            if (range.minRow != row || range.minColumn != column)
                continue;
            double width = 0.0;
            for (int c = range.minColumn; c <= range.maxColumn; ++c)
                width += columnWidth(c);
            const double needed = neededHeight(row, column, width);
            KcDbTableData::Row& own = m_table.rows[row];
            if (range.maxRow == row)
                own.drawnHeight = std::max(own.drawnHeight, needed);
            else
                tall.push_back({ range, needed });
        }
    for (KcDbTableData::Row& row : m_table.rows)
        row.drawnHeight = std::max(row.drawnHeight, row.height);
    for (const Tall& content : tall) {
        double there = 0.0;
        for (int row = content.range.minRow; row <= content.range.maxRow; ++row)
            there += m_table.rows[row].drawnHeight;
        if (content.height > there)
            m_table.rows[content.range.maxRow].drawnHeight += content.height - there;
    }
}

KcDbTable::Offsets KcDbTable::offsets() const
{
    // Lines are numbered in the order of rows, whichever way they run.
    Offsets lines;
    lines.x.assign(m_table.columns.size() + 1, 0.0);
    lines.y.assign(m_table.rows.size() + 1, 0.0);
    for (int column = 0; column < numColumns(); ++column)
        lines.x[column + 1] = lines.x[column] + columnWidth(column);
    const double up = isUpward() ? 1.0 : -1.0;
    for (int row = 0; row < numRows(); ++row)
        lines.y[row + 1] = lines.y[row] + up * rowHeight(row);
    return lines;
}

KcGeExtents3d KcDbTable::cellBox(int row, int column) const
{
    return isCell(row, column) ? cellBox(offsets(), row, column) : KcGeExtents3d();
}

KcGeExtents3d KcDbTable::cellBox(const Offsets& lines, int row, int column) const
{
    const KcDbCellRange range = mergeAt(row, column).value_or(KcDbCellRange{ row, row, column, column });
    KcGeExtents3d box;
    box.addPoint({ lines.x[range.minColumn], lines.y[range.minRow], 0.0 });
    box.addPoint({ lines.x[range.maxColumn + 1], lines.y[range.maxRow + 1], 0.0 });
    return box;
}

KcDbObjectId KcDbTable::ownBlock()
{
    KcDbDatabase& drawing = *database();
    if (m_blockOwner.isNull() || m_blockOwner == objectId())
        if (KcDbRead<KcDbBlockTableRecord> block(m_data.block); block && block->isAnonymous())
            return m_data.block;

    const KcDbObjectId id = kcdbNewBlock(drawing, QStringLiteral("*T"));
    m_data.block = id;
    m_blockOwner = objectId();
    return id;
}

Kcad::ErrorStatus KcDbTable::recomputeTableBlock()
{
    beforeChange();
    computeHeights();
    if (!database())
        return Kcad::eNotInDatabase;
    writeRecord();
    const KcDbObjectId blockId = ownBlock();
    const KcDbRead<KcDbBlockTableRecord> block(blockId);
    if (!block)
        return block.status();
    for (KcDbObjectId id : block->entityIds())
        if (KcDbWrite<KcDbEntity> entity(id); entity)
            entity->erase();

    using Attributes = std::vector<std::unique_ptr<KcDbAttribute>>;
    parts(*database(), [&](std::unique_ptr<KcDbEntity> entity, Attributes attributes) {
        const KcDbObjectId id = block->appendEntity(std::move(entity));
        if (KcDbWrite<KcDbBlockReference> added(id); added)
            for (std::unique_ptr<KcDbAttribute>& attribute : attributes)
                added->appendAttribute(std::move(attribute));
    });
    return Kcad::eOk;
}

void KcDbTable::parts(const KcDbDatabase& drawing, const Take& take) const
{
    const KcDbObjectId layer = kcdbFindRecord(drawing.layerTable(), QStringLiteral("0"));
    const Offsets lines = offsets();
    for (int row = 0; row < numRows(); ++row)
        for (int column = 0; column < numColumns(); ++column) {
            const std::optional<KcDbCellRange> merge = mergeAt(row, column);
            if (!merge || (merge->minRow == row && merge->minColumn == column))
                cellParts(layer, cellBox(lines, row, column), row, column, take);
        }
    gridParts(layer, lines, kcdbFindRecord(drawing.linetypeTable(), QStringLiteral("ByBlock")), take);
}

bool KcDbTable::isDrawn() const
{
    const KcDbRead<KcDbBlockTableRecord> block(m_data.block);
    return !database() || (block && !block->isEmpty());
}

void KcDbTable::worldDraw(KcGiWorldDraw& draw) const
{
    if (isDrawn())
        return KcDbBlockReference::worldDraw(draw);
    const KcGeMatrix3d place = blockTransform();
    using Attributes = std::vector<std::unique_ptr<KcDbAttribute>>;
    parts(*database(), [&](std::unique_ptr<KcDbEntity> part, Attributes attributes) {
        // ByBlock means the table.
        if (part->color() == KcCmColor{ KcCmColor::kByBlock, -1 })
            part->setColor(color());
        part->setLayer(layerId());
        part->transformBy(place);
        draw.entity(*part);
        for (const std::unique_ptr<KcDbAttribute>& attribute : attributes) {
            attribute->transformBy(place);
            draw.entity(*attribute);
        }
    });
}

KcGeExtents3d KcDbTable::extentsUnder(const KcGeMatrix3d& matrix) const
{
    if (isDrawn())
        return KcDbBlockReference::extentsUnder(matrix);
    const KcGeExtents3d cells = geomExtents();
    return cells.isEmpty() ? cells : matrix.transformed(cells);
}

void KcDbTable::cellParts(
    KcDbObjectId layer, const KcGeExtents3d& box, int row, int column, const Take& take) const
{
    const KcDbTableCell& held = cell(row, column);
    if (const std::optional<KcCmColor> color = backgroundColor(row, column)) {
        auto fill = std::make_unique<KcDbSolid>();
        prepare(*fill, layer, *color);
        fill->data().corners[0] = { box.min.x, box.max.y, 0.0 };
        fill->data().corners[1] = { box.max.x, box.max.y, 0.0 };
        fill->data().corners[2] = { box.min.x, box.min.y, 0.0 };
        fill->data().corners[3] = { box.max.x, box.min.y, 0.0 };
        take(std::move(fill), {});
    }

    // Content is placed in the frame of the cell without margins, about its centre, and turned with the cell.
    const double innerWidth = std::max(0.0, box.width() - 2.0 * horizontalMargin());
    const double innerHeight = std::max(0.0, box.height() - 2.0 * verticalMargin());
    const KcGePoint3d centre = box.center();
    const int place = std::clamp(alignment(row, column), 1, 9) - 1;
    const double across = place % 3 - 1, along = 1 - place / 3; // -1, 0, 1: left to right, bottom to top

    if (held.type == KcDbTableCell::kBlock) {
        const KcGeExtents3d definition = definitionExtents(held.block);
        const KcDbRead<KcDbBlockTableRecord> record(held.block);
        if (!record || definition.isEmpty())
            return;
        const KcGeExtents3d content = turned(definition, held.rotation);
        double scale = held.blockScale;
        if (held.autoFit) {
            // A block that is only a line fits by its length, a single point as it is.
            const double none = std::numeric_limits<double>::infinity();
            scale = std::min(
                content.width() > 0.0 ? innerWidth / content.width() : none,
                content.height() > 0.0 ? innerHeight / content.height() : none);
            if (scale == none)
                scale = 1.0;
            if (!(scale > 0.0))
                return; // margins leave no room
        }
        const double slackX = std::max(0.0, innerWidth - content.width() * scale) / 2.0;
        const double slackY = std::max(0.0, innerHeight - content.height() * scale) / 2.0;
        const KcGePoint3d target = centre + KcGeVector3d{ across * slackX, along * slackY, 0.0 };
        const KcGeVector3d fromOrigin
            = KcGeMatrix3d::rotation(held.rotation) * (definition.center() - record->origin());
        auto reference = std::make_unique<KcDbBlockReference>(
            target - KcGeVector3d{ fromOrigin.x, fromOrigin.y, 0.0 } * scale, held.block);
        reference->setScaleFactors({ scale, scale, scale });
        reference->setRotation(held.rotation);
        prepare(*reference, layer, contentColor(row, column));
        const KcGeMatrix3d toCell = reference->blockTransform();
        std::vector<std::unique_ptr<KcDbAttribute>> attributes;
        for (const KcDbTableCell::Attribute& text : held.attributes) {
            const KcDbRead<KcDbAttributeDefinition> from(text.definition);
            if (!from || from->isConstant())
                continue;
            auto attribute = std::make_unique<KcDbAttribute>();
            attribute->setPropertiesFrom(*from);
            static_cast<KcDbText&>(*attribute).data() = from->data();
            attribute->attribute().tag = from->attribute().tag;
            attribute->attribute().flags = from->attribute().flags;
            attribute->setTextString(text.text);
            attribute->transformBy(toCell);
            attributes.push_back(std::move(attribute));
        }
        take(std::move(reference), std::move(attributes));
        return;
    }

    if (held.text.isEmpty())
        return;
    auto text = std::make_unique<KcDbMText>();
    prepare(*text, layer, contentColor(row, column));
    const bool quarter = isQuarterTurned(held.rotation);
    const double frameWidth = quarter ? innerHeight : innerWidth,
                 frameHeight = quarter ? innerWidth : innerHeight;
    const KcGeVector3d anchor{ across * frameWidth / 2.0, along * frameHeight / 2.0, 0.0 };
    KcDbMText::Data& data = text->data();
    data.contents = held.text;
    data.height = textHeight(row, column);
    data.style = textStyle(row, column);
    data.width = frameWidth;
    data.attachment = place + 1;
    data.flow = 5;
    data.rotation = held.rotation;
    data.location = centre + KcGeMatrix3d::rotation(held.rotation) * anchor;
    if (!text->plainText().trimmed().isEmpty())
        take(std::move(text), {});
}

void KcDbTable::gridParts(
    KcDbObjectId layer, const Offsets& lines, KcDbObjectId linetype, const Take& take) const
{
    const int rows = numRows(), columns = numColumns();
    // The merged area of every cell, so that no search is needed for each line.
    std::vector<int> area(size_t(rows) * columns, -1);
    for (size_t i = 0; i < m_table.merges.size(); ++i) {
        const KcDbCellRange& range = m_table.merges[i];
        for (int row = range.minRow; row <= range.maxRow; ++row)
            for (int column = range.minColumn; column <= range.maxColumn; ++column)
                area[size_t(row) * columns + column] = int(i);
    }
    using Cell = std::pair<int, int>;
    using Edge = KcDbTableCell::Edge;
    const auto exists
        = [&](Cell c) { return c.first >= 0 && c.first < rows && c.second >= 0 && c.second < columns; };
    // The line between two cells: none inside a merged area. A cell that says something about the line comes
    // before one that does not, then the second cell before the first.
    const auto between = [&](Cell first, Edge firstEdge, Cell second, Edge secondEdge) {
        const bool hasFirst = exists(first), hasSecond = exists(second);
        if (hasFirst && hasSecond) {
            const int one = area[size_t(first.first) * columns + first.second];
            if (one >= 0 && one == area[size_t(second.first) * columns + second.second])
                return std::optional<KcDbGridLook>();
        }
        const bool firstSays = hasFirst && cell(first.first, first.second).edges[firstEdge].isSet();
        const bool secondSays = hasSecond && cell(second.first, second.second).edges[secondEdge].isSet();
        const bool takeFirst = hasFirst && (!hasSecond || (firstSays && !secondSays));
        const KcDbGridLook look = takeFirst ? gridLook(first.first, first.second, firstEdge)
                                            : gridLook(second.first, second.second, secondEdge);
        return look.visible ? std::optional(look) : std::nullopt;
    };
    const auto add = [&](KcGePoint3d start, KcGePoint3d end, const KcDbGridLook& look) {
        if (start.isEqualTo(end))
            return;
        auto line = std::make_unique<KcDbLine>(start, end);
        prepare(*line, layer, look.color);
        line->setLinetypeId(linetype);
        line->setLineWeight(look.lineWeight);
        take(std::move(line), {});
    };
    // Joins the pieces 0 to `count` of one line that look the same.
    const auto run = [&](int count, auto lookOf, auto pointAt) {
        for (int from = 0; from < count;) {
            const std::optional<KcDbGridLook> look = lookOf(from);
            int to = from + 1;
            while (to < count && lookOf(to) == look)
                ++to;
            if (look)
                add(pointAt(from), pointAt(to), *look);
            from = to;
        }
    };
    const Edge nearEdge = isUpward() ? KcDbTableCell::kBottom : KcDbTableCell::kTop;
    const Edge farEdge = isUpward() ? KcDbTableCell::kTop : KcDbTableCell::kBottom;
    for (int line = 0; line <= rows; ++line)
        run(
            columns,
            [&](int column) {
                return between({ line - 1, column }, farEdge, { line, column }, nearEdge);
            },
            [&](int column) {
                return KcGePoint3d{ lines.x[column], lines.y[line], 0.0 };
            });
    for (int line = 0; line <= columns; ++line)
        run(
            rows,
            [&](int row) {
                return between({ row, line - 1 }, KcDbTableCell::kRight, { row, line }, KcDbTableCell::kLeft);
            },
            [&](int row) {
                return KcGePoint3d{ lines.x[line], lines.y[row], 0.0 };
            });
}
