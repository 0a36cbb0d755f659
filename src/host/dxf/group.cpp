// Reading groups and their values.

#include "dxf/group.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>

namespace dxf {

namespace {

constexpr int kCodes = 1072;

constexpr std::array<ValueKind, kCodes> makeKinds()
{
    std::array<ValueKind, kCodes> kinds{};
    const auto range = [&](int from, int to, ValueKind kind) {
        for (int code = from; code <= to; ++code)
            kinds[size_t(code)] = kind;
    };
    range(0, kCodes - 1, ValueKind::Text);
    range(5, 5, ValueKind::Handle);
    range(10, 59, ValueKind::Real);
    range(60, 79, ValueKind::Int16);
    range(90, 99, ValueKind::Int32);
    range(105, 105, ValueKind::Handle);
    range(110, 149, ValueKind::Real);
    range(160, 169, ValueKind::Int64);
    range(170, 179, ValueKind::Int16);
    range(210, 239, ValueKind::Real);
    range(270, 289, ValueKind::Int16);
    range(290, 299, ValueKind::Bool);
    range(310, 319, ValueKind::Bytes);
    range(320, 369, ValueKind::Handle);
    range(370, 389, ValueKind::Int16);
    range(390, 399, ValueKind::Handle);
    range(400, 409, ValueKind::Int16);
    range(420, 429, ValueKind::Int32);
    range(440, 459, ValueKind::Int32);
    range(460, 469, ValueKind::Real);
    range(480, 481, ValueKind::Handle);
    range(1004, 1004, ValueKind::Bytes);
    range(1005, 1005, ValueKind::Handle);
    range(1010, 1059, ValueKind::Real);
    range(1060, 1070, ValueKind::Int16);
    range(1071, 1071, ValueKind::Int32);
    return kinds;
}

constexpr std::array<ValueKind, kCodes> kKinds = makeKinds();

template <class T> T fromBytes(std::string_view bytes)
{
    // Binary files are little-endian, like every machine this runs on.
    static_assert(std::endian::native == std::endian::little);
    T value{};
    if (bytes.size() >= sizeof value)
        std::memcpy(&value, bytes.data(), sizeof value);
    return value;
}

constexpr std::string_view kBlanks = " \t\r\n";

constexpr double kPowersOfTen[] = { 1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                    1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22 };

double parseAnyReal(const char* p, const char* end, bool* ok)
{
    if (p != end && *p == '+')
        ++p;
    double value = 0.0;
    const auto [rest, error] = std::from_chars(p, end, value);
    if (error == std::errc::result_out_of_range) {
        // Too large or too small for a double: the nearest that a drawing can use.
        const bool negative = p != end && *p == '-';
        const bool tiny = std::string_view(p, size_t(end - p)).find_first_of("eE") != std::string_view::npos
            && std::string_view(p, size_t(end - p)).find("-", 1) != std::string_view::npos;
        value = tiny ? 0.0 : 1e308;
        if (negative)
            value = -value;
    }
    if (ok)
        *ok = error != std::errc::invalid_argument && std::isfinite(value)
            && std::string_view(rest, size_t(end - rest)).find_first_not_of(kBlanks)
                == std::string_view::npos;
    return std::isfinite(value) ? value : 0.0;
}

} // namespace

ValueKind valueKind(int code)
{
    return code >= 0 && code < kCodes ? kKinds[size_t(code)] : ValueKind::Text;
}

double parseReal(std::string_view text, bool* ok)
{
    const char* p = text.data();
    const char* const end = p + text.size();
    while (p != end && (*p == ' ' || *p == '\t'))
        ++p;
    // Plain decimals of up to 15 digits: mantissa and power of ten are exact doubles, so one division rounds
    // correctly (W. D. Clinger, "How to read floating point numbers accurately", 1990). Everything else goes
    // the general way.
    const char* s = p;
    const bool negative = s != end && *s == '-';
    if (negative)
        ++s;
    uint64_t mantissa = 0;
    int digits = 0, decimals = 0;
    while (s != end && unsigned(*s - '0') < 10u) {
        mantissa = mantissa * 10 + unsigned(*s++ - '0');
        ++digits;
    }
    if (s != end && *s == '.') {
        ++s;
        while (s != end && unsigned(*s - '0') < 10u) {
            mantissa = mantissa * 10 + unsigned(*s++ - '0');
            ++digits;
            ++decimals;
        }
    }
    if (s != end || digits == 0 || digits > 15)
        return parseAnyReal(p, end, ok);
    if (ok)
        *ok = true;
    const double value = double(mantissa) / kPowersOfTen[decimals];
    return negative ? -value : value;
}

bool isBinary(std::string_view bytes)
{
    constexpr std::string_view tail("Binary DXF\r\n\x1a\0", 14);
    return bytes.size() >= kBinarySignatureSize && bytes.substr(8, tail.size()) == tail;
}

std::string_view Group::trimmed() const
{
    const size_t first = value.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return value.substr(first, value.find_last_not_of(kBlanks) - first + 1);
}

double Group::real(bool* ok) const
{
    if (form == Form::Text)
        return parseReal(value, ok);
    double result = 0.0;
    switch (valueKind(code)) {
    case ValueKind::Real:
        result = fromBytes<double>(value);
        break;
    case ValueKind::Text:
    case ValueKind::Handle:
    case ValueKind::Bytes:
        return parseReal(value, ok);
    default:
        result = double(integer(ok));
        return result;
    }
    if (ok)
        *ok = std::isfinite(result);
    return std::isfinite(result) ? result : 0.0;
}

int64_t Group::integer(bool* ok) const
{
    if (form != Form::Text) {
        if (ok)
            *ok = true;
        switch (valueKind(code)) {
        case ValueKind::Int16:
            return fromBytes<int16_t>(value);
        case ValueKind::Int32:
            return fromBytes<int32_t>(value);
        case ValueKind::Int64:
            return fromBytes<int64_t>(value);
        case ValueKind::Bool:
            return value.empty() ? 0 : static_cast<unsigned char>(value[0]);
        case ValueKind::Real:
            return int64_t(std::clamp(real(ok), -9e18, 9e18));
        default:
            break;
        }
    }
    const char* p = value.data();
    const char* const end = p + value.size();
    while (p != end && (*p == ' ' || *p == '\t'))
        ++p;
    const bool negative = p != end && *p == '-';
    if (p != end && (*p == '-' || *p == '+'))
        ++p;
    uint64_t result = 0;
    const char* digits = p;
    while (p != end && unsigned(*p - '0') < 10u && p - digits < 18)
        result = result * 10 + unsigned(*p++ - '0');
    if (ok)
        *ok = p != digits
            && std::string_view(p, size_t(end - p)).find_first_not_of(kBlanks) == std::string_view::npos;
    if (p != end && *p == '.') // a real where an integer belongs: some programs write so
        return int64_t(std::clamp(parseReal(value, ok), -9e18, 9e18));
    return negative ? -int64_t(result) : int64_t(result);
}

uint64_t Group::handle(bool* ok) const
{
    const char* p = value.data();
    const char* const end = p + value.size();
    while (p != end && (*p == ' ' || *p == '\t'))
        ++p;
    uint64_t result = 0;
    int digits = 0;
    for (; p != end; ++p, ++digits) {
        const unsigned char c = static_cast<unsigned char>(*p);
        unsigned digit = c - '0';
        if (digit >= 10) {
            digit = (c | 0x20u) - 'a';
            if (digit >= 6)
                break;
            digit += 10;
        }
        result = result << 4 | digit;
    }
    if (ok)
        *ok = digits > 0 && digits <= 16
            && std::string_view(p, size_t(end - p)).find_first_not_of(kBlanks) == std::string_view::npos;
    return digits <= 16 ? result : 0;
}

std::string Group::bytes() const
{
    if (form != Form::Text)
        return std::string(value);
    std::string result;
    const std::string_view digits = trimmed();
    result.reserve(digits.size() / 2);
    const auto digit = [](char c) {
        return c >= '0' && c <= '9' ? c - '0'
            : c >= 'A' && c <= 'F'  ? c - 'A' + 10
            : c >= 'a' && c <= 'f'  ? c - 'a' + 10
                                    : 0;
    };
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        result.push_back(char(digit(digits[i]) << 4 | digit(digits[i + 1])));
    return result;
}

int GroupCursor::peekCode()
{
    Group group;
    const char* const here = m_next;
    const bool there = next(group);
    m_next = here;
    return there ? group.code : -1;
}

std::string GroupCursor::where(const char* place) const
{
    if (m_form != Form::Text)
        return "byte " + std::to_string(place - m_begin);
    size_t line = 1;
    for (const char* p = m_begin; p != place; ++p) {
        p = static_cast<const char*>(std::memchr(p, '\n', size_t(place - p)));
        if (!p)
            break;
        ++line;
        if (p + 1 == place)
            break;
    }
    return "line " + std::to_string(line);
}

bool GroupCursor::badCode(const char* begin, const char* end)
{
    // Blank lines after the last group are no harm.
    if (std::string_view(m_next, size_t(m_end - m_next)).find_first_not_of(" \t\r\n\x1a")
        == std::string_view::npos) {
        m_next = m_end;
        return false;
    }
    if (end == m_end)
        missingValue(begin);
    const char* lineEnd = static_cast<const char*>(std::memchr(begin, '\n', size_t(m_end - begin)));
    std::string found(begin, size_t((lineEnd ? lineEnd : m_end) - begin));
    while (!found.empty() && found.back() == '\r')
        found.pop_back();
    if (found.size() > 40)
        found = found.substr(0, 40) + "...";
    throw FileError(where(begin) + ": a group code was expected, found \"" + found + "\"");
}

bool GroupCursor::missingValue(const char* begin) const
{
    throw FileError(where(begin) + ": the file ends in the middle of a group");
}

bool GroupCursor::nextBinary(Group& group)
{
    const char* p = m_next;
    if (p == m_end)
        return false;
    const auto need = [&](size_t bytes) {
        if (size_t(m_end - p) < bytes)
            missingValue(m_next);
    };
    group.begin = m_next;
    group.form = m_form;
    if (m_form == Form::BinaryR12) {
        group.code = static_cast<unsigned char>(*p++);
        if (group.code == 255) { // extended data: the code follows in two bytes
            need(2);
            group.code = fromBytes<uint16_t>({ p, 2 });
            p += 2;
        }
    } else {
        need(2);
        group.code = fromBytes<int16_t>({ p, 2 });
        p += 2;
    }
    if (group.code < 0 || group.code >= kCodes)
        throw FileError(where(m_next) + ": " + std::to_string(group.code) + " is no group code");
    size_t length = 0;
    switch (valueKind(group.code)) {
    case ValueKind::Real:
    case ValueKind::Int64:
        length = 8;
        break;
    case ValueKind::Int16:
        length = 2;
        break;
    case ValueKind::Int32:
        length = 4;
        break;
    case ValueKind::Bool:
        length = 1;
        break;
    case ValueKind::Bytes:
        need(1);
        length = static_cast<unsigned char>(*p++);
        break;
    case ValueKind::Text:
    case ValueKind::Handle: {
        const char* zero = static_cast<const char*>(std::memchr(p, '\0', size_t(m_end - p)));
        if (!zero)
            missingValue(m_next);
        group.value = std::string_view(p, size_t(zero - p));
        group.end = m_next = zero + 1;
        return true;
    }
    }
    need(length);
    group.value = std::string_view(p, length);
    group.end = m_next = p + length;
    return true;
}

} // namespace dxf
