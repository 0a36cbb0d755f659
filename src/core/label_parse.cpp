// The label parser.
#include "core/label_parse.h"

#include <QRegularExpression>

namespace {

// Labels typed on a Chinese keyboard often have the wide brackets.
bool isOpeningBracket(QChar c)
{
    return c == u'(' || c == u'（';
}

bool isClosingBracket(QChar c)
{
    return c == u')' || c == u'）';
}

// The text without blanks and closing brackets at its end, so that the unit stands last.
QStringView upToUnit(QStringView text)
{
    while (!text.isEmpty() && (text.back().isSpace() || isClosingBracket(text.back())))
        text.chop(1);
    return text;
}

QString nameBefore(QStringView text, QStringView separators)
{
    while (!text.isEmpty()
           && (text.back().isSpace() || isOpeningBracket(text.back()) || separators.contains(text.back())))
        text.chop(1);
    return text.trimmed().toString();
}

QRegularExpressionMatch lastMatch(const QRegularExpression& expression, QStringView text)
{
    QRegularExpressionMatch last;
    for (auto all = expression.globalMatch(text); all.hasNext();)
        last = all.next();
    return last;
}

} // namespace

std::optional<TreeLabel> parseTreeLabel(const QString& entry)
{
    static const QRegularExpression digits(QStringLiteral("[0-9]+"));
    QStringView text = entry;
    if (const QStringView trimmed = upToUnit(text); trimmed.endsWith(u"m2") || trimmed.endsWith(u"M2"))
        text = trimmed.chopped(2);
    const QRegularExpressionMatch found = lastMatch(digits, text);
    if (!found.hasMatch())
        return std::nullopt;
    bool fits = false;
    const int count = found.capturedView().toInt(&fits);
    if (!fits)
        return std::nullopt;
    return TreeLabel{ nameBefore(text.first(found.capturedStart()), u"-"), count };
}

std::optional<AreaLabel> parseAreaLabel(const QString& entry)
{
    static const QRegularExpression number(QStringLiteral("[0-9]+(?:\\.[0-9]*)?|\\.[0-9]+"));
    QStringView text = upToUnit(entry);
    if (text.size() >= 2 && text[text.size() - 2].toLower() == u'm')
        text.chop(2);
    const QRegularExpressionMatch found = lastMatch(number, text);
    if (!found.hasMatch())
        return std::nullopt;
    bool fits = false;
    const double value = found.capturedView().toDouble(&fits);
    if (!fits)
        return std::nullopt;
    return AreaLabel{ nameBefore(text.first(found.capturedStart()), u"-/"), value };
}

QString GetSpeciesName(const QString& name)
{
    // A size is a figure or a range of figures, with or without the letter or word that says what is measured
    // and a unit. A letter counts as such only where no word ends with it.
    static const QRegularExpression ending(
        QStringLiteral("(?:"
                       "(?:胸径|地径|米径|干径|冠幅|冠径|蓬径|株高|高度|高|(?<![A-Za-z])[DHPWdhpw]|[ΦφØø∅⌀])?"
                       "[:：=≥>]?\\s*[0-9]+(?:\\.[0-9]+)?(?:\\s*[-~～—×*xX]\\s*[0-9]+(?:\\.[0-9]+)?)*"
                       "\\s*(?:cm|mm|m|CM|MM|M|公分|厘米|毫米|米)?"
                       "|[(（\\[【][^()（）\\[\\]【】]*[)）\\]】]"
                       "|[\\s()（）\\[\\]【】\\-_/\\\\、，,;；:：.。·*×+~～—#]+"
                       ")$"));
    QString species = name;
    while (true) {
        const qsizetype at = ending.match(species).capturedStart();
        if (at < 0)
            break;
        species.truncate(at);
    }
    return species.isEmpty() ? name : species;
}
