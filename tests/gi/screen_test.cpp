// Pictures of the window: the same as drawing everything anew, whatever was kept and whatever has changed
// since.

#include "gi/support.h"

#include "gi/paint/screen.h"
#include "gi/paint/thin_lines.h"

#include <random>

using namespace gi_test;

namespace {

/// A hundred units as as many pixels, from what the screen keeps.
QImage shown(KcGiScreen& screen, KcDbDatabase& database, QSize size = { 100, 100 }, double height = 100.0)
{
    QImage image(size, QImage::Format_RGB32);
    KcGiScreen::View view;
    view.space = database.modelSpace();
    view.center = { height / 2 * size.width() / size.height(), height / 2 };
    view.height = height;
    view.background = 0xff000000;
    EXPECT_TRUE(screen.paint(image, view));
    return image;
}

/// How far the brightness of two pictures is apart, on the mean over squares of 10 × 10 pixels, at worst.
int difference(const QImage& a, const QImage& b)
{
    int worst = 0;
    for (int y = 0; y + 10 <= a.height(); y += 10)
        for (int x = 0; x + 10 <= a.width(); x += 10) {
            int sum = 0;
            for (int i = 0; i < 100; ++i)
                sum += qGray(a.pixel(x + i % 10, y + i / 10)) - qGray(b.pixel(x + i % 10, y + i / 10));
            worst = std::max(worst, std::abs(sum) / 100);
        }
    return worst;
}

KcDbObjectId addTree(Drawing& d)
{
    const KcDbObjectId block = d.block("TREE");
    d.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 0, 0, 0 }, 1.0), block);
    for (int i = 0; i < 7; ++i)
        d.add(
            std::make_unique<KcDbLine>(
                KcGePoint3d{ 0, 0, 0 }, KcGePoint3d{ std::cos(i * 0.9), std::sin(i * 0.9), 0 }),
            block);
    d.add(d.square(-0.3, 0.1, 0.5), block);
    return block;
}

} // namespace

TEST(Screen, ShowsWhatDrawingEverythingShows)
{
    Drawing d;
    const KcDbObjectId tree = addTree(d);
    std::mt19937 random(1);
    std::uniform_real_distribution<double> place(0, 100), size(0.3, 12), turn(0, 6), color(1, 250);
    for (int i = 0; i < 300; ++i) {
        auto reference
            = std::make_unique<KcDbBlockReference>(KcGePoint3d{ place(random), place(random), 0 }, tree);
        const double scale = size(random);
        // Some mirrored, some uneven.
        reference->setScaleFactors({ i % 3 ? scale : -scale, i % 7 ? scale : 2 * scale, scale });
        reference->setRotation(turn(random));
        reference->setColorIndex(int(color(random)));
        d.add(std::move(reference));
    }
    KcGiSceneOptions options;
    options.background = 0xff000000;
    const QImage anew = picture(d.database, options);
    KcGiScreen screen(d.database);
    const QImage first = shown(screen, d.database), second = shown(screen, d.database);
    // Lines are smoothed by another rule, small definitions lie on whole pixels.
    EXPECT_LE(difference(anew, first), 40);
    EXPECT_LE(difference(first, second), 2);
    // Closer by far: lists of lines instead of stamps.
    const QImage close = shown(screen, d.database, { 400, 400 }, 20.0);
    EXPECT_LE(difference(close, shown(screen, d.database, { 400, 400 }, 20.0)), 2);
}

TEST(Screen, DefinitionsFarFromTheirOriginComeToTheirPlace)
{
    Drawing d;
    const KcDbObjectId block = d.block("FAR");
    constexpr double kFar = 5e8;
    d.add(d.square(kFar, kFar, 10), block);
    auto reference = std::make_unique<KcDbBlockReference>(KcGePoint3d{ kFar + 50, -kFar + 50, 0 }, block);
    reference->setRotation(kPi / 2); // fills (40..50, 50..60)
    reference->setColorIndex(1);
    d.add(std::move(reference));
    KcGiScreen screen(d.database);
    for (int i = 0; i < 2; ++i) {
        const QImage image = shown(screen, d.database);
        EXPECT_NE(at(image, 45, 55), 0xff000000);
        EXPECT_EQ(at(image, 35, 55), 0xff000000);
        EXPECT_EQ(at(image, 55, 55), 0xff000000);
    }
}

