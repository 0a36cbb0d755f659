// The tip window: its size and place, what it paints, and that it is in nobody's way.
#include "controls/tip_window.h"
#include "support.h"

namespace {

class TipWindow : public ::testing::Test {
protected:
    TipWindow()
    {
        frame.resize(600, 400);
        field.setGeometry(20, 20, 100, 30);
        frame.show();
        frame.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&frame));
        field.setFocus();
    }
    static QSize textSize(const QString& text)
    {
        return QFontMetrics(QApplication::font("QMenu")).size(Qt::TextSingleLine, text);
    }
    // The columns of the window, but for its frame, that hold something of another colour than its ground.
    static std::vector<int> columnsWithText(const QImage& picture, int from, int to)
    {
        const QRgb ground = picture.pixel(1, 1);
        std::vector<int> columns;
        for (int x = std::max(1, from); x < std::min(picture.width() - 1, to); ++x)
            for (int y = 1; y < picture.height() - 1; ++y)
                if (picture.pixel(x, y) != ground) {
                    columns.push_back(x);
                    break;
                }
        return columns;
    }

    QWidget frame;
    QLineEdit field{ &frame };
    CTipWnd tip{ &frame };
};

const QString kLong(60, u'樟');

} // namespace

TEST_F(TipWindow, IsAsLargeAsItsTextsUpToALimit)
{
    EXPECT_FALSE(tip.isVisible());
    tip.Show({ "树种,香樟", "胸径(cm),12", "备注" }, 30, 60);
    const int line = textSize("胸径(cm)").height() + 4;
    EXPECT_EQ(
        tip.geometry(),
        QRect(30, 60, textSize("胸径(cm)").width() + 16 + textSize("香樟").width(), 4 + 3 * line));

    ASSERT_GT(textSize(kLong).width(), 200);
    tip.Show({ "a," + kLong }, 30, 60);
    EXPECT_EQ(tip.size(), QSize(textSize("a").width() + 16 + 200, 4 + line));
    tip.Show({ kLong + ",b" }, 30, 60);
    EXPECT_EQ(tip.width(), 200 + 16 + textSize("b").width());

    // The desktop's texts grow while the program runs.
    const QFont usual = QApplication::font("QMenu");
    QFont larger = usual;
    larger.setPointSizeF(usual.pointSizeF() * 2);
    QApplication::setFont(larger, "QMenu");
    const QSize before = tip.size();
    tip.Show({ "名称,香樟" }, 30, 60);
    EXPECT_EQ(tip.height(), 4 + textSize("香樟").height() + 4);
    EXPECT_GT(tip.height(), before.height());
    QApplication::setFont(usual, "QMenu");
}

TEST_F(TipWindow, StaysInsideTheFrame)
{
    const struct {
        QPoint at;
        bool left, up;
    } rows[] = {
        { { 10, 10 }, false, false }, { { 595, 10 }, true, false },   { { 10, 395 }, false, true },
        { { 599, 399 }, true, true }, { { 5000, 5000 }, true, true },
    };
    for (const auto& row : rows) {
        tip.Show({ "名称,香樟" }, row.at.x(), row.at.y()); // the one that is shown moves
        EXPECT_EQ(tip.x(), row.left ? 600 - tip.width() : row.at.x());
        EXPECT_EQ(tip.y(), row.up ? 400 - tip.height() : row.at.y());
    }
    frame.resize(300, 200); // the next call knows the frame as it is then
    tip.Show({ "名称,香樟" }, 400, 300);
    EXPECT_TRUE(frame.rect().contains(tip.geometry()));
}

TEST_F(TipWindow, IsInNobodysWay)
{
    tip.Show({ "名称,香樟" }, 30, 25); // over the field
    EXPECT_TRUE(tip.isVisible());
    EXPECT_FALSE(tip.isWindow());
    EXPECT_EQ(QApplication::focusWidget(), &field);
    QTest::keyClicks(QApplication::focusWidget(), "typed");
    EXPECT_EQ(field.text(), "typed");
    EXPECT_EQ(frame.childAt(tip.geometry().center()), &field); // the mouse goes through
    EXPECT_EQ(tip.accessibleName(), "名称,香樟");
    tip.Show({}, 30, 25);
    EXPECT_FALSE(tip.isVisible());
    tip.Show({ "a,b" }, 30, 25);
    EXPECT_TRUE(tip.isVisible());
    tip.hide();
    EXPECT_FALSE(tip.isVisible());
    EXPECT_EQ(QApplication::focusWidget(), &field);
}

TEST_F(TipWindow, PaintsTwoColumnsWithALineBetweenThem)
{
    tip.Show({ "iii,", "," + kLong }, 30, 60);
    const QImage picture = tip.grab().toImage();
    const int left = textSize("iii").width(), separator = left + 8;
    for (int y = 1; y < picture.height() - 1; ++y)
        EXPECT_EQ(picture.pixel(separator, y), picture.pixel(0, y)) << y;
    EXPECT_FALSE(columnsWithText(picture, 0, separator).empty());
    const std::vector<int> right = columnsWithText(picture, separator + 1, picture.width());
    ASSERT_FALSE(right.empty());
    EXPECT_GE(right.front(), separator + 2);
    EXPECT_GT(right.back(), separator + 100);
    EXPECT_LT(right.back(), picture.width() - 2); // cut off inside the frame
}
