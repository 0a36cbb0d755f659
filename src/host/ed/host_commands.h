// The commands that the host itself brings.
#pragma once

#include <QStringList>

/// Adds the host's commands to the command stack, in the group "KCAD"; a second call changes nothing.
void kcedRegisterHostCommands();

/// Runs a command to its end with the texts as its answers, inside the command that calls. A prompt for which
/// no text is left gets Escape. An empty text is Enter. A sentence when the command does not exist, failed,
/// or did not take a text.
QString kcedCommand(const QStringList& texts);
template <class... Texts> QString kcedCommand(const QString& command, const Texts&... texts)
{
    return kcedCommand(QStringList{ command, QString(texts)... });
}
