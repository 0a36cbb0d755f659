// Each column that a flat line crosses (each row of a steep one) shares its coverage between the two pixels
// next to the line (X. Wu, "An efficient antialiasing technique", 1991), the columns at its ends by the part
// that the line covers, so that runs have no beads where their lines meet.

#include "gi/paint/thin_lines.h"

#include "gi/paint/cut_line.h"

#include <cmath>
#include <utility>

namespace {

constexpr double kOne = 65536.0; // of the positions across the line

} // namespace

void KcGiThinLines::setColor(QRgb color)
{
    m_redBlue = color & 0xff00ff;
    m_alphaGreen = (0xffu << 16) | ((color >> 8) & 0xff);
    m_strength = uint32_t(qAlpha(color)) + (uint32_t(qAlpha(color)) >> 7);
}

// Two channels at a time; `cover` is 0 to 256.
inline void KcGiThinLines::blend(QRgb& pixel, uint32_t cover) const
{
    const uint32_t rest = 256 - cover;
    const uint32_t redBlue = (((pixel & 0xff00ff) * rest + m_redBlue * cover) >> 8) & 0xff00ff;
    const uint32_t alphaGreen = (((pixel >> 8) & 0xff00ff) * rest + m_alphaGreen * cover) & 0xff00ff00;
    pixel = redBlue | alphaGreen;
}

inline void KcGiThinLines::pixel(int x, int y, uint32_t cover)
{
    if (unsigned(x) < unsigned(m_pixels.width) && unsigned(y) < unsigned(m_pixels.height))
        blend(m_pixels.bits[y * m_pixels.stride + x], (cover * m_strength) >> 8);
}

// `a` runs along the line, `b` across it; a0 < a1.
template <bool kSteep> void KcGiThinLines::smooth(double a0, double b0, double a1, double b1)
{
    const double slope = (b1 - b0) / (a1 - a0);
    const int first = int(std::floor(a0)), last = int(std::floor(a1));
    // The part of a column that the line covers, and where it is in the middle of that part.
    const auto end = [&](int column) {
        const double from = std::max(a0, double(column)), to = std::min(a1, column + 1.0);
        const double across = b0 + slope * ((from + to) / 2.0 - a0) - 0.5;
        const double row = std::floor(across);
        const double share = (across - row) * 256.0, part = to - from;
        const int b = int(row);
        const auto near = uint32_t((256.0 - share) * part), far = uint32_t(share * part);
        kSteep ? pixel(b, column, near) : pixel(column, b, near);
        kSteep ? pixel(b + 1, column, far) : pixel(column, b + 1, far);
    };
    end(first);
    if (last == first)
        return;
    auto across = int64_t((b0 + slope * (first + 1.5 - a0) - 0.5) * kOne);
    const auto step = int64_t(slope * kOne);
    const int limit = (kSteep ? m_pixels.width : m_pixels.height) - 1;
    const qsizetype along = kSteep ? m_pixels.stride : 1, beside = kSteep ? 1 : m_pixels.stride;
    QRgb* const base = m_pixels.bits + (first + 1) * along;
    QRgb* at = base;
    for (int column = first + 1; column < last; ++column, at += along, across += step) {
        const auto row = int(across >> 16);
        const auto share = uint32_t(across & 0xffff) >> 8;
        if (row < 0 || row >= limit) { // at the rim
            kSteep ? pixel(row, column, 256 - share) : pixel(column, row, 256 - share);
            kSteep ? pixel(row + 1, column, share) : pixel(column, row + 1, share);
            continue;
        }
        QRgb* const near = at + row * beside;
        blend(near[0], ((256 - share) * m_strength) >> 8);
        blend(near[beside], (share * m_strength) >> 8);
    }
    end(last);
}

void KcGiThinLines::line(QPointF from, QPointF to)
{
    if (!kcgiCutLine(from, to, QRectF(0, 0, m_pixels.width, m_pixels.height)))
        return;
    const double dx = std::abs(to.x() - from.x()), dy = std::abs(to.y() - from.y());
    if (dx >= dy) {
        if (from.x() > to.x())
            std::swap(from, to);
        if (dx > 0.0)
            smooth<false>(from.x(), from.y(), to.x(), to.y());
    } else {
        if (from.y() > to.y())
            std::swap(from, to);
        smooth<true>(from.y(), from.x(), to.y(), to.x());
    }
}

void KcGiThinLines::run(const QPointF* points, size_t count, bool closed)
{
    double size = 0.0;
    for (size_t i = 0; i + 1 < count; ++i) {
        line(points[i], points[i + 1]);
        size = std::max({ size, std::abs(points[i + 1].x() - points[0].x()),
                          std::abs(points[i + 1].y() - points[0].y()) });
    }
    if (closed && count > 2)
        line(points[count - 1], points[0]);
    if (count > 0 && size < 1.0)
        pixel(int(std::floor(points[0].x())), int(std::floor(points[0].y())), 256 - uint32_t(size * 255.0));
}
