// How long pictures take: redraws of a window, plots, picks.

#include "db/spatial_index.h"
#include "dxf/drawing_file.h"
#include "ed/documents.h"
#include "ed/selection.h"
#include "gi/paint/plot.h"
#include "gi/paint/screen.h"

#include <QApplication>

#include <cstdio>
#include <ctime>

namespace {

/// Processor time of the best round: what one core needs, whatever else the machine does meanwhile.
double seconds(const std::function<void()>& work, int rounds)
{
    double best = 1e9;
    for (int i = 0; i < rounds; ++i) {
        const std::clock_t start = std::clock();
        work();
        best = std::min(best, double(std::clock() - start) / CLOCKS_PER_SEC);
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
    auto owned = std::make_unique<KcDbDatabase>(KcDbDatabase::Content::kEmpty);
    KcDbDatabase& database = *owned;
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

    // Picks, as a click makes them: what lies under the cursor, in a view of a street's width.
    KcApDocument& document = kcDocManagerPtr()->open(std::move(owned));
    constexpr double kStreet = 20'000.0; // drawing units
    kcedSetView(document, { center, kStreet });
    constexpr int kPicks = 200;
    size_t found = 0;
    const double picks = seconds(
        [&] {
            found = 0;
            for (int i = 0; i < kPicks; ++i)
                found += !kcedEntityAt({ center.x + i * 997.0, center.y + i * 631.0, 0.0 }).isNull();
        },
        3);
    std::printf("pick, %d of %zu hit something        %8.3f ms each\n", kPicks, found, 1e3 * picks / kPicks);
    const double extents = seconds([&] { kcgiVisibleExtents(database, database.modelSpace()); }, 3);
    std::printf("extents of everything               %8.1f ms\n", 1e3 * extents);
    return 0;
}
