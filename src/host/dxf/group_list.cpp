// Writing groups.

#include "dxf/group_list.h"

#include <charconv>
#include <cmath>

namespace dxf {

namespace {

constexpr double kRelativeEqual
    = 1e-14; // angles pass through radians and back: a few units in the last place

bool equalReals(double a, double b)
{
    return a == b || std::abs(a - b) <= kRelativeEqual * std::max(std::abs(a), std::abs(b));
}

template <class T> void appendBytes(std::string& out, T value)
{
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    out.append(bytes, sizeof value);
}

void appendCode(std::string& out, int code, Form form, const char* lineEnd)
{
    if (form == Form::Text) {
        char digits[12];
        const auto end = std::to_chars(digits, digits + sizeof digits, code).ptr;
        out.append(size_t(std::max(0L, 3 - (end - digits))), ' ').append(digits, end).append(lineEnd);
    } else if (form == Form::BinaryR12 && code < 255) {
        out.push_back(char(code));
    } else {
        if (form == Form::BinaryR12)
            out.push_back(char(255));
        appendBytes(out, int16_t(code));
    }
}

void appendInteger(std::string& out, int code, int64_t value)
{
    switch (valueKind(code)) {
    case ValueKind::Int16:
        return appendBytes(out, int16_t(value));
    case ValueKind::Int32:
        return appendBytes(out, int32_t(value));
    case ValueKind::Int64:
        return appendBytes(out, value);
    case ValueKind::Bool:
        return out.push_back(char(value != 0));
    case ValueKind::Real:
        return appendBytes(out, double(value));
    default:
        out.append(std::to_string(value)).push_back('\0');
    }
}

constexpr size_t kChunk = 127; // bytes of one binary chunk

} // namespace

double GroupList::degrees(double radians)
{
    // Rounded to 15 digits, so that 45 degrees that became radians are 45 again and not 45.00000000000001.
    const double value = radians * (180.0 / kPi);
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.15g", value);
    return parseReal(digits);
}

void GroupList::typed(const KcDbTypedValue& v)
{
    std::visit(
        [&](const auto& value) {
            using T = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<T, KcGePoint3d>)
                point(v.code, value);
            else if constexpr (std::is_same_v<T, KcDbObjectId>)
                handle(v.code, value);
            else
                add({ v.code, value });
        },
        v.value);
}

bool OutGroup::sameValue(const OutGroup& other) const
{
    if (code != other.code)
        return false;
    if (const auto* a = std::get_if<double>(&value)) {
        const auto* b = std::get_if<double>(&other.value);
        return b && equalReals(*a, *b);
    }
    if (isName || other.isName) {
        const auto* a = std::get_if<QString>(&value);
        const auto* b = std::get_if<QString>(&other.value);
        return a && b && a->compare(*b, Qt::CaseInsensitive) == 0;
    }
    return value == other.value;
}

std::string formatReal(double value)
{
    char digits[40];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    std::string text(digits, end);
    if (text.find_first_of(".en") == std::string::npos)
        text += ".0";
    return text;
}

void appendGroup(
    std::string& out, const OutGroup& group, Form form, const Strings& strings, const char* lineEnd)
{
    if (const auto* bytes = std::get_if<QByteArray>(&group.value)) {
        // Long data is cut into chunks, each a group of its own.
        for (qsizetype at = 0; at == 0 || at < bytes->size(); at += qsizetype(kChunk)) {
            const QByteArray chunk = bytes->mid(at, qsizetype(kChunk));
            appendCode(out, group.code, form, lineEnd);
            if (form == Form::Text) {
                out.append(chunk.toHex().toUpper().toStdString()).append(lineEnd);
            } else {
                out.push_back(char(chunk.size()));
                out.append(chunk.constData(), size_t(chunk.size()));
            }
        }
        return;
    }
    appendCode(out, group.code, form, lineEnd);
    if (const auto* text = std::get_if<QString>(&group.value)) {
        out.append(strings.encode(*text));
        if (form == Form::Text)
            out.append(lineEnd);
        else
            out.push_back('\0');
    } else if (const auto* handle = std::get_if<HandleValue>(&group.value)) {
        char digits[20];
        const auto end = std::to_chars(digits, digits + sizeof digits, handle->handle, 16).ptr;
        for (char* p = digits; p != end; ++p)
            *p = char(std::toupper(*p));
        out.append(digits, end);
        if (form == Form::Text)
            out.append(lineEnd);
        else
            out.push_back('\0');
    } else if (const auto* integer = std::get_if<int64_t>(&group.value)) {
        if (form == Form::Text)
            out.append(std::to_string(*integer)).append(lineEnd);
        else
            appendInteger(out, group.code, *integer);
    } else if (const auto* real = std::get_if<double>(&group.value)) {
        if (form == Form::Text)
            out.append(formatReal(*real)).append(lineEnd);
        else if (valueKind(group.code) == ValueKind::Real)
            appendBytes(out, *real);
        else
            appendInteger(out, group.code, int64_t(*real));
    }
}

OutGroup toOutGroup(const Group& group, Strings& strings)
{
    switch (valueKind(group.code)) {
    case ValueKind::Real:
        return { group.code, group.real() };
    case ValueKind::Int16:
    case ValueKind::Int32:
    case ValueKind::Int64:
    case ValueKind::Bool:
        return { group.code, group.integer() };
    case ValueKind::Handle: {
        bool ok = false;
        const uint64_t handle = group.handle(&ok);
        if (ok)
            return { group.code, HandleValue{ handle } };
        break;
    }
    case ValueKind::Bytes: {
        const std::string bytes = group.bytes();
        return { group.code, QByteArray(bytes.data(), qsizetype(bytes.size())) };
    }
    case ValueKind::Text:
        break;
    }
    return { group.code, strings.decode(group.text()) };
}

} // namespace dxf
