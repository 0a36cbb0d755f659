// Number conversions in both directions.

#include "platform/numbers.h"

#include <clocale>
#include <cmath>
#include <gtest/gtest.h>

using namespace platform;

TEST(Numbers, integersStopAtTheFirstOtherCharacter)
{
    struct Row {
        const char* text;
        int value;
    };
    for (const Row& row : { Row{ "42", 42 },
                            { " \t\n-7x9", -7 },
                            { "+3.9", 3 },
                            { "", 0 },
                            { "x1", 0 },
                            { "- 1", 0 },
                            { "--1", 0 },
                            { "007", 7 },
                            { "0x10", 0 },
                            { "2147483647", INT_MAX },
                            { "2147483648", INT_MAX },
                            { "-2147483648", INT_MIN },
                            { "-99999999999999999999999", INT_MIN },
                            { "１２", 12 },
                            { "1,000", 1 } })
        EXPECT_EQ(wtoi(QString::fromUtf8(row.text)), row.value) << row.text;
}

TEST(Numbers, realsStopAtTheFirstOtherCharacter)
{
    struct Row {
        const char* text;
        double value;
    };
    for (const Row& row : { Row{ "2.5", 2.5 },
                            { " -.5m", -0.5 },
                            { "5.", 5 },
                            { ".", 0 },
                            { "-", 0 },
                            { "1,5", 1 },
                            { "1e3", 1000 },
                            { "1e", 1 },
                            { "1e+", 1 },
                            { "1e+2", 100 },
                            { "1D2", 100 },
                            { "1.2.3", 1.2 },
                            { "inf", 0 },
                            { "nan", 0 },
                            { "0x10", 0 },
                            { "1e999", HUGE_VAL },
                            { "-1e999", -HUGE_VAL },
                            { "1e-999", 0 },
                            { "3.500000", 3.5 } })
        EXPECT_EQ(wtof(QString::fromUtf8(row.text)), row.value) << row.text;
}

TEST(Numbers, formatsAsTheCLibraryDoes)
{
    EXPECT_EQ(formatC("%.1f/%g/%f", 2.25, 1e-5, 100.0), "2.2/1e-05/100.000000");
    EXPECT_EQ(formatC("%s<%g>:", "距离", 0.5), "距离<0.5>:");
    EXPECT_EQ(formatC("%s", std::string(5000, 'x').c_str()).size(), 5000);
}

TEST(Numbers, neverAskTheLocale)
{
    const bool comma = std::setlocale(LC_ALL, "de_DE.UTF-8") || std::setlocale(LC_ALL, "fr_FR.UTF-8");
    if (!comma)
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    const QString formatted = formatC("%.1f/%g/%f", 2.25, 1e-5, 100.0);
    const double read = wtof("2.5");
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(formatted, "2.2/1e-05/100.000000");
    EXPECT_EQ(read, 2.5);
}

TEST(Numbers, shortestTextReadsBackExactly)
{
    EXPECT_EQ(formatReal(0.1), "0.1");
    EXPECT_EQ(formatReal(100), "100");
    for (double value : { 1.0 / 3, 1e-310, 123456789.123456789, -2e300, 0.1 + 0.2 })
        EXPECT_EQ(wtof(formatReal(value)), value) << formatReal(value).toStdString();
}
