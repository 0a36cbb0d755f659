// Tables: cells, sizes, merged areas, place.

#include "db/table.h"

#include "db/database.h"
#include "db/dictionary.h"

#include <unordered_set>

KCRX_DEFINE(KcDbTable, KcDbBlockReference, "AcDbTable")

namespace {

/// Takes the places [at, at + count) out of one direction of a merged area; false when nothing of it is left.
bool removeSpan(int& low, int& high, int at, int count)
{
    const auto moved = [&](int place) { return place >= at + count ? place - count : std::min(place, at); };
    const bool lastGoes = high >= at && high < at + count;
    low = moved(low);
    high = lastGoes ? at - 1 : moved(high);
    return low <= high;
}

void insertSpan(int& low, int& high, int at, int count)
{
    if (low >= at)
        low += count;
    if (high >= at)
        high += count;
}

void dropSingleCells(std::vector<KcDbCellRange>& merges)
{
    std::erase_if(merges, [](const KcDbCellRange& range) {
        return range.minRow == range.maxRow && range.minColumn == range.maxColumn;
    });
}

/// True for the record by which other programs find their second description of a table, and for the
/// description.
bool isForeignContent(KcDbObjectId id)
{
    const auto isPart = [](KcDbObjectId part) {
        const KcDbRead<KcDbRawObject> object(part);
        return object && (object->fileName() == "TABLECONTENT" || object->fileName() == "TABLEGEOMETRY");
    };
    const KcDbRead<KcDbXrecord> record(id);
    if (!record)
        return isPart(id);
    const KcDbValueList values = record->values();
    return std::any_of(
        values.begin(), values.end(), [&](const KcDbTypedValue& value) { return isPart(value.id()); });
}

/// Everything that belongs to an object, at any depth: tables of data hang on the second description, and
/// records on these.
std::vector<KcDbObjectId> ownedBy(KcDbObjectId top)
{
    std::vector<KcDbObjectId> found;
    std::unordered_set<KcDbObjectId> owners{ top };
    for (bool more = true; more;) {
        more = false;
        for (KcDbObjectStub& stub : top.database()->stubs()) {
            const KcDbObjectId id(&stub);
            if (!id.isResident() || owners.count(id) || !owners.count(stub.object->ownerId()))
                continue;
            owners.insert(id);
            found.push_back(id);
            more = true;
        }
    }
    return found;
}

} // namespace

KcDbTable::KcDbTable(const KcDbTable& other)
    : KcDbBlockReference(other)
    , m_table(other.m_table)
    , m_blockOwner(other.m_blockOwner.isNull() ? other.objectId() : other.m_blockOwner)
    , m_recordRead(other.m_recordRead)
{
}

KcDbObjectId KcDbTable::append(KcDbObjectId block, std::unique_ptr<KcDbTable> table)
{
    const KcDbRead<KcDbBlockTableRecord> record(block);
    if (!record)
        return {};
    const KcDbObjectId id = record->appendEntity(std::move(table));
    if (KcDbWrite<KcDbTable> added(id); added)
        added->recomputeTableBlock();
    return id;
}

// Cells.

KcDbTableCell* KcDbTable::at(int row, int column)
{
    return isCell(row, column) ? &m_table.cells[size_t(row) * m_table.columns.size() + column] : nullptr;
}

const KcDbTableCell& KcDbTable::cell(int row, int column) const
{
    static const KcDbTableCell empty;
    return isCell(row, column) ? m_table.cells[size_t(row) * m_table.columns.size() + column] : empty;
}

void KcDbTable::beforeChange()
{
    readRecord();
    if (!database() || extensionDictionary().isNull())
        return;
    // A copied table still names the dictionary of its original.
    if (KcDbRead<KcDbDictionary> dictionary(extensionDictionary()); dictionary) {
        const KcDbObjectId owner = dictionary->ownerId();
        if (owner != objectId() && KcDbRead<KcDbTable>(owner, true)) {
            setExtensionDictionary({});
            return;
        }
    }
    // Newer programs keep a second description of the whole table in the extension dictionary and believe it
    // before the entity. After a change it would bring the old content back, so it goes.
    std::vector<KcDbDictionary::Entry> entries;
    if (KcDbRead<KcDbDictionary> dictionary(extensionDictionary()); dictionary)
        entries = dictionary->entries();
    for (const KcDbDictionary::Entry& entry : entries) {
        if (!isForeignContent(entry.id))
            continue;
        for (KcDbObjectId id : ownedBy(entry.id))
            if (KcDbWrite<KcDbObject> part(id); part)
                part->erase();
        if (KcDbWrite<KcDbDictionary> dictionary(extensionDictionary()); dictionary)
            dictionary->remove(entry.name);
    }
}

// Size.

