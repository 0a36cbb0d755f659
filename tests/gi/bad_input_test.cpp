// Damaged and absurd drawings: pictures come to an end, show the rest, and say what is missing.

#include "gi/support.h"

#include "db/polyline.h"
#include "db/text.h"
#include "gi/paint/plot.h"

#include <limits>

using namespace gi_test;

namespace {

QString toldBy(KcDbDatabase& database, const QImage*& image)
{
    static QImage last;
    std::map<QString, size_t> told;
    last = picture(database, {}, &told);
    image = &last;
    QStringList texts;
    for (const auto& [text, count] : told)
        texts += text;
    return texts.join('\n');
}

} // namespace

TEST(BadInput, BlocksThatContainEachOtherAreDrawnOnce)
{
    Drawing d;
    const KcDbObjectId a = d.block("A"), b = d.block("B");
    for (const auto& [outer, inner] : { std::pair(a, b), std::pair(b, a), std::pair(a, a) })
        for (int i = 0; i < 3; ++i)
            d.add(std::make_unique<KcDbBlockReference>(KcGePoint3d{ double(i), 0, 0 }, inner), outer);
    d.add(d.square(0, 0, 10), a);
    d.add(std::make_unique<KcDbBlockReference>(KcGePoint3d{ 50, 50, 0 }, a));
    const QImage* image = nullptr;
    EXPECT_TRUE(toldBy(d.database, image).contains("inside itself"));
    EXPECT_EQ(at(*image, 55, 55), 0xff000000);
}

TEST(BadInput, DeepDefinitionsEnd)
{
    Drawing d;
    KcDbObjectId inner = d.block("B0");
    d.add(d.square(0, 0, 10), inner);
    for (int i = 1; i < 100; ++i) {
        const KcDbObjectId outer = d.block(QStringLiteral("B%1").arg(i));
        d.add(std::make_unique<KcDbBlockReference>(KcGePoint3d{ 0, 0, 0 }, inner), outer);
        inner = outer;
    }
    d.add(std::make_unique<KcDbBlockReference>(KcGePoint3d{ 50, 50, 0 }, inner));
    const QImage* image = nullptr;
    toldBy(d.database, image); // that it comes back is the point
}

TEST(BadInput, ValuesThatAreNoPlacesDoNotSpoilTheRest)
{
    constexpr double kNan = std::numeric_limits<double>::quiet_NaN(),
                     kInf = std::numeric_limits<double>::infinity();
    const std::pair<const char*, std::function<void(Drawing&)>> rows[] = {
        { "far line",
          [](Drawing& d) {
              d.add(std::make_unique<KcDbLine>(KcGePoint3d{ 0, 0, 0 }, KcGePoint3d{ 1e20, 1e20, 0 }));
          } },
        { "line of no numbers",
          [=](Drawing& d) {
              d.add(std::make_unique<KcDbLine>(KcGePoint3d{ kNan, 0, 0 }, KcGePoint3d{ 1, kInf, 0 }));
          } },
        { "huge circle",
          [](Drawing& d) {
              d.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 1e12, 0, 0 }, 1e12 - 3));
          } },
        { "infinite circle",
          [=](Drawing& d) {
              d.add(std::make_unique<KcDbCircle>(KcGePoint3d{ 5, 5, 0 }, kInf));
          } },
        { "no normal",
          [](Drawing& d) {
              auto circle = std::make_unique<KcDbCircle>(KcGePoint3d{ 5, 5, 0 }, 2.0);
              circle->data().normal = { 0, 0, 0 };
              d.add(std::move(circle));
          } },
        { "scale of no number",
          [=](Drawing& d) {
              const KcDbObjectId block = d.block("B");
              d.add(d.square(0, 0, 3), block);
              for (const double scale : { kNan, kInf, 0.0, 1e300 }) {
                  auto reference = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 5, 5, 0 }, block);
                  reference->setScaleFactors({ scale, scale, scale });
                  d.add(std::move(reference));
              }
          } },
        { "array without end",
          [](Drawing& d) {
              const KcDbObjectId block = d.block("B");
              d.add(d.square(0, 0, 3), block);
              auto reference = std::make_unique<KcDbBlockReference>(KcGePoint3d{ 5, 5, 0 }, block);
              reference->data().array = std::make_unique<KcDbBlockReference::Array>();
              reference->data().array->columns = reference->data().array->rows = 2'000'000'000;
              d.add(std::move(reference));
          } },
        { "dashes without number",
          [](Drawing& d) {
              auto line = std::make_unique<KcDbLine>(KcGePoint3d{ -1e14, 30, 0 }, KcGePoint3d{ 1e14, 30, 0 });
              line->setLinetypeId(d.linetype("FINE", { 3, -1, 0, -1 }));
              d.add(std::move(line));
          } },
        { "bulges beyond a turn",
          [](Drawing& d) {
              auto polyline = std::make_unique<KcDbPolyline>();
              polyline->addVertex({ 0, 0 }, 1e18);
              polyline->addVertex({ 10, 0 }, std::numeric_limits<double>::quiet_NaN());
              polyline->addVertex({ 10, 10 }, 0.0);
              d.add(std::move(polyline));
          } },
    };
    for (const auto& [name, make] : rows) {
        SCOPED_TRACE(name);
        Drawing d;
        make(d);
        auto square = d.square(60, 60, 20);
        square->setColorIndex(1);
        d.add(std::move(square));
        const QImage* image = nullptr;
        toldBy(d.database, image);
        EXPECT_EQ(at(*image, 70, 70), 0xffff0000);
    }
}

TEST(BadInput, DashesAreCutToWhatIsSeen)
{
    Drawing d;
    auto line = std::make_unique<KcDbLine>(KcGePoint3d{ -1e9, 30, 0 }, KcGePoint3d{ 1e9, 30, 0 });
    line->setLinetypeId(d.linetype("DASHED", { 5, -5 }));
    d.add(std::move(line));
    const QImage image = picture(d.database);
    int dark = 0;
    for (int x = 0; x < 100; ++x)
        dark += qGray(at(image, x, 30)) < 128 || qGray(at(image, x, 29)) < 128;
    EXPECT_NEAR(dark, 50, 15);
}

// A text of a million letters became 320 MB of outlines, however little of it was to be seen.
TEST(BadInput, OfALongTextOnlyWhatIsSeenIsDrawn)
{
    Drawing d;
    auto text = std::make_unique<KcDbText>();
    text->data().height = 5.0;
    text->data().position = { 5, 5, 0 };
    text->data().text = QStringLiteral("x树").repeated(500'000);
    d.add(std::move(text));
    BoxDevice device;
    KcGiSceneOptions options;
    options.area = QRectF(0, 0, 100, 100);
    KcGiScene scene(d.database, device, options);
    scene.drawSpace(d.database.modelSpace());
    EXPECT_NEAR(device.textBox.min.x, 5.0, 1.0);
    EXPECT_GT(device.textBox.max.x, 100.0);
    EXPECT_LT(device.textBox.max.x, 5000.0);
}

TEST(BadInput, WhatIsTooFarAwayIsTold)
{
    Drawing d;
    d.add(d.square(0, 0, 10));
    d.add(d.square(1e20, 0, 10));
    size_t tooFar = 0;
    const KcGeExtents2d box = kcgiVisibleExtents(d.database, d.database.modelSpace(), &tooFar);
    EXPECT_EQ(tooFar, 1u);
    EXPECT_EQ(box.max.x, 10.0);
}
