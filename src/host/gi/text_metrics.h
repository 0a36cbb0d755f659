// Sizes of texts in the fonts that stand in for those that drawings name. Heights are heights of capital
// letters, as drawings give them. All lengths in drawing units. For use from one thread.
#pragma once

#include <QString>
#include <QStringView>

namespace KcGi {

/// What a text style says about its font.
struct TextStyle {
    QString font; ///< font file: a shape font (.shx) or an outline font
    QString bigFont; ///< shape font for Chinese and other wide characters
    QString typeface; ///< family of an outline font; wins over the files
    bool bold = false, italic = false;
    friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

/// Fonts need an application object. Uses the one that exists, else makes one without display. A program that
/// wants its own must make it before it measures the first text. False when the existing one cannot have
/// fonts.
bool ensureGuiApplication();

/// The installed family in which texts of a style are measured and drawn: the typeface or the outline font
/// where installed, else one that looks alike and has the characters. Empty when there is no font at all.
QString fontForStyle(const QString& font, const QString& bigFont, const QString& typeface);

/// The installed family that shows a character which the family of a style lacks; `family` itself when it has
/// it, or when none has.
QString fontForCharacter(char32_t character, const QString& family, bool bold = false, bool italic = false);

/// What is measured and drawn in the place of a character that fonts lack (the diameter sign); else itself.
char32_t drawnCharacter(char32_t character);

/// Factor from the height of capital letters to the pixel size (em) of a family; 1.4 when there is no such
/// font.
double emOfCapHeight(const QString& family, bool bold = false, bool italic = false);

struct TextExtent {
    double advance = 0.0; ///< from the start of the text to where the next one would start
    double bottom = 0.0, top = 0.0; ///< of the ink, above the base line
    bool hasInk = false; ///< false: blanks only
};
/// Size of a text in one line. Line breaks and tabs have no width of their own.
TextExtent textExtent(const TextStyle& style, QStringView text, double height, double widthFactor = 1.0);
double textAdvance(const TextStyle& style, QStringView text, double height, double widthFactor = 1.0);

/// Room above and below the base line that the font asks for; both positive.
double textAscent(const TextStyle& style, double height);
double textDescent(const TextStyle& style, double height);

/// From one base line to the next in texts of several lines.
double lineSpacing(double height, double factor = 1.0);

} // namespace KcGi
