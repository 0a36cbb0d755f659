// The commands of this folder, and what they say as pure functions.
#pragma once

#include <QString>

/// VDHELP: opens the help file.
void openHelp();
/// DRAWINGSETTING: the drawing settings dialog.
void editDrawingSettings();
/// VDLABOUT: says which product and version this is.
void showAbout();

/// The expression that opens the help file below an application root (which ends with a separator), as a
/// literal of the host's command language with a line feed behind it.
QString helpExpression(const QString& appRoot);

/// The version of a build made on a date of the form "May 23 2024" or "Jan  5 2024": "20240523", "20240105".
QString versionOfBuild(const QString& buildDate);
