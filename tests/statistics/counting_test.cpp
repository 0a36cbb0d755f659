// Counting plants from symbols and labels, and filling and updating tables with the counts.
#include "core/entity_tags.h"
#include "core/tags.h"
#include "ed/session.h"
#include "ed/status_bar.h"
#include "platform/app_root.h"
#include "statistics/commands.h"
#include "statistics/plant_count.h"
#include "statistics/tree_table.h"

#include <gtest/gtest.h>

namespace {

using Mode = PlantSelection::Mode;

class Counting : public ::testing::Test, public ed_test::Session {
protected:
    Counting() { platform::setAppRoot(QStringLiteral(VERDELIS_SOURCE_DIR "/share/verdelis")); }
    ~Counting() override { platform::setAppRoot({}); }

    KcDbObjectId block(const QString& name)
    {
        const KcDbObjectId id = kcdbFindRecord(database.blockTable(), name);
        return id.isNull() ? addBlock(name) : id;
    }
    // A selection of symbols, "A A B".
    PlantSelection symbols(const QString& names)
    {
        PlantSelection selection;
        for (const QString& name : names.split(' ', Qt::SkipEmptyParts))
            selection.ids.push_back(
                add(std::make_unique<KcDbBlockReference>(KcGePoint3d{ 0, 0, 0 }, block(name))));
        return selection;
    }
    PlantSelection labels(const QStringList& texts)
    {
        PlantSelection selection{ Mode::Labels, {} };
        for (const QString& text : texts) {
            auto label = std::make_unique<KcDbText>();
            label->setTextString(text);
            selection.ids.push_back(add(std::move(label)));
        }
        return selection;
    }
    // "B=1 A=5": the records in their order.
    static std::string counted(const PlantSelection& plants)
    {
        DList<CTreeData> records;
        countPlants(plants, records);
        QStringList list;
        for (int i = 0; i < records.count(); ++i)
            list += QStringLiteral("%1=%2").arg(records.at(i)->name).arg(records.at(i)->count);
        return list.join(' ').toStdString();
    }
    // A table in the drawing, with these columns ("key" or "key=heading").
    KcDbObjectId table(
        const PlantSelection& plants,
        const QString& columns = QStringLiteral("序号 图例 名称 数量 单位 高度"))
    {
        auto table = std::make_unique<KcDbTable>();
        TableLayout layout{ "T", {} };
        for (const QString& column : columns.split(' '))
            layout.columns.push_back({ column.section('=', 0, 0), column.section('=', -1), {} });
        table->setTextHeight(settings.textHeight, kAllRows);
        buildTableHeader(*table, layout, settings.rowHeight, settings.columnWidth);
        DList<CTreeData> records;
        countPlants(plants, records);
        fillTreeTable(*table, records, settings.rowHeight);
        return KcDbTable::append(database.modelSpace(), std::move(table));
    }
    // Serial, name, count, unit of the data rows: "1 B 1 株/2 A 5 株".
    static std::string rows(KcDbObjectId id)
    {
        const KcDbRead<KcDbTable> table(id);
        QStringList rows;
        for (int row = findHeaderRows(*table).count; row < table->numRows(); ++row)
            rows += QStringList{ table->plainText(row, 0), table->plainText(row, 2), table->plainText(row, 3),
                                 table->plainText(row, 4) }
                        .join(' ');
        return rows.join('/').toStdString();
    }
    // All that the rows below the title show, a legend as [block].
    static std::string cells(KcDbObjectId id)
    {
        const KcDbRead<KcDbTable> table(id);
        QStringList rows;
        for (int row = 1; row < table->numRows(); ++row) {
            QStringList texts;
            for (int column = 0; column < table->numColumns(); ++column) {
                const KcDbObjectId block = table->blockTableRecordId(row, column);
                texts += block.isNull() ? table->plainText(row, column) : '[' + kcdbRecordName(block) + ']';
            }
            rows += texts.join(' ');
        }
        return rows.join('/').toStdString();
    }
    void update(KcDbObjectId id, const PlantSelection& plants)
    {
        DList<CTreeData> records;
        EXPECT_TRUE(recountTreeTable(*KcDbRead<KcDbTable>(id), plants, records));
        updateTreeTable(*KcDbWrite<KcDbTable>(id), records, settings);
    }

    const TableSettings settings = tableSettingsFor(100, 3.5, 2);
};

} // namespace

