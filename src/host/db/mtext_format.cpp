// Reader of the format codes of multiline texts.

#include "db/mtext_format.h"

#include "db/text.h"
#include "platform/character_sets.h"

namespace {

constexpr double kRadians = kPi / 180.0;
/// No code is longer: what would be is text, lest the time grow with the square of a text's length.
constexpr qsizetype kLongestCode = 4000, kLongestNumber = 64;
/// Values outside these are taken for damage and ignored.
constexpr double kLargestFactor = 1e6, kLargestHeight = 1e12, kSteepestSlant = 85.0;

/// The font of the signs of tolerances, which has them in the place of small letters.
bool isToleranceFont(const KcGi::TextStyle& style)
{
    const QString name = style.font.isEmpty() ? style.typeface : style.font;
    return name.compare(QLatin1String("gdt"), Qt::CaseInsensitive) == 0
        || name.compare(QLatin1String("gdt.shx"), Qt::CaseInsensitive) == 0;
}

QString toleranceSigns(QString text)
{
    // From "a": angularity, perpendicularity, flatness, … ; letters without a sign stay.
    static const QString signs = QStringLiteral("∠⟂⏥⌓○∥⌭h⌯⌖⌒ⓁⓂ⌀oⓅq◎Ⓢ⌰⏤");
    for (QChar& c : text)
        if (c >= u'a' && c < QChar(char16_t(u'a' + signs.size())))
            c = signs[c.unicode() - u'a'];
    return text.replace(u'h', QChar(0x2197)); // circular runout
}

class Parser {
public:
    Parser(const QString& text, const KcDbMTextFormat& base)
        : m_text(text)
        , m_format(base)
    {
    }

    std::vector<KcDbMTextRun> parse()
    {
        while (m_at < m_text.size()) {
            const QChar c = m_text[m_at];
            if (c == u'\\') {
                code();
            } else if (c == u'{') {
                flush();
                m_outer.push_back(m_format);
                ++m_at;
            } else if (c == u'}') {
                flush();
                if (!m_outer.empty()) {
                    m_format = m_outer.back();
                    m_outer.pop_back();
                }
                ++m_at;
            } else if (c == u'^') {
                caret();
            } else if (c == u'\n') {
                mark(KcDbMTextRun::Kind::kParagraphEnd);
                ++m_at;
            } else if (c == u'\t') {
                mark(KcDbMTextRun::Kind::kTab);
                ++m_at;
            } else {
                if (c >= u' ')
                    m_pending += c;
                ++m_at;
            }
        }
        flush();
        return std::move(m_runs);
    }

private:
    QChar peek(qsizetype offset) const
    {
        return m_at + offset < m_text.size() ? m_text[m_at + offset] : QChar();
    }

    void flush()
    {
        if (m_pending.isEmpty())
            return;
        for (const KcDbText::Run& part : KcDbText::runsOf(m_pending)) {
            KcDbMTextRun run;
            run.text = isToleranceFont(m_format.font) ? toleranceSigns(part.text) : part.text;
            run.format = m_format;
            run.format.underline = m_format.underline != part.underlined;
            run.format.overline = m_format.overline != part.overlined;
            run.format.strike = m_format.strike != part.struck;
            run.paragraph = m_paragraph;
            m_runs.push_back(std::move(run));
        }
        m_pending.clear();
    }

    void mark(KcDbMTextRun::Kind kind)
    {
        flush();
        KcDbMTextRun run;
        run.kind = kind;
        run.format = m_format;
        run.paragraph = m_paragraph;
        m_runs.push_back(std::move(run));
    }

    /// "^I" and its like name control characters; a caret itself is followed by a blank.
    void caret()
    {
        const QChar next = peek(1);
        if (next == u'I') {
            mark(KcDbMTextRun::Kind::kTab);
        } else if (next == u'J') {
            mark(KcDbMTextRun::Kind::kParagraphEnd);
        } else if (next == u' ') {
            m_pending += u'^';
        } else if (!(next >= u'@' && next <= u'_') || next == u'\\') {
            m_pending += u'^'; // no control character: a caret as it stands
            ++m_at;
            return;
        }
        m_at += 2;
    }

