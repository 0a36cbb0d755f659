// Texts of a drawing file: its character set, and the escapes that the format defines for what the set cannot
// hold.
#pragma once

#include "platform/character_sets.h"

#include <QString>

#include <string>
#include <string_view>

namespace dxf {

class Strings {
public:
    /// `codePage` as the file's header names it; `utf8` overrides it.
    Strings(const QString& codePage, bool utf8);

    /// The text of a value: bytes decoded, "\U+XXXX", "\M+nXXXX" and "^X" resolved. Undecodable bytes stand
    /// as U+FFFD and are counted.
    QString decode(std::string_view bytes);
    /// The bytes of a value; what the set lacks is escaped as "\U+XXXX", control characters as "^X".
    std::string encode(const QString& text) const;

    bool isUtf8() const { return m_set.isUtf8(); }
    const QString& codePage() const { return m_codePage; }
    size_t undecodable() const { return m_undecodable; }

private:
    QString resolveEscapes(const QString& text);

    QString m_codePage;
    platform::CharacterSet m_set;
    size_t m_undecodable = 0;
};

/// True when bytes of a file that names a code page are really UTF-8: they are valid, and mean nothing or
/// something implausible in the code page.
bool looksLikeUtf8(std::string_view bytes, const QString& codePage);
/// True when the bytes are valid UTF-8; ASCII is.
bool isValidUtf8(std::string_view bytes);

} // namespace dxf
