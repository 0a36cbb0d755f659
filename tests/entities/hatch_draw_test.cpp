// What hatches and wipeouts hand to a sink, at every magnification.

#include "entities/recorder.h"

#include "db/block_table_record.h"
#include "db/hatch.h"
#include "db/wipeout.h"

#include <gtest/gtest.h>

namespace {

/// Notes what is drawn: fills, masks, the number and length of strokes.
class Notes : public entities_test::Recorder {
public:
    std::optional<KcGeExtents2d> view;
    double pixelSize = 0.0;

    int fills = 0, gradients = 0, masks = 0;
    size_t strokes = 0;
    double strokeLength = 0.0;
    std::vector<KcGiColor> fillColors;
    KcGiGradient gradient;

    std::optional<KcGeExtents2d> window() const override { return view; }
    double pixel() const override { return pixelSize; }
    void stroke(const KcGiPath& path, Stroke) override
    {
        walk(path, [&](double length) {
            ++strokes;
            strokeLength += length;
        });
    }
    void fill(const KcGiPath& path) override
    {
        ++fills;
        fillColors.push_back(m_color);
        walk(path, [](double) {});
    }
    void fill(const KcGiPath& path, const KcGiGradient& g) override
    {
        ++gradients;
        gradient = g;
        walk(path, [](double) {});
    }
    void mask(const KcGiPath& path) override
    {
        ++masks;
        walk(path, [](double) {});
    }

private:
    template <class Run> void walk(const KcGiPath& path, const Run& run)
    {
        KcGePoint3d last;
        double length = 0.0;
        path.flatten(
            {}, 1e-4,
            [&](KcGePoint3d p, bool begins) {
                length = begins ? 0.0 : length + last.distanceTo(p);
                last = p;
                box.addPoint(p);
            },
            [&](bool) { run(length); });
    }
};

KcDbHatch square(double side, std::vector<KcGeHatchFamily> lines)
{
    KcDbHatch hatch;
    hatch.setPattern(KcDbHatch::kPreDefined, QStringLiteral("TEST"));
    hatch.appendLoop(1, { { 0, 0 }, { side, 0 }, { side, side }, { 0, side } });
    hatch.data().lines = std::move(lines);
    return hatch;
}

KcGeHatchFamily across(double spacing, std::vector<double> dashes = {})
{
    KcGeHatchFamily family;
    family.base = { 0, spacing / 2 };
    family.offset = { 0, spacing };
    family.dashes = std::move(dashes);
    return family;
}

Notes drawn(const KcDbEntity& entity, double pixel, std::optional<KcGeExtents2d> view = {})
{
    Notes notes;
    notes.pixelSize = pixel;
    notes.view = view;
    entity.worldDraw(notes);
    return notes;
}

} // namespace

TEST(HatchDrawing, LinesWhereTheyCanBeSeenToneWhereNot)
{
    const KcDbHatch hatch = square(100, { across(1), across(1, { 0.5, -0.5 }) });
    const Notes near = drawn(hatch, 0.1);
    EXPECT_EQ(near.fills, 0);
    EXPECT_EQ(near.strokes, 100u + 100u * 100u);
    EXPECT_NEAR(near.strokeLength, 100 * 100 + 100 * 50, 1e-6);
    // Two pixels for every line: both families together cover more than there is.
    EXPECT_EQ(drawn(hatch, 2).fills, 1);
    EXPECT_EQ(drawn(hatch, 2).strokes, 0u);
    // Sparse dots become few lines of the same tone: a pixel in 4 × 1 units, of pixels as wide as 2 units.
    const Notes dots = drawn(square(1000, { across(1, { 0, -40 }) }), 2);
    EXPECT_EQ(dots.fills, 0);
    EXPECT_NEAR(dots.strokeLength * 2 / 1e6, 2.0 * 2.0 / 40, 0.01);
    EXPECT_TRUE(near.missing.isEmpty() && dots.missing.isEmpty());
}

TEST(HatchDrawing, OnlyWhatTheWindowShows)
{
    const KcGeExtents2d view{ { 10, 10 }, { 20, 15 } };
    const Notes seen = drawn(square(1e6, { across(1) }), 0.01, view);
    EXPECT_EQ(seen.strokes, 5u);
    EXPECT_NEAR(seen.strokeLength, 50, 1e-6);
    KcDbHatch below = square(1e6, { across(1) });
    below.setNormal({ 0, 0, -1 }); // drawn to the left of the Y axis
    EXPECT_EQ(drawn(below, 0.01, view).strokes, 0u);
    EXPECT_EQ(drawn(below, 0.01, KcGeExtents2d{ { -20, 10 }, { -10, 15 } }).strokes, 5u);
}

