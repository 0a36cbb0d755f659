// The mouse in the drawing: selecting, views, snaps, drags, grips.
#include "hand.h"

#include "ed/object_snap.h"
#include "ed/selection.h"
#include "ui/aim.h"

#include <QTabBar>

using ui_test::Hand;

namespace {

/// The picture without what follows the cursor.
QImage picture(KcUiCanvas& canvas)
{
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&canvas, &leave);
    return canvas.grab().toImage();
}

/// Pixels that are light in one picture and dark in the other.
int differing(const QImage& a, const QImage& b)
{
    constexpr int kMuch = 128;
    int count = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            if (std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) > kMuch)
                ++count;
    return count;
}

} // namespace

// Faults this would catch: window and crossing exchanged, Shift that adds, a cycle that keeps what it left.
TEST_F(Hand, SelectsByWindowCrossingAndPicks)
{
    const KcDbObjectId inner = addLine(20, 20, 40, 20), outer = addLine(20, 30, 80, 30);
    const KcDbObjectId twin = addLine(20, 20, 40, 20);
    const auto selected = [&] { return document().pickFirst.ids(); };
    using Ids = std::vector<KcDbObjectId>;
    run({
        [&] { drag(10, 10, 60, 40); },
        [&] {
            EXPECT_EQ(selected(), (Ids{ inner, twin }));
            press(Qt::Key_Escape);
        },
        [&] {
            EXPECT_EQ(selected(), Ids());
            drag(60, 40, 10, 10);
        },
        [&] {
            EXPECT_EQ(selected(), (Ids{ inner, outer, twin }));
            click(60, 30, Qt::ShiftModifier);
        },
        [&] {
            EXPECT_EQ(selected(), (Ids{ inner, twin }));
            drag(10, 10, 60, 25, Qt::LeftButton, Qt::ShiftModifier);
        },
        [&] {
            EXPECT_EQ(selected(), Ids());
            click(25, 20);
        },
        [&] {
            EXPECT_EQ(selected(), Ids{ twin });
            click(25, 20, Qt::ControlModifier);
        },
        [&] { EXPECT_EQ(selected(), Ids{ inner }); },
    });
}

// Fault: a window that selects along turned axes what was drawn along the screen's.
TEST_F(Hand, SelectsWhatWasDrawnOnTheScreenInATurnedCoordinateSystem)
{
    const KcDbObjectId corner = addLine(11, 11, 14, 14);
    addLine(30, 5, 32, 5);
    run({
        [&] { type("UCS\r"); },
        [&] { type("Z\r"); },
        [&] { type("45\r"); },
        [&] { drag(10, 10, 40, 40); },
        [&] { EXPECT_EQ(document().pickFirst.ids(), std::vector<KcDbObjectId>{ corner }); },
    });
}

// In a dense plan the object on top is seldom the one that a command can use.
TEST_F(Hand, PicksWhatTheCommandCanUse)
{
    const KcDbObjectId circle = add(std::make_unique<KcDbCircle>(KcGePoint3d{ 50, 50, 0 }, 20));
    const KcDbObjectId line = addLine(70, 40, 70, 60);
    KcEdEntityRequest request;
    request.filter = kcutBuildList(0, "CIRCLE");
    KcEdSelectionSet set;
    KcEdEntityAnswer answer;
    command([&] {
        EXPECT_EQ(kcedSSGet({}, nullptr, nullptr, request.filter, set), kcedNormal);
        answer = kcedSelectEntity(request);
    });
    run({
        [&] { type("tested\r"); },
        [&] { click(70, 50); },
        [&] { press(Qt::Key_Return); },
        [&] {
            EXPECT_EQ(set.ids(), std::vector{ circle });
            click(70, 42);
        },
        [&] {
            EXPECT_TRUE(history().contains("(LINE) cannot be chosen here")) << history();
            click(70, 50);
        },
        [&] {
            EXPECT_EQ(answer.id, circle);
            click(70, 50);
        },
        [&] { EXPECT_EQ(document().pickFirst.ids(), std::vector{ line }); },
    });
}

// Fault: a picture that is moved while panning and is not what drawing it anew would show.
TEST_F(Hand, PansAsIfDrawnAnew)
{
    for (int i = 0; i < 20; ++i) {
        addLine(i * 7, 3 * i, 60, 90 - i);
        add(std::make_unique<KcDbCircle>(KcGePoint3d{ 5.0 * i, 40, 0 }, 3.0 + i));
    }
    QImage before, moved;
    run({
        [&] { before = picture(canvas()); },
        [&] { drag(50, 50, 63, 41, Qt::MiddleButton); },
        [&] {
            moved = picture(canvas());
            canvas().regenerate();
        },
        [&] {
            canvas().update();
            // Lines that are clipped elsewhere may differ in their shading.
            EXPECT_GT(differing(before, moved), 3000);
            EXPECT_LT(differing(moved, picture(canvas())), 100);
            // The whole pan is one step back.
            kcedPreviousView(document());
            EXPECT_EQ(kcedView(document()), (KcEdView{ { 50, 50 }, 100 }));
        },
    });
}

