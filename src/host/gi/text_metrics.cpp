// Font lookup and glyph advances, kept for every font and character once they were asked for.

#include "gi/text_metrics.h"

#include <QFontDatabase>
#include <QGuiApplication>
#include <QHash>
#include <QRawFont>

namespace KcGi {

namespace {

/// Without any font: an upright sans-serif letter is about this wide, a Chinese character as wide as its em
/// square, as shares of the height of capitals. The em square measures 1.4 heights of capitals.
constexpr double kPlainWidth = 0.9, kWideWidth = 1.4, kPlainDescent = 0.3;
/// Room for accents above capitals, below which no font's ascent is taken.
constexpr double kLeastAscent = 1.0;

bool isWide(char32_t c)
{
    return (c >= 0x1100 && c <= 0x115f) || (c >= 0x2e80 && c <= 0xd7ff) || (c >= 0xf900 && c <= 0xfaff)
        || (c >= 0xfe30 && c <= 0xfe6f) || (c >= 0xff00 && c <= 0xff60) || c >= 0x20000;
}

struct Glyph {
    double advance = 0.0, bottom = 0.0, top = 0.0; ///< heights of capitals
    bool ink = false;
};

/// One installed font, measured at a size at which rounding does not show.
class Face {
public:
    Face(const QString& family, bool bold, bool italic)
    {
        QFont font(family);
        font.setPixelSize(kPixels);
        font.setBold(bold);
        font.setItalic(italic);
        font.setHintingPreference(QFont::PreferNoHinting);
        m_font = QRawFont::fromFont(font);
        m_capHeight = m_font.isValid() ? m_font.capHeight() : 0.0;
        if (m_font.isValid() && m_font.supportsCharacter(QLatin1Char('H'))) {
            // What is seen counts, not what the font's tables say.
            const auto index = m_font.glyphIndexesForString(QStringLiteral("H"));
            if (const QRectF box = m_font.boundingRect(index[0]); box.height() > 0.0)
                m_capHeight = -box.top();
        }
    }
    bool isValid() const { return m_font.isValid() && m_capHeight > 0.0; }
    bool has(char32_t c) const { return m_font.supportsCharacter(c); }
    double em() const { return kPixels / m_capHeight; }
    double ascent() const { return std::max(kLeastAscent, m_font.ascent() / m_capHeight); }
    double descent() const { return m_font.descent() / m_capHeight; }
    const Glyph& glyph(char32_t c)
    {
        const auto known = m_glyphs.constFind(c);
        if (known != m_glyphs.constEnd())
            return *known;
        Glyph glyph;
        const QString text = QString::fromUcs4(&c, 1);
        const auto indexes = m_font.glyphIndexesForString(text);
        const auto advances = m_font.advancesForGlyphIndexes(indexes);
        for (qsizetype i = 0; i < indexes.size(); ++i) {
            glyph.advance += advances[i].x() / m_capHeight;
            const QRectF box = m_font.boundingRect(indexes[i]);
            if (box.width() > 0.0 && box.height() > 0.0) {
                glyph.bottom = -box.bottom() / m_capHeight;
                glyph.top = -box.top() / m_capHeight;
                glyph.ink = true;
            }
        }
        return *m_glyphs.insert(c, glyph);
    }

private:
    static constexpr int kPixels = 512;
    QRawFont m_font;
    double m_capHeight = 0.0;
    QHash<char32_t, Glyph> m_glyphs;
};

struct Cache {
    std::map<std::tuple<QString, bool, bool>, std::unique_ptr<Face>> faces;
    std::map<std::tuple<QString, QString, QString>, QString> families;
    QHash<QString, QString> installed; ///< by case-folded name
    bool listed = false;
};

/// Fonts must go before the application does, and come again with the next one.
Cache& cache()
{
    static Cache* instance = nullptr;
    if (!instance) {
        instance = new Cache;
        qAddPostRoutine([] {
            delete instance;
            instance = nullptr;
        });
    }
    return *instance;
}

/// Families in the order in which they stand in for others: first those with Chinese characters.
const QStringList& standIns()
{
    static const QStringList names{
        QStringLiteral("WenQuanYi Micro Hei"), QStringLiteral("Noto Sans CJK SC"),
        QStringLiteral("Noto Sans SC"),        QStringLiteral("Source Han Sans SC"),
        QStringLiteral("DejaVu Sans"),         QStringLiteral("Noto Sans"),
        QStringLiteral("Liberation Sans"),
    };
    return names;
}

/// The installed family of that name, in the spelling of the system; empty when there is none.
QString installedFamily(const QString& name)
{
    Cache& c = cache();
    if (!c.listed) {
        for (const QString& family : QFontDatabase::families())
            c.installed.insert(family.toCaseFolded(), family);
        c.listed = true;
    }
    return c.installed.value(name.toCaseFolded());
}

/// Families of the outline font files that drawings usually name.
QString familyOfFile(const QString& baseName)
{
    static const QHash<QString, QString> families{
        { QStringLiteral("arial"), QStringLiteral("Arial") },
        { QStringLiteral("arialbd"), QStringLiteral("Arial") },
        { QStringLiteral("times"), QStringLiteral("Times New Roman") },
        { QStringLiteral("timesbd"), QStringLiteral("Times New Roman") },
        { QStringLiteral("cour"), QStringLiteral("Courier New") },
        { QStringLiteral("calibri"), QStringLiteral("Calibri") },
        { QStringLiteral("tahoma"), QStringLiteral("Tahoma") },
        { QStringLiteral("verdana"), QStringLiteral("Verdana") },
        { QStringLiteral("simsun"), QStringLiteral("SimSun") },
        { QStringLiteral("simhei"), QStringLiteral("SimHei") },
        { QStringLiteral("simkai"), QStringLiteral("KaiTi") },
        { QStringLiteral("simfang"), QStringLiteral("FangSong") },
        { QStringLiteral("msyh"), QStringLiteral("Microsoft YaHei") },
        { QStringLiteral("dejavusans"), QStringLiteral("DejaVu Sans") },
        { QStringLiteral("wqy-microhei"), QStringLiteral("WenQuanYi Micro Hei") },
    };
    return families.value(baseName);
}

/// Null when there is no font to measure with; that is said once.
Face* face(const QString& family, bool bold, bool italic)
{
    if (!family.isEmpty()) {
        auto& slot = cache().faces[{ family, bold, italic }];
        if (!slot)
            slot = std::make_unique<Face>(family, bold, italic);
        if (slot->isValid())
            return slot.get();
    }
    static bool said = false;
    if (!said)
        qWarning(
            "No usable font is installed (tried: %s). Texts are measured with %.1f times their height for "
            "each letter "
            "and %.1f times for each Chinese character.",
            qPrintable(family.isEmpty() ? QStringLiteral("none found") : family), kPlainWidth, kWideWidth);
    said = true;
    return nullptr;
}

Face* faceOf(const TextStyle& style)
{
    if (!ensureGuiApplication())
        return face({}, false, false);
    return face(fontForStyle(style.font, style.bigFont, style.typeface), style.bold, style.italic);
}

} // namespace

bool ensureGuiApplication()
{
    if (QCoreApplication::instance())
        return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
    // Kept to the end of the program: fonts and their caches refer to it.
    static char name[] = "verdelis", option[] = "-platform", platform[] = "offscreen";
    static char* arguments[] = { name, option, platform, nullptr };
    static int count = 3;
    new QGuiApplication(count, arguments);
    return true;
}

char32_t drawnCharacter(char32_t character)
{
    // The letter that looks like it.
    constexpr char32_t kDiameter = 0x2300, kStrokedO = 0xd8;
    return character == kDiameter ? kStrokedO : character;
}

QString fontForStyle(const QString& font, const QString& bigFont, const QString& typeface)
{
    if (!ensureGuiApplication())
        return {};
    QString& family = cache().families[{ font, bigFont, typeface }];
    if (!family.isEmpty())
        return family;
    QStringList wanted;
    if (!typeface.isEmpty())
        wanted.append(typeface);
    const QString file = font.section(QLatin1Char('\\'), -1).section(QLatin1Char('/'), -1).toLower();
    const QString base = file.contains(QLatin1Char('.')) ? file.section(QLatin1Char('.'), 0, -2) : file;
    const bool isShape = file.endsWith(QLatin1String(".shx")) || !bigFont.isEmpty();
    if (!isShape && !base.isEmpty())
        wanted << familyOfFile(base) << base;
    wanted += standIns();
    for (const QString& name : wanted)
        if (!name.isEmpty() && !(family = installedFamily(name)).isEmpty())
            return family;
    const QStringList all = QFontDatabase::families();
    for (const QString& name : all)
        if (QFontDatabase::isSmoothlyScalable(name))
            return family = name;
    return family;
}

QString fontForCharacter(char32_t character, const QString& family, bool bold, bool italic)
{
    if (!ensureGuiApplication())
        return family;
    const char32_t c = drawnCharacter(character);
    if (Face* own = face(family, bold, italic); own && own->has(c))
        return family;
    for (const QString& name : standIns())
        if (const QString other = installedFamily(name); !other.isEmpty() && other != family)
            if (Face* f = face(other, bold, italic); f && f->has(c))
                return other;
    return family;
}

double emOfCapHeight(const QString& family, bool bold, bool italic)
{
    Face* f = ensureGuiApplication() ? face(family, bold, italic) : nullptr;
    return f ? f->em() : kWideWidth;
}

TextExtent textExtent(const TextStyle& style, QStringView text, double height, double widthFactor)
{
    TextExtent result;
    Face* own = faceOf(style);
    const auto add = [&](const Glyph& glyph) {
        result.advance += glyph.advance;
        if (!glyph.ink)
            return;
        result.bottom = result.hasInk ? std::min(result.bottom, glyph.bottom) : glyph.bottom;
        result.top = result.hasInk ? std::max(result.top, glyph.top) : glyph.top;
        result.hasInk = true;
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        char32_t c = text[i].unicode();
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            c = QChar::surrogateToUcs4(text[i], text[i + 1]);
            ++i;
        }
        if (c < 0x20)
            continue;
        c = drawnCharacter(c);
        if (own && own->has(c)) {
            add(own->glyph(c));
            continue;
        }
        Face* other = nullptr;
        if (own) {
            const QString family = fontForStyle(style.font, style.bigFont, style.typeface);
            const QString with = fontForCharacter(c, family, style.bold, style.italic);
            other = with == family ? nullptr : face(with, style.bold, style.italic);
        }
        if (other) {
            add(other->glyph(c));
        } else {
            const bool blank = QChar::isSpace(c);
            add({ isWide(c) ? kWideWidth : kPlainWidth, 0.0, blank ? 0.0 : 1.0, !blank });
        }
    }
    result.advance *= height * widthFactor;
    result.bottom *= height;
    result.top *= height;
    return result;
}

double textAdvance(const TextStyle& style, QStringView text, double height, double widthFactor)
{
    return textExtent(style, text, height, widthFactor).advance;
}

double textAscent(const TextStyle& style, double height)
{
    const Face* f = faceOf(style);
    return height * (f ? f->ascent() : kLeastAscent);
}

double textDescent(const TextStyle& style, double height)
{
    const Face* f = faceOf(style);
    return height * (f ? f->descent() : kPlainDescent);
}

double lineSpacing(double height, double factor)
{
    return height * factor * 5.0 / 3.0;
}

} // namespace KcGi
