// PLOT: questions in the order in which one decides them; answers are offered again the next time.

#include "ed/plot_command.h"

#include "ed/console.h"
#include "ed/documents.h"
#include "ed/input.h"
#include "ed/status_bar.h"
#include "ed/view.h"

#include <QFileInfo>

namespace {

/// What the next plot is offered, until the program ends.
struct PlotDefaults {
    QString area = QStringLiteral("Extents");
    QString paper = QStringLiteral("Fit");
    QString scale = QStringLiteral("Fit");
};

PlotDefaults& defaults()
{
    static PlotDefaults values;
    return values;
}

KcApDocument& document()
{
    return *kcDocManagerPtr()->curDocument();
}

bool isFit(const QString& text)
{
    return text.compare(QLatin1String("Fit"), Qt::CaseInsensitive) == 0;
}

/// Asks until `accept` takes the text; an empty answer is the offered one. False when the user gave up.
template <class Accept> bool askText(const QString& question, const QString& offered, Accept accept)
{
    for (;;) {
        QString text;
        const KcEdStatus status
            = kcedGetString(true, QStringLiteral("\n%1 <%2>: ").arg(question, offered), text);
        if (status == kcedCancel)
            return false;
        if (text.trimmed().isEmpty())
            text = offered;
        const QString refusal = accept(text.trimmed());
        if (refusal.isEmpty())
            return true;
        kcedSay(refusal);
    }
}

bool askFile(KcGiPlotRequest& request)
{
    const QFileInfo drawing(document().database().fileName());
    const QString name
        = drawing.completeBaseName().isEmpty() ? QStringLiteral("plot") : drawing.completeBaseName();
    return askText(
        QStringLiteral("File (.pdf, .png or .svg)"), drawing.dir().filePath(name + QStringLiteral(".pdf")),
        [&](const QString& text) -> QString {
            const QFileInfo file(text);
            if (!kcgiPlotFormats().contains(file.suffix().toLower()))
                return QStringLiteral("A plot is a .pdf, .png or .svg file, not \"%1\".").arg(text);
            if (!file.dir().exists())
                return QStringLiteral("There is no folder %1.").arg(file.absolutePath());
            if (file.isDir() || (file.exists() && !file.isWritable()))
                return QStringLiteral("%1 cannot be written.").arg(text);
            request.path = file.absoluteFilePath();
            return {};
        });
}

bool askWindow(KcGiPlotRequest& request)
{
    const KcGeMatrix3d toWorld = document().database().ucsToWorld();
    for (;;) {
        KcGePoint3d first, other;
        kcedInitGet(KcEdPrompt::kNoEmpty);
        if (kcedGetPoint(nullptr, QStringLiteral("\nFirst corner: "), first) != kcedNormal)
            return false;
        kcedInitGet(KcEdPrompt::kNoEmpty);
        if (kcedGetCorner(first, QStringLiteral("\nOther corner: "), other) != kcedNormal)
            return false;
        KcGeExtents2d box;
        for (const KcGePoint3d corner :
             { first, KcGePoint3d{ other.x, first.y, 0 }, other, KcGePoint3d{ first.x, other.y, 0 } }) {
            const KcGePoint3d world = toWorld * corner;
            box.addPoint({ world.x, world.y });
        }
        request.window = box;
        if (box.max.x > box.min.x && box.max.y > box.min.y)
            return true;
        kcedSay(QStringLiteral("The corners lie on a line."));
    }
}

bool askLayout(KcGiPlotRequest& request)
{
    KcDbDatabase& database = document().database();
    const QStringList names = kcgiLayoutNames(database);
    return askText(
        QStringLiteral("Layout (%1)").arg(names.join(QStringLiteral(", "))), names.value(1, names.first()),
        [&](const QString& text) -> QString {
            request.layout = text;
            return kcgiLayoutBlock(database, text).isNull()
                ? QStringLiteral("There is no layout \"%1\".").arg(text)
                : QString();
        });
}

KcGeExtents2d shownArea()
{
    const KcEdView view = kcedView(document());
    constexpr double kUsualShape = 1.6; // of a view without a window
    const QSize size = kcedViewWindow() ? kcedViewWindow()->size() : QSize();
    const double shape = size.isEmpty() ? kUsualShape : double(size.width()) / size.height();
    KcGeExtents2d box;
    box.addPoint({ view.center.x - view.height * shape / 2, view.center.y - view.height / 2 });
    box.addPoint({ view.center.x + view.height * shape / 2, view.center.y + view.height / 2 });
    return box;
}

bool askArea(KcGiPlotRequest& request, QString& area)
{
    kcedInitGet(0, QStringLiteral("Extents Display Window Layout _ Extents Display Window Layout"));
    const KcEdStatus status = kcedGetKword(
        QStringLiteral("\nWhat to plot [Extents/Display/Window/Layout] <%1>: ").arg(area), area);
    if (status == kcedCancel)
        return false;
    if (area == QLatin1String("Window"))
        return askWindow(request);
    if (area == QLatin1String("Layout"))
        return askLayout(request);
    if (area == QLatin1String("Display"))
        request.window = shownArea();
    return true;
}

bool askPaper(KcGiPlotRequest& request, QString& paper)
{
    return askText(
        QStringLiteral("Paper (A0 to A4, B1 to B5, Letter, 420x297, or Fit)"), paper,
        [&](const QString& text) -> QString {
            request.paper = isFit(text) ? std::nullopt : kcgiPaper(text);
            if (!isFit(text) && !request.paper)
                return QStringLiteral("There is no paper \"%1\".").arg(text);
            paper = text;
            return {};
        });
}

bool askScale(KcGiPlotRequest& request, QString& scale)
{
    return askText(
        QStringLiteral("Scale, such as 1:200, or Fit"), scale, [&](const QString& text) -> QString {
            request.scale = isFit(text) ? std::nullopt : kcgiScale(text);
            if (!isFit(text) && !request.scale)
                return QStringLiteral("\"%1\" is no scale.").arg(text);
            scale = text;
            return {};
        });
}

} // namespace

