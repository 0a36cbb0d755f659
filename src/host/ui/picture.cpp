// Computing what the drawing area shows, and as little of it as will do.

#include "ui/picture.h"

#include <QElapsedTimer>
#include <QPainter>

namespace {

constexpr size_t kMarksAtOnce = 500;
constexpr qint64 kMarkMilliseconds = 8; // a slice of marks leaves time for the mouse
constexpr double kPixelPart = 1e-3; // a move counts as one by whole pixels when it is off by less

} // namespace

void KcUiPicture::setDatabase(KcDbDatabase* database)
{
    m_database = database;
    m_screen = database ? std::make_unique<KcGiScreen>(*database) : nullptr;
    m_marks.clear();
    m_preview.clear();
    m_stale = true;
}

void KcUiPicture::setSize(QSize logical, double ratio)
{
    m_logical = logical;
    m_ratio = ratio;
    const QSize pixels = (QSizeF(logical) * ratio).toSize();
    if (m_base.size() == pixels)
        return;
    m_base = pixels.isEmpty() ? QImage() : QImage(pixels, QImage::Format_RGB32);
    m_base.fill(m_background);
    m_stale = true;
}

void KcUiPicture::setColors(QRgb background, QRgb mark)
{
    m_background = background;
    m_mark = mark;
    m_stale = true;
}

KcGiScreen::View KcUiPicture::viewOf(const KcEdView& view) const
{
    KcGiScreen::View result;
    result.space = m_database->currentSpace();
    result.center = view.center;
    result.height = view.height;
    result.background = m_background;
    return result;
}

bool KcUiPicture::isStale(const KcEdView& view) const
{
    return m_stale || !(m_view == view) || (m_database && m_database->currentSpace() != m_space);
}

void KcUiPicture::render(const KcEdView& view)
{
    if (m_base.isNull() || !isStale(view))
        return;
    if (!m_database)
        m_base.fill(m_background);
    else if (m_stale || m_database->currentSpace() != m_space || !scrollTo(view))
        m_screen->paint(m_base, viewOf(view));
    m_view = view;
    m_space = m_database ? m_database->currentSpace() : KcDbObjectId();
    m_stale = false;
    restartMarks();
    markOn(); // few marks are there with the picture
}

// The part of the picture that both views show is moved, the rest drawn. Only moves by whole pixels give the
// same picture as drawing everything would.
bool KcUiPicture::scrollTo(const KcEdView& view)
{
    if (view.height != m_view.height)
        return false;
    const double pixels = m_base.height() / view.height;
    const double dx = (m_view.center.x - view.center.x) * pixels;
    const double dy = (view.center.y - m_view.center.y) * pixels;
    const double wholeX = std::round(dx), wholeY = std::round(dy);
    if (std::abs(dx - wholeX) > kPixelPart || std::abs(dy - wholeY) > kPixelPart
        || std::abs(wholeX) >= m_base.width() || std::abs(wholeY) >= m_base.height())
        return false;
    const int x = int(wholeX), y = int(wholeY);
    const QImage before = m_base.copy();
    QPainter painter(&m_base);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(x, y, before);
    painter.end();
    const int width = m_base.width(), height = m_base.height();
    if (y != 0)
        renderStrip(view, y > 0 ? QRect(0, 0, width, y) : QRect(0, height + y, width, -y));
    if (x != 0)
        renderStrip(
            view,
            x > 0 ? QRect(0, std::max(0, y), x, height - std::abs(y))
                  : QRect(width + x, std::max(0, y), -x, height - std::abs(y)));
    return true;
}

void KcUiPicture::renderStrip(const KcEdView& view, QRect strip)
{
    const double unit = view.height / m_base.height();
    KcGiScreen::View part = viewOf(view);
    part.center.x += (strip.x() + strip.width() / 2.0 - m_base.width() / 2.0) * unit;
    part.center.y -= (strip.y() + strip.height() / 2.0 - m_base.height() / 2.0) * unit;
    part.height = strip.height() * unit;
    QImage image(strip.size(), QImage::Format_RGB32);
    m_screen->paint(image, part);
    QPainter painter(&m_base);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.drawImage(strip.topLeft(), image);
}

// Marks and previews.

void KcUiPicture::setMarks(std::vector<KcDbObjectId> ids)
{
    m_marks = std::move(ids);
    restartMarks();
}

void KcUiPicture::setPreview(std::vector<const KcDbEntity*> entities)
{
    m_preview = std::move(entities);
    m_shown = QImage();
}

void KcUiPicture::restartMarks()
{
    m_marked = QImage();
    m_shown = QImage();
    m_marksDone = 0;
}

bool KcUiPicture::markOn()
{
    if (!m_database || m_base.isNull() || m_marksDone >= m_marks.size())
        return false;
    if (m_marked.isNull())
        m_marked = m_base.copy();
    QElapsedTimer clock;
    clock.start();
    while (m_marksDone < m_marks.size() && clock.elapsed() < kMarkMilliseconds) {
        const size_t end = std::min(m_marks.size(), m_marksDone + kMarksAtOnce);
        const std::vector<KcDbObjectId> slice(m_marks.begin() + m_marksDone, m_marks.begin() + end);
        m_screen->overlay(m_marked, viewOf(m_view), slice, m_mark);
        m_marksDone = end;
    }
    m_shown = QImage();
    return true;
}

void KcUiPicture::draw(QPainter& painter, const KcEdView& view)
{
    if (m_base.isNull())
        return;
    QImage* image = m_marked.isNull() ? &m_base : &m_marked;
    if (m_database && !m_preview.empty()) {
        if (m_shown.isNull()) {
            m_shown = image->copy();
            m_screen->overlay(m_shown, viewOf(m_view), m_preview, {});
        }
        image = &m_shown;
    }
    if (m_view == view) {
        painter.drawImage(QRectF(QPointF(0, 0), QSizeF(image->size()) / m_ratio), *image);
        return;
    }
    const KcUiScreenMap now{ view, QSizeF(m_logical) }, then{ m_view, QSizeF(m_logical) };
    const QPointF topLeft = now.toPixel(then.toModel({ 0, 0 }));
    const QPointF bottomRight
        = now.toPixel(then.toModel({ double(m_logical.width()), double(m_logical.height()) }));
    painter.drawImage(QRectF(topLeft, bottomRight), *image);
}
