// Where a smooth function changes its sign: feet of perpendiculars, turning points.
#pragma once

#include <cmath>

/// A value and its derivative.
struct KcGeSlope {
    double value = 0.0;
    double derivative = 0.0;
};

namespace kcge {

/// The root between two values of opposite sign, or one of them being 0: Newton's steps, halvings where those
/// leave the bracket or gain too little.
template <class Function> double bracketedRoot(Function function, double low, double high, double lowValue)
{
    constexpr int kMostSteps = 200; // halvings alone exhaust the digits of any bracket sooner
    const bool rising = lowValue < 0.0;
    double u = low + (high - low) / 2.0;
    double previousStep = high - low;
    for (int i = 0; i < kMostSteps; ++i) {
        const KcGeSlope at = function(u);
        if (at.value == 0.0) // exact: nothing to improve
            return u;
        ((at.value < 0.0) == rising ? low : high) = u;
        double next = u - at.value / at.derivative;
        if (!(next > low && next < high) || std::abs(next - u) > previousStep / 2.0)
            next = low + (high - low) / 2.0;
        if (next == u || !(low < next && next < high))
            return u;
        previousStep = std::abs(next - u);
        u = next;
    }
    return u;
}

/// Calls `visit(u)` for the roots in [low, high] at which the function changes its sign, as far as its values
/// and slopes at `samples` steps tell; where these show a dip towards zero between two of them, the dip is
/// followed down.
template <class Function, class Visit>
void forEachSignChange(Function function, double low, double high, int samples, Visit visit)
{
    double a = low;
    KcGeSlope fa = function(a);
    for (int i = 1; i <= samples; ++i) {
        const double b = i == samples ? high : low + (high - low) * i / samples;
        const KcGeSlope fb = function(b);
        if ((fa.value < 0.0) != (fb.value < 0.0)) {
            visit(bracketedRoot(function, a, b, fa.value));
        } else {
            const double side = fa.value < 0.0 ? -1.0 : 1.0;
            if (fa.derivative * side < 0.0 && fb.derivative * side > 0.0) {
                double left = a, right = b;
                constexpr int kMostHalvings = 40;
                for (int k = 0; k < kMostHalvings; ++k) {
                    const double m = left + (right - left) / 2.0;
                    const KcGeSlope fm = function(m);
                    if (fm.value * side < 0.0) {
                        visit(bracketedRoot(function, a, m, fa.value));
                        visit(bracketedRoot(function, m, b, fm.value));
                        break;
                    }
                    (fm.derivative * side < 0.0 ? left : right) = m;
                }
            }
        }
        a = b;
        fa = fb;
    }
}

} // namespace kcge
