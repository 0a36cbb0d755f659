// Diagnostics go to standard error, in UTF-8 whatever the locale, unless somebody asked for them.

#include "platform/diagnostics.h"

#include <QSet>

#include <cstdio>

namespace platform {

namespace {

DiagnosticHandler& currentHandler()
{
    static DiagnosticHandler handler;
    return handler;
}

} // namespace

DiagnosticHandler setDiagnosticHandler(DiagnosticHandler handler)
{
    return std::exchange(currentHandler(), std::move(handler));
}

void diagnose(const QString& text)
{
    // A copy, so that a handler may replace itself.
    if (const DiagnosticHandler handler = currentHandler())
        return handler(text);
    const QByteArray line = text.toUtf8() + '\n';
    std::fwrite(line.constData(), 1, size_t(line.size()), stderr);
}

void diagnoseOnce(const QString& text)
{
    static QSet<QString> said;
    if (said.contains(text))
        return;
    said.insert(text);
    diagnose(text);
}

} // namespace platform
