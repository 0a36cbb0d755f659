// Rows of the tree quantity table.

#include "statistics/tree_table.h"

#include "core/block.h"
#include "core/drawing_config.h"
#include "core/tables.h"
#include "statistics/long_work.h"
#include "statistics/plant_count.h"

namespace {

constexpr size_t recordsWithoutMeter = 300;

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

int findUnitColumn(const KcDbTable& table, int headerRows)
{
    for (int column = 0; column < table.numColumns(); ++column)
        if (tableColumnName(table, headerRows, column) == unitColumn)
            return column;
    return -1;
}

// The rows of a table as records that nothing is counted for yet, with their units as notes.
void takeRows(const KcDbTable& table, int headerRows, DList<CTreeData>& records)
{
    const int unit = findUnitColumn(table, headerRows);
    for (int row = headerRows; row < table.numRows(); ++row)
        records.append(new CTreeData{ table.plainText(row, kNameColumn),
                                      {},
                                      0,
                                      row - headerRows + 1,
                                      unit < 0 ? QString() : table.plainText(row, unit) });
}

} // namespace

void fillTreeTable(KcDbTable& table, DList<CTreeData>& records, double rowHeight)
{
    if (records.isEmpty())
        return;
    LongWork work(QStringLiteral("正在处理%1条数据"), size_t(records.count()), recordsWithoutMeter);

    std::vector<QString> names;
    const int headerRows = findHeaderRows(table).count;
    for (int column = 0; column < table.numColumns(); ++column)
        names.push_back(tableColumnName(table, headerRows, column));

    int serial = 0;
    for (int i = 0; i < records.count(); ++i) {
        work.advance();
        const CTreeData& record = *records.at(i);
        if (record.count == 0)
            continue;
        const int row = table.numRows();
        table.insertRows(row, rowHeight);
        SetTableTextString(row, kSerialColumn, QString::number(++serial), table);
        table.setBlockTableRecordId(row, kLegendColumn, legendOf(record));
        SetTableTextString(row, kNameColumn, record.name, table);
        for (int column = kFirstDataColumn; column < table.numColumns(); ++column) {
            const QString& name = names[size_t(column)];
            QString text;
            if (name == countColumn)
                text = QString::number(record.count);
            else if (name == unitColumn)
                text = record.note.isEmpty() ? usualUnit : record.note;
            else
                text = plantData(record, name);
            SetTableTextString(row, column, text, table);
        }
    }
    widenForLongWords(table, headerRows);
    records.clear();
}

void updateTreeTable(KcDbTable& table, const PlantSelection& plants, const TableSettings& settings)
{
    table.mergeCells(0, 0, 0, table.numColumns() - 1);
    table.setRowHeight(settings.rowHeight);
    const TableHeaderRows header = findHeaderRows(table);

    DList<CTreeData> records;
    takeRows(table, header.count, records);
    if (table.numRows() > header.count)
        table.deleteRows(header.count, table.numRows() - header.count);
    table.setTextHeight(0, 0, settings.textHeight);
    table.setTextHeight(settings.textHeight, kAllRows);
    table.setTextStyle(GetVdlCurrentTextStyle(table.database()), kAllRows);
    UpdateTableHeaderWidth(table, settings.columnWidth);

    countPlants(plants, records);
    fillTreeTable(table, records, settings.rowHeight);
    if (header.repeatsTexts)
        mergeRepeatedHeadings(table);
}
