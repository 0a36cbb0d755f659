// How texts are drawn: places of the ink, colours, lines, backgrounds; agreement with their measured boxes.

#include "entities/recorder.h"
#include "entities/texts.h"

#include <gtest/gtest.h>

using entities_test::drawn;
using entities_test::mtext;
using entities_test::Recorder;

namespace {

constexpr double kNear = 1e-9;

KcDbText line(const QString& contents, int horizontal, int vertical)
{
    KcDbText text;
    KcDbText::Data& d = text.data();
    d.text = contents;
    d.height = 10.0;
    d.horizontal = horizontal;
    d.vertical = vertical;
    d.alignment = { 100, 50, 0 };
    d.position = d.alignment; // as programs write that leave the computing to the reader
    return text;
}

void expectSameBox(const KcGeExtents3d& a, const KcGeExtents3d& b, const std::string& name)
{
    ASSERT_FALSE(a.isEmpty()) << name;
    EXPECT_LT(a.min.distanceTo(b.min), 1e-6) << name;
    EXPECT_LT(a.max.distanceTo(b.max), 1e-6) << name;
}

} // namespace

// A text stood where the file's start said, which fits another font or was never computed.
TEST(DrawnText, InkStandsWhereTheJustificationSays)
{
    struct Case {
        int horizontal, vertical;
        double along, up; ///< of the anchor, as shares of the ink's width and of the capitals' height
    };
    const double below = -KcGi::textDescent({}, 1.0); // what a line of this font keeps below its base line
    const Case cases[]
        = { { 1, 0, 0.5, 0.0 },   { 2, 0, 1.0, 0.0 },   { 4, 0, 0.5, 0.5 }, { 0, 1, 0.0, below },
            { 1, 1, 0.5, below }, { 2, 1, 1.0, below }, { 0, 2, 0.0, 0.5 }, { 1, 2, 0.5, 0.5 },
            { 2, 2, 1.0, 0.5 },   { 0, 3, 0.0, 1.0 },   { 1, 3, 0.5, 1.0 }, { 2, 3, 1.0, 1.0 },
            { 0, 0, 0.0, 0.0 } };
    for (const Case& c : cases) {
        const Recorder seen = drawn(line(QStringLiteral("HHH"), c.horizontal, c.vertical));
        ASSERT_EQ(seen.texts.size(), 1u);
        const double x = 100.0 - c.along * seen.box.width(), y = 50.0 - c.up * 10.0;
        EXPECT_NEAR(seen.box.min.x, x, kNear) << c.horizontal << c.vertical;
        EXPECT_NEAR(seen.texts[0].origin.y, y, kNear) << c.horizontal << c.vertical;
        EXPECT_NEAR(seen.box.max.y - seen.texts[0].origin.y, 10.0, 1e-6) << "capitals have the text's height";
    }
    // Fit keeps the height and changes the width; aligned keeps the proportions.
    for (const int between : { 3, 5 }) {
        KcDbText text = line(QStringLiteral("HHHHHH"), between, 0);
        text.data().position = { 0, 50, 0 };
        const Recorder seen = drawn(text);
        EXPECT_NEAR(seen.box.min.x, 0.0, kNear);
        EXPECT_NEAR(seen.box.max.x, 100.0, 1e-6);
        EXPECT_EQ(seen.texts[0].height == 10.0, between == 5);
    }
}

TEST(DrawnText, SlantMirrorsAndAngle)
{
    KcDbText text = line(QStringLiteral("HH"), 0, 0);
    text.data().position = { 0, 0, 0 };
    text.data().rotation = kPi / 2.0;
    text.data().oblique = kPi / 4.0;
    text.data().widthFactor = 0.5;
    KcGiTextRun run = drawn(text).texts.at(0);
    EXPECT_LT((run.along - KcGeVector3d{ 0, 0.5, 0 }).length(), kNear);
    EXPECT_LT((run.up - KcGeVector3d{ -1, 1, 0 }).length(), kNear);
    text.data() = KcDbText::Data();
    text.data().text = QStringLiteral("H");
    text.data().generation = 2 | 4;
    run = drawn(text).texts.at(0);
    EXPECT_LT((run.along - KcGeVector3d{ -1, 0, 0 }).length(), kNear);
    EXPECT_LT((run.up - KcGeVector3d{ 0, -1, 0 }).length(), kNear);
}

