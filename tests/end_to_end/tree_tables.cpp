// TREENUMTOTABLE and UPDATETREENUMTOTABLE through the program, on the example plan and on drawings of other
// programs.
#include "support.h"

#include "core/text.h"

using namespace end_to_end;

namespace {

class TreeTables : public EndToEnd {
protected:
    // The handles of the references of a block.
    static QStringList symbols(const KcDbDatabase& drawing, const QString& name)
    {
        QStringList handles;
        for (const KcDbObjectId id : entities<KcDbBlockReference>(drawing))
            if (CBlock block; block.Initialize(id) && block.GetName() == name)
                handles += handle(id);
        return handles;
    }
    // The handles of the texts that end so.
    static QStringList texts(const KcDbDatabase& drawing, const QString& end)
    {
        QStringList handles;
        for (const KcDbObjectId id : entities<KcDbEntity>(drawing))
            if (MText text; text.Initialize(id) && text.GetText().endsWith(end))
                handles += handle(id);
        return handles;
    }

    const QStringList count{ "TREENUMTOTABLE", "ALL", "", "0,0" };
    const QStringList update{ "UPDATETREENUMTOTABLE", "ALL", "", "" };
};

} // namespace

TEST_F(TreeTables, CountWhatTheDrawingHolds)
{
    const struct {
        QString drawing;
        int names; ///< as another program counts them; -1: it does not know whose variant a block is
    } rows[] = {
        { plan, 36 },
        { data("house-floorplan-r2004.dxf"), 7 },
        { data("block-color-cn-r2013.dxf"), 1 },
        { data("all-sorts-r2000.dxf"), -1 }, // dynamic blocks
        { data("anon-blocks-cn-r2013.dxf"), -1 }, // anonymous ones
        { data("dynblock-visibility-r2018.dxf"), 1 }, // four variants of one block
        { data("xclip-r2013.dxf"), 1 },
        { data("wipeout-r2018.dxf"), 1 },
        { data("binary-r2018.dxf"), 1 },
        { data("pavilion-r12.dxf"), 2 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.drawing.toStdString());
        const Outcome outcome = play(row.drawing, { "TREENUMTOTABLE", "ALL", "", "1000,2000" });
        ASSERT_EQ(outcome.status, 0) << outcome.out << outcome.err;
        const Counts expected = referencesByName(*open(row.drawing));
        if (row.names >= 0) {
            EXPECT_EQ(int(expected.size()), row.names);
        }
        const auto drawing = open(result);
        ASSERT_EQ(treeTables(*drawing).size(), 1u);
        const KcDbObjectId id = treeTables(*drawing).front();
        EXPECT_EQ(countsOfTable(id), expected);
        const KcDbRead<KcDbTable> table(id);
        EXPECT_TRUE(table->position().isEqualTo({ 1000, 2000, 0 }));
        EXPECT_EQ(table->layer(), "维德-统计表");
        EXPECT_EQ(table->tableStyle(), KcDbTableStyle::find(*drawing, "VDLTABLESTYLE"));
        int previous = 0;
        for (int r = findHeaderRows(*table).count; r < table->numRows(); ++r) {
            EXPECT_EQ(table->plainText(r, 0), QString::number(r - 2));
            EXPECT_EQ(blockDefinitionName(table->blockTableRecordId(r, 1)), table->plainText(r, 2));
            EXPECT_EQ(table->plainText(r, 8), "株");
            EXPECT_GE(table->plainText(r, 7).toInt(), previous);
            previous = table->plainText(r, 7).toInt();
        }
        EXPECT_EQ(program({ "audit", result }).out, program({ "audit", row.drawing }).out);
    }
}

