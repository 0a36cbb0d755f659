// The list expression (help "PATH"), by which commands open a help file.
#pragma once

#include <QString>

#include <optional>

/// The path that a text of the form (help "PATH") names, its doubled backslashes made single; nothing for any
/// other text.
std::optional<QString> kcedHelpPath(const QString& text);

/// The file that is opened for a path: the file itself, else the pages of that stem: STEM.html, STEM.htm or
/// STEM/index.html. Empty when there is none.
QString kcedFindHelp(const QString& path);

/// Says where the help lies, or that it is missing; with a window it is opened in the desktop's browser.
void kcedShowHelp(const QString& path);
