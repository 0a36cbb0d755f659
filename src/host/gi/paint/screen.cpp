// Pictures of a view: rows are walked, symbols placed from what is kept, the rest is asked to draw itself.

#include "gi/paint/screen.h"

#include "db/entity.h"
#include "db/open.h"
#include "gi/paint/painter_device.h"
#include "gi/paint/space_rows.h"

#include <QPainter>

namespace {

constexpr double kDotBelow = 1.5; // pixels: smaller things are one
constexpr size_t kMostMemory = 256'000'000; // bytes of pictures and lines of definitions
constexpr size_t kRowsBetweenLooks = 1024;

KcGiPainterDevice::Options deviceOptions(const KcGiScreen::View& view)
{
    KcGiPainterDevice::Options options;
    options.background = view.background;
    options.smallest = kDotBelow;
    return options;
}

} // namespace

struct KcGiScreen::Kept {
    explicit Kept(KcDbDatabase& database)
        : rows(database)
    {
    }
    KcGiSpaceRows rows;
    KcGiSymbols symbols;
};

/// Thin lines go straight into the picture, known definitions come from what is kept of them.
class KcGiScreen::Device : public KcGiPainterDevice {
public:
    Device(QPainter& painter, const Options& options, const KcGiPixels& pixels, KcGiSymbols* symbols)
        : KcGiPainterDevice(painter, options)
        , m_lines(pixels)
        , m_symbols(symbols)
    {
    }
    KcGiThinLines& lines() { return m_lines; }

    void stroke(const QPainterPath& path, const Pen& pen) override
    {
        if (!isThin(pen) || hasCurves(path))
            return KcGiPainterDevice::stroke(path, pen);
        m_lines.setColor(pen.color);
        for (int i = 0; i < path.elementCount(); ++i) {
            const QPainterPath::Element element = path.elementAt(i);
            if (element.isMoveTo())
                flush();
            m_run.push_back(element);
        }
        flush();
    }
    void strokeLines(const std::vector<QLineF>& lines, const Pen& pen) override
    {
        if (!isThin(pen))
            return KcGiPainterDevice::strokeLines(lines, pen);
        m_lines.setColor(pen.color);
        for (const QLineF& line : lines) {
            const QPointF ends[] = { line.p1(), line.p2() };
            m_lines.run(ends, 2, false);
        }
    }
    void dot(QPointF at, QRgb color) override
    {
        if (m_clips > 0)
            return KcGiPainterDevice::dot(at, color);
        m_lines.setColor(color);
        m_lines.run(&at, 1, false);
    }
    bool place(const Placement& placement, const DrawDefinition& draw) override
    {
        if (!m_symbols || m_clips > 0)
            return false;
        const auto place = KcGiEvenPlace::of(placement.linear, placement.origin);
        return place && (*m_symbols)[m_symbols->number(placement)].place(*place, m_lines, *this, &draw);
    }
    void pushClip(const QPainterPath& path) override
    {
        ++m_clips;
        KcGiPainterDevice::pushClip(path);
    }
    void popClip() override
    {
        --m_clips;
        KcGiPainterDevice::popClip();
    }

private:
    // Inside clips the painter must see everything.
    bool isThin(const Pen& pen) const { return m_clips == 0 && pen.width <= 1.0; }
    static bool hasCurves(const QPainterPath& path)
    {
        for (int i = 0; i < path.elementCount(); ++i)
            if (path.elementAt(i).isCurveTo())
                return true;
        return false;
    }
    void flush()
    {
        m_lines.run(m_run.data(), m_run.size(), false);
        m_run.clear();
    }

    KcGiThinLines m_lines;
    KcGiSymbols* m_symbols;
    std::vector<QPointF> m_run;
    int m_clips = 0;
};

KcGiScreen::KcGiScreen(KcDbDatabase& database)
    : m_database(database)
    , m_kept(std::make_unique<Kept>(database))
{
}

KcGiScreen::~KcGiScreen() = default;

