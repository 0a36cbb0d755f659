// References whose definitions are not there: drawings that are missing, tables that nobody drew.

#include "entities/recorder.h"

#include "db/block_reference.h"
#include "db/block_table_record.h"
#include "db/table.h"
#include "dxf/drawing_file.h"

#include <gtest/gtest.h>

using entities_test::drawn;
using entities_test::Recorder;

TEST(DrawnReference, MissingDrawingsAreNamedFrames)
{
    KcDbDatabase database;
    auto record = std::make_unique<KcDbBlockTableRecord>();
    record->initName(QStringLiteral("site"));
    record->data().blockFlags = 4;
    record->data().xrefPath = QStringLiteral("..\\plans\\site-2026.dwg");
    const KcDbObjectId block = KcDbWrite<KcDbSymbolTable>(database.blockTable())->add(std::move(record));
    const KcDbRead<KcDbBlockTableRecord> space(database.modelSpace());
    const KcDbObjectId id
        = space->appendEntity(std::make_unique<KcDbBlockReference>(KcGePoint3d{ 100, 50, 0 }, block));
    const KcDbRead<KcDbBlockReference> reference(id);
    const Recorder seen = drawn(*reference);
    ASSERT_EQ(seen.texts.size(), 1u);
    EXPECT_EQ(seen.texts[0].text, QStringLiteral("site-2026.dwg"));
    EXPECT_EQ(seen.strokes.size(), 1u);
    ASSERT_EQ(seen.missing.size(), 1);
    EXPECT_TRUE(seen.missing[0].contains(QStringLiteral("site-2026.dwg")));
    const KcGeExtents3d box = reference->geomExtents();
    EXPECT_EQ(box.min, (KcGePoint3d{ 100, 50, 0 }));
    EXPECT_NEAR(box.max.distanceTo(seen.box.max), 0.0, 1e-9);
}

// Some programs write tables without the block that shows them: those were not to be seen.
TEST(DrawnReference, TablesWithoutABlockDrawThemselves)
{
    KcDbDatabase database;
    auto made = std::make_unique<KcDbTable>();
    made->setRowHeight(10.0);
    made->setColumnWidth(40.0);
    made->setSize(2, 3);
    made->setTextString(1, 1, QStringLiteral("银杏"));
    made->setPosition({ 10, 20, 0 });
    const KcDbObjectId id = KcDbTable::append(database.modelSpace(), std::move(made));
    const KcDbRead<KcDbTable> table(id);
    const KcDbRead<KcDbBlockTableRecord> block(table->blockTableRecord());
    ASSERT_FALSE(block->isEmpty());
    KcGeExtents3d whole = drawn(*table).box;
    EXPECT_TRUE(whole.isEmpty()) << "drawn by its block";
    const size_t parts = block->entityIds().size();
    for (const KcDbObjectId part : block->entityIds())
        KcDbWrite<KcDbEntity>(part)->erase();
    const Recorder seen = drawn(*table);
    ASSERT_EQ(seen.texts.size(), 1u);
    EXPECT_EQ(seen.texts[0].text, QStringLiteral("银杏"));
    EXPECT_EQ(seen.strokes.size() + seen.fills.size() + seen.texts.size(), parts);
    const KcGeExtents3d box = table->geomExtents();
    EXPECT_NEAR(seen.box.min.distanceTo(box.min), 0.0, 1e-6);
    EXPECT_NEAR(seen.box.max.distanceTo(box.max), 0.0, 1e-6);
}

// Two multileaders alike but for the frame round the text, which was not drawn.
TEST(DrawnReference, TextsOfMultileadersHaveTheirFrames)
{
    KcDbDatabase database(KcDbDatabase::Content::kEmpty);
    ASSERT_TRUE(
        dxf::readDrawing(QStringLiteral(VERDELIS_TEST_DATA "/drawings/all-sorts-r2000.dxf"), database).ok);
    const KcDbRead<KcDbEntity> plain(database.findHandle(0xB1D)), framed(database.findHandle(0xB1E));
    const Recorder without = drawn(*plain), with = drawn(*framed);
    ASSERT_EQ(with.strokes.size(), without.strokes.size() + 1);
    EXPECT_TRUE(with.strokes.back().closed);
    KcGeExtents3d frame;
    for (const KcGePoint3d corner : with.strokes.back().points)
        frame.addPoint(corner);
    for (const KcGiTextRun& run : with.texts) {
        EXPECT_GT(run.origin.x, frame.min.x);
        EXPECT_GT(run.origin.y, frame.min.y);
        EXPECT_LT(run.origin.y + run.height, frame.max.y);
    }
}
