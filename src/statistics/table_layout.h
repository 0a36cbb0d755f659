// The table layout document: which tables there are and which columns they may have.
#pragma once

#include "exchange/markup_document.h"
#include "platform/result.h"

/// The document (Sys/VDLTbInfo.xml); a failure says why it cannot be read.
platform::Result<MarkupDocument> loadTableLayout();
/// Goes to the "Table" element of that name, exactly. False, leaving the position anywhere, when there is
/// none.
bool findTable(MarkupDocument& layout, const QString& name);
/// The text of a child of the main position; empty when there is no such child.
QString childText(MarkupDocument& document, const QString& child);
/// Sets the text of a child of the main position, which is added when missing.
void setChildText(MarkupDocument& document, const QString& child, const QString& text);
