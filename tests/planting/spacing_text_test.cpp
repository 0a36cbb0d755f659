// How the spacing of a tree array is written.

#include "planting/spacing_text.h"

#include <gtest/gtest.h>

TEST(SpacingText, HasDecimalsOnlyWhereTheSpacingHas)
{
    EXPECT_EQ(spacingText(3000.0), QStringLiteral("株距3000"));
    EXPECT_EQ(spacingText(2999.99995), QStringLiteral("株距3000"));
    EXPECT_EQ(spacingText(3000.00009), QStringLiteral("株距3000"));
    EXPECT_EQ(spacingText(2999.5), QStringLiteral("株距2999.50"));
    EXPECT_EQ(spacingText(2999.9997), QStringLiteral("株距3000.00"));
    EXPECT_EQ(spacingText(0.5), QStringLiteral("株距0.50"));
}
