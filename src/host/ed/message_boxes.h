// Message boxes and requests for files, as the running session shows and answers them: in the window as
// dialogs, else printed and answered by lines.
#pragma once

#include "platform/file_dialog.h"
#include "platform/message_box.h"

/// Prints the box; one that asks is answered by the user or by the next "!" line, any other line cancels it.
/// Where lines answer, a box that only tells something closes itself.
platform::MessageBoxAnswer kcedAnswerMessageBox(const platform::MessageBoxRequest& request);

/// The chosen paths; empty when the user cancelled.
QStringList kcedAnswerFileRequest(const platform::FileRequest& request);

/// Makes both of them the handlers of the platform layer.
void kcedInstallDialogHandlers();