KcGiPlotResult kcedPlot(KcDbDatabase& database, KcGiPlotRequest request)
{
    std::unique_ptr<KcEdProgress> meter;
    request.progress = [&](size_t done, size_t all) {
        constexpr size_t kLong = 20'000; // entities; fewer are drawn before a bar could be read
        if (all < kLong)
            return;
        if (!meter)
            meter = std::make_unique<KcEdProgress>(QStringLiteral("Plotting"), int(all));
        meter->setPosition(int(done));
    };
    request.cancelled = [] { return kcedProgressCancelled(); };
    const KcGiPlotResult result = kcgiPlot(database, request);
    meter.reset();
    for (const auto& [what, count] : result.leftOut)
        kcedSayError(
            count == 1 ? QStringLiteral("Left out: %1.").arg(what)
                       : QStringLiteral("Left out: %1 (%2 times).").arg(what).arg(count));
    return result;
}

void kcedPlotCommand()
{
    KcDbDatabase& database = document().database();
    PlotDefaults values = defaults();
    KcGiPlotRequest request;
    if (!askFile(request) || !askArea(request, values.area) || !askPaper(request, values.paper)
        || !askScale(request, values.scale))
        return;
    defaults() = values;
    request.drawingUnitsPerMillimetre = kcgiUnitsPerMillimetre(database);
    const KcGiPlotResult result = kcedPlot(database, request);
    if (!result.error.isEmpty())
        return kcedSay(result.error);
    kcedSay(QStringLiteral("%1: %2 × %3 mm, 1:%4")
                .arg(QFileInfo(request.path).fileName())
                .arg(result.paper.width(), 0, 'f', 0)
                .arg(result.paper.height(), 0, 'f', 0)
                .arg(result.scale, 0, 'g', 4));
}
