// Sizes and graphics of tables, against sizes computed by hand.
#include "support.h"

#include "db/tables.h"

using namespace table_test;

namespace {

void expectBox(const KcGeExtents3d& box, double x1, double y1, double x2, double y2)
{
    EXPECT_NEAR(box.min.x, x1, 1e-6);
    EXPECT_NEAR(box.min.y, y1, 1e-6);
    EXPECT_NEAR(box.max.x, x2, 1e-6);
    EXPECT_NEAR(box.max.y, y2, 1e-6);
}

KcDbObjectId addBlock(KcDbDatabase& drawing, const QString& name, KcGePoint3d origin = {})
{
    auto record = std::make_unique<KcDbBlockTableRecord>();
    record->initName(name);
    record->data().origin = origin;
    KcDbWrite<KcDbSymbolTable> blocks(drawing.blockTable());
    return blocks->add(std::move(record));
}

void addTo(KcDbObjectId block, std::unique_ptr<KcDbEntity> entity)
{
    KcDbRead<KcDbBlockTableRecord>(block)->appendEntity(std::move(entity));
}

} // namespace

// Sizes of a statistics table at scale 100 and text height 3.5, at a place and turned.
TEST(TableLayout, ExtentsFollowPositionAndDirection)
{
    const auto make = [] {
        auto table = std::make_unique<KcDbTable>();
        table->setRowHeight(595.0);
        table->setColumnWidth(1750.0);
        table->setSize(4, 3); // 5250 wide, 2380 high
        table->setPosition({ 1000, 2000, 0 });
        return table;
    };
    auto table = make();
    expectBox(table->geomExtents(), 1000, -380, 6250, 2000);
    table->setUpward(true);
    expectBox(table->geomExtents(), 1000, 2000, 6250, 4380);
    table = make();
    table->setDirection({ 0, 3, 0 }); // rows run up, the next row lies to the right
    expectBox(table->geomExtents(), 1000, 2000, 3380, 7250);
    table = make();
    table->transformBy(KcGeMatrix3d::rotation(-kPi / 2, KcGeVector3d::kZAxis, { 1000, 2000, 0 }));
    expectBox(table->geomExtents(), -1380, -3250, 1000, 2000);
    table = make();
    EXPECT_EQ(table->transformBy(KcGeMatrix3d::scaling(2.0)), Kcad::eOk);
    expectBox(table->geomExtents(), 2000, -760, 12500, 4000);
    EXPECT_EQ(table->transformBy(KcGeMatrix3d::scaling({ 1, 2, 1 })), Kcad::eCannotScaleNonUniformly);
    table = make();
    EXPECT_EQ(table->transformBy(KcGeMatrix3d::mirroring({ 0, 0, 0 }, { 0, 1, 0 })), Kcad::eOk);
    expectBox(table->geomExtents(), -6250, -380, -1000, 2000);
    EXPECT_NEAR(table->direction().x, 1.0, 1e-12) << "a mirrored table stays readable";
}

