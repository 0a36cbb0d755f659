// Plots: fitting a drawing to a paper, and writing the file whole or not at all.

#include "gi/paint/plot.h"

#include "db/block_table_record.h"
#include "db/dictionary.h"
#include "db/header.h"
#include "db/tables.h"
#include "gi/paint/painter_device.h"
#include "gi/paint/pdf_device.h"
#include "gi/paint/scene.h"
#include "platform/files.h"

#include <QBuffer>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QSvgGenerator>

namespace {

constexpr double kMargin = 0.03; // of the paper, round a drawing that is fitted
constexpr double kUsualLongSide = 420.0; // millimetres, of a paper that nobody chose
constexpr int kUsualPixels = 1600;
constexpr double kScreenDots = 96.0, kPageDots = 1200.0; // per inch
constexpr double kMillimetresPerInch = 25.4;
constexpr double kHairline = 0.05; // millimetres: the thinnest line on a page
constexpr int kMostPixels = 30'000; // of one side of a picture

struct Fit {
    QSizeF paper; ///< millimetres
    KcGePoint2d center; ///< drawing units
    double millimetresPerUnit = 1.0;
};

Fit fit(const KcGiPlotRequest& request, const KcGeExtents2d& box)
{
    const double width = std::max(box.max.x - box.min.x, 0.0), height = std::max(box.max.y - box.min.y, 0.0);
    Fit result;
    result.center = { (box.min.x + box.max.x) / 2, (box.min.y + box.max.y) / 2 };
    const double room = request.window ? 1.0 : 1.0 - 2.0 * kMargin;
    // Nothing at all, or one point, is shown at the scale of one unit.
    const double w = width > 0.0 || height > 0.0 ? width : 1.0,
                 h = width > 0.0 || height > 0.0 ? height : 1.0;
    if (request.paper)
        result.paper = *request.paper;
    else if (request.scale)
        result.paper = QSizeF(w, h) / (request.drawingUnitsPerMillimetre * *request.scale * room);
    else if (request.pixels)
        result.paper = QSizeF(*request.pixels)
            * (kUsualLongSide / std::max(request.pixels->width(), request.pixels->height()));
    else {
        // Very long and narrow drawings get a paper that is not.
        constexpr double kLongest = 5.0;
        const double shape = std::clamp(h > 0.0 ? w / h : kLongest, 1.0 / kLongest, kLongest);
        result.paper = shape >= 1.0 ? QSizeF(kUsualLongSide, kUsualLongSide / shape)
                                    : QSizeF(kUsualLongSide * shape, kUsualLongSide);
    }
    if (request.scale)
        result.millimetresPerUnit = 1.0 / (request.drawingUnitsPerMillimetre * *request.scale);
    else
        result.millimetresPerUnit = room
            * std::min(w > 0.0 ? result.paper.width() / w : INFINITY,
                       h > 0.0 ? result.paper.height() / h : INFINITY);
    return result;
}

struct Sheet {
    QSizeF paper; ///< millimetres, as the layout lies on it
    KcGeExtents2d box; ///< of the paper, in units of the layout
    double millimetresPerUnit = 1.0;
};

// The paper of a layout; nothing when the file names none, or plots something else than the layout on it.
std::optional<Sheet> sheetOf(KcDbObjectId space)
{
    constexpr int kAreaLayout = 5, kInches = 0, kMillimetres = 1;
    constexpr double kLargest = 20'000.0; // millimetres
    const KcDbRead<KcDbBlockTableRecord> record(space);
    const KcDbRead<KcDbLayout> layout(record ? record->data().layout : KcDbObjectId());
    if (!layout)
        return {};
    const KcDbLayout::Page& page = layout->data().page;
    double width = page.width, height = page.height, left = page.left, bottom = page.bottom;
    if (page.rotation == 1 || page.rotation == 3)
        std::swap(width, height);
    // The margins turn with the layout.
    if (page.rotation == 1)
        left = page.bottom, bottom = page.right;
    else if (page.rotation == 2)
        left = page.right, bottom = page.top;
    else if (page.rotation == 3)
        left = page.top, bottom = page.left;
    const double unit
        = (page.unit == kInches ? kMillimetresPerInch : 1.0) * page.paperUnits / page.drawingUnits;
    const bool isSound = page.area == kAreaLayout && (page.unit == kInches || page.unit == kMillimetres)
        && width > 0.0 && width < kLargest && height > 0.0 && height < kLargest && unit > 0.0
        && std::isfinite(unit);
    if (!isSound)
        return {};
    const KcGePoint2d corner{ -(left + page.origin.x) / unit, -(bottom + page.origin.y) / unit };
    if (!std::isfinite(corner.x) || !std::isfinite(corner.y))
        return {};
    return Sheet{ { width, height },
                  { corner, { corner.x + width / unit, corner.y + height / unit } },
                  unit };
}

bool holds(const KcGeExtents2d& box, const KcGeExtents2d& inner)
{
    const double slack
        = 0.01 * std::max(box.max.x - box.min.x, box.max.y - box.min.y); // frames on the paper's edge
    return inner.min.x >= box.min.x - slack && inner.min.y >= box.min.y - slack
        && inner.max.x <= box.max.x + slack && inner.max.y <= box.max.y + slack;
}

// A picture of a sheet has the shape that is asked for; the paper grows until it has it too.
QSizeF paperOfPicture(const QSizeF& sheet, const QSize& pixels)
{
    const double shape = double(pixels.width()) / pixels.height();
    return shape > sheet.width() / sheet.height() ? QSizeF(sheet.height() * shape, sheet.height())
                                                  : QSizeF(sheet.width(), sheet.width() / shape);
}

KcGeMatrix3d toDevice(const Fit& fit, double unitsPerMillimetre)
{
    const double scale = fit.millimetresPerUnit * unitsPerMillimetre;
    const double width = fit.paper.width() * unitsPerMillimetre,
                 height = fit.paper.height() * unitsPerMillimetre;
    return KcGeMatrix3d::fromAxes(
        { width / 2 - fit.center.x * scale, height / 2 + fit.center.y * scale, 0 }, { scale, 0, 0 },
        { 0, -scale, 0 }, { 0, 0, scale });
}

struct Job {
    KcDbDatabase& database;
    const KcGiPlotRequest& request;
    KcDbObjectId space;
    Fit fit;
    KcGiPlotResult& result;
};

// Draws on a device whose units are `unitsPerMillimetre`; false when cancelled.
bool paint(const Job& job, KcGiDevice& device, double unitsPerMillimetre)
{
    KcGiSceneOptions scene;
    scene.toDevice = toDevice(job.fit, unitsPerMillimetre);
    scene.area = QRectF(QPointF(0, 0), job.fit.paper * unitsPerMillimetre);
    scene.plotting = true;
    scene.unitsPerMillimetre = unitsPerMillimetre;
    scene.progress = job.request.progress;
    scene.cancelled = job.request.cancelled;
    KcGiScene drawn(job.database, device, scene);
    const bool whole = drawn.drawSpace(job.space);
    job.result.leftOut = drawn.leftOutThings();
    return whole;
}

QString cancelled()
{
    return QStringLiteral("The plot was cancelled.");
}

QString titleOf(const Job& job)
{
    return QFileInfo(job.database.fileName()).completeBaseName();
}

QString plotPicture(const Job& job)
{
    QSize pixels;
    if (job.request.pixels) {
        pixels = *job.request.pixels;
    } else {
        const double longSide = std::max(job.fit.paper.width(), job.fit.paper.height());
        const double dots = job.request.paper || job.request.scale ? kScreenDots / kMillimetresPerInch
                                                                   : kUsualPixels / longSide;
        pixels = QSize(
            int(std::ceil(job.fit.paper.width() * dots)), int(std::ceil(job.fit.paper.height() * dots)));
    }
    if (pixels.width() < 1 || pixels.height() < 1 || pixels.width() > kMostPixels
        || pixels.height() > kMostPixels)
        return QStringLiteral("A picture has 1 to %1 pixels to a side, not %2 × %3.")
            .arg(kMostPixels)
            .arg(pixels.width())
            .arg(pixels.height());
    QImage image(pixels, QImage::Format_RGB32);
    if (image.isNull())
        return QStringLiteral("There is not enough memory for a picture of %1 × %2 pixels.")
            .arg(pixels.width())
            .arg(pixels.height());
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        KcGiPainterDevice::Options options;
        options.sagitta = 0.15;
        options.smallest = 0.7;
        KcGiPainterDevice device(painter, options);
        if (!paint(job, device, pixels.width() / job.fit.paper.width()))
            return cancelled();
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG"))
        return QStringLiteral("The picture could not be made.");
    const platform::Status status = platform::writeFileAtomically(job.request.path, bytes);
    return status ? QString() : status.error;
}

QString plotPdf(const Job& job)
{
    KcGiPdfDevice::Options options;
    options.paper = job.fit.paper;
    options.unitsPerMillimetre = kPageDots / kMillimetresPerInch;
    options.hairline = kHairline * options.unitsPerMillimetre;
    options.title = titleOf(job);
    KcGiPdfDevice device(options);
    if (!paint(job, device, options.unitsPerMillimetre))
        return cancelled();
    const platform::Status status = platform::writeFileAtomically(job.request.path, device.finish());
    return status ? QString() : status.error;
}

QString plotSvg(const Job& job)
{
    QByteArray bytes;
    {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QSvgGenerator generator;
        generator.setOutputDevice(&buffer);
        constexpr double kUnits = 10.0; // of the file, a millimetre
        generator.setResolution(int(kUnits * kMillimetresPerInch));
        const QSizeF size = job.fit.paper * kUnits;
        generator.setSize(size.toSize());
        generator.setViewBox(QRectF(QPointF(0, 0), size));
        generator.setTitle(titleOf(job));
        QPainter painter(&generator);
        painter.setClipRect(QRectF(QPointF(0, 0), size));
        KcGiPainterDevice::Options options;
        options.page = true;
        options.sagitta = kUnits * 0.01;
        options.hairline = kUnits * kHairline;
        KcGiPainterDevice device(painter, options);
        if (!paint(job, device, kUnits))
            return cancelled();
    }
    const platform::Status status = platform::writeFileAtomically(job.request.path, bytes);
    return status ? QString() : status.error;
}

} // namespace

