// How long the window takes: steps of a pan, and from a move of the mouse to the drawn crosshair and snap
// marker. Offscreen, on the toolkit's raster engine, as on a screen without the transfer to it.

#include "db/spatial_index.h"
#include "ed/documents.h"
#include "ed/host_commands.h"
#include "ed/object_snap.h"
#include "ed/system_variables.h"
#include "ui/canvas.h"
#include "ui/main_window.h"

#include <QApplication>
#include <QMouseEvent>

#include <chrono>
#include <cstdio>

namespace {

double milliseconds(const std::function<void()>& work)
{
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

void send(QWidget& to, QEvent::Type type, QPoint at, Qt::MouseButton button)
{
    QMouseEvent event(type, at, to.mapToGlobal(QPointF(at)), button, button, Qt::NoModifier);
    QApplication::sendEvent(&to, &event);
}

/// A repaint that the toolkit leaves out would measure nothing.
class PaintCount : public QObject {
public:
    int count = 0;
    bool eventFilter(QObject*, QEvent* event) override
    {
        count += event->type() == QEvent::Paint;
        return false;
    }
};

struct Times {
    double median = 0.0, worst = 0.0;
};

Times timesOf(std::vector<double> all)
{
    std::sort(all.begin(), all.end());
    return { all[all.size() / 2], all.back() };
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    application.setOrganizationName(QStringLiteral("verdelis-bench"));
    if (argc < 2) {
        std::fprintf(stderr, "window_bench DRAWING\n");
        return 2;
    }
    kcedRegisterHostCommands();
    KcUiMainWindow window;
    window.resize(1600, 1000);
    window.show();
    bool opened = false;
    const double opening
        = milliseconds([&] { opened = window.openDrawing(QString::fromLocal8Bit(argv[1])); });
    if (!opened)
        return 1;
    KcUiCanvas& canvas = window.canvas();
    canvas.zoomExtents();
    std::printf("%-34s %8.1f ms\n", "open", opening);
    std::printf("%-34s %8.1f ms\n", "first picture, everything", milliseconds([&] {
                    canvas.update();
                    QApplication::processEvents();
                }));
    KcApDocument& document = *kcDocManagerPtr()->curDocument();
    const KcEdView whole = kcedView(document);
    const auto inView = [&](const KcEdView& view) {
        const double w = view.height * canvas.width() / canvas.height() / 2, h = view.height / 2;
        const KcGeExtents2d box{ { view.center.x - w, view.center.y - h },
                                 { view.center.x + w, view.center.y + h } };
        return document.database().spatialIndex().crossing(document.database().modelSpace(), box).size();
    };
    PaintCount paints;
    canvas.installEventFilter(&paints);
    std::printf("drawing area of %d x %d pixels\n", canvas.width(), canvas.height());
    KcEdPrompt prompt;
    prompt.kind = KcEdPrompt::Kind::Point;
    prompt.base = KcGePoint3d{ whole.center.x, whole.center.y, 0 };
    kcedSetVar(
        QStringLiteral("OSMODE"),
        int64_t(kcedSnapEnd | kcedSnapMiddle | kcedSnapCenter | kcedSnapIntersection | kcedSnapInsertion));
    const QPoint middle(canvas.width() / 2, canvas.height() / 2);
    constexpr int kSteps = 40, kStepPixels = 7;
    for (const double part : { 1.0, 0.2, 0.02 }) {
        kcedSetView(document, { whole.center, whole.height * part });
        canvas.regenerate();
        canvas.update();
        std::vector<double> pans, moves;
        send(canvas, QEvent::MouseButtonPress, middle, Qt::MiddleButton);
        for (int i = 1; i <= kSteps; ++i)
            pans.push_back(milliseconds([&] {
                send(canvas, QEvent::MouseMove, middle + QPoint(i, i / 2) * kStepPixels, Qt::MiddleButton);
                canvas.repaint();
            }));
        send(canvas, QEvent::MouseButtonRelease, middle, Qt::MiddleButton);
        canvas.setPrompt(&prompt);
        for (int i = 1; i <= kSteps; ++i)
            moves.push_back(milliseconds([&] {
                send(canvas, QEvent::MouseMove, middle + QPoint(-i, i / 2) * kStepPixels, Qt::NoButton);
                canvas.repaint();
            }));
        canvas.setPrompt(nullptr);
        if (std::exchange(paints.count, 0) < 2 * kSteps) {
            std::fprintf(stderr, "Not every step was painted.\n");
            return 1;
        }
        std::printf("%7zu entities in view, ", inView(kcedView(document)));
        const Times pan = timesOf(pans), move = timesOf(moves);
        std::printf(
            "%3.0f %% of the height in view:  pan step %6.1f ms (worst %6.1f)   move to marker %6.1f ms "
            "(worst %6.1f)\n",
            100 * part, pan.median, pan.worst, move.median, move.worst);
    }
    if (KcApDocument* open = kcDocManagerPtr()->curDocument())
        kcDocManagerPtr()->close(*open);
    return 0;
}