Kcad::ErrorStatus KcDbTable::setSize(int rows, int columns)
{
    if (rows < 1 || columns < 1)
        return Kcad::eInvalidInput;
    if (numRows() > rows)
        deleteRows(rows, numRows() - rows);
    if (numColumns() > columns)
        deleteColumns(columns, numColumns() - columns);
    if (numColumns() < columns)
        insertColumns(numColumns(), m_table.defaultColumnWidth, columns - numColumns());
    if (numRows() < rows)
        insertRows(numRows(), m_table.defaultRowHeight, rows - numRows());
    return Kcad::eOk;
}

double KcDbTable::rowHeight(int row) const
{
    readRecord();
    if (row < 0 || row >= numRows())
        return 0.0;
    return std::max(m_table.rows[row].height, m_table.rows[row].drawnHeight);
}

double KcDbTable::minimumRowHeight(int row) const
{
    readRecord();
    return row < 0 || row >= numRows() ? 0.0 : m_table.rows[row].height;
}

Kcad::ErrorStatus KcDbTable::setRowHeight(int row, double height)
{
    if (row < 0 || row >= numRows() || !(height >= 0.0))
        return Kcad::eInvalidInput;
    beforeChange();
    m_table.rows[row].height = height;
    m_table.rows[row].drawnHeight = 0.0;
    writeRecord();
    return Kcad::eOk;
}

void KcDbTable::setRowHeight(double height)
{
    beforeChange();
    m_table.defaultRowHeight = height;
    for (KcDbTableData::Row& row : m_table.rows)
        row.height = height, row.drawnHeight = 0.0;
    writeRecord();
}

double KcDbTable::columnWidth(int column) const
{
    return column < 0 || column >= numColumns() ? 0.0 : m_table.columns[column].width;
}

Kcad::ErrorStatus KcDbTable::setColumnWidth(int column, double width)
{
    if (column < 0 || column >= numColumns() || !(width >= 0.0))
        return Kcad::eInvalidInput;
    beforeChange();
    m_table.columns[column].width = width;
    return Kcad::eOk;
}

void KcDbTable::setColumnWidth(double width)
{
    beforeChange();
    m_table.defaultColumnWidth = width;
    for (KcDbTableData::Column& column : m_table.columns)
        column.width = width;
}

double KcDbTable::width() const
{
    double sum = 0.0;
    for (const KcDbTableData::Column& column : m_table.columns)
        sum += column.width;
    return sum;
}

double KcDbTable::height() const
{
    double sum = 0.0;
    for (int row = 0; row < numRows(); ++row)
        sum += rowHeight(row);
    return sum;
}

