// Format codes of multiline texts: what they say, and where the pieces of the text come to stand.
#pragma once

#include "gi/text_metrics.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <vector>

/// How a piece of a multiline text looks.
struct KcDbMTextFormat {
    double height = 1.0; ///< of capital letters, drawing units
    double widthFactor = 1.0;
    double oblique = 0.0; ///< radians
    double tracking = 1.0; ///< factor of the advances
    bool underline = false, overline = false, strike = false;
    int alignment = 0; ///< of smaller pieces in a line: 0 bottom, 1 centre, 2 top
    int colorIndex = -1; ///< index colour; -1: the text's own
    int32_t rgb = -1; ///< 0xRRGGBB; -1: none
    KcGi::TextStyle font;
    friend bool operator==(const KcDbMTextFormat&, const KcDbMTextFormat&) = default;
};

/// How a paragraph is set. Lengths are multiples of the text height.
struct KcDbMTextParagraph {
    double firstIndent = 0.0; ///< of the first line, added to the left indent
    double leftIndent = 0.0, rightIndent = 0.0;
    char alignment = 0; ///< 'l', 'c', 'r', 'j' (both sides), 'd' (spread); 0: as the attachment has it
    std::vector<double> tabs; ///< ascending
};

struct KcDbMTextRun {
    enum class Kind {
        kText, ///< `text` in one format
        kStack, ///< `text` above `lower`
        kTab,
        kParagraphEnd,
        kColumnEnd,
    };
    Kind kind = Kind::kText;
    QString text;
    QString lower;
    char stackMark = 0; ///< '/' with a line between, '#' beside a slanting line, '^' without a line
    KcDbMTextFormat format;
    std::shared_ptr<const KcDbMTextParagraph> paragraph; ///< null: nothing special
};

/// Reads format codes. `base` is how the text looks before the first code. Whatever is no code is text; codes
/// that end early or make no sense never fail.
std::vector<KcDbMTextRun> kcdbParseMText(const QString& contents, const KcDbMTextFormat& base);
/// The text of the runs; paragraphs are separated by line feeds, stacked parts by a slash.
QString kcdbPlainText(const std::vector<KcDbMTextRun>& runs);

/// A multiline text set into lines. Coordinates are those of the unturned text about the point that its
/// attachment refers to, y upwards, drawing units.
struct KcDbMTextLayout {
    struct Piece {
        QString text;
        double x = 0.0, baseline = 0.0;
        double width = 0.0;
        KcDbMTextFormat format;
    };
    /// Underlines, overlines, strikes and the lines of fractions.
    struct Rule {
        double x1 = 0.0, y1 = 0.0, x2 = 0.0, y2 = 0.0;
        KcDbMTextFormat format;
    };
    struct Line {
        QString text;
        double x = 0.0, baseline = 0.0, width = 0.0;
    };
    std::vector<Piece> pieces;
    std::vector<Rule> rules;
    std::vector<Line> lines;
    double left = 0.0, right = 0.0, bottom = 0.0, top = 0.0; ///< of all lines; all 0 for an empty text
    double width = 0.0; ///< of the widest line
    double height = 0.0; ///< from the top of the first line's capitals to the last base line
};

/// The columns of a multiline text that holds the contents of all of them.
struct KcDbMTextColumns {
    enum class Kind { kNone, kStatic, kDynamic };
    Kind kind = Kind::kNone;
    int count = 1; ///< static ones are as many; dynamic ones become as many as the text needs
    double width = 0.0; ///< of each
    double gutter = 0.0; ///< between two
    bool autoHeight = false; ///< dynamic ones are all as high as the text's defined height
    bool reversed = false; ///< the first one stands at the right
    std::vector<double> heights; ///< of dynamic ones, one by one; 0: endless
    double totalWidth = 0.0, totalHeight = 0.0; ///< as last computed by the program that wrote the file

    /// The height that a column has room for, numbered from 0; infinite for the last one.
    double heightOf(size_t column, double definedHeight) const;
};

struct KcDbMTextFrame {
    double width = 0.0; ///< lines break here; 0: they do not
    const KcDbMTextColumns* columns = nullptr; ///< null: none; their width wins
    double definedHeight = 0.0; ///< of columns without heights of their own
    double height = 1.0; ///< the text's own height: the unit of indents and of exact line spacing
    int attachment = 1; ///< 1 top left, 2 top centre, … 9 bottom right
    double spacingFactor = 1.0;
    bool exactSpacing = false; ///< larger pieces do not push lines apart
};
/// Lines break at blanks and between Chinese characters; a word that is too long for a line stays whole.
KcDbMTextLayout kcdbLayoutMText(const std::vector<KcDbMTextRun>& runs, const KcDbMTextFrame& frame);
