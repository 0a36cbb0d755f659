// Tables: cells, sizes, merged areas, looks, place, and the record for what the file's own form of a table
// cannot hold.

#include "db/table.h"

#include "db/database.h"
#include "db/dictionary.h"

#include <unordered_set>

KCRX_DEFINE(KcDbTable, KcDbBlockReference, "AcDbTable")

namespace {

const QString kRecordName = QStringLiteral("VDL_TABLE");
constexpr int kRecordVersion = 1;

// Group codes of the record: see docs/tables.md.
enum RecordCode {
    kVersionCode = 70,
    kRowsCode = 71,
    kColumnsCode = 72,
    kNamedColumnCode = 90,
    kNameCode = 1,
    kStateRowCode = 91,
    kStateColumnCode = 92,
    kStateCode = 93,
    kLowRowCode = 94,
    kLowHeightCode = 40,
    kTypedRowCode = 95,
    kTypeCode = 96,
};

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

// The bits of the file's flags that tell which of the looks above them are given: once a look is set here
// they are right again, whatever the file said.
void trustLooks(KcDbTableCell& cell)
{
    constexpr int kLookBits = 0x3ffff;
    cell.otherOverrides &= ~kLookBits;
    cell.otherFlags &= ~0xf;
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

template <class Change> Kcad::ErrorStatus KcDbTable::changeCell(int row, int column, Change change)
{
    if (!isCell(row, column))
        return Kcad::eInvalidInput;
    beforeChange();
    change(*at(row, column));
    return Kcad::eOk;
}

template <class Change> Kcad::ErrorStatus KcDbTable::changeLook(int row, int column, Change change)
{
    return changeCell(row, column, [&](KcDbTableCell& cell) {
        trustLooks(cell);
        change(cell);
    });
}

template <class Change> void KcDbTable::changeRows(int rowTypes, Change change)
{
    beforeChange();
    m_table.otherOverrides[0] = 0;
    for (const KcDbRowType type : { kDataRow, kTitleRow, kHeaderRow })
        if (rowTypes & type)
            change(m_table.rowLooks[KcDbTableStyle::indexOf(type)]);
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

// Looks.

void KcDbTable::setTableStyle(KcDbObjectId style)
{
    beforeChange();
    m_table.style = style;
}

const KcDbTableStyle::Data& KcDbTable::styleData() const
{
    static const KcDbTableStyle usual;
    const KcDbRead<KcDbTableStyle> style(m_table.style);
    return style ? style->data() : usual.data();
}

KcDbRowType KcDbTable::rowType(int row) const
{
    readRecord();
    if (row >= 0 && row < numRows() && m_table.rows[row].type)
        return *m_table.rows[row].type;
    const int title = isTitleSuppressed() ? 0 : 1;
    if (row < title)
        return kTitleRow;
    return row == title && !isHeaderSuppressed() ? kHeaderRow : kDataRow;
}

Kcad::ErrorStatus KcDbTable::setRowType(int row, std::optional<KcDbRowType> type)
{
    if (row < 0 || row >= numRows()
        || (type && *type != kDataRow && *type != kTitleRow && *type != kHeaderRow))
        return Kcad::eInvalidInput;
    beforeChange();
    m_table.rows[row].type = type;
    writeRecord();
    return Kcad::eOk;
}

bool KcDbTable::isTitleSuppressed() const
{
    return m_table.titleSuppressed.value_or(styleData().titleSuppressed);
}

bool KcDbTable::isHeaderSuppressed() const
{
    return m_table.headerSuppressed.value_or(styleData().headerSuppressed);
}

void KcDbTable::suppressTitle(bool suppressed)
{
    beforeChange();
    m_table.titleSuppressed = suppressed;
}

void KcDbTable::suppressHeader(bool suppressed)
{
    beforeChange();
    m_table.headerSuppressed = suppressed;
}

const KcDbTableData::RowLook& KcDbTable::rowLook(int row) const
{
    return m_table.rowLooks[KcDbTableStyle::indexOf(rowType(row))];
}

double KcDbTable::textHeight(int row, int column) const
{
    if (const auto& own = cell(row, column).look.textHeight)
        return *own;
    const KcDbRowType type = rowType(row);
    return rowLook(row).look.textHeight.value_or(styleData().rows[KcDbTableStyle::indexOf(type)].textHeight);
}

KcDbObjectId KcDbTable::textStyle(int row, int column) const
{
    if (const auto& own = cell(row, column).look.textStyle)
        return *own;
    const KcDbRowType type = rowType(row);
    return rowLook(row).look.textStyle.value_or(styleData().rows[KcDbTableStyle::indexOf(type)].textStyle);
}

int KcDbTable::alignment(int row, int column) const
{
    if (const auto& own = cell(row, column).look.alignment)
        return *own;
    const KcDbRowType type = rowType(row);
    return rowLook(row).look.alignment.value_or(styleData().rows[KcDbTableStyle::indexOf(type)].alignment);
}

KcCmColor KcDbTable::contentColor(int row, int column) const
{
    if (const auto& own = cell(row, column).look.contentColor)
        return *own;
    const KcDbRowType type = rowType(row);
    return rowLook(row).look.contentColor.value_or(styleData().rows[KcDbTableStyle::indexOf(type)].textColor);
}

std::optional<KcCmColor> KcDbTable::backgroundColor(int row, int column) const
{
    const KcDbTableLook& own = cell(row, column).look;
    const KcDbTableLook& rows = rowLook(row).look;
    const KcDbTableStyle::RowFormat& format = styleData().rows[KcDbTableStyle::indexOf(rowType(row))];
    const bool filled = own.filled.value_or(rows.filled.value_or(format.filled));
    if (!filled)
        return {};
    return own.backgroundColor.value_or(rows.backgroundColor.value_or(format.fillColor));
}

KcDbGridLook KcDbTable::gridLook(int row, int column, KcDbTableCell::Edge edge) const
{
    // Which row lies above and below on paper depends on the direction in which rows follow one another.
    const int above = isUpward() ? row + 1 : row - 1, below = isUpward() ? row - 1 : row + 1;
    const auto sameType
        = [&](int other) { return other >= 0 && other < numRows() && rowType(other) == rowType(row); };
    int line = 0;
    switch (edge) {
    case KcDbTableCell::kTop:
        line = sameType(above) ? 1 : 0;
        break;
    case KcDbTableCell::kBottom:
        line = sameType(below) ? 1 : 2;
        break;
    case KcDbTableCell::kLeft:
        line = column == 0 ? 3 : 4;
        break;
    case KcDbTableCell::kRight:
        line = column == numColumns() - 1 ? 5 : 4;
        break;
    }
    KcDbGridLook look = styleData().rows[KcDbTableStyle::indexOf(rowType(row))].grid[line];
    for (const KcDbGridOverride* own : { &rowLook(row).grid[line], &cell(row, column).edges[edge] }) {
        look.color = own->color.value_or(look.color);
        look.lineWeight = own->lineWeight.value_or(look.lineWeight);
        look.visible = own->visible.value_or(look.visible);
    }
    return look;
}

void KcDbTable::setTextHeight(double height, int rowTypes)
{
    changeRows(rowTypes, [&](KcDbTableData::RowLook& rows) { rows.look.textHeight = height; });
}

void KcDbTable::setTextStyle(KcDbObjectId style, int rowTypes)
{
    changeRows(rowTypes, [&](KcDbTableData::RowLook& rows) { rows.look.textStyle = style; });
}

void KcDbTable::setAlignment(int alignment, int rowTypes)
{
    changeRows(
        rowTypes, [&](KcDbTableData::RowLook& rows) { rows.look.alignment = std::clamp(alignment, 1, 9); });
}

void KcDbTable::setContentColor(const KcCmColor& color, int rowTypes)
{
    changeRows(rowTypes, [&](KcDbTableData::RowLook& rows) { rows.look.contentColor = color; });
}

void KcDbTable::setBackgroundColor(std::optional<KcCmColor> color, int rowTypes)
{
    changeRows(rowTypes, [&](KcDbTableData::RowLook& rows) {
        rows.look.filled = color.has_value();
        rows.look.backgroundColor = color;
    });
}

void KcDbTable::setGridLook(const KcDbGridLook& look, int gridLines, int rowTypes)
{
    changeRows(rowTypes, [&](KcDbTableData::RowLook& rows) {
        for (size_t i = 0; i < rows.grid.size(); ++i)
            if (gridLines & (1 << i))
                rows.grid[i] = { look.color, look.lineWeight, look.visible };
    });
}

Kcad::ErrorStatus KcDbTable::setTextHeight(int row, int column, double height)
{
    if (!(height > 0.0))
        return Kcad::eInvalidInput;
    return changeLook(row, column, [&](KcDbTableCell& cell) { cell.look.textHeight = height; });
}

Kcad::ErrorStatus KcDbTable::setTextStyle(int row, int column, KcDbObjectId style)
{
    return changeLook(row, column, [&](KcDbTableCell& cell) { cell.look.textStyle = style; });
}

Kcad::ErrorStatus KcDbTable::setAlignment(int row, int column, int alignment)
{
    if (alignment < 1 || alignment > 9)
        return Kcad::eInvalidInput;
    return changeLook(row, column, [&](KcDbTableCell& cell) { cell.look.alignment = alignment; });
}

Kcad::ErrorStatus KcDbTable::setContentColor(int row, int column, const KcCmColor& color)
{
    return changeLook(row, column, [&](KcDbTableCell& cell) { cell.look.contentColor = color; });
}

Kcad::ErrorStatus KcDbTable::setBackgroundColor(int row, int column, std::optional<KcCmColor> color)
{
    return changeLook(row, column, [&](KcDbTableCell& cell) {
        cell.look.filled = color.has_value();
        cell.look.backgroundColor = color;
    });
}

Kcad::ErrorStatus
KcDbTable::setGridLook(int row, int column, KcDbTableCell::Edge edge, const KcDbGridLook& look)
{
    return changeLook(row, column, [&](KcDbTableCell& cell) {
        cell.edges[edge] = { look.color, look.lineWeight, look.visible };
    });
}

double KcDbTable::horizontalMargin() const
{
    return m_table.horizontalMargin.value_or(styleData().horizontalMargin);
}

double KcDbTable::verticalMargin() const
{
    return m_table.verticalMargin.value_or(styleData().verticalMargin);
}

void KcDbTable::setMargins(double horizontal, double vertical)
{
    beforeChange();
    m_table.horizontalMargin = horizontal;
    m_table.verticalMargin = vertical;
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

// The record.

KcDbValueList KcDbTable::recordValues() const
{
    KcDbValueList values;
    for (int column = 0; column < numColumns(); ++column)
        if (const QString& name = m_table.columns[column].name; !name.isEmpty()) {
            values.push_back({ kNamedColumnCode, int64_t(column) });
            values.push_back({ kNameCode, name });
        }
    for (int row = 0; row < numRows(); ++row) {
        const KcDbTableData::Row& held = m_table.rows[row];
        if (held.drawnHeight > held.height) {
            values.push_back({ kLowRowCode, int64_t(row) });
            values.push_back({ kLowHeightCode, held.height });
        }
        if (held.type) {
            values.push_back({ kTypedRowCode, int64_t(row) });
            values.push_back({ kTypeCode, int64_t(*held.type) });
        }
        for (int column = 0; column < numColumns(); ++column)
            if (const int state = cell(row, column).state) {
                values.push_back({ kStateRowCode, int64_t(row) });
                values.push_back({ kStateColumnCode, int64_t(column) });
                values.push_back({ kStateCode, int64_t(state) });
            }
    }
    if (values.empty())
        return values;
    const KcDbValueList head{ { kVersionCode, int64_t(kRecordVersion) },
                              { kRowsCode, int64_t(numRows()) },
                              { kColumnsCode, int64_t(numColumns()) } };
    values.insert(values.begin(), head.begin(), head.end());
    return values;
}

void KcDbTable::writeRecord()
{
    if (!database())
        return;
    KcDbValueList values = recordValues();
    KcDbObjectId id;
    if (KcDbRead<KcDbDictionary> dictionary(extensionDictionary()); dictionary)
        id = dictionary->getAt(kRecordName);
    if (KcDbRead<KcDbXrecord> record(id); record) {
        if (record->values() == values)
            return;
    } else if (values.empty()) {
        return;
    }
    if (values.empty()) {
        KcDbWrite<KcDbDictionary> dictionary(extensionDictionary());
        dictionary->remove(kRecordName);
        return;
    }
    if (KcDbWrite<KcDbXrecord> record(id); record) {
        record->setValues(std::move(values));
        return;
    }
    auto record = std::make_unique<KcDbXrecord>();
    record->setValues(std::move(values));
    if (KcDbWrite<KcDbDictionary> dictionary(createExtensionDictionary()); dictionary)
        dictionary->setAt(kRecordName, std::move(record));
}

void KcDbTable::readRecord() const
{
    // Read when first asked for: while a drawing is read, the table may come before its record. What is read
    // fills places that are empty until then, so a table that is open for reading only stays what it was.
    if (m_recordRead)
        return;
    const KcDbObjectId dictionaryId = extensionDictionary();
    if (!dictionaryId.isNull() && !dictionaryId.isValid())
        return;
    m_recordRead = true;
    const KcDbRead<KcDbDictionary> dictionary(dictionaryId);
    if (!dictionary)
        return;
    const KcDbRead<KcDbXrecord> record(dictionary->getAt(kRecordName));
    if (!record)
        return;
    KcDbTableData& table = const_cast<KcDbTable*>(this)->m_table;
    int rows = -1, columns = -1;
    int namedColumn = -1, stateRow = -1, stateColumn = -1, lowRow = -1, typedRow = -1;
    const auto isRow = [&](int row) { return rows == numRows() && row >= 0 && row < rows; };
    const auto isColumn
        = [&](int column) { return columns == numColumns() && column >= 0 && column < columns; };
    for (const KcDbTypedValue& value : record->values()) {
        const int number = int(value.integer(-1));
        switch (value.code) {
        case kVersionCode:
            if (number != kRecordVersion)
                return; // of a later form
            break;
        case kRowsCode:
            rows = number;
            break;
        case kColumnsCode:
            columns = number;
            break;
        case kNamedColumnCode:
            namedColumn = number;
            break;
        case kNameCode:
            if (isColumn(namedColumn))
                table.columns[namedColumn].name = value.text();
            break;
        case kStateRowCode:
            stateRow = number;
            break;
        case kStateColumnCode:
            stateColumn = number;
            break;
        case kStateCode:
            if (isRow(stateRow) && isColumn(stateColumn))
                table.cells[size_t(stateRow) * columns + stateColumn].state = number;
            break;
        case kLowRowCode:
            lowRow = number;
            break;
        case kLowHeightCode:
            if (isRow(lowRow) && value.real() < table.rows[lowRow].height) {
                table.rows[lowRow].drawnHeight = table.rows[lowRow].height;
                table.rows[lowRow].height = value.real();
            }
            break;
        case kTypedRowCode:
            typedRow = number;
            break;
        case kTypeCode:
            if (isRow(typedRow) && (number == kDataRow || number == kTitleRow || number == kHeaderRow))
                table.rows[typedRow].type = KcDbRowType(number);
            break;
        default:
            break;
        }
    }
}
