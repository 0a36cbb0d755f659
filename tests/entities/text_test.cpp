// Texts: control codes, format codes, line breaks, justification and boxes.

#include "db/database.h"
#include "db/tables.h"
#include "entities/texts.h"

#include <gtest/gtest.h>

using entities_test::mtext;

namespace {

KcDbText sample(int horizontal, int vertical)
{
    KcDbText text;
    text.data().height = 10;
    text.data().text = QStringLiteral("HHHH");
    text.data().horizontal = horizontal;
    text.data().vertical = vertical;
    text.data().alignment = { 100, 50, 0 };
    text.adjustAlignment();
    return text;
}

} // namespace

TEST(Text, ControlCodes)
{
    struct Case {
        const char* name;
        QString text, plain;
    };
    const Case cases[] = {
        { "signs", QStringLiteral("%%c50 %%p1 45%%D"), QStringLiteral("⌀50 ±1 45°") },
        { "lines", QStringLiteral("%%uunder%%u %%oover"), QStringLiteral("under over") },
        { "character", QStringLiteral("%%065%%176"), QStringLiteral("A°") },
        { "percent", QStringLiteral("50%%% 100%"), QStringLiteral("50% 100%") },
        { "special font's", QStringLiteral("%%1328"), QStringLiteral("%%1328") },
        { "cut short", QStringLiteral("%%"), QStringLiteral("%%") },
        { "escapes", QStringLiteral("\\U+4E2D\\M+5B0A1\\U+12"), QStringLiteral("中啊\\U+12") },
    };
    for (const Case& c : cases) {
        KcDbText text;
        text.data().text = c.text;
        EXPECT_EQ(text.plainText().toStdString(), c.plain.toStdString()) << c.name;
    }
    const auto runs = KcDbText::runsOf(QStringLiteral("a%%ub%%oc%%ud"));
    ASSERT_EQ(runs.size(), 4u);
    EXPECT_TRUE(runs[1].underlined && !runs[1].overlined);
    EXPECT_TRUE(runs[2].underlined && runs[2].overlined);
    EXPECT_TRUE(!runs[3].underlined && runs[3].overlined);
}

TEST(Text, MeasuresInHeightsOfCapitals)
{
    KcDbText text = sample(0, 0);
    const double width = text.textWidth();
    EXPECT_GT(width, 20.0);
    EXPECT_LT(width, 60.0);
    const KcGeExtents3d box = text.geomExtents();
    EXPECT_NEAR(box.max.y - box.min.y, 10.0, 0.05); // capitals are as tall as the text
    EXPECT_NEAR(box.width(), width, 1e-9);
    text.data().widthFactor = 0.7;
    EXPECT_NEAR(text.textWidth(), 0.7 * width, 1e-9);
    text.data().text = QStringLiteral("   ");
    EXPECT_TRUE(text.geomExtents().isEmpty());
    // A Chinese character is an em square wide, and wider than a capital is tall.
    text.data().widthFactor = 1;
    text.data().text = QStringLiteral("树");
    EXPECT_GT(text.textWidth(), 10.0);
    EXPECT_LT(text.textWidth(), 20.0);
}

TEST(Text, Justification)
{
    const double width = sample(0, 0).textWidth();
    struct Case {
        const char* name;
        int horizontal, vertical;
        double dx, dy; // of the text's start from the alignment point
    };
    const Case cases[] = {
        { "centre", 1, 0, -width / 2, 0 },    { "right", 2, 0, -width, 0 },
        { "middle", 4, 0, -width / 2, -5 },   { "top left", 0, 3, 0, -10 },
        { "middle right", 2, 2, -width, -5 },
    };
    for (const Case& c : cases) {
        KcDbText text = sample(c.horizontal, c.vertical);
        EXPECT_NEAR(text.data().position.x, 100 + c.dx, 1e-9) << c.name;
        EXPECT_NEAR(text.data().position.y, 50 + c.dy, 1e-9) << c.name;
        EXPECT_TRUE(text.anchor().isEqualTo({ 100, 50, 0 })) << c.name;
        // Longer text, same alignment point; turned a quarter the shift turns with it.
        text.data().rotation = kPi / 2;
        text.setTextString(QStringLiteral("HHHHHHHH"));
        EXPECT_NEAR(text.data().position.x, 100 - c.dy, 1e-9) << c.name;
        EXPECT_NEAR(text.data().position.y, 50 + 2 * c.dx, 1e-9) << c.name;
    }
    KcDbText bottom = sample(0, 1);
    EXPECT_GT(bottom.data().position.y, 50.5); // descenders stand on the alignment point

    for (const int mode : { 3, 5 }) { // aligned, fit: from the position to the alignment point
        KcDbText text = sample(mode, 0);
        EXPECT_NEAR(text.textWidth(), std::hypot(100, 50), 1e-6) << mode;
        EXPECT_NEAR(text.data().rotation, std::atan2(50, 100), 1e-12) << mode;
        EXPECT_EQ(text.height() == 10.0, mode == 5);
        EXPECT_EQ(text.data().widthFactor == 1.0, mode == 3);
        text.data().alignment = text.data().position;
        text.adjustAlignment(); // no way between the points: stays as it is
        EXPECT_TRUE(std::isfinite(text.height()) && text.height() > 0);
    }
}

