// Dragging by lines: previews that equal results, keywords, restarts from a dialog, and the jigs built on it.
#include "support.h"

#include "core/jigs/block_jig.h"
#include "core/jigs/cloud_line_jig.h"
#include "core/jigs/leader_jig.h"
#include "db/leader.h"
#include "widgets/colour_combo.h"
#include "widgets/colours.h"

#include <QDoubleSpinBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

// What a window would show.
class Shown : public KcEdPreviewHolder {
public:
    Shown() { m_before = kcedSetPreviewHolder(this); }
    ~Shown() override { kcedSetPreviewHolder(m_before); }
    void show(const KcEdPreview& preview) override
    {
        isEmpty = preview.empty();
        if (!isEmpty)
            boxes.push_back(preview.front()->geomExtents());
    }
    std::vector<KcGeExtents3d> boxes;
    bool isEmpty = true;

private:
    KcEdPreviewHolder* m_before;
};

} // namespace

TEST(Drag, AsksForPointsDistancesAndAngles)
{
    ed_test::Session session;
    const auto ask = [&](KcEdDrag::Asks asks, const QStringList& lines) {
        KcEdDragged answer;
        EXPECT_EQ(
            session.run(
                [&] {
                    KcEdDrag drag;
                    drag.asks = asks;
                    drag.base = KcGePoint3d{ 10, 10, 0 };
                    drag.keywords = "Turn _ Turn";
                    answer = kcedDrag(drag);
                },
                lines),
            0)
            << session.errors;
        return answer;
    };
    using A = KcEdDrag::Asks;
    using S = KcEdDragged::Status;
    EXPECT_TRUE(ask(A::Point, { "~1,1", "3,4" }).point.isEqualTo({ 3, 4, 0 }));
    EXPECT_DOUBLE_EQ(ask(A::Distance, { "13,14" }).value, 5.0);
    EXPECT_DOUBLE_EQ(ask(A::Distance, { "7.5" }).value, 7.5);
    EXPECT_DOUBLE_EQ(ask(A::Angle, { "10,0" }).value, 1.5 * kPi);
    EXPECT_DOUBLE_EQ(ask(A::Angle, { "-90" }).value, 1.5 * kPi);
    EXPECT_EQ(ask(A::Angle, { "t" }).keyword, "Turn");
    EXPECT_EQ(ask(A::Point, { "" }).status, S::Enter);
    EXPECT_EQ(ask(A::Point, { "^C" }).status, S::Cancel);
    EXPECT_EQ(ask(A::Point, {}).status, S::Cancel);
    EXPECT_FALSE(kcedRestartDrag()); // none runs
}

// Faults: a preview of something else than the result, one that stays, one that changes the drawing.
TEST(Drag, HandCommandsShowWhatTheyMake)
{
    const struct {
        const char* name;
        QStringList lines; // the last move is where the last answer is given
    } cases[] = {
        { "circle", { "CIRCLE", "0,0", "~3,4", "3,4" } },
        { "diameter", { "CIRCLE", "0,0", "D", "~6,8", "6,8" } },
        { "circle on two points", { "CIRCLE", "2P", "0,0", "~6,8", "6,8" } },
        { "circle through three", { "CIRCLE", "3P", "0,0", "10,0", "~5,5", "5,5" } },
        { "arc", { "ARC", "10,0", "0,10", "~-10,0", "-10,0" } },
        { "arc about a centre", { "ARC", "C", "0,0", "10,0", "~0,10", "0,10" } },
        { "arc by its direction", { "ARC", "0,0", "E", "10,0", "D", "~0,5", "0,5" } },
        { "polyline", { "PLINE", "0,0", "~10,5", "10,5", "" } },
        { "move", { "LINE", "0,0", "9,5", "", "MOVE", "L", "", "0,0", "~7,3", "7,3" } },
        { "copy", { "CIRCLE", "0,0", "5", "COPY", "ALL", "", "0,0", "~7,3", "7,3" } },
        { "rotate", { "LINE", "0,0", "9,5", "", "ROTATE", "L", "", "0,0", "~0,1", "0,1" } },
        { "scale", { "LINE", "0,0", "9,5", "", "SCALE", "L", "", "0,0", "~2,0", "2,0" } },
        { "mirror", { "LINE", "1,1", "9,5", "", "MIRROR", "L", "", "0,0", "~0,1", "0,1", "N" } },
        { "offset", { "CIRCLE", "0,0", "5", "OFFSET", "2", "5,0", "~20,0", "20,0", "" } },
    };
    for (const auto& [name, lines] : cases) {
        SCOPED_TRACE(name);
        ed_test::Session session;
        Shown shown;
        EXPECT_EQ(session.run(lines), 0) << session.errors;
        EXPECT_TRUE(shown.isEmpty);
        ASSERT_FALSE(shown.boxes.empty());
        const KcDbRead<KcDbBlockTableRecord> space(session.database.modelSpace());
        const KcGeExtents3d made = KcDbRead<KcDbEntity>(space->entityIds().back())->geomExtents();
        EXPECT_TRUE(made.min.isEqualTo(shown.boxes.back().min));
        EXPECT_TRUE(made.max.isEqualTo(shown.boxes.back().max));
        EXPECT_LE(space->entityIds().size(), 2u);
    }
}