TEST(DrawnText, MarksOfControlCodes)
{
    const Recorder seen = drawn(line(QStringLiteral("ab%%ucd%%u%%oe"), 0, 0));
    ASSERT_EQ(seen.texts.size(), 3u);
    EXPECT_EQ(seen.texts[1].text, QStringLiteral("cd"));
    ASSERT_EQ(seen.strokes.size(), 2u);
    EXPECT_NEAR(seen.strokes[0].points[0].x, seen.texts[1].origin.x, kNear);
    EXPECT_NEAR(seen.strokes[0].points[1].x, seen.texts[2].origin.x, kNear);
    EXPECT_LT(seen.strokes[0].points[0].y, seen.texts[1].origin.y);
    EXPECT_GT(seen.strokes[1].points[0].y, seen.texts[2].origin.y + 10.0);
}

TEST(DrawnText, BoxesAgreeWithTheInk)
{
    for (const QString& contents :
         { QStringLiteral("Plan"), QStringLiteral("乔木数量 %%c50"), QStringLiteral("gy") })
        for (const int horizontal : { 0, 1, 2, 4 }) {
            KcDbText text = line(contents, horizontal, horizontal == 1 ? 3 : 0);
            text.data().rotation = 0.4;
            text.data().oblique = 0.2;
            expectSameBox(drawn(text).box, text.geomExtents(), contents.toStdString());
        }
    const QString coded
        = QStringLiteral("{\\fSimSun|b1;\\H2x;大}a\\P\\Q15;slanted \\S1/2; \\Tx;\\W0.5;narrow");
    for (int attachment = 1; attachment <= 9; ++attachment) {
        KcDbMText text = mtext(coded, 80.0);
        text.data().attachment = attachment;
        text.data().rotation = 0.3;
        expectSameBox(drawn(text).box, text.geomExtents(), "attachment " + std::to_string(attachment));
    }
}

TEST(DrawnMText, ColoursRulesAndTracking)
{
    const Recorder seen = drawn(mtext(QStringLiteral("own\\C1;red\\c16711680;blue\\C3;{\\Lunder}{\\T2;AB}")));
    ASSERT_EQ(seen.texts.size(), 6u); // tracked letters are drawn one by one
    EXPECT_EQ(seen.textColors[0], seen.entityColor());
    EXPECT_EQ(seen.textColors[1], (KcGiColor{ 1, -1 }));
    EXPECT_EQ(seen.textColors[2].rgb, 0x0000ff);
    ASSERT_EQ(seen.strokes.size(), 1u);
    EXPECT_EQ(seen.strokes[0].color, (KcGiColor{ 3, -1 }));
    const double advance = KcGi::textAdvance(seen.texts[4].style, u"A", 10.0);
    EXPECT_NEAR(seen.texts[5].origin.x - seen.texts[4].origin.x, 2.0 * advance, 1e-9);
}

TEST(DrawnMText, FractionsTabsAndLinesThrough)
{
    const Recorder seen = drawn(mtext(QStringLiteral("\\pt3,12;\\S1/23;\t{\\Oover}\t{\\Kstruck}")));
    ASSERT_EQ(seen.texts.size(), 4u);
    const KcGiTextRun &over = seen.texts[0], &under = seen.texts[1];
    EXPECT_GT(over.origin.y, under.origin.y + under.height) << "the numerator stands above the denominator";
    EXPECT_GT(over.origin.x, under.origin.x) << "one digit is centred over two";
    ASSERT_EQ(seen.strokes.size(), 3u);
    const double line = seen.strokes[0].points[0].y;
    EXPECT_GT(line, under.origin.y + under.height);
    EXPECT_LT(line, over.origin.y);
    EXPECT_NEAR(seen.texts[2].origin.x, 30.0, kNear) << "the first tab, in heights";
    EXPECT_NEAR(seen.texts[3].origin.x, 120.0, kNear) << "the second tab";
    EXPECT_GT(seen.strokes[1].points[0].y, seen.texts[2].origin.y + 10.0);
    EXPECT_NEAR(seen.strokes[2].points[0].y, seen.texts[3].origin.y + 4.0, kNear);
}