    void code()
    {
        const QChar name = peek(1);
        if (name.isNull()) {
            m_pending += u'\\';
            ++m_at;
            return;
        }
        switch (name.unicode()) {
        case u'P':
        case u'X': // divides the two sides of a dimension's text
            mark(KcDbMTextRun::Kind::kParagraphEnd);
            m_at += 2;
            return;
        case u'N':
            mark(KcDbMTextRun::Kind::kColumnEnd);
            m_at += 2;
            return;
        case u'~':
            m_pending += QChar(QChar::Nbsp);
            m_at += 2;
            return;
        case u'L':
        case u'l':
            toggle(m_format.underline, name == u'L');
            return;
        case u'O':
        case u'o':
            toggle(m_format.overline, name == u'O');
            return;
        case u'K':
        case u'k':
            toggle(m_format.strike, name == u'K');
            return;
        case u'H':
            return number(true, [this](double v, bool factor) {
                const double height = factor ? m_format.height * v : v;
                if (height > 0.0 && height < kLargestHeight)
                    m_format.height = height;
            });
        case u'W':
            return number(true, [this](double v, bool factor) {
                const double width = factor ? m_format.widthFactor * v : v;
                if (width > 0.0 && width < kLargestFactor)
                    m_format.widthFactor = width;
            });
        case u'T':
            return number(true, [this](double v, bool factor) {
                const double tracking = factor ? m_format.tracking * v : v;
                if (tracking > 0.0 && tracking < kLargestFactor)
                    m_format.tracking = tracking;
            });
        case u'Q':
            return number(false, [this](double v, bool) {
                if (std::abs(v) <= kSteepestSlant)
                    m_format.oblique = v * kRadians;
            });
        case u'A':
            return number(false, [this](double v, bool) {
                if (v == 0.0 || v == 1.0 || v == 2.0)
                    m_format.alignment = int(v);
            });
        case u'C':
            return number(false, [this](double v, bool) {
                if (v >= 0.0 && v <= 256.0) {
                    m_format.colorIndex = int(v);
                    m_format.rgb = -1;
                }
            });
        case u'c':
            return number(false, [this](double v, bool) {
                if (v >= 0.0 && v <= double(0xffffff)) { // blue in the highest byte
                    const int32_t bgr = int32_t(v);
                    m_format.rgb = (bgr & 0xff) << 16 | (bgr & 0xff00) | bgr >> 16;
                }
            });
        case u'F':
        case u'f':
            return font();
        case u'p':
            return paragraph();
        case u'S':
            return stack();
        case u'U':
        case u'M':
            return character();
        default: // "\\", "\{", "\}" and what no code is
            m_pending += name;
            m_at += 2;
        }
    }

    void toggle(bool& flag, bool on)
    {
        flush();
        flag = on;
        m_at += 2;
    }

    /// A number, "x" after it where `mayBeFactor`, and a semicolon that many programs leave out. A code
    /// without a number is text.
    template <class Apply> void number(bool mayBeFactor, Apply apply)
    {
        static const QRegularExpression pattern(
            QStringLiteral("^\\s*([+-]?(?:\\d+\\.?\\d*|\\.\\d+)(?:[eE][+-]?\\d+)?)(x?)"));
        const auto match = pattern.match(m_text.mid(m_at + 2, kLongestNumber));
        if (!match.hasMatch()) {
            m_pending += m_text[m_at + 1];
            m_at += 2;
            return;
        }
        flush();
        const double value = match.capturedView(1).toDouble();
        const bool factor = mayBeFactor && match.capturedLength(2) > 0;
        if (std::isfinite(value))
            apply(value, factor);
        m_at += 2 + (factor ? match.capturedEnd(2) : match.capturedEnd(1));
        if (peek(0) == u';')
            ++m_at;
    }

    /// Position of the semicolon that ends the code at hand; -1 when there is none before the code could end.
    qsizetype semicolon() const
    {
        const qsizetype there = QStringView(m_text).mid(m_at + 2, kLongestCode).indexOf(u';');
        return there < 0 ? there : m_at + 2 + there;
    }

    /// The argument up to the semicolon; nothing, with the code taken as text, when there is none.
    std::optional<QString> argument()
    {
        const qsizetype end = semicolon();
        if (end < 0) {
            m_pending += m_text[m_at + 1];
            m_at += 2;
            return std::nullopt;
        }
        const QString result = m_text.mid(m_at + 2, end - m_at - 2);
        m_at = end + 1;
        return result;
    }

    /// "\Ffile.shx,big.shx|c134;" names files, "\fFamily|b1|i0|c134|p2;" a family.
    void font()
    {
        const bool isFamily = peek(1) == u'f';
        const auto text = argument();
        if (!text)
            return;
        flush();
        const QStringList parts = text->split(u'|');
        const QString name = parts.first().trimmed();
        if (name.isEmpty())
            return;
        KcGi::TextStyle style;
        const bool isFile = name.endsWith(QLatin1String(".shx"), Qt::CaseInsensitive);
        if (isFamily && !isFile) {
            style.typeface = name;
        } else {
            style.font = name.section(u',', 0, 0).trimmed();
            style.bigFont = name.section(u',', 1, 1).trimmed();
        }
        for (const QString& part : parts.mid(1)) {
            if (part.startsWith(u'b'))
                style.bold = part.mid(1).toInt() != 0;
            else if (part.startsWith(u'i'))
                style.italic = part.mid(1).toInt() != 0;
        }
        m_format.font = style;
    }

