// The fonts of a PDF file: only the characters that are used, as outlines that stay characters, so that texts
// can be searched and copied. Any font that the machine can draw can be taken along, whatever its own format.
#pragma once

#include "gi/paint/pdf_file.h"
#include "gi/text_metrics.h"

#include <QPainterPath>

#include <map>
#include <unordered_map>

class KcGiPdfFonts {
public:
    struct Code {
        int font = 0; ///< of the file; its resource is named F and this number
        unsigned char code = 0;
        double advance = 0.0; ///< em
    };
    /// How a character of a family is written. `style` gives bold and italic.
    Code code(const KcGi::TextStyle& style, const QString& family, char32_t character);
    /// Writes the fonts and gives the entries of the dictionary of font resources.
    QByteArray write(KcGiPdfFile& file) const;

private:
    struct Glyph {
        QPainterPath outline; ///< thousandths of an em, y upward
        double advance = 0.0; ///< thousandths of an em
        char32_t character = 0;
    };
    struct Family {
        QString name;
        bool bold = false, italic = false;
        friend auto operator<=>(const Family& a, const Family& b)
        {
            return std::tie(a.name, a.bold, a.italic) <=> std::tie(b.name, b.bold, b.italic);
        }
        friend bool operator==(const Family&, const Family&) = default;
    };
    struct Used {
        std::unordered_map<char32_t, Code> codes;
        int font = -1; ///< the one that has room
    };
    std::map<Family, Used> m_families;
    std::vector<std::vector<Glyph>> m_fonts; ///< at most 255 characters each; code 1 is the first
};

/// Appends the segments of a path, each coordinate with so many decimals.
void kcgiPutPath(QByteArray& out, const QPainterPath& path, int decimals);