TEST_F(Counting, SymbolsByNameAscending)
{
    EXPECT_EQ(counted(symbols("香樟 香樟 香樟 桂花 香樟 香樟")), "桂花=1 香樟=5");
    EXPECT_EQ(counted(symbols("a a a a a b b c c c c c d")), "d=1 b=2 a=5 c=5");
    EXPECT_EQ(counted(symbols("")), "");
}

TEST_F(Counting, LabelsByTheirEntries)
{
    const struct {
        const char* name;
        QStringList texts;
        const char* counted;
    } rows[] = {
        { "forms of a label", { "香樟 4", "香樟(4株)", "香樟-4", "香樟4" }, "香樟=16" },
        { "no number, no plant", { "香樟", "草坪" }, "" },
        { "a count of 0", { "香樟 0" }, "" },
        { "later entries under the species of the first", { "香樟A12-3,B-2" }, "香樟AB=2 香樟A12=3" },
        { "a number alone continues the first", { "香樟-3,2" }, "香樟=5" },
        { "a number alone names nothing", { "12" }, "" },
        { "an entry without number is passed over", { "见详图,香樟-3" }, "香樟=3" },
        { "a sum too large for a count", { "a-2147483647", "a-5" }, "a=2147483647" },
    };
    for (const auto& row : rows)
        EXPECT_EQ(counted(labels(row.texts)), row.counted) << row.name;
}

// A label of an area that reads like one of plants must not be counted.
TEST_F(Counting, LabelsOfAreasAreLeftOut)
{
    const PlantSelection selection = labels({ "香樟-4", "麦冬 12" });
    setEntityTag(*KcDbWrite<KcDbObject>(selection.ids[1]), tags::entityType, tags::kind::areaLabel);
    EXPECT_EQ(counted(selection), "香樟=4");
}

TEST_F(Counting, NewTableHasLegendsAndData)
{
    const KcDbObjectId tree = block("A");
    auto height = std::make_unique<KcDbAttributeDefinition>();
    height->attribute().tag = "高度";
    height->setTextString("3.0");
    KcDbRead<KcDbBlockTableRecord>(tree)->appendEntity(std::move(height));

    for (const PlantSelection& plants : { symbols("A A B"), labels({ "A-2", "B-1", "nowhere-7" }) }) {
        const bool labelled = plants.mode == Mode::Labels;
        const KcDbObjectId id = table(plants);
        EXPECT_EQ(rows(id), std::string("1 B 1 株/2 A 2 株") + (labelled ? "/3 nowhere 7 株" : ""));
        const KcDbRead<KcDbTable> made(id);
        EXPECT_EQ(made->blockTableRecordId(2, 1), block("B"));
        EXPECT_EQ(made->blockTableRecordId(3, 1), tree);
        EXPECT_EQ(made->plainText(2, 5), "");
        EXPECT_EQ(made->plainText(3, 5), "3.0");
        if (labelled) {
            EXPECT_TRUE(made->blockTableRecordId(4, 1).isNull());
        }
    }
}

TEST_F(Counting, UpdateKeepsOrderAndUnits)
{
    const struct {
        const char* name;
        const char* before;
        const char* unitOfLast; ///< set in the last row before the update; null: none
        PlantSelection now;
        const char* after;
    } cases[] = {
        { "one goes, one stays with its unit, one comes", "A B B", "丛", symbols("C B B B"),
          "1 B 3 丛/2 C 1 株" },
        { "the order is kept, not that of the counts", "A B B", nullptr, symbols("B A A A"),
          "1 A 3 株/2 B 1 株" },
        { "from labels", "A B B", "丛", labels({ "C-9", "B-4" }), "1 B 4 丛/2 C 9 株" },
        { "nothing is left", "A B B", nullptr, labels({ "none" }), "" },
        { "a table without rows is sorted by count", "", nullptr, symbols("A A B"), "1 B 1 株/2 A 2 株" },
    };
    for (const auto& row : cases) {
        const KcDbObjectId id = table(symbols(row.before));
        if (row.unitOfLast) {
            const KcDbWrite<KcDbTable> open(id);
            open->setTextString(open->numRows() - 1, 4, row.unitOfLast);
        }
        update(id, row.now);
        EXPECT_EQ(rows(id), row.after) << row.name;
    }
}

