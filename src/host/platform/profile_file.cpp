// Profile files: lines are kept as read and classified when they are asked for.

#include "platform/profile_file.h"

#include "platform/character_sets.h"
#include "platform/diagnostics.h"
#include "platform/files.h"

namespace platform {

namespace {

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t';
}

QStringView trimmed(QStringView text)
{
    while (!text.isEmpty() && isBlank(text.front()))
        text = text.mid(1);
    while (!text.isEmpty() && isBlank(text.back()))
        text.chop(1);
    return text;
}

bool sameName(QStringView a, QStringView b)
{
    return trimmed(a).compare(trimmed(b), Qt::CaseInsensitive) == 0;
}

// What one line is, by its text.
struct Meaning {
    enum Kind { Other, Section, Key } kind = Other;
    QStringView name;
    QStringView value; ///< of a key: what stands behind the "=", as written
};

Meaning meaningOf(QStringView line)
{
    const QStringView text = trimmed(line);
    if (text.isEmpty() || text.front() == u';')
        return {};
    if (text.front() == u'[')
        if (const qsizetype end = text.indexOf(u']'); end > 0)
            return { Meaning::Section, trimmed(text.mid(1, end - 1)), {} };
    if (const qsizetype equals = text.indexOf(u'='); equals > 0)
        return { Meaning::Key, trimmed(text.first(equals)), text.mid(equals + 1) };
    return {};
}

bool isQuoted(QStringView text)
{
    return text.size() >= 2 && text.front() == text.back() && (text.front() == u'"' || text.front() == u'\'');
}

QStringView storedToValue(QStringView stored)
{
    const QStringView text = trimmed(stored);
    return isQuoted(text) ? text.mid(1, text.size() - 2) : text;
}

QString valueToStored(const QString& value)
{
    return storedToValue(value) == value ? value : u'"' + value + u'"';
}

bool holdsBreak(const QString& text)
{
    return text.contains(u'\n') || text.contains(u'\r') || text.contains(QChar(u'\0'));
}

using Encoding = ProfileFile::Encoding;

std::optional<CharacterSet> characterSet(Encoding encoding)
{
    if (encoding == Encoding::Gbk)
        return CharacterSet::named(u"GBK");
    if (encoding == Encoding::Gb18030)
        return CharacterSet::named(u"GB18030");
    return CharacterSet::utf8();
}

constexpr char utf8Mark[] = "\xEF\xBB\xBF";
constexpr char utf16Mark[] = "\xFF\xFE";

struct StoredText {
    QString text;
    Encoding encoding;
};

// Pairs of bytes, low byte first; single surrogates are kept, as the home system keeps them.
QString fromUtf16(const QByteArray& bytes)
{
    QString text(bytes.size() / 2, Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i)
        text[i] = QChar(ushort(uchar(bytes[2 * i]) | uchar(bytes[2 * i + 1]) << 8));
    return text;
}

QByteArray toUtf16(const QString& text)
{
    QByteArray bytes(utf16Mark);
    bytes.reserve(2 * text.size() + 2);
    for (const QChar c : text) {
        bytes += char(c.unicode() & 0xFF);
        bytes += char(c.unicode() >> 8);
    }
    return bytes;
}

// The text of bytes that all mean something in the encoding.
std::optional<QString> cleanText(const QByteArray& bytes, Encoding encoding)
{
    const auto set = characterSet(encoding);
    Decoded decoded = set ? set->decode({ bytes.constData(), size_t(bytes.size()) }) : Decoded();
    // The table of GBK gives the byte FF, which stands for nothing, this private character.
    constexpr char16_t strayByte = 0xF8F5;
    if (!set || !decoded.clean() || (encoding == Encoding::Gbk && decoded.text.contains(QChar(strayByte))))
        return std::nullopt;
    return std::move(decoded.text);
}

Result<StoredText> decodeAny(const QByteArray& bytes)
{
    using Outcome = Result<StoredText>;
    if (bytes.startsWith(utf16Mark)) {
        if (bytes.size() % 2 != 0)
            return Outcome::failure(QStringLiteral("the UTF-16 text ends in the middle of a character"));
        return { StoredText{ fromUtf16(bytes.mid(2)), Encoding::Utf16 }, {} };
    }
    if (bytes.startsWith("\xFE\xFF"))
        return Outcome::failure(
            QStringLiteral("it is UTF-16 with the high byte first, which is not supported"));
    if (bytes.startsWith(utf8Mark)) {
        if (auto text = cleanText(bytes.mid(3), Encoding::Utf8WithMark))
            return { StoredText{ std::move(*text), Encoding::Utf8WithMark }, {} };
        return Outcome::failure(QStringLiteral("it is marked as UTF-8 but holds bytes that are none"));
    }
    for (const Encoding encoding : { Encoding::Utf8, Encoding::Gbk, Encoding::Gb18030 })
        if (auto text = cleanText(bytes, encoding))
            return { StoredText{ std::move(*text), encoding }, {} };
    return Outcome::failure(QStringLiteral("it is neither UTF-8 nor UTF-16 nor GBK text"));
}

// Null characters are a sign of UTF-16 without its mark, or of no text at all.
Result<StoredText> decode(const QByteArray& bytes)
{
    Result<StoredText> decoded = decodeAny(bytes);
    if (decoded && decoded->text.contains(QChar(u'\0')))
        return Result<StoredText>::failure(QStringLiteral("it holds null characters, which no text has"));
    return decoded;
}

std::optional<QByteArray> encode(const QString& text, Encoding encoding)
{
    if (encoding == Encoding::Utf16)
        return toUtf16(text);
    const auto set = characterSet(encoding);
    const Encoded encoded = set ? set->encode(text) : Encoded();
    if (!set || !encoded.clean())
        return std::nullopt;
    return encoding == Encoding::Utf8WithMark ? utf8Mark + encoded.bytes : encoded.bytes;
}

} // namespace

