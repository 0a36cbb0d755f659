// Fonts of type 3 (ISO 32000-1:2008, 9.6.5): each character is a small drawing.

#include "gi/paint/pdf_fonts.h"

#include "gi/paint/font_stretches.h"

namespace {

constexpr int kEm = 1000;
constexpr size_t kMostCodes = 255;

// From codes to characters (9.10.3), for searching and copying.
QByteArray characterMap(const std::vector<char32_t>& characters)
{
    constexpr size_t kMostInBlock = 100;
    QByteArray map = "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n/CMapType 2 def\n"
                     "/CMapName /Characters def\n1 begincodespacerange\n<00> <FF>\nendcodespacerange\n";
    for (size_t first = 0; first < characters.size(); first += kMostInBlock) {
        const size_t last = std::min(characters.size(), first + kMostInBlock);
        map += QByteArray::number(qsizetype(last - first)) + " beginbfchar\n";
        for (size_t i = first; i < last; ++i) {
            map += '<' + QByteArray::number(uint(i + 1), 16).rightJustified(2, '0') + "> <";
            for (const QChar unit : QString::fromUcs4(&characters[i], 1))
                map += QByteArray::number(unit.unicode(), 16).rightJustified(4, '0');
            map += ">\n";
        }
        map += "endbfchar\n";
    }
    return map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

} // namespace

KcGiPdfFonts::Code KcGiPdfFonts::code(const KcGi::TextStyle& style, const QString& family, char32_t character)
{
    Used& used = m_families[{ family, style.bold, style.italic }];
    const auto [at, isNew] = used.codes.try_emplace(character);
    if (!isNew)
        return at->second;
    if (used.font < 0 || m_fonts[size_t(used.font)].size() == kMostCodes) {
        used.font = int(m_fonts.size());
        m_fonts.emplace_back();
    }
    const QString text = QString::fromUcs4(&character, 1);
    Glyph glyph;
    glyph.character = character;
    glyph.outline.addText(0, 0, kcgiFont(style, family, kEm), text);
    glyph.outline = QTransform::fromScale(1, -1).map(glyph.outline);
    const double em = KcGi::emOfCapHeight(family, style.bold, style.italic);
    glyph.advance = KcGi::textAdvance(style, text, 1.0) / em * kEm;
    m_fonts[size_t(used.font)].push_back(std::move(glyph));
    const std::vector<Glyph>& font = m_fonts[size_t(used.font)];
    return at->second = { used.font, static_cast<unsigned char>(font.size()), font.back().advance / kEm };
}

QByteArray KcGiPdfFonts::write(KcGiPdfFile& file) const
{
    QByteArray resources;
    for (size_t i = 0; i < m_fonts.size(); ++i) {
        QByteArray widths, names, procedures;
        std::vector<char32_t> characters;
        for (const Glyph& glyph : m_fonts[i]) {
            characters.push_back(glyph.character);
            const QByteArray name = "/g" + QByteArray::number(qsizetype(characters.size()));
            const QRectF box = glyph.outline.controlPointRect();
            QByteArray drawing;
            kcgiPutNumber(drawing, glyph.advance, 1);
            kcgiPutNumber(drawing, 0, 0);
            for (const double side : { box.left(), box.top(), box.right(), box.bottom() })
                kcgiPutNumber(drawing, side, 0);
            drawing += "d1\n";
            if (!glyph.outline.isEmpty()) {
                kcgiPutPath(drawing, glyph.outline, 0);
                drawing += "f\n";
            }
            const int number = file.reserve();
            file.writeStream(number, {}, drawing);
            names += name + ' ';
            procedures += name + ' ' + KcGiPdfFile::reference(number) + ' ';
            kcgiPutNumber(widths, glyph.advance, 1);
        }
        const int map = file.reserve(), font = file.reserve();
        file.writeStream(map, {}, characterMap(characters));
        file.write(
            font,
            "<< /Type /Font /Subtype /Type3 /FontBBox [0 0 0 0] /FontMatrix [.001 0 0 .001 0 0] /FirstChar 1 "
            "/LastChar "
                + QByteArray::number(qsizetype(characters.size())) + " /Widths [" + widths
                + "] /Encoding << /Type /Encoding /Differences [1 " + names + "] >> /CharProcs << "
                + procedures + ">> /Resources << >> /ToUnicode " + KcGiPdfFile::reference(map) + " >>");
        resources += "/F" + QByteArray::number(qsizetype(i)) + ' ' + KcGiPdfFile::reference(font) + ' ';
    }
    return resources;
}

void kcgiPutPath(QByteArray& out, const QPainterPath& path, int decimals)
{
    const auto point = [&](QPointF p) {
        kcgiPutNumber(out, p.x(), decimals);
        kcgiPutNumber(out, p.y(), decimals);
    };
    QPointF begin;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element element = path.elementAt(i);
        const bool runEnds = i + 1 == path.elementCount() || path.elementAt(i + 1).isMoveTo();
        if (element.isMoveTo()) {
            begin = element;
            point(element);
            out += "m\n";
        } else if (element.isLineTo()) {
            if (runEnds && QPointF(element) == begin) {
                out += "h\n";
            } else {
                point(element);
                out += "l\n";
            }
        } else if (element.isCurveTo()) {
            point(element);
            point(path.elementAt(i + 1));
            point(path.elementAt(i + 2));
            out += "c\n";
            i += 2;
            const bool ends = i + 1 == path.elementCount() || path.elementAt(i + 1).isMoveTo();
            if (ends && QPointF(path.elementAt(i)) == begin)
                out += "h\n";
        }
    }
}
