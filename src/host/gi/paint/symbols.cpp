// Stamps are drawn once for a size and a turn and then copied; lists of lines are drawn anew, without asking
// the drawing.

#include "gi/paint/symbols.h"

#include "gi/paint/painter_device.h"

#include <QPainter>

namespace {

constexpr double kTurnsFrom = 10.0; // pixels: how smaller definitions are turned is not seen
constexpr double kStampBelow = 24.0; // pixels: larger definitions are drawn by their lines
constexpr double kLargest = 1e5; // pixels: of even larger ones little is seen, part by part
constexpr double kSagitta = 0.2; // pixels
constexpr double kFarOff = 1e4; // sizes: definitions that lie so far from their origin need exact transforms
constexpr double kEven = 1e-3; // slack of the axes of an even transform, as a share of their length

void blend(const KcGiPixels& image, const std::vector<QRgb>& pixels, int width, int height, QPoint at)
{
    const int left = std::max(0, -at.x()), right = std::min(width, image.width - at.x());
    const int top = std::max(0, -at.y()), bottom = std::min(height, image.height - at.y());
    for (int y = top; y < bottom; ++y) {
        const QRgb* from = pixels.data() + size_t(y) * width;
        QRgb* to = image.bits + (at.y() + y) * image.stride + at.x();
        for (int x = left; x < right; ++x) {
            // Two channels at a time; both pictures are premultiplied.
            const QRgb p = from[x], q = to[x];
            const uint32_t rest = 256 - (p >> 24);
            const uint32_t redBlue = (((q & 0xff00ff) * rest) >> 8) & 0xff00ff;
            const uint32_t alphaGreen = (((q >> 8) & 0xff00ff) * rest) & 0xff00ff00;
            to[x] = 0xff000000u | (p + (redBlue | alphaGreen));
        }
    }
}

} // namespace

std::optional<KcGiEvenPlace> KcGiEvenPlace::of(const QTransform& linear, QPointF origin)
{
    const double scale = std::hypot(linear.m11(), linear.m12()), up = std::hypot(linear.m21(), linear.m22());
    if (!(scale > 0.0) || !(std::abs(scale - up) <= kEven * scale)
        || !(std::abs(linear.m11() * linear.m21() + linear.m12() * linear.m22()) <= kEven * scale * up))
        return {};
    return KcGiEvenPlace{ origin, float(scale), float(std::atan2(-linear.m12(), linear.m11())),
                          linear.determinant() > 0.0 };
}

QTransform KcGiEvenPlace::transform() const
{
    const double c = std::cos(double(turn)) * double(scale), s = std::sin(double(turn)) * double(scale);
    return mirrored ? QTransform(c, -s, s, c, origin.x(), origin.y())
                    : QTransform(c, -s, -s, -c, origin.x(), origin.y());
}

KcGiSymbol::KcGiSymbol(const KcGiDevice::Placement& placement, QRgb background)
    : m_box(placement.box)
    , m_background(background)
    , m_color(placement.color)
    , m_size(std::max(placement.box.width(), placement.box.height()))
    // What is half transparent would show where its lines cross, what has gaps or weights depends on the
    // reference.
    , m_mayBeKept(
          qAlpha(placement.color) == 255 && !placement.linetype && placement.thinLines
          && std::max({ std::abs(m_box.left()), std::abs(m_box.right()), std::abs(m_box.top()),
                        std::abs(m_box.bottom()) })
              < kFarOff * m_size)
    , m_canBeKept(m_mayBeKept)
{
}

void KcGiSymbol::forget()
{
    m_canBeKept = m_mayBeKept;
    m_small.clear();
    m_stamps.clear();
    m_lists.clear();
    m_memory = 0;
}