TEST(Screen, FollowsEveryChange)
{
    Drawing d;
    const KcDbObjectId block = d.block("B"), layer = d.layer("L", 1);
    auto square = d.square(0, 0, 10);
    const KcDbObjectId inner = d.add(std::move(square), block);
    auto made = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 10, 10, 0 }, block);
    made->setLayer(layer);
    const KcDbObjectId reference = d.add(std::move(made));
    KcGiScreen screen(d.database);
    const auto pixel = [&](int x, int y) { return at(shown(screen, d.database), x, y); };
    EXPECT_EQ(pixel(15, 15), 0xffff0000);

    KcDbWrite<KcDbBlockReference>(reference)->setPosition({ 50, 50, 0 });
    EXPECT_EQ(pixel(15, 15), 0xff000000);
    EXPECT_EQ(pixel(55, 55), 0xffff0000);
    KcDbWrite<KcDbLayerTableRecord>(layer)->setColor(3);
    EXPECT_EQ(pixel(55, 55), 0xff00ff00);
    KcDbWrite<KcDbEntity>(inner)->setColorIndex(5);
    EXPECT_EQ(pixel(55, 55), 0xff0000ff);
    KcDbWrite<KcDbSolid>(inner)->transformBy(KcGeMatrix3d::translation({ 20, 0, 0 }));
    EXPECT_EQ(pixel(55, 55), 0xff000000);
    EXPECT_EQ(pixel(75, 55), 0xff0000ff);
    const KcDbObjectId later = d.add(d.square(20, 20, 10));
    EXPECT_EQ(pixel(25, 25), 0xffffffff);
    KcDbWrite<KcDbEntity>(later)->erase();
    EXPECT_EQ(pixel(25, 25), 0xff000000);
    KcDbWrite<KcDbEntity>(later, true)->erase(false);
    EXPECT_EQ(pixel(25, 25), 0xffffffff);
    KcDbWrite<KcDbLayerTableRecord>(layer)->setIsFrozen(true);
    EXPECT_EQ(pixel(75, 55), 0xff000000);
}

TEST(Screen, StopsWhenAsked)
{
    Drawing d;
    for (int i = 0; i < 5000; ++i)
        d.add(std::make_unique<KcDbLine>(KcGePoint3d{ 0, i * 0.02, 0 }, KcGePoint3d{ 100, i * 0.02, 0 }));
    KcGiScreen screen(d.database);
    QImage image(100, 100, QImage::Format_RGB32);
    KcGiScreen::View view{ d.database.modelSpace(), { 50, 50 }, 100.0 };
    int asked = 0;
    EXPECT_FALSE(screen.paint(image, view, [&] { return ++asked > 2; }));
    EXPECT_LT(asked, 10);
}

TEST(ThinLines, CoverAsMuchAsTheyAreLong)
{
    const struct {
        const char* name;
        QPointF from, to;
    } rows[] = {
        { "level", { 10.3, 20.7 }, { 80.9, 20.7 } },
        { "upright", { 33.2, 5.1 }, { 33.2, 90.6 } },
        { "flat", { 10, 20 }, { 90, 31.7 } },
        { "steep, backwards", { 40.4, 90.2 }, { 21.7, 12.9 } },
        { "diagonal", { 10.5, 10.5 }, { 70.25, 70.25 } },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        QImage image(100, 100, QImage::Format_RGB32);
        image.fill(Qt::black);
        KcGiThinLines lines{ KcGiPixels(image) };
        lines.setColor(0xffffffff);
        lines.line(row.from, row.to);
        double cover = 0.0;
        for (int y = 0; y < 100; ++y)
            for (int x = 0; x < 100; ++x)
                cover += qGray(image.pixel(x, y)) / 255.0;
        // As long as its longer side: each column or row gets one pixel's worth.
        const QPointF way = row.to - row.from;
        EXPECT_NEAR(cover, std::max(std::abs(way.x()), std::abs(way.y())), 1.5);
    }
}

TEST(ThinLines, WildCoordinatesStayInside)
{
    QImage image(50, 50, QImage::Format_RGB32);
    image.fill(Qt::black);
    KcGiThinLines lines{ KcGiPixels(image) };
    lines.setColor(0x80ffffff);
    std::mt19937 random(7);
    std::uniform_real_distribution<double> near(-60, 110), exponent(-3, 12);
    for (int i = 0; i < 20000; ++i) {
        const double factor = i % 2 ? 1.0 : std::pow(10.0, exponent(random));
        lines.line({ near(random) * factor, near(random) }, { near(random), near(random) * factor });
    }
    for (const double edge : { 0.0, 49.5, 50.0 }) {
        lines.line({ edge, 0 }, { edge, 50 });
        lines.line({ 0, edge }, { 50, edge });
        const QPointF dot(edge, edge);
        lines.run(&dot, 1, false);
    }
}
