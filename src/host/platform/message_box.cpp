// Passes message boxes to the installed handler, or prints them.

#include "platform/message_box.h"

#include <cstdio>

namespace platform {

namespace {

MessageBoxHandler& currentHandler()
{
    static MessageBoxHandler handler;
    return handler;
}

} // namespace

MessageBoxHandler setMessageBoxHandler(MessageBoxHandler handler)
{
    return std::exchange(currentHandler(), std::move(handler));
}

MessageBoxAnswer MessageBoxW(
    QWidget* owner, const QString& text, const QString& caption, MessageBoxButtons buttons,
    MessageBoxIcon icon)
{
    const MessageBoxRequest request{ owner, text, caption, buttons, icon };
    // A copy, so that a handler may replace itself.
    if (const MessageBoxHandler handler = currentHandler())
        return handler(request);
    printMessageBox(request);
    return unattendedAnswer(buttons);
}

MessageBoxAnswer unattendedAnswer(MessageBoxButtons buttons)
{
    switch (buttons) {
    case MessageBoxButtons::Ok:
        return MessageBoxAnswer::Ok;
    case MessageBoxButtons::YesNo:
        return MessageBoxAnswer::No;
    case MessageBoxButtons::AbortRetryIgnore:
        return MessageBoxAnswer::Abort;
    case MessageBoxButtons::OkCancel:
    case MessageBoxButtons::YesNoCancel:
    case MessageBoxButtons::RetryCancel:
        break;
    }
    return MessageBoxAnswer::Cancel;
}

void printMessageBox(const MessageBoxRequest& request)
{
    const QString line
        = request.caption.isEmpty() ? request.text : request.caption + QStringLiteral(": ") + request.text;
    const QByteArray bytes = line.toUtf8() + '\n';
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

} // namespace platform
