// Long work in the window: what the user sees of it, and how he stops it.
#include "hand.h"

#include "db/block_reference.h"
#include "dxf/drawing_file.h"
#include "ed/status_bar.h"

#include <QDialog>
#include <QProgressBar>
#include <QTemporaryDir>
#include <QToolButton>

using ui_test::Onlooker;

namespace {

class LongWorkInTheWindow : public ui_test::Hand {
protected:
    LongWorkInTheWindow()
    {
        window.activateWindow();
        QApplication::processEvents();
    }

    /// Large enough for a meter.
    QString largeDrawing()
    {
        QByteArray text = "0\nSECTION\n2\nENTITIES\n";
        const QByteArray layer(100, 'l');
        for (int i = 0; i < 40'000; ++i)
            text += "0\nLINE\n8\n" + layer + "\n10\n" + QByteArray::number(i) + "\n20\n0\n11\n0\n21\n9\n";
        text += "0\nENDSEC\n0\nEOF\n";
        QFile file(m_folder.filePath("large.dxf"));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
        return file.fileName();
    }
    QToolButton& stop() { return *window.findChild<QToolButton*>("cancelProgress"); }
    QProgressBar& bar() { return *window.findChild<QProgressBar*>("progress"); }
    /// A command that draws a line at each step until it is stopped.
    void slowCommand(int steps)
    {
        command([this, steps] {
            KcEdProgress meter("Working", steps);
            for (int i = 0; i < steps && !kcedProgressCancelled(); ++i) {
                addLine(i, 0, i, 1);
                meter.setPosition(i + 1);
            }
        });
    }
    size_t entities()
    {
        size_t count = 0;
        for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(database().modelSpace()))
            count += !id.isErased();
        return count;
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

// Faults: half a drawing in the place of the one that was open, a meter that stays, a stop remembered for the
// next work, Escape that does not reach it.
TEST_F(LongWorkInTheWindow, StoppedReadingLeavesTheOpenDrawingAsItWas)
{
    const QString large = largeDrawing();
    addLine(0, 0, 10, 10);
    KcApDocument* const before = &document();
    const QString title = window.windowTitle();
    enum { kButton, kEscape };
    for (const int how : { kButton, kEscape }) {
        int highest = 0;
        {
            const Onlooker onlooker([&] {
                highest = std::max(highest, bar().isVisible() ? bar().value() : 0);
                if (bar().value() < 30 || !stop().isVisible())
                    return;
                if (how == kButton)
                    QTest::mouseClick(&stop(), Qt::LeftButton);
                else
                    QTest::keyClick(&canvas(), Qt::Key_Escape);
            });
            EXPECT_FALSE(window.openDrawing(large));
        }
        EXPECT_GE(highest, 30);
        EXPECT_LT(highest, 60) << "it went on";
        EXPECT_FALSE(bar().isVisible());
        EXPECT_EQ(&document(), before);
        EXPECT_EQ(entities(), 1u);
        EXPECT_TRUE(document().isModified());
        EXPECT_EQ(window.windowTitle(), title);
        QApplication::processEvents();
        EXPECT_TRUE(history().contains("Stopped; ")) << history();
    }
    EXPECT_TRUE(window.openDrawing(large));
    EXPECT_EQ(entities(), 40'000u);
}

// While a drawing is read the window is looked at and repainted, but no command begins in the midst of it;
// what is typed waits.
TEST_F(LongWorkInTheWindow, NothingRunsWhileADrawingIsRead)
{
    const QString large = largeDrawing();
    int ran = 0, looks = 0;
    command([&] { ++ran; });
    {
        const Onlooker onlooker([&] {
            if (!bar().isVisible() || ++looks != 3)
                return;
            action(window, "New").trigger();
            action(window, "Undo").trigger();
            type("tested\r");
            canvas().zoom(2);
        });
        EXPECT_TRUE(window.openDrawing(large));
    }
    EXPECT_GT(looks, 50);
    EXPECT_EQ(ran, 0);
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(document().database().fileName(), large);
    run({ [&] { EXPECT_EQ(ran, 1); } });
    EXPECT_EQ(history().count("A command is working"), 2) << history();
}

// Faults: a window that stays because a drawing was being read, or goes without asking about the one before.
TEST_F(LongWorkInTheWindow, ClosingStopsReadingFirst)
{
    const QString large = largeDrawing();
    addLine(0, 0, 10, 10);
    int closings = 0;
    {
        const Onlooker onlooker([&] {
            if (bar().isVisible() && bar().value() >= 30 && closings++ < 2)
                window.close();
        });
        EXPECT_FALSE(window.openDrawing(large));
    }
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(entities(), 1u);
    run({ [] {}, [&] { answer(QMessageBox::No); } });
    EXPECT_FALSE(window.isVisible());
}

// A command that asks is stopped by the button and by Escape, keeps what it had done as one step, and what is
// asked next is not cancelled; one that does not ask shows a button that cannot be pressed.
TEST_F(LongWorkInTheWindow, CommandsAreStopped)
{
    slowCommand(100);
    bool byKey = false, stopped = false;
    auto onlooker = std::make_unique<Onlooker>([&] {
        if (stopped || !stop().isVisible() || bar().value() < 20)
            return;
        EXPECT_TRUE(stop().isEnabled());
        stopped = true;
        if (byKey)
            QTest::keyClick(&field(), Qt::Key_Escape);
        else
            QTest::mouseClick(&stop(), Qt::LeftButton);
    });
    const std::vector<std::function<void()>> round{
        [&] { type("tested\r"); },
        [&] {
            EXPECT_TRUE(stopped);
            EXPECT_GE(entities(), 20u);
            EXPECT_LT(entities(), 40u);
            type("U\r");
        },
        [&] {
            EXPECT_EQ(entities(), 0u);
            stopped = false;
            byKey = true;
        },
    };
    std::vector<std::function<void()>> both = round;
    both.insert(both.end(), round.begin(), round.end());
    run(both);
    onlooker.reset();
    EXPECT_FALSE(history().contains("*Cancel*")) << history();
    {
        KcEdProgress meter("Counting", 3);
        meter.setPosition(1);
        EXPECT_TRUE(stop().isVisible());
        EXPECT_FALSE(stop().isEnabled());
    }
    EXPECT_FALSE(stop().isVisible());
}

// The same of commands of the module, with the hand. Copies that stand stay, as one step; of a count that was
// not finished, nothing does.
TEST_F(LongWorkInTheWindow, RowsAndCountsAreStopped)
{
    ASSERT_TRUE(window.openDrawing(QStringLiteral(VERDELIS_SOURCE_DIR "/examples/planting-plan.dxf")));
    KcDbObjectId symbol;
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(database().modelSpace()))
        if (symbol.isNull() && KcDbRead<KcDbEntity>(id)->isKindOf(KcDbBlockReference::desc()))
            symbol = id;
    const KcDbObjectId path = addLine(0, 0, 100'000, 0);
    const size_t before = entities();
    size_t placed = 0;
    const auto line = [&](const QString& text) { return [this, text] { type(text + QLatin1Char('\r')); }; };
    const auto handle = [](KcDbObjectId id) { return QLatin1Char('#') + QString::number(id.handle(), 16); };
    const Onlooker onlooker([&] {
        if (stop().isVisible() && bar().value() >= 30)
            QTest::mouseClick(&stop(), Qt::LeftButton);
    });
    run({
        line("BLOCKARRAY"),
        line(handle(path)),
        line("0"),
        line("D"),
        line("4000"),
        line(handle(symbol)),
        [&] { press(Qt::Key_Return); },
        [&] {
            EXPECT_GT(entities(), before + 1000) << history();
            EXPECT_LT(entities(), before + 2000);
            EXPECT_FALSE(bar().isVisible());
            placed = entities();
        },
        line("TREENUMTOTABLE"),
        line("ALL"),
        [&] { press(Qt::Key_Return); },
        line("0,0"),
        [&] {
            EXPECT_EQ(entities(), placed);
            EXPECT_FALSE(bar().isVisible());
            EXPECT_TRUE(history().contains("已停止")) << history();
            type("U\r");
        },
        [&] { EXPECT_EQ(entities(), before); },
    });
}

// Half a tree array is of no use: nothing of it stays, and there is nothing to undo.
TEST_F(LongWorkInTheWindow, AStoppedTreeArrayLeavesNoTrace)
{
    const auto line = [&](const QString& text) { return [this, text] { type(text + QLatin1Char('\r')); }; };
    bool stopped = false;
    const Onlooker onlooker([&] {
        if (stop().isVisible() && bar().value() >= 30) {
            EXPECT_GT(entities(), 1000u);
            stopped = true;
            QTest::mouseClick(&stop(), Qt::LeftButton);
        }
    });
    run({
        line("CLOUDLINE"),
        line("0,0"),
        line("300000,0"),
        line("300000,300000"),
        line("0,300000"),
        [&] { press(Qt::Key_Return); },
        line("CIRCLES"),
        line("2500,-1250"),
        [&] {
            EXPECT_TRUE(stopped);
            EXPECT_TRUE(history().contains("已停止")) << history();
            EXPECT_EQ(entities(), 1u);
            type("U\r");
        },
        [&] { EXPECT_EQ(entities(), 0u); },
    });
}

// A button of a dialog pressed again while its work runs would begin the work in the midst of itself.
TEST_F(LongWorkInTheWindow, DialogsHearNothingUntilTheirWorkIsDone)
{
    QDialog dialog(&window);
    QToolButton work(&dialog);
    int begun = 0, stops = 0;
    QObject::connect(&work, &QToolButton::clicked, &dialog, [&] {
        ++begun;
        KcEdProgress meter("Working", 100);
        for (int i = 1; i <= 100; ++i) {
            meter.setPosition(i);
            if (kcedProgressCancelled()) {
                ++stops;
                return;
            }
        }
    });
    dialog.show();
    const Onlooker onlooker([&] {
        if (!bar().isVisible())
            return;
        QTest::mouseClick(&work, Qt::LeftButton);
        if (bar().value() >= 50)
            QTest::keyClick(&dialog, Qt::Key_Escape);
    });
    QTest::mouseClick(&work, Qt::LeftButton);
    EXPECT_EQ(begun, 1);
    EXPECT_EQ(stops, 1);
    EXPECT_TRUE(dialog.isVisible());
}
