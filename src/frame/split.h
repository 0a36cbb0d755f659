// Splits a text into its fields.
#pragma once

#include <QStringList>

/// The fields of a text between separators; an empty text has one empty field, a separator at the end is
/// followed by one. A field that begins with a double quote runs to the next double quote without a backslash
/// in front of it (to the end of the text when there is none) and is taken without the two; what stands
/// between such a field and the next separator is added to it. Backslashes stay.
QStringList splitFields(const QString& text, QChar separator);
