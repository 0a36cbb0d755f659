// The windows around the cells: header, row selector, corner. Colours are the palette's.
#pragma once

#include <QPoint>
#include <QWidget>

class CSGrid;

class GridHeader : public QWidget {
public:
    explicit GridHeader(CSGrid& grid);
    static int heightFor(const CSGrid& grid);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool event(QEvent* event) override;

private:
    int columnAt(int x) const;
    /// The column whose right edge is there; -1 for none.
    int edgeAt(int x) const;
    int logical(int x) const;

    CSGrid& m_grid;
    int m_resized = -1, m_pressed = -1, m_target = -1, m_offset = 0;
    QPoint m_pressedAt;
    bool m_dragged = false;
};

class GridRowSelector : public QWidget {
public:
    explicit GridRowSelector(CSGrid& grid);
    static int widthFor(const CSGrid& grid);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    bool event(QEvent* event) override;

private:
    int rowAt(int y) const;

    CSGrid& m_grid;
    int m_pressed = -1, m_target = -1;
    QPoint m_pressedAt;
    bool m_dragged = false;
};

/// A click selects everything.
class GridCorner : public QWidget {
public:
    explicit GridCorner(CSGrid& grid);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    bool event(QEvent* event) override;

private:
    CSGrid& m_grid;
};
