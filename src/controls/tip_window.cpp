// Two columns, parted by a line, each as wide as its texts up to a limit.

#include "controls/tip_window.h"

#include <QApplication>
#include <QPainter>

namespace {

constexpr int kWidest = 200;
constexpr int kBetween = 16; // the separator with eight pixels on either side
constexpr int kMargin = 4;

QString left(const QString& line)
{
    return line.section(u',', 0, 0);
}

QString right(const QString& line)
{
    return line.section(u',', 1);
}

} // namespace

CTipWnd::CTipWnd(QWidget* frame)
    : QWidget(frame)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
}

void CTipWnd::Show(const QStringList& lines, int x, int y)
{
    if (lines.isEmpty())
        return hide();
    setFont(QApplication::font("QMenu")); // the desktop may have changed it since
    m_lines = lines;
    m_leftWidth = m_rightWidth = m_leftHeight = m_rightHeight = 0;
    const QFontMetrics metrics(font());
    for (const QString& line : lines) {
        const QSize name = metrics.size(Qt::TextSingleLine, left(line));
        const QSize value = metrics.size(Qt::TextSingleLine, right(line));
        m_leftWidth = std::min(kWidest, std::max(m_leftWidth, name.width()));
        m_rightWidth = std::min(kWidest, std::max(m_rightWidth, value.width()));
        m_leftHeight = std::max(m_leftHeight, name.height());
        m_rightHeight = std::max(m_rightHeight, value.height());
    }
    const int lineHeight = std::max(m_leftHeight, m_rightHeight) + 4;
    QRect place(x, y, m_leftWidth + kBetween + m_rightWidth, 4 + lineHeight * int(lines.size()));
    if (const QWidget* frame = parentWidget()) {
        place.translate(
            std::min(0, frame->width() - (place.x() + place.width())),
            std::min(0, frame->height() - (place.y() + place.height())));
    }
    setGeometry(place);
    setAccessibleName(lines.join(u'\n'));
    show();
    raise();
    update();
}

void CTipWnd::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::ToolTipBase));
    painter.setPen(palette().color(QPalette::ToolTipText));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    const int separator = m_leftWidth + kBetween / 2;
    painter.drawLine(separator, 0, separator, height());
    const int lineHeight = std::max(m_leftHeight, m_rightHeight) + 4;
    const auto column = [&](int x, int y, int wide, const QString& text) {
        painter.drawText(
            QRect(x, y, wide, lineHeight), Qt::AlignVCenter | Qt::TextSingleLine,
            painter.fontMetrics().elidedText(text, Qt::ElideRight, wide));
    };
    for (int line = 0; line < int(m_lines.size()); ++line) {
        const int y = 2 + line * lineHeight;
        column(kMargin, y, m_leftWidth, left(m_lines[line]));
        column(separator + kMargin, y, m_rightWidth, right(m_lines[line]));
    }
}
