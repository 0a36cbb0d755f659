// Setting multiline texts into lines: breaks, indents, tabs, stacked parts, columns.

#include "db/mtext_format.h"

#include "ge/tolerance.h"

namespace {

/// Height of stacked parts as a share of the text's.
constexpr double kStackHeight = 0.7;
/// Where the lines of fractions and the lines under, over and through a text run, in heights.
constexpr double kStackGap = 0.2, kUnderline = -0.2, kOverline = 1.2, kStrike = 0.4;
/// Tabs without stops of their own, in heights of the text.
constexpr double kTabWidth = 4.0;

bool isIdeograph(char32_t c)
{
    return (c >= 0x2e80 && c <= 0x9fff) || (c >= 0xac00 && c <= 0xd7a3) || (c >= 0xf900 && c <= 0xfaff)
        || (c >= 0xff00 && c <= 0xffef) || c >= 0x20000;
}

/// Marks that must not begin a line.
bool isClosing(char32_t c)
{
    return c < 0x10000
        && QStringLiteral("，。、；：！？）》〉」』】〕”’…,.;:!?)]}%％").contains(QChar(char16_t(c)));
}

/// Marks that must not end a line.
bool isOpening(char32_t c)
{
    return c < 0x10000 && QStringLiteral("（《〈「『【〔“‘([{").contains(QChar(char16_t(c)));
}

/// The smallest part of a line: a character, a stack, a tab.
struct Atom {
    size_t run = 0;
    qsizetype from = 0, length = 0; ///< in the run's text
    char32_t character = 0;
    double width = 0.0;
    bool isBlank = false;
    bool isWhole = false; ///< a stack or a tab
};

class Setter {
public:
    Setter(const std::vector<KcDbMTextRun>& runs, const KcDbMTextFrame& frame)
        : m_runs(runs)
        , m_frame(frame)
    {
        using Kind = KcDbMTextColumns::Kind;
        const KcDbMTextColumns* columns = frame.columns;
        if (columns && columns->kind != Kind::kNone && columns->width > 0.0
            && std::isfinite(columns->width)) {
            m_columns = columns;
            m_frame.width = columns->width;
        }
    }

    KcDbMTextLayout set()
    {
        std::vector<Atom> paragraph;
        const KcDbMTextRun* last = nullptr;
        for (size_t i = 0; i < m_runs.size(); ++i) {
            const KcDbMTextRun& run = m_runs[i];
            last = &run;
            switch (run.kind) {
            case KcDbMTextRun::Kind::kText:
                addCharacters(paragraph, i);
                break;
            case KcDbMTextRun::Kind::kStack: {
                Atom atom{ i, 0, 0, 0, 0.0, false, true };
                atom.width = std::max(stackWidth(run, run.text), stackWidth(run, run.lower));
                if (run.stackMark == '#')
                    atom.width = stackWidth(run, run.text) + stackWidth(run, run.lower);
                paragraph.push_back(atom);
                break;
            }
            case KcDbMTextRun::Kind::kTab:
                paragraph.push_back({ i, 0, 0, 0, 0.0, true, true });
                break;
            case KcDbMTextRun::Kind::kParagraphEnd:
            case KcDbMTextRun::Kind::kColumnEnd:
                breakParagraph(paragraph, run);
                m_pending.back().endsColumn = run.kind == KcDbMTextRun::Kind::kColumnEnd;
                paragraph.clear();
                break;
            }
        }
        if (last && (!paragraph.empty() || !m_layout.lines.empty()))
            breakParagraph(paragraph, *last);
        finish();
        return std::move(m_layout);
    }

private:
    double stackWidth(const KcDbMTextRun& run, const QString& text) const
    {
        const KcDbMTextFormat& f = run.format;
        return KcGi::textAdvance(f.font, text, f.height * kStackHeight, f.widthFactor);
    }

    void addCharacters(std::vector<Atom>& atoms, size_t index) const
    {
        const KcDbMTextRun& run = m_runs[index];
        const QStringView text(run.text);
        for (qsizetype i = 0; i < text.size();) {
            Atom atom;
            atom.run = index;
            atom.from = i;
            atom.character = text[i].unicode();
            atom.length = 1;
            if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
                atom.character = QChar::surrogateToUcs4(text[i], text[i + 1]);
                atom.length = 2;
            }
            atom.isBlank = text[i] == u' ' || text[i] == QChar(0x3000);
            const KcDbMTextFormat& f = run.format;
            atom.width
                = KcGi::textAdvance(f.font, text.mid(i, atom.length), f.height, f.widthFactor) * f.tracking;
            atoms.push_back(atom);
            i += atom.length;
        }
    }

