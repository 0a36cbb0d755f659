// Matching of keywords by their capitals.

#include "ed/keywords.h"

namespace {

// Digits and letters without case (Chinese) must be typed as capitals must.
bool isRequired(QChar c)
{
    return c.toLower() != c || c.isDigit() || (c.isLetter() && c.toUpper() == c);
}

// Capitals of the word, and how long a prefix must be to hold them all. Without capitals the whole word is
// needed.
struct Abbreviation {
    QString capitals;
    qsizetype prefixLength = 0;
};

Abbreviation abbreviationOf(const QString& word)
{
    Abbreviation result;
    qsizetype i = 0;
    while (i < word.size() && !isRequired(word[i]))
        ++i;
    while (i < word.size() && isRequired(word[i]))
        result.capitals += word[i++];
    result.prefixLength = result.capitals.isEmpty() ? word.size() : i;
    return result;
}

bool matches(const QString& word, const QString& typed)
{
    const Abbreviation abbreviation = abbreviationOf(word);
    if (!abbreviation.capitals.isEmpty() && abbreviation.capitals.compare(typed, Qt::CaseInsensitive) == 0)
        return true;
    return typed.size() >= abbreviation.prefixLength && word.startsWith(typed, Qt::CaseInsensitive);
}

} // namespace

KcEdKeywordList::KcEdKeywordList(const QString& list)
{
    const QStringList words = list.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const qsizetype separator = words.indexOf(QStringLiteral("_"));
    const qsizetype count = separator < 0 ? words.size() : separator;
    for (qsizetype i = 0; i < count; ++i) {
        const bool hasGlobal = separator >= 0 && separator + 1 + i < words.size();
        m_words.push_back({ words[i], hasGlobal ? words[separator + 1 + i] : words[i] });
    }
}

std::optional<QString> KcEdKeywordList::match(const QString& typed) const
{
    const bool global = typed.size() > 1 && typed.startsWith(QLatin1Char('_'));
    const QString text = global ? typed.mid(1) : typed;
    if (text.isEmpty())
        return {};
    for (const Word& word : m_words)
        if ((global ? word.global : word.local).compare(text, Qt::CaseInsensitive) == 0)
            return word.global;
    for (const Word& word : m_words)
        if (matches(global ? word.global : word.local, text))
            return word.global;
    return {};
}

QStringList KcEdKeywordList::localNames() const
{
    QStringList names;
    for (const Word& word : m_words)
        names += word.local;
    return names;
}

KcEdKeywordList::Question KcEdKeywordList::shown(const QString& question) const
{
    Question result{ question.simplified(), localNames() };
    const qsizetype from = result.text.lastIndexOf(QLatin1Char('['));
    const qsizetype to = result.text.indexOf(QLatin1Char(']'), from);
    if (m_words.empty() || from < 0 || to < 0)
        return result;
    QStringList captions = result.captions;
    for (const QString& option : result.text.mid(from + 1, to - from - 1).split(QLatin1Char('/'))) {
        // "Name" or "Name(Key)".
        const qsizetype key = option.lastIndexOf(QLatin1Char('('));
        const bool hasKey = key > 0 && option.endsWith(QLatin1Char(')'));
        const QString typed = hasKey ? option.mid(key + 1, option.size() - key - 2) : option;
        const std::optional<QString> meant = match(typed.trimmed());
        const auto word = std::find_if(
            m_words.begin(), m_words.end(), [&](const Word& w) { return meant && w.global == *meant; });
        if (word == m_words.end())
            return result;
        captions[word - m_words.begin()] = option.trimmed();
    }
    result.captions = captions;
    result.text = result.text.remove(from, to - from + 1).simplified();
    result.text.replace(QLatin1String(" :"), QLatin1String(":"));
    return result;
}
