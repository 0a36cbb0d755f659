// Ticking and editing in place, with mouse and keys, in a list as the header settings have it.
#include "controls/tree_list.h"
#include "support.h"
#include "widgets/theme.h"

#include <QAccessible>
#include <QClipboard>
#include <QHeaderView>
#include <QHelpEvent>
#include <QInputMethodEvent>
#include <QStyle>
#include <QToolTip>

namespace {

class TreeList : public ::testing::Test {
protected:
    TreeList()
    {
        list.SetColumns({ "show", "name" }, { 180, 180 });
        list.SetItemValue(*root, "Trees");
        for (SelTreeItem* item : { number, size, width, height, count })
            list.SetItemValue(*item, item->text(0) + '!');
        list.expandAll();
        list.ShowWhatCounts();
        window.resize(420, 300);
        list.setGeometry(0, 0, 420, 240);
        other.setGeometry(0, 250, 100, 30);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
        list.setFocus();
    }

    QPoint box(SelTreeItem* item) const
    {
        const QRect place = list.visualItemRect(item);
        return { place.left() + 10, place.center().y() };
    }
    QPoint cell(SelTreeItem* item, int column) const
    {
        return { list.columnViewportPosition(column) + list.columnWidth(column) - 20,
                 list.visualItemRect(item).center().y() };
    }
    void click(QPoint at, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseClick(list.viewport(), button, {}, at);
    }
    // As the hand does it: press, release, the double click, release.
    void doubleClick(QPoint at)
    {
        click(at);
        QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, at);
        QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, at);
        QCoreApplication::processEvents();
    }
    QLineEdit* editor() const { return qobject_cast<QLineEdit*>(QApplication::focusWidget()); }
    // To the editor, or else to the list; an editor gives its text back when events are handled.
    void key(Qt::Key code, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(QApplication::focusWidget(), code, modifiers);
        QCoreApplication::processEvents();
    }
    // As an input method gives it.
    void compose(const QString& text)
    {
        QInputMethodEvent event;
        event.setCommitString(text);
        QApplication::sendEvent(QApplication::focusWidget(), &event);
    }
    void type(const QString& text)
    {
        ASSERT_TRUE(editor());
        compose(text);
    }
    // Ticks of number, size, width, height, count.
    std::string ticks() const
    {
        std::string all;
        for (const SelTreeItem* item : { number, size, width, height, count })
            all += list.GetSelState(item) == CSelTreeCtrl::kChecked ? (item->isDisabled() ? 'x' : 'X')
                                                                    : (item->isDisabled() ? 'o' : 'O');
        return all;
    }

    QWidget window;
    CTreeListCtrl list{ &window };
    QLineEdit other{ &window };
    SelTreeItem* root = list.AddItem("table", nullptr, CSelTreeCtrl::kNoBox);
    SelTreeItem* number = list.AddItem("number", 1, root, CSelTreeCtrl::kChecked);
    SelTreeItem* size = list.AddItem("size", 2, root, CSelTreeCtrl::kChecked);
    SelTreeItem* width = list.AddItem("width", 3, size, CSelTreeCtrl::kChecked);
    SelTreeItem* height = list.AddItem("高度", 4, size, CSelTreeCtrl::kUnchecked);
    SelTreeItem* count = list.AddItem("count", 5, root, CSelTreeCtrl::kUnchecked);
};

} // namespace

TEST_F(TreeList, ClicksTickOnTheBoxAlone)
{
    EXPECT_EQ(ticks(), "XXXOO");
    click(box(number));
    EXPECT_EQ(ticks(), "OXXOO");
    click(cell(number, 0));
    click(cell(number, 1));
    click(box(count), Qt::RightButton);
    EXPECT_EQ(ticks(), "OXXOO");
    click(box(height));
    EXPECT_EQ(ticks(), "OXXXO");
    click(box(size)); // greys what is below, which keeps its state and cannot be ticked
    click(box(width));
    EXPECT_EQ(ticks(), "OOxxO");
    click(box(size));
    EXPECT_EQ(ticks(), "OXXXO");
    doubleClick(box(size)); // twice is as before, and folds nothing
    EXPECT_EQ(ticks(), "OXXXO");
    EXPECT_TRUE(size->isExpanded());
    // A press that slips off the box is no click.
    QTest::mousePress(list.viewport(), Qt::LeftButton, {}, box(count));
    QTest::mouseRelease(list.viewport(), Qt::LeftButton, {}, cell(count, 0));
    EXPECT_EQ(ticks(), "OXXXO");
}

