// Opening and saving drawings for the user: what takes the place of the current drawing, what is told, what
// is asked.
#pragma once

#include "dxf/drawing_file.h"
#include "platform/result.h"

#include <QString>

class KcApDocument;

/// Reads a drawing into an empty database. Of a large one the meter shows how far it is, and the user may
/// stop it.
dxf::Result kcedReadDrawing(const QString& path, KcDbDatabase& database);
/// Reads a drawing and puts it in the place of the current one. False, with the reason shown, when it cannot
/// be read, the user stops it or something holds the current one; that stays then. For when no command runs.
bool kcedOpenDrawing(const QString& path);
/// Puts an empty drawing in the place of the current one; false as above.
bool kcedNewDrawing();
/// Saves under a name, which becomes the drawing's own. False, with the reason shown, when that fails.
bool kcedSaveDrawing(KcApDocument& document, const QString& path);
/// Asks whether changes shall be saved, where there are any, and does so; true when the drawing may go.
bool kcedMayDiscard(KcApDocument& document);
/// What the user chooses or types; empty when he gave up. A window asks by a dialog while FILEDIA is 1.
QString kcedAskDrawingFile(const QString& question, bool opens, const QString& suggested);
/// The same for a script to be read.
QString kcedAskScriptFile();

/// The text of a script: UTF-8, or UTF-16 with a byte order mark.
platform::Result<QString> kcedReadScript(const QString& path);