TEST(Text, TransformsKeepEveryCorner)
{
    const std::pair<const char*, KcGeMatrix3d> transforms[] = {
        { "turned", KcGeMatrix3d::rotation(2.5) },
        { "mirrored left to right", KcGeMatrix3d::mirroring({}, { 0, 1, 0 }) },
        { "mirrored up to down", KcGeMatrix3d::mirroring({}, { 1, 0, 0 }) },
        { "mirrored askew, larger",
          KcGeMatrix3d::scaling(3) * KcGeMatrix3d::mirroring({ 1, 2, 0 }, { 1, 3, 0 }) },
        { "uneven", KcGeMatrix3d::scaling(KcGeVector3d{ 2, 0.5, 1 }) },
        { "turned over", KcGeMatrix3d::rotation(kPi, { 0, 1, 0 }) },
        { "tilted", KcGeMatrix3d::rotation(1.2, { 1, 2, 3 }) },
    };
    for (const int generation : { 0, 2, 4, 6 })
        for (const auto& [name, matrix] : transforms) {
            KcDbText text = sample(1, 2);
            text.data().generation = generation;
            text.data().rotation = 0.5;
            text.data().oblique = 0.2;
            text.adjustAlignment();
            const double width = text.textWidth(), height = text.height();
            const KcGeMatrix3d before = matrix * text.textTransform();
            ASSERT_EQ(text.transformBy(matrix), Kcad::eOk);
            // The corners of the text, set anew with its new size, stand where the old ones went.
            const double newWidth = text.textWidth(), newHeight = text.height();
            for (const auto& [x, y] :
                 { std::pair(0, 0), std::pair(1, 0), std::pair(0, 1), std::pair(1, 1) }) {
                const KcGePoint3d expected = before * KcGePoint3d{ x * width, y * height, 0 };
                const KcGePoint3d actual
                    = text.textTransform() * KcGePoint3d{ x * newWidth, y * newHeight, 0 };
                EXPECT_LT(actual.distanceTo(expected), 1e-6) << name << ' ' << generation << ' ' << x << y;
            }
            const KcGePoint3d place = text.data().position;
            if (name[0] != 'u') { // justified by its own font, it stays where it went
                text.adjustAlignment();
                EXPECT_LT(place.distanceTo(text.data().position), 1e-6) << name << ' ' << generation;
            }
        }
}

TEST(MText, PlainText)
{
    struct Case {
        const char* name;
        QString contents, plain;
    };
    const Case cases[] = {
        { "paragraphs", QStringLiteral("a\\Pb\\Nc"), QStringLiteral("a\nb\nc") },
        { "looks", QStringLiteral("{\\fSimSun|b0|i0|c134|p2;\\H1.5x;\\C1;乔木}\\A1;x"),
          QStringLiteral("乔木x") },
        { "semicolons left out", QStringLiteral("\\H2.5text \\C3red"), QStringLiteral("text red") },
        { "literals", QStringLiteral("\\{\\}\\\\ a\\~b"), QStringLiteral("{}\\ a b") },
        { "fraction", QStringLiteral("\\S1/2; \\S3#4;"), QStringLiteral("1/2 3/4") },
        { "superscript", QStringLiteral("m\\S2^;"), QStringLiteral("m2") },
        { "tolerance", QStringLiteral("\\S+1^ -2;"), QStringLiteral("+1^-2") },
        { "escaped in a stack", QStringLiteral("\\Sa\\/b/c;"), QStringLiteral("a/b/c") },
        { "carets", QStringLiteral("a^Ib^ c^"), QStringLiteral("a\tb^c^") },
        { "codes of texts", QStringLiteral("%%c5 \\U+4E2D\\M+5B0A1"), QStringLiteral("⌀5 中啊") },
        { "paragraph looks", QStringLiteral("\\pi-2,l2,qc,t4,8;x"), QStringLiteral("x") },
        { "unbalanced", QStringLiteral("}}a{{b"), QStringLiteral("ab") },
        { "never ended", QStringLiteral("a\\S1/2 \\fArial"), QStringLiteral("aS1/2 fArial") },
        { "last backslash", QStringLiteral("a\\"), QStringLiteral("a\\") },
    };
    for (const Case& c : cases)
        EXPECT_EQ(mtext(c.contents).plainText().toStdString(), c.plain.toStdString()) << c.name;
}

