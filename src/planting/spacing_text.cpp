// Whole spacings without decimals, others with two.

#include "planting/spacing_text.h"

#include <cmath>

QString spacingText(double spacing)
{
    constexpr double kWhole = 0.0001;
    double whole = std::trunc(spacing);
    if (std::abs(whole + 1.0 - spacing) < std::abs(whole - spacing))
        whole += 1.0;
    if (std::abs(spacing - whole) <= kWhole)
        return QStringLiteral("株距%1").arg(whole, 0, 'f', 0);
    return QStringLiteral("株距%1").arg(spacing, 0, 'f', 2);
}