std::optional<QSizeF> kcgiPaper(const QString& name)
{
    static const QRegularExpression sizes(
        QStringLiteral("^\\s*(\\d+(?:\\.\\d+)?)\\s*[xX×*]\\s*(\\d+(?:\\.\\d+)?)\\s*$"));
    if (const auto match = sizes.match(name); match.hasMatch()) {
        const QSizeF size(match.captured(1).toDouble(), match.captured(2).toDouble());
        constexpr double kLargest = 10'000.0; // millimetres
        if (size.width() >= 1.0 && size.height() >= 1.0 && size.width() <= kLargest
            && size.height() <= kLargest)
            return size;
        return {};
    }
    for (int id = 0; id <= int(QPageSize::LastPageSize); ++id) {
        const QPageSize page{ QPageSize::PageSizeId(id) };
        if (id == int(QPageSize::Custom) || page.key().compare(name, Qt::CaseInsensitive) != 0)
            continue;
        const QSizeF size = page.size(QPageSize::Millimeter);
        return size.width() < size.height() ? size.transposed() : size;
    }
    return {};
}

std::optional<double> kcgiScale(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    if (parts.size() != 2)
        return {};
    bool isPaper = false, isDrawing = false;
    const double paper = parts[0].toDouble(&isPaper), drawing = parts[1].toDouble(&isDrawing);
    if (!isPaper || !isDrawing || !(paper > 0.0) || !(drawing > 0.0) || !std::isfinite(drawing / paper))
        return {};
    return drawing / paper;
}

