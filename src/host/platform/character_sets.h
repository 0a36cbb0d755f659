// Character sets by name: from the bytes of a file to text and back. Whatever a set cannot read or hold is
// counted and located for the caller to report; nothing is replaced in silence.
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

struct UConverter;

namespace platform {

/// Text read from bytes. Each bad sequence stands in the text as one U+FFFD.
struct Decoded {
    QString text;
    qsizetype badBytes = 0; ///< number of bytes that mean nothing in the character set
    std::vector<qsizetype> badPositions; ///< byte offset of each bad sequence, ascending

    bool clean() const { return badPositions.empty(); }
};

/// Bytes made from text. Each character that the set lacks was written as its replacement.
struct Encoded {
    QByteArray bytes;
    std::vector<qsizetype> unmappable; ///< UTF-16 offset of each such character in the text, ascending

    bool clean() const { return unmappable.empty(); }
};

/// A converter for one character set. Make it once and use it for many texts; it is not to be shared by
/// threads.
class CharacterSet {
public:
    /// What to write for a character that the set lacks; where the result cannot be written either, "?" is.
    using Replacement = std::function<QString(char32_t)>;

    /// The set of that name, letter case and separators ignored: published IANA names and aliases
    /// ("windows-1252", "csgb2312", "iso_8859-9:1989"), the code pages of drawing files ("ANSI_936",
    /// "dos850", "iso8859-1") and bare code page numbers ("936"). Names of GB 2312 give GBK, since files
    /// labelled so hold GBK; names of KS C 5601 give code page 949 likewise. Nothing for a name that is not
    /// known.
    static std::optional<CharacterSet> named(QStringView name);

    /// UTF-8, without a byte order mark.
    static CharacterSet utf8();

    CharacterSet(CharacterSet&&) noexcept;
    CharacterSet& operator=(CharacterSet&&) noexcept;
    ~CharacterSet();

    /// The published name: "UTF-8", "GBK", "windows-1252".
    QString name() const { return m_name; }
    bool isUtf8() const { return m_utf8; }

    /// A byte order mark at the start is kept as U+FEFF by UTF-8 and by the UTF-16 sets of one byte order.
    Decoded decode(std::string_view bytes) const;
    Encoded encode(QStringView text, const Replacement& replacement = {}) const;

private:
    struct Close {
        void operator()(UConverter* converter) const;
    };

    CharacterSet(UConverter* converter, const QString& name);
    bool readsAsciiAsIs() const;
    Decoded decodeAny(std::string_view bytes) const;
    Encoded encodeAny(QStringView text, const Replacement& replacement) const;

    std::unique_ptr<UConverter, Close> m_converter;
    QString m_name;
    bool m_utf8 = false;
    bool m_asciiAsIs = false;
};

} // namespace platform
