// Small symbols as stamps: drawn once for a size and a turn, then copied.

#include "gi/paint/screen.h"

#include "db/spatial_index.h"
#include "gi/paint/painter_device.h"

#include <QPainter>

namespace {

constexpr double kDotBelow = 1.5; // pixels: smaller things are one
constexpr double kTurnsFrom = 10.0; // pixels: how smaller blocks are turned is not seen
constexpr double kStampBelow = 40.0; // pixels: larger blocks are drawn
constexpr size_t kKeptStamps = 60'000;

} // namespace

class KcGiScreen::Stamps {
public:
    /// Pictures made of another state of the drawing are of no use.
    void keepFor(uint64_t changeCount, QRgb background)
    {
        if (changeCount == m_changeCount && background == m_background && m_stamps.size() < kKeptStamps)
            return;
        m_stamps.clear();
        m_changeCount = changeCount;
        m_background = background;
    }

    struct Stamp {
        std::vector<QRgb> pixels; ///< premultiplied, row by row
        int width = 0, height = 0;
        QPoint offset; ///< from the definition's origin to the corner
        bool made = false;
    };
    struct Key {
        const void* definition;
        const void* layer;
        QRgb color;
        int size; ///< pixels
        int turn; ///< steps of a turn; of mirrored ones negative
        friend bool operator==(const Key&, const Key&) = default;
    };
    struct Hash {
        size_t operator()(const Key& k) const
        {
            uint64_t h
                = uint64_t(uintptr_t(k.definition)) * 0x9e3779b97f4a7c15u ^ uint64_t(uintptr_t(k.layer));
            h = h * 0x9e3779b97f4a7c15u ^ (uint64_t(k.color) << 20) ^ (uint64_t(uint32_t(k.turn)) << 8)
                ^ uint64_t(k.size);
            h *= 0x9e3779b97f4a7c15u;
            return size_t(h ^ (h >> 29));
        }
    };
    std::unordered_map<Key, Stamp, Hash>& stamps() { return m_stamps; }

private:
    std::unordered_map<Key, Stamp, Hash> m_stamps;
    uint64_t m_changeCount = ~uint64_t(0);
    QRgb m_background = 0;
};

namespace {

using Placement = KcGiDevice::Placement;

} // namespace

/// A picture whose small blocks come from stamps.
class KcGiScreen::Device : public KcGiPainterDevice {
public:
    Device(QPainter& painter, const Options& options, QImage& image, Stamps& stamps)
        : KcGiPainterDevice(painter, options)
        , m_bits(reinterpret_cast<QRgb*>(image.bits()))
        , m_stride(image.bytesPerLine() / qsizetype(sizeof(QRgb)))
        , m_width(image.width())
        , m_height(image.height())
        , m_stamps(stamps)
    {
    }

    void dot(QPointF at, QRgb color) override
    {
        const int x = int(std::floor(at.x())), y = int(std::floor(at.y()));
        if (x >= 0 && x < m_width && y >= 0 && y < m_height)
            m_bits[y * m_stride + x] = color;
    }