// Fonts that no computer has are drawn in one that has every character of the text, the one it is measured
// in.
TEST(DrawnMText, ShapeFontsHaveChineseCharacters)
{
    for (const char* code : { "\\Ftxt.shx,gbcbig.shx;", "\\fno such font|b0;", "\\Fno-such.ttf;" }) {
        const Recorder seen = drawn(mtext(QLatin1String(code) + QStringLiteral("树 A")));
        ASSERT_EQ(seen.texts.size(), 1u) << code;
        const KcGi::TextStyle& style = seen.texts[0].style;
        const QString family = KcGi::fontForStyle(style.font, style.bigFont, style.typeface);
        EXPECT_FALSE(family.isEmpty());
        EXPECT_EQ(KcGi::fontForCharacter(U'树', family), family) << code;
    }
}

TEST(DrawnMText, BackgroundIsDrawnFirstAndCoversTheText)
{
    KcDbMText text = mtext(QStringLiteral("label"));
    text.data().fillMode = 1;
    text.data().fillColor = 5;
    text.data().fillFactor = 1.5;
    const Recorder filled = drawn(text);
    ASSERT_EQ(filled.fills.size(), 1u);
    EXPECT_EQ(filled.fills[0].color.index, 5);
    EXPECT_NEAR(filled.fills[0].points[0].x, filled.texts[0].origin.x - 5.0, kNear);
    text.data().fillMode = 3; // the background's colour wins over the other
    const Recorder masked = drawn(text);
    EXPECT_TRUE(masked.fills.empty());
    EXPECT_EQ(masked.masks.size(), 1u);
}

// The pieces of justified lines must reach both edges; the last line of a paragraph keeps its blanks.
TEST(DrawnMText, JustifiedLinesReachBothEdges)
{
    const KcDbMText text = mtext(QStringLiteral("\\pqj;aa bb cc dd ee ff gg hh ii jj"), 75.0);
    const KcDbMTextLayout set = text.layout();
    ASSERT_GE(set.lines.size(), 2u);
    double right = 0.0, last = 0.0;
    for (const auto& piece : set.pieces)
        (piece.baseline == set.lines[0].baseline ? right : last)
            = std::max(piece.baseline == set.lines[0].baseline ? right : last, piece.x + piece.width);
    EXPECT_NEAR(right, 75.0, 1e-9);
    EXPECT_NEAR(set.lines[0].width, 75.0, 1e-9);
    EXPECT_LT(set.lines.back().width, 75.0);
}