Result<ProfileFile> ProfileFile::parse(const QByteArray& bytes)
{
    const Result<StoredText> decoded = decode(bytes);
    if (!decoded)
        return Result<ProfileFile>::failure(decoded.error);
    ProfileFile file;
    file.m_encoding = decoded->encoding;
    const QString& text = decoded->text;
    for (qsizetype start = 0; start < text.size();) {
        qsizetype end = start;
        while (end < text.size() && text[end] != u'\n' && text[end] != u'\r')
            ++end;
        qsizetype next = std::min(end + 1, text.size());
        if (end + 1 < text.size() && text[end] == u'\r' && text[end + 1] == u'\n')
            ++next;
        file.m_lines.push_back({ text.mid(start, end - start), text.mid(end, next - end) });
        start = next;
    }
    return { std::move(file), {} };
}

Result<ProfileFile> ProfileFile::load(const QString& path)
{
    const QString found = findPath(path);
    if (!QFileInfo::exists(found))
        return { ProfileFile(), {} };
    const Result<QByteArray> content = readWholeFile(found);
    if (!content)
        return Result<ProfileFile>::failure(content.error);
    Result<ProfileFile> file = parse(*content);
    if (!file)
        file.error = QStringLiteral("cannot understand the settings file \"%1\": %2").arg(found, file.error);
    return file;
}

QStringList ProfileFile::sections() const
{
    QStringList names;
    for (const Line& line : m_lines)
        if (const Meaning meaning = meaningOf(line.text); meaning.kind == Meaning::Section)
            names += meaning.name.toString();
    return names;
}

QStringList ProfileFile::keys(const QString& section) const
{
    QStringList names;
    if (const auto span = findSection(section))
        for (size_t i = span->first; i < span->end; ++i)
            if (const Meaning meaning = meaningOf(m_lines[i].text); meaning.kind == Meaning::Key)
                names += meaning.name.toString();
    return names;
}

std::optional<QString> ProfileFile::value(const QString& section, const QString& key) const
{
    const auto span = findSection(section);
    const auto line = span ? findKey(*span, key) : std::nullopt;
    if (!line)
        return std::nullopt;
    return storedToValue(meaningOf(m_lines[*line].text).value).toString();
}

Status ProfileFile::setValue(const QString& section, const QString& key, const QString& value)
{
    const QString sectionName = trimmed(section).toString();
    const QString keyName = trimmed(key).toString();
    const auto header = QString(u'[' + sectionName + u']');
    const QString newLine = keyName + u'=' + valueToStored(value);
    if (sectionName.isEmpty() || holdsBreak(sectionName) || meaningOf(header).name != sectionName)
        return { QStringLiteral("\"%1\" cannot be the name of a section").arg(section) };
    const Meaning meaning = meaningOf(newLine);
    if (holdsBreak(keyName) || meaning.kind != Meaning::Key || meaning.name != keyName)
        return { QStringLiteral("\"%1\" cannot be the name of a setting").arg(key) };
    if (holdsBreak(value))
        return { QStringLiteral("the value of \"%1\" holds a line break or a null character").arg(key) };

    const auto span = findSection(section);
    if (!span) {
        insertLine(m_lines.size(), header);
        insertLine(m_lines.size(), newLine);
        return {};
    }
    const auto line = findKey(*span, key);
    if (!line) {
        insertLine(behindLastKey(*span), newLine);
        return {};
    }
    // The way the key and the "=" are written is kept, and so are the blanks in front of the value.
    QString& text = m_lines[*line].text;
    qsizetype kept = text.indexOf(u'=') + 1;
    if (!trimmed(QStringView(text).mid(kept)).isEmpty())
        while (isBlank(text[kept]))
            ++kept;
    text = text.left(kept) + valueToStored(value);
    return {};
}

