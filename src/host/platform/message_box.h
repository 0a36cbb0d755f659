// Message boxes. Who runs the session (window or script) decides how one is shown and answered; the caller
// cannot tell.
#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace platform {

enum class MessageBoxIcon { None, Information, Question, Warning, Error };

enum class MessageBoxButtons { Ok, OkCancel, YesNo, YesNoCancel, RetryCancel, AbortRetryIgnore };

enum class MessageBoxAnswer { Ok, Cancel, Yes, No, Retry, Abort, Ignore };

struct MessageBoxRequest {
    QWidget* owner = nullptr; ///< null: the main window, if there is one
    QString text;
    QString caption; ///< as given, may be empty
    MessageBoxButtons buttons = MessageBoxButtons::Ok;
    MessageBoxIcon icon = MessageBoxIcon::None;

    /// True when there is more than one button, that is when the box asks something.
    bool asks() const { return buttons != MessageBoxButtons::Ok; }
};

using MessageBoxHandler = std::function<MessageBoxAnswer(const MessageBoxRequest&)>;

/// Installs who shows and answers message boxes and returns who did before. An empty handler restores the
/// default, which prints the box on standard output and gives unattendedAnswer().
MessageBoxHandler setMessageBoxHandler(MessageBoxHandler handler);

/// Shows a box and returns the button it was closed with.
MessageBoxAnswer MessageBoxW(
    QWidget* owner, const QString& text, const QString& caption,
    MessageBoxButtons buttons = MessageBoxButtons::Ok, MessageBoxIcon icon = MessageBoxIcon::None);

/// The answer of nobody: OK where that is the only button, else Cancel, or No or Abort where there is no
/// Cancel.
MessageBoxAnswer unattendedAnswer(MessageBoxButtons buttons);

/// Prints "caption: text" and a line feed on standard output, in UTF-8; the text alone when there is no
/// caption.
void printMessageBox(const MessageBoxRequest& request);

} // namespace platform
