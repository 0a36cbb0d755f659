// The picture of the drawing: computed when something changed, moved and stretched until then.

#include "db/spatial_index.h"
#include "gi/paint/painter_device.h"
#include "gi/paint/scene.h"
#include "ui/canvas.h"
#include "ui/palette.h"

#include <QPainter>

namespace {

KcGeMatrix3d toDevice(const KcUiScreenMap& map)
{
    const double scale = map.pixelsPerUnit();
    const QPointF origin = map.toPixel({ 0, 0 });
    return KcGeMatrix3d::fromAxes(
        { origin.x(), origin.y(), 0 }, { scale, 0, 0 }, { 0, -scale, 0 }, { 0, 0, scale });
}

} // namespace

void KcUiCanvas::renderFrame()
{
    m_frameTimer.stop();
    const double ratio = devicePixelRatioF();
    const QSize pixels = (QSizeF(QWidget::size()) * ratio).toSize();
    if (pixels.isEmpty())
        return;
    if (m_frame.size() != pixels)
        m_frame = QImage(pixels, QImage::Format_RGB32);
    m_frame.fill(kcuiPalette(m_dark).background);
    KcUiScreenMap shown = map();
    m_frameView = shown.view;
    m_frameStale = false;
    if (m_document) {
        shown.size = QSizeF(pixels);
        QPainter painter(&m_frame);
        painter.setRenderHint(QPainter::Antialiasing);
        KcGiPainterDevice::Options options;
        options.background = kcuiPalette(m_dark).background.rgb();
        options.smallest = 1.0;
        KcGiPainterDevice device(painter, options);
        KcGiSceneOptions scene;
        scene.toDevice = toDevice(shown);
        scene.area = QRectF(QPointF(0, 0), QSizeF(pixels));
        scene.background = options.background;
        KcGiScene drawn(m_document->database(), device, scene);
        const KcDbObjectId space = m_document->database().currentSpace();
        drawn.draw(m_document->database().spatialIndex().crossing(space, *drawn.window()));
        // The selection once more, in the colour of marks.
        std::vector<KcDbObjectId> marked(m_highlighted.begin(), m_highlighted.end());
        marked.insert(marked.end(), m_document->pickFirst.ids().begin(), m_document->pickFirst.ids().end());
        if (!marked.empty()) {
            scene.oneColor = kcuiPalette(m_dark).mark.rgb();
            KcGiScene marks(m_document->database(), device, scene);
            marks.draw(marked);
        }
    }
    m_frame.setDevicePixelRatio(ratio);
    QWidget::update();
}

void KcUiCanvas::drawFrame(QPainter& painter)
{
    painter.fillRect(rect(), kcuiPalette(m_dark).background);
    if (m_frame.isNull())
        return;
    // Until the picture of this view is there, the last one is moved and stretched into place.
    const KcUiScreenMap now = map();
    const KcUiScreenMap then{ m_frameView, QSizeF(QWidget::size()) };
    if (m_frameView == now.view) {
        painter.drawImage(QPointF(0, 0), m_frame);
        return;
    }
    const QPointF topLeft = now.toPixel(then.toModel({ 0, 0 }));
    const QPointF bottomRight = now.toPixel(then.toModel({ double(width()), double(height()) }));
    painter.drawImage(QRectF(topLeft, bottomRight), m_frame);
}

void KcUiCanvas::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    drawFrame(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    drawAxes(painter);
    drawGrips(painter);
    drawRubberBand(painter);
    drawCursor(painter);
}