// Faults: a tab that leaves the picture of the other space, a selection that goes with it, an empty layout
// shown as one unit.
TEST_F(Hand, TabsShowTheirSpaces)
{
    add(std::make_unique<KcDbCircle>(KcGePoint3d{ 50, 50, 0 }, 40.0));
    auto* tabs = window.findChild<QTabBar*>("layoutTabs");
    const auto choose
        = [&](int tab) { QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(tab).center()); };
    QImage model;
    run({
        [&] {
            canvas().update();
            model = picture(canvas());
            click(50, 90);
        },
        [&] {
            EXPECT_EQ(document().pickFirst.size(), 1u);
            choose(1);
        },
        [&] {
            EXPECT_GT(differing(model, picture(canvas())), 200);
            EXPECT_TRUE(document().pickFirst.isEmpty());
            EXPECT_GE(kcedView(document()).height, 100);
            choose(0);
        },
        [&] { EXPECT_EQ(differing(model, picture(canvas())), 0); },
    });
}

TEST_F(Hand, ZoomsAboutTheCursor)
{
    const QPointF at(200, 150);
    const QPoint global = canvas().mapToGlobal(at.toPoint());
    const auto under = [&] {
        const KcEdView view = kcedView(document());
        return KcUiScreenMap{ view, QSizeF(canvas().QWidget::size()) }.toModel(at);
    };
    const KcGePoint2d before = under();
    QWheelEvent turn(at, global, {}, { 0, 240 }, Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&canvas(), &turn);
    EXPECT_NEAR(kcedView(document()).height, 100 / 1.44, 1e-9);
    EXPECT_NEAR(under().x, before.x, 1e-9);
    EXPECT_NEAR(under().y, before.y, 1e-9);
}

// What the cursor means, by what is switched on. The base is (10,10), a line ends at (30,20).
TEST_F(Hand, AimsAtSnapsAxesAndTrackingLines)
{
    addLine(30, 20, 70, 20);
    const struct {
        const char* name;
        int snaps, ortho, polar;
        KcGePoint2d cursor;
        KcGePoint3d point;
    } rows[] = {
        { "free", 0, 0, 0, { 30.5, 20.4 }, { 30.5, 20.4, 0 } },
        { "end", kcedSnapEnd, 0, 0, { 30.5, 20.4 }, { 30, 20, 0 } },
        { "end before ortho", kcedSnapEnd, 1, 0, { 30.5, 20.4 }, { 30, 20, 0 } },
        { "suppressed", kcedSnapEnd | kcedSnapSuppressed, 0, 0, { 30.5, 20.4 }, { 30.5, 20.4, 0 } },
        { "ortho level", kcedSnapEnd, 1, 0, { 50, 40 }, { 50, 10, 0 } },
        { "ortho plumb", 0, 1, 0, { 20, 40 }, { 10, 40, 0 } },
        { "on the line of 45 degrees", 0, 0, 1, { 40.2, 39.8 }, { 40, 40, 0 } },
        { "on the line of 180 degrees", 0, 0, 1, { 2, 10.3 }, { 2, 10, 0 } },
        { "between the lines", 0, 0, 1, { 50, 25 }, { 50, 25, 0 } },
    };
    KcEdPrompt prompt;
    prompt.kind = KcEdPrompt::Kind::Point;
    prompt.base = KcGePoint3d{ 10, 10, 0 };
    const double pixel = 0.1;
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        kcedSetVar(QStringLiteral("OSMODE"), int64_t(row.snaps));
        kcedSetVar(QStringLiteral("ORTHOMODE"), int64_t(row.ortho));
        kcedSetVar(QStringLiteral("POLARMODE"), int64_t(row.polar));
        const KcUiAim aim = kcuiAim(document(), &prompt, row.cursor, pixel);
        EXPECT_NEAR(aim.point.x, row.point.x, 1e-9);
        EXPECT_NEAR(aim.point.y, row.point.y, 1e-9);
        // Without a prompt nothing draws the cursor to itself.
        EXPECT_TRUE(kcuiAim(document(), nullptr, row.cursor, pixel)
                        .point.isEqualTo({ row.cursor.x, row.cursor.y, 0 }));
    }
}

