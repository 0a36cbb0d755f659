// The command line's output: everything that prompts, commands and answers say to the user.
#pragma once

#include <QString>

#include <functional>

/// Takes text as it is printed; texts are not whole lines.
using KcEdOutput = std::function<void(const QString& text)>;

/// Installs who shows what is printed and returns who did before. An empty function restores the default,
/// which writes UTF-8 to standard output.
KcEdOutput kcedSetOutput(KcEdOutput output);

/// Prints on the command line. A text that begins with a line feed begins a new row; where a row has just
/// begun already, no empty row is left.
void kcedPrint(const QString& text);
/// Ends the current row unless it has just begun.
void kcedFreshRow();
/// One row of text.
void kcedSay(const QString& sentence);

/// Installs who shows what went wrong apart from the conversation; the default writes a line to standard
/// error.
KcEdOutput kcedSetErrorOutput(KcEdOutput output);
void kcedSayError(const QString& sentence);
