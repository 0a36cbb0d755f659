// Statistics tables: settings, style, layout and headings.

#include "statistics/table_builder.h"

#include "core/application.h"
#include "core/drawing_config.h"
#include "core/layers.h"
#include "core/tables.h"
#include "ed/console.h"
#include "ed/documents.h"
#include "frame/settings.h"
#include "platform/result.h"
#include "statistics/table_layout.h"

namespace {

const QString tableStyleName = QStringLiteral("VDLTABLESTYLE");
const QString tableLayer = QStringLiteral("维德-统计表");

// Rows are this many text heights high, columns this many wide.
constexpr double rowHeights = 1.7;
constexpr double columnWidths = 5.0;
// Between grid lines and content, so that legends and long texts stay clear of the lines. One line of text
// with both margins still fits a row.
constexpr double margins = 0.18;

constexpr int middleCentre = 5;
constexpr int contentLocked = 2;

// The items below the current element that the drawing shows. Names of items are exact.
std::vector<TableColumn> shownItems(MarkupDocument& document, const CTbInfoStd& shown)
{
    std::vector<TableColumn> columns;
    document.IntoElem();
    while (document.FindElem(QStringLiteral("Item"))) {
        const QString name = childText(document, QStringLiteral("Name"));
        const STbInfoDesc* description = shown.FindByName(name);
        if (description && description->visible)
            columns.push_back({ name, description->text, shownItems(document, shown) });
    }
    document.OutOfElem();
    return columns;
}

platform::Result<TableLayout> readLayout(const QString& tableName)
{
    using Result = platform::Result<TableLayout>;
    const std::unique_ptr<CVdlConfig> config = GetDwgGlobal(VdlOpenMode::kForRead);
    const std::optional<CTbInfoStd> shown = config ? config->GetTbInfoStd(tableName) : std::nullopt;
    const STbInfoDesc* title = shown ? shown->FindByName(tableName) : nullptr;
    if (!title)
        return Result::failure(QStringLiteral("没有“%1”的表头信息，未生成统计表。").arg(tableName));

    platform::Result<MarkupDocument> layout = loadTableLayout();
    if (!layout)
        return Result::failure(layout.error + QStringLiteral("未生成统计表。"));
    if (!findTable(*layout, tableName))
        return Result::failure(QStringLiteral("表格布局文件中没有“%1”，未生成统计表。").arg(tableName));
    std::vector<TableColumn> columns = shownItems(*layout, *shown);
    if (columns.empty())
        return Result::failure(QStringLiteral("“%1”的各列都未显示，未生成统计表。").arg(tableName));
    return { TableLayout{ title->text, std::move(columns) }, {} };
}

bool sameText(const KcDbTable& table, int rowA, int rowB, int column)
{
    return table.plainText(rowA, column).compare(table.plainText(rowB, column), Qt::CaseInsensitive) == 0;
}

} // namespace

TableSettings tableSettingsFor(double drawingScale, double paperTextHeight, int areaUnit)
{
    TableSettings settings;
    settings.drawingScale = drawingScale;
    settings.textHeight = paperTextHeight * drawingScale;
    settings.rowHeight = settings.textHeight * rowHeights;
    settings.columnWidth = settings.textHeight * columnWidths;
    settings.areaUnit = areaUnit;
    return settings;
}

TableSettings readTableSettings()
{
    const QString section = QStringLiteral("DRAWING SETTINGS");
    const CVdlIni store = productSettings();
    // A scale or height that is not positive counts as absent, as in the drawing settings.
    const auto positive = [&](const QString& key, double otherwise) {
        const double value = store.real(section, key, otherwise);
        return value > 0 ? value : otherwise;
    };
    return tableSettingsFor(
        positive(QStringLiteral("dDrawingScale"), 100), positive(QStringLiteral("dTableTextHeight"), 3.5),
        store.integer(section, QStringLiteral("iAreaUnit"), 2));
}

KcDbObjectId tableStyleId(KcDbDatabase& database)
{
    const KcDbObjectId existing = KcDbTableStyle::find(database, tableStyleName);
    if (!existing.isNull())
        return existing;
    const KcDbObjectId id = KcDbTableStyle::create(database, tableStyleName);
    if (const KcDbWrite<KcDbTableStyle> style(id); style) {
        const KcCmColor byLayer{ KcCmColor::kByLayer, -1 };
        style->setColor(byLayer);
        style->setGridColor(byLayer);
        style->setTextStyle(GetVdlCurrentTextStyle(&database));
        style->setAlignment(middleCentre);
    }
    return id;
}