// A row is at least as high as set, and as high as its tallest content with margins otherwise: one line needs
// 4/3 of its height (4.5 and 6 in drawings of other programs give rows of 9 and 11 with margins of 1.5).
TEST(TableLayout, RowsGrowWithTheirContent)
{
    const auto make = [](const QString& text) {
        auto table = makeTable(3, 2);
        table->setMargins(1.5, 1.5);
        table->setTextHeight(4.5, kAllRows);
        table->setTextString(1, 1, text);
        return table;
    };
    const struct {
        const char* name;
        const char* text;
        double minimum, height;
    } rows[] = {
        { "empty", "", 2, 2 },
        { "one line in a low row", "Text", 2, 9 },
        { "one line in a high row", "Text", 20, 20 },
        { "two lines", "a\nb", 2, 16.5 }, // 9 and one line step of 5/3 of the height
        { "three paragraphs", "a\\Pb\\Pc", 2, 24 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        auto table = make(row.text);
        table->setRowHeight(1, row.minimum);
        EXPECT_EQ(table->recomputeTableBlock(), Kcad::eNotInDatabase);
        EXPECT_NEAR(table->rowHeight(1), row.height, 1e-9);
        EXPECT_EQ(table->minimumRowHeight(1), row.minimum);
        EXPECT_EQ(table->rowHeight(0), 10.0) << "another row changed";
    }
    // Words break at the width of the column less the margins; a wider one takes the height back.
    auto table = make("one two three four five six");
    table->recomputeTableBlock();
    const double narrow = table->rowHeight(1);
    EXPECT_GT(narrow, 16.0);
    table->setColumnWidth(1, 400.0);
    table->recomputeTableBlock();
    EXPECT_NEAR(table->rowHeight(1), 10.0, 1e-9);
    // A text over merged rows needs only their sum; what is missing goes to the last of them.
    table = make("a\nb\nc");
    table->mergeCells(1, 2, 1, 1);
    table->recomputeTableBlock();
    EXPECT_NEAR(table->rowHeight(1), 10.0, 1e-9);
    EXPECT_NEAR(table->rowHeight(2), 14.0, 1e-9);
}

// Entities of the block: joined grid lines, none inside merged areas, one text for each cell that has one.
TEST(TableLayout, GraphicsOfTheBlock)
{
    const struct {
        const char* name;
        std::function<void(KcDbTable&)> prepare;
        size_t lines, texts, solids;
    } rows[] = {
        { "plain", [](KcDbTable&) {}, 4 + 3, 0, 0 },
        { "title over both columns", [](KcDbTable& t) { t.mergeCells(0, 0, 0, 1); }, 4 + 3, 0, 0 },
        { "everything merged", [](KcDbTable& t) { t.mergeCells(0, 2, 0, 1); }, 4, 0, 0 },
        // The inner vertical line falls apart into the pieces above and below the area.
        { "middle row merged", [](KcDbTable& t) { t.mergeCells(1, 1, 0, 1); }, 4 + 4, 0, 0 },
        { "left column merged down", [](KcDbTable& t) { t.mergeCells(0, 2, 0, 0); }, 4 + 3, 0, 0 },
        { "red line below one cell",
          [](KcDbTable& t) {
              t.setGridLook(0, 0, KcDbTableCell::kBottom, { { 1, -1 }, 30, true });
          },
          5 + 3, 0, 0 },
        { "no inner lines",
          [](KcDbTable& t) {
              t.setGridLook({ {}, -2, false }, kHorzInside | kVertInside, kAllRows);
              t.suppressTitle(true);
              t.suppressHeader(true);
          },
          4, 0, 0 },
        { "texts", [](KcDbTable& t) { t.setTextString(0, 0, "a"), t.setTextString(2, 1, "b"); }, 7, 2, 0 },
        { "text under a merge",
          [](KcDbTable& t) {
              t.setTextString(0, 0, "a");
              t.setTextString(0, 1, "hidden");
              t.mergeCells(0, 0, 0, 1);
          },
          7, 1, 0 },
        { "blank text", [](KcDbTable& t) { t.setTextString(0, 0, " "); }, 7, 0, 0 },
        { "backgrounds",
          [](KcDbTable& t) {
              t.setBackgroundColor(KcCmColor{ 3, -1 }, kHeaderRow);
              t.setBackgroundColor(1, 0, std::nullopt);
          },
          7, 0, 1 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        KcDbDatabase drawing;
        auto made = makeTable(3, 2);
        row.prepare(*made);
        const KcDbObjectId id = addTable(drawing, std::move(made));
        for (int pass = 0; pass < 2; ++pass) { // drawing anew must not add to what is there
            EXPECT_EQ(countDrawn<KcDbLine>(id), row.lines);
            EXPECT_EQ(countDrawn<KcDbMText>(id), row.texts);
            EXPECT_EQ(countDrawn<KcDbSolid>(id), row.solids);
            EXPECT_EQ(countDrawn<KcDbEntity>(id), row.lines + row.texts + row.solids);
            KcDbWrite<KcDbTable>(id)->recomputeTableBlock();
        }
        for (KcDbObjectId entity : drawn<KcDbEntity>(id))
            EXPECT_EQ(KcDbRead<KcDbEntity>(entity)->layer(), "0");
    }
}

TEST(TableLayout, TextsStandWhereTheAlignmentSays)
{
    const struct {
        int alignment;
        double x, y;
    } rows[] = { { 1, 41, -11.5 }, { 2, 60, -11.5 }, { 3, 79, -11.5 }, { 4, 41, -15 },  { 5, 60, -15 },
                 { 6, 79, -15 },   { 7, 41, -18.5 }, { 8, 60, -18.5 }, { 9, 79, -18.5 } };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.alignment);
        KcDbDatabase drawing;
        auto made = makeTable(2, 2); // the cell reaches from 40,-20 to 80,-10
        made->setMargins(1.0, 1.5);
        made->setTextHeight(3.0, kAllRows);
        made->setAlignment(row.alignment, kAllRows);
        made->setContentColor({ KcCmColor::kByLayer, -1 }, kAllRows);
        made->setTextString(1, 1, "x");
        const KcDbObjectId id = addTable(drawing, std::move(made));
        ASSERT_EQ(countDrawn<KcDbMText>(id), 1u);
        const KcDbRead<KcDbMText> text(drawn<KcDbMText>(id).front());
        EXPECT_NEAR(text->data().location.x, row.x, 1e-9);
        EXPECT_NEAR(text->data().location.y, row.y, 1e-9);
        EXPECT_EQ(text->data().attachment, row.alignment);
        EXPECT_NEAR(text->data().width, 38.0, 1e-9);
        EXPECT_EQ(text->colorIndex(), KcCmColor::kByLayer);
    }
}

