// What the grid paints and where: only the rows in view are drawn and measured.

#include "controls/grid.h"

#include "controls/cell_editors.h"
#include "controls/grid_parts.h"

#include <QHelpEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QToolTip>

namespace {

constexpr int kIndent = 12; // of each level of a tree; a fold box with its margin
constexpr int kBox = 8; // side of a fold box
constexpr int kMargin = 2; // between lines and text
constexpr int kButtonWidth = 16;
constexpr int kWidestFit = 600;

} // namespace

int CSGrid::TopRow() const
{
    return verticalScrollBar()->value();
}

int CSGrid::VisibleRows() const
{
    return (viewport()->height() + GetRowHeight() - 1) / GetRowHeight();
}

int CSGrid::PageRows() const
{
    return std::max(1, viewport()->height() / GetRowHeight());
}

QSize CSGrid::sizeHint() const
{
    return { 480, 240 };
}

void CSGrid::LayOutChildren()
{
    const int left = m_rowSelector ? GridRowSelector::widthFor(*this) : 0;
    const int top = m_header ? GridHeader::heightFor(*this) : 0;
    setViewportMargins(left, top, 0, 0);
    const QRect inside = viewport()->geometry();
    if (m_header)
        m_header->setGeometry(inside.left(), inside.top() - top, inside.width(), top);
    if (m_rowSelector)
        m_rowSelector->setGeometry(inside.left() - left, inside.top(), left, inside.height());
    if (m_corner)
        m_corner->setGeometry(inside.left() - left, inside.top() - top, left, top);
}

void CSGrid::RecalcLayout()
{
    TakeStretchBack();
    const int wide = viewport()->width();
    if (CSGridCol* last = GetCol(GetColumnCount() - 1); last && AutoFillRight() && last->m_right < wide) {
        m_stretch = wide - last->m_right;
        last->m_right = wide;
    }
    horizontalScrollBar()->setRange(0, std::max(0, GetLogicalRight() - wide));
    horizontalScrollBar()->setPageStep(wide);
    horizontalScrollBar()->setSingleStep(GetRowHeight());
    verticalScrollBar()->setRange(0, std::max(0, GetRowCount() - PageRows()));
    verticalScrollBar()->setPageStep(PageRows());
    PlaceEditor();
    Repaint();
}

void CSGrid::Repaint()
{
    if (!isVisible())
        return;
    viewport()->update();
    if (m_rowSelector)
        m_rowSelector->update();
    RefreshHeader();
}

void CSGrid::RefreshHeader()
{
    if (m_header)
        m_header->update();
}

// The page is cheap to draw, and finding out whether the row is in view is not much cheaper.
void CSGrid::RefreshCell(CSGridCell&)
{
    if (isVisible())
        viewport()->update();
}

void CSGrid::RefreshRow(CSGridRow&)
{
    Repaint();
}

void CSGrid::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    LayOutChildren();
    RecalcLayout();
}

void CSGrid::scrollContentsBy(int, int)
{
    PlaceEditor();
    Repaint();
}

void CSGrid::changeEvent(QEvent* event)
{
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::EnabledChange)
        Repaint();
}

QRect CSGrid::CellRect(int row, int column) const
{
    const CSGridCol* found = GetCol(column);
    if (!found)
        return {};
    return { found->GetLeft() - horizontalScrollBar()->value(), (row - TopRow()) * GetRowHeight(),
             found->GetWidth(), GetRowHeight() };
}

int CSGrid::TreeIndent(const CSGridRow& row) const
{
    if (!row.IsTreeRow())
        return 0;
    return (static_cast<const CSGridTreeRow&>(row).GetParentDepth() + 1) * kIndent;
}

QRect CSGrid::FoldBoxRect(int index) const
{
    const CSGridTreeRow* row = GetTreeRow(index);
    if (!row || !row->IsParentRow())
        return {};
    const QRect cell = CellRect(index, 0);
    return { cell.left() + TreeIndent(*row) - kIndent + kMargin, cell.top() + (cell.height() - kBox) / 2,
             kBox, kBox };
}

QRect CSGrid::CellTextRect(int row, int column) const
{
    const CSGridCell* cell = GetCell(row, column);
    if (!cell)
        return {};
    QRect rect = CellRect(row, column).adjusted(0, 0, -1, -1); // the lines
    if (column == 0)
        rect.setLeft(rect.left() + TreeIndent(*cell->GetRow()));
    if (cell->IsRightButton())
        rect.setRight(rect.right() - kButtonWidth);
    return rect;
}

