// Measures hatches: 2,000 of a pattern of three families, each in an outline of lines and arcs, drawn as a picture
// and handed to nobody. Prints one line per workload.
//   hatch_bench [--quick]

#include "best_of_three.h"
#include "db/block_table_record.h"
#include "db/hatch.h"
#include "gi/paint/painter_device.h"
#include "gi/paint/scene.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cstdio>
#include <cstring>

namespace {

/// Lines at 0°, 45° and 90°, a unit apart, two of them dashed.
std::vector<KcGeHatchFamily> families()
{
    std::vector<KcGeHatchFamily> result(3);
    for (int i = 0; i < 3; ++i) {
        result[size_t(i)].angle = i * kPi / 4;
        result[size_t(i)].offset = KcGeVector2d{ 0.5 * i, 1.0 }.rotateBy(i * kPi / 4);
    }
    result[1].dashes = { 1.5, -0.5 };
    result[2].dashes = { 0.75, -0.25, 0.0, -0.25 };
    return result;
}

/// Beds of 40 vertices, every third piece an arc, with a round island.
void fill(KcDbDatabase& database, int count)
{
    const KcDbRead<KcDbBlockTableRecord> space(database.modelSpace());
    for (int i = 0; i < count; ++i) {
        const KcGePoint2d centre{ 30.0 * (i % 50), 30.0 * (i / 50) };
        auto hatch = std::make_unique<KcDbHatch>();
        hatch->setPattern(KcDbHatch::kCustomDefined, QStringLiteral("THREE"));
        std::vector<KcGePoint2d> points;
        std::vector<double> bulges;
        for (int k = 0; k < 40; ++k) {
            points.push_back(centre + KcGeVector2d{ 12.0 + 2.0 * std::sin(5.0 * k + i), 0 }.rotateBy(k * kTwoPi / 40));
            bulges.push_back(k % 3 ? 0.0 : 0.3);
        }
        hatch->appendLoop(KcDbHatch::kExternal, points, bulges);
        hatch->appendLoop(KcDbHatch::kDefault, { centre + KcGeVector2d{ 3, 0 }, centre - KcGeVector2d{ 3, 0 } }, { 1, 1 });
        hatch->data().lines = families();
        space->appendEntity(std::move(hatch));
    }
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication application(argc, argv);
    const int count = argc > 1 && std::strcmp(argv[1], "--quick") == 0 ? 200 : 2000;
    KcDbDatabase database;
    fill(database, count);

    size_t spans = 0;
    const double lines = seconds([&] {
        spans = 0;
        for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(database.modelSpace())) {
            const KcDbRead<KcDbHatch> hatch(id);
            const KcGeFillArea area = hatch->fillArea();
            for (const KcGeHatchFamily& family : hatch->data().lines)
                kcgeHatchLines(area, hatch->fillStyle(), family, {}, [&](KcGePoint2d, KcGePoint2d) { ++spans; });
        }
    });
    std::printf("%-58s %9.4f s  %zu dashes\n", "hatch lines of three families, outlines of 42 pieces", lines, spans);

    QImage image(1600, 1000, QImage::Format_RGB32);
    const auto picture = [&](const char* name, double scale) {
        const double time = seconds([&] {
            image.fill(0xffffffff);
            QPainter painter(&image);
            KcGiPainterDevice::Options options;
            options.smallest = 1.0;
            KcGiPainterDevice device(painter, options);
            KcGiSceneOptions scene;
            scene.area = QRectF(0, 0, 1600, 1000);
            scene.toDevice = KcGeMatrix3d::translation({ 20, 980, 0 })
                * KcGeMatrix3d::scaling(KcGeVector3d{ scale, -scale, 1 });
            KcGiScene(database, device, scene).drawSpace(database.modelSpace());
        });
        std::printf("%-58s %9.4f s\n", name, time);
    };
    picture("picture of 1600 x 1000, all hatches, a unit a pixel", 1.0);
    picture("picture of 1600 x 1000, all hatches, lines run together", 0.5);
    picture("picture of 1600 x 1000, some hatches, 20 pixels a unit", 20.0);
    return 0;
}