// A column that the drawing does not show must not leave its content to the one in its place, nor may a new
// heading make the program forget what the column holds.
TEST_F(Counting, ColumnsGoByTheirNames)
{
    const struct {
        const char* columns;
        const char* counted;
        const char* updated;
    } rows[] = {
        { "序号 名称 数量", "序号 名称 数量/1 B 1/2 A 2", "序号 名称 数量/1 B 3/2 C 1" },
        { "图例 数量", "图例 数量/[B] 1/[A] 2", "图例 数量/[C] 1/[B] 3" },
        { "名称", "名称/B/A", "名称/B/C" },
        { "数量=棵数 名称=树种 图例=符号", "棵数 树种 符号/1 B [B]/2 A [A]",
          "棵数 树种 符号/3 B [B]/1 C [C]" },
        // As other programs write them, without names of columns.
        { "=No. =Symbol =Plant =数量", "No. Symbol Plant 数量/1 [B] B 1/2 [A] A 2",
          "No. Symbol Plant 数量/1 [B] B 3/2 [C] C 1" },
        { "=序号 =名称 =数量", "序号 名称 数量/1 B 1/2 A 2", "序号 名称 数量/1 B 3/2 C 1" },
    };
    for (const auto& row : rows) {
        const KcDbObjectId id = table(symbols("A A B"), row.columns);
        EXPECT_EQ(cells(id), row.counted);
        update(id, symbols("C B B B"));
        EXPECT_EQ(cells(id), row.updated);
    }
}

// Narrow columns and small texts of an earlier setting take the present sizes; wider columns stay.
TEST_F(Counting, UpdateTakesThePresentSizes)
{
    const KcDbObjectId id = table(symbols("A"));
    {
        const KcDbWrite<KcDbTable> open(id);
        open->setColumnWidth(2, 9000);
        open->setColumnWidth(3, 10);
        open->setTextHeight(1.0, kAllRows);
        open->setRowHeight(20);
    }
    update(id, symbols("A"));
    const KcDbRead<KcDbTable> open(id);
    EXPECT_EQ(open->columnWidth(2), 9000);
    EXPECT_EQ(open->columnWidth(3), settings.columnWidth);
    for (int row = 0; row < open->numRows(); ++row) {
        EXPECT_EQ(open->textHeight(row, 0), settings.textHeight);
        EXPECT_EQ(open->minimumRowHeight(row), settings.rowHeight);
    }
}

// Long work shows a meter that begins above its limit and ends with the work.
TEST_F(Counting, ManySymbolsShowAMeter)
{
    struct Sink : KcEdProgressSink {
        void show(const QString& text, int percent) override { label = text, last = percent; }
        void clear() override { ++ended; }
        QString label;
        int last = -1, ended = 0;
    } sink;
    KcEdProgressSink* const before = kcedSetProgressSink(&sink);
    PlantSelection plants = symbols("A");
    plants.ids.resize(1000, plants.ids[0]);
    EXPECT_EQ(counted(plants), "A=1000");
    EXPECT_EQ(sink.ended, 0);
    plants.ids.push_back(plants.ids[0]);
    EXPECT_EQ(counted(plants), "A=1001");
    EXPECT_EQ(sink.label, "正在分析1001个图块的数据");
    EXPECT_EQ(sink.last, 100);
    EXPECT_EQ(sink.ended, 1);
    kcedSetProgressSink(before);
}

TEST_F(Counting, ADrawingThatMustNotChangeStaysAsItIs)
{
    symbols("A A");
    const KcDbObjectId old = table(symbols("B"));
    setEntityTag(*KcDbWrite<KcDbTable>(old), tags::entityType, tags::kind::treeTable);
    const uint64_t changes = database.changeCount();
    document.setWriteProtected(true);
    run(countPlantsIntoTable, { "ALL", "", "0,0" });
    EXPECT_TRUE(printed.contains("未生成统计表")) << qPrintable(printed);
    run(updatePlantTables, { "ALL", "", "" });
    EXPECT_TRUE(printed.contains("统计表未更新")) << qPrintable(printed);
    EXPECT_EQ(database.changeCount(), changes);
}

// A word that cannot be broken must not run into the next column; texts that can be broken widen nothing.
TEST_F(Counting, ColumnsHoldTheirLongestWord)
{
    const QString word(30, 'M');
    const KcDbObjectId longWord = table(symbols("香樟A " + word));
    const KcDbObjectId sentence
        = table(labels({ QString(30, u'樟') + "-2", "a b c d e f g h i j k l m n o-3" }));
    const KcDbRead<KcDbTable> wide(longWord), usual(sentence);
    EXPECT_GT(wide->columnWidth(2), 30 * 0.5 * settings.textHeight);
    for (int column = 0; column < wide->numColumns(); ++column) {
        if (column != 2) {
            EXPECT_EQ(wide->columnWidth(column), settings.columnWidth);
        }
        EXPECT_EQ(usual->columnWidth(column), settings.columnWidth);
    }
}