TEST(MText, LooksOfRuns)
{
    const auto runs
        = mtext(
              QStringLiteral("a{\\H2x;\\W0.5;\\Q30;\\C3;\\Lb{\\H5;c}\\l\\c255;d}\\fArial|b1;e\\Ftxt,hztxt;f"))
              .runs();
    ASSERT_EQ(runs.size(), 6u);
    EXPECT_EQ(runs[0].format.height, 10);
    EXPECT_EQ(runs[1].format.height, 20);
    EXPECT_EQ(runs[1].format.widthFactor, 0.5);
    EXPECT_NEAR(runs[1].format.oblique, kPi / 6, 1e-12);
    EXPECT_EQ(runs[1].format.colorIndex, 3);
    EXPECT_TRUE(runs[1].format.underline);
    EXPECT_EQ(runs[2].format.height, 5);
    EXPECT_EQ(runs[3].format.height, 20);
    EXPECT_FALSE(runs[3].format.underline);
    EXPECT_EQ(runs[3].format.rgb, 0xff0000); // red stands in the lowest byte of the code
    EXPECT_EQ(runs[4].format.height, 10);
    EXPECT_EQ(runs[4].format.font.typeface, QStringLiteral("Arial"));
    EXPECT_TRUE(runs[4].format.font.bold);
    EXPECT_EQ(runs[5].format.font.bigFont, QStringLiteral("hztxt"));
}

TEST(MText, LinesBreak)
{
    const double twoWords
        = mtext(QStringLiteral("HHHH HHH")).actualWidth(); // room for a long and a short one
    const double ideograph = mtext(QStringLiteral("树")).actualWidth();
    struct Case {
        const char* name;
        QString contents;
        double width;
        QStringList lines;
    };
    const Case cases[] = {
        { "no width", QStringLiteral("one two\\Pthree"), 0, { "one two", "three" } },
        { "between words", QStringLiteral("HHHH HHHH HH"), twoWords, { "HHHH", "HHHH HH" } },
        { "a word too long", QStringLiteral("a HHHHHHHHHHHH b"), 30, { "a", "HHHHHHHHHHHH", "b" } },
        { "between characters", QStringLiteral("银杏香樟树"), 2.5 * ideograph, { "银杏", "香樟", "树" } },
        { "no comma in front", QStringLiteral("银杏，香樟"), 2.5 * ideograph, { "银", "杏，", "香樟" } },
        { "no bracket behind", QStringLiteral("银（杏）"), 2.5 * ideograph, { "银", "（杏）" } },
        { "empty paragraph", QStringLiteral("a\\P\\Pb"), 0, { "a", "", "b" } },
        { "nothing", QString(), 50, {} },
    };
    for (const Case& c : cases) {
        const KcDbMText text = mtext(c.contents, c.width);
        EXPECT_EQ(text.lines().join(u'|').toStdString(), c.lines.join(u'|').toStdString()) << c.name;
        EXPECT_EQ(text.lines().size(), c.lines.size()) << c.name;
    }
}

