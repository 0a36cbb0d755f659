// Matching of wild cards, without recursion: only the last star is ever returned to.

#include "ed/wild_card.h"

namespace {

// One element of a pattern at `at` against a character; moves `at` behind the element.
bool matchesElement(const QString& pattern, qsizetype& at, QChar c)
{
    const QChar p = pattern[at++];
    if (p == QLatin1Char('#'))
        return c.isDigit();
    if (p == QLatin1Char('@'))
        return c.isLetter();
    if (p == QLatin1Char('.'))
        return !c.isLetterOrNumber();
    if (p == QLatin1Char('?'))
        return true;
    if (p == QLatin1Char('`') && at < pattern.size())
        return pattern[at++] == c;
    const qsizetype close = p == QLatin1Char('[') ? pattern.indexOf(QLatin1Char(']'), at) : -1;
    if (close < 0)
        return p == c;

    const bool negated = pattern[at] == QLatin1Char('~');
    bool found = false;
    for (qsizetype i = negated ? at + 1 : at; i < close; ++i) {
        if (i + 2 < close && pattern[i + 1] == QLatin1Char('-')) {
            found = found || (pattern[i] <= c && c <= pattern[i + 2]);
            i += 2;
        } else {
            found = found || pattern[i] == c;
        }
    }
    at = close + 1;
    return found != negated;
}

bool matchesPattern(const QString& pattern, const QString& name)
{
    qsizetype p = 0, n = 0, starPattern = -1, starName = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == QLatin1Char('*')) {
            starPattern = ++p;
            starName = n;
            continue;
        }
        if (qsizetype next = p; p < pattern.size() && matchesElement(pattern, next, name[n])) {
            p = next;
            ++n;
            continue;
        }
        if (starPattern < 0)
            return false;
        p = starPattern;
        n = ++starName;
    }
    while (p < pattern.size() && pattern[p] == QLatin1Char('*'))
        ++p;
    return p == pattern.size();
}

// Commas separate, except in brackets and behind a backquote.
QStringList splitAlternatives(const QString& pattern)
{
    QStringList parts(QString{});
    bool inBrackets = false;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern[i];
        if (c == QLatin1Char('`') && i + 1 < pattern.size()) {
            parts.last() += c;
            parts.last() += pattern[++i];
            continue;
        }
        if (c == QLatin1Char('[') && pattern.indexOf(QLatin1Char(']'), i) > i)
            inBrackets = true;
        else if (c == QLatin1Char(']'))
            inBrackets = false;
        if (c == QLatin1Char(',') && !inBrackets)
            parts += QString();
        else
            parts.last() += c;
    }
    return parts;
}

} // namespace

KcEdWildCard::KcEdWildCard(const QString& pattern)
{
    for (const QString& part : splitAlternatives(pattern.toUpper())) {
        Alternative alternative;
        alternative.negated = part.startsWith(QLatin1Char('~'));
        alternative.pattern = alternative.negated ? part.mid(1) : part;
        alternative.plain = std::none_of(alternative.pattern.begin(), alternative.pattern.end(), [](QChar c) {
            return QStringLiteral("#@.*?[`").contains(c);
        });
        m_alternatives.push_back(alternative);
    }
}

bool KcEdWildCard::matches(const QString& name) const
{
    const QString upper = name.toUpper();
    for (const Alternative& alternative : m_alternatives) {
        const bool found
            = alternative.plain ? alternative.pattern == upper : matchesPattern(alternative.pattern, upper);
        if (found != alternative.negated)
            return true;
    }
    return false;
}
