// Header, row selector and corner of the grid: painting, widths and places by dragging, selecting.

#include "controls/grid_parts.h"

#include "controls/grid.h"

#include <QApplication>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOption>
#include <QToolTip>

namespace {

constexpr int kGrip = 4; // pixels beside an edge in which it is taken hold of
constexpr int kSelectorWidth = 20;
constexpr int kMargin = 3;

void drawSection(QPainter& painter, const QRect& rect, const QWidget& widget, bool chosen)
{
    const QPalette& palette = widget.palette();
    painter.fillRect(rect, palette.color(chosen ? QPalette::Highlight : QPalette::Button));
    painter.setPen(palette.color(QPalette::Mid));
    painter.drawLine(rect.topRight(), rect.bottomRight());
    painter.drawLine(rect.bottomLeft(), rect.bottomRight());
    painter.setPen(palette.color(chosen ? QPalette::HighlightedText : QPalette::ButtonText));
}

bool dragBegins(const QPoint& from, const QPoint& to)
{
    return (from - to).manhattanLength() >= QApplication::startDragDistance();
}

bool showTip(QEvent* event, const QString& text, QWidget* widget)
{
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text, widget);
    return true;
}

} // namespace

GridHeader::GridHeader(CSGrid& grid)
    : QWidget(&grid)
    , m_grid(grid)
{
    setMouseTracking(true);
    show();
}

int GridHeader::heightFor(const CSGrid& grid)
{
    return grid.fontMetrics().height() + 2 * kMargin;
}

int GridHeader::logical(int x) const
{
    return x + m_grid.horizontalScrollBar()->value();
}

int GridHeader::columnAt(int x) const
{
    for (int index = 0; index < m_grid.GetColumnCount(); ++index)
        if (logical(x) >= m_grid.GetCol(index)->GetLeft() && logical(x) < m_grid.GetCol(index)->GetRight())
            return index;
    return -1;
}

int GridHeader::edgeAt(int x) const
{
    if (m_grid.IsColFixWidth())
        return -1;
    // Of columns drawn together the last one can be drawn apart again.
    for (int index = m_grid.GetColumnCount() - 1; index >= 0; --index)
        if (std::abs(logical(x) - m_grid.GetCol(index)->GetRight()) <= kGrip)
            return index;
    return -1;
}

void GridHeader::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Button));
    painter.setFont(m_grid.font());
    const int shift = m_grid.horizontalScrollBar()->value();
    for (int index = 0; index < m_grid.GetColumnCount(); ++index) {
        const CSGridCol& column = *m_grid.GetCol(index);
        const QRect section(column.GetLeft() - shift, 0, column.GetWidth(), height());
        if (!section.intersects(rect()))
            continue;
        drawSection(painter, section, *this, m_grid.IsColSelected(index));
        const QRect inside = section.adjusted(kMargin, 0, -kMargin, 0);
        painter.drawText(
            inside, Qt::AlignCenter,
            painter.fontMetrics().elidedText(column.GetName(), Qt::ElideRight, inside.width()));
    }
    if (m_dragged && m_target >= 0) {
        const CSGridCol& column = *m_grid.GetCol(m_target);
        const int x = (m_target > m_pressed ? column.GetRight() : column.GetLeft()) - shift;
        painter.fillRect(QRect(x - 1, 0, 3, height()), palette().color(QPalette::Highlight));
    }
}

void GridHeader::mousePressEvent(QMouseEvent* event)
{
    m_grid.setFocus();
    if (event->button() != Qt::LeftButton)
        return;
    m_grid.EndEdit();
    m_pressedAt = event->pos();
    m_dragged = false;
    m_target = -1;
    m_resized = edgeAt(event->pos().x());
    m_pressed = m_resized >= 0 ? -1 : columnAt(event->pos().x());
    if (m_resized >= 0)
        m_offset = m_grid.GetCol(m_resized)->GetRight() - logical(event->pos().x());
}

void GridHeader::mouseMoveEvent(QMouseEvent* event)
{
    const int x = event->pos().x();
    if (!(event->buttons() & Qt::LeftButton)) {
        setCursor(edgeAt(x) >= 0 ? Qt::SplitHCursor : Qt::ArrowCursor);
        return;
    }
    if (m_resized >= 0) {
        m_grid.SetColWidth(m_resized, logical(x) + m_offset - m_grid.GetCol(m_resized)->GetLeft());
        return;
    }
    if (m_pressed < 0 || m_grid.IsColPosFix())
        return;
    if (!m_dragged && dragBegins(m_pressedAt, event->pos()))
        m_dragged = m_grid.OnBeginMoveCol(m_pressed) != 0;
    if (!m_dragged)
        return;
    const int target = columnAt(x);
    m_target = target >= 0 && target != m_pressed && m_grid.OnMovingCol(m_pressed, target) ? target : -1;
    update();
}

void GridHeader::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const int pressed = std::exchange(m_pressed, -1);
    const int target = std::exchange(m_target, -1);
    const bool dragged = std::exchange(m_dragged, false);
    m_resized = -1;
    update();
    if (pressed < 0)
        return;
    if (dragged && target >= 0) {
        m_grid.OnMoveCol(pressed, target);
        m_grid.OnEndMoveCol(pressed, target);
        m_grid.OnDataChanged();
    } else if (!dragged) {
        m_grid.OnHeadClick(pressed, event->modifiers());
    }
}

void GridHeader::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (const int edge = edgeAt(event->pos().x()); edge >= 0)
        m_grid.FitColWidth(edge);
    else
        mousePressEvent(event);
}

