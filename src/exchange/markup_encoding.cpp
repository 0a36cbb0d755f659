// How a markup document goes from the bytes of a file to its text and back.
#include "exchange/markup_document.h"

#include "exchange/markup_result.h"
#include "platform/character_sets.h"
#include "platform/files.h"

using markup::resultItem;
using platform::CharacterSet;

namespace {

// The code page of a file that neither states its encoding nor is UTF-8.
constexpr QStringView ansiEncoding = u"GBK";

// How much of a file is searched for the statement of its encoding.
constexpr qsizetype headSize = 65536;

struct Utf16 {
    bool bigEndian = false;
    bool mark = false;
};

// Whether bytes are UTF-16: by their byte order mark, or by a "<" and a further ASCII character at the start.
std::optional<Utf16> utf16Of(std::string_view bytes)
{
    if (bytes.starts_with("\xff\xfe"))
        return Utf16{ false, true };
    if (bytes.starts_with("\xfe\xff"))
        return Utf16{ true, true };
    if (bytes.size() < 4)
        return std::nullopt;
    if (bytes[0] == '<' && !bytes[1] && bytes[2] && !bytes[3])
        return Utf16{ false, false };
    if (!bytes[0] && bytes[1] == '<' && !bytes[2] && bytes[3])
        return Utf16{ true, false };
    return std::nullopt;
}

QString utf16Text(std::string_view bytes, bool bigEndian)
{
    QString text(qsizetype(bytes.size() / 2), Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const auto low = uint8_t(bytes[size_t(2 * i) + (bigEndian ? 1 : 0)]);
        const auto high = uint8_t(bytes[size_t(2 * i) + (bigEndian ? 0 : 1)]);
        text[i] = QChar(low, high);
    }
    return text;
}

QByteArray utf16Bytes(QStringView text, bool bigEndian)
{
    QByteArray bytes(text.size() * 2, Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i) {
        bytes[2 * i + (bigEndian ? 1 : 0)] = char(text[i].cell());
        bytes[2 * i + (bigEndian ? 0 : 1)] = char(text[i].row());
    }
    return bytes;
}

bool isUtf16(const QString& encoding)
{
    return encoding == u"UTF-16LE" || encoding == u"UTF-16BE";
}

} // namespace

bool MarkupDocument::Load(const QString& path)
{
    const platform::Result<QByteArray> bytes = platform::readWholeFile(path);
    if (!bytes) {
        clear();
        m_result = resultItem("read") + resultItem("file_error", { { "msg", bytes.error } });
        m_error = bytes.error;
        return false;
    }
    SetBytes({ bytes->constData(), size_t(bytes->size()) });
    return true;
}

