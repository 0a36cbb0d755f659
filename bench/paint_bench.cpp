// How long pictures take: redraws of a window, plots, picks.

#include "db/spatial_index.h"
#include "dxf/drawing_file.h"
#include "gi/paint/plot.h"
#include "gi/paint/screen.h"

#include <QApplication>

#include <chrono>
#include <cstdio>

namespace {

double seconds(const std::function<void()>& work, int rounds)
{
    double best = 1e9;
    for (int i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        work();
        best
            = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return best;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "paint_bench DRAWING [PICTURE.png]\n");
        return 2;
    }
    KcDbDatabase database(KcDbDatabase::Content::kEmpty);
    const auto read = dxf::readDrawing(QString::fromLocal8Bit(argv[1]), database);
    if (!read.ok) {
        std::fprintf(stderr, "%s\n", qPrintable(read.error));
        return 1;
    }
    const KcGeExtents2d all = kcgiVisibleExtents(database, database.modelSpace());
    const KcGePoint2d center{ (all.min.x + all.max.x) / 2, (all.min.y + all.max.y) / 2 };
    const QSize pixels(1600, 1000);
    QImage image(pixels, QImage::Format_RGB32);
    KcGiScreen screen(database);
    const auto redraw = [&](double height) {
        KcGiScreen::View view;
        view.space = database.modelSpace();
        view.center = center;
        view.height = height;
        view.background = 0xff212830;
        screen.paint(image, view);
    };
    const double whole = std::max(all.max.y - all.min.y, (all.max.x - all.min.x) / 1.6) * 1.05;
    const size_t total = database.spatialIndex().crossing(database.modelSpace(), all).size();
    std::printf(
        "%-34s %8.1f ms   %zu entities\n", "first picture, everything",
        1e3 * seconds([&] { redraw(whole); }, 1), total);
    for (const double share : { 1.0, 0.5, 0.25, 0.1, 0.05, 0.02 }) {
        const double height = whole * share;
        KcGeExtents2d box;
        box.addPoint({ center.x - height * 0.8, center.y - height / 2 });
        box.addPoint({ center.x + height * 0.8, center.y + height / 2 });
        const size_t seen = database.spatialIndex().crossing(database.modelSpace(), box).size();
        const double time = seconds([&] { redraw(height); }, 5);
        std::printf("redraw, %8zu entities seen       %8.1f ms\n", seen, 1e3 * time);
        if (argc > 2)
            image.save(QString::fromLocal8Bit(argv[2]).replace(".png", QString("-%1.png").arg(share)));
    }
    return 0;
}