// Faults: a number that goes elsewhere than to the cursor, as ortho has it; a click that gives a free point
// after a word for a snap.
TEST_F(Hand, NumbersGoTowardsTheCursorAndWordsHoldForOneClick)
{
    addLine(30, 70, 70, 70);
    kcedSetVar(QStringLiteral("ORTHOMODE"), int64_t(1));
    run({
        [&] { type("LINE\r"); },
        [&] { type("20,20\r"); },
        [&] { move(60, 31); },
        [&] { type("15\r"); },
        [&] { type("end "); },
        [&] { click(50, 50); },
        [&] { click(69, 69.5); },
        [&] { press(Qt::Key_Escape); },
    });
    kcedSetVar(QStringLiteral("ORTHOMODE"), int64_t(0));
    std::vector<KcGePoint3d> ends;
    for (const KcDbObjectId id : *KcDbRead<KcDbBlockTableRecord>(database().modelSpace()))
        ends.push_back(KcDbRead<KcDbLine>(id)->data().end);
    ASSERT_EQ(ends.size(), 3u);
    EXPECT_TRUE(ends[1].isEqualTo({ 35, 20, 0 }));
    EXPECT_TRUE(ends[2].isEqualTo({ 70, 70, 0 }));
}

// Fault: a drag that ends its prompt with a move, loses moves, or leaves its preview on the screen.
TEST_F(Hand, ShowsWhatADragWouldMake)
{
    KcEdDragged dragged;
    int previews = 0;
    command([&] {
        KcEdDrag drag;
        drag.prompt = QStringLiteral("\nTo: ");
        drag.preview = [&](KcGePoint3d cursor) {
            ++previews;
            KcEdPreview preview;
            preview.push_back(std::make_unique<KcDbLine>(KcGePoint3d{ 5, 5, 0 }, cursor));
            return preview;
        };
        dragged = kcedDrag(drag);
    });
    QImage empty;
    run({
        [&] {
            empty = picture(canvas());
            type("TESTED\r");
        },
        [&] { move(40, 40); },
        [&] { move(60, 70); },
        [&] {
            EXPECT_NE(picture(canvas()), empty);
            EXPECT_GE(previews, 2);
            click(80, 80);
        },
        [&] {
            EXPECT_EQ(dragged.status, KcEdDragged::Status::Normal);
            EXPECT_NEAR(dragged.point.x, 80, 0.2);
            EXPECT_EQ(picture(canvas()), empty);
            type("TESTED\r");
        },
        [&] { move(40, 40); },
        [&] { press(Qt::Key_Escape); },
        [&] {
            EXPECT_EQ(dragged.status, KcEdDragged::Status::Cancel);
            EXPECT_EQ(picture(canvas()), empty);
        },
    });
}

TEST_F(Hand, DragsGrips)
{
    const KcDbObjectId id = addLine(20, 20, 60, 20), other = addLine(60, 20, 60, 60);
    const auto end = [](KcDbObjectId line) { return KcDbRead<KcDbLine>(line)->data().end; };
    const auto start = [](KcDbObjectId line) { return KcDbRead<KcDbLine>(line)->data().start; };
    run({
        [&] { drag(10, 10, 80, 70); },
        [&] { drag(60, 20, 70, 30); },
        [&] {
            // Both lines end there and stay together.
            EXPECT_LT(end(id).distanceTo({ 70, 30, 0 }), 0.3);
            EXPECT_TRUE(start(other).isEqualTo(end(id)));
            EXPECT_TRUE(end(other).isEqualTo({ 60, 60, 0 }));
            type("U\r");
        },
        [&] {
            EXPECT_TRUE(end(id).isEqualTo({ 60, 20, 0 }));
            EXPECT_TRUE(start(other).isEqualTo({ 60, 20, 0 }));
            drag(10, 10, 80, 70);
        },
        [&] { click(60, 20); },
        [&] { move(80, 40); },
        [&] { press(Qt::Key_Escape); },
        [&] {
            EXPECT_TRUE(end(id).isEqualTo({ 60, 20, 0 }));
            EXPECT_EQ(document().pickFirst.size(), 2u);
            // Collected with Shift, both far ends go as far as the one that is dragged.
            click(20, 20, Qt::ShiftModifier);
        },
        [&] { click(60, 60, Qt::ShiftModifier); },
        [&] { drag(60, 60, 60, 70); },
        [&] {
            EXPECT_LT(start(id).distanceTo({ 20, 30, 0 }), 0.3);
            EXPECT_LT(end(other).distanceTo({ 60, 70, 0 }), 0.3);
            EXPECT_TRUE(end(id).isEqualTo({ 60, 20, 0 }));
            type("U\r");
        },
        [&] {
            EXPECT_TRUE(start(id).isEqualTo({ 20, 20, 0 }));
            EXPECT_TRUE(end(other).isEqualTo({ 60, 60, 0 }));
        },
    });
}
