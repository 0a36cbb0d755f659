// Texts are measured in one place and drawn in another: both must be about the same letters.

#include "gi/paint/painter_device.h"

#include <gtest/gtest.h>

TEST(Glyphs, AreAsLargeAsTheyAreMeasured)
{
    KcGi::TextStyle bold;
    bold.bold = true;
    KcGi::TextStyle shape;
    shape.font = QStringLiteral("romans.shx");
    shape.bigFont = QStringLiteral("hztxt.shx");
    KcGi::TextStyle missing;
    missing.typeface = QStringLiteral("a family that nobody has");
    const QString texts[] = { QStringLiteral("Quercus robur"), QStringLiteral("树木数量 12 株"),
                              QStringLiteral("\u2300 50"), QStringLiteral("Ω≥½ gy") };
    for (const KcGi::TextStyle& style : { KcGi::TextStyle(), bold, shape, missing })
        for (const QString& text : texts) {
            SCOPED_TRACE(text.toStdString());
            const KcGi::TextExtent size = KcGi::textExtent(style, text, 1.0);
            const QRectF ink = kcgiGlyphs(style, text).boundingRect();
            // The outlines keep within the advance but for the side bearings of a letter.
            EXPECT_NEAR(ink.left(), 0.0, 0.2);
            EXPECT_NEAR(ink.right(), size.advance, 0.25);
            EXPECT_NEAR(ink.top(), size.bottom, 0.02);
            EXPECT_NEAR(ink.bottom(), size.top, 0.02);
        }
}