TEST(Drag, ThePreviewIsTheResultAndVanishes)
{
    ed_test::Session session;
    Shown shown;
    KcDbObjectId id;
    session.run(
        [&] { id = CCloudLineJig(10).CreateCloudLine(); },
        { "0,0", "100,0", "100,80", "~20,90", "20,90", "" });
    ASSERT_FALSE(id.isNull());
    EXPECT_TRUE(shown.isEmpty);
    ASSERT_FALSE(shown.boxes.empty());
    const KcGeExtents3d made = KcDbRead<KcDbEntity>(id)->geomExtents();
    EXPECT_TRUE(made.min.isEqualTo(shown.boxes.back().min));
    EXPECT_TRUE(made.max.isEqualTo(shown.boxes.back().max));
}

TEST(CloudLine, IsClosedCounterClockwiseAndOfEqualArcs)
{
    const std::vector<KcGePoint3d> square{
        { 0, 0, 3 }, { 40000, 0, 3 }, { 40000, 30000, 3 }, { 0, 30000, 3 }
    };
    for (const bool clockwise : { false, true })
        for (const double far : { 0.0, 5e8 }) {
            std::vector<KcGePoint3d> points = square;
            if (clockwise)
                std::reverse(points.begin(), points.end());
            for (KcGePoint3d& p : points)
                p = { p.x + far, p.y - far, p.z };
            const auto outline = cloudOutline(points, 5000);
            ASSERT_TRUE(outline);
            EXPECT_TRUE(outline->isClosed());
            EXPECT_EQ(outline->numVerts(), 28u); // 140000 around
            EXPECT_GT(outline->area(), 40000.0 * 30000.0); // counter-clockwise, and the arcs stand out
            for (size_t i = 0; i < outline->numVerts(); ++i) {
                const KcGePoint2d a = outline->getPointAt(i), b = outline->getPointAt((i + 1) % 28);
                EXPECT_NEAR(std::hypot(b.x - a.x, b.y - a.y), 5000.0, 1e-6); // rounding at 5e8
                EXPECT_GT(outline->getBulgeAt(i), 0.0);
            }
        }
    EXPECT_EQ(cloudOutline({ { 0, 0, 0 }, { 1, 0, 0 }, { 0, 1, 0 } }, 5000)->numVerts(), 3u);
    EXPECT_FALSE(cloudOutline({ { 0, 0, 0 }, { 1, 0, 0 } }, 5000));
    EXPECT_FALSE(cloudOutline({ { 0, 0, 0 }, { 9e3, 0, 0 }, { 18e3, 0, 0 } }, 5000)); // no area
    EXPECT_FALSE(cloudOutline({ { 0, 0, 0 }, { 1e20, 0, 0 }, { 0, 1e20, 0 } }, 5000));
    EXPECT_FALSE(cloudOutline({ { 0, 0, 0 }, { std::nan(""), 0, 0 }, { 0, 1, 0 } }, 5000));
}

TEST(LeaderJig, PathsKeywordsAndUndo)
{
    ed_test::Session session;
    struct Row {
        QStringList lines;
        bool done;
        std::vector<KcGePoint3d> path;
        int type, option;
    } rows[] = {
        { { "0,0", "10,0", "" }, true, { { 0, 0, 0 }, { 10, 0, 0 } }, 2, 0 },
        { { "0,0", "10,0", "20,5", "u", "30,5", "" },
          true,
          { { 0, 0, 0 }, { 10, 0, 0 }, { 30, 5, 0 } },
          2,
          0 },
        { { "n", "0,0", "l", "10,0", "" }, true, { { 0, 0, 0 }, { 10, 0, 0 } }, 0, 1 },
        { { "0,0", "n", "n", "10,0", "" }, true, { { 0, 0, 0 }, { 10, 0, 0 } }, 2, 0 },
        { { "0,0", "0.01,0", "", "10,0", "" }, true, { { 0, 0, 0 }, { 10, 0, 0 } }, 2, 0 }, // one vertex
        { { "0,0", "10,0", "^C" }, false, {}, 2, 0 },
        { { "" }, false, {}, 2, 0 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.lines.join(" | ").toStdString());
        MLeaderJig jig;
        jig.SetIsKeyWord(true);
        jig.SetDimType(2);
        std::vector<KcGePoint3d> points;
        bool done = !row.done;
        EXPECT_EQ(session.run([&] { done = jig.CreateLeader(points); }, row.lines), 0) << session.errors;
        EXPECT_EQ(done, row.done);
        ASSERT_EQ(points.size(), row.path.size());
        for (size_t i = 0; i < points.size(); ++i)
            EXPECT_TRUE(points[i].isEqualTo(row.path[i]));
        EXPECT_EQ(jig.GetDimType(), row.type);
        EXPECT_EQ(jig.GetLeaderOption(), row.option);
    }
}