    double indentOf(const KcDbMTextParagraph* paragraph, bool first) const
    {
        if (!paragraph)
            return 0.0;
        return std::max(
            0.0, (paragraph->leftIndent + (first ? paragraph->firstIndent : 0.0)) * m_frame.height);
    }

    double tabbed(double x, const KcDbMTextParagraph* paragraph, double height) const
    {
        if (paragraph)
            for (const double tab : paragraph->tabs)
                if (tab * m_frame.height > x)
                    return tab * m_frame.height;
        const double step = kTabWidth * height;
        return (std::floor(x / step) + 1.0) * step;
    }

    static bool mayBreak(const Atom& before, const Atom& after)
    {
        if (after.isBlank)
            return false; // blanks stay at the end of their line
        if (before.isBlank)
            return true;
        if (!isIdeograph(before.character) && !isIdeograph(after.character))
            return false;
        return !isClosing(after.character) && !isOpening(before.character);
    }

    void breakParagraph(std::vector<Atom>& atoms, const KcDbMTextRun& end)
    {
        if (atoms.empty()) {
            setLine(atoms, 0, 0, end, true);
            return;
        }
        size_t from = 0;
        bool first = true;
        while (from < atoms.size()) {
            const KcDbMTextParagraph* paragraph = m_runs[atoms[from].run].paragraph.get();
            const double indent = indentOf(paragraph, first);
            const double right = paragraph ? std::max(0.0, paragraph->rightIndent * m_frame.height) : 0.0;
            const double room
                = m_frame.width > 0.0 ? m_frame.width - right : std::numeric_limits<double>::infinity();
            double x = indent;
            size_t to = from, lastBreak = from;
            for (; to < atoms.size(); ++to) {
                Atom& atom = atoms[to];
                const KcDbMTextRun& run = m_runs[atom.run];
                if (run.kind == KcDbMTextRun::Kind::kTab)
                    atom.width = tabbed(x, paragraph, run.format.height) - x;
                if (to > from && mayBreak(atoms[to - 1], atom))
                    lastBreak = to;
                x += atom.width;
                if (!atom.isBlank && x > room * (1.0 + KcGeContext::gTol.equalVector) && lastBreak > from)
                    break;
            }
            const size_t stop = to < atoms.size() ? lastBreak : atoms.size();
            setLine(atoms, from, stop, end, first);
            from = stop;
            first = false;
        }
    }

    /// True where a line that is spread out to both sides gets room: between words, or between all
    /// characters.
    static bool opensGap(const std::vector<Atom>& atoms, size_t from, size_t i, char alignment)
    {
        return i > from && (alignment == 'd' || (atoms[i - 1].isBlank && !atoms[i].isBlank));
    }

    /// The room that each gap of the line gets; 0 when the paragraph is not spread out, or the line is full.
    /// Of a justified paragraph the last line stays as it is.
    template <class Line>
    double
    spreadOf(const std::vector<Atom>& atoms, size_t from, size_t to, const Line& line, bool isCut) const
    {
        const char alignment = line.paragraph ? line.paragraph->alignment : 0;
        if (!(m_frame.width > 0.0) || !(alignment == 'd' || (alignment == 'j' && isCut)))
            return 0.0;
        double spare
            = m_frame.width - std::max(0.0, line.paragraph->rightIndent * m_frame.height) - line.indent;
        size_t gaps = 0;
        for (size_t i = from; i < to; ++i) {
            spare -= atoms[i].width;
            gaps += opensGap(atoms, from, i, alignment);
        }
        return gaps > 0 && spare > 0.0 ? spare / double(gaps) : 0.0;
    }

