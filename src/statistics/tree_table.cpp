// Rows of the tree quantity table.

#include "statistics/tree_table.h"

#include "core/block.h"
#include "core/drawing_config.h"
#include "core/long_work.h"
#include "core/tables.h"
#include "statistics/plant_count.h"

namespace {

constexpr size_t recordsWithoutMeter = 300;

const QString serialColumn = QStringLiteral("序号");
const QString legendColumn = QStringLiteral("图例");
const QString nameColumn = QStringLiteral("名称");
const QString countColumn = QStringLiteral("数量");
const QString unitColumn = QStringLiteral("单位");
const QString usualUnit = QStringLiteral("株");

// A record's block is a reference or a definition.
KcDbObjectId legendOf(const CTreeData& record)
{
    const KcDbObjectId definition = blockDefinitionOf(record.block);
    return definition.isNull() ? record.block : definition;
}

// What the definition says when no reference is known.
QString textOfDefinition(KcDbObjectId definition, const QString& tag)
{
    const KcDbRead<KcDbBlockTableRecord> block(definition);
    if (!block)
        return {};
    for (const KcDbObjectId id : *block)
        if (const KcDbRead<KcDbAttributeDefinition> attribute(id);
            attribute && attribute->attribute().tag.compare(tag, Qt::CaseInsensitive) == 0)
            return attribute->plainText();
    return {};
}

QString plantData(const CTreeData& record, const QString& name)
{
    CBlock block;
    if (!block.Initialize(record.block))
        return textOfDefinition(record.block, name);
    QString value;
    block.GetTreeData(name, value);
    return value;
}

// Names of the columns, by which they are filled.
QStringList columnNames(const KcDbTable& table, int headerRows)
{
    QStringList names;
    for (int column = 0; column < table.numColumns(); ++column)
        names += tableColumnName(table, headerRows, column);
    // Our own tables name every column. Serial number, legend and name of another program's table may be
    // called anything; they are the first three unless the headings say otherwise.
    const QStringList fixed{ serialColumn, legendColumn, nameColumn },
        known = fixed + QStringList{ countColumn, unitColumn };
    for (int column = 0; column < std::min(int(names.size()), int(fixed.size())); ++column)
        if (table.columnName(column).isEmpty() && !known.contains(names[column])
            && !names.contains(fixed[column]))
            names[column] = fixed[column];
    return names;
}

// The rows of a table as records that nothing is counted for yet, with their units as notes.
void takeRows(const KcDbTable& table, int headerRows, DList<CTreeData>& records)
{
    const QStringList names = columnNames(table, headerRows);
    const int name = int(names.indexOf(nameColumn)), unit = int(names.indexOf(unitColumn));
    if (name < 0)
        return;
    for (int row = headerRows; row < table.numRows(); ++row)
        records.append(new CTreeData{ table.plainText(row, name),
                                      {},
                                      0,
                                      row - headerRows + 1,
                                      unit < 0 ? QString() : table.plainText(row, unit) });
}

// What a row shows for a record in a column of that name, but for the legend.
QString textFor(const CTreeData& record, const QString& column, int serial)
{
    if (column == serialColumn)
        return QString::number(serial);
    if (column == nameColumn)
        return record.name;
    if (column == countColumn)
        return QString::number(record.count);
    if (column == unitColumn)
        return record.note.isEmpty() ? usualUnit : record.note;
    return plantData(record, column);
}

} // namespace

void fillTreeTable(KcDbTable& table, DList<CTreeData>& records, double rowHeight)
{
    if (records.isEmpty())
        return;
    LongWork work(QStringLiteral("正在处理%1条数据"), size_t(records.count()), recordsWithoutMeter);

    const int headerRows = findHeaderRows(table).count;
    const QStringList names = columnNames(table, headerRows);
    int serial = 0;
    for (int i = 0; i < records.count(); ++i) {
        work.advance();
        const CTreeData& record = *records.at(i);
        if (record.count == 0)
            continue;
        const int row = table.numRows();
        table.insertRows(row, rowHeight);
        ++serial;
        for (int column = 0; column < table.numColumns(); ++column) {
            if (names[column] == legendColumn)
                table.setBlockTableRecordId(row, column, legendOf(record));
            else
                SetTableTextString(row, column, textFor(record, names[column], serial), table);
        }
    }
    widenForLongWords(table, headerRows);
    records.clear();
}

bool recountTreeTable(const KcDbTable& table, const PlantSelection& plants, DList<CTreeData>& records)
{
    takeRows(table, findHeaderRows(table).count, records);
    return countPlants(plants, records);
}

void updateTreeTable(KcDbTable& table, DList<CTreeData>& records, const TableSettings& settings)
{
    table.mergeCells(0, 0, 0, table.numColumns() - 1);
    table.setRowHeight(settings.rowHeight);
    const TableHeaderRows header = findHeaderRows(table);

    if (table.numRows() > header.count)
        table.deleteRows(header.count, table.numRows() - header.count);
    table.setTextHeight(0, 0, settings.textHeight);
    table.setTextHeight(settings.textHeight, kAllRows);
    table.setTextStyle(GetVdlCurrentTextStyle(table.database()), kAllRows);
    UpdateTableHeaderWidth(table, settings.columnWidth);

    fillTreeTable(table, records, settings.rowHeight);
    if (header.repeatsTexts)
        mergeRepeatedHeadings(table);
}
