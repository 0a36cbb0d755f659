// Columns of multiline texts in files: named texts of their own before 2018, embedded data from then on.
#include "support.h"

#include "db/text.h"

using namespace drawing_test;

// A text of the second column was as wide as all columns together, and what was scaled stayed so in the file.
TEST(DrawingColumns, TextsOfOtherColumnsAreAsWideAsTheFirst)
{
    const auto drawing = readDrawing(readBytes(kDrawings + "mtext-columns-r2007.dxf"));
    ASSERT_TRUE(drawing);
    for (const KcDbHandle handle : { 0xDE, 0x183, 0x184 })
        EXPECT_NEAR(
            KcDbRead<KcDbMText>(drawing->findHandle(handle))->data().columnWidth, 24.613374839219, 1e-9);
    EXPECT_EQ(KcDbRead<KcDbMText>(drawing->findHandle(KcDbHandle(0xD2)))->data().columnWidth, 0.0);
    KcDbWrite<KcDbMText>(drawing->findHandle(KcDbHandle(0xDE)))
        ->transformBy(KcGeMatrix3d::scaling({ 2, 2, 2 }));
    const auto again = readDrawing(saveDrawing(*drawing));
    ASSERT_TRUE(again);
    EXPECT_NEAR(
        KcDbRead<KcDbMText>(again->findHandle(KcDbHandle(0xDE)))->data().columnWidth, 2 * 24.613374839219,
        1e-9);
}

// A text that was moved kept its old place in the embedded data.
TEST(DrawingColumns, EmbeddedDataFollowTheText)
{
    const std::string file
        = "0\nSECTION\n2\nHEADER\n9\n$"
          "ACADVER\n1\nAC1032\n0\nENDSEC\n0\nSECTION\n2\nENTITIES\n0\nMTEXT\n5\n2A\n"
          "100\nAcDbEntity\n8\n0\n100\nAcDbMText\n10\n5.0\n20\n6.0\n30\n0.0\n40\n2.5\n41\n30.0\n46\n8.0\n71\n"
          "1\n72\n5\n1\none\\Ptwo\\Pthree\n73\n1\n44\n1.0\n101\nEmbedded "
          "Object\n70\n1\n10\n1.0\n20\n0.0\n30\n"
          "0.0\n11\n5.0\n21\n6.0\n31\n0.0\n40\n30.0\n41\n8.0\n42\n65.0\n43\n8.0\n71\n1\n72\n2\n44\n30.0\n45\n"
          "5.0\n73\n0\n74\n0\n0\nENDSEC\n0\nEOF\n";
    const auto drawing = readDrawing(file);
    ASSERT_TRUE(drawing);
    EXPECT_EQ(saveDrawing(*drawing), file);
    {
        const KcDbWrite<KcDbMText> text(drawing->findHandle(KcDbHandle(0x2A)));
        ASSERT_TRUE(text->data().columns);
        EXPECT_EQ(text->data().columns->count, 2);
        const KcDbMTextLayout set = text->layout();
        EXPECT_NEAR(set.lines[2].x, 35.0, 1e-9);
        EXPECT_NEAR(set.lines[2].baseline, set.lines[0].baseline, 1e-9);
        text->transformBy(KcGeMatrix3d::translation({ 100, 0, 0 }));
    }
    std::string moved = file;
    for (const std::string code : { "10", "11" }) {
        const std::string before = "\n" + code + "\n5.0\n";
        moved.replace(moved.find(before), before.size(), "\n " + code + "\n105.0\n");
    }
    EXPECT_EQ(saveDrawing(*drawing), moved);
}
