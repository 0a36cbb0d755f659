// Decoding and encoding the texts of drawing files.

#include "dxf/strings.h"

namespace dxf {

namespace {

platform::CharacterSet setFor(const QString& codePage, bool utf8)
{
    if (utf8)
        return platform::CharacterSet::utf8();
    if (auto set = platform::CharacterSet::named(codePage))
        return std::move(*set);
    // "UNDEFINED", none, or a name nobody knows: the code page of most programs that leave it out.
    return std::move(*platform::CharacterSet::named(QStringLiteral("windows-1252")));
}

// Length of the UTF-8 sequence at p, 0 when there is none.
size_t sequenceLength(const unsigned char* p, const unsigned char* end)
{
    const size_t left = size_t(end - p);
    const auto continues = [&](size_t i) { return i < left && (p[i] & 0xC0) == 0x80; };
    if (*p < 0x80)
        return 1;
    if (*p >= 0xC2 && *p <= 0xDF)
        return continues(1) ? 2 : 0;
    if (*p >= 0xE0 && *p <= 0xEF)
        return continues(1) && continues(2) && (*p != 0xE0 || p[1] >= 0xA0) && (*p != 0xED || p[1] < 0xA0)
            ? 3
            : 0;
    if (*p >= 0xF0 && *p <= 0xF4)
        return continues(1) && continues(2) && continues(3) && (*p != 0xF0 || p[1] >= 0x90)
                && (*p != 0xF4 || p[1] < 0x90)
            ? 4
            : 0;
    return 0;
}

struct Utf8Census {
    bool valid = true;
    bool longSequences = false; ///< of three bytes or more, as Chinese has
};

Utf8Census census(std::string_view bytes)
{
    Utf8Census result;
    const auto* p = reinterpret_cast<const unsigned char*>(bytes.data());
    const auto* end = p + bytes.size();
    while (p < end) {
        if (*p < 0x80) {
            ++p;
            continue;
        }
        const size_t length = sequenceLength(p, end);
        if (length == 0)
            return { false, false };
        result.longSequences |= length >= 3;
        p += length;
    }
    return result;
}

int hexValue(QStringView digits)
{
    bool ok = false;
    const int value = digits.toInt(&ok, 16);
    return ok ? value : -1;
}

// Code pages that "\M+n" numbers stand for.
const char* multiByteSet(QChar number)
{
    switch (number.unicode()) {
    case '1':
        return "windows-932";
    case '2':
        return "windows-950";
    case '3':
        return "windows-949";
    case '5':
        return "windows-936";
    default:
        return nullptr;
    }
}

} // namespace

bool isValidUtf8(std::string_view bytes)
{
    return census(bytes).valid;
}

bool looksLikeUtf8(std::string_view bytes, const QString& codePage)
{
    const Utf8Census found = census(bytes);
    if (!found.valid)
        return false;
    if (found.longSequences)
        return true;
    const auto set = platform::CharacterSet::named(codePage);
    return set && !set->decode(bytes).clean();
}

Strings::Strings(const QString& codePage, bool utf8)
    : m_codePage(codePage)
    , m_set(setFor(codePage, utf8))
{
}

QString Strings::decode(std::string_view bytes)
{
    bool plain = true, escapes = false;
    for (const char c : bytes) {
        plain &= static_cast<signed char>(c) >= 0;
        escapes |= c == '\\' || c == '^';
    }
    QString text;
    if (plain) {
        text = QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));
    } else {
        platform::Decoded decoded = m_set.decode(bytes);
        m_undecodable += size_t(decoded.badBytes);
        text = std::move(decoded.text);
        escapes |= text.contains(u'\\') || text.contains(u'^');
    }
    return escapes ? resolveEscapes(text) : text;
}

QString Strings::resolveEscapes(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (c == u'^' && i + 1 < text.size()) {
            const char16_t next = text[i + 1].unicode();
            if (next == u' ' || (next >= u'@' && next <= u'_')) {
                result += next == u' ' ? QChar(u'^') : QChar(char16_t(next - u'@'));
                ++i;
                continue;
            }
        }
        if (c == u'\\' && i + 6 < text.size() && text[i + 2] == u'+') {
            const QStringView rest = QStringView(text).mid(i + 3);
            if ((text[i + 1] == u'U' || text[i + 1] == u'u') && hexValue(rest.left(4)) >= 0) {
                result += QChar(char16_t(hexValue(rest.left(4))));
                i += 6;
                continue;
            }
            const char* set = text[i + 1] == u'M' ? multiByteSet(rest[0]) : nullptr;
            if (set && rest.size() >= 5 && hexValue(rest.mid(1, 4)) >= 0) {
                const int value = hexValue(rest.mid(1, 4));
                const char pair[2] = { char(value >> 8), char(value) };
                if (auto converter = platform::CharacterSet::named(QString::fromLatin1(set))) {
                    result += converter->decode(std::string_view(pair, 2)).text;
                    i += 7;
                    continue;
                }
            }
        }
        result += c;
    }
    return result;
}

std::string Strings::encode(const QString& text) const
{
    QString escaped;
    escaped.reserve(text.size());
    for (const QChar c : text) {
        if (c == u'^') {
            escaped += QLatin1String("^ ");
        } else if (c.unicode() < 0x20) {
            escaped += u'^';
            escaped += QChar(char16_t(c.unicode() + u'@'));
        } else {
            escaped += c;
        }
    }
    // A lone half of a surrogate pair cannot be written in any set: it becomes an escape of its own.
    const platform::Encoded encoded = m_set.encode(escaped, [](char32_t c) {
        QString escape;
        const auto unit
            = [&](char16_t u) { escape += QStringLiteral("\\U+%1").arg(u, 4, 16, QChar(u'0')).toUpper(); };
        if (QChar::requiresSurrogates(c)) {
            unit(QChar::highSurrogate(c));
            unit(QChar::lowSurrogate(c));
        } else {
            unit(char16_t(c));
        }
        return escape;
    });
    return std::string(encoded.bytes.constData(), size_t(encoded.bytes.size()));
}

} // namespace dxf