KcGeMatrix3d KcGiScreen::toPixels(const View& view, QSize size)
{
    const double scale = size.height() / view.height;
    return KcGeMatrix3d::fromAxes(
        { size.width() / 2.0 - view.center.x * scale, size.height() / 2.0 + view.center.y * scale, 0 },
        { scale, 0, 0 }, { 0, -scale, 0 }, { 0, 0, scale });
}

KcGiSceneOptions KcGiScreen::optionsFor(const QImage& image, const View& view) const
{
    KcGiSceneOptions options;
    options.toDevice = toPixels(view, image.size());
    options.area = QRectF(QPointF(0, 0), QSizeF(image.size()));
    options.background = view.background;
    options.unitsPerMillimetre = view.pixelsPerMillimetre;
    return options;
}

bool KcGiScreen::paint(QImage& image, const View& view, const std::function<bool()>& cancelled)
{
    image.fill(view.background);
    if (image.isNull())
        return true;
    using Row = KcGiSpaceRows::Row;
    KcGiSymbols& symbols = m_kept->symbols;
    const std::vector<Row>& rows
        = m_kept->rows.rows({ view.space, view.background, view.pixelsPerMillimetre }, symbols);
    if (symbols.memory() > kMostMemory)
        symbols.forget();

    const KcGiPixels pixels(image);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    Device device(painter, deviceOptions(view), pixels, &symbols);
    KcGiSceneOptions sceneOptions = optionsFor(image, view);
    sceneOptions.cancelled = cancelled;
    KcGiScene scene(m_database, device, sceneOptions);

    const KcGeExtents2d window = *scene.window();
    const auto left = float(window.min.x), bottom = float(window.min.y), right = float(window.max.x),
               top = float(window.max.y);
    const double scale = image.height() / view.height, x = image.width() / 2.0 - view.center.x * scale,
                 y = image.height() / 2.0 + view.center.y * scale;
    size_t walked = 0;
    for (const Row& row : rows) {
        if (++walked % kRowsBetweenLooks == 0 && cancelled && cancelled())
            return false;
        if (!(row.left <= right && row.right >= left && row.bottom <= top && row.top >= bottom))
            continue;
        if (row.symbol != Row::kAsk) {
            KcGiSymbol& symbol = symbols[row.symbol];
            const KcGiEvenPlace place{
                { x + row.x * scale, y - row.y * scale }, float(row.scale * scale), row.turn, row.mirrored
            };
            if (symbol.size() * double(place.scale) < kDotBelow) {
                const QPointF middle{ x + (row.left + row.right) / 2.0 * scale,
                                      y - (row.bottom + row.top) / 2.0 * scale };
                device.dot(middle, symbol.color());
                continue;
            }
            if (symbol.place(place, device.lines(), device, nullptr))
                continue;
        }
        if (const KcDbRead<KcDbEntity> entity(row.id); entity)
            scene.draw(*entity);
    }
    m_leftOut = scene.leftOutThings();
    return !(cancelled && cancelled());
}

void KcGiScreen::overlay(
    QImage& image, const View& view, const std::vector<KcDbObjectId>& ids, std::optional<QRgb> color)
{
    drawOver(image, view, color, [&](KcGiScene& scene) { scene.draw(ids); });
}

void KcGiScreen::overlay(
    QImage& image, const View& view, const std::vector<const KcDbEntity*>& entities,
    std::optional<QRgb> color)
{
    drawOver(image, view, color, [&](KcGiScene& scene) {
        for (const KcDbEntity* entity : entities)
            scene.draw(*entity);
    });
}

void KcGiScreen::drawOver(
    QImage& image, const View& view, std::optional<QRgb> color, const std::function<void(KcGiScene&)>& draw)
{
    const KcGiPixels pixels(image);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    Device device(painter, deviceOptions(view), pixels, nullptr);
    KcGiSceneOptions sceneOptions = optionsFor(image, view);
    sceneOptions.oneColor = color;
    KcGiScene scene(m_database, device, sceneOptions);
    draw(scene);
}