TEST(MText, SizeAndPlace)
{
    // Three lines of height 10: capitals of the first, and two steps of 5/3 of the height.
    EXPECT_NEAR(mtext(QStringLiteral("H\\PH\\PH")).actualHeight(), 10 + 2 * 50.0 / 3, 1e-9);
    // A line with larger letters moves down as a whole.
    EXPECT_NEAR(mtext(QStringLiteral("H\\P{\\H20;H}")).actualHeight(), 10 + 100.0 / 3, 1e-9);

    const double width = mtext(QStringLiteral("HHHH")).actualWidth();
    for (int attachment = 1; attachment <= 9; ++attachment) {
        KcDbMText text = mtext(QStringLiteral("HHHH\\PHH"));
        const double height = text.actualHeight();
        text.data().attachment = attachment;
        text.data().location = { 100, 200, 3 };
        const KcGeExtents3d box = text.geomExtents();
        const double column = (attachment - 1) % 3 / 2.0, row = (attachment - 1) / 3 / 2.0;
        EXPECT_NEAR(box.min.x, 100 - column * width, 1e-6) << attachment;
        EXPECT_NEAR(box.max.x, 100 + (1 - column) * width, 1e-6) << attachment;
        EXPECT_NEAR(box.max.y, 200 + row * height, 0.05) << attachment;
        EXPECT_NEAR(box.min.y, 200 - (1 - row) * height, 0.05) << attachment;
        EXPECT_EQ(box.min.z, 3) << attachment;
        // Turned a quarter by its direction: what was right is up.
        text.data().hasDirection = true;
        text.data().direction = { 0, 1, 0 };
        const KcGeExtents3d turned = text.geomExtents();
        EXPECT_NEAR(turned.min.y, 200 + box.min.x - 100, 1e-6) << attachment;
        EXPECT_NEAR(turned.min.x, 100 - (box.max.y - 200), 1e-6) << attachment;
    }
}

TEST(MText, DamagedHeightsDrawNothing)
{
    for (const double height : { 0.0, -1.0, std::numeric_limits<double>::quiet_NaN() }) {
        KcDbMText text = mtext(QStringLiteral("a^Ib"));
        text.data().height = height;
        EXPECT_EQ(text.actualWidth(), 0.0);
        EXPECT_TRUE(text.geomExtents().isEmpty());
        EXPECT_EQ(text.plainText(), QStringLiteral("a\tb"));
    }
}

TEST(MText, TransformsKeepThePlace)
{
    for (const bool hasDirection : { false, true })
        for (const KcGeMatrix3d& matrix :
             { KcGeMatrix3d::rotation(1.0, KcGeVector3d::kZAxis, { 3, 4, 0 }), KcGeMatrix3d::scaling(2.5),
               KcGeMatrix3d::mirroring({ 5, 5, 0 }, { 1, 4, 0 }),
               KcGeMatrix3d::rotation(0.8, { 1, 0, 1 }) }) {
            KcDbMText text = mtext(QStringLiteral("HHHH HHHH HHHH"), 70);
            text.data().location = { 100, 200, 0 };
            text.data().hasDirection = hasDirection;
            text.data().direction = { 0.6, 0.8, 0 };
            text.data().rotation = 0.3;
            const KcGeExtents3d expected = text.extentsUnder(matrix);
            const QStringList lines = text.lines();
            ASSERT_EQ(text.transformBy(matrix), Kcad::eOk);
            const KcGeExtents3d box = text.geomExtents();
            EXPECT_LT((box.min - expected.min).length(), 1e-6);
            EXPECT_LT((box.max - expected.max).length(), 1e-6);
            EXPECT_EQ(text.lines(), lines);
        }
}

TEST(MText, FontFollowsTheStyle)
{
    KcDbDatabase db;
    auto record = std::make_unique<KcDbTextStyleTableRecord>();
    record->initName(QStringLiteral("wide"));
    record->data().widthFactor = 2.0;
    const KcDbObjectId wide = KcDbWrite<KcDbSymbolTable>(db.textStyleTable())->add(std::move(record));
    KcDbMText text = mtext(QStringLiteral("HHHH"));
    const double width = text.actualWidth();
    text.data().style = wide;
    EXPECT_NEAR(text.actualWidth(), 2 * width, 1e-9);

    EXPECT_FALSE(KcGi::fontForStyle(QStringLiteral("txt.shx"), QStringLiteral("hztxt.shx"), {}).isEmpty());
    // A family that is not installed gives one that is; the typeface wins over the file.
    const QString family = KcGi::fontForStyle(QStringLiteral("simsun.ttc"), {}, {});
    EXPECT_FALSE(family.isEmpty());
    EXPECT_EQ(KcGi::fontForStyle(QStringLiteral("txt.shx"), {}, family).toStdString(), family.toStdString());
    // Whatever the family, a Chinese character has a font, and the diameter sign has a width.
    const KcGi::TextStyle latin{ {}, {}, QStringLiteral("DejaVu Sans") };
    EXPECT_GT(KcGi::textAdvance(latin, u"树", 10), 9.0);
    EXPECT_NEAR(KcGi::textAdvance(latin, u"\u2300", 10), KcGi::textAdvance(latin, u"\u00d8", 10), 1e-12);
}