// The dialog beside it changes the scale while the symbol hangs on the cursor.
TEST(BlockJig, StartsAgainWithWhatADialogSays)
{
    ed_test::Session session;
    Shown shown;
    const KcDbObjectId block = session.addBlock("tree");
    KcDbWrite<KcDbBlockTableRecord>(block)->appendEntity(
        std::make_unique<KcDbLine>(KcGePoint3d{ 10, 10, 0 }, KcGePoint3d{ 14, 12, 0 }));
    int restarts = 0;
    std::vector<KcDbObjectId> placed;
    const auto insert = [&] {
        auto owned = std::make_unique<QDialog>();
        auto* column = new QVBoxLayout(owned.get());
        auto* scale = new QDoubleSpinBox;
        scale->setObjectName("scale");
        scale->setRange(0, 100);
        scale->setValue(1);
        column->addWidget(scale);
        QObject::connect(scale, &QDoubleSpinBox::valueChanged, owned.get(), [] { kcedRestartDrag(); });
        const QPointer<QDialog> dialog = kcedShowModeless(std::move(owned));
        CBlockJig jig;
        jig.SetLayer("新图层");
        for (;;) {
            jig.SetModelessScale(scale->value());
            const CBlockJig::Result result = jig.DoIt(block);
            if (result == CBlockJig::Result::Cancel)
                break;
            restarts += result == CBlockJig::Result::Restart;
            if (result == CBlockJig::Result::Placed)
                placed.push_back(jig.placed());
        }
        if (dialog)
            dialog->close();
    };
    EXPECT_EQ(
        session.run(
            insert, { "~5,5", "100,50", "!set scale 3", "~0,0", "200,50", "!set scale 0", "1,1", "^C", "U" }),
        0)
        << session.errors;
    EXPECT_EQ(restarts, 3); // two changes, and a symbol that cannot be drawn
    ASSERT_EQ(placed.size(), 2u);
    EXPECT_TRUE(placed[0].isErased()); // one command, one step
    session.run({ "REDO" });
    const double widths[] = { 4, 12 };
    for (size_t i = 0; i < 2; ++i) {
        const KcDbRead<KcDbBlockReference> symbol(placed[i]);
        const KcGeExtents3d box = symbol->geomExtents();
        EXPECT_NEAR(box.width(), widths[i], 1e-9);
        EXPECT_TRUE(box.center().isEqualTo({ 100.0 * double(i + 1), 50, 0 })); // the centre of its box
        EXPECT_EQ(symbol->layer(), "新图层");
    }
    EXPECT_TRUE(shown.isEmpty);
    EXPECT_EQ(session.document.lockCount(), 0);
}

TEST(Colours, AreChosenByLinesAndByNumber)
{
    ed_test::Session session;
    const auto ask = [&](int before, bool meta, const QStringList& lines, int refused = 0) {
        int index = before;
        EXPECT_EQ(session.run([&] { kcedSetColorDialog(index, meta, 3); }, lines), refused) << session.errors;
        return index;
    };
    EXPECT_EQ(ask(1, false, { "!color 42" }), 42);
    EXPECT_EQ(ask(1, false, { "!color 256", "!color 0", "!cancel" }, 2), 1);
    EXPECT_EQ(ask(1, true, { "!color 256" }), 256);
    EXPECT_EQ(ask(1, true, { "!press 随块", "!ok" }), 0);
    EXPECT_EQ(ask(1, true, { "!set color 255", "!ok" }), 255);
    EXPECT_EQ(ask(1, true, { "!set color 300", "!ok", "!cancel" }, 1), 1); // OK is disabled
    EXPECT_EQ(ask(9, true, { "!ok" }), 9);
}

TEST(Colours, TheComboBoxKeepsItsColourWhenTheDialogIsCancelled)
{
    ed_test::Session session;
    CKcUiColorComboBox* box = nullptr;
    std::vector<int> chosen;
    const auto run = [&](const QStringList& lines) {
        int index = -2;
        session.run(
            [&] {
                QDialog dialog;
                auto* column = new QVBoxLayout(&dialog);
                column->addWidget(box = new CKcUiColorComboBox(true));
                box->setObjectName("color");
                box->setColorIndex(5);
                box->onChosen = [&](int c) { chosen.push_back(c); };
                kcedRunDialog(dialog);
                index = box->colorIndex();
            },
            lines);
        return index;
    };
    EXPECT_EQ(run({ "!set color 其他颜色…", "!color 77", "!ok" }), 77);
    EXPECT_EQ(run({ "!set color 其他颜色…", "!cancel", "!ok" }), 5);
    EXPECT_EQ(run({ "!set color 随层", "!ok" }), 256);
    EXPECT_EQ(chosen, (std::vector<int>{ 77, 256 }));
}