// Every text and every legend must lie inside the cell that it is drawn for.
TEST_F(TreeTables, ContentsFitTheirCells)
{
    ASSERT_EQ(play(plan, count).status, 0);
    const auto drawing = open(result);
    const KcDbRead<KcDbTable> table(treeTables(*drawing).front());
    std::vector<KcGeExtents3d> cells;
    for (int row = 0; row < table->numRows(); ++row)
        for (int column = 0; column < table->numColumns(); ++column)
            cells.push_back(table->cellBox(row, column));
    const double slack = 1e-6; // of rounding, at coordinates of some ten thousands
    const auto fits = [&](const KcGeExtents3d& box) {
        return std::any_of(cells.begin(), cells.end(), [&](const KcGeExtents3d& cell) {
            return box.min.x >= cell.min.x - slack && box.max.x <= cell.max.x + slack
                && box.min.y >= cell.min.y - slack && box.max.y <= cell.max.y + slack;
        });
    };
    int texts = 0, legends = 0;
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(table->blockTableRecord())) {
        if (const KcDbRead<KcDbMText> text(id); text) {
            EXPECT_TRUE(fits(text->geomExtents())) << text->data().contents;
            ++texts;
        }
        if (const KcDbRead<KcDbBlockReference> legend(id); legend) {
            EXPECT_TRUE(fits(legend->geomExtents())) << kcdbRecordName(legend->blockTableRecord());
            ++legends;
        }
    }
    EXPECT_EQ(legends, 36);
    EXPECT_GT(texts, 36 * 4);
}

TEST_F(TreeTables, TakeTheSelectionMadeBefore)
{
    ASSERT_EQ(play(plan, { "ALL", "TREENUMTOTABLE", "0,0" }).status, 0);
    const auto drawing = open(result);
    ASSERT_EQ(treeTables(*drawing).size(), 1u);
    EXPECT_EQ(countsOfTable(treeTables(*drawing).front()), referencesByName(*open(plan)));
}

// In the example every plant is labelled, so the labels must give what the symbols give.
TEST_F(TreeTables, CountLabels)
{
    const auto before = open(plan);
    const QStringList labels = texts(*before, "株)");
    ASSERT_GT(labels.size(), 36);
    const Outcome outcome = play(plan, { "TREENUMTOTABLE", "D", "B", "D", labels.join(' '), "", "0,0" });
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    const auto drawing = open(result);
    ASSERT_EQ(treeTables(*drawing).size(), 1u);
    EXPECT_EQ(countsOfTable(treeTables(*drawing).front()), referencesByName(*before));
}

TEST_F(TreeTables, LabelsWithoutPlantsGiveATableWithoutRowsOrTag)
{
    const QStringList title = texts(*open(plan), "社区活动中心");
    ASSERT_EQ(title.size(), 1);
    const Outcome outcome = play(plan, { "TREENUMTOTABLE", "D", title[0], "", "0,0" });
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.out.contains("没有可统计的植物")) << outcome.out;
    const auto drawing = open(result);
    EXPECT_TRUE(treeTables(*drawing).empty());
    const auto tables = entities<KcDbTable>(*drawing);
    ASSERT_EQ(tables.size(), 1u);
    EXPECT_EQ(KcDbRead<KcDbTable>(tables[0])->numRows(), 3);
}

// A cancelled command must not leave a layer, a style or a table behind; nor must one that is undone.
TEST_F(TreeTables, CancellingAndUndoingLeaveTheFileAsItWas)
{
    const QString counted = prepared(plan, count);
    const struct {
        const char* name;
        QString drawing;
        QStringList lines;
    } rows[] = {
        { "at the symbols", plan, { "TREENUMTOTABLE", "^C" } },
        { "nothing selected", plan, { "TREENUMTOTABLE", "" } },
        { "at the labels", plan, { "TREENUMTOTABLE", "D", "^C" } },
        { "at the position", plan, { "TREENUMTOTABLE", "ALL", "", "^C" } },
        { "no position", plan, { "TREENUMTOTABLE", "ALL", "", "" } },
        { "the script ends", plan, { "TREENUMTOTABLE", "ALL" } },
        { "at the plants of an update", counted, { "UPDATETREENUMTOTABLE", "^C" } },
        { "at the tables", counted, { "UPDATETREENUMTOTABLE", "ALL", "", "^C" } },
        { "no table there", plan, update },
        { "undone", plan, count + QStringList("U") },
        { "update undone", counted, update + QStringList("U") },
    };
    for (const auto& row : rows) {
        const Outcome outcome = play(row.drawing, row.lines);
        EXPECT_EQ(outcome.status, 0) << row.name << outcome.err;
        EXPECT_TRUE(bytes(result) == bytes(row.drawing)) << row.name;
    }
}