void GridHeader::contextMenuEvent(QContextMenuEvent* event)
{
    if (CSGridCol* column = m_grid.GetCol(columnAt(event->pos().x())))
        m_grid.OnRClickCol(*column, event->globalPos());
}

bool GridHeader::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    CSGridCol* column = m_grid.GetCol(columnAt(static_cast<QHelpEvent*>(event)->pos().x()));
    TString tip;
    if (column && !m_grid.OnColTip(*column, tip)
        && m_grid.fontMetrics().horizontalAdvance(column->GetName()) > column->GetWidth() - 2 * kMargin)
        tip = column->GetName();
    return showTip(event, tip, this);
}

GridRowSelector::GridRowSelector(CSGrid& grid)
    : QWidget(&grid)
    , m_grid(grid)
{
    show();
}

int GridRowSelector::widthFor(const CSGrid&)
{
    return kSelectorWidth;
}

int GridRowSelector::rowAt(int y) const
{
    const int row = m_grid.TopRow() + y / m_grid.GetRowHeight();
    return y >= 0 && m_grid.AssertValidRow(row) ? row : -1;
}

void GridRowSelector::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Button));
    const int high = m_grid.GetRowHeight();
    const int last = std::min(m_grid.GetRowCount(), m_grid.TopRow() + m_grid.VisibleRows());
    for (int index = m_grid.TopRow(); index < last; ++index) {
        const QRect section(0, (index - m_grid.TopRow()) * high, width(), high);
        drawSection(painter, section, *this, m_grid.IsRowSelected(index));
        if (index != m_grid.GetSelectedItem())
            continue;
        QStyleOption option;
        option.initFrom(this);
        option.rect = section.adjusted(5, 3, -5, -3);
        style()->drawPrimitive(QStyle::PE_IndicatorArrowRight, &option, &painter, this);
    }
    if (m_dragged && m_target >= 0) {
        const int y = (m_target - m_grid.TopRow() + (m_target > m_pressed ? 1 : 0)) * high;
        painter.fillRect(QRect(0, y - 1, width(), 3), palette().color(QPalette::Highlight));
    }
}

void GridRowSelector::mousePressEvent(QMouseEvent* event)
{
    m_grid.setFocus();
    if (event->button() != Qt::LeftButton)
        return;
    m_grid.EndEdit();
    m_pressed = rowAt(event->pos().y());
    m_pressedAt = event->pos();
    m_dragged = false;
    m_target = -1;
    if (m_pressed < 0)
        return m_grid.UnSelect();
    int proposed = m_pressed;
    if (!m_grid.OnRowSelectChange(m_grid.GetSelectedItem(), proposed)) {
        m_pressed = -1;
        return;
    }
    if (m_grid.AssertValidRow(proposed))
        m_grid.ClickRow(proposed, event->modifiers());
    else
        m_grid.UnSelect();
    m_grid.SetSelectedItem(proposed);
}

void GridRowSelector::mouseMoveEvent(QMouseEvent* event)
{
    if (m_pressed < 0 || m_grid.IsRowPosFix() || !(event->buttons() & Qt::LeftButton))
        return;
    if (!m_dragged && dragBegins(m_pressedAt, event->pos()))
        m_dragged = m_grid.OnBeginMoveRow(m_pressed) != 0;
    if (!m_dragged)
        return;
    // Beside the rows in view the list moves on by a row.
    int target = rowAt(event->pos().y());
    if (event->pos().y() < 0)
        target = std::max(0, m_grid.TopRow() - 1);
    else if (target < 0)
        target = m_grid.GetRowCount() - 1;
    m_target = target >= 0 && target != m_pressed && m_grid.OnMovingRow(m_pressed, target) ? target : -1;
    if (target >= 0)
        m_grid.EnsureVisible(target);
    update();
}

void GridRowSelector::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const int pressed = std::exchange(m_pressed, -1);
    const int target = std::exchange(m_target, -1);
    const bool dragged = std::exchange(m_dragged, false);
    update();
    // A row of a tree has its place by its parent.
    if (!dragged || pressed < 0 || target < 0 || m_grid.IsTreeGrid())
        return;
    m_grid.OnMoveRow(pressed, target);
    m_grid.SelectOnly(target);
    m_grid.SetSelectedItem(target);
    m_grid.OnEndMoveRow(pressed, target);
    m_grid.OnDataChanged();
}

void GridRowSelector::contextMenuEvent(QContextMenuEvent* event)
{
    if (CSGridRow* row = m_grid.GetRow(rowAt(event->pos().y())))
        m_grid.OnRClickRow(*row, event->globalPos());
}

void GridRowSelector::wheelEvent(QWheelEvent* event)
{
    QApplication::sendEvent(m_grid.verticalScrollBar(), event);
}

bool GridRowSelector::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    CSGridRow* row = m_grid.GetRow(rowAt(static_cast<QHelpEvent*>(event)->pos().y()));
    TString tip;
    if (!row || !m_grid.OnRowTip(*row, tip))
        tip = {};
    return showTip(event, tip, this);
}

GridCorner::GridCorner(CSGrid& grid)
    : QWidget(&grid)
    , m_grid(grid)
{
    show();
}

void GridCorner::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    drawSection(painter, rect(), *this, false);
}

void GridCorner::mousePressEvent(QMouseEvent* event)
{
    m_grid.setFocus();
    if (event->button() == Qt::LeftButton && !m_grid.SingleSelect())
        m_grid.SelectAll();
}

void GridCorner::contextMenuEvent(QContextMenuEvent* event)
{
    m_grid.OnRClickQuad(event->globalPos());
}

bool GridCorner::event(QEvent* event)
{
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    TString tip;
    if (!m_grid.OnActiveQuadTip(tip))
        tip = {};
    return showTip(event, tip, this);
}
