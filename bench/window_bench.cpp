// How long the window takes: from the start of the program to the first complete picture, opening, steps of a
// pan, and from a move of the mouse to the drawn crosshair and snap marker. Offscreen, on the toolkit's
// raster engine, as on a screen without the transfer to it.

#include "db/spatial_index.h"
#include "ed/documents.h"
#include "ed/host_commands.h"
#include "ed/message_boxes.h"
#include "ed/module.h"
#include "ed/object_snap.h"
#include "ed/system_variables.h"
#include "platform/app_root.h"
#include "ui/canvas.h"
#include "ui/main_window.h"

#include <QApplication>
#include <QFileInfo>
#include <QMouseEvent>
#include <QProcess>
#include <QTemporaryDir>

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

/// What the program does until the drawing is seen; ends the process there.
int showAndEnd(const QString& drawing)
{
    if (!platform::prepareAppRoot())
        return 1;
    kcedInstallDialogHandlers();
    kcedRegisterHostCommands();
    if (!kcrxDynamicLinker().loadModule(kcrxMainModulePath()))
        return 1;
    KcUiMainWindow window;
    window.show();
    if (!window.openDrawing(drawing))
        return 1;
    QApplication::processEvents();
    PaintCount paints;
    window.canvas().installEventFilter(&paints);
    window.canvas().update();
    ::_exit(paints.count > 0 ? 0 : 1);
}

/// From the call of the program to its first complete picture: the median of some calls after one that fills
/// the application root and the system's cache.
int measureStart(const QString& program, const QString& drawing)
{
    QTemporaryDir home;
    qputenv("VERDELIS_ROOT", home.filePath(QStringLiteral("root")).toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.path().toLocal8Bit());
    constexpr int kRounds = 9;
    std::vector<double> all;
    for (int i = -1; i < kRounds; ++i) {
        int status = -1;
        const double taken = milliseconds([&] {
            status = QProcess::execute(program, { QStringLiteral("--show"), drawing });
        });
        if (status != 0)
            return 1;
        if (i >= 0)
            all.push_back(taken);
    }
    std::printf(
        "%-34s %8.1f ms (aim: 1000 ms)\n",
        qPrintable(QStringLiteral("start, ") + QFileInfo(drawing).fileName()), timesOf(all).median);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    // What the toolkit cannot do without a display does not matter here.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    QApplication application(argc, argv);
    application.setOrganizationName(QStringLiteral("verdelis-bench"));
    const QStringList arguments = application.arguments();
    if (argc == 3 && arguments[1] == u"--show")
        return showAndEnd(arguments[2]);
    if (argc == 3 && arguments[1] == u"--start")
        return measureStart(application.applicationFilePath(), arguments[2]);
    if (argc != 2) {
        std::fprintf(stderr, "window_bench [--start] DRAWING\n");
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
