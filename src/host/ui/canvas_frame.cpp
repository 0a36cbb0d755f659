// When the picture of the drawing is computed, and what is painted in which order.

#include "ui/canvas.h"
#include "ui/palette.h"

#include <QPainter>

void KcUiCanvas::PreviewHolder::show(const KcEdPreview& preview)
{
    std::vector<const KcDbEntity*> entities;
    entities.reserve(preview.size());
    for (const auto& entity : preview)
        entities.push_back(entity.get());
    canvas.m_picture.setPreview(std::move(entities));
    static_cast<QWidget&>(canvas).update();
}

void KcUiCanvas::renderFrame()
{
    m_frameTimer.stop();
    m_picture.setSize(QWidget::size(), devicePixelRatioF());
    const KcEdView view = map().view;
    if (!m_picture.isStale(view))
        return;
    QElapsedTimer clock;
    clock.start();
    m_picture.render(view);
    m_renderTime = clock.elapsed();
    m_marksTimer.start();
    QWidget::update();
}

// In slices, so that the mouse is not held up by a selection of very many.
void KcUiCanvas::showMarks()
{
    if (std::exchange(m_marksChanged, false)) {
        m_selected = m_document ? m_document->pickFirst.ids() : std::vector<KcDbObjectId>();
        std::vector<KcDbObjectId> marks = m_selected;
        marks.insert(marks.end(), m_highlighted.begin(), m_highlighted.end());
        m_picture.setMarks(std::move(marks));
        QWidget::update();
    }
    if (m_picture.markOn())
        QWidget::update();
    else
        m_marksTimer.stop();
}

void KcUiCanvas::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), kcuiPalette(m_dark).background);
    m_picture.draw(painter, map().view);
    painter.setRenderHint(QPainter::Antialiasing);
    drawAxes(painter);
    drawGrips(painter);
    drawRubberBand(painter);
    drawSelectionRectangle(painter);
    drawCursor(painter);
    drawSnap(painter);
}
