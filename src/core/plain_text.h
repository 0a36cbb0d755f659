// Plain text as the contents of multiline texts and table cells.
#pragma once

#include <QString>

/// Contents that show the text: backslashes and braces are written so that they begin no format code, line
/// feeds begin new paragraphs. Control codes that begin with "%%" stay codes, as people type them.
QString multilineContents(const QString& text);
