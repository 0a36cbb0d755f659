// Numbers to text and back by the rules of the C library in its own locale. The program's locale never
// matters: a decimal comma in a settings file or a drawing would make it unreadable elsewhere.
#pragma once

#include <QString>

namespace platform {

/// The integer at the start of a text: blanks, a sign, digits up to the first other character. 0 when there
/// is none; a number out of range gives the nearest representable one. Full-width digits count as digits.
int wtoi(const QString& text);

/// The decimal number at the start of a text: blanks, a sign, digits with at most one point, an exponent (e
/// or d) when digits follow it. 0 when there is none; infinity on overflow. "inf", "nan" and hexadecimal are
/// no numbers.
double wtof(const QString& text);

/// The shortest text that reads back as exactly the same number ("0.1", "1e+300"; "inf" and "nan" by name).
QString formatReal(double value);

/// printf in the C locale; narrow texts in the format and behind %s are UTF-8.
QString formatC(const char* format, ...) __attribute__((format(printf, 1, 2)));

} // namespace platform
