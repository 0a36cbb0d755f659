// Character sets over ICU's converters, with the names that drawings and documents use for them.
#include "platform/character_sets.h"

#include <QStringDecoder>

#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>

#include <cstring>

namespace platform {
namespace {

// Converters of the Windows code pages that the number alone does not lead to.
struct CodePage {
    int number;
    const char* converter;
};
constexpr CodePage codePages[] = {
    { 932, "ibm-943_P15A-2003" }, { 936, "GBK" },           { 949, "windows-949" },
    { 950, "windows-950" },       { 1200, "UTF-16LE" },     { 1201, "UTF-16BE" },
    { 10000, "macintosh" },       { 12000, "UTF-32LE" },    { 12001, "UTF-32BE" },
    { 20127, "US-ASCII" },        { 20866, "KOI8-R" },      { 20936, "GBK" },
    { 21866, "KOI8-U" },          { 50220, "ISO-2022-JP" }, { 50221, "ISO-2022-JP" },
    { 50222, "ISO-2022-JP" },     { 50225, "ISO-2022-KR" }, { 51932, "EUC-JP" },
    { 51949, "EUC-KR" },          { 52936, "HZ-GB-2312" },  { 54936, "GB18030" },
    { 65000, "UTF-7" },           { 65001, "UTF-8" },
};

// Names whose Windows code page differs from what a table of standards says: labelled with the standard's
// name, the files hold the larger set that Windows writes.
struct LabelledPage {
    const char* plainName;
    int page;
};
constexpr LabelledPage labelledPages[] = {
    { "gb2312", 936 },      { "csgb2312", 936 },      { "gb231280", 936 },
    { "gb23121980", 936 },  { "csgb231280", 936 },    { "csiso58gb231280", 936 },
    { "isoir58", 936 },     { "chinese", 936 },       { "euccn", 936 },
    { "xeuccn", 936 },      { "gbk", 936 },           { "xgbk", 936 },
    { "csgbk", 936 },       { "ksc5601", 949 },       { "ksc56011987", 949 },
    { "ksc56011989", 949 }, { "csksc56011987", 949 }, { "isoir149", 949 },
    { "korean", 949 },      { "uhc", 949 },           { "big5", 950 },
    { "csbig5", 950 },      { "cnbig5", 950 },        { "shiftjis", 932 },
    { "xsjis", 932 },       { "sjis", 932 },          { "csshiftjis", 932 },
    { "mskanji", 932 },     { "windows31j", 932 },    { "macroman", 10000 },
    { "utf16", 1200 },      { "ucs2", 1200 },
};

// The name without case and separators: "KS_C_5601-1987" gives "ksc56011987".
QByteArray plainForm(QStringView name)
{
    QByteArray plain;
    for (const QChar c : name)
        if (c.unicode() < 128 && c.isLetterOrNumber())
            plain += char(c.toLower().unicode());
    return plain;
}

// The code page that a name stands for when it is a number, alone or after one of the usual words.
std::optional<int> codePageNumber(const QByteArray& plain)
{
    for (const char* word : { "ansi", "oem", "dos", "mscp", "cp", "windows", "" }) {
        if (!plain.startsWith(word))
            continue;
        bool isNumber = false;
        const int page = plain.mid(qsizetype(strlen(word))).toInt(&isNumber);
        if (isNumber)
            return page;
    }
    return std::nullopt;
}

UConverter* openConverter(const QByteArray& name)
{
    // An empty name would give the process's default converter, and a comma starts options of ICU's own.
    if (name.isEmpty() || name.contains(',') || name.size() >= UCNV_MAX_CONVERTER_NAME_LENGTH)
        return nullptr;
    UErrorCode error = U_ZERO_ERROR;
    UConverter* converter = ucnv_open(name.constData(), &error);
    return U_SUCCESS(error) ? converter : nullptr;
}

UConverter* openCodePage(int page)
{
    for (const CodePage& known : codePages)
        if (known.number == page)
            return openConverter(known.converter);
    if (page >= 28591 && page <= 28606)
        return openConverter("ISO-8859-" + QByteArray::number(page - 28590));
    for (const char* family : { "windows-", "cp", "ibm-" })
        if (UConverter* converter = openConverter(family + QByteArray::number(page)))
            return converter;
    return nullptr;
}

UConverter* openNamed(QStringView name)
{
    const QByteArray plain = plainForm(name);
    for (const LabelledPage& labelled : labelledPages)
        if (plain == labelled.plainName)
            return openCodePage(labelled.page);
    if (const auto page = codePageNumber(plain))
        return openCodePage(*page);
    return openConverter(name.trimmed().toLatin1());
}

QString publishedName(const UConverter* converter)
{
    UErrorCode error = U_ZERO_ERROR;
    const char* internal = ucnv_getName(converter, &error);
    for (const char* standard : { "MIME", "IANA" }) {
        error = U_ZERO_ERROR;
        const char* name = ucnv_getStandardName(internal, standard, &error);
        if (name && U_SUCCESS(error))
            return QString::fromLatin1(name);
    }
    return QString::fromLatin1(internal);
}

// Printable ASCII and line layout. Some East Asian sets permute the other control characters.
bool isPlainAscii(char16_t c)
{
    return (c >= 0x20 && c < 0x7f) || c == '\t' || c == '\n' || c == '\r';
}

bool isPlainAscii(std::string_view bytes)
{
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return isPlainAscii(char16_t(uint8_t(c))); });
}

bool isPlainAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return isPlainAscii(c.unicode()); });
}

} // namespace

void CharacterSet::Close::operator()(UConverter* converter) const
{
    ucnv_close(converter);
}

CharacterSet::CharacterSet(CharacterSet&&) noexcept = default;
CharacterSet& CharacterSet::operator=(CharacterSet&&) noexcept = default;
CharacterSet::~CharacterSet() = default;