bool KcGiSymbol::place(
    const KcGiEvenPlace& place, KcGiThinLines& lines, KcGiDevice& device,
    const KcGiDevice::DrawDefinition* draw)
{
    const double pixels = m_size * double(place.scale);
    if (!m_canBeKept || !(pixels < kLargest))
        return false;
    if (pixels < kStampBelow)
        return placeStamp(place, lines.pixels(), draw);
    int level = 0;
    std::frexp(place.scale, &level);
    std::unique_ptr<KcGiDisplayList>& list = m_lists[level];
    const double fine = std::ldexp(1.0, level); // not less than the scale
    if (!list) {
        if (!draw)
            return false;
        list = std::make_unique<KcGiDisplayList>(kSagitta);
        (*draw)(*list, QTransform::fromScale(fine, fine));
        m_memory += list->size() * sizeof(QPointF);
        m_canBeKept = list->isWhole();
    }
    if (!m_canBeKept)
        return false;
    QRgb color = 0;
    list->replay(
        QTransform::fromScale(1.0 / fine, 1.0 / fine) * place.transform(), device,
        [&](const QPointF* points, size_t count, QRgb own) {
            if (std::exchange(color, own) != own)
                lines.setColor(own);
            lines.run(points, count, false);
        });
    return true;
}

bool KcGiSymbol::placeStamp(
    const KcGiEvenPlace& place, const KcGiPixels& image, const KcGiDevice::DrawDefinition* draw)
{
    const double exact = m_size * double(place.scale);
    const int pixels = std::max(1, int(std::lround(exact)));
    // As many turns as put the rim off by less than a pixel.
    int step = 0, turns = 1;
    if (exact >= kTurnsFrom) {
        turns = int(std::lround(kPi * pixels));
        step = int(std::lround(double(place.turn) / kTwoPi * turns)) % turns;
        step = step < 0 ? step + turns : step;
    } else if (m_small.empty()) {
        m_small.resize(2 * size_t(kTurnsFrom) + 2);
    }
    Stamp& stamp = exact < kTurnsFrom
        ? m_small[2 * size_t(pixels) + place.mirrored]
        : m_stamps[uint32_t(pixels) << 16 | uint32_t(step) << 1 | place.mirrored];
    if (!stamp.made) {
        if (!draw)
            return false;
        KcGiEvenPlace own = place;
        own.origin = {};
        own.scale = float(pixels / m_size);
        own.turn = float(kTwoPi * step / turns);
        make(stamp, own.transform(), *draw);
    }
    blend(
        image, stamp.pixels, stamp.width, stamp.height,
        QPoint(int(std::lround(place.origin.x())), int(std::lround(place.origin.y()))) + stamp.offset);
    return true;
}

void KcGiSymbol::make(Stamp& stamp, const QTransform& transform, const KcGiDevice::DrawDefinition& draw)
{
    const QRect box = transform.mapRect(m_box).toAlignedRect().adjusted(-2, -2, 2, 2);
    constexpr int kMost = 4 * int(kStampBelow);
    const QSize size = box.size().boundedTo({ kMost, kMost });
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        KcGiPainterDevice::Options options;
        options.background = m_background;
        KcGiPainterDevice device(painter, options);
        draw(device, transform * QTransform::fromTranslate(-box.left(), -box.top()));
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
    m_memory += sizeof(Stamp) + stamp.pixels.size() * sizeof(QRgb);
}

uint32_t KcGiSymbols::number(const KcGiDevice::Placement& placement)
{
    const auto [at, isNew] = m_numbers.try_emplace(
        { placement.definition, placement.layer, placement.linetype, placement.color, placement.thinLines },
        m_symbols.size());
    if (isNew)
        m_symbols.emplace_back(placement, m_background);
    return at->second;
}

void KcGiSymbols::clear(QRgb background)
{
    m_background = background;
    m_numbers.clear();
    m_symbols.clear();
}

void KcGiSymbols::forget()
{
    for (KcGiSymbol& symbol : m_symbols)
        symbol.forget();
}

size_t KcGiSymbols::memory() const
{
    size_t sum = 0;
    for (const KcGiSymbol& symbol : m_symbols)
        sum += symbol.memory();
    return sum;
}
