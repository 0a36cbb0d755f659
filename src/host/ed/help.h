// The list expression (help "PATH"), by which commands open a help file.
#pragma once

#include <QString>

#include <optional>

/// The path that a text of the form (help "PATH") names, its doubled backslashes made single; nothing for any
/// other text.
std::optional<QString> kcedHelpPath(const QString& text);

/// Shows help. Without a window it says where the help file lies, or that it is missing.
void kcedShowHelp(const QString& path);