bool CSGrid::PtToCell(const QPoint& point, int& row, int& column, bool* onButton) const
{
    row = point.y() < 0 ? -1 : TopRow() + point.y() / GetRowHeight();
    if (!AssertValidRow(row))
        row = -1;
    column = -1;
    const int x = point.x() + horizontalScrollBar()->value();
    for (int index = 0; index < GetColumnCount() && column < 0; ++index)
        if (x >= GetCol(index)->GetLeft() && x < GetCol(index)->GetRight())
            column = index;
    const CSGridCell* cell = GetCell(row, column);
    if (onButton)
        *onButton = cell && cell->IsRightButton() && point.x() > CellTextRect(row, column).right();
    return cell != nullptr;
}

void CSGrid::EnsureVisible(int row, int column)
{
    if (AssertValidRow(row)) {
        if (row < TopRow())
            verticalScrollBar()->setValue(row);
        else if (row >= TopRow() + PageRows())
            verticalScrollBar()->setValue(row - PageRows() + 1);
    }
    if (const CSGridCol* found = GetCol(column)) {
        const int left = horizontalScrollBar()->value();
        if (found->GetRight() > left + viewport()->width())
            horizontalScrollBar()->setValue(found->GetRight() - viewport()->width());
        if (found->GetLeft() < horizontalScrollBar()->value())
            horizontalScrollBar()->setValue(found->GetLeft());
    }
}

void CSGrid::FitColWidth(int column)
{
    if (!AssertValidCol(column))
        return;
    int wide = fontMetrics().horizontalAdvance(GetCol(column)->GetName()) + 4 * kMargin;
    const int last = std::min(GetRowCount(), TopRow() + VisibleRows());
    for (int row = TopRow(); row < last; ++row) {
        const int around = CellRect(row, column).width() - CellTextRect(row, column).width();
        wide = std::max(
            wide, fontMetrics().horizontalAdvance(GetItemText(row, column)) + around + 2 * kMargin + 2);
    }
    SetColWidth(column, std::min(wide, kWidestFit));
}

void CSGrid::paintEvent(QPaintEvent*)
{
    OnBeforeRefresh();
    QPainter painter(viewport());
    painter.setFont(font());
    painter.fillRect(viewport()->rect(), QColor(0xFF, 0xFF, 0xFF));
    const int last = std::min(GetRowCount(), TopRow() + VisibleRows());
    for (int index = TopRow(); index < last; ++index)
        DrawRow(painter, index);
}

void CSGrid::DrawRow(QPainter& painter, int index)
{
    CSGridRow& row = *GetRow(index);
    const bool texts = OnRefresh(row) != 0;
    for (int column = 0; column < GetColumnCount(); ++column) {
        const QRect rect = CellRect(index, column);
        CSGridCell* cell = row.GetCell(column);
        if (!cell || !rect.intersects(viewport()->rect()))
            continue;
        painter.fillRect(rect, cell->GetCol()->GetBackColor());
        if (IsRowSelected(index) || IsColSelected(column))
            painter.fillRect(rect, palette().color(QPalette::Highlight));
        if (texts && OnRefresh(*cell) && cell != m_editedCell)
            DrawCell(painter, *cell, index, rect);
        if (column == 0 && row.IsTreeRow())
            DrawTree(painter, static_cast<CSGridTreeRow&>(row), rect);
        // Filled, so that lines meet without gaps at every pixel ratio.
        painter.fillRect(rect.right(), rect.top(), 1, rect.height(), GetLineColor());
        painter.fillRect(rect.left(), rect.bottom(), rect.width(), 1, GetLineColor());
    }
    if (m_active && index == m_selectedItem && !IsEditing()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight).darker(), 1, Qt::DotLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(
            CellRect(index, std::min(m_activeColumn, GetColumnCount() - 1)).adjusted(0, 0, -2, -2));
    }
}