TEST_F(TreeList, ClicksEditTheValueAlone)
{
    doubleClick(cell(size, 0));
    EXPECT_FALSE(editor());
    EXPECT_FALSE(size->isExpanded());
    doubleClick(cell(size, 0));
    EXPECT_TRUE(size->isExpanded());

    doubleClick(cell(size, 1));
    ASSERT_TRUE(editor());
    EXPECT_TRUE(size->isExpanded());
    EXPECT_EQ(editor()->selectedText(), "size!");
    type("规格");
    click(cell(count, 0)); // leaves the editor
    EXPECT_EQ(list.GetItemValue(*size), "规格");
    EXPECT_EQ(list.currentItem(), count);

    // A second, slow click on the value.
    click(cell(count, 1));
    click(cell(count, 1));
    ASSERT_TRUE(QTest::qWaitFor([&] { return editor() != nullptr; }));
    type("n");
    other.setFocus();
    EXPECT_EQ(list.GetItemValue(*count), "n");

    click(box(size)); // what is greyed is not edited
    doubleClick(cell(width, 1));
    EXPECT_FALSE(editor() && editor() != &other);
}

TEST_F(TreeList, KeysWalkTickAndEdit)
{
    list.setCurrentItem(root);
    key(Qt::Key_Space); // no box
    key(Qt::Key_Down);
    key(Qt::Key_Space);
    EXPECT_EQ(ticks(), "OXXOO");
    key(Qt::Key_F2); // the value, wherever the cursor stands
    ASSERT_TRUE(editor());
    EXPECT_EQ(editor()->accessibleName(), "number");
    type("No.");
    key(Qt::Key_Escape);
    EXPECT_FALSE(editor());
    EXPECT_EQ(list.GetItemValue(*number), "number!");
    key(Qt::Key_F2);
    type("No.");
    key(Qt::Key_Tab); // to the next value
    EXPECT_EQ(list.GetItemValue(*number), "No.");
    ASSERT_TRUE(editor());
    EXPECT_EQ(editor()->text(), "size!");
    key(Qt::Key_Tab);
    key(Qt::Key_Tab);
    ASSERT_TRUE(editor());
    EXPECT_EQ(editor()->text(), "高度!");
    key(Qt::Key_Backtab);
    ASSERT_TRUE(editor());
    type("w");
    key(Qt::Key_Return);
    EXPECT_EQ(list.GetItemValue(*width), "w");
    EXPECT_FALSE(editor());
    key(Qt::Key_Space); // ticks in any column
    EXPECT_EQ(ticks(), "OXOOO");
    EXPECT_EQ(QApplication::focusWidget(), &list);

    key(Qt::Key_End);
    EXPECT_EQ(list.currentItem(), count);
    key(Qt::Key_Home);
    EXPECT_EQ(list.currentItem(), root);
}

TEST_F(TreeList, TypingFindsNames)
{
    list.setCurrentItem(root);
    QTest::keyClicks(&list, "co");
    EXPECT_EQ(list.currentItem(), count);
    EXPECT_EQ(list.GetItemValue(*count), "count!");
    QTest::qWait(QApplication::keyboardInputInterval() + 50);
    compose("高");
    EXPECT_EQ(list.currentItem(), height);
    key(Qt::Key_Space);
    EXPECT_EQ(ticks(), "XXXXO");
}

// What comes from elsewhere by the clipboard must not break the document that the text is written into.
TEST_F(TreeList, ValuesHoldPrintableTextAlone)
{
    list.setCurrentItem(count);
    key(Qt::Key_F2);
    QApplication::clipboard()->setText(
        QStringLiteral("a\x01"
                       "b\tc\nd")
        + QChar(0xD800) + QChar(0xFFFE) + QStringLiteral("冠幅𠮷"));
    ASSERT_TRUE(editor());
    editor()->paste();
    list.FinishEditing();
    EXPECT_EQ(list.GetItemValue(*count), QStringLiteral("a b c d\uFFFD 冠幅𠮷"));
    EXPECT_FALSE(editor());
}

