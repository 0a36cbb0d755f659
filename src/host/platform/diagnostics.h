// Where the layers below the window say what went wrong when their callers have no way to pass it on.
#pragma once

#include <QString>

#include <functional>

namespace platform {

using DiagnosticHandler = std::function<void(const QString& text)>;

/// Installs who receives diagnostics and returns who did before. An empty handler restores the default, which
/// writes one line to standard error.
DiagnosticHandler setDiagnosticHandler(DiagnosticHandler handler);

/// Passes one line of text, without a line feed at its end, to the handler.
void diagnose(const QString& text);

/// As diagnose(), but says the same text only once in the life of the process.
void diagnoseOnce(const QString& text);

} // namespace platform
