// Scanning of markup that may be malformed anywhere.
#include "exchange/markup_scanner.h"

namespace markup {
namespace {

constexpr QStringView cdataOpen = u"<![CDATA[";
constexpr QStringView cdataClose = u"]]>";

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

bool isQuote(QChar c)
{
    return c == u'"' || c == u'\'';
}

bool startsName(QChar c)
{
    return c.isLetter() || c == u'_' || c == u':' || c.isSurrogate();
}

bool endsName(QChar c)
{
    return isBlank(c) || isQuote(c) || c == u'/' || c == u'>' || c == u'<' || c == u'=';
}

// The length of the reference that starts at "&", or 0: "&amp;", "&#22909;", "&#x597d;", "&own-name;".
qsizetype referenceLength(QStringView text, qsizetype at)
{
    qsizetype i = at + 1;
    if (i < text.size() && text[i] == u'#')
        ++i;
    const qsizetype nameBegin = i;
    while (i < text.size()
           && (text[i].isLetterOrNumber() || text[i] == u'_' || text[i] == u'-' || text[i] == u'.'
               || text[i] == u':'))
        ++i;
    if (i == nameBegin || i >= text.size() || text[i] != u';')
        return 0;
    return i + 1 - at;
}

// What a reference (without "&" and ";") stands for; empty when it is not known.
QString referenced(QStringView reference)
{
    if (reference == u"lt")
        return QStringLiteral("<");
    if (reference == u"gt")
        return QStringLiteral(">");
    if (reference == u"amp")
        return QStringLiteral("&");
    if (reference == u"quot")
        return QStringLiteral("\"");
    if (reference == u"apos")
        return QStringLiteral("'");
    if (!reference.startsWith(u'#'))
        return {};
    const bool hexadecimal = reference.size() > 1 && reference[1].toLower() == u'x';
    bool isNumber = false;
    const uint code = reference.sliced(hexadecimal ? 2 : 1).toUInt(&isNumber, hexadecimal ? 16 : 10);
    if (!isNumber || code == 0 || code > 0x10ffff || QChar::isSurrogate(code))
        return {};
    const char32_t character = code;
    return QString::fromUcs4(&character, 1);
}

} // namespace

QStringView tagNameAt(QStringView text, qsizetype begin)
{
    qsizetype end = begin;
    while (end < text.size() && !endsName(text[end]))
        ++end;
    return text.sliced(begin, end - begin);
}

std::optional<Token> Scanner::next()
{
    const qsizetype begin = m_text.indexOf(u'<', m_at);
    if (begin < 0) {
        m_at = m_text.size();
        return std::nullopt;
    }
    const Token token = tokenAt(begin);
    m_at = token.end;
    return token;
}

Token Scanner::tokenAt(qsizetype begin)
{
    const QStringView rest = m_text.sliced(begin);
    if (rest.startsWith(u"<!--"))
        return sectionAt(begin, Token::Kind::Comment, u"<!--", u"-->", m_noCommentEnd);
    if (rest.startsWith(cdataOpen))
        return sectionAt(begin, Token::Kind::CData, cdataOpen, cdataClose, m_noCDataEnd);
    if (rest.startsWith(u"<?"))
        return sectionAt(begin, Token::Kind::Instruction, u"<?", u"?>", m_noInstructionEnd);
    if (rest.startsWith(u"<!"))
        return declarationAt(begin);
    if (rest.startsWith(u"</"))
        return endTagAt(begin);
    if (rest.size() > 1 && startsName(rest[1]))
        return tagAt(begin);
    return { Token::Kind::Broken, begin, begin + 1, {} };
}

Token Scanner::sectionAt(
    qsizetype begin, Token::Kind kind, QStringView open, QStringView close, bool& closeIsMissing)
{
    const qsizetype inside = begin + open.size();
    const qsizetype end = closeIsMissing ? -1 : m_text.indexOf(close, inside);
    if (end >= 0)
        return { kind, begin, end + close.size(), {} };
    closeIsMissing = true;
    return { Token::Kind::Broken, begin, inside, open.sliced(1) };
}

// A declaration ends at the ">" outside quotes, comments and the brackets of its internal part.
Token Scanner::declarationAt(qsizetype begin)
{
    const QStringView name = m_text.sliced(begin + 1, 1 + tagNameAt(m_text, begin + 2).size());
    int depth = 0;
    for (qsizetype i = begin + 2; i < m_text.size() && !m_noDeclarationEnd; ++i) {
        const QChar c = m_text[i];
        if (c == u'>' && depth <= 0)
            return { Token::Kind::Declaration, begin, i + 1, name };
        if (c == u'[')
            ++depth;
        else if (c == u']')
            --depth;
        else if (isQuote(c)) {
            if (const qsizetype close = m_text.indexOf(c, i + 1); close >= 0)
                i = close;
        } else if (c == u'<' && m_text.sliced(i).startsWith(u"<!--")) {
            if (const qsizetype close = m_text.indexOf(u"-->", i + 4); close >= 0)
                i = close + 2;
            else
                break;
        }
    }
    m_noDeclarationEnd = true;
    return { Token::Kind::Broken, begin, begin + 2, name };
}

Token Scanner::endTagAt(qsizetype begin) const
{
    const QStringView name = tagNameAt(m_text, begin + 2);
    qsizetype end = begin + 2 + name.size();
    while (end < m_text.size() && m_text[end] != u'<') {
        if (m_text[end++] == u'>')
            break;
    }
    return { Token::Kind::EndTag, begin, end, name };
}

// A quote opens a value only behind "=", so that a stray apostrophe does not swallow the tags that follow.
Token Scanner::tagAt(qsizetype begin) const
{
    const QStringView name = tagNameAt(m_text, begin + 1);
    QChar before;
    for (qsizetype i = begin + 1 + name.size(); i < m_text.size(); ++i) {
        const QChar c = m_text[i];
        if (c == u'>') {
            const bool empty = m_text[i - 1] == u'/';
            return { empty ? Token::Kind::EmptyTag : Token::Kind::StartTag, begin, i + 1, name };
        }
        if (c == u'<')
            return { Token::Kind::Broken, begin, i, name };
        if (isQuote(c) && before == u'=')
            if (const qsizetype close = m_text.indexOf(c, i + 1); close >= 0)
                i = close;
        if (!isBlank(c))
            before = c;
    }
    return { Token::Kind::Broken, begin, m_text.size(), name };
}

std::optional<Attribute> findAttribute(
    QStringView text, qsizetype begin, qsizetype end, QStringView name, Qt::CaseSensitivity sensitivity)
{
    const QStringView tag = text.first(end);
    qsizetype i = begin + 1 + tagNameAt(tag, begin + 1).size();
    const auto skipBlanks = [&] {
        while (i < end && isBlank(tag[i]))
            ++i;
    };
    while (i < end) {
        skipBlanks();
        const QStringView found = tagNameAt(tag, i);
        if (found.isEmpty()) { // "/", ">" or a character out of place
            ++i;
            continue;
        }
        Attribute attribute;
        attribute.nameBegin = i;
        i += found.size();
        attribute.nameEnd = i;
        skipBlanks();
        if (i < end && tag[i] == u'=') {
            ++i;
            skipBlanks();
            const qsizetype close = i < end && isQuote(tag[i]) ? tag.indexOf(tag[i], i + 1) : -1;
            attribute.quoted = close >= 0;
            attribute.valueBegin = attribute.quoted ? i + 1 : i;
            if (attribute.quoted) {
                attribute.valueEnd = close;
                i = close + 1;
            } else {
                while (i < end && !isBlank(tag[i]) && tag[i] != u'>' && !(tag[i] == u'/' && i + 2 == end))
                    ++i;
                attribute.valueEnd = i;
            }
        } else {
            i = attribute.nameEnd;
        }
        if (found.compare(name, sensitivity) == 0)
            return attribute;
    }
    return std::nullopt;
}

bool isName(QStringView text)
{
    if (text.isEmpty() || !startsName(text[0]))
        return false;
    return std::none_of(
        text.begin(), text.end(), [](QChar c) { return endsName(c) || c == u'&' || c.isNull(); });
}

QString escape(QStringView text, bool forAttribute, bool keepReferences)
{
    QString escaped;
    escaped.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == u'<')
            escaped += u"&lt;";
        else if (c == u'>')
            escaped += u"&gt;";
        else if (c == u'"' && forAttribute)
            escaped += u"&quot;";
        else if (c == u'\'' && forAttribute)
            escaped += u"&apos;";
        else if (c != u'&')
            escaped += c;
        else if (const qsizetype length = keepReferences ? referenceLength(text, i) : 0; length > 0) {
            escaped += text.sliced(i, length);
            i += length - 1;
        } else
            escaped += u"&amp;";
    }
    return escaped;
}

