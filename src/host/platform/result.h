// How operations of the platform layer report failure: in words that can be shown to the user as they are.
#pragma once

#include <QString>

#include <optional>

namespace platform {

/// Outcome of an operation without a result: an empty text means that it succeeded.
struct Status {
    QString error;

    bool ok() const { return error.isEmpty(); }
    explicit operator bool() const { return ok(); }
};

/// A value, or the reason why there is none.
template <class T> struct Result {
    std::optional<T> value;
    QString error;

    static Result failure(const QString& reason) { return { std::nullopt, reason }; }

    bool ok() const { return value.has_value(); }
    explicit operator bool() const { return ok(); }
    T& operator*() { return *value; }
    const T& operator*() const { return *value; }
    T* operator->() { return &*value; }
    const T* operator->() const { return &*value; }
};

} // namespace platform