// A block fills its cell inside the margins and lies in its centre, wherever its definition lies.
TEST(TableLayout, BlocksAreFittedIntoTheirCells)
{
    // The cell of row 1, column 1 is 40 by 10 from 40,-20; with margins of 1 and 2 there is room for 38 by 6.
    const struct {
        const char* name;
        KcGePoint3d from, to, origin;
        double rotation, scale;
        bool mirrored;
    } rows[] = {
        { "square about its origin", { -5, -5, 0 }, { 5, 5, 0 }, {}, 0, 0.6, false },
        { "small and far away", { 1000, 2000, 0 }, { 1001, 2001, 0 }, {}, 0, 6.0, false },
        { "base point outside", { 0, 0, 0 }, { 10, 10, 0 }, { -300, 70, 0 }, 0, 0.6, false },
        { "wider than the cell", { 0, 0, 0 }, { 760, 20, 0 }, { 3, 4, 0 }, 0, 0.05, false },
        { "turned a quarter", { 0, 0, 0 }, { 20, 2, 0 }, { 1, 1, 0 }, kPi / 2, 0.3, false },
        { "mirrored inside", { 100, 0, 0 }, { 110, 10, 0 }, { 2, 0, 0 }, 0, 0.6, true },
        { "a single line", { 7, 3, 0 }, { 7, 15, 0 }, {}, 0, 0.5, false },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        KcDbDatabase drawing;
        const KcDbObjectId outline = addBlock(drawing, "OUTLINE");
        for (const auto& [a, b] : { std::pair{ row.from, KcGePoint3d{ row.from.x, row.to.y, 0 } },
                                    std::pair{ KcGePoint3d{ row.to.x, row.from.y, 0 }, row.to } })
            addTo(outline, std::make_unique<KcDbLine>(a, b));
        const KcDbObjectId plant = addBlock(drawing, "PLANT", row.origin);
        auto inner = std::make_unique<KcDbBlockReference>(KcGePoint3d{}, outline);
        if (row.mirrored)
            inner->setScaleFactors({ -1, 1, 1 });
        addTo(plant, std::move(inner));

        auto made = makeTable(2, 2);
        made->setMargins(1.0, 2.0);
        ASSERT_EQ(made->setBlockTableRecordId(1, 1, plant), Kcad::eOk);
        made->setRotation(1, 1, row.rotation);
        const KcDbObjectId id = addTable(drawing, std::move(made));
        ASSERT_EQ(countDrawn<KcDbBlockReference>(id), 1u);
        const KcDbRead<KcDbBlockReference> reference(drawn<KcDbBlockReference>(id).front());
        EXPECT_EQ(reference->blockTableRecord(), plant);
        EXPECT_NEAR(reference->scaleFactors().x, row.scale, 1e-9);
        EXPECT_NEAR(reference->scaleFactors().y, row.scale, 1e-9);
        const KcGeExtents3d box = reference->geomExtents();
        EXPECT_NEAR(box.center().x, 60.0, 1e-6);
        EXPECT_NEAR(box.center().y, -15.0, 1e-6);
        EXPECT_LE(box.width(), 38.0 + 1e-6);
        EXPECT_LE(box.height(), 6.0 + 1e-6);
        EXPECT_EQ(KcDbRead<KcDbTable>(id)->rowHeight(1), 10.0) << "a fitted block does not move its row";
    }
}

TEST(TableLayout, BlocksThatCannotBeShown)
{
    KcDbDatabase drawing;
    const KcDbObjectId empty = addBlock(drawing, "EMPTY");
    auto made = makeTable(2, 2);
    EXPECT_EQ(made->setBlockTableRecordId(0, 0, drawing.modelSpace()), Kcad::eSelfReference);
    EXPECT_EQ(made->setBlockTableRecordId(0, 0, drawing.layerTable()), Kcad::eNotThatKindOfClass);
    EXPECT_EQ(made->setBlockTableRecordId(0, 0, empty), Kcad::eOk);
    const KcDbObjectId id = addTable(drawing, std::move(made));
    EXPECT_EQ(countDrawn<KcDbBlockReference>(id), 0u);
    KcDbWrite<KcDbTable>(id)->setTextString(0, 0, "now a text");
    EXPECT_TRUE(KcDbRead<KcDbTable>(id)->blockTableRecordId(0, 0).isNull());
}