// Damage must cost neither time nor the program.
TEST(DrawnMText, HostileContents)
{
    const QString deep = QString(100'000, u'{') + QStringLiteral("x") + QString(100'000, u'}');
    EXPECT_EQ(drawn(mtext(deep)).texts.size(), 1u);
    const Recorder codes
        = drawn(mtext(QString(QStringLiteral("\\H1.1x;{\\C1;a\\S")).repeated(70'000), 100.0));
    EXPECT_FALSE(codes.texts.empty());
    for (const char* endless : { "\\S", "\\f", "\\p", "\\H" })
        EXPECT_FALSE(drawn(mtext(QString::fromLatin1(endless).repeated(500'000), 100.0)).texts.empty());
    const QString words = QStringLiteral("word 树木 ").repeated(110'000);
    const Recorder many = drawn(mtext(words, 400.0));
    EXPECT_GT(many.texts.size(), 1'000u);
    KcDbMText flat = mtext(QStringLiteral("x"));
    for (const double height : { 0.0, -1.0, std::numeric_limits<double>::quiet_NaN() }) {
        flat.data().height = height;
        EXPECT_EQ(drawn(flat).missing.size(), 1);
    }
}

namespace {

KcDbMText inColumns(const QString& contents, KcDbMTextColumns columns, double definedHeight = 0.0)
{
    KcDbMText text = mtext(contents, 500.0);
    text.data().definedHeight = definedHeight;
    columns.width = 100.0;
    columns.gutter = 20.0;
    text.data().columns = std::make_shared<const KcDbMTextColumns>(std::move(columns));
    return text;
}

/// Where the texts stand: column and line, counted from 0.
std::vector<std::pair<int, int>> places(const KcDbMText& text)
{
    std::vector<std::pair<int, int>> result;
    for (const KcGiTextRun& run : drawn(text).texts)
        result.emplace_back(
            int(std::lround(run.origin.x / 120.0)),
            int(std::lround((-10.0 - run.origin.y) / KcGi::lineSpacing(10.0))));
    return result;
}

using Places = std::vector<std::pair<int, int>>;

} // namespace

// Texts in columns were one long column as wide as all of them together.
TEST(DrawnMText, ColumnsFillOneAfterTheOther)
{
    using Kind = KcDbMTextColumns::Kind;
    const QString five = QStringLiteral("a\\Pb\\Pc\\Pd\\Pe");
    // Two lines go into 30: base lines at 10 and 26.7.
    KcDbMTextColumns fixed{ Kind::kStatic, 2 };
    EXPECT_EQ(
        places(inColumns(five, fixed, 30)), (Places{ { 0, 0 }, { 0, 1 }, { 1, 0 }, { 1, 1 }, { 1, 2 } }))
        << "the last static column takes what is left";
    fixed.reversed = true;
    EXPECT_EQ(places(inColumns(five, fixed, 30)).front(), (std::pair{ 1, 0 }));
    KcDbMTextColumns growing{ Kind::kDynamic, 1 };
    growing.autoHeight = true;
    EXPECT_EQ(
        places(inColumns(five, growing, 30)), (Places{ { 0, 0 }, { 0, 1 }, { 1, 0 }, { 1, 1 }, { 2, 0 } }));
    KcDbMTextColumns own{ Kind::kDynamic, 3 };
    own.heights = { 12, 45, 0 };
    EXPECT_EQ(places(inColumns(five, own)), (Places{ { 0, 0 }, { 1, 0 }, { 1, 1 }, { 1, 2 }, { 2, 0 } }));
    // Breaks that the text asks for, and lines that break at the column's width.
    EXPECT_EQ(
        places(inColumns(QStringLiteral("a\\Nb"), KcDbMTextColumns{ Kind::kStatic, 2 })),
        (Places{ { 0, 0 }, { 1, 0 } }));
    EXPECT_GT(inColumns(QStringLiteral("树").repeated(30), growing).layout().lines.size(), 3u);
    // The frame that the attachment refers to is that of all columns; scaled, they stay columns.
    KcDbMText right = inColumns(five, fixed, 30);
    right.data().attachment = 3;
    EXPECT_NEAR(right.layout().right, 0.0, kNear);
    EXPECT_NEAR(drawn(right).texts[2].origin.x + right.layout().lines[2].width, -120.0, kNear);
    KcDbMText large = inColumns(five, own);
    ASSERT_EQ(large.transformBy(KcGeMatrix3d::scaling({ 3, 3, 3 })), Kcad::eOk);
    EXPECT_EQ(large.layout().lines.size(), 5u);
    EXPECT_NEAR(drawn(large).texts.back().origin.x, 720.0, 1e-6);
    // Widths and counts of damaged files.
    KcDbMTextColumns damaged{ Kind::kDynamic, 2'000'000'000 };
    damaged.heights.assign(10, -1.0);
    EXPECT_EQ(places(inColumns(five, damaged)).size(), 5u);
}
