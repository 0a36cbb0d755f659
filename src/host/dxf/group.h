// Groups, the atoms of a drawing file: a code that tells the meaning, and a value. The cursor walks the
// groups of a file held in memory, in text or binary form, without copying or allocating.
#pragma once

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

namespace dxf {

/// What kind of value a group code announces, by the ranges of the published format.
enum class ValueKind : uint8_t { Text, Real, Int16, Int32, Int64, Bool, Handle, Bytes };

ValueKind valueKind(int code);

/// The three forms of a drawing file.
enum class Form : uint8_t { Text, Binary, BinaryR12 };

/// A file that cannot be read: what is wrong, and where.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// One group as it stands in the file. The views point into the file's bytes.
struct Group {
    int code = -1;
    Form form = Form::Text;
    std::string_view value; ///< text form: the line without its end; binary form: the bytes of the value
    const char* begin = nullptr; ///< the group's first byte, its code included
    const char* end = nullptr; ///< one past its last byte, the line end included

    /// Numbers: 0 for what is none; `ok`, when given, tells. Conversions never depend on a locale.
    double real(bool* ok = nullptr) const;
    int64_t integer(bool* ok = nullptr) const;
    uint64_t handle(bool* ok = nullptr) const;
    /// The value of a text group; in text form with its blanks.
    std::string_view text() const { return value; }
    /// Bytes of a binary chunk, from hexadecimal digits in text form.
    std::string bytes() const;
    bool is(int c, std::string_view v) const { return code == c && trimmed() == v; }
    /// The value without blanks at its ends.
    std::string_view trimmed() const;
};

class GroupCursor {
public:
    GroupCursor(const char* begin, const char* end, Form form)
        : m_begin(begin)
        , m_next(begin)
        , m_end(end)
        , m_form(form)
    {
    }

    /// Reads the next group. False at the end of the file. Throws FileError for what is no group.
    bool next(Group& group) { return m_form == Form::Text ? nextText(group) : nextBinary(group); }
    /// The code of the next group without reading it; -1 at the end.
    int peekCode();
    /// Reads the group last read again.
    void back(const Group& group) { m_next = group.begin; }
    const char* position() const { return m_next; }
    void seek(const char* position) { m_next = position; }
    const char* begin() const { return m_begin; }
    const char* end() const { return m_end; }
    Form form() const { return m_form; }
    /// The line (text form) or byte offset (binary form) of a place, in words.
    std::string where(const char* place) const;

private:
    bool nextText(Group& group)
    {
        const char* p = m_next;
        while (p != m_end && (*p == ' ' || *p == '\t'))
            ++p;
        if (p == m_end)
            return false;
        const char* digits = p;
        const bool negative = *p == '-';
        if (negative)
            ++p;
        unsigned code = 0;
        while (p != m_end && unsigned(*p - '0') < 10u && code < 100000u)
            code = code * 10u + unsigned(*p++ - '0');
        const char* digitsEnd = p;
        while (p != m_end && (*p == ' ' || *p == '\t' || *p == '\r'))
            ++p;
        if (p == m_end || *p != '\n' || digitsEnd == digits + negative)
            return badCode(digits, p);
        ++p;
        const char* line = p;
        const char* lineEnd = static_cast<const char*>(std::memchr(p, '\n', size_t(m_end - p)));
        group.begin = m_next;
        if (!lineEnd) {
            if (p == m_end)
                return missingValue(group.begin);
            lineEnd = m_end;
            m_next = m_end;
        } else {
            m_next = lineEnd + 1;
        }
        group.end = m_next;
        if (lineEnd != line && lineEnd[-1] == '\r')
            --lineEnd;
        group.code = negative ? -int(code) : int(code);
        group.form = Form::Text;
        group.value = std::string_view(line, size_t(lineEnd - line));
        return true;
    }
    bool nextBinary(Group& group);
    bool badCode(const char* begin, const char* end);
    [[noreturn]] bool missingValue(const char* begin) const;

    const char* m_begin;
    const char* m_next;
    const char* m_end;
    Form m_form;
};

/// Reads a real number in the notation of drawing files. Exact (correctly rounded) for every input.
double parseReal(std::string_view text, bool* ok = nullptr);

/// True when the bytes begin with the signature of binary drawing files: 22 bytes, of which the last 14 are
/// tested.
bool isBinary(std::string_view bytes);
inline constexpr size_t kBinarySignatureSize = 22;

} // namespace dxf