// Page tables are copies: a copy must never draw into the block of its original.
TEST(TableLayout, CopiesHaveBlocksOfTheirOwn)
{
    KcDbDatabase drawing;
    const KcDbObjectId first = addTable(drawing, makeTable(3, 2));
    {
        KcDbWrite<KcDbTable> table(first);
        table->setColumnName(0, "name");
    }
    std::unique_ptr<KcDbObject> copy = KcDbRead<KcDbTable>(first)->copy();
    const KcDbObjectId second
        = addTable(drawing, std::unique_ptr<KcDbTable>(static_cast<KcDbTable*>(copy.release())));
    const KcDbRead<KcDbTable> original(first), other(second);
    EXPECT_NE(original->blockTableRecord(), other->blockTableRecord());
    EXPECT_NE(original->extensionDictionary(), other->extensionDictionary());
    EXPECT_EQ(other->columnName(0), "name");
    EXPECT_EQ(kcdbRecordName(original->blockTableRecord()), "*T1");
    EXPECT_EQ(kcdbRecordName(other->blockTableRecord()), "*T2");
    EXPECT_EQ(countDrawn<KcDbLine>(first), 7u);
    KcDbWrite<KcDbTable>(second)->insertRows(3, 10.0);
    KcDbWrite<KcDbTable>(second)->recomputeTableBlock();
    EXPECT_EQ(countDrawn<KcDbLine>(first), 7u);
    EXPECT_EQ(countDrawn<KcDbLine>(second), 8u);
}

TEST(TableLayout, UndoBringsTheGraphicsBack)
{
    KcDbDatabase drawing;
    auto made = makeTable(3, 2);
    made->setTextString(0, 0, "title");
    const KcDbObjectId id = addTable(drawing, std::move(made));
    const std::vector<KcDbObjectId> before = drawn<KcDbEntity>(id);
    drawing.undo().beginStep("rows");
    {
        KcDbWrite<KcDbTable> table(id);
        table->insertRows(3, 10.0, 5);
        table->setTextString(4, 1, "new");
        table->recomputeTableBlock();
    }
    drawing.undo().endStep();
    const std::vector<KcDbObjectId> after = drawn<KcDbEntity>(id);
    EXPECT_EQ(countDrawn<KcDbMText>(id), 2u);
    drawing.undo().undo();
    EXPECT_EQ(drawn<KcDbEntity>(id), before);
    EXPECT_EQ(KcDbRead<KcDbTable>(id)->numRows(), 3);
    drawing.undo().redo();
    EXPECT_EQ(drawn<KcDbEntity>(id), after);
    KcDbWrite<KcDbTable>(id)->recomputeTableBlock();
    EXPECT_EQ(countDrawn<KcDbEntity>(id), after.size());
}

TEST(TableStyle, FoundAndMadeByName)
{
    KcDbDatabase drawing;
    EXPECT_TRUE(KcDbTableStyle::find(drawing, "VDLTABLESTYLE").isNull());
    const KcDbObjectId id = KcDbTableStyle::create(drawing, "VDLTABLESTYLE");
    ASSERT_FALSE(id.isNull());
    EXPECT_EQ(KcDbTableStyle::create(drawing, "vdltablestyle"), id);
    EXPECT_EQ(KcDbTableStyle::find(drawing, "VdlTableStyle"), id);
    EXPECT_TRUE(KcDbTableStyle::create(drawing, {}).isNull());
    {
        KcDbWrite<KcDbTableStyle> style(id);
        style->setColor({ 256, -1 });
        style->setGridColor({ 256, -1 });
        style->setAlignment(5, kDataRow);
        style->setTextHeight(350.0, kHeaderRow);
    }
    auto made = makeTable(3, 1);
    made->setTableStyle(id);
    EXPECT_EQ(made->alignment(2, 0), 5);
    EXPECT_EQ(made->textHeight(1, 0), 350.0);
    EXPECT_EQ(made->gridLook(1, 0, KcDbTableCell::kLeft).color.index, 256);
    EXPECT_EQ(made->contentColor(2, 0).index, 256);
}