TEST(HatchDrawing, HundredMillionDashesAreDrawnInPartAndTold)
{
    const Notes notes = drawn(square(1e4, { across(0.1, { 0.005, -0.005 }) }), 1e-9);
    EXPECT_GT(notes.strokes, 0u);
    EXPECT_LT(notes.strokes, 2'000'000u);
    ASSERT_EQ(notes.missing.size(), 1);
    EXPECT_TRUE(notes.missing[0].contains(QStringLiteral("TEST")));
    const Notes unknown = drawn(square(10, {}), 0.1);
    EXPECT_EQ(unknown.strokes, 1u); // the outline
    EXPECT_EQ(unknown.missing.size(), 1);
}

TEST(HatchDrawing, FillsIslandsAndGradients)
{
    KcDbHatch solid = square(10, {});
    solid.setPattern(1, QStringLiteral("SOLID"));
    solid.appendLoop(0, { { 2, 2 }, { 3, 2 }, { 3, 3 } });
    Notes notes = drawn(solid, 0.1);
    EXPECT_EQ(notes.fills, 1);
    EXPECT_TRUE(notes.missing.isEmpty());
    EXPECT_NEAR(notes.box.max.x, 10, 1e-12);

    auto& gradient = solid.data().gradient;
    gradient.filled = true;
    gradient.name = QStringLiteral("INVCYLINDER");
    gradient.angle = 1.5;
    gradient.tint = 1.0;
    gradient.stops = { { 0.0, 0, 0x204060 } };
    notes = drawn(solid, 0.1);
    EXPECT_EQ(notes.gradients, 1);
    EXPECT_TRUE(notes.gradient.inverted);
    EXPECT_EQ(int(notes.gradient.shape), int(KcGiGradient::Shape::Cylinder));
    EXPECT_EQ(notes.gradient.from, 0x204060u);
    EXPECT_EQ(notes.gradient.to, 0xffffffu); // the lightest tint
    gradient.tint = 0.25; // half as light
    EXPECT_EQ(drawn(solid, 0.1).gradient.to, 0x102030u);
    gradient.stops.push_back({ 1.0, 0, 0xff0000 });
    EXPECT_EQ(drawn(solid, 0.1).gradient.to, 0xff0000u);
}

// Without a window or a pixel size only the box matters; it is that of the outline.
TEST(HatchDrawing, BoxesNeedNoLines)
{
    const Notes notes = drawn(square(50, { across(1e-7) }), 0.0);
    EXPECT_EQ(notes.strokes, 0u);
    EXPECT_NEAR(notes.box.max.y, 50, 1e-12);
}

TEST(WipeoutDrawing, FramesAsTheDrawingWants)
{
    KcDbDatabase database;
    const KcDbRead<KcDbBlockTableRecord> space(database.modelSpace());
    const KcDbObjectId id = space->appendEntity(
        KcDbWipeout::fromCorners({ { 0, 0, 0 }, { 4, 0, 0 }, { 4, 3, 0 }, { 0, 3, 0 } }));
    const KcDbRead<KcDbWipeout> wipeout(id);
    EXPECT_EQ(kcdbWipeoutFrame(database), 1);
    Notes notes = drawn(*wipeout, 0.1);
    EXPECT_EQ(notes.masks, 1);
    EXPECT_NEAR(notes.strokeLength, 11, 1e-9); // three sides of the run; the fourth closes it
    database.undo().beginStep(QStringLiteral("FRAMES"));
    kcdbSetWipeoutFrame(database, 0);
    database.undo().endStep();
    EXPECT_EQ(drawn(*wipeout, 0.1).strokes, 0u);
    EXPECT_EQ(drawn(*wipeout, 0.1).masks, 1);
    database.undo().undo();
    EXPECT_EQ(kcdbWipeoutFrame(database), 1);
    // Shown, but not plotted.
    kcdbSetWipeoutFrame(database, 2);
    EXPECT_EQ(drawn(*wipeout, 0.1).strokes, 1u);
    Notes paper;
    paper.plotting = true;
    wipeout->worldDraw(paper);
    EXPECT_EQ(paper.strokes, 0u);
    EXPECT_EQ(paper.masks, 1);
}
