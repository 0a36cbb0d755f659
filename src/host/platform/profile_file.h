// Profile files: named sections in square brackets that hold key=value lines, as older desktop systems keep
// their settings. A file is changed line by line, so that what nobody asked to change stays as a person wrote
// it.
#pragma once

#include "platform/result.h"

#include <QByteArray>
#include <QStringList>

#include <vector>

namespace platform {

/// The text of a profile file, by lines. Section and key names match without regard to letter case and
/// without the blanks round them; of several equal sections or keys the first counts; a line that starts with
/// ";" is a comment.
class ProfileFile {
public:
    /// How the file is stored. Bytes without a byte order mark are UTF-8 when they can be, else the Chinese
    /// ANSI code page (Gbk), else its extension Gb18030.
    enum class Encoding { Utf8, Utf8WithMark, Utf16, Gbk, Gb18030 };

    /// An empty file, stored as UTF-8 with the line endings of the product's home system.
    ProfileFile() = default;

    /// Reads the bytes of a file. Fails when they are text in none of the encodings.
    static Result<ProfileFile> parse(const QByteArray& bytes);

    /// Reads a file, found without regard to letter case. A missing one reads as empty; one that cannot be
    /// read or understood fails.
    static Result<ProfileFile> load(const QString& path);

    Encoding encoding() const { return m_encoding; }

    /// Names of the sections as written, in order, each once for every time it stands in the file.
    QStringList sections() const;

    /// Names of the keys of a section as written, in order; empty when there is no such section.
    QStringList keys(const QString& section) const;

    /// The value without the blanks round it and without one pair of quotes, single or double; empty when
    /// nothing stands behind the "="; nothing when there is no such key.
    std::optional<QString> value(const QString& section, const QString& key) const;

    /// Sets a value, in the line where the key stands or in a new one behind the last key of the section; a
    /// section that is not there goes to the end of the file. A value that would lose blanks or quotes when
    /// read is put in quotes. Fails, changing nothing, for an empty name, a name that would read as something
    /// else, and a value with line breaks or null characters.
    Status setValue(const QString& section, const QString& key, const QString& value);

    /// Removes every line of the key from the section. It is no failure when there is none.
    void removeKey(const QString& section, const QString& key);

    /// Removes every section of the name with its keys. Comments behind its last key stay: they usually
    /// belong to what follows.
    void removeSection(const QString& section);

    /// The bytes of the file in its encoding; in UTF-16 when that encoding lacks a character or would be
    /// taken for another one when read.
    QByteArray bytes() const;

private:
    struct Line {
        QString text;
        QString ending;
    };

    // Lines first .. end of one section; the header is line `first`.
    struct Span {
        size_t first;
        size_t end;
    };

    std::optional<Span> findSection(const QString& section) const;
    std::optional<size_t> findKey(Span span, const QString& key) const;
    size_t behindLastKey(Span span) const;
    QString text() const;
    QString lineEnding() const;
    void insertLine(size_t at, const QString& text);

    std::vector<Line> m_lines;
    Encoding m_encoding = Encoding::Utf8;
};

/// Reads one value into `value` and returns its length. At most size - 1 characters are kept. When there is
/// no such value, the fallback without the blanks at its end takes its place. A null key asks for the names
/// of the keys, a null section for those of the sections, each followed by a null character. A file that is
/// there but cannot be read is named, with the reason, through the diagnostics.
int GetPrivateProfileStringW(
    const QString& section, const QString& key, const QString& fallback, QString& value, int size,
    const QString& fileName);

/// Writes one value; a null value removes the key, a null key the section. A missing file is made, a missing
/// folder is not. Returns false when nothing was written; the reason goes to the diagnostics. A file in an
/// unknown encoding is left alone.
bool WritePrivateProfileStringW(
    const QString& section, const QString& key, const QString& value, const QString& fileName);

} // namespace platform