QStringList kcgiPlotFormats()
{
    return { QStringLiteral("png"), QStringLiteral("pdf"), QStringLiteral("svg") };
}

double kcgiUnitsPerMillimetre(KcDbDatabase& database)
{
    const KcDbRead<KcDbHeader> header(database.headerId());
    // The published codes: 1 inches, 2 feet, 4 millimetres, 5 centimetres, 6 metres, 14 decimetres.
    switch (header ? header->integer(QStringLiteral("$INSUNITS"), 0) : 0) {
    case 1:
        return 1.0 / kMillimetresPerInch;
    case 2:
        return 1.0 / (12.0 * kMillimetresPerInch);
    case 5:
        return 0.1;
    case 6:
        return 0.001;
    case 14:
        return 0.01;
    default:
        return 1.0;
    }
}

KcDbObjectId kcgiLayoutBlock(KcDbDatabase& database, const QString& name)
{
    if (name.compare(QLatin1String("Model"), Qt::CaseInsensitive) == 0)
        return database.modelSpace();
    const KcDbRead<KcDbSymbolTable> blocks(database.blockTable());
    for (const KcDbObjectId id : blocks->records()) {
        const KcDbRead<KcDbBlockTableRecord> record(id);
        if (!record || !record->isLayout() || record->isModelSpace())
            continue;
        const KcDbRead<KcDbLayout> layout(record->data().layout);
        if ((layout ? layout->data().name : record->name()).compare(name, Qt::CaseInsensitive) == 0)
            return id;
    }
    return {};
}

