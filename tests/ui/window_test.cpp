// The window as a whole: commands typed and chosen, work that is not saved, panels.
#include "hand.h"

#include "db/table.h"
#include "dxf/drawing_file.h"
#include "ed/selection.h"

#include <QComboBox>
#include <QTemporaryDir>
#include <QTreeWidget>

using ui_test::Hand;

namespace {

const QString plan = QStringLiteral(VERDELIS_SOURCE_DIR "/examples/planting-plan.dxf");

size_t tables(KcDbDatabase& database)
{
    size_t count = 0;
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(database.modelSpace()))
        if (const KcDbRead<KcDbEntity> entity(id); entity && entity->isKindOf(KcDbTable::desc()))
            ++count;
    return count;
}

} // namespace

// The plant count as a landscape architect makes it: typed, selected with a window, placed with a click.
TEST_F(Hand, CountsPlantsOfTheExamplePlan)
{
    ASSERT_TRUE(window.openDrawing(plan));
    canvas().zoomExtents();
    run({
        [&] { type("treenumtotable\r"); },
        [&] { drag(3000, 3000, 119500, 82500); },
        [&] { press(Qt::Key_Return); },
        [&] { click(122000, 82000); },
        [&] {
            EXPECT_EQ(tables(database()), 1u) << history();
            EXPECT_TRUE(window.isWindowModified());
            action(window, "Undo").trigger();
        },
        [&] {
            EXPECT_EQ(tables(database()), 0u);
            action(window, "Redo").trigger();
        },
        [&] { EXPECT_EQ(tables(database()), 1u); },
    });
}

// A menu chosen while a command asks: the command is cancelled first, then the other one runs.
TEST_F(Hand, MenusCancelWhatWaits)
{
    KcEdStatus status = kcedNormal;
    addLine(0, 0, 10, 10);
    command([&] {
        KcGePoint3d point;
        status = kcedGetPoint(nullptr, QStringLiteral("\nPoint: "), point);
    });
    run({
        [&] { type("TESTED\r"); },
        [&] {
            EXPECT_EQ(window.source().waiting()->kind, KcEdPrompt::Kind::Point);
            // Looking goes on beside the prompt.
            action(window, "Zoom in").trigger();
            EXPECT_EQ(window.source().waiting()->kind, KcEdPrompt::Kind::Point);
            action(window, "Undo").trigger();
        },
        [&] {
            EXPECT_EQ(status, kcedCancel);
            EXPECT_FALSE(database().undo().canUndo());
        },
    });
}

// Blank and Enter answer, and repeat the last command where there is nothing to answer; coordinates are typed
// as points, from the last point, and by angle.
TEST_F(Hand, TypedAnswers)
{
    std::vector<KcGePoint3d> points;
    command([&] {
        KcGePoint3d point;
        while (kcedGetPoint(points.empty() ? nullptr : &points.back(), QStringLiteral("\nPoint: "), point)
               == kcedNormal)
            points.push_back(point);
    });
    run({
        [&] { type("tested "); },
        [&] { type("10,20 "); },
        [&] { type("@5,0 "); },
        [&] { type("@10<90\r"); },
        [&] { press(Qt::Key_Return); },
        [&] {
            ASSERT_EQ(points.size(), 3u);
            EXPECT_TRUE(points[0].isEqualTo({ 10, 20, 0 }));
            EXPECT_TRUE(points[1].isEqualTo({ 15, 20, 0 }));
            EXPECT_TRUE(points[2].isEqualTo({ 15, 30, 0 }));
            EXPECT_EQ(window.source().waiting()->kind, KcEdPrompt::Kind::Command);
            press(Qt::Key_Space);
        },
        [&] {
            EXPECT_EQ(window.source().waiting()->kind, KcEdPrompt::Kind::Point);
            press(Qt::Key_Escape);
        },
    });
}

// What is done quickly one after the other, before the window has drawn breath, reaches the prompts in order:
// a click right behind Enter is no selection for the prompt that Enter has ended, a second Enter no repeated
// command, and a blank ends no text.
TEST_F(Hand, QuickHandsAnswerTheNextQuestion)
{
    addLine(40, 50, 60, 50);
    KcEdSelectionSet chosen;
    KcGePoint3d point;
    int number = 1;
    QString name, text;
    command([&] {
        EXPECT_EQ(kcedGetString(true, QStringLiteral("\nName: "), name), kcedNormal);
        EXPECT_EQ(kcedGetInt(QStringLiteral("\nNumber <1>: "), number), kcedNone);
        EXPECT_EQ(kcedSSGet({}, nullptr, nullptr, {}, chosen), kcedNormal);
        EXPECT_EQ(kcedGetPoint(nullptr, QStringLiteral("\nPoint: "), point), kcedNormal);
        EXPECT_EQ(kcedGetString(false, QStringLiteral("\nText: "), text), kcedNormal);
    });
    run({
        [&] { type("tested\ra b\r\r"); },
        [&] {
            EXPECT_EQ(name, "a b");
            click(50, 50);
            press(Qt::Key_Return);
            click(20, 30);
            type("oak\r");
        },
        [&] {
            EXPECT_EQ(chosen.size(), 1u);
            EXPECT_LT(point.distanceTo({ 20, 30, 0 }), 0.5);
            EXPECT_EQ(text, "oak");
        },
    });
}

