// A small window beside a point of the main window: lines of a name and a value, shown while a command runs.
#pragma once

#include <QStringList>
#include <QWidget>

class CTipWnd : public QWidget {
public:
    /// A child of the frame, hidden until `Show`.
    explicit CTipWnd(QWidget* frame);

    /// Shows lines "name,value" with the top left corner at a point of the frame, moved left or up where it
    /// would cross the frame's edge. Neither focus nor mouse go to it. Without lines it hides.
    void Show(const QStringList& lines, int x, int y);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QStringList m_lines;
    int m_leftWidth = 0, m_rightWidth = 0, m_leftHeight = 0, m_rightHeight = 0;
};