TEST_F(TreeTables, UpdatesCountAnew)
{
    const QString counted = prepared(plan, count + QStringList{ "TREENUMTOTABLE", "ALL", "", "90000,0" });
    const auto before = open(counted);
    ASSERT_EQ(treeTables(*before).size(), 2u);

    // Erased are the only 朴树 and one of the three 乌桕.
    Counts expected = referencesByName(*before);
    EXPECT_EQ(expected["朴树"], 1);
    expected.erase("朴树");
    EXPECT_EQ(expected["乌桕"]--, 3);
    const QStringList erase{ "ERASE", symbols(*before, "朴树")[0], symbols(*before, "乌桕")[0], "" };

    Outcome outcome = play(counted, erase + update);
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    auto drawing = open(result);
    for (const KcDbObjectId table : treeTables(*drawing))
        EXPECT_EQ(countsOfTable(table), expected);

    // Only the second table, which is selected.
    const QString second = handle(treeTables(*before)[1]);
    outcome = play(counted, erase + QStringList{ "UPDATETREENUMTOTABLE", "ALL", "", second, "" });
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    drawing = open(result);
    EXPECT_EQ(countsOfTable(treeTables(*drawing)[0]), referencesByName(*before));
    EXPECT_EQ(countsOfTable(treeTables(*drawing)[1]), expected);
}

TEST_F(TreeTables, PagedTablesAreSkippedWithOneMessage)
{
    const QString counted = prepared(
        plan,
        count
            + QStringList{ "TREENUMTOTABLE", "ALL", "", "90000,0", "TREENUMTOTABLE", "ALL", "", "180000,0" });
    const auto before = open(counted);
    const auto pages = treeTables(*before);
    ASSERT_EQ(pages.size(), 3u);
    for (size_t i = 0; i < 3; ++i)
        setEntityTag(*KcDbWrite<KcDbTable>(pages[i]), tags::page, i == 0 ? "1" : "2");
    const QString paged = folder.filePath("paged.dxf");
    ASSERT_TRUE(dxf::saveDrawing(*before, paged).ok);

    const QStringList one = symbols(*before, "朴树");
    const Outcome outcome = play(paged, { "UPDATETREENUMTOTABLE", one[0], "", "" });
    ASSERT_EQ(outcome.status, 0) << outcome.err;
    EXPECT_EQ(outcome.out.count("请注意已分页的表格无法进行更新"), 1) << outcome.out;
    const auto drawing = open(result);
    const auto tables = treeTables(*drawing);
    ASSERT_EQ(tables.size(), 3u);
    EXPECT_EQ(countsOfTable(tables[0]), (Counts{ { "朴树", 1 } }));
    for (const size_t i : { 1, 2 })
        EXPECT_EQ(countsOfTable(tables[i]), referencesByName(*before));
}

// What the command needs and does not find is said, and nothing is drawn.
TEST_F(TreeTables, DamagedRootsAreToldAbout)
{
    ASSERT_EQ(program({ "commands" }).status, 0); // fills the root
    QFile layout(folder.filePath("root/Sys/VDLTbInfo.xml"));
    for (const char* content : { "", "<TbInfo>", "<TbInfo><Table><Name>other</Name></Table></TbInfo>" }) {
        ASSERT_TRUE(layout.open(QIODevice::WriteOnly | QIODevice::Truncate));
        layout.write(content);
        layout.close();
        const Outcome outcome = play(plan, count);
        EXPECT_EQ(outcome.status, 0) << content;
        EXPECT_TRUE(outcome.out.contains("未生成统计表")) << content << outcome.out;
        EXPECT_TRUE(bytes(result) == bytes(plan)) << content;
    }
    ASSERT_TRUE(layout.remove());
    EXPECT_TRUE(play(plan, count).out.contains("未生成统计表"));
    EXPECT_TRUE(bytes(result) == bytes(plan));

    ASSERT_TRUE(QFile::remove(folder.filePath("root/Sys/VDLText_zh.txt")));
    const Outcome outcome = play(plan, { "VDLABOUT", "!list", "!ok" });
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.out.contains("No language file found.")) << outcome.out;
    EXPECT_TRUE(outcome.out.contains("当前版本")) << outcome.out;
}