CharacterSet::CharacterSet(UConverter* converter, const QString& name)
    : m_converter(converter)
    , m_name(name)
    , m_utf8(ucnv_getType(converter) == UCNV_UTF8)
{
    UErrorCode error = U_ZERO_ERROR;
    ucnv_setToUCallBack(converter, UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    ucnv_setFromUCallBack(converter, UCNV_FROM_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &error);
    // Approximate mappings would lose characters without a word.
    ucnv_setFallback(converter, false);
    m_asciiAsIs = readsAsciiAsIs();
}

std::optional<CharacterSet> CharacterSet::named(QStringView name)
{
    UConverter* converter = openNamed(name);
    if (!converter)
        return std::nullopt;
    return CharacterSet(converter, publishedName(converter));
}

CharacterSet CharacterSet::utf8()
{
    return std::move(*named(u"UTF-8"));
}

bool CharacterSet::readsAsciiAsIs() const
{
    for (char c = 1; c < 0x7f; ++c) {
        if (!isPlainAscii(char16_t(c)))
            continue;
        const Decoded one = decodeAny({ &c, 1 });
        if (!one.clean() || one.text != QLatin1StringView(&c, 1))
            return false;
    }
    return true;
}

Decoded CharacterSet::decode(std::string_view bytes) const
{
    if (m_asciiAsIs && isPlainAscii(bytes))
        return { QString::fromLatin1(bytes.data(), qsizetype(bytes.size())), 0, {} };
    if (m_utf8) {
        QStringDecoder decoder(
            QStringDecoder::Utf8, QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
        QString text = decoder(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
        if (!decoder.hasError())
            return { std::move(text), 0, {} };
    }
    return decodeAny(bytes);
}

Decoded CharacterSet::decodeAny(std::string_view bytes) const
{
    Decoded result;
    UConverter* converter = m_converter.get();
    ucnv_resetToUnicode(converter);
    const char* source = bytes.data();
    const char* const end = source + bytes.size();
    std::array<char16_t, 1024> buffer;
    while (true) {
        char16_t* target = buffer.data();
        UErrorCode error = U_ZERO_ERROR;
        ucnv_toUnicode(
            converter, &target, buffer.data() + buffer.size(), &source, end, nullptr, true, &error);
        result.text.append(reinterpret_cast<const QChar*>(buffer.data()), target - buffer.data());
        if (error == U_BUFFER_OVERFLOW_ERROR)
            continue;
        if (U_SUCCESS(error))
            return result;
        char invalid[32];
        int8_t length = sizeof invalid;
        UErrorCode ignored = U_ZERO_ERROR;
        ucnv_getInvalidChars(converter, invalid, &length, &ignored);
        if (U_FAILURE(ignored) || length < 1)
            length = 1;
        result.badPositions.push_back(std::max<qsizetype>(0, source - bytes.data() - length));
        result.badBytes += length;
        result.text.append(QChar(QChar::ReplacementCharacter));
        // A sequence cut off by the end of the bytes leaves nothing to go on with.
        if (error == U_TRUNCATED_CHAR_FOUND && source >= end)
            return result;
    }
}

Encoded CharacterSet::encode(QStringView text, const Replacement& replacement) const
{
    if (m_asciiAsIs && isPlainAscii(text))
        return { text.toLatin1(), {} };
    if (m_utf8 && text.isValidUtf16())
        return { text.toUtf8(), {} };
    return encodeAny(text, replacement);
}

Encoded CharacterSet::encodeAny(QStringView text, const Replacement& replacement) const
{
    Encoded result;
    UConverter* converter = m_converter.get();
    ucnv_resetFromUnicode(converter);
    std::array<char, 2048> buffer;

    // How far a text could be written: all of it, or up to and including a character that the set lacks.
    struct Written {
        qsizetype units = 0;
        std::optional<char32_t> misfit;
        qsizetype misfitUnits = 0;
    };
    const auto write = [&](QStringView part, bool last) {
        const char16_t* const begin = part.utf16();
        const char16_t* source = begin;
        while (true) {
            char* target = buffer.data();
            UErrorCode error = U_ZERO_ERROR;
            ucnv_fromUnicode(
                converter, &target, buffer.data() + buffer.size(), &source, begin + part.size(), nullptr,
                last, &error);
            result.bytes.append(buffer.data(), target - buffer.data());
            if (error == U_BUFFER_OVERFLOW_ERROR)
                continue;
            if (U_SUCCESS(error))
                return Written{ part.size(), std::nullopt, 0 };
            char16_t units[8] = {};
            int8_t length = 8;
            UErrorCode ignored = U_ZERO_ERROR;
            ucnv_getInvalidUChars(converter, units, &length, &ignored);
            if (U_FAILURE(ignored) || length < 1)
                length = 1;
            const char32_t misfit
                = length > 1 ? QChar::surrogateToUcs4(units[0], units[1]) : char32_t(units[0]);
            return Written{ source - begin, misfit, length };
        }
    };

    for (qsizetype position = 0;;) {
        const Written written = write(text.sliced(position), true);
        if (!written.misfit)
            return result;
        position += written.units;
        result.unmappable.push_back(std::max<qsizetype>(0, position - written.misfitUnits));
        QString instead = replacement ? replacement(*written.misfit) : QString();
        if (instead.isEmpty())
            instead = u"?"_qs;
        // The replacement goes through the converter as well, so that sets with shifts stay in step.
        for (QStringView rest = instead; !rest.isEmpty();) {
            const Written inner = write(rest, false);
            rest = rest.sliced(inner.units);
            if (inner.misfit)
                write(u"?", false);
        }
    }
}

} // namespace platform