    bool place(const Placement& placement, const DrawDefinition& draw) override
    {
        const double size = std::max(placement.box.width(), placement.box.height());
        // Inside clips the painter must see everything; what is half transparent, has gaps or weights is
        // drawn.
        if (size >= kStampBelow || m_clips > 0 || qAlpha(placement.color) != 255 || placement.linetype
            || !placement.thinLines)
            return false;
        const QTransform& m = placement.linear;
        const double scale = std::hypot(m.m11(), m.m12()), up = std::hypot(m.m21(), m.m22());
        const bool isEven = std::abs(scale - up) <= 1e-3 * scale
            && std::abs(m.m11() * m.m21() + m.m12() * m.m22()) <= 1e-3 * scale * up;
        if (!isEven || !(scale > 0.0))
            return false;
        const bool mirrored = m.determinant() > 0.0; // the picture's y axis points down
        // As many sizes and turns as put the rim off by less than a pixel.
        const int pixels = std::max(1, int(std::lround(size)));
        int step = 0, turns = 1;
        if (size >= kTurnsFrom) {
            turns = int(std::lround(kPi * pixels));
            step = int(std::lround(std::atan2(m.m12(), m.m11()) / kTwoPi * turns)) % turns;
            step = step < 0 ? step + turns : step;
        }
        Stamp& stamp = m_stamps.stamps()[{ placement.definition, placement.layer, placement.color, pixels,
                                           mirrored ? -step - 1 : step }];
        if (!stamp.made)
            make(stamp, placement, scale * pixels / size, kTwoPi * step / turns, mirrored, draw);
        blend(
            stamp,
            QPoint(int(std::lround(placement.origin.x())), int(std::lround(placement.origin.y())))
                + stamp.offset);
        return true;
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
    using Stamp = Stamps::Stamp;

    void make(
        Stamp& stamp, const Placement& placement, double scale, double turn, bool mirrored,
        const DrawDefinition& draw)
    {
        const double c = std::cos(turn) * scale, s = std::sin(turn) * scale;
        const QTransform linear = mirrored ? QTransform(c, s, -s, c, 0, 0) : QTransform(c, s, s, -c, 0, 0);
        // The box of the definition under the stamp's own transform.
        const QRectF relative = placement.box.translated(-placement.origin);
        const QRectF inDefinition = placement.linear.inverted().mapRect(relative);
        const QRect box = linear.mapRect(inDefinition).toAlignedRect().adjusted(-2, -2, 2, 2);
        constexpr int kLargest = 4 * int(kStampBelow);
        const QSize size = box.size().boundedTo({ kLargest, kLargest });
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        {
            QPainter painter(&image);
            painter.setRenderHint(QPainter::Antialiasing);
            KcGiPainterDevice device(painter, m_options);
            draw(device, linear * QTransform::fromTranslate(-box.left(), -box.top()));
        }
        // What is empty round it is not copied time and again.
        QRect used;
        for (int y = 0; y < size.height(); ++y) {
            const QRgb* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
            for (int x = 0; x < size.width(); ++x)
                if (row[x] >> 24)
                    used |= QRect(x, y, 1, 1);
        }
        stamp.made = true;
        stamp.offset = box.topLeft() + used.topLeft();
        stamp.width = used.width();
        stamp.height = used.height();
        for (int y = used.top(); y <= used.bottom(); ++y) {
            const QRgb* row = reinterpret_cast<const QRgb*>(image.constScanLine(y)) + used.left();
            stamp.pixels.insert(stamp.pixels.end(), row, row + used.width());
        }
    }

    void blend(const Stamp& stamp, QPoint at)
    {
        const int left = std::max(0, -at.x()), right = std::min(stamp.width, m_width - at.x());
        const int top = std::max(0, -at.y()), bottom = std::min(stamp.height, m_height - at.y());
        for (int y = top; y < bottom; ++y) {
            const QRgb* from = stamp.pixels.data() + size_t(y) * stamp.width;
            QRgb* to = m_bits + (at.y() + y) * m_stride + at.x();
            for (int x = left; x < right; ++x) {
                // Two channels at a time; both pictures are premultiplied.
                const QRgb p = from[x], q = to[x];
                const uint32_t rest = 256 - (p >> 24);
                const uint32_t rb = (((q & 0xff00ff) * rest) >> 8) & 0xff00ff;
                const uint32_t ag = (((q >> 8) & 0xff00ff) * rest) & 0xff00ff00;
                to[x] = 0xff000000u | (p + (rb | ag));
            }
        }
    }

    QRgb* m_bits;
    qsizetype m_stride;
    int m_width, m_height;
    Stamps& m_stamps;
    int m_clips = 0;
};

KcGiScreen::KcGiScreen(KcDbDatabase& database)
    : m_database(database)
    , m_stamps(std::make_unique<Stamps>())
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
    m_stamps->keepFor(m_database.changeCount(), view.background);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    KcGiPainterDevice::Options options;
    options.background = view.background;
    options.smallest = kDotBelow;
    Device device(painter, options, image, *m_stamps);
    KcGiSceneOptions sceneOptions = optionsFor(image, view);
    sceneOptions.cancelled = cancelled;
    KcGiScene scene(m_database, device, sceneOptions);
    const bool whole = scene.draw(m_database.spatialIndex().crossing(view.space, *scene.window()));
    m_leftOut = scene.leftOutThings();
    return whole;
}

void KcGiScreen::overlay(
    QImage& image, const View& view, const std::vector<KcDbObjectId>& ids, std::optional<QRgb> color)
{
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    KcGiPainterDevice::Options options;
    options.background = view.background;
    options.smallest = kDotBelow;
    KcGiPainterDevice device(painter, options);
    KcGiSceneOptions sceneOptions = optionsFor(image, view);
    sceneOptions.oneColor = color;
    KcGiScene(m_database, device, sceneOptions).draw(ids);
}

void KcGiScreen::overlay(
    QImage& image, const View& view, const std::vector<const KcDbEntity*>& entities,
    std::optional<QRgb> color)
{
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    KcGiPainterDevice::Options options;
    options.background = view.background;
    KcGiPainterDevice device(painter, options);
    KcGiSceneOptions sceneOptions = optionsFor(image, view);
    sceneOptions.oneColor = color;
    KcGiScene scene(m_database, device, sceneOptions);
    for (const KcDbEntity* entity : entities)
        scene.draw(*entity);
}