Kcad::ErrorStatus KcDbTable::insertRows(int at, double height, int count)
{
    if (at < 0 || at > numRows() || count < 1 || !(height >= 0.0))
        return Kcad::eInvalidInput;
    beforeChange();
    m_table.rows.insert(m_table.rows.begin() + at, count, KcDbTableData::Row{ height, 0.0, {} });
    m_table.cells.insert(
        m_table.cells.begin() + ptrdiff_t(at) * numColumns(), size_t(count) * numColumns(), {});
    for (KcDbCellRange& range : m_table.merges)
        insertSpan(range.minRow, range.maxRow, at, count);
    writeRecord();
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbTable::insertColumns(int at, double width, int count)
{
    if (at < 0 || at > numColumns() || count < 1 || !(width >= 0.0))
        return Kcad::eInvalidInput;
    beforeChange();
    std::vector<KcDbTableCell> cells;
    cells.reserve(m_table.rows.size() * (m_table.columns.size() + count));
    auto from = m_table.cells.begin();
    for (int row = 0; row < numRows(); ++row) {
        std::move(from, from + at, std::back_inserter(cells));
        cells.resize(cells.size() + count);
        std::move(from + at, from + numColumns(), std::back_inserter(cells));
        from += numColumns();
    }
    m_table.cells = std::move(cells);
    m_table.columns.insert(m_table.columns.begin() + at, count, KcDbTableData::Column{ width, {} });
    for (KcDbCellRange& range : m_table.merges)
        insertSpan(range.minColumn, range.maxColumn, at, count);
    writeRecord();
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbTable::deleteRows(int at, int count)
{
    if (at < 0 || count < 1 || count > numRows() - at || count == numRows())
        return Kcad::eInvalidInput;
    beforeChange();
    const auto cells = m_table.cells.begin() + ptrdiff_t(at) * numColumns();
    m_table.cells.erase(cells, cells + ptrdiff_t(count) * numColumns());
    m_table.rows.erase(m_table.rows.begin() + at, m_table.rows.begin() + at + count);
    std::erase_if(m_table.merges, [&](KcDbCellRange& range) {
        return !removeSpan(range.minRow, range.maxRow, at, count);
    });
    dropSingleCells(m_table.merges);
    writeRecord();
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbTable::deleteColumns(int at, int count)
{
    if (at < 0 || count < 1 || count > numColumns() - at || count == numColumns())
        return Kcad::eInvalidInput;
    beforeChange();
    for (int row = numRows() - 1; row >= 0; --row) {
        const auto cells = m_table.cells.begin() + ptrdiff_t(row) * numColumns() + at;
        m_table.cells.erase(cells, cells + count);
    }
    m_table.columns.erase(m_table.columns.begin() + at, m_table.columns.begin() + at + count);
    std::erase_if(m_table.merges, [&](KcDbCellRange& range) {
        return !removeSpan(range.minColumn, range.maxColumn, at, count);
    });
    dropSingleCells(m_table.merges);
    writeRecord();
    return Kcad::eOk;
}

QString KcDbTable::columnName(int column) const
{
    readRecord();
    return column < 0 || column >= numColumns() ? QString() : m_table.columns[column].name;
}

Kcad::ErrorStatus KcDbTable::setColumnName(int column, const QString& name)
{
    if (column < 0 || column >= numColumns())
        return Kcad::eInvalidInput;
    beforeChange();
    m_table.columns[column].name = name;
    writeRecord();
    return Kcad::eOk;
}

// Merged areas.

std::optional<KcDbCellRange> KcDbTable::mergeAt(int row, int column) const
{
    for (const KcDbCellRange& range : m_table.merges)
        if (range.contains(row, column))
            return range;
    return {};
}

bool KcDbTable::isMergedCell(
    int row, int column, int* minRow, int* maxRow, int* minColumn, int* maxColumn) const
{
    const std::optional<KcDbCellRange> merge = mergeAt(row, column);
    const KcDbCellRange range = merge.value_or(KcDbCellRange{ row, row, column, column });
    for (const auto& [target, value] :
         { std::pair{ minRow, range.minRow }, std::pair{ maxRow, range.maxRow },
           std::pair{ minColumn, range.minColumn }, std::pair{ maxColumn, range.maxColumn } })
        if (target)
            *target = value;
    return merge.has_value();
}

Kcad::ErrorStatus KcDbTable::mergeCells(int minRow, int maxRow, int minColumn, int maxColumn)
{
    const KcDbCellRange area{ minRow, maxRow, minColumn, maxColumn };
    if (!isCell(minRow, minColumn) || !isCell(maxRow, maxColumn) || minRow > maxRow || minColumn > maxColumn
        || (minRow == maxRow && minColumn == maxColumn))
        return Kcad::eInvalidInput;
    const auto inside = [&](const KcDbCellRange& range) {
        return area.contains(range.minRow, range.minColumn) && area.contains(range.maxRow, range.maxColumn);
    };
    for (const KcDbCellRange& range : m_table.merges) {
        const bool apart = range.maxRow < minRow || range.minRow > maxRow || range.maxColumn < minColumn
            || range.minColumn > maxColumn;
        if (!apart && !inside(range))
            return Kcad::eInvalidInput;
    }
    beforeChange();
    std::erase_if(m_table.merges, inside);
    m_table.merges.push_back(area);
    return Kcad::eOk;
}

Kcad::ErrorStatus KcDbTable::unmergeCells(int minRow, int maxRow, int minColumn, int maxColumn)
{
    if (!isCell(minRow, minColumn) || !isCell(maxRow, maxColumn) || minRow > maxRow || minColumn > maxColumn)
        return Kcad::eInvalidInput;
    beforeChange();
    std::erase_if(m_table.merges, [&](const KcDbCellRange& range) {
        return range.maxRow >= minRow && range.minRow <= maxRow && range.maxColumn >= minColumn
            && range.minColumn <= maxColumn;
    });
    return Kcad::eOk;
}

// Content.

QString KcDbTable::textString(int row, int column) const
{
    return cell(row, column).text;
}

QString KcDbTable::plainText(int row, int column) const
{
    KcDbMText text;
    text.data().contents = cell(row, column).text;
    return text.plainText();
}

Kcad::ErrorStatus KcDbTable::setTextString(int row, int column, const QString& text)
{
    return changeCell(row, column, [&](KcDbTableCell& cell) {
        cell.type = KcDbTableCell::kText;
        cell.text = text;
        cell.text.replace(QLatin1String("\r\n"), QLatin1String("\\P"));
        cell.text.replace(QLatin1Char('\n'), QLatin1String("\\P"));
        cell.block = {};
        cell.field = {};
        cell.attributes.clear();
        cell.fileValue.clear();
        cell.others.clear();
    });
}

KcDbObjectId KcDbTable::blockTableRecordId(int row, int column) const
{
    const KcDbTableCell& held = cell(row, column);
    return held.type == KcDbTableCell::kBlock ? held.block : KcDbObjectId();
}

Kcad::ErrorStatus KcDbTable::setBlockTableRecordId(int row, int column, KcDbObjectId block, bool autoFit)
{
    if (block.isNull())
        return setTextString(row, column, {});
    const KcDbRead<KcDbBlockTableRecord> record(block);
    if (!record)
        return record.status();
    if (record->isLayout() || block == blockTableRecord())
        return Kcad::eSelfReference;
    return changeCell(row, column, [&](KcDbTableCell& cell) {
        cell.type = KcDbTableCell::kBlock;
        cell.text.clear();
        cell.field = {};
        cell.fileValue.clear();
        cell.others.clear();
        if (cell.block != block)
            cell.attributes.clear();
        cell.block = block;
        cell.autoFit = autoFit;
        cell.blockScale = 1.0;
    });
}

Kcad::ErrorStatus KcDbTable::setBlockScale(int row, int column, double scale)
{
    if (!(scale > 0.0))
        return Kcad::eInvalidInput;
    return changeCell(
        row, column, [&](KcDbTableCell& cell) { cell.blockScale = scale, cell.autoFit = false; });
}

Kcad::ErrorStatus KcDbTable::setRotation(int row, int column, double angle)
{
    return changeCell(row, column, [&](KcDbTableCell& cell) { cell.rotation = angle; });
}

int KcDbTable::cellState(int row, int column) const
{
    readRecord();
    return cell(row, column).state;
}

Kcad::ErrorStatus KcDbTable::setCellState(int row, int column, int state)
{
    if (cellState(row, column) == state && isCell(row, column))
        return Kcad::eOk;
    const Kcad::ErrorStatus status
        = changeCell(row, column, [&](KcDbTableCell& cell) { cell.state = state; });
    writeRecord();
    return status;
}

// Place.

void KcDbTable::setDirection(KcGeVector3d direction)
{
    if (!(direction.length() > KcGeContext::gTol.equalVector))
        return;
    m_table.direction = direction.normal();
    // The block that draws the table turns with it.
    const KcGeVector3d inPlane = KcGeMatrix3d::worldToPlane(m_data.normal) * m_table.direction;
    m_data.rotation = KcGeVector2d{ inPlane.x, inPlane.y }.angle();
}

bool KcDbTable::isUpward() const
{
    return m_table.upward.value_or(styleData().upward);
}

void KcDbTable::setUpward(bool upward)
{
    beforeChange();
    m_table.upward = upward;
}

KcGeExtents3d KcDbTable::geomExtents() const
{
    KcGeExtents3d box;
    if (numRows() == 0 || numColumns() == 0)
        return box;
    const KcGeVector3d along = m_table.direction.normal();
    const KcGeVector3d up = m_data.normal.normal().crossProduct(along);
    const KcGePoint3d origin = position();
    const double tall = isUpward() ? height() : -height();
    for (const double x : { 0.0, width() })
        for (const double y : { 0.0, tall })
            box.addPoint(origin + along * x + up * y);
    return box;
}

Kcad::ErrorStatus KcDbTable::transformBy(const KcGeMatrix3d& matrix)
{
    if (!matrix.isUniform())
        return Kcad::eCannotScaleNonUniformly;
    KcGePoint3d origin = matrix * position();
    KcGeVector3d along = matrix * m_table.direction;
    const KcGeVector3d up = matrix * m_data.normal.crossProduct(m_table.direction);
    const double factor = matrix.scale();
    if (matrix.determinant() < 0.0) {
        // The mirrored right end becomes the left end.
        origin = origin + along.normal() * (width() * factor);
        along = -along;
    }
    m_data.normal = along.crossProduct(up).normal();
    setPosition(origin);
    setDirection(along);
    if (std::abs(factor - 1.0) <= KcGeContext::gTol.equalVector)
        return Kcad::eOk;

    beforeChange();
    // What the table style says is scaled by saying it here.
    m_table.horizontalMargin = horizontalMargin() * factor;
    m_table.verticalMargin = verticalMargin() * factor;
    for (int i = 0; i < 3; ++i) {
        auto& height = m_table.rowLooks[i].look.textHeight;
        height = height.value_or(styleData().rows[i].textHeight) * factor;
    }
    for (KcDbTableData::Row& row : m_table.rows)
        row.height *= factor, row.drawnHeight *= factor;
    for (KcDbTableData::Column& column : m_table.columns)
        column.width *= factor;
    m_table.defaultRowHeight *= factor;
    m_table.defaultColumnWidth *= factor;
    for (KcDbTableCell& cell : m_table.cells) {
        if (cell.look.textHeight)
            *cell.look.textHeight *= factor;
        cell.blockScale *= factor;
    }
    if (database())
        recomputeTableBlock();
    return Kcad::eOk;
}