    /// Puts atoms into one line; x from the left edge of the frame, the base line at 0 for the time being.
    void setLine(const std::vector<Atom>& atoms, size_t from, size_t to, const KcDbMTextRun& end, bool first)
    {
        const KcDbMTextRun& leading = from < to ? m_runs[atoms[from].run] : end;
        Pending line;
        line.paragraph = leading.paragraph.get();
        line.indent = indentOf(line.paragraph, first);
        line.height = 0.0;
        size_t inked = to; // blanks at the end have no width
        while (inked > from && atoms[inked - 1].isBlank)
            --inked;
        for (size_t i = from; i < inked; ++i)
            line.height = std::max(line.height, m_runs[atoms[i].run].format.height);
        if (line.height == 0.0)
            line.height = leading.format.height;
        line.firstPiece = m_layout.pieces.size();
        line.firstRule = m_layout.rules.size();
        const double spread = spreadOf(atoms, from, inked, line, to < atoms.size());
        double x = line.indent;
        for (size_t i = from; i < inked; ++i) {
            const Atom& atom = atoms[i];
            const KcDbMTextRun& run = m_runs[atom.run];
            const KcDbMTextFormat& f = run.format;
            const double rise = f.alignment * (line.height - f.height) / 2.0;
            const bool opens = spread > 0.0 && opensGap(atoms, from, i, line.paragraph->alignment);
            if (opens)
                x += spread;
            if (run.kind == KcDbMTextRun::Kind::kStack) {
                addStack(run, x, rise, atom.width);
                line.text += stacked(run);
            } else if (run.kind == KcDbMTextRun::Kind::kTab) {
                line.text += u'\t';
            } else {
                const bool goesOn = !opens && i > from && atoms[i - 1].run == atom.run
                    && m_layout.pieces.size() > line.firstPiece;
                if (!goesOn)
                    m_layout.pieces.push_back({ {}, x, rise, 0.0, f });
                KcDbMTextLayout::Piece& piece = m_layout.pieces.back();
                piece.text += QStringView(run.text).mid(atom.from, atom.length);
                piece.width += atom.width;
                line.text += QStringView(run.text).mid(atom.from, atom.length);
            }
            x += atom.width;
        }
        line.width = x - line.indent;
        for (size_t i = line.firstPiece; i < m_layout.pieces.size(); ++i)
            addRules(m_layout.pieces[i]);
        line.endPiece = m_layout.pieces.size();
        line.endRule = m_layout.rules.size();
        m_layout.lines.push_back({ line.text, 0.0, 0.0, line.width });
        m_pending.push_back(line);
    }

public:
    static QString stacked(const KcDbMTextRun& run)
    {
        if (run.text.isEmpty() || run.lower.isEmpty()) // a superscript or subscript
            return run.text + run.lower;
        return run.text + (run.stackMark == '^' ? u'^' : u'/') + run.lower;
    }

private:
    void addStack(const KcDbMTextRun& run, double x, double rise, double width)
    {
        KcDbMTextFormat f = run.format;
        f.height *= kStackHeight;
        const double h = run.format.height;
        const double upperWidth = stackWidth(run, run.text), lowerWidth = stackWidth(run, run.lower);
        const bool slanted = run.stackMark == '#';
        const bool centred = run.stackMark == '/';
        // The middle of the text's height lies between the two parts; a slanted fraction keeps within the
        // line.
        const double upper = slanted ? rise + h - f.height : rise + h / 2.0 + kStackGap * h / 2.0;
        const double lower = slanted ? rise : rise + h / 2.0 - kStackGap * h / 2.0 - f.height;
        if (!run.text.isEmpty())
            m_layout.pieces.push_back(
                { run.text, x + (centred ? (width - upperWidth) / 2.0 : 0.0), upper, upperWidth, f });
        if (!run.lower.isEmpty()) {
            const double shift = slanted ? upperWidth : centred ? (width - lowerWidth) / 2.0 : 0.0;
            m_layout.pieces.push_back({ run.lower, x + shift, lower, lowerWidth, f });
        }
        if (centred)
            m_layout.rules.push_back({ x, rise + h / 2.0, x + width, rise + h / 2.0, run.format });
        if (slanted)
            m_layout.rules.push_back({ x + upperWidth - f.height / 4.0, rise, x + upperWidth + f.height / 4.0,
                                       rise + h, run.format });
    }

    void addRules(const KcDbMTextLayout::Piece& piece)
    {
        const KcDbMTextFormat& f = piece.format;
        const auto add = [&](double share) {
            const double y = piece.baseline + share * f.height;
            m_layout.rules.push_back({ piece.x, y, piece.x + piece.width, y, f });
        };
        if (f.underline)
            add(kUnderline);
        if (f.overline)
            add(kOverline);
        if (f.strike)
            add(kStrike);
    }

    /// Gives each line its column and its base line below the top; returns how many columns there are.
    size_t stackLines()
    {
        constexpr size_t kMostColumns = 1000;
        const size_t given = m_columns ? size_t(std::clamp(m_columns->count, 1, int(kMostColumns))) : 1;
        const size_t most
            = m_columns && m_columns->kind == KcDbMTextColumns::Kind::kDynamic ? kMostColumns : given;
        QString text;
        size_t column = 0;
        double y = 0.0;
        bool begins = true;
        for (size_t i = 0; i < m_pending.size(); ++i) {
            Pending& line = m_pending[i];
            const double height = m_frame.exactSpacing ? m_frame.height : line.height;
            double next = begins ? -line.height : y - KcGi::lineSpacing(height, m_frame.spacingFactor);
            if (m_columns && !begins && column + 1 < most
                && -next > m_columns->heightOf(column, m_frame.definedHeight)
                        * (1.0 + KcGeContext::gTol.equalVector)) {
                ++column;
                next = -line.height;
            }
            y = next;
            line.column = column;
            m_layout.lines[i].baseline = y;
            m_layout.height = std::max(m_layout.height, -y);
            begins = m_columns && line.endsColumn && column + 1 < most;
            column += begins;
        }
        return std::max(given, column + 1);
    }

