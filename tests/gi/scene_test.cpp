// What comes out where: colours, layers, line types, order, clips and masks as pixels.

#include "gi/support.h"

#include "db/polyline.h"
#include "db/wipeout.h"
#include "gi/colour_table.h"

using namespace gi_test;

namespace {

constexpr QRgb kRed = 0xffff0000, kGreen = 0xff00ff00, kBlue = 0xff0000ff, kWhite = 0xffffffff,
               kBlack = 0xff000000;

std::unique_ptr<KcDbEntity> colored(std::unique_ptr<KcDbEntity> entity, int index)
{
    entity->setColorIndex(index);
    return entity;
}

} // namespace

TEST(Scene, TakesColoursFromLayerBlockAndItself)
{
    Drawing d;
    const KcDbObjectId green = d.layer("green", 3), blue = d.layer("blue", 5);
    const KcDbObjectId block = d.block("B");
    d.add(d.square(0, 0, 10), block); // by layer, on "0": the layer of the reference
    d.add(colored(d.square(10, 0, 10), 0), block); // by block
    auto fixed = d.square(20, 0, 10);
    fixed->setLayer(green);
    d.add(std::move(fixed), block); // by a layer of its own
    auto reference = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 10, 10, 0 }, block);
    reference->setLayer(blue);
    d.add(colored(std::move(reference), 1));
    d.add(colored(d.square(10, 50, 10), 7));

    const QImage light = picture(d.database);
    EXPECT_EQ(at(light, 15, 15), kBlue);
    EXPECT_EQ(at(light, 25, 15), kRed);
    EXPECT_EQ(at(light, 35, 15), kGreen);
    EXPECT_EQ(at(light, 15, 55), kBlack);
    KcGiSceneOptions dark;
    dark.background = kBlack;
    EXPECT_EQ(at(picture(d.database, dark), 15, 55), kWhite);
    KcGiSceneOptions marks;
    marks.oneColor = kGreen;
    // An outline, and a veil under which the rest is still seen.
    const QImage marked = picture(d.database, marks);
    EXPECT_EQ(at(marked, 10, 15), kGreen);
    EXPECT_GT(qRed(at(marked, 15, 15)), 150);
    EXPECT_LT(qRed(at(marked, 15, 15)), 250);
}

TEST(Scene, LeavesOutWhatLayersHide)
{
    struct Row {
        const char* name;
        void (*hide)(KcDbLayerTableRecord&);
        bool onScreen, onPaper, nested;
    } rows[] = {
        { "on", [](KcDbLayerTableRecord&) {}, true, true, true },
        { "off", [](KcDbLayerTableRecord& l) { l.setIsOff(true); }, false, false, true },
        { "frozen", [](KcDbLayerTableRecord& l) { l.setIsFrozen(true); }, false, false, false },
        { "not plotted", [](KcDbLayerTableRecord& l) { l.data().plottable = false; }, true, false, true },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Drawing d;
        const KcDbObjectId layer = d.layer("L", 1), other = d.layer("other", 3);
        auto square = d.square(10, 10, 10);
        square->setLayer(layer);
        d.add(std::move(square));
        // A reference on the layer, with something on another one inside.
        const KcDbObjectId block = d.block("B");
        auto inner = d.square(0, 0, 10);
        inner->setLayer(other);
        d.add(std::move(inner), block);
        auto reference = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 50, 10, 0 }, block);
        reference->setLayer(layer);
        d.add(std::move(reference));
        row.hide(*KcDbWrite<KcDbLayerTableRecord>(layer).get());
        const QImage screen = picture(d.database);
        EXPECT_EQ(at(screen, 15, 15) == kRed, row.onScreen);
        EXPECT_EQ(at(screen, 55, 15) == kGreen, row.nested);
        KcGiSceneOptions plot;
        plot.plotting = true;
        EXPECT_EQ(at(picture(d.database, plot), 15, 15) == kRed, row.onPaper);
    }
}

TEST(Scene, NestedMirroredAndArrayedReferencesLandWhereTheyBelong)
{
    Drawing d;
    const KcDbObjectId inner = d.block("inner"), outer = d.block("outer");
    d.add(colored(d.square(0, 0, 4), 1), inner);
    auto nested = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 10, 0, 0 }, inner);
    nested->setRotation(kPi / 2); // fills (6..10, 0..4)
    d.add(std::move(nested), outer);
    auto mirrored = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 50, 10, 0 }, outer);
    mirrored->setScaleFactors({ -2, 2, 2 }); // fills (30..38, 10..18)
    d.add(std::move(mirrored));
    auto array = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 10, 60, 0 }, inner);
    array->data().array = std::make_unique<KcDbBlockReference::Array>();
    array->data().array->columns = 3;
    array->data().array->rows = 2;
    array->data().array->columnSpacing = 20;
    array->data().array->rowSpacing = 10;
    d.add(std::move(array));
    const QImage image = picture(d.database);
    EXPECT_EQ(at(image, 34, 14), kRed);
    EXPECT_EQ(at(image, 26, 14), kWhite);
    EXPECT_EQ(at(image, 42, 14), kWhite);
    for (const int x : { 12, 32, 52 })
        for (const int y : { 62, 72 })
            EXPECT_EQ(at(image, x, y), kRed) << x << ", " << y;
    EXPECT_EQ(at(image, 72, 62), kWhite);
}

