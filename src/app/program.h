// What the sub-commands of the program share: exit statuses, options, opening and saving drawings.
#pragma once

#include "ed/documents.h"

#include <QStringList>

namespace program {

inline constexpr char kVersion[] = "0.1";

enum ExitStatus {
    kDone = 0,
    kFileError = 1, ///< a drawing or script could not be read, or a result not be written
    kUsageError = 2, ///< wrong usage, or a script line that nothing took
};

/// What is left of the arguments once the sub-command is taken away.
using Arguments = QStringList;

// Each sub-command; the argument list begins behind its name.
int run(const Arguments& arguments);
int shell(const Arguments& arguments);
int window(const Arguments& arguments);
int plot(const Arguments& arguments);
int dump(const Arguments& arguments);
int audit(const Arguments& arguments);
int listCommands(const Arguments& arguments);

/// Remembers that there is no display to show a window on; dialogs work without, driven by lines.
void noteMissingDisplay();

/// Says what is wrong on standard error, with a line on where help is.
int wrongUsage(const QString& sentence);
int fileError(const QString& sentence);

/// Takes "NAME VALUE" out of the arguments; nothing when it is not there. An option without its value is left
/// in.
std::optional<QString> takeOption(Arguments& arguments, const QString& name);
/// The first argument that looks like an option; empty when none does.
QString strayOption(const Arguments& arguments);

/// Reads a drawing and makes it the current document; null, with the message given, when it cannot be read.
KcApDocument* openDrawing(const QString& path);
/// Whether a result could be written at that place, asked before the work is done; an empty text when it
/// could.
QString whyNotWritable(const QString& path);
/// Saves the drawing, with a message when that fails.
bool saveDrawingAs(KcApDocument& document, const QString& path);

/// Makes the application root ready, registers the host's commands and loads the module, for commands that
/// run them. False, with the message given, when the root cannot be made; a missing module is said and the
/// host's own commands remain.
bool prepareCommands();

} // namespace program