TEST_F(TreeList, TooltipsShowWhatIsCutOff)
{
    list.SetItemValue(*count, QString(80, u'树'));
    const auto tipAt = [&](QPoint at) {
        QToolTip::hideText();
        QHelpEvent event(QEvent::ToolTip, at, list.viewport()->mapToGlobal(at));
        QApplication::sendEvent(list.viewport(), &event);
        return QToolTip::isVisible() ? QToolTip::text() : QString();
    };
    EXPECT_EQ(tipAt(cell(number, 1)), "");
    EXPECT_EQ(tipAt(cell(count, 1)), QString(80, u'树'));
    QToolTip::hideText();
}

namespace {

double luminance(QRgb colour)
{
    const auto linear = [](int channel) {
        const double c = channel / 255.0;
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(qRed(colour)) + 0.7152 * linear(qGreen(colour)) + 0.0722 * linear(qBlue(colour));
}

// Contrast as the Web Content Accessibility Guidelines 2.1 define it; they ask for 3 of what marks a control.
double contrast(QRgb a, QRgb b)
{
    const double la = luminance(a), lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

} // namespace

TEST_F(TreeList, EmptyBoxesAreSeenInTheDark)
{
    const QString style = QApplication::style()->name();
    const QPalette palette = QApplication::palette();
    kcuiSetTheme(KcUiTheme::Dark);
    CTreeListCtrl dark;
    const SelTreeItem* const item = dark.AddItem({}, nullptr, CSelTreeCtrl::kUnchecked);
    const QImage row = dark.viewport()->grab(dark.visualItemRect(item)).toImage();
    const QRgb ground = dark.palette().color(QPalette::Base).rgb();
    ASSERT_LT(luminance(ground), 0.1);
    double edge = 0;
    for (int x = 0; x < row.width(); ++x)
        edge = std::max(edge, contrast(row.pixel(x, row.height() / 2), ground));
    EXPECT_GE(edge, 3);
    QApplication::setStyle(style);
    QApplication::setPalette(palette);
}

TEST_F(TreeList, ScreenReadersFindNamesValuesAndTicks)
{
    list.setAccessibleName("headers");
    QAccessibleInterface* const whole = QAccessible::queryAccessibleInterface(&list);
    ASSERT_TRUE(whole && whole->tableInterface());
    EXPECT_EQ(whole->text(QAccessible::Name), "headers");
    EXPECT_EQ(whole->tableInterface()->rowCount(), 6);
    EXPECT_EQ(whole->tableInterface()->columnDescription(1), "name");
    const auto at = [&](int row, int column) { return whole->tableInterface()->cellAt(row, column); };
    EXPECT_EQ(at(2, 0)->text(QAccessible::Name), "size");
    EXPECT_EQ(at(2, 0)->text(QAccessible::Description), "size!");
    EXPECT_EQ(at(2, 1)->text(QAccessible::Name), "size!");
    EXPECT_FALSE(at(0, 0)->state().checkable);
    EXPECT_TRUE(at(2, 0)->state().checkable && at(2, 0)->state().checked);
    EXPECT_TRUE(at(5, 0)->state().checkable && !at(5, 0)->state().checked);
    // A state set from outside ticks as a click does.
    size->setCheckState(0, Qt::Unchecked);
    EXPECT_FALSE(at(2, 0)->state().checked);
    EXPECT_EQ(ticks(), "XOxoO");
    width->setCheckState(0, Qt::Unchecked);
    EXPECT_EQ(ticks(), "XOxoO");
}

namespace {

QStringList heard;

void hear(QAccessibleEvent* event)
{
    if (event->type() == QAccessible::StateChanged)
        heard += event->accessibleInterface()->text(QAccessible::Name);
}

} // namespace

TEST_F(TreeList, ScreenReadersAreToldOfTicks)
{
    // The platform connects to the reader in its own time.
    if (qEnvironmentVariableIsSet("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"))
        (void)QTest::qWaitFor([] { return QAccessible::isActive(); });
    if (!QAccessible::isActive())
        GTEST_SKIP() << "no screen reader may listen on this platform; "
                        "run it with xcb and QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1";
    list.setCurrentItem(height);
    const auto before = QAccessible::installUpdateHandler(hear);
    heard.clear();
    key(Qt::Key_Space);
    QAccessible::installUpdateHandler(before);
    EXPECT_EQ(heard, QStringList{ "高度" });
}
