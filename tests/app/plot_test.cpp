// `verdelis plot` as a user calls it.
#include "app/support.h"

#include <QFileInfo>
#include <QImage>

namespace {

class Plot : public app_test::Program {
protected:
    int plot(const QStringList& arguments)
    {
        const app_test::Outcome outcome = run(QStringList{ "plot" } + arguments);
        said = outcome.err;
        return outcome.status;
    }

    const QString viewports = QStringLiteral(VERDELIS_TEST_DATA "/drawings/viewports-r2013.dxf");
    QString said;
};

/// The share of pixels that are drawn on: darker than the tints of the ground.
double inked(const QImage& image)
{
    int dark = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            dark += qGray(image.pixel(x, y)) < 200;
    return double(dark) / (image.width() * image.height());
}

} // namespace

TEST_F(Plot, ExitStatusesAndWhatIsSaid)
{
    const QString png = folder.filePath("p.png");
    const struct {
        const char* name;
        QStringList arguments;
        int status;
        const char* says;
    } rows[] = {
        { "no file to write", { plan }, 2, "plot takes a drawing and the file to write" },
        { "another kind of file",
          { plan, folder.filePath("p.tiff") },
          2,
          "A plot is a .png, .pdf or .svg file" },
        { "no such drawing", { folder.filePath("none.dxf"), png }, 1, "none.dxf" },
        { "no such folder", { plan, folder.filePath("none/p.png") }, 1, "there is no folder" },
        { "no such layout", { plan, png, "--layout", "Sheet 9" }, 1, "no layout \"Sheet 9\"; it has: Model" },
        { "a window that is none", { plan, png, "--window", "0,0,10" }, 2, "--window takes two corners" },
        { "a scale that is none", { plan, png, "--scale", "200" }, 2, "--scale takes a scale as 1:200" },
        { "a size that is none", { plan, png, "--size", "0x100" }, 2, "--size takes pixels" },
        { "a size beyond memory", { plan, png, "--size", "100000x100000" }, 1, "1 to 30000 pixels" },
        { "a paper that is none", { plan, png, "--paper", "Z9" }, 2, "There is no paper \"Z9\"" },
        { "an option that is none", { plan, png, "--rotate", "90" }, 2, "--rotate" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(plot(row.arguments), row.status);
        EXPECT_TRUE(said.contains(row.says)) << qPrintable(said);
        EXPECT_FALSE(QFileInfo::exists(png));
    }
}

TEST_F(Plot, WritesEveryFormat)
{
    for (const QString name : { "p.png", "p.pdf", "p.svg" }) {
        SCOPED_TRACE(qPrintable(name));
        ASSERT_EQ(plot({ plan, folder.filePath(name) }), 0) << qPrintable(said);
        EXPECT_GT(QFileInfo(folder.filePath(name)).size(), 20'000);
    }
    const QImage image(folder.filePath("p.png"));
    EXPECT_EQ(std::max(image.width(), image.height()), 1600);
    EXPECT_GT(inked(image), 0.03);
    EXPECT_LT(inked(image), 0.6);
}

TEST_F(Plot, ScaleAndPaperGiveTheSizeOfThePicture)
{
    const QString png = folder.filePath("p.png");
    ASSERT_EQ(plot({ plan, png, "--paper", "A1", "--scale", "1:200" }), 0);
    EXPECT_EQ(QImage(png).size(), QSize(3179, 2246)); // 841 × 594 mm at 96 dots to the inch
    // Half the scale fills about a quarter of the ink's area.
    const double large = inked(QImage(png));
    ASSERT_EQ(plot({ plan, png, "--paper", "A1", "--scale", "1:400" }), 0);
    EXPECT_LT(inked(QImage(png)), 0.7 * large);
    ASSERT_EQ(plot({ plan, png, "--size", "800x300" }), 0);
    EXPECT_EQ(QImage(png).size(), QSize(800, 300));
}

TEST_F(Plot, LayoutsShowTheModelThroughTheirViewports)
{
    const QString png = folder.filePath("p.png");
    ASSERT_EQ(plot({ viewports, png, "--layout", "Layout1", "--size", "1200x900" }), 0) << qPrintable(said);
    const QImage sheet(png);
    // The largest viewport lies on the left of the upper half; inside it the frame of a picture.
    int lines = 0;
    bool wasDark = false;
    for (int x = 20; x < 278; ++x) {
        const bool isDark = qGray(sheet.pixel(x, 220)) < 128;
        lines += isDark && !wasDark;
        wasDark = isDark;
    }
    EXPECT_EQ(lines, 4);
}

// A layout comes on its own paper, true to scale: the garden's boundary lies where the viewport puts it.
TEST_F(Plot, LayoutsLieOnTheirPaper)
{
    const QString png = folder.filePath("p.png"), pdf = folder.filePath("p.pdf");
    ASSERT_EQ(plot({ plan, png, "--layout", "LS-01" }), 0) << qPrintable(said);
    const QImage sheet(png);
    EXPECT_EQ(sheet.size(), QSize(1600, 904)); // 1051 × 594 mm
    std::vector<int> columns; // that are red nearly all the way
    for (int x = 0; x < sheet.width(); ++x) {
        int red = 0;
        for (int y = 0; y < sheet.height(); ++y) {
            const QRgb pixel = sheet.pixel(x, y);
            red += qRed(pixel) > qGreen(pixel) + 60 && qRed(pixel) > qBlue(pixel) + 60;
        }
        if (red > 450)
            columns.push_back(x);
    }
    ASSERT_FALSE(columns.empty());
    // 109 m of the site at 1:150, 6.7 m behind the viewport's edge at 25.5 mm.
    const double pixelsPerMillimetre = 1600 / 1051.0;
    EXPECT_NEAR(columns.front(), (25.5 + 6.7e3 / 150) * pixelsPerMillimetre, 2);
    EXPECT_NEAR(columns.back() - columns.front(), 109e3 / 150 * pixelsPerMillimetre, 3);

    // Of another shape than the paper: the whole sheet, in the middle.
    ASSERT_EQ(plot({ plan, png, "--layout", "LS-01", "--size", "800x800" }), 0) << qPrintable(said);
    const QImage square(png);
    EXPECT_EQ(square.size(), QSize(800, 800));
    EXPECT_EQ(qGray(square.pixel(400, 100)), 255);

    // On a paper that is asked for it is fitted.
    ASSERT_EQ(plot({ plan, png, "--layout", "LS-01", "--paper", "A3" }), 0) << qPrintable(said);
    EXPECT_EQ(QImage(png).size(), QSize(1588, 1123));
}
