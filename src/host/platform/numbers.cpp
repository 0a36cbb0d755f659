// Conversions that do not ask the locale.

#include "platform/numbers.h"

#include <QByteArray>

#include <charconv>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <locale.h>
#include <vector>

namespace platform {

namespace {

qsizetype skipBlanks(const QString& text)
{
    qsizetype at = 0;
    while (at < text.size() && text[at].isSpace())
        ++at;
    return at;
}

bool isSign(const QString& text, qsizetype at)
{
    return at < text.size() && (text[at] == u'+' || text[at] == u'-');
}

bool isDigit(const QString& text, qsizetype at)
{
    return at < text.size() && text[at] >= u'0' && text[at] <= u'9';
}

// Makes the C locale the one of this thread while it lives.
class CLocaleScope {
public:
    CLocaleScope()
    {
        static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", locale_t(nullptr));
        m_previous = uselocale(cLocale);
    }
    ~CLocaleScope() { uselocale(m_previous); }
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;

private:
    locale_t m_previous;
};

} // namespace

int wtoi(const QString& text)
{
    qsizetype at = skipBlanks(text);
    const bool negative = isSign(text, at) && text[at] == u'-';
    if (isSign(text, at))
        ++at;
    // One beyond the largest magnitude is enough to know that the number is out of range.
    constexpr int64_t limit = int64_t(std::numeric_limits<int>::max()) + 1;
    int64_t magnitude = 0;
    for (; at < text.size() && text[at].digitValue() >= 0; ++at)
        magnitude = std::min(limit, magnitude * 10 + text[at].digitValue());
    return int(negative ? -magnitude : std::min(magnitude, limit - 1));
}

double wtof(const QString& text)
{
    qsizetype at = skipBlanks(text);
    QByteArray number;
    const auto takeDigits = [&] {
        const qsizetype before = at;
        for (; isDigit(text, at); ++at)
            number += char(text[at].unicode());
        return at > before;
    };
    if (isSign(text, at)) {
        if (text[at] == u'-')
            number += '-';
        ++at;
    }
    bool anyDigit = takeDigits();
    if (at < text.size() && text[at] == u'.') {
        ++at;
        number += anyDigit ? "." : "0.";
        if (takeDigits())
            anyDigit = true;
        else
            number += '0';
    }
    if (!anyDigit)
        return 0;
    if (at < text.size() && QStringView(u"eEdD").contains(text[at])
        && isDigit(text, isSign(text, at + 1) ? at + 2 : at + 1)) {
        number += 'e';
        ++at;
        if (isSign(text, at))
            number += char(text[at++].unicode());
        takeDigits();
    }
    const CLocaleScope scope;
    return std::strtod(number.constData(), nullptr);
}

QString formatReal(double value)
{
    std::array<char, 32> buffer;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    return QString::fromLatin1(buffer.data(), end - buffer.data());
}

QString formatC(const char* format, ...)
{
    const CLocaleScope scope;
    va_list arguments;
    va_start(arguments, format);
    va_list again;
    va_copy(again, arguments);
    const int size = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    std::vector<char> buffer(size < 0 ? 1 : size_t(size) + 1);
    if (size >= 0)
        std::vsnprintf(buffer.data(), buffer.size(), format, again);
    va_end(again);
    return size < 0 ? QString() : QString::fromUtf8(buffer.data(), size);
}

} // namespace platform