// Faults: a layer list that swallows the next command, a list of names that takes the blank after one as a
// letter or keeps half a name after Escape.
TEST_F(Hand, TypingReachesTheCommandLineFromEverywhere)
{
    auto* layers = window.findChild<QTreeWidget*>("layers");
    auto* find = window.findChild<QWidget*>("layerPanel")->findChild<QLineEdit*>();
    run({
        [&] {
            QTest::keyClicks(window.findChild<QComboBox*>("selectionLayer"), "xy");
            EXPECT_EQ(field().text(), "xy");
            field().clear();
            QTest::keyClicks(find, "tr");
            EXPECT_EQ(find->text(), "tr");
            QTest::keyClick(find, Qt::Key_Escape);
            EXPECT_EQ(find->text(), "");
            QTest::keyClicks(layers, "pl");
        },
        [&] {
            EXPECT_EQ(field().text(), "pl");
            QWidget* names = QApplication::activePopupWidget();
            ASSERT_TRUE(names);
            QTest::keyClick(names, Qt::Key_Space);
        },
        [&] {
            EXPECT_EQ(window.source().waiting()->kind, KcEdPrompt::Kind::Point) << history();
            EXPECT_EQ(field().text(), "");
            QTest::keyClick(layers, Qt::Key_Escape);
        },
        [&] { type("li"); },
        [&] {
            QWidget* names = QApplication::activePopupWidget();
            ASSERT_TRUE(names);
            QTest::keyClick(names, Qt::Key_Escape);
            EXPECT_EQ(field().text(), "");
        },
    });
}

// Fault: the field undoes its own text, which is empty, and the drawing stays.
TEST_F(Hand, KeysOfTheEditMenuWorkWhileTheCommandLineHasTheFocus)
{
    const auto lines
        = [&] { return KcDbRead<KcDbBlockTableRecord>(database().modelSpace())->entityIds().size(); };
    run({
        [&] { type("LINE\r"); },
        [&] { type("0,0\r"); },
        [&] { type("10,10\r"); },
        [&] { type("\r"); },
        [&] {
            EXPECT_EQ(lines(), 1u);
            field().setFocus();
            QTest::keyClick(&field(), Qt::Key_Z, Qt::ControlModifier);
        },
        [&] {
            EXPECT_EQ(lines(), 0u);
            EXPECT_EQ(field().text(), "");
            QTest::keyClick(&field(), Qt::Key_Y, Qt::ControlModifier);
        },
        [&] {
            EXPECT_EQ(lines(), 1u);
            QTest::keyClicks(&field(), "12");
            QTest::keyClick(&field(), Qt::Key_Z, Qt::ControlModifier); // of what is being typed
            EXPECT_EQ(lines(), 1u);
            field().clear();
            kcedSetView(document(), { { 500, 500 }, 1 });
            QTest::keyClick(&field(), Qt::Key_Home);
            EXPECT_LT(kcedView(document()).center.x, 10);
        },
    });
}

// Faults: a question that is not asked, a cancel that closes all the same, a save that goes elsewhere.
TEST_F(Hand, AsksBeforeUnsavedWorkIsLost)
{
    QTemporaryDir folder;
    const QString path = folder.filePath("work.dxf");
    ASSERT_TRUE(dxf::saveDrawing(database(), path).ok);
    ASSERT_TRUE(window.openDrawing(path));
    EXPECT_FALSE(document().isModified());
    addLine(0, 0, 10, 10);
    run({
        [&] { window.close(); },
        [&] { answer(QMessageBox::Cancel); },
        [&] {
            EXPECT_TRUE(window.isVisible());
            EXPECT_TRUE(document().isModified());
            window.close();
        },
        [&] { answer(QMessageBox::Yes); },
    });
    EXPECT_FALSE(window.isVisible());
    KcDbDatabase saved(KcDbDatabase::Content::kEmpty);
    ASSERT_TRUE(dxf::readDrawing(path, saved).ok);
    EXPECT_NE(
        KcDbRead<KcDbBlockTableRecord>(saved.modelSpace())->begin(),
        KcDbRead<KcDbBlockTableRecord>(saved.modelSpace())->end());
}

TEST_F(Hand, ThePropertyPanelChangesTheSelectionInOneStep)
{
    const KcDbObjectId a = addLine(20, 20, 40, 20), b = addLine(20, 30, 40, 30);
    auto garden = std::make_unique<KcDbLayerTableRecord>();
    garden->initName(QStringLiteral("garden"));
    KcDbWrite<KcDbSymbolTable>(database().layerTable())->add(std::move(garden));
    auto* panel = window.findChild<QWidget*>(QStringLiteral("propertyPanelDock"));
    panel->raise();
    auto* layers = window.findChild<QComboBox*>(QStringLiteral("selectionLayer"));
    const auto layerOf = [](KcDbObjectId id) { return KcDbRead<KcDbEntity>(id)->layer(); };
    run({
        [&] { drag(10, 10, 60, 40); },
        [&] { QTest::qWait(1); },
        [&] {
            ASSERT_GE(layers->findText("garden"), 0);
            EXPECT_EQ(layers->currentText(), "0");
            layers->setCurrentText("garden");
            emit layers->textActivated("garden");
        },
        [&] {
            EXPECT_EQ(layerOf(a), "garden");
            EXPECT_EQ(layerOf(b), "garden");
            type("U\r");
        },
        [&] {
            EXPECT_EQ(layerOf(a), "0");
            EXPECT_EQ(layerOf(b), "0");
        },
    });
}