    /// "\pi-2,l2,r1,qc,t4,8;" sets indents, alignment and tabs; "*" puts a value back.
    void paragraph()
    {
        const auto text = argument();
        if (!text)
            return;
        flush();
        auto result = std::make_shared<KcDbMTextParagraph>(m_paragraph ? *m_paragraph : KcDbMTextParagraph());
        bool inTabs = false;
        for (QString item : text->split(u',')) {
            item = item.trimmed();
            if (item.startsWith(u'x'))
                item = item.mid(1);
            if (item.isEmpty())
                continue;
            bool ok = false;
            if (inTabs) { // numbers go on with the list; letters before them tell the kind of stop
                const double tab = (item[0].isLetter() ? item.mid(1) : item).toDouble(&ok);
                const bool isStop
                    = !item[0].isLetter() || item[0] == u'c' || item[0] == u'd' || item[0] == u'r';
                if (isStop) {
                    if (ok && tab > 0.0 && tab < kLargestFactor)
                        result->tabs.push_back(tab);
                    continue;
                }
                inTabs = false;
            }
            const QString rest = item.mid(1);
            const double value = rest.toDouble(&ok);
            const double usable = ok && std::abs(value) < kLargestFactor ? value : 0.0;
            switch (item[0].unicode()) {
            case u'i':
                result->firstIndent = usable;
                break;
            case u'l':
                result->leftIndent = usable;
                break;
            case u'r':
                result->rightIndent = usable;
                break;
            case u'q':
                result->alignment
                    = !rest.isEmpty() && QStringLiteral("lcrjd").contains(rest[0]) ? rest[0].toLatin1() : 0;
                break;
            case u't':
                inTabs = true;
                result->tabs.clear();
                if (ok && value > 0.0 && value < kLargestFactor)
                    result->tabs.push_back(value);
                break;
            default:
                break;
            }
        }
        std::sort(result->tabs.begin(), result->tabs.end());
        m_paragraph = std::move(result);
    }

    /// "\S1/2;": two texts above each other. A backslash takes the next character literally.
    void stack()
    {
        qsizetype at = m_at + 2;
        KcDbMTextRun run;
        run.kind = KcDbMTextRun::Kind::kStack;
        bool below = false, ended = false;
        const qsizetype last = semicolon() < 0 ? at : std::min(m_text.size(), at + kLongestCode);
        for (; at < last && !ended; ++at) {
            const QChar c = m_text[at];
            if (c == u';') {
                ended = true;
            } else if (c == u'\\' && at + 1 < m_text.size()) {
                (below ? run.lower : run.text) += m_text[++at];
            } else if (!below && (c == u'/' || c == u'#' || c == u'^')) {
                below = true;
                run.stackMark = c.toLatin1();
                if (c == u'^' && at + 1 < m_text.size() && m_text[at + 1] == u' ')
                    ++at; // the blank only keeps the caret from naming a control character
            } else if (c >= u' ') {
                (below ? run.lower : run.text) += c;
            }
        }
        if (!ended) {
            m_pending += m_text[m_at + 1];
            m_at += 2;
            return;
        }
        flush();
        m_at = at;
        if (!below) { // nothing to stack
            m_pending += run.text;
            return;
        }
        run.text = KcDbText::resolved(run.text.trimmed());
        run.lower = KcDbText::resolved(run.lower.trimmed());
        run.format = m_format;
        run.paragraph = m_paragraph;
        m_runs.push_back(std::move(run));
    }

    void character()
    {
        qsizetype length = 0;
        const QString text = KcDbText::escapedCharacter(QStringView(m_text).mid(m_at), length);
        if (length > 0) {
            m_pending += text;
            m_at += length;
            return;
        }
        m_pending += m_text[m_at + 1];
        m_at += 2;
    }

    const QString& m_text;
    qsizetype m_at = 0;
    QString m_pending;
    KcDbMTextFormat m_format;
    std::shared_ptr<const KcDbMTextParagraph> m_paragraph;
    std::vector<KcDbMTextFormat> m_outer;
    std::vector<KcDbMTextRun> m_runs;
};

} // namespace

std::vector<KcDbMTextRun> kcdbParseMText(const QString& contents, const KcDbMTextFormat& base)
{
    return Parser(contents, base).parse();
}