TEST(Scene, LineTypesBeginAndEndWithEqualDashes)
{
    Drawing d;
    const KcDbObjectId dashed = d.linetype("DASHED", { 8, -4 });
    auto line = std::make_unique<KcDbLine>(KcGePoint3d{ 10, 50, 0 }, KcGePoint3d{ 90, 50, 0 });
    line->setLinetypeId(dashed);
    d.add(std::move(line));
    auto brief = std::make_unique<KcDbLine>(KcGePoint3d{ 10, 20, 0 }, KcGePoint3d{ 21, 20, 0 });
    brief->setLinetypeId(dashed);
    d.add(std::move(brief));
    BoxDevice box;
    class Dashes : public BoxDevice {
    public:
        std::vector<QLineF> lines;
        void strokeLines(const std::vector<QLineF>& drawn, const Pen&) override
        {
            lines.insert(lines.end(), drawn.begin(), drawn.end());
        }
    } device;
    KcGiScene scene(d.database, device, {});
    scene.drawSpace(d.database.modelSpace());
    // 80 units hold six periods of 12; the eight units left over and the first dash are shared by both ends.
    ASSERT_EQ(device.lines.size(), 8u);
    EXPECT_NEAR(device.lines[0].length(), 8, 1e-9);
    EXPECT_NEAR(device.lines[6].x2(), 90, 1e-9);
    EXPECT_NEAR(device.lines[6].length(), 8, 1e-9);
    EXPECT_NEAR(device.lines[3].length(), 8, 1e-9);
    // Too short for a period.
    EXPECT_NEAR(device.lines[7].length(), 11, 1e-9);
}

TEST(Scene, LineTypesOfPolylinesBeginAtVerticesUnlessTheyRunOn)
{
    for (const bool runsOn : { false, true }) {
        Drawing d;
        const KcDbObjectId dashed = d.linetype("DASHED", { 8, -4 });
        auto polyline = std::make_unique<KcDbPolyline>();
        for (int i = 0; i < 10; ++i)
            polyline->addVertex({ 10.0 * i, 0 });
        polyline->data().flags = runsOn ? 128 : 0;
        polyline->setLinetypeId(dashed);
        d.add(std::move(polyline));
        class Length : public BoxDevice {
        public:
            double length = 0.0;
            void strokeLines(const std::vector<QLineF>& lines, const Pen&) override
            {
                for (const QLineF& line : lines)
                    length += line.length();
            }
        } device;
        KcGiScene scene(d.database, device, {});
        scene.drawSpace(d.database.modelSpace());
        // Pieces of 10 are shorter than the pattern and have no gaps; 90 in a row have seven.
        EXPECT_NEAR(device.length, runsOn ? 90 - 7 * 4 : 90, 1e-9);
    }
}

TEST(Scene, MasksHideWhatWasDrawnBefore)
{
    Drawing d;
    d.add(colored(d.square(10, 10, 50), 1));
    d.add(KcDbWipeout::fromCorners({ { 20, 20, 0 }, { 40, 20, 0 }, { 40, 40, 0 }, { 20, 40, 0 } }));
    d.add(colored(d.square(25, 25, 5), 3));
    const QImage image = picture(d.database);
    EXPECT_EQ(at(image, 15, 15), kRed);
    EXPECT_EQ(at(image, 35, 35), kWhite);
    EXPECT_EQ(at(image, 27, 27), kGreen);
}

TEST(Scene, TablesOfDrawingOrderAndClipsOfRealDrawingsHold)
{
    KcDbDatabase database(KcDbDatabase::Content::kEmpty);
    ASSERT_TRUE(
        dxf::readDrawing(QStringLiteral(VERDELIS_TEST_DATA "/drawings/xclip-r2013.dxf"), database).ok);
    // Two references of the same clip, one of them turned, and one whose clip is switched off.
    const auto boxOf = [&](KcDbHandle handle) {
        return KcDbRead<KcDbBlockReference>(database.findHandle(handle))->geomExtents();
    };
    const KcGeExtents3d narrow = boxOf(0xb9), whole = boxOf(0x7f7);
    EXPECT_NEAR(narrow.min.x, 7.075500508359, 1e-9);
    EXPECT_NEAR(narrow.max.x, 10.129190531333, 1e-9);
    EXPECT_NEAR(narrow.height(), 7.0, 1e-9);
    EXPECT_NEAR(whole.width(), 7.0, 1e-9);
}

TEST(Scene, TrueColoursAndTransparency)
{
    Drawing d;
    auto square = d.square(10, 10, 20);
    square->setColor({ 0, 0x123456 });
    d.add(std::move(square));
    auto half = colored(d.square(50, 10, 20), 1);
    half->setTransparency(0x02000000 | 127);
    d.add(std::move(half));
    const QImage image = picture(d.database);
    EXPECT_EQ(at(image, 20, 20), 0xff123456);
    EXPECT_NEAR(qGreen(at(image, 60, 20)), 128, 2);
}

TEST(Colours, FollowThePublishedTable)
{
    const struct {
        int index;
        QRgb rgb;
    } rows[] = {
        { 1, 0xffff0000 },  { 8, 0xff808080 },  { 10, 0xffff0000 },  { 11, 0xffff7f7f },  { 12, 0xffa50000 },
        { 30, 0xffff7f00 }, { 84, 0xff1f7f00 }, { 150, 0xff007fff }, { 250, 0xff333333 }, { 255, 0xffffffff },
    };
    for (const auto& row : rows) {
        const QColor color = QColor::fromRgb(kcgiIndexColor(row.index)), expected = QColor::fromRgb(row.rgb);
        EXPECT_NEAR(color.red(), expected.red(), 1) << row.index;
        EXPECT_NEAR(color.green(), expected.green(), 1) << row.index;
        EXPECT_NEAR(color.blue(), expected.blue(), 1) << row.index;
    }
}