QStringList kcgiLayoutNames(KcDbDatabase& database)
{
    std::vector<std::pair<int, QString>> layouts;
    const KcDbRead<KcDbSymbolTable> blocks(database.blockTable());
    for (const KcDbObjectId id : blocks->records()) {
        const KcDbRead<KcDbBlockTableRecord> record(id);
        if (!record || !record->isLayout() || record->isModelSpace())
            continue;
        const KcDbRead<KcDbLayout> layout(record->data().layout);
        layouts.push_back(
            layout ? std::pair(layout->data().tabOrder, layout->data().name) : std::pair(0, record->name()));
    }
    std::sort(layouts.begin(), layouts.end());
    QStringList names{ QStringLiteral("Model") };
    for (const auto& [order, name] : layouts)
        names += name;
    return names;
}

KcGeExtents2d kcgiVisibleExtents(KcDbDatabase& database, KcDbObjectId space, size_t* tooFar)
{
    KcGeExtents2d box;
    const KcDbRead<KcDbBlockTableRecord> record(space);
    if (!record)
        return box;
    std::unordered_map<const void*, bool> seen;
    for (const KcDbObjectId id : *record) {
        const KcDbRead<KcDbEntity> entity(id);
        if (!entity || !entity->isVisible())
            continue;
        const auto [known, isNew] = seen.try_emplace(entity->layerId().stub(), true);
        if (isNew)
            if (const KcDbRead<KcDbLayerTableRecord> layer(entity->layerId()); layer)
                known->second = !layer->isOff() && !layer->isFrozen();
        const KcGeExtents3d own = known->second ? entity->geomExtents() : KcGeExtents3d();
        if (own.isEmpty())
            continue;
        if (!kcgiIsDrawable(own.min) || !kcgiIsDrawable(own.max)) {
            if (tooFar)
                ++*tooFar;
        } else {
            box.addExtents({ { own.min.x, own.min.y }, { own.max.x, own.max.y } });
        }
    }
    return box;
}

KcGiPlotResult kcgiPlot(KcDbDatabase& database, const KcGiPlotRequest& request)
{
    KcGiPlotResult result;
    KcGi::ensureGuiApplication();
    const KcDbObjectId space
        = request.layout.isEmpty() ? database.currentSpace() : kcgiLayoutBlock(database, request.layout);
    if (space.isNull()) {
        result.error = QStringLiteral("The drawing has no layout \"%1\"; it has: %2.")
                           .arg(request.layout, kcgiLayoutNames(database).join(QStringLiteral(", ")));
        return result;
    }
    size_t tooFar = 0;
    KcGeExtents2d box = request.window ? *request.window : kcgiVisibleExtents(database, space, &tooFar);
    if (box.isEmpty())
        box.addPoint({ 0, 0 });
    KcGiPlotRequest own = request;
    // Paper space is drawn in millimetres of paper.
    if (space != database.modelSpace() && !request.layout.isEmpty())
        own.drawingUnitsPerMillimetre = 1.0;
    const QString suffix = QFileInfo(request.path).suffix().toLower();
    if (space != database.modelSpace() && !request.window && !request.paper && !request.scale)
        if (const auto sheet = sheetOf(space); sheet && holds(sheet->box, box)) {
            box = sheet->box;
            own.drawingUnitsPerMillimetre = 1.0;
            own.scale = 1.0 / sheet->millimetresPerUnit;
            own.paper = sheet->paper;
            if (suffix == u"png") {
                if (!own.pixels)
                    own.pixels = (sheet->paper
                                  * (kUsualPixels / std::max(sheet->paper.width(), sheet->paper.height())))
                                     .toSize()
                                     .expandedTo({ 1, 1 });
                own.paper = paperOfPicture(sheet->paper, *own.pixels);
            }
        }
    const Job job{ database, own, space, fit(own, box), result };
    result.paper = job.fit.paper;
    result.scale = 1.0 / (job.fit.millimetresPerUnit * own.drawingUnitsPerMillimetre);
    if (suffix == u"png")
        result.error = plotPicture(job);
    else if (suffix == u"pdf")
        result.error = plotPdf(job);
    else if (suffix == u"svg")
        result.error = plotSvg(job);
    else
        result.error = QStringLiteral("A plot is a .png, .pdf or .svg file, not \"%1\".").arg(request.path);
    if (tooFar > 0)
        result.leftOut[QStringLiteral("an entity too far away to be drawn")] += tooFar;
    return result;
}
