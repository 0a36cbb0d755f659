// PLOT as it is typed.

#include "ed/session.h"

#include <QFile>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using ed_test::Session;

TEST(PlotCommand, AsksAgainForWhatIsWrongAndWritesTheFile)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("plan.png");
    Session session;
    session.addLine(0, 0, 200, 100);
    EXPECT_EQ(
        session.run({ "PLOT", folder.filePath("plan.bmp"), folder.filePath("none/plan.png"), path, "Window",
                      "0,0", "100,0", "0,0", "200,100", "A0x", "400x200", "2", "1:1" }),
        0)
        << qPrintable(session.printed);
    EXPECT_TRUE(session.printed.contains("A plot is a .pdf, .png or .svg file"));
    EXPECT_TRUE(session.printed.contains("There is no folder"));
    EXPECT_TRUE(session.printed.contains("The corners lie on a line."));
    EXPECT_TRUE(session.printed.contains("There is no paper \"A0x\"."));
    EXPECT_TRUE(session.printed.contains("\"2\" is no scale."));
    // 400 × 200 mm at 96 dots to the inch; the line runs over the middle half.
    const QImage image(path);
    ASSERT_EQ(image.size(), QSize(1512, 756));
    const auto isDrawn = [&](int x, int y) {
        int darkest = 255;
        for (int dx = -2; dx <= 2; ++dx)
            darkest = std::min(darkest, qGray(image.pixel(x + dx, y)));
        return darkest < 128;
    };
    EXPECT_TRUE(isDrawn(756, 378)) << qPrintable(session.printed);
    EXPECT_TRUE(isDrawn(400, 556));
    EXPECT_FALSE(isDrawn(300, 606));
}

TEST(PlotCommand, EnterTakesWhatIsOfferedAndEscapeWritesNothing)
{
    const QTemporaryDir folder;
    Session session;
    session.addLine(0, 0, 200, 100);
    session.database.setFileName(folder.filePath("plan.dxf"));
    session.run({ "PLOT", "", "Extents", "^C" });
    EXPECT_FALSE(QFile::exists(folder.filePath("plan.pdf")));
    EXPECT_EQ(session.run({ "PLOT", "", "Extents", "Fit", "Fit" }), 0);
    QFile file(folder.filePath("plan.pdf"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().startsWith("%PDF-"));
}

TEST(PlotCommand, PlotsALayoutByName)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath("sheet.svg");
    Session session;
    EXPECT_EQ(session.run({ "PLOT", path, "Layout", "no such", "Layout1", "A3", "Fit" }), 0)
        << qPrintable(session.printed);
    EXPECT_TRUE(session.printed.contains("There is no layout \"no such\"."));
    EXPECT_TRUE(QFile::exists(path));
}