void MarkupDocument::SetBytes(std::string_view bytes)
{
    clear();
    const qsizetype length = qsizetype(bytes.size());
    QString notes;
    QString text;
    if (const auto utf16 = utf16Of(bytes)) {
        m_encoding = utf16->bigEndian ? u"UTF-16BE"_qs : u"UTF-16LE"_qs;
        m_byteOrderMark = utf16->mark;
        text = utf16Text(bytes, utf16->bigEndian);
        if (utf16->mark)
            text.remove(0, 1);
        if (utf16->bigEndian)
            notes += resultItem("endian_swap");
        if (bytes.size() % 2 != 0)
            notes += resultItem("truncation_error", { { "offset", QString::number(length - 1) } });
    } else {
        m_byteOrderMark = bytes.starts_with("\xef\xbb\xbf");
        if (m_byteOrderMark)
            bytes.remove_prefix(3);

        std::optional<CharacterSet> stated;
        QString statedName;
        if (!m_byteOrderMark) {
            // The statement is ASCII in every encoding that is possible here.
            MarkupDocument head;
            head.SetDoc(QString::fromLatin1(bytes.data(), std::min(qsizetype(bytes.size()), headSize)));
            statedName = head.declaredEncoding();
            if (statedName.isEmpty())
                statedName = head.htmlCharset();
            stated = CharacterSet::named(statedName);
            // These bytes could be read as ASCII, so that they cannot be what the statement says.
            if (stated && stated->name().startsWith(u"UTF-16"))
                stated.reset();
            if (!statedName.isEmpty() && !stated)
                notes += resultItem(
                    "converted_from", { { "encoding", statedName }, { "msg", u"encoding not usable"_qs } });
        }

        const CharacterSet utf8 = CharacterSet::utf8();
        const CharacterSet* used = m_byteOrderMark ? &utf8 : stated ? &*stated : nullptr;
        platform::Decoded decoded = (used ? *used : utf8).decode(bytes);
        if (!used && decoded.clean()) {
            notes += resultItem("utf8_detection");
            used = &utf8;
        }
        // Files that say UTF-8, or nothing, and are not UTF-8 come from editors that write the system's code
        // page.
        std::optional<CharacterSet> ansi;
        if (!used || (used->isUtf8() && !m_byteOrderMark && !decoded.clean())) {
            ansi = CharacterSet::named(ansiEncoding);
            platform::Decoded other = ansi->decode(bytes);
            if (!used || other.clean()) {
                if (used)
                    notes += resultItem(
                        "utf8_detection",
                        { { "encoding", u"ANSI"_qs }, { "msg", u"not UTF-8 as stated"_qs } });
                used = &*ansi;
                decoded = std::move(other);
            }
        }
        m_encoding = used->name();
        if (!used->isUtf8())
            notes += resultItem(
                "converted_from",
                { { "type", ansi && used == &*ansi ? u"ANSI"_qs : QString() }, { "encoding", m_encoding } });
        if (!decoded.clean())
            notes += resultItem(
                "conversion_loss",
                { { "encoding", m_encoding },
                  { "count", QString::number(decoded.badBytes) },
                  { "offset", QString::number(decoded.badPositions.front() + (m_byteOrderMark ? 3 : 0)) } });
        text = std::move(decoded.text);
    }
    if (m_byteOrderMark)
        notes = resultItem("bom") + notes;
    if (const qsizetype nulls = text.count(QChar()); nulls > 0) {
        text.remove(QChar());
        notes += resultItem("nulls_removed", { { "count", QString::number(nulls) } });
    }
    m_text = std::move(text);
    m_result
        = resultItem("read", { { "encoding", m_encoding }, { "length", QString::number(length) } }) + notes;
    parse();
}

QByteArray MarkupDocument::GetBytes()
{
    m_error.clear();
    QString encoding = m_encoding;
    if (encoding.isEmpty())
        encoding = declaredEncoding();
    if (encoding.isEmpty())
        encoding = u"UTF-8"_qs;
    QString notes;
    QByteArray bytes;
    if (isUtf16(encoding)) {
        const bool bigEndian = encoding == u"UTF-16BE";
        bytes = utf16Bytes(m_byteOrderMark ? QChar(QChar::ByteOrderMark) + m_text : m_text, bigEndian);
        if (bigEndian)
            notes += resultItem("endian_swap");
    } else {
        std::optional<CharacterSet> charset = CharacterSet::named(encoding);
        if (!charset) {
            notes += resultItem(
                "converted_to", { { "encoding", encoding }, { "msg", u"encoding not usable"_qs } });
            charset = CharacterSet::utf8();
        }
        encoding = charset->name();
        platform::Encoded encoded
            = charset->encode(m_text, [](char32_t c) { return u"&#"_qs + QString::number(uint(c)) + u';'; });
        if (!charset->isUtf8())
            notes += resultItem("converted_to", { { "encoding", encoding } });
        if (!encoded.clean())
            notes += resultItem(
                "conversion_loss",
                { { "encoding", encoding },
                  { "count", QString::number(encoded.unmappable.size()) },
                  { "offset", QString::number(encoded.unmappable.front()) },
                  { "msg", u"written as character references"_qs } });
        bytes = std::move(encoded.bytes);
        if (m_byteOrderMark && charset->isUtf8())
            bytes.prepend("\xef\xbb\xbf");
    }
    if (m_byteOrderMark)
        notes = resultItem("bom") + notes;
    m_result = resultItem("write", { { "encoding", encoding }, { "length", QString::number(bytes.size()) } })
        + notes;
    return bytes;
}

bool MarkupDocument::Save(const QString& path)
{
    const QByteArray bytes = GetBytes();
    const platform::Status status = platform::writeFileAtomically(platform::findPath(path), bytes);
    if (!status) {
        m_result += resultItem("file_error", { { "msg", status.error } });
        m_error = status.error;
    }
    return status.ok();
}