QString unescape(QStringView text)
{
    QString plain;
    plain.reserve(text.size());
    while (true) {
        const qsizetype at = text.indexOf(u'&');
        if (at < 0)
            return plain += text;
        plain += text.first(at);
        const qsizetype length = referenceLength(text, at);
        const QString value = length > 0 ? referenced(text.sliced(at + 1, length - 2)) : QString();
        plain += value.isEmpty() ? QStringView(u"&") : QStringView(value);
        text = text.sliced(at + (value.isEmpty() ? 1 : length));
    }
}

QString cdataSection(const QString& text)
{
    QString inside = text;
    inside.replace(QStringLiteral("]]>"), QStringLiteral("]]]]><![CDATA[>"));
    return cdataOpen.toString() + inside + cdataClose.toString();
}

QString characterData(QStringView text)
{
    QString data;
    qsizetype reached = 0;
    Scanner scanner(text);
    while (const auto token = scanner.next()) {
        if (token->kind == Token::Kind::Broken)
            continue;
        data += unescape(text.sliced(reached, token->begin - reached));
        if (token->kind == Token::Kind::CData) {
            const qsizetype inside = token->begin + cdataOpen.size();
            data += text.sliced(inside, token->end - cdataClose.size() - inside);
        }
        reached = token->end;
    }
    return data += unescape(text.sliced(reached));
}

} // namespace markup