void buildTableHeader(KcDbTable& table, const TableLayout& layout, double rowHeight, double columnWidth)
{
    int columns = 0;
    bool grouped = false;
    for (const TableColumn& column : layout.columns) {
        columns += std::max(1, int(column.parts.size()));
        grouped |= !column.parts.empty();
    }
    table.setSize(grouped ? 3 : 2, std::max(1, columns));
    table.setRowHeight(rowHeight);
    table.setColumnWidth(columnWidth);
    if (grouped)
        table.setRowType(2, kHeaderRow);

    SetTableTextString(0, 0, layout.title, table);
    table.mergeCells(0, 0, 0, table.numColumns() - 1);
    int at = 0;
    for (const TableColumn& column : layout.columns) {
        const int first = at;
        SetTableTextString(1, first, column.heading, table);
        for (const TableColumn& part : column.parts) {
            SetTableTextString(2, at, part.heading, table);
            table.setColumnName(at++, part.name);
        }
        if (column.parts.empty()) {
            table.setColumnName(at++, column.name);
            if (grouped)
                table.mergeCells(1, 2, first, first);
        } else if (at - first > 1) {
            table.mergeCells(1, 1, first, at - 1);
        }
    }
    for (int row = 0; row < table.numRows(); ++row)
        for (int column = 0; column < table.numColumns(); ++column)
            table.setCellState(row, column, contentLocked);
}

bool createTable(TableSettings& settings, const QString& tableName)
{
    KcDbDatabase* database = kcedCurrentDatabase();
    if (!database)
        return false;
    const platform::Result<TableLayout> layout = readLayout(tableName);
    if (!layout) {
        kcedSay(layout.error);
        return false;
    }
    auto table = std::make_unique<KcDbTable>();
    table->setTableStyle(tableStyleId(*database));
    table->setTextHeight(settings.textHeight, kAllRows);
    table->setTextStyle(GetVdlCurrentTextStyle(database), kAllRows);
    table->setMargins(settings.textHeight * margins, settings.textHeight * margins);
    table->setLayer(InitStdLayer(tableLayer, database));
    buildTableHeader(*table, *layout, settings.rowHeight, settings.columnWidth);
    settings.table = std::move(table);
    return true;
}

TableHeaderRows findHeaderRows(const KcDbTable& table)
{
    if (table.numRows() < 3)
        return {};
    int topRow = 2;
    if (table.isMergedCell(2, 0, &topRow) && topRow < 2)
        return { 3, false };
    if (sameText(table, 1, 2, 0))
        return { 3, true };
    // A heading above several columns may stand first; our own tables know their headings.
    return { table.rowType(2) == kHeaderRow ? 3 : 2, false };
}

QString tableColumnName(const KcDbTable& table, int headerRows, int column)
{
    QString name = table.columnName(column);
    for (int row = headerRows - 1; name.isEmpty() && row >= std::max(1, headerRows - 2); --row)
        name = table.plainText(row, column);
    return name;
}

void mergeRepeatedHeadings(KcDbTable& table)
{
    int first = -1, last = -1;
    for (int column = 0; column < table.numColumns(); ++column) {
        if (sameText(table, 1, 2, column)) {
            table.mergeCells(1, 2, column, column);
            continue;
        }
        first = first < 0 ? column : first;
        last = column;
    }
    if (last > first)
        table.mergeCells(1, 1, first, last);
}

void widenForLongWords(KcDbTable& table, int firstDataRow)
{
    KcDbMText text;
    // As narrow as this, a line ends wherever it may.
    text.data().width = table.textHeight(firstDataRow, 0) / 1000;
    for (int row = firstDataRow; row < table.numRows(); ++row)
        for (int column = 0; column < table.numColumns(); ++column) {
            text.data().contents = table.textString(row, column);
            if (text.data().contents.isEmpty() || table.isMergedCell(row, column))
                continue;
            text.data().height = table.textHeight(row, column);
            text.data().style = table.textStyle(row, column);
            const double needed = text.actualWidth() + 2 * table.horizontalMargin();
            if (needed > table.columnWidth(column))
                table.setColumnWidth(column, needed);
        }
}