void CSGrid::DrawCell(QPainter& painter, CSGridCell& cell, int rowIndex, const QRect& rect)
{
    const CSGridCol& column = *cell.GetCol();
    const bool selected = IsRowSelected(rowIndex) || IsColSelected(column.GetIndex());
    const QRect inside = CellTextRect(rowIndex, column.GetIndex());
    painter.save();
    painter.setClipRect(rect);
    if (cell.IsRightButton()) {
        QStyleOptionButton option;
        option.initFrom(this);
        option.rect = QRect(inside.right() + 1, rect.top(), kButtonWidth, rect.height() - 1);
        option.text = QStringLiteral("…");
        style()->drawControl(QStyle::CE_PushButton, &option, &painter, this);
    }
    const QColor colour = selected ? palette().color(QPalette::HighlightedText) : column.GetTextColor();
    painter.setPen(colour);
    if (OnDrawCell(painter, cell, inside)) {
    } else if (column.IsCheckButton()) {
        const int side = std::min(inside.height() - 2, 11);
        QRect box(0, 0, side, side);
        box.moveCenter(inside.center());
        painter.fillRect(box, QColor(0xFF, 0xFF, 0xFF));
        painter.setPen(QColor(0x50, 0x50, 0x50));
        painter.drawRect(box.adjusted(0, 0, -1, -1));
        if (int(cell) != 0) {
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(QPen(QColor(0, 0, 0), 1.6));
            const QPointF mark[] = { { box.left() + side * 0.2, box.top() + side * 0.5 },
                                     { box.left() + side * 0.42, box.top() + side * 0.75 },
                                     { box.left() + side * 0.82, box.top() + side * 0.22 } };
            painter.drawPolyline(mark, 3);
        }
    } else if (!cell.GetText().isEmpty()) {
        const QRect text = inside.adjusted(kMargin, 0, -kMargin, 0);
        painter.drawText(
            text,
            Qt::TextSingleLine | Qt::AlignVCenter | (column.IsCenter() ? Qt::AlignHCenter : Qt::AlignLeft),
            painter.fontMetrics().elidedText(cell.GetText(), Qt::ElideRight, text.width()));
    }
    painter.restore();
}

void CSGrid::DrawTree(QPainter& painter, CSGridTreeRow& row, const QRect& cell)
{
    const int depth = row.GetParentDepth();
    const int middle = cell.top() + cell.height() / 2;
    const auto lineX = [&](int level) { return cell.left() + level * kIndent + kMargin + kBox / 2; };
    painter.save();
    painter.setClipRect(cell);
    if (TreeLine() && depth > 0) {
        painter.setPen(QPen(QColor(0x80, 0x80, 0x80), 0, Qt::DotLine));
        const CSGridTreeRow* parent = row.GetParentRow();
        const bool last = parent->GetLastChildRow() == &row;
        painter.drawLine(lineX(depth - 1), cell.top(), lineX(depth - 1), last ? middle : cell.bottom());
        painter.drawLine(lineX(depth - 1), middle, lineX(depth), middle);
        for (int level = depth - 2; level >= 0; --level, parent = parent->GetParentRow())
            if (parent->GetParentRow()->GetLastChildRow() != parent)
                painter.drawLine(lineX(level), cell.top(), lineX(level), cell.bottom());
    }
    if (const QRect box = FoldBoxRect(row.GetIndex()); row.IsParentRow()) {
        painter.fillRect(box, QColor(0xFF, 0xFF, 0xFF));
        painter.setPen(QColor(0x50, 0x50, 0x50));
        painter.drawRect(box);
        const QPoint centre(box.left() + kBox / 2, box.top() + kBox / 2);
        painter.drawLine(box.left() + 2, centre.y(), box.left() + kBox - 2, centre.y());
        if (!row.IsChildVisible())
            painter.drawLine(centre.x(), box.top() + 2, centre.x(), box.top() + kBox - 2);
    }
    painter.restore();
}

bool CSGrid::ShowTip(const QPoint& point, const QPoint& globalPoint)
{
    int row = -1, column = -1;
    bool onButton = false;
    TString tip;
    QRect rect;
    if (PtToCell(point, row, column, &onButton)) {
        CSGridCell& cell = *GetCell(row, column);
        rect = CellRect(row, column);
        const int wide = CellTextRect(row, column).width() - 2 * kMargin;
        if (onButton ? !OnCellButtonTip(cell, tip) : !OnCellTip(cell, tip))
            tip = !onButton && !cell.GetCol()->IsCheckButton()
                    && fontMetrics().horizontalAdvance(cell.GetText()) > wide
                ? cell.GetText()
                : TString();
    }
    QToolTip::showText(globalPoint, tip, viewport(), rect);
    return true;
}

void CSGrid::PlaceEditor()
{
    if (!m_editedCell || !m_editor)
        return;
    const int row = m_editedCell->GetRow()->GetIndex();
    const int column = m_editedCell->GetCol()->GetIndex();
    m_editor->Place(CellTextRect(row, column));
}