    /// Moves the lines to their places about the attachment point.
    void finish()
    {
        if (m_pending.empty())
            return;
        double widest = 0.0;
        for (const Pending& line : m_pending)
            widest = std::max(widest, line.indent + line.width);
        const double frameWidth = m_frame.width > 0.0 ? m_frame.width : widest;
        const int attachment = m_frame.attachment >= 1 && m_frame.attachment <= 9 ? m_frame.attachment : 1;
        const int column = (attachment - 1) % 3, row = (attachment - 1) / 3;
        const size_t columns = stackLines();
        const double step = columns > 1 ? m_columns->width + std::max(0.0, m_columns->gutter) : 0.0;
        const double originX = -(frameWidth + double(columns - 1) * step) * column / 2.0;
        const double originY = m_layout.height * row / 2.0;
        m_layout.left = std::numeric_limits<double>::infinity();
        m_layout.right = -m_layout.left;
        for (size_t i = 0; i < m_pending.size(); ++i) {
            const Pending& pending = m_pending[i];
            KcDbMTextLayout::Line& line = m_layout.lines[i];
            const char alignment = pending.paragraph && pending.paragraph->alignment
                ? pending.paragraph->alignment
                : "lcr"[column];
            const double right
                = pending.paragraph ? std::max(0.0, pending.paragraph->rightIndent * m_frame.height) : 0.0;
            const double spare = frameWidth - right - pending.indent - pending.width;
            const size_t at
                = columns > 1 && m_columns->reversed ? columns - 1 - pending.column : pending.column;
            double shift = originX + double(at) * step;
            if (alignment == 'c')
                shift += spare / 2.0;
            else if (alignment == 'r')
                shift += spare;
            line.baseline += originY;
            line.x = shift + pending.indent;
            for (size_t p = pending.firstPiece; p < pending.endPiece; ++p) {
                m_layout.pieces[p].x += shift;
                m_layout.pieces[p].baseline += line.baseline;
            }
            for (size_t r = pending.firstRule; r < pending.endRule; ++r) {
                m_layout.rules[r].x1 += shift;
                m_layout.rules[r].x2 += shift;
                m_layout.rules[r].y1 += line.baseline;
                m_layout.rules[r].y2 += line.baseline;
            }
            m_layout.width = std::max(m_layout.width, line.width);
            if (line.width > 0.0) {
                m_layout.left = std::min(m_layout.left, line.x);
                m_layout.right = std::max(m_layout.right, line.x + line.width);
            }
        }
        if (m_layout.left > m_layout.right)
            m_layout.left = m_layout.right = 0.0;
        if (columns > 1)
            m_layout.width = m_layout.right - m_layout.left;
        m_layout.top = originY;
        m_layout.bottom = originY - m_layout.height;
    }

    struct Pending {
        const KcDbMTextParagraph* paragraph = nullptr;
        double indent = 0.0, width = 0.0, height = 0.0;
        size_t firstPiece = 0, endPiece = 0, firstRule = 0, endRule = 0;
        QString text;
        size_t column = 0;
        bool endsColumn = false;
    };

    const std::vector<KcDbMTextRun>& m_runs;
    KcDbMTextFrame m_frame;
    const KcDbMTextColumns* m_columns = nullptr; ///< null: none
    KcDbMTextLayout m_layout;
    std::vector<Pending> m_pending;
};

} // namespace

QString kcdbPlainText(const std::vector<KcDbMTextRun>& runs)
{
    QString result;
    for (const KcDbMTextRun& run : runs) {
        switch (run.kind) {
        case KcDbMTextRun::Kind::kText:
            result += run.text;
            break;
        case KcDbMTextRun::Kind::kStack:
            result += Setter::stacked(run);
            break;
        case KcDbMTextRun::Kind::kTab:
            result += u'\t';
            break;
        case KcDbMTextRun::Kind::kParagraphEnd:
        case KcDbMTextRun::Kind::kColumnEnd:
            result += u'\n';
            break;
        }
    }
    return result.replace(QChar(QChar::Nbsp), u' ');
}

KcDbMTextLayout kcdbLayoutMText(const std::vector<KcDbMTextRun>& runs, const KcDbMTextFrame& frame)
{
    return Setter(runs, frame).set();
}