void ProfileFile::removeKey(const QString& section, const QString& key)
{
    const auto span = findSection(section);
    if (!span)
        return;
    const auto from = m_lines.begin() + ptrdiff_t(span->first);
    const auto to = m_lines.begin() + ptrdiff_t(span->end);
    const auto isKey = [&](const Line& line) {
        const Meaning meaning = meaningOf(line.text);
        return meaning.kind == Meaning::Key && sameName(meaning.name, key);
    };
    m_lines.erase(std::remove_if(from, to, isKey), to);
}

void ProfileFile::removeSection(const QString& section)
{
    while (const auto span = findSection(section)) {
        size_t end = behindLastKey(*span);
        while (end < span->end && trimmed(m_lines[end].text).isEmpty())
            ++end;
        m_lines.erase(m_lines.begin() + ptrdiff_t(span->first), m_lines.begin() + ptrdiff_t(end));
    }
}

QByteArray ProfileFile::bytes() const
{
    const QString all = text();
    if (const auto encoded = encode(all, m_encoding))
        if (const auto again = decode(*encoded); again && again->text == all)
            return *encoded;
    return toUtf16(all);
}

std::optional<ProfileFile::Span> ProfileFile::findSection(const QString& section) const
{
    std::optional<Span> span;
    for (size_t i = 0; i < m_lines.size(); ++i) {
        const Meaning meaning = meaningOf(m_lines[i].text);
        if (meaning.kind != Meaning::Section)
            continue;
        if (span)
            return Span{ span->first, i };
        if (sameName(meaning.name, section))
            span = Span{ i, m_lines.size() };
    }
    return span;
}

std::optional<size_t> ProfileFile::findKey(Span span, const QString& key) const
{
    for (size_t i = span.first; i < span.end; ++i)
        if (const Meaning meaning = meaningOf(m_lines[i].text);
            meaning.kind == Meaning::Key && sameName(meaning.name, key))
            return i;
    return std::nullopt;
}

size_t ProfileFile::behindLastKey(Span span) const
{
    size_t end = span.first + 1;
    for (size_t i = span.first; i < span.end; ++i)
        if (meaningOf(m_lines[i].text).kind == Meaning::Key)
            end = i + 1;
    return end;
}

QString ProfileFile::text() const
{
    QString all;
    for (const Line& line : m_lines)
        all += line.text + line.ending;
    return all;
}

QString ProfileFile::lineEnding() const
{
    return m_lines.empty() || m_lines.front().ending.isEmpty() ? QStringLiteral("\r\n")
                                                               : m_lines.front().ending;
}

void ProfileFile::insertLine(size_t at, const QString& text)
{
    const QString ending = lineEnding();
    if (at > 0 && m_lines[at - 1].ending.isEmpty())
        m_lines[at - 1].ending = ending;
    m_lines.insert(m_lines.begin() + ptrdiff_t(at), Line{ text, ending });
}

int GetPrivateProfileStringW(
    const QString& section, const QString& key, const QString& fallback, QString& value, int size,
    const QString& fileName)
{
    const Result<ProfileFile> file = ProfileFile::load(fileName);
    if (!file)
        diagnoseOnce(file.error);
    std::optional<QString> found;
    if (section.isNull() || key.isNull()) {
        found.emplace();
        if (file)
            for (const QString& name : section.isNull() ? file->sections() : file->keys(section))
                *found += name + QChar(u'\0');
    } else if (file) {
        found = file->value(section, key);
    }
    if (!found) {
        found = fallback;
        while (!found->isEmpty() && isBlank(found->back()))
            found->chop(1);
    }
    value = found->left(std::max(0, size - 1));
    return int(value.size());
}

bool WritePrivateProfileStringW(
    const QString& section, const QString& key, const QString& value, const QString& fileName)
{
    const auto refuse = [&](const QString& reason) {
        diagnoseOnce(QStringLiteral("settings not saved: ") + reason);
        return false;
    };
    Result<ProfileFile> file = ProfileFile::load(fileName);
    if (!file)
        return refuse(file.error);
    const QByteArray before = file->bytes();
    if (key.isNull())
        file->removeSection(section);
    else if (value.isNull())
        file->removeKey(section, key);
    else if (const Status set = file->setValue(section, key, value); !set)
        return refuse(set.error);
    const QByteArray after = file->bytes();
    if (after == before)
        return true;
    const Status written = writeFileAtomically(findPath(fileName), after);
    return written.ok() || refuse(written.error);
}

} // namespace platform
